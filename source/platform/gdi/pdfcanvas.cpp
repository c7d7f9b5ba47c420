#include "platform/gdi/pdfcanvas.h"

#include "platform/gdi/cairopath.h"
#include "platform/gdi/cairoscope.h"
#include "platform/gdi/dashes.h"
#include "platform/gdi/figures.h"
#include "platform/gdi/rectangle.h"
#include "platform/gdi/textlayout.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <vector>

namespace zolgdi {

namespace {

void setSource(cairo_t* cairo, COLORREF color) {
    cairo_set_source_rgb(cairo, GetRValue(color) / 255.0, GetGValue(color) / 255.0, GetBValue(color) / 255.0);
}

/// Draws inside an area, with Cairo's state restored afterwards.
template <typename Draw>
void drawInside(cairo_t* cairo, const Area& clip, const Draw& draw) {
    if (clip.empty()) return;
    cairo_save(cairo);
    for (const RECT& rect : clip.rects()) {
        cairo_rectangle(cairo, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top);
    }
    cairo_clip(cairo);
    draw();
    cairo_restore(cairo);
}

/// The colour that a raster operation leaves on white paper when its source is white, too: pages cannot be read back.
COLORREF onPaper(BYTE rop, COLORREF pattern) {
    if (rop == ropIndex(BLACKNESS) || rop == ropIndex(DSTINVERT)) return RGB(0, 0, 0);
    return ropUsesPattern(rop) ? pattern : RGB(255, 255, 255);
}

/// A part of a picture's pixels as an image of Cairo's.
CairoSurface copyOf(const Picture& picture, const RECT& source) {
    CairoSurface image(
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, source.right - source.left, source.bottom - source.top));
    if (cairo_surface_status(image.get()) != CAIRO_STATUS_SUCCESS) throw std::bad_alloc();
    BYTE* out = cairo_image_surface_get_data(image.get());
    const std::ptrdiff_t stride = cairo_image_surface_get_stride(image.get());
    const int bytes = picture.pixels.bytes;
    for (LONG y = source.top; y < source.bottom; ++y, out += stride) {
        const BYTE* in = picture.pixels.at(source.left, y);
        for (LONG x = 0; x < source.right - source.left; ++x, in += bytes) {
            std::memcpy(out + static_cast<std::ptrdiff_t>(x) * 4, in, 3);
        }
    }
    cairo_surface_mark_dirty(image.get());
    return image;
}

/// Only pens of one dot have dashes, which are as many dots long as they are pixels long on a screen.
void setDashes(cairo_t* cairo, UINT style) {
    const std::span<const int> pixels = dashesOf(style);
    const std::vector<double> lengths(pixels.begin(), pixels.end());
    cairo_set_dash(cairo, lengths.data(), static_cast<int>(lengths.size()), 0.0);
}

}  // namespace

void PdfCanvas::paint(const Area& clip, BYTE rop, COLORREF color) {
    drawInside(cairo_, clip, [&] {
        setSource(cairo_, onPaper(rop, color));
        cairo_paint(cairo_);
    });
}

/// The pixels go into the file at their own resolution and are scaled where they are shown.
void PdfCanvas::picture(const Area& clip, const Picture& picture, BYTE /*rop*/, COLORREF /*pattern*/) {
    const RECT source = intersection({0, 0, picture.pixels.width, picture.pixels.height},
                                     {picture.x, picture.y, picture.x + picture.width, picture.y + picture.height});
    if (isEmpty(source)) return;
    const CairoSurface image = copyOf(picture, source);
    const RECT& to = picture.destination;
    const double scaleX = static_cast<double>(to.right - to.left) / picture.width;
    const double scaleY = static_cast<double>(to.bottom - to.top) / picture.height;
    drawInside(cairo_, clip.intersected(Area(to)), [&] {
        cairo_translate(cairo_, picture.mirrorX ? to.right : to.left, picture.mirrorY ? to.bottom : to.top);
        cairo_scale(cairo_, picture.mirrorX ? -scaleX : scaleX, picture.mirrorY ? -scaleY : scaleY);
        cairo_set_source_surface(cairo_, image.get(), source.left - picture.x, source.top - picture.y);
        cairo_pattern_set_filter(cairo_get_source(cairo_), CAIRO_FILTER_NEAREST);
        cairo_rectangle(cairo_, source.left - picture.x, source.top - picture.y, source.right - source.left,
                        source.bottom - source.top);
        cairo_fill(cairo_);
    });
}

void PdfCanvas::fill(const Area& clip, const Figures& figures, int fillMode, COLORREF color) {
    drawInside(cairo_, clip, [&] {
        setSource(cairo_, color);
        cairo_set_fill_rule(cairo_, fillMode == WINDING ? CAIRO_FILL_RULE_WINDING : CAIRO_FILL_RULE_EVEN_ODD);
        appendPath(cairo_, surfacesWithin(figures, cairoLimit), 0.5);
        cairo_fill(cairo_);
    });
}

void PdfCanvas::stroke(const Area& clip, const Figures& figures, const Stroke& stroke) {
    if (stroke.style == PS_NULL) return;
    drawInside(cairo_, clip, [&] {
        const double width = std::max(stroke.width, 1.0);
        cairo_set_line_cap(cairo_, width > 1.0 ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
        cairo_set_line_join(cairo_, CAIRO_LINE_JOIN_ROUND);
        cairo_set_line_width(cairo_, std::min(width, cairoLimit));
        const Figures lines = linesWithin(figures, cairoLimit);
        if (stroke.style != PS_SOLID && stroke.opaqueGaps) strokePath(lines, stroke.gapColor);
        setDashes(cairo_, stroke.style);
        strokePath(lines, stroke.color);
    });
}

void PdfCanvas::ellipse(const Area& clip, const RECT& box, const Stroke& stroke, const COLORREF* fillColor) {
    const Figures figures{ellipseFigure(cornersOf(box))};
    if (fillColor != nullptr) fill(clip, figures, ALTERNATE, *fillColor);
    this->stroke(clip, figures, stroke);
}

void PdfCanvas::text(const Area& clip, const TextRun& run) {
    const TextLine& line = TextLine::shaped(*run.font, run.dpi, true, run.text);
    const Affine placement = line.placed(run.transform);
    if (isEmpty(intersection(line.extent(placement), clip.bounds()))) return;
    if (run.opaque) fill(clip, {line.cell(placement)}, ALTERNATE, run.background);
    drawInside(cairo_, clip, [&] {
        setSource(cairo_, run.color);
        line.draw(cairo_, placement);
    });
}

void PdfCanvas::strokePath(const Figures& figures, COLORREF color) {
    setSource(cairo_, color);
    appendPath(cairo_, figures, 0.5);
    cairo_stroke(cairo_);
}

}  // namespace zolgdi
