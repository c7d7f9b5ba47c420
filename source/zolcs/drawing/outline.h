// Outlines in output coordinates, and their way to GDI.
//
// Output coordinates are doubles: pixels of the device context that is drawn on, not rounded. GDI gets them truncated.
// What lies beyond GDI's coordinates is cut off geometrically before that, so that the visible part of a line keeps its
// direction however far its ends are away. Nothing is drawn to points that are not finite or so far out that a double
// does not distinguish neighbouring pixels.
#pragma once

#include "platform/geometry.h"
#include "platform/platform.h"

#include <array>
#include <vector>

namespace zolcs {

struct OutputPoint {
    double x = 0.0;
    double y = 0.0;
};

constexpr OutputPoint operator+(OutputPoint a, OutputPoint b) { return {a.x + b.x, a.y + b.y}; }
constexpr OutputPoint operator-(OutputPoint a, OutputPoint b) { return {a.x - b.x, a.y - b.y}; }
constexpr OutputPoint operator*(OutputPoint a, double factor) { return {a.x * factor, a.y * factor}; }
constexpr double dot(OutputPoint a, OutputPoint b) { return a.x * b.x + a.y * b.y; }

/// GDI's device space ends at 27 bits on each side of the origin.
inline constexpr double outputLimit = 134217727.0;

/// Whether GDI can be given the point; false for NaN and infinities.
constexpr bool isDrawable(OutputPoint p) { return zolplatform::isWithin(p, outputLimit); }

/// Points joined by straight lines; or, when curved, Bezier pieces: a first point, then two control points and an
/// end point for each piece.
struct Outline {
    std::vector<OutputPoint> points;
    bool curved = false;
};

/// Through all vertices, and back to the first one when closed. A single vertex gives a line to itself.
Outline straightOutline(std::vector<OutputPoint> vertices, bool closed);

/// A Catmull-Rom spline through all vertices, and back to the first one when closed: the tangent at a vertex is
/// half of the way from its predecessor to its successor, so that the control points of a piece from P1 to P2 are
/// P1 + (P2 - P0) / 6 and P2 - (P3 - P1) / 6. At an open end the vertex itself takes the missing neighbour's place.
Outline smoothOutline(const std::vector<OutputPoint>& vertices, bool closed);

/// The ellipse that touches the sides of a rectangle (or parallelogram) in their middle, in four pieces; corners in
/// order around it.
Outline ellipseOutline(const std::array<OutputPoint, 4>& corners);

/// Draws with the pen that is selected, displaced by `offset` pixels to the right and down.
void drawOutline(HDC dc, Outline outline, double offset);

/// Fills, by the alternate rule, with the brush that is selected and outlines with the pen that is selected; the
/// outline is closed for that.
void fillOutline(HDC dc, const Outline& outline);

}  // namespace zolcs
