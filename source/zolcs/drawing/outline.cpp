#include "zolcs/drawing/outline.h"

#include "zolcs/support/conversion.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <utility>

namespace zolcs {

namespace {

POINT toGdi(OutputPoint p) { return {truncated(p.x), truncated(p.y)}; }

std::vector<POINT> toGdi(const std::vector<OutputPoint>& points) {
    std::vector<POINT> out(points.size());
    std::transform(points.begin(), points.end(), out.begin(), [](OutputPoint p) { return toGdi(p); });
    return out;
}

// Beyond 2^53 a double no longer tells one pixel from the next, and an outline has no place to be drawn at. False for
// NaN and infinities.
bool hasPlace(OutputPoint p) { return std::fabs(p.x) <= 0x1p53 && std::fabs(p.y) <= 0x1p53; }

bool allDrawable(const std::vector<OutputPoint>& points) {
    return std::all_of(points.begin(), points.end(), isDrawable);
}

bool allHavePlaces(const std::vector<OutputPoint>& points) {
    return std::all_of(points.begin(), points.end(), hasPlace);
}

OutputPoint between(OutputPoint a, OutputPoint b, double t) { return a + (b - a) * t; }

OutputPoint middle(OutputPoint a, OutputPoint b) { return (a + b) * 0.5; }

OutputPoint limited(OutputPoint p) {
    return {std::clamp(p.x, -outputLimit, outputLimit), std::clamp(p.y, -outputLimit, outputLimit)};
}

struct Segment {
    OutputPoint start;
    OutputPoint end;
};

// The part of a segment inside GDI's coordinates (Liang and Barsky: the parameters at which it enters and leaves).
std::optional<Segment> clipped(Segment s) {
    if (isDrawable(s.start) && isDrawable(s.end)) return s;
    if (!hasPlace(s.start) || !hasPlace(s.end)) return std::nullopt;
    const OutputPoint d = s.end - s.start;
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
    const bool visible = cut(-d.x, s.start.x + outputLimit) && cut(d.x, outputLimit - s.start.x) &&
                         cut(-d.y, s.start.y + outputLimit) && cut(d.y, outputLimit - s.start.y);
    if (!visible) return std::nullopt;
    return Segment{limited(between(s.start, s.end, enter)), limited(between(s.start, s.end, leave))};
}

void drawLines(HDC dc, const std::vector<OutputPoint>& points) {
    bool connected = false;  // the current position is where the next segment starts
    for (std::size_t i = 1; i < points.size(); ++i) {
        const std::optional<Segment> segment = clipped({points[i - 1], points[i]});
        if (segment) {
            const POINT start = toGdi(segment->start);
            const POINT end = toGdi(segment->end);
            if (!connected) MoveToEx(dc, start.x, start.y, nullptr);
            LineTo(dc, end.x, end.y);
        }
        connected = segment && isDrawable(points[i]);
    }
}

// The part of a polygon on one side of a limit (Sutherland and Hodgman); `inside` is how far a point is within it.
template <typename Inside>
std::vector<OutputPoint> cutPolygon(const std::vector<OutputPoint>& points, const Inside& inside) {
    std::vector<OutputPoint> out;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const OutputPoint from = points[i];
        const OutputPoint to = points[(i + 1) % points.size()];
        const double here = inside(from);
        const double there = inside(to);
        if (here >= 0.0) out.push_back(from);
        if ((here >= 0.0) != (there >= 0.0)) out.push_back(between(from, to, here / (here - there)));
    }
    return out;
}

void fillPolygon(HDC dc, std::vector<OutputPoint> points) {
    if (!allDrawable(points)) {
        points = cutPolygon(points, [](OutputPoint p) { return outputLimit - p.x; });
        points = cutPolygon(points, [](OutputPoint p) { return outputLimit + p.x; });
        points = cutPolygon(points, [](OutputPoint p) { return outputLimit - p.y; });
        points = cutPolygon(points, [](OutputPoint p) { return outputLimit + p.y; });
        std::transform(points.begin(), points.end(), points.begin(), limited);
    }
    if (points.empty()) return;
    const std::vector<POINT> corners = toGdi(points);
    Polygon(dc, corners.data(), static_cast<int>(corners.size()));
}

using Piece = std::array<OutputPoint, 4>;

std::pair<Piece, Piece> halves(const Piece& piece) {  // de Casteljau
    const OutputPoint a = middle(piece[0], piece[1]);
    const OutputPoint b = middle(piece[1], piece[2]);
    const OutputPoint c = middle(piece[2], piece[3]);
    const OutputPoint ab = middle(a, b);
    const OutputPoint bc = middle(b, c);
    const OutputPoint top = middle(ab, bc);
    return {{piece[0], a, ab, top}, {top, bc, c, piece[3]}};
}

// Whether all of it lies beyond one of GDI's limits: a curve lies within the hull of its control points.
bool isBeyondLimits(const Piece& p) {
    const auto [left, right] = std::minmax({p[0].x, p[1].x, p[2].x, p[3].x});
    const auto [top, bottom] = std::minmax({p[0].y, p[1].y, p[2].y, p[3].y});
    return left > outputLimit || right < -outputLimit || top > outputLimit || bottom < -outputLimit;
}

// The control points are where a straight line would have them, within a quarter of a pixel.
bool isStraight(const Piece& p) {
    const auto off = [](OutputPoint control, OutputPoint onLine) {
        return std::max(std::fabs(control.x - onLine.x), std::fabs(control.y - onLine.y));
    };
    return off(p[1], between(p[0], p[3], 1.0 / 3.0)) < 0.25 && off(p[2], between(p[0], p[3], 2.0 / 3.0)) < 0.25;
}

void flatten(const Piece& piece, int halvings, std::vector<OutputPoint>& out) {
    if (halvings == 0 || isBeyondLimits(piece) || isStraight(piece)) {
        out.push_back(piece[3]);
        return;
    }
    const auto [first, second] = halves(piece);
    flatten(first, halvings - 1, out);
    flatten(second, halvings - 1, out);
}

void drawCurves(HDC dc, const std::vector<OutputPoint>& points) {
    const std::vector<POINT> controls = toGdi(points);
    PolyBezier(dc, controls.data(), static_cast<DWORD>(controls.size()));
}

// Short straight lines in place of a curve. What is beyond GDI's limits stays coarse.
std::vector<OutputPoint> flattened(const std::vector<OutputPoint>& points) {
    constexpr int mostHalvings = 40;
    std::vector<OutputPoint> out{points.front()};
    for (std::size_t i = 3; i < points.size(); i += 3) {
        flatten({points[i - 3], points[i - 2], points[i - 1], points[i]}, mostHalvings, out);
    }
    return out;
}

}  // namespace

