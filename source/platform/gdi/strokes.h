// Outlines drawn with pens on pixel memory.
#pragma once

#include "platform/gdi/canvas.h"

namespace zolgdi {

/// Whether a pen of this width, in device pixels, draws lines of one pixel.
constexpr bool isThin(double width) { return width < 1.5; }

/// Draws the outlines of figures inside `clip`, which lies inside the pixels. Lines of one pixel leave out their last
/// pixel, as GDI's; wider ones are a whole number of pixels wide and have round ends and joins.
void strokeFigures(const Pixels& to, const Area& clip, const Figures& figures, const Stroke& stroke);

}  // namespace zolgdi
