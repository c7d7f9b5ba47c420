// Plane geometry of outlines: lines and polygons cut off at a limit, curves as straight lines, bounds of points.
//
// A point is any struct that begins with the doubles x and y.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace zolplatform {

/// The point at `t` of the way from a to b.
template <typename Point>
constexpr Point between(Point a, Point b, double t) {
    return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
}

template <typename Point>
double distance(Point a, Point b) {
    return std::hypot(b.x - a.x, b.y - a.y);
}

/// Whether the point lies in [-limit, limit] in both directions; false for NaN.
template <typename Point>
constexpr bool isWithin(Point p, double limit) {
    return p.x >= -limit && p.x <= limit && p.y >= -limit && p.y <= limit;
}

template <typename Point>
bool areWithin(const std::vector<Point>& points, double limit) {
    return std::all_of(points.begin(), points.end(), [limit](Point p) { return isWithin(p, limit); });
}

/// The nearest point in [-limit, limit] in both directions.
template <typename Point>
constexpr Point limited(Point p, double limit) {
    return {std::clamp(p.x, -limit, limit), std::clamp(p.y, -limit, limit)};
}

/// Smallest and largest coordinates of points.
template <typename Point>
struct Bounds {
    Point low;
    Point high;

    void include(Point p) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y)};
    }
};

template <typename Point, std::size_t Count>
Bounds<Point> boundsOf(const std::array<Point, Count>& points) {
    Bounds<Point> bounds{points[0], points[0]};
    for (const Point p : points) bounds.include(p);
    return bounds;
}

// ---------------------------------------------------------------------------------------------------- cutting

template <typename Point>
struct Segment {
    Point start;
    Point end;
};

/// The part of a segment inside [-limit, limit] in both directions (Liang and Barsky: from the parameter at which it
/// enters to the one at which it leaves); nothing where there is none.
template <typename Point>
std::optional<Segment<Point>> clipped(Segment<Point> segment, double limit) {
    const auto [start, end] = segment;
    if (isWithin(start, limit) && isWithin(end, limit)) return segment;
    double enter = 0.0;
    double leave = 1.0;
    const auto cut = [&](double step, double room) {  // keeps the parameters t with t * step <= room
        if (step == 0.0) return room >= 0.0;
        if (step < 0.0) {
            enter = std::max(enter, room / step);
        } else {
            leave = std::min(leave, room / step);
        }
        return enter <= leave;
    };
    const double dx = end.x - start.x;
    const double dy = end.y - start.y;
    const bool visible =
        cut(-dx, start.x + limit) && cut(dx, limit - start.x) && cut(-dy, start.y + limit) && cut(dy, limit - start.y);
    if (!visible) return std::nullopt;
    return Segment<Point>{limited(between(start, end, enter), limit), limited(between(start, end, leave), limit)};
}

/// The part of a polygon where inside(p), a distance from a straight line, is not negative (Sutherland and Hodgman).
template <typename Point, typename Inside>
std::vector<Point> cutPolygon(const std::vector<Point>& points, const Inside& inside) {
    std::vector<Point> out;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Point from = points[i];
        const Point to = points[(i + 1) % points.size()];
        const double here = inside(from);
        const double there = inside(to);
        if (here >= 0.0) out.push_back(from);
        if ((here >= 0.0) != (there >= 0.0)) out.push_back(between(from, to, here / (here - there)));
    }
    return out;
}

/// A polygon that covers the same of [-limit, limit] in both directions and nothing else; empty where that is nothing.
template <typename Point>
std::vector<Point> clippedPolygon(std::vector<Point> points, double limit) {
    if (areWithin(points, limit)) return points;
    points = cutPolygon(points, [limit](Point p) { return limit - p.x; });
    points = cutPolygon(points, [limit](Point p) { return limit + p.x; });
    points = cutPolygon(points, [limit](Point p) { return limit - p.y; });
    points = cutPolygon(points, [limit](Point p) { return limit + p.y; });
    for (Point& p : points) p = limited(p, limit);
    return points;
}

// ---------------------------------------------------------------------------------------------------- curves

/// A cubic Bezier curve: its start, two control points and its end.
template <typename Point>
using Curve = std::array<Point, 4>;

/// The curve's point at t, from 0 at its start to 1 at its end.
template <typename Point>
Point pointOf(const Curve<Point>& curve, double t) {
    const double s = 1.0 - t;
    const double b0 = s * s * s;
    const double b1 = 3.0 * s * s * t;
    const double b2 = 3.0 * s * t * t;
    const double b3 = t * t * t;
    return {b0 * curve[0].x + b1 * curve[1].x + b2 * curve[2].x + b3 * curve[3].x,
            b0 * curve[0].y + b1 * curve[1].y + b2 * curve[2].y + b3 * curve[3].y};
}

