// A plane of one bit per pixel, and a summary that tells quickly where it holds nothing.
#pragma once

#include "zolcs/view/samplingoffsets.h"
#include "zolcs/view/spans.h"
#include "zolcs/view/stepping.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <vector>

namespace zolcs {

/// Bit k of packed bits: bit k mod 8 of byte k / 8.
inline bool bitAt(const unsigned char* bits, std::int64_t k) { return (bits[k >> 3] >> (k & 7) & 1) != 0; }

/// A bit plane laid over an image: bit k of the plane is bit k mod 8 of byte k / 8, rows follow one another without
/// padding. The data belongs to the host and must hold rows * columns bits.
class BitPlane {
public:
    BitPlane() = default;

    /// A plane whose first bit lies on the image pixel (left, top). Bits below `firstIndex` count as not set.
    BitPlane(const unsigned char* data, std::int64_t left, std::int64_t top, std::int64_t columns, std::int64_t rows,
             std::int64_t firstIndex = 0);

    [[nodiscard]] const unsigned char* data() const { return data_; }
    [[nodiscard]] std::int64_t columns() const { return columns_; }
    [[nodiscard]] std::int64_t rows() const { return rows_; }
    [[nodiscard]] std::int64_t left() const { return left_; }
    [[nodiscard]] std::int64_t top() const { return top_; }
    [[nodiscard]] std::int64_t right() const { return left_ + columns_ - 1; }
    [[nodiscard]] std::int64_t bottom() const { return top_ + rows_ - 1; }
    [[nodiscard]] std::int64_t firstIndex() const { return firstIndex_; }

    /// The last image row whose bits, and those of all rows above it, lie in 32-bit words that the data holds whole.
    /// Above the top when bits are left out of account.
    [[nodiscard]] std::int64_t lastRowInWords() const {
        if (firstIndex_ != 0 || columns_ <= 0) return top_ - 1;
        return top_ + std::min(bytes_ / 4 * 32 / columns_, rows_) - 1;
    }

    /// True when no bit is set.
    [[nodiscard]] bool isBlank() const;

    /// The bit on an image pixel; pixels beside the plane are not set.
    [[nodiscard]] bool isSet(std::int64_t x, std::int64_t y) const {
        const std::int64_t column = x - left_;
        const std::int64_t row = y - top_;
        if (column < 0 || row < 0 || column >= columns_ || row >= rows_) return false;
        const std::int64_t index = row * columns_ + column;
        return index >= firstIndex_ && bitAt(data_, index);
    }

    /// Calls visit(first, last) for every run of set bits on the image row y between the columns fromX and toX, both
    /// inclusive, in ascending order; neighbouring runs are told as one.
    template <typename Visit>
    void visitRuns(std::int64_t y, std::int64_t fromX, std::int64_t toX, Visit&& visit) const;

    /// 64 bits from bit number `index` on, the first one lowest; those beyond the data are 0.
    [[nodiscard]] std::uint64_t bitsFrom(std::int64_t index) const {
        const std::uint64_t low = word(index >> 6);
        const auto shift = static_cast<unsigned>(index & 63);
        return shift == 0 ? low : low >> shift | word((index >> 6) + 1) << (64U - shift);
    }

    /// The bits of a row of the plane, 64 to a word; those behind the last column are 0.
    void copyRow(std::int64_t row, std::uint64_t* words) const;

private:
    /// Bits 64 k to 64 k + 63; nothing beyond the plane's last byte is read.
    [[nodiscard]] std::uint64_t word(std::int64_t k) const {
        if (std::endian::native != std::endian::little || k * 8 + 8 > bytes_) return lastWord(k);
        std::uint64_t bits = 0;
        std::memcpy(&bits, data_ + k * 8, sizeof bits);
        return bits;
    }
    [[nodiscard]] std::uint64_t lastWord(std::int64_t k) const;

