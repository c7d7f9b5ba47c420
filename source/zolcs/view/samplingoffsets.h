// Which source pixels neighbouring display pixels sample, many at a time, in the variants that the processor offers.
#pragma once

#include "zolcs/view/spans.h"

#include <cstdint>

namespace zolcs {

/// Source positions of neighbouring display pixels, as 16.16 numbers that fit 31 bits at every pixel. The pitch counts
/// the source's pixels.
struct SamplePositions {
    std::uint32_t u;
    std::uint32_t v;
    std::uint32_t du;
    std::uint32_t dv;
    std::int32_t pitch;
};

/// The positions of a row from a column on, for a source of that pitch. The sums are exact modulo 2^32, and so wherever
/// the positions fit.
constexpr SamplePositions samplePositions(const DisplayRow& row, int column, std::int64_t pitch) {
    return {static_cast<std::uint32_t>(row.uAt(column)), static_cast<std::uint32_t>(row.vAt(column)),
            static_cast<std::uint32_t>(row.du), static_cast<std::uint32_t>(row.dv), static_cast<std::int32_t>(pitch)};
}

/// True when all positions on a source of limitU by limitV (16.16), and the offsets of its pixels, fit 31 bits.
constexpr bool fitsSamplePositions(Fixed16 limitU, Fixed16 limitV, std::int64_t pitch) {
    constexpr Fixed16 limit = Fixed16{1} << 31;
    return limitU <= limit && limitV <= limit && pitch <= limit && pixelOf(limitV) * pitch <= limit;
}

/// Bits in words of 32, the lowest first. Offset `first` of the positions has bit number 0.
struct SampledBits {
    /// Neighbouring columns that are tested together.
    static constexpr int pieceColumns = 16;

    const unsigned char* words;
    std::int32_t first;
    std::uint32_t count;  ///< of the bits in whole words; positions beside them may be asked for and give any answer
};

/// Operations on the samples of neighbouring display pixels. All variants give the same bits.
struct SamplingOperations {
    /// Offsets of the source pixels at `count` positions.
    void (*offsets)(const SamplePositions& positions, int count, std::int32_t* out);
    /// For each bit p of `pieces`: bit i of set[p] is the bit at position p * pieceColumns + i.
    void (*testBits)(const SamplePositions& positions, const SampledBits& bits, std::uint64_t pieces,
                     std::uint16_t* set);
    /// The same with u and v rounded to single precision before their whole pixels are taken.
    void (*testRoundedBits)(const SamplePositions& positions, const SampledBits& bits, std::uint64_t pieces,
                            std::uint16_t* set);

    /// The variant for this processor, or the one that a test has chosen.
    static const SamplingOperations& chosen();
};

}  // namespace zolcs
