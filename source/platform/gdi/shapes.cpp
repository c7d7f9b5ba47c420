// Pens and brushes, lines, curves and filled shapes.
#include "platform/gdi/dc.h"
#include "platform/gdi/figures.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>

namespace zolgdi {

namespace {

/// The device pixel that a logical point falls on.
PointD devicePoint(const Affine& map, double x, double y) {
    const POINT at = roundToDevice(map(x, y));
    return {static_cast<double>(at.x), static_cast<double>(at.y)};
}

Stroke currentStroke(const DeviceContext& context) {
    const State& state = context.state;
    const LOGPEN& pen = state.pen->description();
    const Affine map = context.toDevice();
    Stroke stroke;
    stroke.style = pen.lopnStyle;
    stroke.color = pen.lopnColor;
    const double scale = std::sqrt(std::fabs(map.m11 * map.m22 - map.m12 * map.m21));
    stroke.width = pen.lopnWidth.x * scale;
    if (stroke.style == PS_INSIDEFRAME) stroke.style = PS_SOLID;
    stroke.opaqueGaps = state.backgroundMode == OPAQUE;
    stroke.gapColor = state.backgroundColor;
    return stroke;
}

template <typename Points>
Figure deviceFigure(const DeviceContext& context, const Points& points, bool closed, bool curved = false) {
    const Affine map = context.toDevice();
    Figure figure;
    figure.closed = closed;
    figure.curved = curved;
    for (const POINT& point : points) figure.points.push_back(devicePoint(map, point.x, point.y));
    return figure;
}

void drawLines(DeviceContext& context, Canvas& canvas, const Figures& figures) {
    if (context.path.isOpen()) {
        context.path.append(figures);
        return;
    }
    const Stroke stroke = currentStroke(context);
    if (stroke.style != PS_NULL) canvas.stroke(context.clipArea(), figures, stroke);
}

void fillSurface(DeviceContext& context, Canvas& canvas, const Figures& figures) {
    const Brush& brush = *context.state.brush;
    if (!brush.hollow()) canvas.fill(context.clipArea(), figures, context.state.fillMode, brush.color());
}

/// The inside with the brush, then the outline with the pen.
void drawSurface(DeviceContext& context, Canvas& canvas, const Figures& figures) {
    if (!context.path.isOpen()) fillSurface(context, canvas, figures);
    drawLines(context, canvas, figures);
}

/// The rectangle of Rectangle and Ellipse on the device.
struct Box {
    Corners corners;
    std::optional<RECT> pixels;  ///< right and bottom exclusive; nothing where the device context turns or shears
};

/// A pen that draws inside the frame moves the outline in by half its width; an even one lies more to the left and top.
/// A path knows no pen.
RECT insetForPen(const DeviceContext& context, const RECT& rect) {
    if (context.path.isOpen() || context.state.pen->description().lopnStyle != PS_INSIDEFRAME) return rect;
    const LONG width = std::max(roundToDevice(currentStroke(context).width), 1);
    const LONG before = width / 2;
    const LONG behind = (width - 1) / 2;
    return {rect.left + before, rect.top + before, rect.right - behind, rect.bottom - behind};
}

/// Right and bottom edges do not belong to the logical rectangle, but in the advanced graphics mode they do. Nothing
/// for an empty one.
std::optional<Box> deviceBox(const DeviceContext& context, int left, int top, int right, int bottom) {
    const Affine map = context.toDevice();
    if (!map.axisAligned()) {
        if (left == right || top == bottom) return std::nullopt;
        return Box{{map(right, top), map(left, top), map(left, bottom), map(right, bottom)}, std::nullopt};
    }
    const LONG more = context.state.graphicsMode == GM_ADVANCED ? 1 : 0;
    const POINT a = roundToDevice(map(left, top));
    const POINT b = roundToDevice(map(right, bottom));
    RECT pixels{std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x) + more, std::max(a.y, b.y) + more};
    if (isEmpty(pixels)) return std::nullopt;
    pixels = insetForPen(context, pixels);
    return Box{cornersOf(pixels), pixels};
}

void drawEllipse(DeviceContext& context, Canvas& canvas, const Box& box) {
    if (!box.pixels || context.path.isOpen()) {
        drawSurface(context, canvas, {ellipseFigure(box.corners)});
        return;
    }
    const Brush& brush = *context.state.brush;
    const COLORREF color = brush.color();
    canvas.ellipse(context.clipArea(), *box.pixels, currentStroke(context), brush.hollow() ? nullptr : &color);
}

/// Draws the complete path with `draw`; false where there is none.
template <typename Draw>
BOOL drawPath(HDC dc, const Draw& draw) {
    return withCanvas(dc, FALSE, [&](DeviceContext& context, Canvas& canvas) {
        const std::optional<Figures> figures = context.path.take();
        if (!figures) return FALSE;
        draw(context, canvas, *figures);
        return TRUE;
    });
}

struct PointList {
    [[nodiscard]] const POINT* begin() const { return points; }
    [[nodiscard]] const POINT* end() const { return points + count; }
    const POINT* points;
    int count;
};

}  // namespace

}  // namespace zolgdi

