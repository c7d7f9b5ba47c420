#include "zolcs/drawing/outline.h"

#include "zolcs/support/conversion.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

namespace zolcs {

namespace {

using Segment = zolplatform::Segment<OutputPoint>;
using Curve = zolplatform::Curve<OutputPoint>;

POINT toGdi(OutputPoint p) { return {truncated(p.x), truncated(p.y)}; }

std::vector<POINT> toGdi(const std::vector<OutputPoint>& points) {
    std::vector<POINT> out(points.size());
    std::transform(points.begin(), points.end(), out.begin(), [](OutputPoint p) { return toGdi(p); });
    return out;
}

/// Beyond this a double does not distinguish neighbouring pixels, and an outline has no place to be drawn at.
constexpr double placeLimit = 0x1p53;

bool allDrawable(const std::vector<OutputPoint>& points) { return zolplatform::areWithin(points, outputLimit); }

/// False for NaN and infinities.
bool hasPlace(OutputPoint p) { return zolplatform::isWithin(p, placeLimit); }
bool allHavePlaces(const std::vector<OutputPoint>& points) { return zolplatform::areWithin(points, placeLimit); }

/// The part of a segment inside GDI's coordinates; nothing for points without a place.
std::optional<Segment> visiblePart(OutputPoint start, OutputPoint end) {
    if (!hasPlace(start) || !hasPlace(end)) return std::nullopt;
    return zolplatform::clipped(Segment{start, end}, outputLimit);
}

void drawLines(HDC dc, const std::vector<OutputPoint>& points) {
    bool connected = false;  // the current position is where the next segment starts
    for (std::size_t i = 1; i < points.size(); ++i) {
        const std::optional<Segment> segment = visiblePart(points[i - 1], points[i]);
        if (segment) {
            const POINT start = toGdi(segment->start);
            const POINT end = toGdi(segment->end);
            if (!connected) MoveToEx(dc, start.x, start.y, nullptr);
            LineTo(dc, end.x, end.y);
        }
        connected = segment && isDrawable(points[i]);
    }
}

void fillPolygon(HDC dc, std::vector<OutputPoint> points) {
    points = zolplatform::clippedPolygon(std::move(points), outputLimit);
    if (points.empty()) return;
    const std::vector<POINT> corners = toGdi(points);
    Polygon(dc, corners.data(), static_cast<int>(corners.size()));
}

/// Whether all of it lies beyond one of GDI's limits: a curve lies within the hull of its control points.
bool isBeyondLimits(const Curve& curve) {
    const auto [low, high] = zolplatform::boundsOf(curve);
    return low.x > outputLimit || high.x < -outputLimit || low.y > outputLimit || high.y < -outputLimit;
}

void drawCurves(HDC dc, const std::vector<OutputPoint>& points) {
    const std::vector<POINT> controls = toGdi(points);
    PolyBezier(dc, controls.data(), static_cast<DWORD>(controls.size()));
}

/// Straight lines within a quarter of a pixel of the curves. What is beyond GDI's limits stays coarse.
std::vector<OutputPoint> flattened(const std::vector<OutputPoint>& points) {
    constexpr double tolerance = 0.25;
    constexpr int mostHalvings = 40;
    std::vector<OutputPoint> out{points.front()};
    for (std::size_t i = 3; i < points.size(); i += 3) {
        const Curve curve{points[i - 3], points[i - 2], points[i - 1], points[i]};
        zolplatform::appendExactLines(curve, tolerance, mostHalvings, isBeyondLimits, out);
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
    return {zolplatform::ellipseCurves(corners), true};
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
