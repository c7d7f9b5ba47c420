// The road of one image through the library: raster, transformation, grey map, resampling, frame, window.
#pragma once

#include "picture.h"
#include "render_options.h"
#include "stored_image.h"

#include <string>
#include <vector>

namespace zolview {

/// The size of a picture for which none was asked: one image pixel becomes about one pixel of the picture, narrow
/// pixels are widened to square ones, a quarter turn exchanges width and height, and the longer side is at most 2048.
Size defaultSize(const StoredImage& image, double degrees);

/// Paints the image into a window of the wanted size and gives back the window's pixels. Refuses an image that cannot
/// be shown without a window where none is given. Adds a line to `notes` for what was done otherwise than asked.
Picture render(const StoredImage& image, const RenderOptions& options, std::vector<std::string>& notes);

}  // namespace zolview
