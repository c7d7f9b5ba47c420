#include "zolcs/resample/member.h"

#include "zolcs/pixels/pixelsize.h"

#include "zolcs/ccsmap.h"
#include "zolcs/pixels/imageview.h"

#include <algorithm>

namespace zolcs {

Stepping prepareStepping(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, const SteppingFields& fields) {
    trafo.setSizes(src, dst);
    DisplayToImage m{};
    trafo.getTransformation(m[0], m[1], m[2], m[3], m[4], m[5]);
    fields.stepXu = saturated32(m[0] * 65536.0);
    fields.stepXv = saturated32(m[1] * 65536.0);
    fields.stepYu = saturated32(m[2] * 65536.0);
    fields.stepYv = saturated32(m[3] * 65536.0);
    fields.originU = saturated32(m[4] * 65536.0);
    fields.originV = saturated32(m[5] * 65536.0);
    fields.srcLimitU = saturated32(src.getWidth() * fixed16One);
    fields.srcLimitV = saturated32(src.getHeight() * fixed16One);
    fields.srcPitch = src.getPitch();
    fields.dstWidth = dst.getWidth();
    fields.dstHeight = dst.getHeight();
    fields.dstPitch = dst.getPitch();
    return makeStepping(m, src.getWidth(), src.getHeight(), dst.getWidth(), dst.getHeight());
}

bool pixelSizesAre(const CCsImage& src, const CCsImage& dst, int sourceBytes, int destinationBytes) {
    return pixelSize(src.getType()) == sourceBytes && pixelSize(dst.getType()) == destinationBytes;
}

bool areGreyToDisplay(const CCsImage& src, const CCsImage& dst) {
    const bool typesFit = src.getType() == CCS_GREY12 || dst.getType() == CCS_INDEX8 || src.getType() == CCS_GREY16 ||
                          dst.getType() == CCS_GREY16;
    return typesFit && pixelSizesAre(src, dst, 2, 4);
}

std::vector<std::uint32_t> greyTable(IGreyMap* map, bool twelveBits, const std::uint32_t* embeddedColours) {
    constexpr std::size_t twelveBitEntries = 0x1000;
    std::vector<std::uint32_t> table(0x10000);
    unsigned int* entries = table.data();
    if (map != nullptr) map->copyLut(&entries);
    for (std::size_t top = 1; top < 16; ++top) {
        const auto first = table.begin() + static_cast<std::ptrdiff_t>(top * twelveBitEntries);
        if (embeddedColours != nullptr) {
            std::fill_n(first, twelveBitEntries, embeddedColours[top]);
        } else if (twelveBits) {
            std::copy_n(table.begin(), twelveBitEntries, first);
        }
    }
    return table;
}

}  // namespace zolcs
