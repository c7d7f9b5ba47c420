#include "zolipp/checks.h"
#include "zolipp/pixels.h"

namespace zolipp {

namespace {

template <typename Format>
void swapPixels(std::byte* a, std::byte* b) {
    std::swap_ranges(a, a + Format::written * sizeof(typename Format::Sample), b);
}

/// Exchanges two rows of different addresses; `reversed`: each back to front.
template <typename Format>
void swapRows(std::byte* upper, std::byte* lower, int width, bool reversed) {
    for (int x = 0; x < width; ++x) {
        const int other = reversed ? width - 1 - x : x;
        swapPixels<Format>(upper + std::ptrdiff_t{x} * pixelBytes<Format>,
                           lower + std::ptrdiff_t{other} * pixelBytes<Format>);
    }
}

template <typename Format>
void reverseRow(std::byte* row, int width) {
    for (int left = 0, right = width - 1; left < right; ++left, --right) {
        swapPixels<Format>(row + std::ptrdiff_t{left} * pixelBytes<Format>,
                           row + std::ptrdiff_t{right} * pixelBytes<Format>);
    }
}

template <typename Format>
IppStatus mirror(void* pSrcDst, int step, IppiSize size, IppiAxis flip) {
    if (pSrcDst == nullptr) return ippStsNullPtrErr;
    if (isEmpty(size)) return ippStsSizeErr;
    if (!holdsRow(step, size.width, pixelBytes<Format>)) return ippStsStepErr;
    if (flip != ippAxsHorizontal && flip != ippAxsVertical && flip != ippAxsBoth) return ippStsMirrorFlipErr;
    const TargetRows rows = rowsOf(pSrcDst, step);
    if (flip == ippAxsVertical) {
        for (int y = 0; y < size.height; ++y) reverseRow<Format>(rows.at(y), size.width);
        return ippStsNoErr;
    }
    const bool both = flip == ippAxsBoth;
    int top = 0;
    int bottom = size.height - 1;
    for (; top < bottom; ++top, --bottom) swapRows<Format>(rows.at(top), rows.at(bottom), size.width, both);
    if (both && top == bottom) reverseRow<Format>(rows.at(top), size.width);
    return ippStsNoErr;
}

}  // namespace

}  // namespace zolipp

IppStatus ZOLippiMirror_16u_C1IR(Ipp16u* pSrcDst, int srcDstStep, IppiSize roiSize, IppiAxis flip) {
    return zolipp::mirror<zolipp::Grey16>(pSrcDst, srcDstStep, roiSize, flip);
}

IppStatus ZOLippiMirror_8u_C4IR(Ipp8u* pSrcDst, int srcDstStep, IppiSize roiSize, IppiAxis flip) {
    return zolipp::mirror<zolipp::FourBytes>(pSrcDst, srcDstStep, roiSize, flip);
}

IppStatus ZOLippiMirror_8u_AC4IR(Ipp8u* pSrcDst, int srcDstStep, IppiSize roiSize, IppiAxis flip) {
    return zolipp::mirror<zolipp::ThreeOfFourBytes>(pSrcDst, srcDstStep, roiSize, flip);
}
