// Outlines before they are drawn: curves become lines, and what lies far away is cut off.
#pragma once

#include "platform/gdi/canvas.h"

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

/// A closed, curved figure for the ellipse that touches the sides of a rectangle with the given corners; the corners
/// may be turned.
Figure ellipseFigure(PointD topLeft, PointD topRight, PointD bottomRight, PointD bottomLeft);

}  // namespace zolgdi
