#include "zolipp/checks.h"
#include "zolipp/pixels.h"

#include <cstring>

IppStatus ZOLippiSet_8u_AC4R(const Ipp8u value[3], Ipp8u* pDst, int dstStep, IppiSize roiSize) {
    using Format = zolipp::ThreeOfFourBytes;
    if (value == nullptr || pDst == nullptr) return ippStsNullPtrErr;
    if (zolipp::isEmpty(roiSize)) return ippStsSizeErr;
    if (!zolipp::holdsRow(dstStep, roiSize.width, zolipp::pixelBytes<Format>)) return ippStsStepErr;
    std::byte pixel[Format::channels] = {};
    std::memcpy(pixel, value, Format::written);
    const zolipp::TargetRows rows = zolipp::rowsOf(pDst, dstStep);
    for (int y = 0; y < roiSize.height; ++y) {
        std::byte* target = rows.at(y);
        for (int x = 0; x < roiSize.width; ++x, target += zolipp::pixelBytes<Format>) {
            zolipp::copyPixel<Format>(pixel, target);
        }
    }
    return ippStsNoErr;
}

IppStatus ZOLippsSet_8u(Ipp8u val, Ipp8u* pDst, int len) {
    if (pDst == nullptr) return ippStsNullPtrErr;
    if (len < 1) return ippStsSizeErr;
    std::memset(pDst, val, static_cast<std::size_t>(len));
    return ippStsNoErr;
}
