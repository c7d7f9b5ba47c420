#include "zolipp/resize.h"

#include "zolipp/checks.h"

#include <cmath>
#include <vector>

namespace zolipp {

namespace {

/// The source position under the centre of a destination pixel.
double positionAt(const ResizeAxis& axis, int index) {
    return axis.center + (index + 0.5 - axis.targetLength / 2) / axis.factor;
}

/// The destination pixels along one axis that show the source's region, and what each of them needs.
template <int taps>
struct AxisTable {
    int begin = 0;
    std::vector<Neighbours<taps>> entries;

    explicit AxisTable(const ResizeAxis& axis) {
        const auto firstFrom = [&](int from, std::int64_t bound) {
            return firstWhere(from, axis.targetLength,
                              [&](int i) { return positionAt(axis, i) >= static_cast<double>(bound); });
        };
        begin = firstFrom(0, axis.regionStart);
        const int end = firstFrom(begin, std::int64_t{axis.regionStart} + axis.regionLength);
        entries.reserve(static_cast<std::size_t>(end - begin));
        for (int i = begin; i < end; ++i) entries.push_back(neighboursAt<taps>(positionAt(axis, i)));
    }
};

template <typename Format, int taps>
void resizeWith(const ResizeJob& job) {
    const AxisTable<taps> columns(job.x);
    const AxisTable<taps> rows(job.y);
    int y = rows.begin;
    for (const Neighbours<taps>& row : rows.entries) {
        std::byte* target = job.target.at(y++) + std::ptrdiff_t{columns.begin} * pixelBytes<Format>;
        for (const Neighbours<taps>& column : columns.entries) {
            samplePixel<Format>(job.source, column, row, target);
            target += pixelBytes<Format>;
        }
    }
}

template <typename Format>
IppStatus resizeCenter(const void* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, void* pDst, int dstStep,
                       IppiSize dstRoiSize, double xFactor, double yFactor, double xCenter, double yCenter,
                       int interpolation) {
    if (pSrc == nullptr || pDst == nullptr) return ippStsNullPtrErr;
    if (isEmpty(srcSize) || isEmpty(srcRoi) || isEmpty(dstRoiSize)) return ippStsSizeErr;
    if (!holdsRow(srcStep, srcSize.width, pixelBytes<Format>)) return ippStsStepErr;
    if (!holdsRow(dstStep, dstRoiSize.width, pixelBytes<Format>)) return ippStsStepErr;
    if (!isInterpolation(interpolation)) return ippStsInterpolationErr;
    const auto isFactor = [](double factor) { return std::isfinite(factor) && factor > 0.0; };
    if (!isFactor(xFactor) || !isFactor(yFactor)) return ippStsResizeFactorErr;
    if (!std::isfinite(xCenter) || !std::isfinite(yCenter)) return ippStsBadArgErr;
    const IppiRect region = cutTo(srcRoi, srcSize.width, srcSize.height);
    if (isEmpty(region)) return ippStsWrongIntersectROI;
    const ResizeJob job{.source = {rowsOf(pSrc, srcStep), srcSize},
                        .target = rowsOf(pDst, dstStep),
                        .x = {xFactor, xCenter, dstRoiSize.width, region.x, region.width},
                        .y = {yFactor, yCenter, dstRoiSize.height, region.y, region.height},
                        .interpolation = interpolation};
    return withMemory([&] {
        resize<Format>(job);
        return ippStsNoErr;
    });
}

}  // namespace

template <typename Format>
void resize(const ResizeJob& job) {
    withTaps(job.interpolation, [&](auto taps) { resizeWith<Format, taps>(job); });
}

}  // namespace zolipp

IppStatus ZOLippiResizeCenter_16u_C1R(const Ipp16u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp16u* pDst,
                                      int dstStep, IppiSize dstRoiSize, double xFactor, double yFactor, double xCenter,
                                      double yCenter, int interpolation) {
    return zolipp::resizeCenter<zolipp::Grey16>(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoiSize, xFactor,
                                                yFactor, xCenter, yCenter, interpolation);
}

IppStatus ZOLippiResizeCenter_8u_C4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp8u* pDst,
                                     int dstStep, IppiSize dstRoiSize, double xFactor, double yFactor, double xCenter,
                                     double yCenter, int interpolation) {
    return zolipp::resizeCenter<zolipp::FourBytes>(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoiSize, xFactor,
                                                   yFactor, xCenter, yCenter, interpolation);
}

IppStatus ZOLippiResizeCenter_8u_AC4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp8u* pDst,
                                      int dstStep, IppiSize dstRoiSize, double xFactor, double yFactor, double xCenter,
                                      double yCenter, int interpolation) {
    return zolipp::resizeCenter<zolipp::ThreeOfFourBytes>(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoiSize,
                                                          xFactor, yFactor, xCenter, yCenter, interpolation);
}
