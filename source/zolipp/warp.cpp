#include "zolipp/checks.h"
#include "zolipp/rowoperations.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <optional>

namespace zolipp {

namespace {

/// x' = a * x + b * y + c for x, y alike for y: from destination to source.
struct Inverse {
    std::array<double, 3> x;
    std::array<double, 3> y;
};

/// Empty for coefficients that have no inverse, or one so large that products with coordinates could overflow.
std::optional<Inverse> inverseOf(const double coeffs[2][3]) {
    const double* cx = coeffs[0];
    const double* cy = coeffs[1];
    const double determinant = cx[0] * cy[1] - cx[1] * cy[0];
    if (!std::isfinite(determinant) || determinant == 0.0) return std::nullopt;
    const std::array<double, 4> linear{cy[1] / determinant, -cx[1] / determinant, -cy[0] / determinant,
                                       cx[0] / determinant};
    const Inverse inverse{{linear[0], linear[1], -(linear[0] * cx[2] + linear[1] * cy[2])},
                          {linear[2], linear[3], -(linear[2] * cx[2] + linear[3] * cy[2])}};
    constexpr double largest = 1e100;
    const auto isUsable = [](double number) { return std::fabs(number) <= largest; };  // false for a NaN
    const bool usable = std::all_of(inverse.x.begin(), inverse.x.end(), isUsable) &&
                        std::all_of(inverse.y.begin(), inverse.y.end(), isUsable);
    return usable ? std::optional(inverse) : std::nullopt;
}

LinePosition positionInRow(const std::array<double, 3>& coefficients, int row) {
    return {coefficients[0], coefficients[1] * (row + 0.5) + coefficients[2]};
}

struct Span {
    int begin;
    int end;
};

/// The pixels of a span at which a coordinate, less `shift`, lies within [low, high): one run, since rounding keeps the
/// order.
Span within(Span span, const LinePosition& position, double shift, std::int64_t low, std::int64_t high) {
    const auto from = static_cast<double>(low);
    const auto to = static_cast<double>(high);
    const auto between = [&](auto enters, auto leaves) {
        const int begin = firstWhere(span.begin, span.end, [&](int i) { return enters(position.at(i) - shift); });
        return Span{begin, firstWhere(begin, span.end, [&](int i) { return leaves(position.at(i) - shift); })};
    };
    if (position.step < 0.0) return between([&](double p) { return p < to; }, [&](double p) { return p < from; });
    return between([&](double p) { return p >= from; }, [&](double p) { return p >= to; });
}

struct WarpJob {
    SourceImage source;
    IppiRect sourceRegion;  ///< within the source
    TargetRows target;
    IppiRect targetRegion;
    Inverse inverse;
    int interpolation;
};

/// One row of the destination, as far as it shows the source's region.
template <typename Format, int taps>
class WarpedRow {
public:
    WarpedRow(const WarpJob& job, int row)
        : job_(job),
          target_(job.target.at(row)),
          x_(positionInRow(job.inverse.x, row)),
          y_(positionInRow(job.inverse.y, row)) {
        const IppiRect& region = job.sourceRegion;
        shown_ = {job.targetRegion.x, job.targetRegion.x + job.targetRegion.width};
        shown_ = within(shown_, x_, 0.0, region.x, std::int64_t{region.x} + region.width);
        shown_ = within(shown_, y_, 0.0, region.y, std::int64_t{region.y} + region.height);
    }

    [[nodiscard]] bool isEmpty() const { return shown_.begin >= shown_.end; }

    void fillPlainly() const { fillPlainly(shown_); }

    /// Pixels some of whose neighbours lie beyond the source's edges are left to the plain form.
    void fill(const RowOperations& operations, Spots& spots) const {
        const Span inner = innerSpan();
        fillPlainly({shown_.begin, inner.begin});
        for (int i = inner.begin; i < inner.end; i += spotLimit) {
            const int count = std::min(spotLimit, inner.end - i);
            operations.locate[taps / 2](x_, i, count, spots.x);
            operations.locate[taps / 2](y_, i, count, spots.y);
            if constexpr (taps == 1) {
                copy(spots, count, pixel(i));
            } else {
                operationsOf<Format>(operations).mixSpots[taps / 4](job_.source, spots, count, pixel(i));
            }
        }
        fillPlainly({inner.end, shown_.end});
    }

private:
    [[nodiscard]] std::byte* pixel(int column) const { return target_ + std::ptrdiff_t{column} * pixelBytes<Format>; }

    /// The shown pixels of which all neighbours lie inside the source.
    [[nodiscard]] Span innerSpan() const {
        if constexpr (taps == 1) return shown_;
        const auto innerIn = [](Span span, const LinePosition& position, int length) {
            return within(span, position, 0.5, taps / 2 - 1, std::int64_t{length} - taps / 2);
        };
        return innerIn(innerIn(shown_, x_, job_.source.size.width), y_, job_.source.size.height);
    }

    void fillPlainly(Span span) const {
        for (int i = span.begin; i < span.end; ++i) {
            samplePixel<Format>(job_.source, neighboursAt<taps>(x_.at(i)), neighboursAt<taps>(y_.at(i)), pixel(i));
        }
    }

