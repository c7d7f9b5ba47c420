#include "render.h"

#include "annotation_overlay.h"
#include "colour_map.h"
#include "fonts.h"
#include "grey_map.h"
#include "host_window.h"
#include "image_pixels.h"
#include "raster_setup.h"
#include "report_log.h"
#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccscolorman.h"
#include "zolcs/ccsframe.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsnearest.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>

namespace zolview {

namespace {

/// As the resampler writes background: a blue of 1 is neither a grey nor the colour of an overlay.
constexpr unsigned char marker = 1;

bool isQuarterTurn(double degrees) {
    const double turn = std::fmod(std::abs(degrees), 180.0);
    return std::abs(turn - 90.0) < 1.0;
}

/// The view in its documented order: flip, rotate, zoom, pan.
CCs2dTrafo makeView(const CCsRaster& raster, const CCsFrame& frame, const RenderOptions& options) {
    CCs2dTrafo view;
    view.setSizes(raster, frame);
    if (options.flip == Flip::Horizontal) view.mirror(CCS_HORIZONTAL);
    if (options.flip == Flip::Vertical) view.mirror(CCS_VERTICAL);
    // x grows right and y down, so that a positive angle turns clockwise on the screen.
    view.rotate(std::fmod(options.degrees, 360.0));

    if (options.zoom != 1.0) {
        // After a quarter turn the transformation fits the turned image at scale 1 and the upright one at all other
        // scales. A magnification must start from what zoom 1 shows, so the fit is taken out here.
        double fit = 1.0;
        double zoomed = 1.0;
        view.getDspScaleFactor(fit);
        view.setFitIntoSegementMode(false);
        view.scale2dMatrix(options.zoom);
        view.getDspScaleFactor(zoomed);
        view.scale2dMatrix(fit * options.zoom / zoomed);
    }

    // Pan factors count reference extents; how many pixels one of them is shows in the matrix.
    double a = 0.0, b = 0.0, c = 0.0, d = 0.0, e = 0.0, f = 0.0, eOne = 0.0, fOne = 0.0;
    view.getImgToDsp(a, b, c, d, e, f);
    view.setDspPanFactor(1.0, 1.0);
    view.getImgToDsp(a, b, c, d, eOne, fOne);
    view.setDspPanFactor(options.pan.x / (eOne - e), options.pan.y / (fOne - f));
    return view;
}

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

/// The grey of what lies outside the image, as a display pixel.
unsigned long backgroundPixel(int grey) { return static_cast<unsigned long>(grey) * 0x010101UL; }

/// One value for each pixel of the frame: whether the resampler took it for background.
std::vector<bool> findBackground(CCsRaster& raster, CCsFrame& frame, CCs2dTrafo& view, IMap& map) {
    CCsNearest().nearestGrey12IndexMap(raster, frame, view, &map, nullptr, marker);
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
/// background.
void resample(RasterSetup& setup, CCsFrame& frame, CCs2dTrafo& view, IMap& map, int background) {
    std::vector<bool> outside;
    if (background != 0) outside = findBackground(setup.raster(), frame, view, map);
    CCsNearest().nearestGrey12IndexMap(setup.raster(), frame, view, &map, setup.padding(), 0);
    ReportLog::check();
    if (background != 0) fillBackground(frame, outside, background);
}

/// A raster of display colours, in which shutters, planes and padding are already done.
void resampleColours(CCsRaster& raster, CCsFrame& frame, CCs2dTrafo& view, int background) {
    CCsNearest().nearestRgb8Rgb8(raster, frame, view, backgroundPixel(background));
    ReportLog::check();
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

/// The raster of 16-bit greys as it is shown. It is mapped as a whole before it is resampled, since the table that
/// resampling is given by a map repeats entries of the first 12 bits further up.
void drawDeepGrey(RasterSetup& setup, CCsFrame& frame, CCs2dTrafo& view, IGreyMap& map, int background) {
    CCsRaster& raster = setup.raster();
    const int width = raster.getWidth();
    const int height = raster.getHeight();
    CCsRaster shown(width, height, CCS_RGB8, raster.getRatioYx(), true, false);
    if (map.mapRaster(raster, shown, {0, 0, width, height}, true, setup.padding(), nullptr) != 255)
        throw Refusal("the values could not be mapped");
    ReportLog::check();
    // Mapping never takes the first pixel for padding.
    if (setup.firstPixelIsPadding()) *ImagePixels<std::uint32_t>(shown).row(0) = 0;
    resampleColours(shown, frame, view, background);
}

void drawGrey(RasterSetup& setup, CCsFrame& frame, CCs2dTrafo& view, const StoredImage& image,
              const RenderOptions& options) {
    const std::unique_ptr<IGreyMap> map = makeGreyMap(GreyTransform(image, options.window));
    CCsColorMan palette = makePalette(options.palette, image.inverted != options.invert);
    CCsColorMapT colours;
    palette.getColorMap(colours);
    map->setOverlayColors(setup.embeddedColours(), setup.planeColours());
    map->setColorMapIndex(&colours);

    // What is burnt in is part of the image, which --invert turns round as a whole.
    if (options.burnIn)
        burnIn(setup, view, *map, options.annotations, fallsFromWhite(*map, image.levels) != options.invert);
    if (image.levels == deepLevels) {
        drawDeepGrey(setup, frame, view, *map, options.background);
    } else {
        resample(setup, frame, view, *map, options.background);
    }
}

void drawColours(RasterSetup& setup, CCsFrame& frame, CCs2dTrafo& view, const StoredImage& image,
                 const RenderOptions& options) {
    if (options.burnIn) burnIn(setup, view, *makeColourMap(image, options.window), options.annotations, false);
    resampleColours(setup.raster(), frame, view, options.background);
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

Size ownSize(const StoredImage& image, double longest) {
    const double width = image.width * std::max(1.0 / image.ratioYx, 1.0);
    const double height = image.height * std::max(image.ratioYx, 1.0);
    const double shrink = std::min({longest / std::max(width, height), std::sqrt(maxPixels / (width * height)), 1.0});
    const auto whole = [shrink](double side) { return std::max(static_cast<int>(std::lround(side * shrink)), 1); };
    return {whole(width), whole(height)};
}

Size defaultSize(const StoredImage& image, double degrees) {
    constexpr double longest = 2048.0;
    const Size size = ownSize(image, longest);
    return isQuarterTurn(degrees) ? Size{size.height, size.width} : size;
}

Refusal noMemory(const StoredImage& image, Size size) {
    return Refusal("not enough memory for an image of " + std::to_string(image.width) + " x " +
                   std::to_string(image.height) + " and a picture of " + std::to_string(size.width) + " x " +
                   std::to_string(size.height) + " pixels");
}

CCs2dTrafo drawImage(const StoredImage& image, const RenderOptions& options, std::vector<std::string>& notes,
                     CCsFrame& frame) {
    RasterSetup setup(image, options);
    ReportLog::check();
    CCs2dTrafo view = makeView(setup.raster(), frame, options);
    if (image.isColour()) {
        if (options.palette) notes.emplace_back("has its own colours; the palette is not used");
        drawColours(setup, frame, view, image, options);
    } else {
        drawGrey(setup, frame, view, image, options);
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

}  // namespace zolview
