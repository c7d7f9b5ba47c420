#include "zolcs/drawing/reshape.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace zolcs {

namespace {

/// Unit vectors of the sides between corners 0 and 1 and between corners 1 and 2.
struct Axes {
    OutputPoint u;
    OutputPoint v;
};

constexpr OutputPoint quarterTurned(OutputPoint p) { return {-p.y, p.x}; }

double length(OutputPoint p) { return std::sqrt(dot(p, p)); }

/// A unit vector along a side, or nothing for a side without length. Sides within half a pixel of an axis lie on it.
std::optional<OutputPoint> direction(OutputPoint side) {
    const double x = std::fabs(side.x);
    const double y = std::fabs(side.y);
    if (!(std::max(x, y) >= 1.0)) return std::nullopt;
    if (y < 0.5) return OutputPoint{1.0, 0.0};
    if (x < 0.5) return OutputPoint{0.0, 1.0};
    return side * (1.0 / length(side));
}

OutputPoint directionOf(const Corners& corners) {
    const OutputPoint first = corners.points[1] - corners.points[0];
    const OutputPoint second = corners.points[2] - corners.points[1];
    constexpr OutputPoint horizontal{1.0, 0.0};
    const bool rightAngled = std::fabs(dot(first, second)) <= length(first) + length(second);
    if (!rightAngled) return horizontal;
    if (const auto u = direction(first)) return *u;
    if (const auto v = direction(second)) return quarterTurned(*v);
    return horizontal;
}

Axes axesOf(const Corners& corners) {
    const OutputPoint u = directionOf(corners);
    return {u, quarterTurned(u)};
}

std::size_t oppositeOf(std::size_t corner) { return corner ^ 2U; }

/// Puts the corner opposite of the dragged one at the origin and the others where the sides lead from there.
void span(Corners& corners, OutputPoint origin, OutputPoint u, OutputPoint v) {
    const std::size_t opposite = oppositeOf(corners.dragged);
    corners.points[opposite] = origin;
    corners.points[opposite ^ 1U] = origin + u;
    corners.points[3U - opposite] = origin + v;
    corners.points[corners.dragged] = origin + u + v;
}

/// Sides of one length, the longer one from a fixed point to the target; a side that the target leaves without length
/// keeps the direction that it has.
Axes equalSides(const Corners& corners, OutputPoint fixed) {
    const Axes axes = axesOf(corners);
    const OutputPoint wanted = corners.target - fixed;
    const OutputPoint before = corners.points[corners.dragged] - fixed;
    const double size = std::max(std::fabs(dot(wanted, axes.u)), std::fabs(dot(wanted, axes.v)));
    const auto side = [&](OutputPoint axis) {
        const double way = dot(wanted, axis) != 0.0 ? dot(wanted, axis) : dot(before, axis);
        return axis * (way < 0.0 ? -size : size);
    };
    return {side(axes.u), side(axes.v)};
}

}  // namespace

void reshapeRectangle(Corners& corners) {
    const OutputPoint fixed = corners.points[oppositeOf(corners.dragged)];
    const Axes axes = axesOf(corners);
    const OutputPoint diagonal = corners.target - fixed;
    span(corners, fixed, axes.u * dot(diagonal, axes.u), axes.v * dot(diagonal, axes.v));
}

void reshapeSquare(Corners& corners) {
    const OutputPoint fixed = corners.points[oppositeOf(corners.dragged)];
    const Axes sides = equalSides(corners, fixed);
    span(corners, fixed, sides.u, sides.v);
}

void reshapeCircle(Corners& corners) {
    const OutputPoint centre = (corners.points[0] + corners.points[2]) * 0.5;
    const Axes radii = equalSides(corners, centre);
    span(corners, centre - radii.u - radii.v, radii.u * 2.0, radii.v * 2.0);
}

}  // namespace zolcs
