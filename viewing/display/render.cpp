#include "viewing/display/render.h"

#include "viewing/display/annotation_overlay.h"
#include "viewing/display/colour_map.h"
#include "viewing/display/fonts.h"
#include "viewing/display/grey_map.h"
#include "viewing/display/host_window.h"
#include "viewing/display/magnifier.h"
#include "viewing/display/raster_setup.h"
#include "viewing/display/report_log.h"
#include "viewing/display/resampling.h"
#include "viewing/display/separate_planes.h"
#include "viewing/display/view.h"
#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccscolorman.h"
#include "zolcs/ccsframe.h"
#include "zolcs/ccsmap.h"

#include <algorithm>
#include <array>
#include <cmath>
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

void drawGrey(RasterSetup& setup, CCsFrame& frame, CCs2dTrafo& view, const StoredImage& image,
              const RenderOptions& options, std::vector<std::string>& notes) {
    const std::unique_ptr<IGreyMap> map = makeGreyMap(GreyTransform(image, options.window));
    CCsColorMan palette = makePalette(options.palette, image.inverted != options.invert);
    CCsColorMapT colours;
    palette.getColorMap(colours);
    map->setOverlayColors(setup.embeddedColours(), setup.planeColours());
    map->setColorMapIndex(&colours);

    // What is burnt in is part of the image, which --invert turns round as a whole.
    if (options.burnIn)
        burnIn(setup, view, *map, options.annotations, fallsFromWhite(*map, image.levels) != options.invert);
    // The glass magnifies display colours.
    std::unique_ptr<CCsRaster> shown;
    const bool first = mapsFirst(setup, options);
    if (first || options.magnifier) shown = mapWhole(setup, *map);
    if (first) {
        resampleColours(*shown, frame, view, options, notes);
    } else {
        resampleGrey(setup, frame, view, *map, options, notes);
    }
    if (options.magnifier) magnify(*shown, frame, view, *options.magnifier, options.background);
}

void drawColours(RasterSetup& setup, CCsFrame& frame, CCs2dTrafo& view, const StoredImage& image,
                 const RenderOptions& options, std::vector<std::string>& notes) {
    if (options.burnIn) burnIn(setup, view, *makeColourMap(image, options.window), options.annotations, false);
    resampleColours(setup.raster(), frame, view, options, notes);
    if (options.magnifier) magnify(setup.raster(), frame, view, *options.magnifier, options.background);
}

/// Bilinear interpolation takes 12-bit pixels for 16-bit ones, in which there is no room for planes.
bool needsSeparatePlanes(const StoredImage& image, const RenderOptions& options) {
    return options.interpolation == Interpolation::Bilinear && !image.isColour() && image.levels == rasterLevels;
}

void paint(CCsFrame& frame, CCs2dTrafo& view, HWND window, CCsOverlay* annotations) {
    constexpr int fontHeight = 18;
    const Font font(fontHeight, Font::Edges::Smooth);
    HDC dc = GetDC(window);
    // The frame draws its second overlay always, its first one only when that does not follow the image.
    const int painted = frame.paint(dc, nullptr, &view, 0, -1, -1, -1, -1, annotations, 0, font.handle(), nullptr);
    ReleaseDC(window, dc);
    ReportLog::check();
    if (painted != 255) throw Refusal("the picture could not be painted");
}

}  // namespace

bool isQuarterTurn(double degrees) {
    const double turn = std::fmod(std::abs(degrees), 180.0);
    return std::abs(turn - 90.0) < 1.0;
}

Size ownSize(const StoredImage& image, double degrees, double longest) {
    const double width = image.width * std::max(1.0 / image.ratioYx, 1.0);
    const double height = image.height * std::max(image.ratioYx, 1.0);
    const double shrink = std::min({longest / std::max(width, height), std::sqrt(maxPixels / (width * height)), 1.0});
    const auto whole = [shrink](double side) { return std::max(static_cast<int>(std::lround(side * shrink)), 1); };
    const Size upright{whole(width), whole(height)};
    return isQuarterTurn(degrees) ? Size{upright.height, upright.width} : upright;
}

Size defaultSize(const StoredImage& image, double degrees) {
    constexpr double longest = 2048.0;
    return ownSize(image, degrees, longest);
}

Refusal noMemory(const StoredImage& image, Size size) {
    return Refusal{"not enough memory for an image of " + std::to_string(image.width) + " x " +
                   std::to_string(image.height) + " and a picture of " + std::to_string(size.width) + " x " +
                   std::to_string(size.height) + " pixels"};
}

CCs2dTrafo drawImage(const StoredImage& image, const RenderOptions& options, std::vector<std::string>& notes,
                     CCsFrame& frame) {
    std::optional<StoredImage> separate;
    if (needsSeparatePlanes(image, options)) separate = withSeparatePlanes(image);
    RasterSetup setup(separate ? *separate : image, options);
    ReportLog::check();
    if (options.sharpening && options.sharpening->box / 2 * 2 >= std::min(image.width, image.height))
        notes.emplace_back("is not larger than the box of --sharpen; nothing is sharpened");
    CCs2dTrafo view = makeView(setup.raster(), frame, options);
    if (image.isColour()) {
        if (options.palette) notes.emplace_back("has its own colours; the palette is not used");
        drawColours(setup, frame, view, image, options, notes);
    } else {
        drawGrey(setup, frame, view, image, options, notes);
    }
    return view;
}

Picture render(const StoredImage& image, const RenderOptions& options, std::vector<std::string>& notes) {
    const Size size = options.size.value_or(defaultSize(image, options.degrees));
    const ReportLog reports;
    try {
        HostWindow host(size.width, size.height);
        CCsFrame frame(host.handle(), size.width, size.height, 0, 0);
        CCs2dTrafo view = drawImage(image, options, notes, frame);
        AnnotationOverlay overlay(drawnOver(options),
                                  {view, image.ratioYx, static_cast<double>(size.width) / size.height});
        paint(frame, view, host.handle(), overlay.group());
        return host.takePicture();
    } catch (int) {
        // Rasters and frames throw a number when they cannot get their memory.
        throw noMemory(image, size);
    }
}

}  // namespace viewing
