// All four maps under any sequence of settings: tables, whole rasters, burning in, clones.
#include <array>
#include <cstddef>
#include <cstdlib>

#include "fuzz_input.h"
#include "zolcs/ccscolorman.h"
#include "zolcs/ccsmap.h"

namespace {

void configure(zolfuzz::Bytes& in, IGreyMap& map) {
    const int steps = in.ConsumeIntegralInRange(1, 10);
    for (int i = 0; i < steps; ++i) {
        switch (in.ConsumeIntegralInRange(0, 10)) {
            case 0:
                map.setWindow(in.ConsumeIntegral<unsigned>(), in.ConsumeIntegral<int>());
                break;
            case 1:
                map.setWindow(in.ConsumeIntegralInRange(0U, 5000U), in.ConsumeIntegralInRange(-1, 5000));
                break;
            case 2: {
                std::vector<unsigned short> values(in.ConsumeIntegralInRange<std::size_t>(1, 300));
                for (auto& v : values) v = in.ConsumeIntegral<unsigned short>();
                const auto first = in.ConsumeIntegral<unsigned>();
                map.setNonLinearLut(values.data(), first, static_cast<int>(values.size()), in.ConsumeBool());
                break;
            }
            case 3: {
                std::vector<unsigned short> values(in.ConsumeIntegralInRange<std::size_t>(1, 300));
                for (auto& v : values) v = in.ConsumeIntegral<unsigned short>();
                map.setPresentationLut(values.data(), in.ConsumeIntegral<unsigned>(), static_cast<int>(values.size()));
                break;
            }
            case 4: {
                unsigned char remap[256];
                for (unsigned n = 0; n < 256; ++n) remap[n] = static_cast<unsigned char>(n * 7);
                map.setIndexRemap(remap);
                break;
            }
            case 5:
                map.clearNonLinearLut();
                break;
            case 6:
                map.enableSigmoid();
                break;
            case 7:
                map.setSigmoidBits(in.ConsumeIntegral<int>());
                break;
            case 8:
                map.setExactNonLinearWindow(in.ConsumeBool());
                break;
            case 9:
                map.setEnabled(in.ConsumeBool());
                break;
            default:
                map.setMapFlags(in.ConsumeIntegralInRange(0, 3));
                break;
        }
        if (in.ConsumeBool()) map.getLut();
    }
}

void configure(zolfuzz::Bytes& in, IColorMap& map) {
    const int steps = in.ConsumeIntegralInRange(0, 3);
    for (int i = 0; i < steps; ++i) {
        map.setWindow(in.ConsumeIntegral<unsigned>(), in.ConsumeIntegral<int>());
        if (in.ConsumeBool()) map.getLut();
    }
}

/// Everything that a grey map answers.
void ask(zolfuzz::Bytes& in, IGreyMap& map) {
    std::vector<unsigned> copy(0x10000);
    unsigned* out = copy.data();
    map.copyLut(&out);
    map.applyPresentationLut(in.ConsumeIntegral<unsigned>(), in.ConsumeIntegral<unsigned>());
    unsigned short* values = nullptr;
    unsigned first = 0;
    unsigned count = 0;
    if (map.getWindowedNonLinearLut(&values, &first, &count, in.ConsumeBool()) == CCS_DONE) {
        // The address sanitizer watches whether what is handed out can be read to its end.
        const std::vector<unsigned short> read(values, values + count);
        map.setNonLinearLut(read.data(), first, static_cast<int>(count), in.ConsumeBool());
    }
}

int bytesOfPixel(int type) {
    if (type == CCS_RGB12) return 8;
    return type == CCS_RGB8 ? 4 : 2;
}

std::size_t bytesOf(const CCsRaster& raster) {
    return static_cast<std::size_t>(bytesOfPixel(raster.getType())) * static_cast<std::size_t>(raster.getPitch()) *
           static_cast<std::size_t>(raster.getHeight());
}

/// A bitmap of any size burnt into a raster of the kind that the map takes.
void burnIn(zolfuzz::Bytes& in, IMap& map, int type) {
    const int width = in.ConsumeIntegralInRange(0, 40);
    const int height = in.ConsumeIntegralInRange(-30, 30);
    std::vector<std::uint32_t> words(10 + static_cast<std::size_t>(width) * static_cast<std::size_t>(std::abs(height)));
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = width;
    header.biHeight = height;
    std::memcpy(words.data(), &header, sizeof header);
    constexpr std::array<std::uint32_t, 5> marks = {0, 0x00010101, 0x00FFFF00, 0x00123456, 0xFF000000};
    for (std::size_t i = 10; i < words.size(); ++i) words[i] = marks[(i * 7 + i / 3) % marks.size()];
    CCsRaster raster(in.ConsumeIntegralInRange(1, 40), in.ConsumeIntegralInRange(1, 30), type, 1.0, false, false);
    map.mergeDIBtoData(raster, reinterpret_cast<BITMAPINFO*>(words.data()), in.ConsumeIntegral<unsigned>(),
                       in.ConsumeIntegral<int>(), in.ConsumeBool());
}

struct Kind {
    MapFactory::MapType map;
    int image;
    int burnt;  ///< what rendered graphics go into
};

constexpr std::array<Kind, 4> kinds = {{{MapFactory::Grey12, CCS_GREY12, CCS_GREY12},
                                        {MapFactory::Grey16, CCS_GREY16, CCS_GREY16},
                                        {MapFactory::Rgb12, CCS_RGB12, CCS_RGB8},
                                        {MapFactory::Rgb8, CCS_RGB8, CCS_RGB8}}};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zolfuzz::Bytes in(data, size);
    const Kind& kind = kinds.at(in.ConsumeIntegralInRange<std::size_t>(0, kinds.size() - 1));
    const std::unique_ptr<IMap> owner(MapFactory::CreateMap(kind.map));
    auto* grey = dynamic_cast<IGreyMap*>(owner.get());
    auto* colour = dynamic_cast<IColorMap*>(owner.get());
    CCsColorMan palette;
    if (in.ConsumeBool()) palette.invertPalette();
    CCsColorMapT colors;
    palette.getColorMap(colors);
    if (in.ConsumeIntegralInRange(0, 9) != 0) owner->setColorMapIndex(&colors);
    unsigned planeColors[16] = {};
    unsigned groupColors[16] = {};
    if (grey != nullptr) {
        grey->setOverlayColors(planeColors, groupColors);
        configure(in, *grey);
        ask(in, *grey);
    } else {
        configure(in, *colour);
    }

