// Every nearest-neighbour member under any transformation, shutters, planes and padding.
#include <cstddef>

#include "fuzz_input.h"
#include "zolcs/ccscolorman.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsnearest.h"

namespace {

constexpr int elementSize(int type) {
    switch (type) {
        case CCS_GREY12:
        case CCS_GREY16:
            return 2;
        case CCS_RGB12:
            return 8;
        case CCS_RGB8:
            return 4;
        case CCS_RGB24:
            return 3;
        default:
            return 1;
    }
}

void fill(zolfuzz::Bytes& in, CCsRaster& raster) {
    zolfuzz::scribble(in, raster,
                      static_cast<std::size_t>(raster.getPitch()) * static_cast<std::size_t>(raster.getHeight()) *
                          static_cast<std::size_t>(elementSize(raster.getType())));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zolfuzz::Bytes in(data, size);
    const int member = in.ConsumeIntegralInRange(0, 10);
    const int sourceType = in.ConsumeIntegralInRange(1, 7);
    const int targetType = in.ConsumeIntegralInRange(1, 7);
    const double ratio = in.ConsumeBool() ? 1.0 : zolfuzz::number(in);
    std::vector<zolfuzz::Plane> planes;
    CCsRaster src(in.ConsumeIntegralInRange(1, 70), in.ConsumeIntegralInRange(1, 70), sourceType, ratio, false, false);
    CCsRaster dst(in.ConsumeIntegralInRange(1, 90), in.ConsumeIntegralInRange(1, 60), targetType, 1.0, false, false);
    zolfuzz::decorate(in, src, planes);
    CCs2dTrafo trafo = zolfuzz::trafo(in);
    fill(in, src);

    unsigned char table[4096];
    for (std::size_t i = 0; i < sizeof table; ++i) table[i] = static_cast<unsigned char>(i);
    const auto background = in.ConsumeIntegral<unsigned char>();
    CCsNearest nearest;
    switch (member) {
        case 0:
            nearest.nearestGrey12Grey12(src, dst, trafo, background, in.ConsumeBool());
            break;
        case 1:
            nearest.nearestGrey8Grey8(src, dst, trafo, background);
            break;
        case 2:
            nearest.nearestGrey8IndexMap(src, dst, trafo, table, background);
            break;
        case 3:
            nearest.nearestIndexIndex(src, dst, trafo, background);
            break;
        case 4:
            nearest.nearestRgb12Rgb12(src, dst, trafo, background);
            break;
        case 5:
            nearest.nearestRgb12Rgb8Map(src, dst, trafo, table, background);
            break;
        case 6:
            nearest.nearestRgb8Rgb24Save(src, dst, trafo, background);
            break;
        case 7:
            nearest.nearestRgb8Rgb8(src, dst, trafo, background);
            break;
        case 8:
            nearest.nearestRgb8Rgb8Map(src, dst, trafo, table, background);
            break;
        case 9:
            nearest.nearestRgb8Rgb8MapSeperate(src, dst, trafo, table, table, table, background, 1, 2);
            break;
        default: {
            CCsColorMan palette;
            CCsColorMapT colors;
            palette.getColorMap(colors);
            const std::unique_ptr<IMap> map(MapFactory::CreateMap(MapFactory::Grey12));
            map->setColorMapIndex(&colors);
            map->setWindow(in.ConsumeIntegral<unsigned>(), in.ConsumeIntegralInRange(1, 70000));
            unsigned planeColors[16] = {};
            unsigned groupColors[16] = {};
            static_cast<IGreyMap*>(map.get())->setOverlayColors(planeColors, in.ConsumeBool() ? groupColors : nullptr);
            std::vector<unsigned char> padding;
            if (in.ConsumeBool()) {
                padding.resize(
                    (static_cast<std::size_t>(src.getWidth()) * static_cast<std::size_t>(src.getHeight()) + 7) / 8,
                    in.ConsumeIntegral<unsigned char>());
            }
            nearest.nearestGrey12IndexMap(src, dst, trafo, map.get(), padding.empty() ? nullptr : padding.data(),
                                          background);
        }
    }
    return 0;
}
