// An image on a page of a PDF file: the image's own pixels, and annotations as lines and letters.
#pragma once

#include "viewing/display/settings.h"
#include "viewing/image/refusal.h"
#include "viewing/image/stored_image.h"
#include "viewing/output/page_settings.h"

#include <string>
#include <vector>

namespace viewing {

/// Writes a page with the image in its middle, one printed pixel for each pixel of the image (narrow pixels are widened
/// to square ones). The settings are those of render, but for `size`, which does not count; the printed area turns with
/// the image by quarters. Adds one line to `notes` for each thing that was done otherwise than asked. Refuses what
/// render refuses, true size without a pixel spacing or for more than the page holds, and files that cannot be written;
/// no half-written file is left behind. Not reentrant, as render.
void print(const StoredImage& image, const DisplaySettings& settings, const PageSettings& page, const std::string& path,
           std::vector<std::string>& notes);

}  // namespace viewing
