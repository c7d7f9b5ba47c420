// From a window in output units to the integer window of a map.
#pragma once

#include "viewing/image/stored_image.h"

#include <optional>

namespace viewing {

/// The settings of a map.
struct RasterWindow {
    int centre = 0;
    int width = 1;
    bool sigmoid = false;

    bool operator==(const RasterWindow&) const = default;
};

/// The straight line from black to white, in output units. A value at or below `black` is black, one above `white` is
/// white, also where both are the same.
struct GreyLine {
    double black = 0.0;
    double white = 0.0;
};

/// True when a window of this width can be applied: a straight line over pixel values needs at least one value.
bool isUsable(const Window& window, WindowFunction function);

/// The line that DICOM defines for a straight window; of a sigmoid, the line that it clings to in the middle.
GreyLine lineOf(const Window& window, WindowFunction function);

/// The map's window that comes nearest to a line in levels from `black` up to `white`, of `levels` levels in all.
RasterWindow straightWindow(double black, double white, int levels);

/// The map's window that comes nearest to a usable window on levels of which level 0 has the output `first` and each
/// next one `slope` more, which is positive.
RasterWindow toRasterWindow(const Window& window, WindowFunction function, double first, double slope, int levels);

}  // namespace viewing