Outline straightOutline(std::vector<OutputPoint> vertices, bool closed) {
    if (!vertices.empty() && (closed || vertices.size() == 1)) {
        const OutputPoint first = vertices.front();
        vertices.push_back(first);
    }
    return {std::move(vertices), false};
}

Outline smoothOutline(const std::vector<OutputPoint>& vertices, bool closed) {
    if (vertices.size() < 2) return straightOutline(vertices, closed);
    const std::size_t count = vertices.size();
    const std::size_t pieces = closed ? count : count - 1;
    Outline out{{vertices.front()}, true};
    out.points.reserve(3 * pieces + 1);
    for (std::size_t i = 0; i < pieces; ++i) {
        const OutputPoint start = vertices[i];
        const OutputPoint end = vertices[(i + 1) % count];
        const OutputPoint before = i > 0 ? vertices[i - 1] : (closed ? vertices.back() : start);
        const OutputPoint after = i + 2 < count || closed ? vertices[(i + 2) % count] : end;
        out.points.push_back(start + (end - before) * (1.0 / 6.0));
        out.points.push_back(end - (after - start) * (1.0 / 6.0));
        out.points.push_back(end);
    }
    return out;
}

Outline ellipseOutline(const std::array<OutputPoint, 4>& corners) {
    // A quarter of an ellipse as a Bezier piece has its control points at 4/3 (sqrt 2 - 1) of the half axes.
    constexpr double kappa = 0.55228474983079339840;
    const OutputPoint centre = (corners[0] + corners[1] + corners[2] + corners[3]) * 0.25;
    const OutputPoint along = (corners[1] - corners[0] + corners[2] - corners[3]) * 0.25;
    const OutputPoint across = (corners[3] - corners[0] + corners[2] - corners[1]) * 0.25;
    const std::array<OutputPoint, 5> axes{along, across, along * -1.0, across * -1.0, along};
    Outline out{{centre + along}, true};
    for (std::size_t i = 0; i < 4; ++i) {
        out.points.push_back(centre + axes[i] + axes[i + 1] * kappa);
        out.points.push_back(centre + axes[i] * kappa + axes[i + 1]);
        out.points.push_back(centre + axes[i + 1]);
    }
    return out;
}

void drawOutline(HDC dc, Outline outline, double offset) {
    for (OutputPoint& p : outline.points) p = p + OutputPoint{offset, offset};
    if (!outline.curved) {
        drawLines(dc, outline.points);
    } else if (allDrawable(outline.points)) {
        drawCurves(dc, outline.points);
    } else if (allHavePlaces(outline.points)) {
        drawLines(dc, flattened(outline.points));
    }
}

void fillOutline(HDC dc, const Outline& outline) {
    SetPolyFillMode(dc, ALTERNATE);
    if (outline.curved && allDrawable(outline.points)) {
        BeginPath(dc);
        drawCurves(dc, outline.points);
        EndPath(dc);
        StrokeAndFillPath(dc);
    } else if (allHavePlaces(outline.points)) {
        fillPolygon(dc, outline.curved ? flattened(outline.points) : outline.points);
    }
}

}  // namespace zolcs
