// The built-in test picture: everything that an image can carry, and marks that show when something is lost or turned.
#pragma once

#include "viewing/image/stored_image.h"

namespace viewing {

/// 640 x 512 levels of 12 bits, the same everywhere: made of integers only.
StoredImage makePhantom();

}  // namespace viewing
