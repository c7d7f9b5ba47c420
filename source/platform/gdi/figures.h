// Outlines before they are drawn: curves become lines, and what lies far away is cut off.
#pragma once

#include "platform/gdi/canvas.h"

namespace zolgdi {

/// The same figures without curves.
Figures flattened(const Figures& figures);

/// The parts of straight-lined outlines inside [-limit, limit] in both directions; closed figures are opened when they
/// are cut.
Figures linesWithin(const Figures& figures, double limit);

/// Straight-lined, closed figures that cover the same pixels inside [-limit, limit].
Figures surfacesWithin(const Figures& figures, double limit);

/// A closed, curved figure for the ellipse that touches the sides of a rectangle with the given corners; the corners
/// may be turned.
Figure ellipseFigure(PointD topLeft, PointD topRight, PointD bottomRight, PointD bottomLeft);

}  // namespace zolgdi