using zolgdi::Canvas;
using zolgdi::DeviceContext;
using zolgdi::guarded;
using zolgdi::PointList;
using zolgdi::withCanvas;
using zolgdi::withDc;

HPEN CreatePenIndirect(const LOGPEN* pen) {
    return pen != nullptr ? CreatePen(static_cast<int>(pen->lopnStyle), pen->lopnWidth.x, pen->lopnColor) : nullptr;
}

HPEN CreatePen(int style, int width, COLORREF color) {
    return guarded(nullptr, [&]() -> HPEN {
        if (style < PS_SOLID || style > PS_INSIDEFRAME) return nullptr;
        LOGPEN pen{
            static_cast<UINT>(style), {width == std::numeric_limits<int>::min() ? 0 : std::abs(width), 0}, color};
        // Only thin lines have dashes.
        if (pen.lopnWidth.x > 1 && style != PS_NULL && style != PS_INSIDEFRAME) pen.lopnStyle = PS_SOLID;
        return zolgdi::publish<HPEN>(std::make_shared<zolgdi::Pen>(pen));
    });
}

HBRUSH CreateSolidBrush(COLORREF color) {
    return guarded(nullptr, [&] {
        return zolgdi::publish<HBRUSH>(std::make_shared<zolgdi::Brush>(LOGBRUSH{BS_SOLID, color, 0}));
    });
}

BOOL MoveToEx(HDC dc, int x, int y, LPPOINT previous) {
    return withDc(dc, FALSE, [&](DeviceContext& context) {
        if (previous != nullptr) *previous = context.state.position;
        context.state.position = {x, y};
        context.path.move();
        return TRUE;
    });
}

BOOL GetCurrentPositionEx(HDC dc, LPPOINT position) {
    return withDc(dc, FALSE, [&](DeviceContext& context) {
        if (position == nullptr) return FALSE;
        *position = context.state.position;
        return TRUE;
    });
}

BOOL LineTo(HDC dc, int x, int y) {
    return withCanvas(dc, FALSE, [&](DeviceContext& context, Canvas& canvas) {
        const POINT points[] = {context.state.position, {x, y}};
        const zolgdi::Figure line = zolgdi::deviceFigure(context, points, false);
        if (context.path.isOpen()) {
            context.path.line(line.points.front(), line.points.back());
        } else {
            zolgdi::drawLines(context, canvas, {line});
        }
        context.state.position = {x, y};
        return TRUE;
    });
}

BOOL Polyline(HDC dc, const POINT* points, int count) {
    if (points == nullptr || count < 2) return FALSE;
    return withCanvas(dc, FALSE, [&](DeviceContext& context, Canvas& canvas) {
        zolgdi::drawLines(context, canvas, {zolgdi::deviceFigure(context, PointList{points, count}, false)});
        return TRUE;
    });
}

BOOL Polygon(HDC dc, const POINT* points, int count) {
    if (points == nullptr || count < 2) return FALSE;
    return withCanvas(dc, FALSE, [&](DeviceContext& context, Canvas& canvas) {
        zolgdi::drawSurface(context, canvas, {zolgdi::deviceFigure(context, PointList{points, count}, true)});
        return TRUE;
    });
}

BOOL PolyBezier(HDC dc, const POINT* points, DWORD count) {
    if (points == nullptr || count < 4 || count % 3 != 1 || count > 0x7FFFFFFFU) return FALSE;
    return withCanvas(dc, FALSE, [&](DeviceContext& context, Canvas& canvas) {
        const PointList list{points, static_cast<int>(count)};
        zolgdi::drawLines(context, canvas, {zolgdi::deviceFigure(context, list, false, true)});
        return TRUE;
    });
}

BOOL Rectangle(HDC dc, int left, int top, int right, int bottom) {
    return withCanvas(dc, FALSE, [&](DeviceContext& context, Canvas& canvas) {
        if (const auto box = zolgdi::deviceBox(context, left, top, right, bottom)) {
            // Without a pen the outline's place stays empty on the right and at the bottom, as a polygon's does.
            const zolgdi::Corners& corners = box->corners;
            zolgdi::drawSurface(context, canvas, {{{corners.begin(), corners.end()}, false, true}});
        }
        return TRUE;
    });
}

BOOL Ellipse(HDC dc, int left, int top, int right, int bottom) {
    return withCanvas(dc, FALSE, [&](DeviceContext& context, Canvas& canvas) {
        if (const auto box = zolgdi::deviceBox(context, left, top, right, bottom)) {
            zolgdi::drawEllipse(context, canvas, *box);
        }
        return TRUE;
    });
}

BOOL StrokePath(HDC dc) { return zolgdi::drawPath(dc, zolgdi::drawLines); }

BOOL FillPath(HDC dc) { return zolgdi::drawPath(dc, zolgdi::fillSurface); }

BOOL StrokeAndFillPath(HDC dc) {
    return zolgdi::drawPath(dc, [](DeviceContext& context, Canvas& canvas, zolgdi::Figures figures) {
        for (zolgdi::Figure& figure : figures) figure.closed = true;
        zolgdi::drawSurface(context, canvas, figures);
    });
}
