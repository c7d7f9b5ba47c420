// Windows in output units as the integer windows of the library's maps.
#pragma once

#include "viewing/image/window.h"

namespace viewing {

/// The window of a map, in levels of the raster.
struct RasterWindow {
    int centre = 0;
    int width = 1;
    bool sigmoid = false;

    bool operator==(const RasterWindow&) const = default;
};

/// The map's window that comes nearest to a straight line in levels from `black` up to `white`, of `levels` levels in
/// all.
RasterWindow straightWindow(double black, double white, int levels);

/// The map's window that comes nearest to a usable window, for levels of which level 0 has the output `first` and each
/// next one `slope` more. `slope` is positive.
RasterWindow toRasterWindow(const VoiWindow& voi, double first, double slope, int levels);

}  // namespace viewing
