// The way of one image through the drawing library: raster, transformation, grey map, resampling, frame.
#pragma once

#include "viewing/display/settings.h"
#include "viewing/image/refusal.h"
#include "viewing/image/stored_image.h"
#include "zolcs/ccs2dtrafo.h"

#include <string>
#include <vector>

class CCsFrame;

namespace viewing {

/// Draws the image, with what is burnt into it, into a frame that has its size and its memory. Returns the view, which
/// annotations over the picture need. A ReportLog must live during the call. Adds one line to `notes` for each thing
/// that was done otherwise than asked. Refuses what cannot be drawn; throws an int, as rasters do, when an image gets
/// no memory.
CCs2dTrafo drawImage(const StoredImage& image, const DisplaySettings& settings, std::vector<std::string>& notes,
                     CCsFrame& frame);

/// The annotations that are drawn over the picture: none when they are burnt into the image.
std::vector<Annotation> drawnOver(const DisplaySettings& settings);

/// The refusal of an image and a picture that do not fit into memory together.
Refusal noMemory(const StoredImage& image, Size picture);

}  // namespace viewing
