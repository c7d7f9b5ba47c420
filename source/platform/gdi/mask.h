// Coverage drawn by Cairo, to be painted in one colour on pixel memory of any layout.
#pragma once

#include "platform/gdi/canvas.h"

#include <cairo.h>

#include <functional>

namespace zolgdi {

/// Calls a library's function to give back an object of that library.
template <auto Release>
struct ReleaseWith {
    template <typename T>
    void operator()(T* object) const {
        Release(object);
    }
};
using CairoSurface = std::unique_ptr<cairo_surface_t, ReleaseWith<&cairo_surface_destroy>>;
using CairoContext = std::unique_ptr<cairo_t, ReleaseWith<&cairo_destroy>>;

/// Lets `draw` cover pixels inside `clip` (in device pixels), then paints the colour where it did. The fourth byte of
/// painted pixels becomes 0.
void paintCoverage(const Pixels& to, const Area& clip, const RECT& extent, COLORREF color,
                   const std::function<void(cairo_t*)>& draw);

/// Appends straight-lined or curved figures to Cairo's path.
void appendPath(cairo_t* cairo, const Figures& figures, double shift);

}  // namespace zolgdi
