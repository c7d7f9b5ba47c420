#include "viewing/display/colour_map.h"

#include "viewing/display/image_pixels.h"
#include "viewing/display/raster_window.h"
#include "viewing/image/refusal.h"
#include "zolcs/ccsraster.h"

#include <variant>
#include <vector>

namespace viewing {

namespace {

template <typename Pixel>
void copyPixels(const std::vector<Pixel>& pixels, CCsRaster& raster) {
    auto next = pixels.begin();
    ImagePixels<Pixel>(raster).forEach([&next](Pixel& pixel) { pixel = *next++; });
}

bool hasTwelveBits(const ColourImage& image) { return std::holds_alternative<Rgb12Pixels>(image.pixels); }

}  // namespace

std::unique_ptr<IMap> makeColourMap(const ColourImage& image, const std::optional<Window>& window) {
    const int levels = hasTwelveBits(image) ? 4096 : 256;
    std::unique_ptr<IMap> map(MapFactory::CreateMap(hasTwelveBits(image) ? MapFactory::Rgb12 : MapFactory::Rgb8));
    if (map == nullptr) throw Refusal("not enough memory");
    // A window of all levels leaves 8 bits as they are, and takes the upper 8 of 12.
    RasterWindow shown{levels / 2, levels, false};
    if (window) shown = toRasterWindow({*window, WindowFunction::Linear}, 0.0, 1.0, levels);
    map->setWindow(static_cast<unsigned int>(shown.centre), shown.width);
    return map;
}

void mapColours(const ColourImage& image, const std::optional<Window>& window, CCsImage& display) {
    const int width = display.getWidth();
    const int height = display.getHeight();
    CCsRaster stored(width, height, hasTwelveBits(image) ? CCS_RGB12 : CCS_RGB8, display.getRatioYx(), true, false);
    std::visit([&stored](const auto& pixels) { copyPixels(pixels, stored); }, image.pixels);
    const std::unique_ptr<IMap> map = makeColourMap(image, window);
    if (map->mapRaster(stored, display, {0, 0, width, height}, true, nullptr, nullptr) != 255)
        throw Refusal("the colours could not be mapped");
}

}  // namespace viewing
