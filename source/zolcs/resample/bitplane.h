// A plane of one bit per pixel, and a summary that tells quickly where it holds nothing.
#pragma once

#include "zolcs/ccsexport.h"

#include <cstdint>
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

    [[nodiscard]] std::int64_t left() const { return left_; }
    [[nodiscard]] std::int64_t top() const { return top_; }
    [[nodiscard]] std::int64_t right() const { return left_ + columns_ - 1; }
    [[nodiscard]] std::int64_t bottom() const { return top_ + rows_ - 1; }

    /// True when no bit is set.
    [[nodiscard]] bool isBlank() const { return contentOf(left(), top(), right(), bottom()) == Content::None; }

    /// The bit on an image pixel; pixels beside the plane are not set.
    [[nodiscard]] bool isSet(std::int64_t x, std::int64_t y) const {
        const std::int64_t column = x - left_;
        const std::int64_t row = y - top_;
        if (column < 0 || row < 0 || column >= columns_ || row >= rows_) return false;
        const std::int64_t index = row * columns_ + column;
        return index >= firstIndex_ && (data_[index >> 3] >> (index & 7) & 1) != 0;
    }

    /// What the image box holds; all four bounds are inclusive. Never wrong, but Mixed near the edges of set areas.
    [[nodiscard]] Content contentOf(std::int64_t boxLeft, std::int64_t boxTop, std::int64_t boxRight,
                                    std::int64_t boxBottom) const;

private:
    /// Number of tiles above and to the left of a tile corner in which some bit, and in which every bit, is set.
    struct TileSum {
        std::int32_t some = 0;
        std::int32_t full = 0;
    };

    static constexpr int tileShift = 6;
    static constexpr std::int64_t tileSize = std::int64_t{1} << tileShift;

    void summarise();
    void summariseTileRow(std::int64_t tileRow, std::int64_t tileColumns);
    [[nodiscard]] std::uint64_t bitsOf(std::int64_t index, std::int64_t count) const;

    const unsigned char* data_ = nullptr;
    std::int64_t left_ = 0;
    std::int64_t top_ = 0;
    std::int64_t columns_ = 0;
    std::int64_t rows_ = 0;
    std::int64_t firstIndex_ = 0;
    std::vector<TileSum> sums_;  ///< (tile rows + 1) x (tile columns + 1)
};

}  // namespace zolcs
