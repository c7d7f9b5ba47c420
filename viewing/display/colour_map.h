// The library's colour maps, set up for an image.
#pragma once

#include "viewing/image/colour_image.h"
#include "viewing/image/window.h"
#include "zolcs/ccsmap.h"

#include <memory>
#include <optional>

class CCsImage;

namespace viewing {

/// The map for a colour image, which the caller owns: each channel through a window over its stored values of 8 or 12
/// bits, or as it is. Refuses when there is no memory.
std::unique_ptr<IMap> makeColourMap(const ColourImage& image, const std::optional<Window>& window);

/// Maps the image's pixels into a CCS_RGB8 image of its size.
void mapColours(const ColourImage& image, const std::optional<Window>& window, CCsImage& display);

}  // namespace viewing
