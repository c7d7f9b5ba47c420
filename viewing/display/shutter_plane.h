// The pixels that shutters hide.
#pragma once

#include "viewing/image/bit_plane.h"
#include "viewing/image/shutters.h"

namespace viewing {

/// A set bit for each pixel of an image of width by height that lies outside any of the shutters (PS3.3, C.7.6.11). A
/// pixel counts where its centre lies, and edges belong to what is visible: the rectangle's and the polygon's, with its
/// vertices, and the circle's rim. Crossing edges of a polygon enclose by the even-odd rule. The circle's radius counts
/// columns, and rows of `ratioYx` columns. Takes time in proportion to the pixels, and to rows times vertices.
BitPlane hiddenPixels(const Shutters& shutters, int width, int height, double ratioYx);

}  // namespace viewing
