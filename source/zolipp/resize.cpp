#include "zolipp/resize.h"

#include "zolipp/checks.h"
#include "zolipp/rowoperations.h"
#include "zolipp/sse2.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace zolipp {

namespace {

/// The source position under the centre of a destination pixel.
double positionAt(const ResizeAxis& axis, int index) {
    const int half = axis.targetLength / 2;  // of whole pixels, in the odd lengths too
    return axis.center + (index + 0.5 - half) / axis.factor;
}

/// The destination pixels along one axis that show the source's region.
struct Shown {
    int begin;
    int end;

    explicit Shown(const ResizeAxis& axis) {
        const auto firstFrom = [&](int from, std::int64_t bound) {
            return firstWhere(from, axis.targetLength,
                              [&](int i) { return positionAt(axis, i) >= static_cast<double>(bound); });
        };
        begin = firstFrom(0, axis.regionStart);
        end = firstFrom(begin, std::int64_t{axis.regionStart} + axis.regionLength);
    }
    [[nodiscard]] int count() const { return end - begin; }
};

/// Without tables and vectors, pixel by pixel.
template <typename Format, int taps>
void resizePlainly(const ResizeJob& job) {
    const Shown columns(job.x);
    const Shown rows(job.y);
    for (int y = rows.begin; y < rows.end; ++y) {
        const auto fromRows = neighboursAt<taps>(positionAt(job.y, y));
        for (int x = columns.begin; x < columns.end; ++x) {
            samplePixel<Format>(job.source, neighboursAt<taps>(positionAt(job.x, x)), fromRows,
                                job.target.at(y) + std::ptrdiff_t{x} * pixelBytes<Format>);
        }
    }
}

/// Copies pixels; a row that shows the same source row as the one before is copied as a whole.
template <typename Format>
void resizeNearest(const ResizeJob& job) {
    const Shown columns(job.x);
    const Shown rows(job.y);
    std::vector<std::ptrdiff_t> offsets;
    offsets.reserve(static_cast<std::size_t>(columns.count()));
    for (int x = columns.begin; x < columns.end; ++x) {
        offsets.push_back(static_cast<std::ptrdiff_t>(neighboursAt<1>(positionAt(job.x, x)).first) *
                          pixelBytes<Format>);
    }
    std::int64_t previous = -1;
    for (int y = rows.begin; y < rows.end; ++y) {
        const std::int64_t row = neighboursAt<1>(positionAt(job.y, y)).first;
        std::byte* target = job.target.at(y) + std::ptrdiff_t{columns.begin} * pixelBytes<Format>;
        if (row == previous && Format::written == Format::channels) {
            std::memcpy(target, target - job.target.step, offsets.size() * pixelBytes<Format>);
            continue;
        }
        const std::byte* source = job.source.rows.at(static_cast<std::ptrdiff_t>(row));
        for (const std::ptrdiff_t offset : offsets) {
            copyPixel<Format>(source + offset, target);
            target += pixelBytes<Format>;
        }
        previous = row;
    }
}

/// Neighbours and weights of the shown columns. Their indices count from `firstColumn`, so that all are 0 or more.
template <int taps>
class ColumnTables {
public:
    ColumnTables(const ResizeAxis& axis, const Shown& shown)
        : pitch_(static_cast<std::size_t>(shown.count()) + rowSlack), first_(pitch_), weights_(pitch_ * taps) {
        std::size_t i = 0;
        for (int x = shown.begin; x < shown.end; ++x, ++i) {
            const auto neighbours = neighboursAt<taps>(positionAt(axis, x));
            if (i == 0) firstColumn_ = neighbours.first;
            first_[i] = static_cast<std::int32_t>(neighbours.first - firstColumn_);
            for (std::size_t k = 0; k < taps; ++k) weights_[k * pitch_ + i] = neighbours.weights[k];
        }
        // What vectors read beyond the last column stays close to it.
        std::fill(first_.begin() + shown.count(), first_.end(), first_[i - 1]);
        width_ = first_[i - 1] + taps;
        table_ = {first_.data(), weights_.data(), static_cast<std::ptrdiff_t>(pitch_), shown.count()};
    }

    [[nodiscard]] std::int64_t firstColumn() const { return firstColumn_; }
    /// Of the columns of the source that take part, with those beyond its edges.
    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] const ColumnTable& table() const { return table_; }

private:
    std::size_t pitch_;
    std::vector<std::int32_t> first_;
    std::vector<float> weights_;
    std::int64_t firstColumn_ = 0;
    int width_ = 0;
    ColumnTable table_{};
};

