// The innermost operations of the fast fillers, in the variants that the processor offers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

namespace zolcs {

/// Source positions of neighbouring display pixels, as 16.16 numbers that fit 31 bits at every pixel.
struct SpanPositions {
    std::uint32_t u;
    std::uint32_t v;
    std::uint32_t du;
    std::uint32_t dv;
    std::int32_t pitch;  ///< of the source, in pixels
};

/// Bits in words of 32, the lowest first. Offset `first` of the positions has bit number 0.
struct SpanBits {
    /// Neighbouring columns that are tested together.
    static constexpr int pieceColumns = 16;

    const unsigned char* words;
    std::int32_t first;
    std::uint32_t count;  ///< of the bits in whole words; whatever lies beside them is undefined but may be asked for
};

/// A tile of which the lines become columns.
struct TileShape {
    std::ptrdiff_t tilePitch;
    int lines;    ///< of the tile; columns of the output
    int columns;  ///< of the tile; lines of the output
    std::ptrdiff_t outPitch;
};

/// Operations on neighbouring display pixels. All variants give the same bits.
struct SpanOperations {
    /// Offsets of the source pixels at `count` positions.
    void (*offsets)(const SpanPositions& positions, int count, std::int32_t* out);
    /// For each bit p of `pieces`: bit i of set[p] is the bit at position p * pieceColumns + i.
    void (*testBits)(const SpanPositions& positions, const SpanBits& bits, std::uint64_t pieces, std::uint16_t* set);
    /// The same with u and v rounded to single precision before their whole pixels are taken.
    void (*testRoundedBits)(const SpanPositions& positions, const SpanBits& bits, std::uint64_t pieces,
                            std::uint16_t* set);
    /// out[y * outPitch + x] = tile[x * tilePitch + y].
    void (*transpose32)(const std::uint32_t* tile, const TileShape& shape, std::uint32_t* out);

    /// The variant for this processor, or the one that a test has chosen.
    static const SpanOperations& chosen();

    /// True when a test wants the plain loops, without any of these.
    static bool isPlain();

    /// True when the processor's own variants are to be used, where there are some; what else has variants goes by it.
    static bool usesVectors();

    /// Names of the variants that run here: "plain" and "portable", then the processor's own.
    static std::vector<std::string> variants();

    /// Makes every later call use a variant; an empty name goes back to the best one. False for an unknown name.
    /// For tests: no call may be running.
    static bool choose(const std::string& variant);
};

/// out[i] = table[source[offsets[i]]] for a table of 65536 entries.
void lookUpSpan(const std::uint16_t* source, const std::int32_t* offsets, int count, const std::uint32_t* table,
                std::uint32_t* out);

/// out[i] = source[offsets[i]].
void copySpan(const std::uint32_t* source, const std::int32_t* offsets, int count, std::uint32_t* out);

/// Fills pixels without taking them into the cache: for many that nobody reads soon.
void fillPastCache(std::uint32_t* out, std::size_t count, std::uint32_t colour);

/// Tells the processor that a line will be read soon; from its second or third cache line on it finds out itself.
void prefetchStart(const void* data);

/// Tells the processor that the source pixels `ahead` behind some of those at `offsets` will be read soon. They may lie
/// beyond the source.
void prefetchSpan(const void* source, std::size_t pixelBytes, const std::int32_t* offsets, int count,
                  std::int64_t ahead);

/// The plain transposition, for pixels of any size.
template <typename Pixel>
void transposeTile(const Pixel* tile, const TileShape& shape, Pixel* out) {
    if constexpr (std::is_same_v<Pixel, std::uint32_t>) {
        SpanOperations::chosen().transpose32(tile, shape, out);
    } else {
        for (int y = 0; y < shape.columns; ++y) {
            for (int x = 0; x < shape.lines; ++x) out[y * shape.outPitch + x] = tile[x * shape.tilePitch + y];
        }
    }
}

}  // namespace zolcs
