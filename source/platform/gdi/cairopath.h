// Figures as Cairo's paths.
#pragma once

#include "platform/gdi/canvas.h"

#include <cairo.h>

namespace zolgdi {

/// Appends figures to Cairo's path, moved by `shift` pixels to the right and down.
void appendPath(cairo_t* cairo, const Figures& figures, double shift);

}  // namespace zolgdi