    std::vector<zolfuzz::Plane> planes;
    // Sometimes large enough for what small images are not worth.
    const bool large = in.ConsumeIntegralInRange(0, 63) == 0;
    CCsRaster src(large ? 1024 : in.ConsumeIntegralInRange(1, 60), large ? 1025 : in.ConsumeIntegralInRange(1, 40),
                  kind.image, 1.0, false, false);
    const bool same = in.ConsumeIntegralInRange(0, 9) != 0;
    CCsRaster dst(same ? src.getWidth() : 7, src.getHeight(), CCS_RGB8, 1.0, false, false);
    zolfuzz::decorate(in, src, planes);
    zolfuzz::scribble(in, src, bytesOf(src));
    std::vector<unsigned char> padding(
        static_cast<std::size_t>(src.getWidth()) * static_cast<std::size_t>(src.getHeight()) / 8 + 1,
        in.ConsumeIntegral<unsigned char>());
    CCs2dTrafo trafo = zolfuzz::trafo(in);
    trafo.setSizes(src, dst);
    const RECT whole = {0, 0, src.getWidth(), src.getHeight()};
    owner->mapRaster(src, dst, large ? whole : zolfuzz::rect(in), in.ConsumeBool(),
                     in.ConsumeBool() ? padding.data() : nullptr, in.ConsumeBool() ? &trafo : nullptr);
    if (colour != nullptr) colour->mapRasterSeparate(src, dst);
    burnIn(in, *owner, in.ConsumeBool() ? kind.burnt : kind.image);
    const std::unique_ptr<IMap> twin(owner->clone());
    if (twin != nullptr) {
        twin->getLut();
        twin->setColorMapIndex(&colors);
        twin->getLut();
    }
    return 0;
}
