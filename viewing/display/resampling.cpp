#include "viewing/display/resampling.h"

#include "viewing/display/image_pixels.h"
#include "viewing/display/report_log.h"
#include "viewing/display/resampler.h"
#include "viewing/image/refusal.h"
#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsframe.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsnearest.h"

#include <algorithm>
#include <cstdint>

namespace viewing {

namespace {

/// As the resampler writes background: a blue of 1 is no grey.
constexpr unsigned char marker = 1;

constexpr int done = 255;

void mapInto(RasterSetup& setup, CCsRaster& raster, CCsImage& display, IGreyMap& map, unsigned char* padding) {
    const RECT all{0, 0, raster.getWidth(), raster.getHeight()};
    if (map.mapRaster(raster, display, all, true, padding, nullptr) != done)
        throw Refusal("the values could not be mapped");
    ReportLog::check();
    // Mapping never takes the first pixel for padding.
    if (padding != nullptr && setup.firstPixelIsPadding()) *ImagePixels<std::uint32_t>(display).row(0) = 0;
}

/// One value for each pixel of the frame: whether the resampler took it for background.
std::vector<bool> findBackground(CCsRaster& raster, CCsFrame& frame, CCs2dTrafo& view) {
    // Without a map all pixels are black or have a shutter's grey, whatever the colours of the palette.
    CCsNearest().nearestGrey12IndexMap(raster, frame, view, nullptr, nullptr, marker);
    ReportLog::check();
    std::vector<bool> out;
    ImagePixels<std::uint32_t>(frame).forEach([&out](std::uint32_t pixel) { out.push_back(pixel == marker); });
    return out;
}

void fillBackground(CCsFrame& frame, const std::vector<bool>& background, int grey) {
    auto isBackground = background.begin();
    ImagePixels<std::uint32_t>(frame).forEach([&](std::uint32_t& pixel) {
        if (*isBackground++) pixel = static_cast<std::uint32_t>(backgroundPixel(grey));
    });
}

/// The resampler writes its background byte into the blue of a pixel and gives the same one to padding, which must stay
/// black. So black is the only background that it is asked for; another grey goes where a run without padding finds
/// background, which is the same place for every interpolation.
void resampleByLoops(RasterSetup& setup, CCsFrame& frame, CCs2dTrafo& view, IGreyMap& map,
                     const DisplaySettings& settings) {
    CCsRaster& raster = setup.raster();
    std::vector<bool> outside;
    if (settings.background != 0) outside = findBackground(raster, frame, view);
    const Resampler& resampler = resamplerFor(settings.interpolation);
    if (resampler.takesGrey16) setup.takeAsGrey16();
    resampler.grey(raster, frame, view, map, setup.padding());
    ReportLog::check();
    if (settings.background != 0) fillBackground(frame, outside, settings.background);
}

/// The levels are drawn with so much added that no overshoot of the cubic comes near the background's 0, and mapped
/// afterwards. False, with nothing reported, when the primitives cannot draw the view.
bool resampleByPrimitives(RasterSetup& setup, CCsFrame& frame, CCs2dTrafo& view, IGreyMap& map,
                          const DisplaySettings& settings) {
    static constexpr int lift = levels12;
    CCsRaster& raster = setup.raster();
    CCsRaster values(raster.getWidth(), raster.getHeight(), CCS_GREY16, raster.getRatioYx(), true, false);
    const ImagePixels<std::uint16_t> lifted(values);
    const ImagePixels<std::uint16_t> stored(raster);
    for (int y = 0; y < raster.getHeight(); ++y) {
        std::transform(stored.row(y), stored.row(y) + raster.getWidth(), lifted.row(y), [](std::uint16_t sample) {
            return static_cast<std::uint16_t>((sample & (levels12 - 1)) + lift);
        });
    }
    CCsRaster picture(frame.getWidth(), frame.getHeight(), CCS_GREY12, frame.getRatioYx(), true, false);
    if (resamplerFor(settings.interpolation).greyByPrimitives(values, picture, view) != done) {
        ReportLog::forget();
        return false;
    }
    std::vector<bool> outside;
    ImagePixels<std::uint16_t>(picture).forEach([&outside](std::uint16_t& value) {
        outside.push_back(value == 0);
        value = static_cast<std::uint16_t>(std::clamp(int{value}, lift, lift + levels12 - 1) - lift);
    });
    mapInto(setup, picture, frame, map, nullptr);
    fillBackground(frame, outside, settings.background);
    return true;
}

void noteNotAccelerated(std::vector<std::string>& notes) {
    notes.emplace_back("cannot be drawn by the image primitives in this view; drawn without them");
}

}  // namespace

bool mapsFirst(RasterSetup& setup, const DisplaySettings& settings) {
    const CCsRaster& raster = setup.raster();
    if (raster.getType() == CCS_GREY16) return true;
    return settings.accelerated && (raster.isShutter() || raster.isNonEmbeddedOverlayPresent() ||
                                    raster.isEmbeddedOverlayPresent() || setup.padding() != nullptr);
}

std::unique_ptr<CCsRaster> mapWhole(RasterSetup& setup, IGreyMap& map) {
    CCsRaster& raster = setup.raster();
    auto shown =
        std::make_unique<CCsRaster>(raster.getWidth(), raster.getHeight(), CCS_RGB8, raster.getRatioYx(), true, false);
    if (raster.getType() == CCS_GREY16) {
        mapInto(setup, raster, *shown, map, setup.padding());
    } else {
        // Pixel for pixel, so that shutters, planes and padding follow the rules of every other picture.
        CCs2dTrafo same;
        CCsNearest().nearestGrey12IndexMap(raster, *shown, same, &map, setup.padding(), 0);
        ReportLog::check();
    }
    return shown;
}

void resampleGrey(RasterSetup& setup, CCsFrame& frame, CCs2dTrafo& view, IGreyMap& map, const DisplaySettings& settings,
                  std::vector<std::string>& notes) {
    if (settings.accelerated) {
        if (resampleByPrimitives(setup, frame, view, map, settings)) return;
        noteNotAccelerated(notes);
    }
    resampleByLoops(setup, frame, view, map, settings);
}

void resampleColours(CCsRaster& raster, CCsFrame& frame, CCs2dTrafo& view, const DisplaySettings& settings,
                     std::vector<std::string>& notes) {
    const Resampler& resampler = resamplerFor(settings.interpolation);
    if (settings.accelerated) {
        const auto grey = static_cast<unsigned char>(settings.background);
        if (resampler.coloursByPrimitives(raster, frame, view, grey) == done) return;
        ReportLog::forget();
        noteNotAccelerated(notes);
    }
    resampler.colours(raster, frame, view, backgroundPixel(settings.background));
    ReportLog::check();
}

}  // namespace viewing
