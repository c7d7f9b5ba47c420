// A plane of one bit per pixel, and a summary that tells quickly where it holds nothing.
#pragma once

#include "zolcs/ccsexport.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <vector>

namespace zolcs {

/// A bit plane laid over an image: bit k of the plane is bit k mod 8 of byte k / 8, rows follow one another without
/// padding. The data belongs to the host and must hold rows * columns bits.
class ZOLWEBCS_API BitPlane {
public:
    /// What a box of the plane holds; Mixed where the summary cannot tell.
    enum class Content : std::uint8_t { None, All, Mixed };

    BitPlane() = default;

    /// A plane whose first bit lies on the image pixel (left, top). Bits below `firstIndex` count as not set.
    BitPlane(const unsigned char* data, std::int64_t left, std::int64_t top, std::int64_t columns, std::int64_t rows,
             std::int64_t firstIndex = 0);

    [[nodiscard]] std::int64_t columns() const { return columns_; }
    [[nodiscard]] std::int64_t left() const { return left_; }
    [[nodiscard]] std::int64_t top() const { return top_; }
    [[nodiscard]] std::int64_t right() const { return left_ + columns_ - 1; }
    [[nodiscard]] std::int64_t bottom() const { return top_ + rows_ - 1; }

    /// True when no bit is set.
    [[nodiscard]] bool isBlank() const;

    /// Prepares contentOf, which else cannot tell anything. Worth it for lines that cross many rows of the plane.
    void summarise();

    /// The bit on an image pixel; pixels beside the plane are not set.
    [[nodiscard]] bool isSet(std::int64_t x, std::int64_t y) const {
        const std::int64_t column = x - left_;
        const std::int64_t row = y - top_;
        if (column < 0 || row < 0 || column >= columns_ || row >= rows_) return false;
        return isSetAt(row * columns_ + column);
    }

    /// Bit number `index`, which must be one of the plane's.
    [[nodiscard]] bool isSetAt(std::int64_t index) const {
        return index >= firstIndex_ && (data_[index >> 3] >> (index & 7) & 1) != 0;
    }

    /// Calls visit(first, last) for every run of set bits on the image row y between the columns fromX and toX, both
    /// inclusive, in ascending order; neighbouring runs are told as one.
    template <typename Visit>
    void visitRuns(std::int64_t y, std::int64_t fromX, std::int64_t toX, Visit&& visit) const;

    /// What the image box holds; all four bounds are inclusive. Never wrong, but Mixed near the edges of set areas.
    [[nodiscard]] Content contentOf(std::int64_t boxLeft, std::int64_t boxTop, std::int64_t boxRight,
                                    std::int64_t boxBottom) const;

private:
    /// Number of tiles above and to the left of a tile corner in which some bit, and in which every bit, is set.
    struct TileSum {
        std::int32_t some = 0;
        std::int32_t full = 0;
    };

    static constexpr int tileShift = 4;
    static constexpr std::int64_t tileSize = std::int64_t{1} << tileShift;
    static constexpr std::int64_t wordBits = 64;

    void summariseTileRow(std::int64_t tileRow, std::int64_t words, std::vector<std::uint64_t>& scratch);

    /// `count` (1 to 64) bits from `index` on, the first one lowest. Bits below the first index are 0; nothing beyond
    /// the plane's last byte is read.
    [[nodiscard]] std::uint64_t bitsFrom(std::int64_t index, std::int64_t count) const {
        const std::int64_t byte = index >> 3;
        const bool wholeWord = count == wordBits && index >= firstIndex_ && byte + 9 <= bytes_;
        if (std::endian::native != std::endian::little || !wholeWord) return fewBitsFrom(index, count);
        std::uint64_t bits = 0;
        std::memcpy(&bits, data_ + byte, sizeof bits);
        const int shift = static_cast<int>(index & 7);
        return bits >> shift | static_cast<std::uint64_t>(data_[byte + 8]) << 1 << (63 - shift);
    }
    [[nodiscard]] std::uint64_t fewBitsFrom(std::int64_t index, std::int64_t count) const;

    const unsigned char* data_ = nullptr;
    std::int64_t left_ = 0;
    std::int64_t top_ = 0;
    std::int64_t columns_ = 0;
    std::int64_t rows_ = 0;
    std::int64_t firstIndex_ = 0;
    std::int64_t bytes_ = 0;
    std::vector<TileSum> sums_;  ///< (tile rows + 1) x (tile columns + 1); empty until summarised
};

template <typename Visit>
void BitPlane::visitRuns(std::int64_t y, std::int64_t fromX, std::int64_t toX, Visit&& visit) const {
    const std::int64_t row = y - top_;
    if (row < 0 || row >= rows_) return;
    const std::int64_t end = std::min(toX - left_ + 1, columns_);
    std::int64_t open = -1;  // the column at which a run has begun
    for (std::int64_t column = std::max<std::int64_t>(fromX - left_, 0); column < end; column += wordBits) {
        const std::int64_t count = std::min(wordBits, end - column);
        std::uint64_t bits = bitsFrom(row * columns_ + column, count);
        if (bits == (open < 0 ? 0 : ~std::uint64_t{0})) continue;
        std::int64_t at = 0;
        while (at < count) {
            const bool set = (bits & 1) != 0;
            const int same = std::countr_zero(set ? ~bits : bits);
            if (set && open < 0) open = column + at;
            if (!set && open >= 0) {
                visit(left_ + open, left_ + column + at - 1);
                open = -1;
            }
            at += same;
            bits = same < wordBits ? bits >> same : 0;
        }
    }
    if (open >= 0) visit(left_ + open, left_ + end - 1);
}

}  // namespace zolcs
