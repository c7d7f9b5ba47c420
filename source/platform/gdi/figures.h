// Outlines before they are drawn: curves become lines, and what lies far away is cut off.
#pragma once

#include "platform/gdi/canvas.h"

#include <array>

namespace zolgdi {

/// The same figures without curves.
Figures flattened(const Figures& figures);

/// The parts of outlines inside [-limit, limit] in both directions. Figures that lie wholly inside stay as they are;
/// others lose their curves and, where they are cut, are open.
Figures linesWithin(const Figures& figures, double limit);

/// Closed figures that cover the same pixels inside [-limit, limit]; those that do not lie wholly inside lose their
/// curves.
Figures surfacesWithin(const Figures& figures, double limit);

/// Cairo's coordinates end near 2^23: what lies farther away than this is cut off before it gets there.
inline constexpr double cairoLimit = 1 << 21;

/// Farthest coordinates on pixel memory: products of two distances then fit 64 bits with room to spare.
inline constexpr double rasterLimit = 1 << 27;

/// A rectangle's corners in the order in which GDI draws outlines: counterclockwise from the top right one.
using Corners = std::array<PointD, 4>;

/// The corner pixels of a rectangle, right and bottom exclusive.
Corners cornersOf(const RECT& rect);

/// A closed, curved figure for the ellipse that touches the sides of a rectangle, which may be turned.
Figure ellipseFigure(const Corners& corners);

}  // namespace zolgdi
