#include "viewing/display/raster_setup.h"

#include "viewing/display/colour_map.h"
#include "viewing/display/image_pixels.h"
#include "viewing/display/shutter_plane.h"
#include "viewing/image/refusal.h"
#include "zolcs/ccsedgeenhancement.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsoverlay.h"

#include <algorithm>
#include <cstdint>

namespace viewing {

namespace {

unsigned int colourOf(PlaneKind kind) { return kind == PlaneKind::Graphics ? graphicsColour : regionColour; }

int rasterType(const StoredImage& image) {
    if (image.isColour()) return CCS_RGB8;
    return image.grey().levels == levels16 ? CCS_GREY16 : CCS_GREY12;
}

/// The pixels of a colour raster under the set bits of a plane, which lies inside it.
void paintBits(const ImagePixels<std::uint32_t>& pixels, const BitPlane& bits, Point origin, std::uint32_t colour) {
    for (int y = 0; y < bits.height(); ++y)
        for (int x = 0; x < bits.width(); ++x)
            if (bits.get(x, y)) pixels.row(origin.y + y)[origin.x + x] = colour;
}

/// Copies all pixels between rasters of one size and type; the kept bits stay those of the destination.
template <typename Pixel>
void copyPixels(CCsImage& from, CCsImage& to, Pixel kept) {
    const ImagePixels<Pixel> source(from);
    const ImagePixels<Pixel> destination(to);
    for (int y = 0; y < to.getHeight(); ++y) {
        std::transform(source.row(y), source.row(y) + to.getWidth(), destination.row(y), destination.row(y),
                       [kept](Pixel value, Pixel old) { return static_cast<Pixel>((value & ~kept) | (old & kept)); });
    }
}

}  // namespace

RasterSetup::RasterSetup(const StoredImage& image, const DisplaySettings& settings)
    : raster_(image.width, image.height, rasterType(image), image.ratioYx, true, false) {
    if (image.isColour()) {
        showColours(image, settings);
        return;
    }
    padding_ = image.grey().padding;
    copySamples(image.grey());
    if (settings.sharpening) sharpen(*settings.sharpening);
    if (settings.shutters) setShutters(image);
    if (settings.overlays) setOverlays(image);
}

void RasterSetup::copySamples(const GreyImage& image) {
    auto sample = image.samples.begin();
    ImagePixels<std::uint16_t>(raster_).forEach([&sample](std::uint16_t& pixel) { pixel = *sample++; });
}

void RasterSetup::showColours(const StoredImage& image, const DisplaySettings& settings) {
    mapColours(image.colour(), settings.window, raster_);
    if (settings.sharpening) sharpen(*settings.sharpening);
    const ImagePixels<std::uint32_t> pixels(raster_);
    if (settings.invert) pixels.forEach([](std::uint32_t& pixel) { pixel ^= 0xFFFFFFU; });
    if (settings.shutters && image.shutters.any()) {
        const std::uint32_t grey = (image.shutters.presentationValue >> 8) * 0x010101U;
        paintBits(pixels, hiddenPixels(image.shutters, image.width, image.height, image.ratioYx), {0, 0}, grey);
    }
    if (!settings.overlays) return;
    // The first plane lies on top, as it does on grey images.
    for (auto plane = image.overlays.rbegin(); plane != image.overlays.rend(); ++plane)
        paintBits(pixels, plane->bits, plane->origin, colourOf(plane->kind));
}

void RasterSetup::sharpen(const Sharpening& sharpening) {
    const int type = raster_.getType();
    CCsRaster sharp(raster_.getWidth(), raster_.getHeight(), type, raster_.getRatioYx(), true, false);
    CCsEdgeEnhancement enhancement;
    const int highestBit = type == CCS_GREY16 ? 15 : 11;
    const int result =
        type == CCS_RGB8
            ? enhancement.edgeEnhancementRGB8(raster_, sharp, sharpening.box, sharpening.strength)
            : enhancement.edgeEnhancementGrey12(raster_, sharp, sharpening.box, sharpening.strength, highestBit);
    if (result != 255) throw Refusal("not enough memory to sharpen");
    if (type == CCS_RGB8) {
        copyPixels<std::uint32_t>(sharp, raster_, 0);
    } else {
        // Sharpening loses the embedded planes of the pixels along the image's edges.
        copyPixels<std::uint16_t>(sharp, raster_, type == CCS_GREY12 ? 0xF000 : 0);
    }
}

bool RasterSetup::firstPixelIsPadding() const {
    const auto covers = [](const OverlayPlane& plane) { return plane.origin == Point{} && plane.bits.get(0, 0); };
    return !padding_.empty() && padding_.get(0, 0) && std::none_of(planes_.begin(), planes_.end(), covers);
}

void RasterSetup::burnIn(IMap& map, CCsOverlay& overlay, CCs2dTrafo& trafo, HFONT font, bool inverted) {
    overlay.setDicomPrintFlag(true);
    if (raster_.getType() != CCS_RGB8) return burnInGrey(map, overlay, trafo, font, inverted);
    constexpr unsigned long white = 0xFFFFFF;
    if (raster_.burnInOverlay(map, &overlay, &trafo, font, white) != 255) throw Refusal("not enough memory to burn in");
}

void RasterSetup::burnInGrey(IMap& map, CCsOverlay& overlay, CCs2dTrafo& trafo, HFONT font, bool inverted) {
    // Merging takes any value beyond the level's bits for a line.
    const unsigned int depth = raster_.getType() == CCS_GREY16 ? 16 : 12;
    const std::uint32_t levelBits = (1U << depth) - 1U;
    std::vector<std::uint16_t> planes;
    ImagePixels<std::uint16_t>(raster_).forEach([&planes, levelBits](std::uint16_t& sample) {
        planes.push_back(static_cast<std::uint16_t>(sample & ~levelBits));
        sample = static_cast<std::uint16_t>(sample & levelBits);
    });
    if (raster_.burnInOverlay(map, &overlay, depth, &trafo, font, static_cast<int>(depth) - 1, inverted) != 255)
        throw Refusal("not enough memory to burn in");
    auto plane = planes.begin();
    ImagePixels<std::uint16_t>(raster_).forEach(
        [&plane](std::uint16_t& sample) { sample = static_cast<std::uint16_t>(sample | *plane++); });
}

void RasterSetup::setShutters(const StoredImage& image) {
    if (!image.shutters.any()) return;
    // The raster's own circular and polygonal shutters are looked up beside pixel centres.
    hidden_ = hiddenPixels(image.shutters, image.width, image.height, image.ratioYx);
    CCsBitmapShutterInfo info;
    info.tag = 1;
    info.originX = 1;
    info.originY = 1;
    info.rows = static_cast<std::uint16_t>(image.height);
    info.columns = static_cast<std::uint16_t>(image.width);
    info.data = hidden_.data();
    info.presentationValue = image.shutters.presentationValue;
    raster_.setBitmapShutterInfo(info);
}

void RasterSetup::setOverlays(const StoredImage& image) {
    planes_ = image.overlays;
    for (std::size_t i = 0; i < planes_.size(); ++i) {
        OverlayPlane& plane = planes_[i];
        CCs60XXOverlay record;
        // The library counts the columns and rows of a plane's origin from 1.
        record.originX = plane.origin.x + 1;
        record.originY = plane.origin.y + 1;
        record.rows = static_cast<std::uint16_t>(plane.bits.height());
        record.columns = static_cast<std::uint16_t>(plane.bits.width());
        record.data = plane.bits.data();
        raster_.add60XXOverlayInfo(record);
        planeColours_[std::min(i, planeColours_.size() - 1)] = colourOf(plane.kind);
    }

    // Where planes overlap, graphics lie on top.
    const std::vector<EmbeddedPlane>& embedded = image.grey().embedded;
    raster_.setEmbeddedOverlayStatus(!embedded.empty());
    for (const PlaneKind kind : {PlaneKind::RegionOfInterest, PlaneKind::Graphics})
        for (const EmbeddedPlane& plane : embedded)
            for (unsigned int bits = 0; bits < embeddedColours_.size(); ++bits)
                if (plane.kind == kind && ((bits >> (plane.bit - 12)) & 1U) != 0)
                    embeddedColours_[bits] = colourOf(kind);
}

}  // namespace viewing
