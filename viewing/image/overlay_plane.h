// Overlay planes: one bit per pixel that marks graphics or a region of interest (DICOM PS3.3 C.9.2).
#pragma once

#include "viewing/image/bit_plane.h"
#include "viewing/image/shutters.h"

namespace viewing {

/// What an overlay plane marks. Each kind has its own colour on the display.
enum class PlaneKind { Graphics, RegionOfInterest };

/// An overlay plane that lies entirely inside its image.
struct OverlayPlane {
    Point origin;  ///< the image pixel of the plane's first bit
    BitPlane bits;
    PlaneKind kind = PlaneKind::Graphics;
};

/// An overlay plane that is stored in one bit of the samples of a grey image of 12 bits.
struct EmbeddedPlane {
    int bit = 12;  ///< 12 to 15
    PlaneKind kind = PlaneKind::Graphics;
};

}  // namespace viewing
