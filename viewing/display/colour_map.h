// The library's colour maps, set up for an image.
#pragma once

#include "viewing/image/stored_image.h"
#include "zolcs/ccsmap.h"

#include <memory>
#include <optional>

class CCsImage;

namespace viewing {

/// The map for a colour image: each channel through a window over its stored values of 8 or 12 bits, or as it is.
std::unique_ptr<IMap> makeColourMap(const StoredImage& image, const std::optional<Window>& window);

/// The image's pixels through that map into a CCS_RGB8 image of its size.
void mapColours(const StoredImage& image, const std::optional<Window>& window, CCsImage& display);

}  // namespace viewing