/// Source rows that have been filtered along, for as long as destination rows need them.
template <typename Format, int taps>
class FilteredRows {
public:
    FilteredRows(const SourceImage& source, const ColumnTables<taps>& columns, const FormatOperations& operations)
        : source_(source),
          columns_(columns),
          operations_(operations),
          widened_(floatsOf(columns.width())),
          pitch_(floatsOf(columns.table().count)),
          filtered_(pitch_ * taps) {
        known_.fill(-1);
    }

    /// `taps` rows that follow each other keep their places; those beyond the edges are the outermost ones.
    const float* at(std::int64_t row) {
        const auto y = std::clamp<std::int64_t>(row, 0, source_.size.height - 1);
        const auto place = static_cast<std::size_t>(y % taps);
        float* filtered = &filtered_[place * pitch_];
        if (known_[place] != y) {
            const std::byte* pixels = source_.rows.at(static_cast<std::ptrdiff_t>(y));
            prefetchNext(pixels);
            widen(pixels);
            operations_.filterColumns[taps / 4](widened_.data(), columns_.table(), filtered);
            known_[place] = y;
        }
        return filtered;
    }

private:
    static std::size_t floatsOf(int pixels) {
        return (static_cast<std::size_t>(pixels) + rowSlack) * static_cast<std::size_t>(Format::channels);
    }

    /// Where every row is in pages of its own, the processors' own prefetching starts anew with each.
    void prefetchNext(const std::byte* row) const {
        const std::ptrdiff_t first = static_cast<std::ptrdiff_t>(columns_.firstColumn()) * pixelBytes<Format>;
        const std::ptrdiff_t bytes = std::ptrdiff_t{columns_.width()} * pixelBytes<Format>;
        for (std::ptrdiff_t i = 0; i < bytes; i += cacheLineBytes) prefetch(row, source_.rows.step + first + i);
    }

    void widen(const std::byte* row) {
        const std::int64_t begin = columns_.firstColumn();
        const std::int64_t end = begin + columns_.width();
        const std::int64_t from = std::max<std::int64_t>(begin, 0);
        const std::int64_t to = std::min<std::int64_t>(end, source_.size.width);
        const auto pixel = [&](std::int64_t column) {
            return &widened_[static_cast<std::size_t>(column - begin) * Format::channels];
        };
        operations_.widen(row + static_cast<std::ptrdiff_t>(from) * pixelBytes<Format>, static_cast<int>(to - from),
                          pixel(from));
        for (std::int64_t x = begin; x < from; ++x) std::copy_n(pixel(from), Format::channels, pixel(x));
        for (std::int64_t x = to; x < end; ++x) std::copy_n(pixel(to - 1), Format::channels, pixel(x));
    }

    const SourceImage& source_;
    const ColumnTables<taps>& columns_;
    const FormatOperations& operations_;
    std::vector<float> widened_;
    std::size_t pitch_;
    std::vector<float> filtered_;
    PerNeighbour<std::int64_t, taps> known_;
};

/// Rows are filtered along once, however many destination rows mix them.
template <typename Format, int taps>
void resizeFiltered(const ResizeJob& job) {
    const Shown shownColumns(job.x);
    const Shown shownRows(job.y);
    if (shownColumns.count() == 0) return;
    const FormatOperations& operations = operationsOf<Format>(RowOperations::chosen());
    const ColumnTables<taps> columns(job.x, shownColumns);
    FilteredRows<Format, taps> filtered(job.source, columns, operations);
    for (int y = shownRows.begin; y < shownRows.end; ++y) {
        const auto neighbours = neighboursAt<taps>(positionAt(job.y, y));
        PerNeighbour<const float*, taps> rows;
        std::int64_t row = neighbours.first;
        for (const float*& samples : rows) samples = filtered.at(row++);
        operations.mixRows[taps / 4](rows.data(), neighbours.weights.data(), shownColumns.count(),
                                     job.target.at(y) + std::ptrdiff_t{shownColumns.begin} * pixelBytes<Format>);
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
    withTaps(job.interpolation, [&](auto taps) {
        if (RowOperations::isPlain()) {
            resizePlainly<Format, taps>(job);
        } else if constexpr (taps == 1) {
            resizeNearest<Format>(job);
        } else {
            resizeFiltered<Format, taps>(job);
        }
    });
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
