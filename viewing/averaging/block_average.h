// Means over cells of whole pixels, all of one size: two to one, three to one and so on, at a fraction of the cost of
// cells that share pixels.
#pragma once

#include "viewing/averaging/coverage.h"
#include "viewing/averaging/grid.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

namespace viewing::averaging {

/// The pixels of every cell along an axis where all cells are that many whole pixels, else 0.
inline std::int64_t wholeCellLength(const AxisCells& cells) {
    const std::int64_t length = cells.count() == 0 ? 0 : cells.length(0);
    if (length % onePixel != 0 || cells.bounds.front() % onePixel != 0) return 0;
    for (int i = 1; i < cells.count(); ++i)
        if (cells.length(i) != length) return 0;
    return length / onePixel;
}

template <typename Sample, std::size_t Channels>
class BlockMeans {
public:
    /// Whether all cells are whole pixels, and few enough for this class's sums. Grid and coverage must outlive this.
    static bool canDo(const AxisCoverage& coverage) {
        const std::int64_t columns = wholeCellLength(coverage.columns);
        const std::int64_t rows = wholeCellLength(coverage.rows);
        constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max() / std::numeric_limits<Sample>::max();
        return columns > 0 && rows > 0 && columns <= most / 2 / rows;
    }

    BlockMeans(const Grid<Sample, Channels>& source, const AxisCoverage& coverage)
        : source_(source),
          columns_(static_cast<std::size_t>(wholeCellLength(coverage.columns))),
          rows_(static_cast<int>(wholeCellLength(coverage.rows))),
          width_(static_cast<std::size_t>(coverage.columns.count())),
          height_(coverage.rows.count()),
          left_(static_cast<std::size_t>(coverage.columns.bounds.front() / onePixel)),
          top_(static_cast<int>(coverage.rows.bounds.front() / onePixel)) {}

    void fill(Sample* out) {
        // Two sums of 16 bits fit a vector where one of 32 bits does.
        const std::size_t area = columns_ * static_cast<std::size_t>(rows_);
        constexpr std::size_t room = std::numeric_limits<std::uint16_t>::max() / std::numeric_limits<Sample>::max();
        if (sizeof(Sample) == 1 && area < room) {
            fillBy<std::uint16_t>(out);
        } else {
            fillBy<std::uint32_t>(out);
        }
    }

private:
    template <typename Sum>
    void fillBy(Sample* out) {
        std::vector<Sum> columns(width_ * columns_ * Channels);
        std::vector<Sum> cells(width_ * Channels);
        for (int y = 0; y < height_; ++y, out += cells.size()) {
            sumColumns(columns, top_ + y * rows_);
            if (columns_ == 2) {
                sumPairs(columns, cells);
            } else {
                sumCells(columns, cells);
            }
            divide(cells, out);
        }
    }

    template <typename Sum>
    void sumColumns(std::vector<Sum>& columns, int y) const {
        const auto at = [this](int row) { return source_.row(row) + left_ * Channels; };
        const Sample* const first = at(y);
        if (rows_ == 1) {
            for (std::size_t i = 0; i < columns.size(); ++i) columns[i] = first[i];
            return;
        }
        const Sample* const second = at(y + 1);
        for (std::size_t i = 0; i < columns.size(); ++i) columns[i] = static_cast<Sum>(Sum{first[i]} + second[i]);
        for (int row = 2; row < rows_; ++row) {
            const Sample* const samples = at(y + row);
            for (std::size_t i = 0; i < columns.size(); ++i) columns[i] = static_cast<Sum>(columns[i] + samples[i]);
        }
    }

    template <typename Sum>
    void sumPairs(const std::vector<Sum>& columns, std::vector<Sum>& cells) const {
        const Sum* in = columns.data();
        for (std::size_t i = 0; i < cells.size(); i += Channels, in += 2 * Channels)
            for (std::size_t k = 0; k < Channels; ++k) cells[i + k] = static_cast<Sum>(in[k] + in[Channels + k]);
    }

    template <typename Sum>
    void sumCells(const std::vector<Sum>& columns, std::vector<Sum>& cells) const {
        const Sum* in = columns.data();
        for (std::size_t i = 0; i < cells.size(); i += Channels) {
            std::array<Sum, Channels> sum{};
            for (std::size_t n = 0; n < columns_; ++n, in += Channels)
                for (std::size_t k = 0; k < Channels; ++k) sum[k] = static_cast<Sum>(sum[k] + in[k]);
            for (std::size_t k = 0; k < Channels; ++k) cells[i + k] = sum[k];
        }
    }

    /// Halves are rounded up. A double holds the sum, and its product with the reciprocal is off by less than the
    /// smallest distance from a half of a quotient that is none.
    template <typename Sum>
    void divide(const std::vector<Sum>& cells, Sample* out) const {
        const auto area = static_cast<std::uint32_t>(columns_) * static_cast<std::uint32_t>(rows_);
        if ((area & (area - 1)) == 0) {
            int shift = 0;
            while ((1U << shift) < area) ++shift;
            const auto half = static_cast<Sum>(area / 2);
            for (std::size_t i = 0; i < cells.size(); ++i)
                out[i] = static_cast<Sample>(static_cast<Sum>(cells[i] + half) >> shift);
            return;
        }
        constexpr double halvesUp = 0.5 + 0x1.0p-34;
        const double reciprocal = 1.0 / area;
        for (std::size_t i = 0; i < cells.size(); ++i)
            out[i] = static_cast<Sample>(static_cast<int>(static_cast<int>(cells[i]) * reciprocal + halvesUp));
    }

    Grid<Sample, Channels> source_;
    std::size_t columns_;  // of one cell
    int rows_;
    std::size_t width_;  // cells
    int height_;
    std::size_t left_;  // the first cell's first pixel
    int top_;
};

}  // namespace viewing::averaging
