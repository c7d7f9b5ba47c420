// Overlay planes in the pixels' spare bits as planes of their own.
#pragma once

#include "viewing/image/stored_image.h"

namespace viewing {

/// The same grey image of 12 bits without embedded planes: they lie below the planes that were separate before,
/// graphics on top, as the library shows them in either place.
StoredImage withSeparatePlanes(StoredImage image);

}  // namespace viewing
