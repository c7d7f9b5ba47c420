#include "zolcs/resample/bitplane.h"

namespace zolcs {

BitPlane::BitPlane(const unsigned char* data, std::int64_t left, std::int64_t top, std::int64_t columns,
                   std::int64_t rows, std::int64_t firstIndex)
    : data_(data),
      left_(left),
      top_(top),
      columns_(data != nullptr ? columns : 0),
      rows_(data != nullptr ? rows : 0),
      firstIndex_(firstIndex),
      bytes_((columns_ * rows_ + 7) >> 3) {}

std::uint64_t BitPlane::fewBitsFrom(std::int64_t index, std::int64_t count) const {
    const unsigned char* from = data_ + (index >> 3);
    const int shift = static_cast<int>(index & 7);
    const std::int64_t bytes = (shift + count + 7) >> 3;
    std::uint64_t bits = 0;
    for (std::int64_t i = std::min<std::int64_t>(bytes, 8); i-- > 0;) bits = bits << 8 | from[i];
    bits >>= shift;
    if (bytes > 8) bits |= static_cast<std::uint64_t>(from[8]) << (64 - shift);
    if (count < wordBits) bits &= (std::uint64_t{1} << count) - 1;
    if (index < firstIndex_) {
        const std::int64_t ignored = firstIndex_ - index;
        bits = ignored < wordBits ? bits >> ignored << ignored : 0;
    }
    return bits;
}

bool BitPlane::isBlank() const {
    const std::int64_t bits = columns_ * rows_;
    constexpr std::int64_t block = 64 * wordBits;
    std::int64_t index = 0;
    for (; index < bits; index += block) {
        std::uint64_t some = 0;
        const std::int64_t end = std::min(index + block, bits);
        for (std::int64_t word = index; word < end; word += wordBits) {
            some |= bitsFrom(word, std::min(wordBits, bits - word));
        }
        if (some != 0) return false;
    }
    return true;
}

void BitPlane::summariseTileRow(std::int64_t tileRow, std::int64_t words, std::vector<std::uint64_t>& scratch) {
    const auto count = static_cast<std::size_t>(words);
    scratch.assign(count, 0);
    scratch.resize(2 * count, ~std::uint64_t{0});
    std::uint64_t* some = scratch.data();
    std::uint64_t* all = some + count;
    const std::int64_t lastRow = std::min(rows_, (tileRow + 1) << tileShift);
    for (std::int64_t row = tileRow << tileShift; row < lastRow; ++row) {
        const std::int64_t start = row * columns_;
        for (std::int64_t word = 0; word < words; ++word) {
            const std::int64_t column = word * wordBits;
            const std::uint64_t bits = bitsFrom(start + column, std::min(wordBits, columns_ - column));
            some[word] |= bits;
            all[word] &= bits;
        }
    }
    const auto width = static_cast<std::size_t>((columns_ + tileSize - 1) >> tileShift) + 1;
    const TileSum* above = sums_.data() + static_cast<std::size_t>(tileRow) * width;
    TileSum* here = sums_.data() + (static_cast<std::size_t>(tileRow) + 1) * width;
    TileSum inRow;
    for (std::size_t tile = 0; tile + 1 < width; ++tile) {
        const auto column = static_cast<std::int64_t>(tile << tileShift);
        const std::int64_t wide = std::min(tileSize, columns_ - column);
        const std::uint64_t whole = ((std::uint64_t{1} << wide) - 1) << (column % wordBits);
        const auto word = static_cast<std::size_t>(column / wordBits);
        inRow.some += (some[word] & whole) != 0 ? 1 : 0;
        inRow.full += (all[word] & whole) == whole ? 1 : 0;
        here[tile + 1] = {above[tile + 1].some + inRow.some, above[tile + 1].full + inRow.full};
    }
}

void BitPlane::summarise() {
    if (columns_ <= 0 || rows_ <= 0) return;
    const std::int64_t tileColumns = (columns_ + tileSize - 1) >> tileShift;
    const std::int64_t tileRows = (rows_ + tileSize - 1) >> tileShift;
    sums_.assign((static_cast<std::size_t>(tileRows) + 1) * (static_cast<std::size_t>(tileColumns) + 1), {});
    std::vector<std::uint64_t> scratch;
    const std::int64_t words = (columns_ + wordBits - 1) / wordBits;
    for (std::int64_t tileRow = 0; tileRow < tileRows; ++tileRow) summariseTileRow(tileRow, words, scratch);
}

BitPlane::Content BitPlane::contentOf(std::int64_t boxLeft, std::int64_t boxTop, std::int64_t boxRight,
                                      std::int64_t boxBottom) const {
    const bool within = boxLeft >= left_ && boxTop >= top_ && boxRight <= right() && boxBottom <= bottom();
    const std::int64_t firstColumn = std::max<std::int64_t>(boxLeft - left_, 0);
    const std::int64_t firstRow = std::max<std::int64_t>(boxTop - top_, 0);
    const std::int64_t lastColumn = std::min(boxRight - left_, columns_ - 1);
    const std::int64_t lastRow = std::min(boxBottom - top_, rows_ - 1);
    if (firstColumn > lastColumn || firstRow > lastRow) return Content::None;
    if (sums_.empty()) return Content::Mixed;

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
    return within && sum(&TileSum::full) == tiles ? Content::All : Content::Mixed;
}

}  // namespace zolcs