/// Both halves of a curve (de Casteljau).
template <typename Point>
std::pair<Curve<Point>, Curve<Point>> halvesOf(const Curve<Point>& curve) {
    const auto middle = [](Point a, Point b) { return Point{(a.x + b.x) * 0.5, (a.y + b.y) * 0.5}; };
    const Point a = middle(curve[0], curve[1]);
    const Point b = middle(curve[1], curve[2]);
    const Point c = middle(curve[2], curve[3]);
    const Point ab = middle(a, b);
    const Point bc = middle(b, c);
    const Point centre = middle(ab, bc);
    return {{curve[0], a, ab, centre}, {centre, bc, c, curve[3]}};
}

/// Whether the control points are where a straight line would have them, within `tolerance` in each direction.
template <typename Point>
bool isStraight(const Curve<Point>& curve, double tolerance) {
    const auto isNear = [tolerance](Point control, Point onLine) {
        return std::max(std::fabs(control.x - onLine.x), std::fabs(control.y - onLine.y)) < tolerance;
    };
    return isNear(curve[1], between(curve[0], curve[3], 1.0 / 3.0)) &&
           isNear(curve[2], between(curve[0], curve[3], 2.0 / 3.0));
}

/// Appends a curve without its start as straight lines of about four units each, from 4 to 512 of them, at even steps
/// of its parameter: what GDI's curves become on pixels. A curve whose control points are its ends is one line.
template <typename Point>
void appendEvenLines(const Curve<Point>& curve, std::vector<Point>& out) {
    const auto same = [](Point a, Point b) { return a.x == b.x && a.y == b.y; };
    if (same(curve[0], curve[1]) && same(curve[2], curve[3])) {
        out.push_back(curve[3]);
        return;
    }
    const double length = distance(curve[0], curve[1]) + distance(curve[1], curve[2]) + distance(curve[2], curve[3]);
    constexpr double unitsPerPiece = 4.0;
    constexpr double most = 512.0;
    const int pieces = static_cast<int>(std::clamp(length / unitsPerPiece, 4.0, most));  // a NaN gives 4
    for (int i = 1; i < pieces; ++i) out.push_back(pointOf(curve, static_cast<double>(i) / pieces));
    out.push_back(curve[3]);
}

/// Appends a curve without its start as straight lines within `tolerance` of it, halving it up to `halvings` times, but
/// coarsely where `mayBeCoarse(curve)`: curves that are too large for even steps.
template <typename Point, typename Coarse>
void appendExactLines(const Curve<Point>& curve, double tolerance, int halvings, const Coarse& mayBeCoarse,
                      std::vector<Point>& out) {
    if (halvings == 0 || mayBeCoarse(curve) || isStraight(curve, tolerance)) {
        out.push_back(curve[3]);
        return;
    }
    const auto [first, second] = halvesOf(curve);
    appendExactLines(first, tolerance, halvings - 1, mayBeCoarse, out);
    appendExactLines(second, tolerance, halvings - 1, mayBeCoarse, out);
}

/// The ellipse that touches the sides of a parallelogram in their middle, as a closed chain of four Bezier curves: a
/// start, in the middle of the side between corners 1 and 2, then two control points and an end for each curve. Corners
/// are in order around the parallelogram, and the ellipse goes towards corner 2 first.
template <typename Point>
std::vector<Point> ellipseCurves(const std::array<Point, 4>& c) {
    // A quarter of an ellipse as a Bezier curve has its control points at 4/3 (sqrt 2 - 1) of the half axes.
    constexpr double kappa = 0.55228474983079339840;
    const Point centre{(c[0].x + c[1].x + c[2].x + c[3].x) * 0.25, (c[0].y + c[1].y + c[2].y + c[3].y) * 0.25};
    const Point along{(c[1].x - c[0].x + c[2].x - c[3].x) * 0.25, (c[1].y - c[0].y + c[2].y - c[3].y) * 0.25};
    const Point across{(c[3].x - c[0].x + c[2].x - c[1].x) * 0.25, (c[3].y - c[0].y + c[2].y - c[1].y) * 0.25};
    const std::array<Point, 5> axes{along, across, Point{-along.x, -along.y}, Point{-across.x, -across.y}, along};
    const auto beside = [](Point from, Point axis, double reach) {
        return Point{from.x + axis.x * reach, from.y + axis.y * reach};
    };
    std::vector<Point> out{beside(centre, along, 1.0)};
    for (std::size_t i = 0; i < 4; ++i) {
        out.push_back(beside(beside(centre, axes[i], 1.0), axes[i + 1], kappa));
        out.push_back(beside(beside(centre, axes[i], kappa), axes[i + 1], 1.0));
        out.push_back(beside(centre, axes[i + 1], 1.0));
    }
    return out;
}

}  // namespace zolplatform
