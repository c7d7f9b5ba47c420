#include "zolcs/rules/bitplane.h"

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

void BitPlane::copyRow(std::int64_t row, std::uint64_t* words) const {
    const std::int64_t count = (columns_ + 63) / 64;
    std::int64_t index = row * columns_;
    const std::int64_t byte = index / 8;
    if (std::endian::native == std::endian::little && index % 8 == 0 && byte + count * 8 <= bytes_) {
        std::memcpy(words, data_ + byte, static_cast<std::size_t>(count) * 8);
    } else {
        for (std::int64_t k = 0; k < count; ++k, index += 64) words[k] = bitsFrom(index);
    }
    if (columns_ % 64 != 0) words[count - 1] &= ~std::uint64_t{0} >> (64 - columns_ % 64);
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

/// What is known of a plane in squares of some pixels, spread as far as a piece of some rows reaches: the tile below
/// the piece's middle tells about all of it.
class TileMap {
public:
    /// Both numbers are in pixels to either side of the middle; they and the plane must be small enough for `fits`.
    TileMap(const BitPlane& plane, Fixed16 reachU, Fixed16 reachV) {
        // In tiles; two pixels more, since positions are cut and rounded.
        reachU_ = (reachU + 2 * fixed16One + tile - 1) / tile;
        reachV_ = (reachV + 2 * fixed16One + tile - 1) / tile;
        // A piece's middle may lie as far beside the plane, and the tile that tells about it as far again.
        // On the left in whole groups of the tiles that a word of the plane gives.
        left_ = (reachU_ + 1 + tilesOfWord - 1) / tilesOfWord * tilesOfWord;
        top_ = reachV_ + 1;
        words_ = (left_ + wholeTiles(plane.columns()) + 2 * reachU_ + tilesOfWord + 63) / 64;
        rows_ = top_ + wholeTiles(plane.rows()) + 2 * reachV_ + 2;
        originU_ = plane.left() * fixed16One - (left_ + reachU_) * tile;
        originV_ = plane.top() * fixed16One - (top_ + reachV_) * tile;
    }

    /// Positions have to fit 31 bits; the tests read bytes.
    [[nodiscard]] bool fits() const {
        return words_ * 64 < 0x8000 && rows_ < 0x8000 && std::endian::native == std::endian::little;
    }

    void gather(const BitPlane& plane) {
        const auto tiles = static_cast<std::size_t>(words_ * rows_);
        set_.assign(tiles, 0);
        clear_.assign(tiles, ~std::uint64_t{0});
        gatherTiles(plane);
        spread(set_);
        if (someAreFull_) spread(clear_);
    }

    /// Bit i tells about the piece whose middle is that of the first one and i steps on.
    [[nodiscard]] std::uint64_t maySet(const DisplayRow& middles) const { return ask(set_, middles); }
    [[nodiscard]] std::uint64_t mayClear(const DisplayRow& middles) const {
        return someAreFull_ ? ask(clear_, middles) : ~std::uint64_t{0};
    }

    static constexpr int tileShift = 2;

private:
    using Tiles = std::vector<std::uint64_t>;  ///< rows of tile bits

    static constexpr int tilesOfWord = 64 >> tileShift;
    static constexpr Fixed16 tile = fixed16One << tileShift;

    static std::int64_t wholeTiles(std::int64_t pixels) { return (pixels + (1 << tileShift) - 1) >> tileShift; }

    void gatherTiles(const BitPlane& plane) {
        constexpr std::int64_t tileRows = std::int64_t{1} << tileShift;
        const auto words = static_cast<std::size_t>((plane.columns() + 63) / 64);
        Tiles bits(words);
        Tiles some(words);
        Tiles every(words);
        for (std::int64_t first = 0; first < plane.rows(); first += tileRows) {
            std::fill(some.begin(), some.end(), 0);
            std::fill(every.begin(), every.end(), first + tileRows <= plane.rows() ? ~std::uint64_t{0} : 0);
            for (std::int64_t row = first; row < std::min(first + tileRows, plane.rows()); ++row) {
                plane.copyRow(row, bits.data());
                for (std::size_t k = 0; k < words; ++k) {
                    some[k] |= bits[k];
                    every[k] &= bits[k];
                }
            }
            const std::int64_t tileRow = (top_ + (first >> tileShift)) * words_;
            std::int64_t at = left_;
            for (std::size_t k = 0; k < words; ++k, at += tilesOfWord) {
                if (some[k] == 0) continue;
                constexpr std::uint64_t all = (std::uint64_t{1} << tilesOfWord) - 1;
                const auto word = static_cast<std::size_t>(tileRow + at / 64);
                const std::uint64_t full = all & ~tilesOf(~every[k]);
                set_[word] |= tilesOf(some[k]) << (at % 64);
                clear_[word] &= ~(full << (at % 64));
                someAreFull_ = someAreFull_ || full != 0;
            }
        }
    }

    void spread(Tiles& tiles) const {
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
        inSteps(reachU_, [&](std::int64_t step) {
            for (std::int64_t y = 0; y < rows_; ++y) {
                std::uint64_t* row = tiles.data() + y * words_;
                for (std::int64_t k = words_; k-- > 1;) row[k] |= row[k] << step | row[k - 1] >> (64 - step);
                row[0] |= row[0] << step;
            }
        });
        inSteps(reachV_, [&](std::int64_t step) {
            for (std::int64_t y = rows_; y-- > step;) {
                std::uint64_t* row = tiles.data() + y * words_;
                const std::uint64_t* above = row - step * words_;
                for (std::int64_t k = 0; k < words_; ++k) row[k] |= above[k];
            }
        });
    }

    [[nodiscard]] std::uint64_t ask(const Tiles& tiles, const DisplayRow& middles) const {
        const auto tilePosition = [](Fixed16 pixels) { return static_cast<std::uint32_t>(pixels >> tileShift); };
        const SamplePositions positions{tilePosition(middles.u - originU_), tilePosition(middles.v - originV_),
                                        tilePosition(middles.du), tilePosition(middles.dv),
                                        static_cast<std::int32_t>(words_ * 64)};
        const SampledBits bits{reinterpret_cast<const unsigned char*>(tiles.data()), 0,
                               static_cast<std::uint32_t>(tiles.size() * 64)};
        // Here each piece is one position.
        constexpr int together = SampledBits::pieceColumns;
        std::array<std::uint16_t, BitSummary::blockPieces / together> answers{};
        SamplingOperations::chosen().testBits(positions, bits, (std::uint64_t{1} << answers.size()) - 1,
                                              answers.data());
        std::uint64_t result = 0;
        for (std::size_t i = answers.size(); i-- > 0;) result = result << together | answers[i];
        return result;
    }

    std::int64_t reachU_ = 0;  ///< in tiles
    std::int64_t reachV_ = 0;
    std::int64_t left_ = 0;  ///< tiles beside the plane's first one
    std::int64_t top_ = 0;
    std::int64_t words_ = 0;  ///< of a row of tiles
    std::int64_t rows_ = 0;
    Fixed16 originU_ = 0;  ///< source position of the first tile bit, as it is asked for
    Fixed16 originV_ = 0;
    Tiles set_;                 ///< tiles with a set bit
    Tiles clear_;               ///< tiles with a clear bit, or that reach beyond the plane
    bool someAreFull_ = false;  ///< never so of mere figures
};

}  // namespace

