// Sums over cells whose edges run along the source's rows and columns: first down the rows, then along them.
#pragma once

#include "viewing/averaging/coverage.h"
#include "viewing/averaging/grid.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace viewing::averaging {

/// Gives the rows of a reduced raster from the first to the last: the sum of each channel's samples, every sample
/// counted by how much of its pixel is covered, in 2^-20 of a pixel. All sums are exact.
template <typename Sample, std::size_t Channels>
class AxisSums {
public:
    /// Grid and coverage must outlive this.
    AxisSums(const Grid<Sample, Channels>& source, const AxisCoverage& coverage)
        : source_(source),
          columns_(coverage.columns),
          rows_(coverage.rows),
          pixelwise_(columns_.arePixels()),
          first_(pixelOf(columns_.bounds.front())),
          end_(pixelOf(columns_.bounds.back() + onePixel - 1)),
          sums_(cellCount() * Channels),
          areas_(cellCount()) {
        const std::size_t samples = static_cast<std::size_t>(end_ - first_) * Channels;
        narrow_.resize(samples + Channels);
        before_.resize(samples + Channels);
    }

    /// The next row: `Channels` sums for each pixel.
    std::span<const std::uint64_t> next() {
        const std::int64_t from = rows_.bounds[row_];
        const std::int64_t to = rows_.bounds[row_ + 1];
        ++row_;
        constexpr std::uint64_t largest = std::numeric_limits<Sample>::max();
        if (largest * static_cast<std::uint64_t>(to - from) <= std::numeric_limits<std::uint32_t>::max()) {
            sumColumns(narrow_, from, to);
        } else {
            wide_.resize(narrow_.size());
            sumColumns(wide_, from, to);
        }
        return sums_;
    }

    /// The covered areas of the pixels of the row that was given last, in the same unit.
    [[nodiscard]] std::span<const std::uint64_t> areas() {
        const std::int64_t height = rows_.bounds[row_] - rows_.bounds[row_ - 1];
        for (int i = 0; i < columns_.count(); ++i)
            areas_[static_cast<std::size_t>(i)] = static_cast<std::uint64_t>(columns_.length(i) * height);
        return areas_;
    }

private:
    static int pixelOf(std::int64_t position) { return static_cast<int>(position >> positionBits); }
    [[nodiscard]] std::size_t cellCount() const { return static_cast<std::size_t>(columns_.count()); }

    /// `Sum` holds what a column adds up to within one row of cells.
    template <typename Sum>
    void sumColumns(std::vector<Sum>& columns, std::int64_t from, std::int64_t to) {
        constexpr std::size_t block = 32;  // as many sums as fit the processor's registers
        const std::size_t samples = static_cast<std::size_t>(end_ - first_) * Channels;
        std::size_t x = 0;
        for (; x + block <= samples; x += block) sumBlock<Sum, block>(&columns[x], x, from, to);
        for (; x < samples; ++x) sumBlock<Sum, 1>(&columns[x], x, from, to);
        sumCells(columns);
    }

    template <typename Sum, std::size_t count>
    void sumBlock(Sum* out, std::size_t x, std::int64_t from, std::int64_t to) const {
        const std::size_t offset = static_cast<std::size_t>(first_) * Channels + x;
        const auto at = [this, offset](int y) { return source_.row(y) + offset; };
        std::array<Sum, count> sum{};
        const int firstWhole = pixelOf(from + onePixel - 1);
        const int endWhole = pixelOf(to);
        for (int y = firstWhole; y < endWhole; ++y) {
            const Sample* const samples = at(y);
            for (std::size_t i = 0; i < count; ++i) sum[i] += samples[i];
        }
        for (Sum& value : sum) value <<= static_cast<unsigned>(positionBits);
        const auto addPart = [&](int y, std::int64_t part) {
            const Sample* const samples = at(y);
            // Written as a product of 16 bits each, for which processors have vectors.
            const auto weight = static_cast<std::uint16_t>(part);
            for (std::size_t i = 0; i < count; ++i)
                sum[i] += static_cast<std::uint32_t>(weight) * static_cast<std::uint16_t>(samples[i]);
        };
        if (firstWhole > endWhole) {
            addPart(endWhole, to - from);  // within one pixel
        } else {
            if (const std::int64_t part = firstWhole * onePixel - from; part != 0) addPart(firstWhole - 1, part);
            if (const std::int64_t part = to - endWhole * onePixel; part != 0) addPart(endWhole, part);
        }
        for (std::size_t i = 0; i < count; ++i) out[i] = sum[i];
    }

    /// Each cell is the difference of two sums that begin at the first column.
    template <typename Sum>
    void sumCells(const std::vector<Sum>& columns) {
        if (pixelwise_) {
            for (std::size_t i = 0; i < sums_.size(); ++i) sums_[i] = std::uint64_t{columns[i]} << positionBits;
            return;
        }
        std::array<std::uint64_t, Channels> running{};
        for (std::size_t i = 0; i + Channels < columns.size(); i += Channels) {
            for (std::size_t k = 0; k < Channels; ++k) {
                before_[i + k] = running[k];
                running[k] += columns[i + k];
            }
        }
        for (std::size_t k = 0; k < Channels; ++k) before_[columns.size() - Channels + k] = running[k];

        std::array<std::uint64_t, Channels> last{};
        for (std::size_t i = 0; i <= cellCount(); ++i) {
            const std::int64_t bound = columns_.bounds[i];
            const std::size_t column = static_cast<std::size_t>(pixelOf(bound) - first_) * Channels;
            const auto part = static_cast<std::uint32_t>(bound & (onePixel - 1));
            std::array<std::uint64_t, Channels> sum;
            for (std::size_t k = 0; k < Channels; ++k)
                sum[k] = (before_[column + k] << positionBits) + std::uint64_t{part} * columns[column + k];
            if (i > 0)
                for (std::size_t k = 0; k < Channels; ++k) sums_[(i - 1) * Channels + k] = sum[k] - last[k];
            last = sum;
        }
    }

    Grid<Sample, Channels> source_;
    const AxisCells& columns_;
    const AxisCells& rows_;
    bool pixelwise_;
    int first_;  // source columns that are covered at all: from here
    int end_;    // to before this one
    std::size_t row_ = 0;
    std::vector<std::uint64_t> sums_;
    std::vector<std::uint64_t> areas_;
    std::vector<std::uint32_t> narrow_;  // with a column of zeros at the end
    std::vector<std::uint64_t> wide_;
    std::vector<std::uint64_t> before_;
};

}  // namespace viewing::averaging
