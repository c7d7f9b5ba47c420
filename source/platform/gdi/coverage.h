// Coverage drawn by Cairo, to be painted in one colour on pixel memory of any layout.
#pragma once

#include "platform/gdi/area.h"
#include "platform/gdi/objects.h"

#include <cairo.h>

#include <functional>

namespace zolgdi {

/// Lets `draw` cover pixels, then paints the colour where it did inside `clip`, which lies inside the pixels. `extent`
/// holds all that is drawn; both are in device pixels. The fourth byte of painted pixels becomes 0.
void paintCoverage(const Pixels& to, const Area& clip, const RECT& extent, COLORREF color,
                   const std::function<void(cairo_t*)>& draw);

}  // namespace zolgdi
