#include "zolipp/checks.h"
#include "zolipp/pixels.h"

namespace zolipp {

namespace {

template <typename Format>
IppStatus transpose(const void* pSrc, int srcStep, void* pDst, int dstStep, IppiSize size) {
    if (pSrc == nullptr || pDst == nullptr) return ippStsNullPtrErr;
    if (isEmpty(size)) return ippStsSizeErr;
    if (!holdsRow(srcStep, size.width, pixelBytes<Format>)) return ippStsStepErr;
    if (!holdsRow(dstStep, size.height, pixelBytes<Format>)) return ippStsStepErr;
    const SourceRows source = rowsOf(pSrc, srcStep);
    const TargetRows target = rowsOf(pDst, dstStep);
    for (int x = 0; x < size.width; ++x) {
        for (int y = 0; y < size.height; ++y) {
            copyPixel<Format>(source.at(y) + std::ptrdiff_t{x} * pixelBytes<Format>,
                              target.at(x) + std::ptrdiff_t{y} * pixelBytes<Format>);
        }
    }
    return ippStsNoErr;
}

}  // namespace

}  // namespace zolipp

IppStatus ZOLippiTranspose_16u_C1R(const Ipp16u* pSrc, int srcStep, Ipp16u* pDst, int dstStep, IppiSize roiSize) {
    return zolipp::transpose<zolipp::Grey16>(pSrc, srcStep, pDst, dstStep, roiSize);
}

IppStatus ZOLippiTranspose_8u_C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize) {
    return zolipp::transpose<zolipp::FourBytes>(pSrc, srcStep, pDst, dstStep, roiSize);
}
