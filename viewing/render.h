// An image as a picture in memory.
#pragma once

#include "viewing/display/settings.h"
#include "viewing/image/picture.h"
#include "viewing/image/refusal.h"
#include "viewing/image/stored_image.h"

#include <string>
#include <vector>

namespace viewing {

/// Draws the image as the settings ask for, with its overlay planes, shutters and annotations, and returns the picture,
/// which the caller owns. Its size is settings.size, or defaultSize where none is given. Adds one line to `notes` for
/// each thing that was done otherwise than asked. Refuses an image and picture that do not fit into memory. Not
/// reentrant: one thread of a process renders or prints at a time, since the drawing library reports to one place.
Picture render(const StoredImage& image, const DisplaySettings& settings, std::vector<std::string>& notes);

}  // namespace viewing
