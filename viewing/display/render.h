// The road of one image through the library: raster, transformation, grey map, resampling, frame, window.
#pragma once

#include "viewing/display/render_options.h"
#include "viewing/image/picture.h"
#include "viewing/image/stored_image.h"
#include "zolcs/ccs2dtrafo.h"

#include <string>
#include <vector>

class CCsFrame;

namespace viewing {

/// Whether such a turn exchanges width and height: to within a degree, a quarter or three.
bool isQuarterTurn(double degrees);

/// The size at which one image pixel becomes about one pixel of the picture, narrow pixels being widened to square ones
/// and width and height exchanged by a quarter turn; smaller where the longer side would pass `longest`.
Size ownSize(const StoredImage& image, double degrees, double longest);

/// The size of a picture for which none was asked: its own, at most 2048 on the longer side.
Size defaultSize(const StoredImage& image, double degrees);

/// Draws the image, with what is burnt into it, into a frame that has its size. Gives the view. Refuses, and adds to
/// `notes`, as render does.
CCs2dTrafo drawImage(const StoredImage& image, const RenderOptions& options, std::vector<std::string>& notes,
                     CCsFrame& frame);

/// The annotations that are drawn over the picture: none when they are burnt in.
inline std::vector<Annotation> drawnOver(const RenderOptions& options) {
    return options.burnIn ? std::vector<Annotation>() : options.annotations;
}

/// What to say when an image and a picture of that size do not fit into memory.
Refusal noMemory(const StoredImage& image, Size size);

/// Paints the image into a window of the wanted size and gives back the window's pixels. Refuses an image that cannot
/// be shown without a window where none is given. Adds a line to `notes` for what was done otherwise than asked.
Picture render(const StoredImage& image, const RenderOptions& options, std::vector<std::string>& notes);

}  // namespace viewing