    void copy(const Spots& spots, int count, std::byte* target) const {
        for (int i = 0; i < count; ++i, target += pixelBytes<Format>) {
            const std::byte* row = job_.source.rows.at(spots.y.first[i]);
            copyPixel<Format>(row + std::ptrdiff_t{spots.x.first[i]} * pixelBytes<Format>, target);
        }
    }

    const WarpJob& job_;
    std::byte* target_;
    LinePosition x_;
    LinePosition y_;
    Span shown_{};
};

/// False when no pixel shows the source's region.
template <typename Format, int taps>
bool warpWith(const WarpJob& job) {
    const RowOperations& operations = RowOperations::chosen();
    const bool plainly = RowOperations::isPlain();
    Spots spots;
    bool any = false;
    const int end = job.targetRegion.y + job.targetRegion.height;
    for (int y = job.targetRegion.y; y < end; ++y) {
        const WarpedRow<Format, taps> row(job, y);
        if (row.isEmpty()) continue;
        any = true;
        plainly ? row.fillPlainly() : row.fill(operations, spots);
    }
    return any;
}

template <typename Format>
IppStatus warpAffine(const void* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, void* pDst, int dstStep,
                     IppiRect dstRoi, const double coeffs[2][3], int interpolation) {
    if (pSrc == nullptr || pDst == nullptr || coeffs == nullptr) return ippStsNullPtrErr;
    if (isEmpty(srcSize) || isEmpty(srcRoi) || isEmpty(dstRoi)) return ippStsSizeErr;
    if (!holdsRow(srcStep, srcSize.width, pixelBytes<Format>)) return ippStsStepErr;
    const std::int64_t right = std::int64_t{dstRoi.x} + dstRoi.width;
    const std::int64_t bottom = std::int64_t{dstRoi.y} + dstRoi.height;
    if (dstStep < 1 || !holdsRow(dstStep, right, pixelBytes<Format>)) return ippStsStepErr;
    if (!isInterpolation(interpolation)) return ippStsInterpolationErr;
    const auto inverse = inverseOf(coeffs);
    if (!inverse) return ippStsCoeffErr;
    const IppiRect sourceRegion = cutTo(srcRoi, srcSize.width, srcSize.height);
    const IppiRect targetRegion = cutTo(dstRoi, right, bottom);
    if (isEmpty(sourceRegion) || isEmpty(targetRegion)) return ippStsWrongIntersectROI;
    if (sourceRegion.width == 1 || sourceRegion.height == 1) return ippStsRectErr;
    const WarpJob job{.source = {rowsOf(pSrc, srcStep), srcSize},
                      .sourceRegion = sourceRegion,
                      .target = rowsOf(pDst, dstStep),
                      .targetRegion = targetRegion,
                      .inverse = *inverse,
                      .interpolation = interpolation};
    bool any = false;
    withTaps(interpolation, [&](auto taps) { any = warpWith<Format, taps>(job); });
    return any ? ippStsNoErr : ippStsWrongIntersectQuad;
}

}  // namespace

}  // namespace zolipp

IppStatus ZOLippiWarpAffine_16u_C1R(const Ipp16u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp16u* pDst,
                                    int dstStep, IppiRect dstRoi, const double coeffs[2][3], int interpolation) {
    return zolipp::warpAffine<zolipp::Grey16>(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoi, coeffs,
                                              interpolation);
}

IppStatus ZOLippiWarpAffine_8u_C4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp8u* pDst,
                                   int dstStep, IppiRect dstRoi, const double coeffs[2][3], int interpolation) {
    return zolipp::warpAffine<zolipp::FourBytes>(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoi, coeffs,
                                                 interpolation);
}

IppStatus ZOLippiWarpAffine_8u_AC4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp8u* pDst,
                                    int dstStep, IppiRect dstRoi, const double coeffs[2][3], int interpolation) {
    return zolipp::warpAffine<zolipp::ThreeOfFourBytes>(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoi, coeffs,
                                                        interpolation);
}

IppStatus ZOLippiGetAffineBound(IppiRect srcRoi, double bound[2][2], const double coeffs[2][3]) {
    if (bound == nullptr || coeffs == nullptr) return ippStsNullPtrErr;
    if (zolipp::isEmpty(srcRoi)) return ippStsSizeErr;
    if (!zolipp::inverseOf(coeffs)) return ippStsCoeffErr;
    if (srcRoi.width == 1 || srcRoi.height == 1) return ippStsRectErr;
    const double left = srcRoi.x;
    const double top = srcRoi.y;
    const double right = left + srcRoi.width;
    const double bottom = top + srcRoi.height;
    double found[2][2];
    for (int i = 0; i < 2; ++i) {
        const double* c = coeffs[i];
        const auto at = [&](double x, double y) { return c[0] * x + c[1] * y + c[2]; };
        const std::array<double, 4> corners{at(left, top), at(right, top), at(left, bottom), at(right, bottom)};
        // Coefficients that can be inverted may still carry a corner beyond all numbers.
        if (!std::all_of(corners.begin(), corners.end(), [](double place) { return std::isfinite(place); })) {
            return ippStsCoeffErr;
        }
        const auto [low, high] = std::minmax_element(corners.begin(), corners.end());
        found[0][i] = *low;
        found[1][i] = *high;
    }
    std::memcpy(bound, found, sizeof found);
    return ippStsNoErr;
}
