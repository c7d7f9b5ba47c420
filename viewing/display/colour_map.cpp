#include "viewing/display/colour_map.h"

#include "viewing/display/image_pixels.h"
#include "viewing/display/raster_window.h"
#include "zolcs/ccsraster.h"

#include <cstdint>

namespace viewing {

namespace {

template <typename Pixel>
void copyPixels(const std::vector<Pixel>& pixels, CCsRaster& raster) {
    auto next = pixels.begin();
    ImagePixels<Pixel>(raster).forEach([&next](Pixel& pixel) { pixel = *next++; });
}

}  // namespace

std::unique_ptr<IMap> makeColourMap(const StoredImage& image, const std::optional<Window>& window) {
    const bool deep = !image.rgb12.empty();
    const int levels = deep ? 4096 : 256;
    std::unique_ptr<IMap> map(MapFactory::CreateMap(deep ? MapFactory::Rgb12 : MapFactory::Rgb8));
    if (map == nullptr) throw Refusal("not enough memory");
    // A window of all levels leaves 8 bits as they are, and takes the upper 8 of 12.
    RasterWindow shown{levels / 2, levels, false};
    if (window) shown = toRasterWindow(*window, WindowFunction::Linear, 0.0, 1.0, levels);
    map->setWindow(static_cast<unsigned int>(shown.centre), shown.width);
    return map;
}

void mapColours(const StoredImage& image, const std::optional<Window>& window, CCsImage& display) {
    const bool deep = !image.rgb12.empty();
    CCsRaster stored(image.width, image.height, deep ? CCS_RGB12 : CCS_RGB8, image.ratioYx, true, false);
    if (deep) {
        copyPixels(image.rgb12, stored);
    } else {
        copyPixels(image.rgb8, stored);
    }
    const std::unique_ptr<IMap> map = makeColourMap(image, window);
    if (map->mapRaster(stored, display, {0, 0, image.width, image.height}, true, nullptr, nullptr) != 255)
        throw Refusal("the colours could not be mapped");
}

}  // namespace viewing
