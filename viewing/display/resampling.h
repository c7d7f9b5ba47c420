// From the image's pixels to the picture's, by the interpolation that is asked for.
#pragma once

#include "viewing/display/raster_setup.h"
#include "viewing/display/settings.h"

#include <memory>
#include <string>
#include <vector>

class CCsFrame;
class CCs2dTrafo;
class IGreyMap;

namespace viewing {

/// The grey of what lies outside the image, as a display pixel.
constexpr unsigned long backgroundPixel(int grey) { return static_cast<unsigned long>(grey) * 0x010101UL; }

/// Whether a grey image is mapped to display colours before it is resampled: with 16-bit levels, since the table that
/// resampling is given by a map repeats entries of the first 12 bits further up; and for the primitives when there is
/// more than values to show, which they know nothing of.
bool mapsFirst(RasterSetup& setup, const DisplaySettings& settings);

/// The whole raster of greys in display colours, with all that belongs to it.
std::unique_ptr<CCsRaster> mapWhole(RasterSetup& setup, IGreyMap& map);

/// Fills the frame with a raster of greys. Adds to `notes` when the primitives could not draw it.
void resampleGrey(RasterSetup& setup, CCsFrame& frame, CCs2dTrafo& view, IGreyMap& map, const DisplaySettings& settings,
                  std::vector<std::string>& notes);

/// Fills the frame with a raster of display colours. Adds to `notes` as above.
void resampleColours(CCsRaster& raster, CCsFrame& frame, CCs2dTrafo& view, const DisplaySettings& settings,
                     std::vector<std::string>& notes);

}  // namespace viewing
