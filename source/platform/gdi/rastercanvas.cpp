#include "platform/gdi/rastercanvas.h"

#include "platform/gdi/coverage.h"
#include "platform/gdi/figures.h"
#include "platform/gdi/pixelcopy.h"
#include "platform/gdi/pixelruns.h"
#include "platform/gdi/strokes.h"
#include "platform/gdi/textlayout.h"

#include <algorithm>

namespace zolgdi {

void RasterCanvas::paint(const Area& clip, BYTE rop, COLORREF color) { paintPixels(pixels_, clip, rop, color); }

void RasterCanvas::picture(const Area& clip, const Picture& picture, BYTE rop, COLORREF pattern) {
    copyPixels(pixels_, clip, picture, rop, pattern);
}

void RasterCanvas::fill(const Area& clip, const Figures& figures, int fillMode, COLORREF color) {
    const RECT bounds = clip.bounds();
    scanSurface(figures, fillMode, bounds.top, bounds.bottom,
                [&](LONG y, LONG left, LONG right) { paintRun(clip, y, left, right, color); });
}

void RasterCanvas::stroke(const Area& clip, const Figures& figures, const Stroke& stroke) {
    strokeFigures(pixels_, clip, figures, stroke);
}

void RasterCanvas::ellipse(const Area& clip, const RECT& box, const Stroke& stroke, const COLORREF* fillColor) {
    const RECT bounds = intersection(clip.bounds(), box);
    const EllipseRows rows(box);
    const auto span = [&](LONG y, LONG left, LONG right, COLORREF color) {
        if (left < right) paintRun(clip, y, left, right, color);
    };
    const bool thin = stroke.style == PS_SOLID && isThin(stroke.width);
    for (LONG y = bounds.top; y < bounds.bottom; ++y) {
        const auto [left, right] = rows.row(y);
        if (fillColor != nullptr) span(y, left, right, *fillColor);
        if (!thin) continue;
        // The outline: pixels with a neighbour outside.
        const auto above = rows.row(y - 1);
        const auto below = rows.row(y + 1);
        const LONG innerLeft = std::max({left + 1, above.first, below.first});
        const LONG innerRight = std::min({right - 1, above.second, below.second});
        const bool hollow = above.first < above.second && below.first < below.second && innerLeft < innerRight;
        span(y, left, hollow ? innerLeft : right, stroke.color);
        if (hollow) span(y, innerRight, right, stroke.color);
    }
    if (thin || stroke.style == PS_NULL) return;
    this->stroke(clip, {ellipseFigure(cornersOf(box))}, stroke);
}

void RasterCanvas::text(const Area& clip, const TextRun& run) {
    const TextLine& line = TextLine::shaped(*run.font, run.dpi, false, run.text);
    const Affine placement = line.placed(run.transform);
    if (run.opaque) fill(clip, {line.cell(placement)}, ALTERNATE, run.background);
    const RECT extent = line.extent(placement);
    paintCoverage(pixels_, clip, extent, run.color, [&](cairo_t* cairo) { line.draw(cairo, placement); });
}

void RasterCanvas::paintRun(const Area& clip, LONG y, LONG left, LONG right, COLORREF color) {
    paint(clip.intersected(Area(RECT{left, y, right, y + 1})), ropIndex(PATCOPY), color);
}

}  // namespace zolgdi
