#include "platform/gdi/coverage.h"

#include "platform/gdi/cairoscope.h"

namespace zolgdi {

namespace {

BYTE mix(BYTE below, BYTE above, unsigned int coverage) {
    const unsigned int sum = below * (255U - coverage) + above * coverage;
    return static_cast<BYTE>((sum + 127U) / 255U);
}

void paintPixel(BYTE* pixel, int bytes, COLORREF color, unsigned int coverage) {
    pixel[0] = mix(pixel[0], GetBValue(color), coverage);
    pixel[1] = mix(pixel[1], GetGValue(color), coverage);
    pixel[2] = mix(pixel[2], GetRValue(color), coverage);
    if (bytes == 4) pixel[3] = 0;
}

}  // namespace

void paintCoverage(const Pixels& to, const Area& clip, const RECT& extent, COLORREF color,
                   const std::function<void(cairo_t*)>& draw) {
    const RECT box = intersection(clip.bounds(), extent);
    if (isEmpty(box)) return;
    const CairoSurface surface(cairo_image_surface_create(CAIRO_FORMAT_A8, box.right - box.left, box.bottom - box.top));
    const CairoContext context(cairo_create(surface.get()));
    if (cairo_status(context.get()) != CAIRO_STATUS_SUCCESS) throw std::bad_alloc();
    cairo_translate(context.get(), -box.left, -box.top);
    draw(context.get());
    cairo_surface_flush(surface.get());
    const BYTE* coverage = cairo_image_surface_get_data(surface.get());
    const std::ptrdiff_t stride = cairo_image_surface_get_stride(surface.get());
    const Area inside = clip.intersected(Area(box));
    for (const RECT& rect : inside.rects()) {
        for (LONG y = rect.top; y < rect.bottom; ++y) {
            const BYTE* in = coverage + (y - box.top) * stride - box.left;
            for (LONG x = rect.left; x < rect.right; ++x) {
                if (in[x] != 0) paintPixel(to.at(x, y), to.bytes, color, in[x]);
            }
        }
    }
}

}  // namespace zolgdi
