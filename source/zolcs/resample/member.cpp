#include "zolcs/resample/member.h"

#include "zolcs/ccsmap.h"
#include "zolcs/pixels/pixelsize.h"
#include "zolcs/support/conversion.h"

#include <algorithm>

namespace zolcs {

Stepping prepareStepping(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, SteppingFields& fields) {
    trafo.setSizes(src, dst);
    DisplayToImage m{};
    trafo.getTransformation(m[0], m[1], m[2], m[3], m[4], m[5]);
    fields.stepXu = truncated(m[0] / fixed16Unit);
    fields.stepXv = truncated(m[1] / fixed16Unit);
    fields.stepYu = truncated(m[2] / fixed16Unit);
    fields.stepYv = truncated(m[3] / fixed16Unit);
    fields.originU = truncated(m[4] / fixed16Unit);
    fields.originV = truncated(m[5] / fixed16Unit);
    fields.srcLimitU = saturated(src.getWidth() * fixed16One);
    fields.srcLimitV = saturated(src.getHeight() * fixed16One);
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

std::vector<std::uint32_t> greyTable(IGreyMap* map, bool twelveBits, const EmbeddedOverlay& overlay) {
    constexpr std::size_t twelveBitEntries = 0x1000;
    std::vector<std::uint32_t> table(0x10000);
    unsigned int* entries = table.data();
    if (map != nullptr) map->copyLut(&entries);
    if (overlay.isShown()) {
        overlay.coverTable(table.data());
    } else if (twelveBits) {
        for (auto to = table.begin() + twelveBitEntries; to != table.end(); to += twelveBitEntries) {
            std::copy_n(table.begin(), twelveBitEntries, to);
        }
    }
    return table;
}

}  // namespace zolcs
