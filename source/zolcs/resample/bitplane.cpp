#include "zolcs/resample/bitplane.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace zolcs {

BitPlane::BitPlane(const unsigned char* data, std::int64_t left, std::int64_t top, std::int64_t columns,
                   std::int64_t rows, std::int64_t firstIndex)
    : data_(data),
      left_(left),
      top_(top),
      columns_(data != nullptr ? columns : 0),
      rows_(data != nullptr ? rows : 0),
      firstIndex_(firstIndex) {
    if (columns_ > 0 && rows_ > 0) summarise();
}

/// `count` (1 to 64) bits from `index` on, the first one lowest; nothing beyond the plane's last byte is read.
std::uint64_t BitPlane::bitsOf(std::int64_t index, std::int64_t count) const {
    const std::int64_t byte = index >> 3;
    const int shift = static_cast<int>(index & 7);
    const std::int64_t available = (columns_ * rows_ + 7) / 8 - byte;
    std::uint64_t low = 0;
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(&low, data_ + byte, static_cast<std::size_t>(std::min<std::int64_t>(available, 8)));
    } else {
        for (int i = 0; i < std::min<std::int64_t>(available, 8); ++i) {
            low |= static_cast<std::uint64_t>(data_[byte + i]) << (8 * i);
        }
    }
    std::uint64_t bits = low >> shift;
    if (shift != 0 && available > 8) bits |= static_cast<std::uint64_t>(data_[byte + 8]) << (64 - shift);
    return count < 64 ? bits & ((std::uint64_t{1} << count) - 1) : bits;
}

void BitPlane::summariseTileRow(std::int64_t tileRow, std::int64_t tileColumns) {
    std::vector<std::uint64_t> some(static_cast<std::size_t>(tileColumns), 0);
    std::vector<std::uint64_t> all(static_cast<std::size_t>(tileColumns), ~std::uint64_t{0});
    const std::int64_t lastRow = std::min(rows_, (tileRow + 1) << tileShift);
    for (std::int64_t row = tileRow << tileShift; row < lastRow; ++row) {
        for (std::int64_t tile = 0; tile < tileColumns; ++tile) {
            const std::int64_t column = tile << tileShift;
            const std::uint64_t bits = bitsOf(row * columns_ + column, std::min(tileSize, columns_ - column));
            some[static_cast<std::size_t>(tile)] |= bits;
            all[static_cast<std::size_t>(tile)] &= bits;
        }
    }
    const auto width = static_cast<std::size_t>(tileColumns) + 1;
    const TileSum* above = sums_.data() + static_cast<std::size_t>(tileRow) * width;
    TileSum* here = sums_.data() + (static_cast<std::size_t>(tileRow) + 1) * width;
    TileSum inRow;
    for (std::size_t tile = 0; tile + 1 < width; ++tile) {
        const std::int64_t bitsWide = std::min(tileSize, columns_ - (static_cast<std::int64_t>(tile) << tileShift));
        const std::uint64_t whole = bitsWide < 64 ? (std::uint64_t{1} << bitsWide) - 1 : ~std::uint64_t{0};
        inRow.some += some[tile] != 0 ? 1 : 0;
        inRow.full += all[tile] == whole ? 1 : 0;
        here[tile + 1] = {above[tile + 1].some + inRow.some, above[tile + 1].full + inRow.full};
    }
}

void BitPlane::summarise() {
    const std::int64_t tileColumns = (columns_ + tileSize - 1) >> tileShift;
    const std::int64_t tileRows = (rows_ + tileSize - 1) >> tileShift;
    sums_.resize((static_cast<std::size_t>(tileRows) + 1) * (static_cast<std::size_t>(tileColumns) + 1));
    for (std::int64_t tileRow = 0; tileRow < tileRows; ++tileRow) summariseTileRow(tileRow, tileColumns);
}

BitPlane::Content BitPlane::contentOf(std::int64_t boxLeft, std::int64_t boxTop, std::int64_t boxRight,
                                      std::int64_t boxBottom) const {
    const bool within = boxLeft >= left_ && boxTop >= top_ && boxRight <= right() && boxBottom <= bottom();
    const std::int64_t firstColumn = std::max<std::int64_t>(boxLeft - left_, 0);
    const std::int64_t firstRow = std::max<std::int64_t>(boxTop - top_, 0);
    const std::int64_t lastColumn = std::min(boxRight - left_, columns_ - 1);
    const std::int64_t lastRow = std::min(boxBottom - top_, rows_ - 1);
    if (firstColumn > lastColumn || firstRow > lastRow) return Content::None;

    const auto width = static_cast<std::size_t>((columns_ + tileSize - 1) >> tileShift) + 1;
    const auto tileLeft = static_cast<std::size_t>(firstColumn >> tileShift);
    const auto tileTop = static_cast<std::size_t>(firstRow >> tileShift);
    const std::size_t tileRight = static_cast<std::size_t>(lastColumn >> tileShift) + 1;
    const std::size_t tileBottom = static_cast<std::size_t>(lastRow >> tileShift) + 1;
    const auto sum = [&](std::int32_t TileSum::*which) {
        const auto at = [&](std::size_t row, std::size_t column) { return sums_[row * width + column].*which; };
        return at(tileBottom, tileRight) - at(tileBottom, tileLeft) - at(tileTop, tileRight) + at(tileTop, tileLeft);
    };
    if (sum(&TileSum::some) == 0) return Content::None;
    const auto tiles = static_cast<std::int64_t>((tileRight - tileLeft) * (tileBottom - tileTop));
    // The bits below firstIndex are tested one by one.
    const bool startsLater = firstRow * columns_ + firstColumn >= firstIndex_;
    return within && startsLater && sum(&TileSum::full) == tiles ? Content::All : Content::Mixed;
}

}  // namespace zolcs
