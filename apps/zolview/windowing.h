// From a window in output units to the integer window of a 12-bit grey map.
#pragma once

#include "stored_image.h"

namespace zolview {

/// The settings of the grey map.
struct RasterWindow {
    int centre = 0;
    int width = 1;
    bool sigmoid = false;
    /// The window runs downwards: low levels are white.
    bool reversed = false;
    /// A sigmoid was asked for that the map would not draw as defined, and its straight line is shown instead.
    bool sigmoidReplaced = false;

    bool operator==(const RasterWindow&) const = default;
};

/// True when a window of this width can be applied: a straight line over pixel values needs at least one value.
bool isUsable(const Window& window, WindowFunction function);

/// The map's window for a usable window on this image's levels.
RasterWindow toRasterWindow(const StoredImage& image, const Window& window, WindowFunction function);

/// The map's window from the image's smallest to its largest level.
RasterWindow fullRange(const StoredImage& image);

}  // namespace zolview
