#include "viewing/display/resampler.h"

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsbicubic.h"
#include "zolcs/ccsbilinear.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsnearest.h"
#include "zolcs/ccsraster.h"

#include <array>
#include <cstddef>

namespace viewing {

namespace {

using Raster = CCsRaster;
using Image = CCsImage;
using View = CCs2dTrafo;

constexpr Resampler nearest{[](Raster& raster, Image& frame, View& view, IMap& map, unsigned char* padding) {
                                CCsNearest().nearestGrey12IndexMap(raster, frame, view, &map, padding, 0);
                            },
                            [](Raster& raster, Image& frame, View& view, unsigned long background) {
                                CCsNearest().nearestRgb8Rgb8(raster, frame, view, background);
                            },
                            [](Raster& values, Raster& picture, View& view) {
                                return CCsNearest().nearestIPPGrey12Grey12(values, picture, view, 0);
                            },
                            [](Raster& raster, Image& frame, View& view, unsigned char background) {
                                return CCsNearest().nearestIPPRgb8Rgb8(raster, frame, view, background);
                            },
                            false};

constexpr Resampler bilinear{[](Raster& raster, Image& frame, View& view, IMap& map, unsigned char* padding) {
                                 CCsBilinear().bilinearGrey12IndexMap(raster, frame, view, &map, false, padding, 0);
                             },
                             [](Raster& raster, Image& frame, View& view, unsigned long background) {
                                 CCsBilinear().bilinearRgb8Rgb8(raster, frame, view, background, false);
                             },
                             [](Raster& values, Raster& picture, View& view) {
                                 return CCsBilinear().bilinearIPPGrey12Grey12(values, picture, view, 0);
                             },
                             [](Raster& raster, Image& frame, View& view, unsigned char background) {
                                 return CCsBilinear().bilinearIPPRgb8Rgb8(raster, frame, view, background);
                             },
                             true};

constexpr Resampler bicubic{[](Raster& raster, Image& frame, View& view, IMap& map, unsigned char* padding) {
                                CCsBicubic().bicubicGrey12IndexMap(raster, frame, view, &map, padding, 0);
                            },
                            [](Raster& raster, Image& frame, View& view, unsigned long background) {
                                CCsBicubic().bicubicRgb8Rgb8(raster, frame, view, background);
                            },
                            [](Raster& values, Raster& picture, View& view) {
                                return CCsBicubic().bicubicIPPGrey12Grey12(values, picture, view, 0);
                            },
                            [](Raster& raster, Image& frame, View& view, unsigned char background) {
                                return CCsBicubic().bicubicIPPRgb8Rgb8(raster, frame, view, background);
                            },
                            false};

/// In the order of Interpolation.
constexpr std::array<const Resampler*, 3> resamplers{&nearest, &bilinear, &bicubic};

}  // namespace

const Resampler& resamplerFor(Interpolation interpolation) {
    return *resamplers.at(static_cast<std::size_t>(interpolation));
}

}  // namespace viewing
