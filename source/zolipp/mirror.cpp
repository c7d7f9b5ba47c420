#include "zolipp/checks.h"
#include "zolipp/pixels.h"
#include "zolipp/rowoperations.h"

#include <algorithm>

namespace zolipp {

namespace {

template <typename Format, Order order>
void exchange(std::byte* run, std::byte* other, int count, Ahead ahead) {
    constexpr std::ptrdiff_t size = pixelBytes<Format>;
    const std::ptrdiff_t bytes = count * size;
    std::ptrdiff_t done = 0;
    if (!RowOperations::isPlain()) {
        done = operationsOf<Format>(RowOperations::chosen()).exchange[order](run, other, bytes, ahead);
    }
    for (; done < bytes; done += size) {
        std::byte* pixel = run + done;
        std::swap_ranges(pixel, pixel + Format::written * sizeof(typename Format::Sample),
                         partnerOf<order>(other, done, size));
    }
}

template <typename Format>
IppStatus mirror(void* pSrcDst, int step, IppiSize size, IppiAxis flip) {
    if (pSrcDst == nullptr) return ippStsNullPtrErr;
    if (isEmpty(size)) return ippStsSizeErr;
    if (!holdsRow(step, size.width, pixelBytes<Format>)) return ippStsStepErr;
    if (flip != ippAxsHorizontal && flip != ippAxsVertical && flip != ippAxsBoth) return ippStsMirrorFlipErr;
    const TargetRows rows = rowsOf(pSrcDst, step);
    const std::ptrdiff_t rowBytes = std::ptrdiff_t{size.width} * pixelBytes<Format>;
    const auto reverse = [&](std::byte* row) {
        exchange<Format, Reversed>(row, row + rowBytes, size.width / 2, Ahead{step, step});
    };
    if (flip == ippAxsVertical) {
        for (int y = 0; y < size.height; ++y) reverse(rows.at(y));
        return ippStsNoErr;
    }
    int top = 0;
    int bottom = size.height - 1;
    for (; top < bottom; ++top, --bottom) {
        if (flip == ippAxsBoth) {
            exchange<Format, Reversed>(rows.at(top), rows.at(bottom) + rowBytes, size.width, Ahead{step, -step});
        } else {
            exchange<Format, Straight>(rows.at(top), rows.at(bottom), size.width, Ahead{step, -step});
        }
    }
    if (flip == ippAxsBoth && top == bottom) reverse(rows.at(top));
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
