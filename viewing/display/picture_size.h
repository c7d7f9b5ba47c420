// How large a picture of an image becomes when no size is asked for.
#pragma once

#include "viewing/display/settings.h"
#include "viewing/image/stored_image.h"

namespace viewing {

/// Whether a turn by so many degrees exchanges width and height: a quarter or three quarters, to within a degree.
bool isQuarterTurn(double degrees);

/// The size at which one pixel of the image becomes about one pixel of the picture: narrow pixels are widened to square
/// ones, and a quarter turn exchanges width and height. It is smaller where the longer side would be longer than
/// `longest` pixels or the picture larger than maxPixels. Both sides are at least 1.
Size ownSize(const StoredImage& image, double degrees, double longest);

/// The size of a picture for which none was asked: the image's own size, at most 2048 pixels on the longer side.
Size defaultSize(const StoredImage& image, double degrees);

}  // namespace viewing
