// Owners for the objects of Cairo and Pango.
#pragma once

#include <cairo.h>

#include <memory>

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

}  // namespace zolgdi
