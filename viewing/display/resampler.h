// The library's resamplers, one for each interpolation.
#pragma once

#include "viewing/display/settings.h"

class CCs2dTrafo;
class CCsImage;
class CCsRaster;
class IMap;

namespace viewing {

/// What the library offers for one interpolation. Functions by the image primitives return 255, or another number, with
/// a report, where the primitives cannot draw the view.
struct Resampler {
    /// A grey raster with its shutters, planes and padding through a map. The background is one byte in the blue of a
    /// pixel, which padding has, too.
    void (*grey)(CCsRaster& raster, CCsImage& frame, CCs2dTrafo& view, IMap& map, unsigned char* padding);
    /// Display colours; the background is a display pixel.
    void (*colours)(CCsRaster& raster, CCsImage& frame, CCs2dTrafo& view, unsigned long background);
    /// Values of 12 bits, kept in a raster of 16 bits, by the image primitives; the background is 0.
    int (*greyByPrimitives)(CCsRaster& values, CCsRaster& picture, CCs2dTrafo& view);
    /// Display colours by the image primitives; the background is a grey.
    int (*coloursByPrimitives)(CCsRaster& raster, CCsImage& frame, CCs2dTrafo& view, unsigned char background);
    /// `grey` counts only a part of the vertical position of 12-bit pixels, so that they have to be taken for 16-bit
    /// ones, in which embedded planes have no place.
    bool takesGrey16;
};

/// The resampler of an interpolation.
const Resampler& resamplerFor(Interpolation interpolation);

}  // namespace viewing
