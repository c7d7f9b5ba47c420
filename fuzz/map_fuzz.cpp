// Grey maps under any sequence of settings, and whole-raster mapping.
#include <cstddef>

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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zolfuzz::Bytes in(data, size);
    const std::unique_ptr<IMap> owner(MapFactory::CreateMap(MapFactory::Grey12));
    auto& map = static_cast<IGreyMap&>(*owner);
    CCsColorMan palette;
    CCsColorMapT colors;
    palette.getColorMap(colors);
    if (in.ConsumeIntegralInRange(0, 9) != 0) map.setColorMapIndex(&colors);
    unsigned planeColors[16] = {};
    unsigned groupColors[16] = {};
    map.setOverlayColors(planeColors, groupColors);
    configure(in, map);

    std::vector<unsigned> copy(0x10000);
    unsigned* out = copy.data();
    map.copyLut(&out);
    map.applyPresentationLut(in.ConsumeIntegral<unsigned>(), in.ConsumeIntegral<unsigned>());
    unsigned short* values = nullptr;
    unsigned first = 0;
    unsigned count = 0;
    map.getWindowedNonLinearLut(&values, &first, &count, in.ConsumeBool());

    std::vector<zolfuzz::Plane> planes;
    CCsRaster src(in.ConsumeIntegralInRange(1, 60), in.ConsumeIntegralInRange(1, 40), CCS_GREY12, 1.0, false, false);
    const bool same = in.ConsumeIntegralInRange(0, 9) != 0;
    CCsRaster dst(same ? src.getWidth() : 7, src.getHeight(), CCS_RGB8, 1.0, false, false);
    zolfuzz::decorate(in, src, planes);
    zolfuzz::scribble(in, src,
                      2 * static_cast<std::size_t>(src.getPitch()) * static_cast<std::size_t>(src.getHeight()));
    std::vector<unsigned char> padding(
        static_cast<std::size_t>(src.getWidth()) * static_cast<std::size_t>(src.getHeight()) / 8 + 1,
        in.ConsumeIntegral<unsigned char>());
    CCs2dTrafo trafo = zolfuzz::trafo(in);
    trafo.setSizes(src, dst);
    map.mapRaster(src, dst, zolfuzz::rect(in), in.ConsumeBool(), in.ConsumeBool() ? padding.data() : nullptr,
                  in.ConsumeBool() ? &trafo : nullptr);
    const std::unique_ptr<IMap> twin(map.clone());
    if (twin != nullptr) {
        twin->getLut();
        twin->setColorMapIndex(&colors);
        twin->getLut();
    }
    return 0;
}