BitSummary::BitSummary(const BitPlane& plane, const Stepping& stepping) : stepping_(stepping) {
    static_assert(pieceColumns % (1 << TileMap::tileShift) == 0, "a piece is a whole number of tiles: no step is cut");
    static constexpr Fixed16 farthest = 256 * fixed16One;
    const auto reachOf = [](Fixed16 alongRow, Fixed16 alongColumn) {
        const auto atMostFar = [](Fixed16 step) { return std::min<Fixed16>(std::abs(step), farthest); };
        return atMostFar(alongRow) * (pieceColumns / 2) + atMostFar(alongColumn) * (rowsTogether / 2);
    };
    const Fixed16 reachU = reachOf(stepping.stepXu, stepping.stepYu);
    const Fixed16 reachV = reachOf(stepping.stepXv, stepping.stepYv);
    if (plane.columns() <= 0 || plane.rows() <= 0 || plane.firstIndex() != 0) return;
    if (reachU > farthest || reachV > farthest) return;
    TileMap tiles(plane, reachU, reachV);
    if (!tiles.fits()) return;
    tiles.gather(plane);

    blocks_ = static_cast<std::size_t>((stepping.width + blockColumns - 1) / blockColumns);
    for (int y = 0; y < stepping.height; y += rowsTogether) {
        const DisplayRow row = stepping.row(y + rowsTogether / 2);
        for (int column = pieceColumns / 2; column < stepping.width; column += blockColumns) {
            const DisplayRow middles{row.uAt(column), row.vAt(column), row.du * pieceColumns, row.dv * pieceColumns};
            maySet_.push_back(tiles.maySet(middles));
            mayClear_.push_back(tiles.mayClear(middles));
        }
    }
}

}  // namespace zolcs
