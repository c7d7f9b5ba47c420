// The built-in test image: all that a grey image can carry, and marks that show when something is lost or turned.
#pragma once

#include "viewing/image/stored_image.h"

namespace viewing {

/// A grey image of 640 x 512 pixels and 12 bits with shutters, padding, two overlay planes and an embedded one, and a
/// window of all levels. It is made of integers only, and so the same on every machine.
StoredImage makePhantom();

}  // namespace viewing
