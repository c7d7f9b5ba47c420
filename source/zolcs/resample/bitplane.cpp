#include "zolcs/resample/bitplane.h"

#include <array>

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

std::uint64_t BitPlane::lastWord(std::int64_t k) const {
    std::uint64_t bits = 0;
    for (std::int64_t i = std::min(k * 8 + 8, bytes_); i-- > k * 8;) bits = bits << 8 | data_[i];
    return bits;
}

bool BitPlane::isBlank() const {
    const std::int64_t bits = columns_ * rows_;
    // Some at a time, so that the loop over them need not look.
    constexpr std::int64_t block = 4096;
    for (std::int64_t begin = firstIndex_; begin < bits; begin += block) {
        std::uint64_t some = 0;
        visitWords(begin, std::min(begin + block, bits), [&](std::int64_t, std::uint64_t word) { some |= word; });
        if (some != 0) return false;
    }
    return true;
}

namespace {

/// A bit for each four that are not all 0.
std::uint64_t tilesOf(std::uint64_t bits) {
    bits |= bits >> 2;
    bits = (bits | bits >> 1) & 0x1111111111111111U;
    bits = (bits | bits >> 3) & 0x0303030303030303U;
    bits = (bits | bits >> 6) & 0x000F000F000F000FU;
    bits = (bits | bits >> 12) & 0x000000FF000000FFU;
    return (bits | bits >> 24) & 0xFFFFU;
}

}  // namespace

BitSummary::BitSummary(const BitPlane& plane, Fixed16 du, Fixed16 dv) : du_(du), dv_(dv) {
    static_assert(pieceColumns % (1 << tileShift) == 0, "a piece is a whole number of tiles: no step is cut");
    constexpr Fixed16 farthest = 256 * fixed16One;
    constexpr Fixed16 tile = fixed16One << tileShift;
    const Fixed16 halfPieceU = std::abs(du) * (pieceColumns / 2);
    const Fixed16 halfPieceV = std::abs(dv) * (pieceColumns / 2);
    if (plane.columns() <= 0 || plane.rows() <= 0 || halfPieceU > farthest || halfPieceV > farthest) return;
    // In tiles; two pixels more, since positions are cut and rounded.
    const std::int64_t reachU = (halfPieceU + 2 * fixed16One + tile - 1) / tile;
    const std::int64_t reachV = (halfPieceV + 2 * fixed16One + tile - 1) / tile;
    // A piece's middle may lie as far beside the plane, and the tile that tells about it as far again.
    // On the left in whole groups of the tiles that a word of the plane gives.
    const std::int64_t left = (reachU + 1 + tilesOfWord - 1) / tilesOfWord * tilesOfWord;
    const std::int64_t top = reachV + 1;
    const auto wholeTiles = [](std::int64_t pixels) { return (pixels + (1 << tileShift) - 1) >> tileShift; };
    words_ = (left + wholeTiles(plane.columns()) + 2 * reachU + tilesOfWord + 63) / 64;
    lines_ = top + wholeTiles(plane.rows()) + 2 * reachV + 2;
    // Positions have to fit 31 bits; the tests read bytes.
    if (words_ * 64 >= 0x8000 || lines_ >= 0x8000 || std::endian::native != std::endian::little) return;
    tiles_.assign(static_cast<std::size_t>(words_ * lines_), 0);
    gatherTiles(plane, left, top);
    spread(reachU, reachV);
    originU_ = plane.left() * fixed16One - (left + reachU) * tile;
    originV_ = plane.top() * fixed16One - (top + reachV) * tile;
}

void BitSummary::gatherTiles(const BitPlane& plane, std::int64_t left, std::int64_t top) {
    std::vector<std::uint64_t> some(static_cast<std::size_t>((plane.columns() + 63) / 64));
    for (std::int64_t first = 0; first < plane.rows(); first += std::int64_t{1} << tileShift) {
        std::fill(some.begin(), some.end(), 0);
        const std::int64_t end = std::min(first + (std::int64_t{1} << tileShift), plane.rows());
        for (std::int64_t row = first; row < end; ++row) {
            std::int64_t index = row * plane.columns();
            for (std::uint64_t& bits : some) {
                bits |= plane.bitsFrom(index);
                index += 64;
            }
        }
        // The last bits belong to the next row.
        const std::int64_t rest = plane.columns() % 64;
        if (rest != 0) some.back() &= ~std::uint64_t{0} >> (64 - rest);
        std::uint64_t* line = tiles_.data() + (top + (first >> tileShift)) * words_;
        std::int64_t at = left;
        for (std::uint64_t bits : some) {
            line[at / 64] |= tilesOf(bits) << (at % 64);
            at += tilesOfWord;
        }
    }
}

void BitSummary::spread(std::int64_t reachU, std::int64_t reachV) {
    // By doubling, rightwards and downwards; the origin makes up for that.
    const auto inSteps = [](std::int64_t reach, const auto& spreadBy) {
        const std::int64_t wanted = 2 * reach + 1;
        for (std::int64_t wide = 1; wide < wanted;) {
            constexpr std::int64_t longest = 32;  // less than a word
            const std::int64_t step = std::min({wide, wanted - wide, longest});
            spreadBy(step);
            wide += step;
        }
    };
    inSteps(reachU, [this](std::int64_t step) {
        for (std::int64_t y = 0; y < lines_; ++y) {
            std::uint64_t* line = tiles_.data() + y * words_;
            for (std::int64_t k = words_; k-- > 1;) line[k] |= line[k] << step | line[k - 1] >> (64 - step);
            line[0] |= line[0] << step;
        }
    });
    inSteps(reachV, [this](std::int64_t step) {
        for (std::int64_t y = lines_; y-- > step;) {
            std::uint64_t* line = tiles_.data() + y * words_;
            const std::uint64_t* above = line - step * words_;
            for (std::int64_t k = 0; k < words_; ++k) line[k] |= above[k];
        }
    });
}

std::uint64_t BitSummary::mayBeSet(const SourceLine& line, int begin, int pieces) const {
    const std::uint64_t all = ~std::uint64_t{0} >> (mostPieces - pieces);
    if (tiles_.empty() || line.du != du_ || line.dv != dv_) return all;
    const auto tilePosition = [](Fixed16 pixels) { return static_cast<std::uint32_t>(pixels >> tileShift); };
    constexpr int middle = pieceColumns / 2;
    const SpanPositions positions{tilePosition(line.uAt(begin + middle) - originU_),
                                  tilePosition(line.vAt(begin + middle) - originV_),
                                  tilePosition(line.du * pieceColumns), tilePosition(line.dv * pieceColumns),
                                  static_cast<std::int32_t>(words_ * 64)};
    const SpanBits bits{reinterpret_cast<const unsigned char*>(tiles_.data()), 0,
                        static_cast<std::uint32_t>(tiles_.size() * 64)};
    // Here each piece is one position.
    constexpr int together = SpanBits::pieceColumns;
    std::array<std::uint16_t, mostPieces / together> set{};
    const int groups = (pieces + together - 1) / together;
    SpanOperations::chosen().testBits(positions, bits, (std::uint64_t{1} << groups) - 1, set.data());
    std::uint64_t result = 0;
    for (std::size_t i = set.size(); i-- > 0;) result = result << together | set[i];
    return result & all;
}

}  // namespace zolcs
