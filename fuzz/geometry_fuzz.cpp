// Shutter geometry, bit tests, coordinate conversion and transfers of shutters between rasters.
#include <cstddef>

#include "fuzz_input.h"
#include "zolcs/ccsimageutils.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zolfuzz::Bytes in(data, size);
    std::vector<zolfuzz::Plane> planes;
    CCsRaster src(in.ConsumeIntegralInRange(1, 50), in.ConsumeIntegralInRange(1, 50), CCS_GREY12, 1.0, false, false);
    CCsRaster dst(in.ConsumeIntegralInRange(1, 50), in.ConsumeIntegralInRange(1, 50), CCS_RGB8, 1.0, false, false);
    zolfuzz::decorate(in, src, planes);
    CCs2dTrafo trafo = zolfuzz::trafo(in);
    if (in.ConsumeBool()) trafo.setSizes(src, dst);

    const CCsDisplayShutterInfo shutter = src.getDisplayShutterInfo();
    const int x = zolfuzz::coordinate(in);
    const int y = zolfuzz::coordinate(in);
    CCsImageUtils::isPointInsideDisplayShutter(shutter, x, y);
    CCsImageUtils::isPointInsidePolygon(shutter.polygon, zolfuzz::number(in), zolfuzz::number(in));
    int run[2] = {zolfuzz::coordinate(in), zolfuzz::coordinate(in)};
    CCsImageUtils::calculateDisplayShutterBoundIntersection(run, y, shutter, zolfuzz::rect(in), in.ConsumeBool());
    RECT bounds = zolfuzz::rect(in);
    CCsImageUtils::getDisplayShutterBounds(bounds, src, trafo, in.ConsumeBool());
    CCsImageUtils::getAffineBounds(zolfuzz::rect(in), trafo, bounds, in.ConsumeBool());
    CCsImageUtils::isBitmapShutterSet(src.getBitmapShutterInfo(), x, y);
    unsigned short index = 0;
    CCsImageUtils::is60XXOverlayBitset(src.get60XXOverlayGroup(), index, x, y);
    CCsImageUtils::imgToDsp(trafo, CCsPoint(x, y));
    CCsImageUtils::dspToImg(trafo, CCsPoint(x, y));
    CCsImageUtils::dspToImg(trafo, zolfuzz::rect(in));
    CCsImageUtils::roundOff(zolfuzz::number(in));
    CCsImageUtils::calculateFontHeight(zolfuzz::rect(in), zolfuzz::coordinate(in), zolfuzz::coordinate(in),
                                       in.ConsumeBool());
    CCsImageUtils::fillDisplayedRasterWithShutterPresentationValue(src, dst, dst.getOrigin(),
                                                                   in.ConsumeBool() ? &trafo : nullptr, RECT{});
    dst.unlock();
    dst.setShutterInfo(src, in.ConsumeBool() ? &trafo : nullptr);
    const CCsRaster copy(dst);
    return 0;
}
