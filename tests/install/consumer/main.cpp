// A host as small as it can be: shows a flat 12-bit image in a frame without a window and prints two pixels.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccscolorman.h"
#include "zolcs/ccserror.h"
#include "zolcs/ccsframe.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsnearest.h"
#include "zolcs/ccsraster.h"

namespace {

void onReport(CStringW, wchar_t*, int, CStringW message, ErrorCategory) {
    std::printf("report: %ls\n", message.GetString());
}

}  // namespace

int main() {
    const CCsError errors(&onReport);
    CCsRaster raster(8, 8, CCS_GREY12, 1.0, false, false);
    raster.fill(2048);
    CCsFrame frame(32, 16);
    if (frame.init() != 255) return 1;
    frame.clear();

    CCsColorMan palette;
    CCsColorMapT colors;
    palette.getColorMap(colors);
    const std::unique_ptr<IMap> map(MapFactory::CreateMap(MapFactory::Grey12));
    map->setColorMapIndex(&colors);
    map->setWindow(2048, 4096);

    CCs2dTrafo trafo;
    CCsNearest().nearestGrey12IndexMap(raster, frame, trafo, map.get(), nullptr, 0);

    const unsigned char* pixels = frame.getOrigin();
    std::uint32_t centre = 0;
    std::uint32_t corner = 0;
    std::memcpy(&centre, pixels + (8 * frame.getPitch() + 16) * 4, 4);
    std::memcpy(&corner, pixels, 4);
    frame.unlock();
    std::printf("centre 0x%x, corner 0x%x\n", static_cast<unsigned>(centre), static_cast<unsigned>(corner));
    return 0;
}
