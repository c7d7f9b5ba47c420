// From the image's pixels to the picture's, with the interpolation that is asked for.
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

/// Whether a grey image is mapped to display colours before it is resampled: one of 16-bit levels, since the table that
/// a map gives to the resamplers repeats the entries of the first 12 bits further up; and one that the image primitives
/// are to draw with shutters, planes or padding, of which they know nothing.
bool mapsFirst(RasterSetup& setup, const DisplaySettings& settings);

/// The whole raster of greys in display colours, with its shutters, planes and padding. The caller owns it.
std::unique_ptr<CCsRaster> mapWhole(RasterSetup& setup, IGreyMap& map);

/// Draws a raster of greys into the frame. Adds a note when the image primitives were asked for and could not draw it.
void resampleGrey(RasterSetup& setup, CCsFrame& frame, CCs2dTrafo& view, IGreyMap& map, const DisplaySettings& settings,
                  std::vector<std::string>& notes);

/// Draws a raster of display colours into the frame. Adds a note as above.
void resampleColours(CCsRaster& raster, CCsFrame& frame, CCs2dTrafo& view, const DisplaySettings& settings,
                     std::vector<std::string>& notes);

}  // namespace viewing
