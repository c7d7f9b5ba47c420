#include "viewing/display/draw_image.h"

#include "viewing/display/annotation_overlay.h"
#include "viewing/display/colour_map.h"
#include "viewing/display/font.h"
#include "viewing/display/grey_map.h"
#include "viewing/display/magnifier.h"
#include "viewing/display/raster_setup.h"
#include "viewing/display/report_log.h"
#include "viewing/display/resampler.h"
#include "viewing/display/resampling.h"
#include "viewing/display/separate_planes.h"
#include "viewing/display/view.h"
#include "viewing/image/refusal.h"
#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccscolorman.h"
#include "zolcs/ccsframe.h"
#include "zolcs/ccsmap.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>

namespace viewing {

namespace {

/// The palette in which a grey image is shown, with black and white exchanged where that is wanted.
CCsColorMan makePalette(const std::optional<Palette>& colours, bool inverted) {
    CCsColorMan palette;
    if (colours) {
        std::array<RGBQUAD, 256> quads{};
        std::transform(colours->begin(), colours->end(), quads.begin(), [](std::uint32_t pixel) {
            return RGBQUAD{static_cast<BYTE>(pixel & 0xFFU), static_cast<BYTE>((pixel >> 8U) & 0xFFU),
                           static_cast<BYTE>((pixel >> 16U) & 0xFFU), 0};
        });
        palette.convertToColor(quads.data());
    }
    if (inverted) palette.invertPalette();
    return palette;
}

/// Large enough to be read on the whole image, in pixels of the image.
int burnInFontHeight(const CCsRaster& raster) { return std::max(raster.getHeight() / 32, 14); }

/// The annotations into the raster's pixels. Fractions count the image there, not the picture.
void burnIn(RasterSetup& setup, CCs2dTrafo& view, IMap& map, const std::vector<Annotation>& annotations,
            bool inverted) {
    CCsRaster& raster = setup.raster();
    const double ratio = raster.getRatioYx();
    const double aspect = raster.getWidth() / (raster.getHeight() * ratio);
    AnnotationOverlay overlay(annotations, {view, ratio, aspect});
    CCs2dTrafo onto;
    onto.setSizes(raster, raster.getWidth(), raster.getHeight(), ratio, 0, 0);
    const Font font(burnInFontHeight(raster), Font::Edges::Hard);
    setup.burnIn(map, *overlay.group(), onto, font.handle(), inverted);
    ReportLog::check();
}

void drawGrey(RasterSetup& setup, CCsFrame& frame, CCs2dTrafo& view, const GreyImage& image,
              const DisplaySettings& settings, std::vector<std::string>& notes) {
    const std::unique_ptr<IGreyMap> map = makeGreyMap(GreyTransform(image, settings.window));
    CCsColorMan palette = makePalette(settings.palette, image.presentation.inverse != settings.invert);
    CCsColorMapT colours;
    palette.getColorMap(colours);
    map->setOverlayColors(setup.embeddedColours(), setup.planeColours());
    map->setColorMapIndex(&colours);

    // What is burnt in is part of the image, which --invert turns round as a whole.
    if (settings.burnIn)
        burnIn(setup, view, *map, settings.annotations, fallsFromWhite(*map, image.levels) != settings.invert);
    // The glass magnifies display colours.
    std::unique_ptr<CCsRaster> shown;
    const bool first = mapsFirst(setup, settings);
    if (first || settings.magnifier) shown = mapWhole(setup, *map);
    if (first) {
        resampleColours(*shown, frame, view, settings, notes);
    } else {
        resampleGrey(setup, frame, view, *map, settings, notes);
    }
    if (settings.magnifier) magnify(*shown, frame, view, *settings.magnifier, settings.background);
}

void drawColours(RasterSetup& setup, CCsFrame& frame, CCs2dTrafo& view, const ColourImage& image,
                 const DisplaySettings& settings, std::vector<std::string>& notes) {
    if (settings.burnIn) burnIn(setup, view, *makeColourMap(image, settings.window), settings.annotations, false);
    resampleColours(setup.raster(), frame, view, settings, notes);
    if (settings.magnifier) magnify(setup.raster(), frame, view, *settings.magnifier, settings.background);
}

/// Where 12-bit pixels are taken for 16-bit ones, there is no room for planes.
bool needsSeparatePlanes(const StoredImage& image, const DisplaySettings& settings) {
    return resamplerFor(settings.interpolation).takesGrey16 && !image.isColour() && image.grey().levels == levels12;
}

}  // namespace

std::vector<Annotation> drawnOver(const DisplaySettings& settings) {
    return settings.burnIn ? std::vector<Annotation>() : settings.annotations;
}

Refusal noMemory(const StoredImage& image, Size picture) {
    return Refusal{"not enough memory for an image of " + std::to_string(image.width) + " x " +
                   std::to_string(image.height) + " and a picture of " + std::to_string(picture.width) + " x " +
                   std::to_string(picture.height) + " pixels"};
}

CCs2dTrafo drawImage(const StoredImage& image, const DisplaySettings& settings, std::vector<std::string>& notes,
                     CCsFrame& frame) {
    std::optional<StoredImage> separate;
    if (needsSeparatePlanes(image, settings)) separate = withSeparatePlanes(image);
    RasterSetup setup(separate ? *separate : image, settings);
    ReportLog::check();
    if (settings.sharpening && settings.sharpening->box / 2 * 2 >= std::min(image.width, image.height))
        notes.emplace_back("is not larger than the box of the unsharp mask; nothing is sharpened");
    CCs2dTrafo view = makeView(setup.raster(), frame, settings);
    if (image.isColour()) {
        if (settings.palette) notes.emplace_back("has its own colours; the palette is not used");
        drawColours(setup, frame, view, image.colour(), settings, notes);
    } else {
        drawGrey(setup, frame, view, image.grey(), settings, notes);
    }
    return view;
}

}  // namespace viewing