    /// Calls visit(k, word) for the words of the bits [begin, end); other bits are 0.
    template <typename Visit>
    void visitWords(std::int64_t begin, std::int64_t end, const Visit& visit) const {
        if (begin >= end) return;
        const std::int64_t last = (end - 1) >> 6;
        for (std::int64_t k = begin >> 6; k <= last; ++k) {
            std::uint64_t bits = word(k);
            if (k * 64 < begin) bits &= ~std::uint64_t{0} << (begin - k * 64);
            if (k == last) bits &= ~std::uint64_t{0} >> (last * 64 + 64 - end);
            visit(k, bits);
        }
    }

    const unsigned char* data_ = nullptr;
    std::int64_t left_ = 0;
    std::int64_t top_ = 0;
    std::int64_t columns_ = 0;
    std::int64_t rows_ = 0;
    std::int64_t firstIndex_ = 0;
    std::int64_t bytes_ = 0;
};

/// The plane of an overlay's or a bitmap shutter's record, whose origin counts from 1.
template <typename Record>
BitPlane planeOf(const Record& record) {
    return {record.data, record.originX - std::int64_t{1}, record.originY - std::int64_t{1}, record.columns,
            record.rows};
}

template <typename Visit>
void BitPlane::visitRuns(std::int64_t y, std::int64_t fromX, std::int64_t toX, Visit&& visit) const {
    const std::int64_t row = y - top_;
    if (row < 0 || row >= rows_) return;
    const std::int64_t end = row * columns_ + std::min(toX - left_ + 1, columns_);
    const std::int64_t begin = std::max(row * columns_ + std::max<std::int64_t>(fromX - left_, 0), firstIndex_);
    const std::int64_t columnZero = row * columns_ - left_;
    std::int64_t open = -1;  // the bit at which a run has begun
    std::uint64_t carry = 0;
    visitWords(begin, end, [&](std::int64_t k, std::uint64_t bits) {
        std::uint64_t edges = bits ^ (bits << 1 | carry);
        carry = bits >> 63;
        for (; edges != 0; edges &= edges - 1) {
            const std::int64_t edge = k * 64 + std::countr_zero(edges);
            if (open < 0) {
                open = edge;
            } else {
                visit(open - columnZero, edge - columnZero - 1);
                open = -1;
            }
        }
    });
    if (open >= 0) visit(open - columnZero, end - columnZero - 1);
}

/// Tells for pieces of the rows of an oblique view whether a plane can be set or clear there. A piece has as many
/// columns as are tested together; the first one begins at display column 0. Some rows share what is known.
class BitSummary {
public:
    static constexpr int pieceColumns = SampledBits::pieceColumns;
    /// Pieces that are told about at a time, from the first column of the block on.
    static constexpr int blockPieces = 64;
    static constexpr int blockColumns = blockPieces * pieceColumns;

    /// Knows nothing: everything may be set and may be clear.
    BitSummary() = default;

    /// For the rows of `stepping`; of others it knows nothing.
    BitSummary(const BitPlane& plane, const Stepping& stepping);

    /// Bit i is 0 only when no column of piece i of a block shows a set bit, be its position exact or rounded to single
    /// precision. Holds for pieces of which a column lies on the plane or a pixel beside it.
    [[nodiscard]] std::uint64_t mayBeSet(const DisplayRow& row, int block) const {
        return knows(row) ? maySet_[indexOf(row.y, block)] : ~std::uint64_t{0};
    }

    /// The same for clear bits, those beside the plane included.
    [[nodiscard]] std::uint64_t mayBeClear(const DisplayRow& row, int block) const {
        return knows(row) ? mayClear_[indexOf(row.y, block)] : ~std::uint64_t{0};
    }

private:
    /// Neighbouring rows of which the same is known.
    static constexpr int rowsTogether = 8;

    [[nodiscard]] bool knows(const DisplayRow& row) const {
        return !maySet_.empty() && row.y >= 0 && row == stepping_.row(row.y);
    }
    [[nodiscard]] std::size_t indexOf(int y, int block) const {
        return static_cast<std::size_t>(y / rowsTogether) * blocks_ + static_cast<std::size_t>(block);
    }

    Stepping stepping_;
    std::size_t blocks_ = 0;             ///< of a row
    std::vector<std::uint64_t> maySet_;  ///< block by block; empty when nothing is known
    std::vector<std::uint64_t> mayClear_;
};

}  // namespace zolcs
