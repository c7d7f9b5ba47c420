// Pixels painted in one colour and copied, by raster operations.
#pragma once

#include "platform/gdi/canvas.h"

namespace zolgdi {

/// Combines the pixels of an area with a colour. The area lies inside the pixels; for `rop` see ropIndex.
void paintPixels(const Pixels& to, const Area& area, BYTE rop, COLORREF color);

/// Combines the pixels of a picture's destination inside `clip` with the picture and with a colour. The clip lies
/// inside the pixels; the picture may lie in them, too, and then what it holds at first is copied.
void copyPixels(const Pixels& to, const Area& clip, const Picture& picture, BYTE rop, COLORREF pattern);

}  // namespace zolgdi
