// The innermost operations of separable interpolation, in the variants that the processor offers.
//
// A source row is first filtered *across*: each display column's pixels are weighed, as the tabulated taps of the
// column say. Rows so filtered are then weighed *down* for each display row. Both steps round as the kernels do.
#pragma once

#include "zolcs/resample/bicubic/cubicweights.h"
#include "zolcs/resample/stopflag.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace zolcs {

/// What the display columns are made of: column x weighs the neighbouring source pixels from offsets[x] on. What the
/// weights are depends on the operation.
struct ColumnTaps {
    const std::int32_t* offsets;
    const std::int16_t* weights;
    const std::int16_t* remainders;

    // Of 16-bit pixels, where columns lie close enough: groups of columns whose pixels are all among the 8 from
    // groups[i] on, and which bytes of these they are, column by column.
    bool isGrouped;
    const std::int32_t* groups;
    const std::uint8_t* groupBytes;
};

/// Each operation works on whole blocks of StopFlag::block pixels and looks at the flag before each; false when it was
/// raised. Taps and filtered rows have entries up to the end of a block; what is written down is `count` pixels.
/// `next` is the row that will be filtered next, to be fetched into the cache meanwhile.
template <typename Pixel, typename Sample>
using AcrossOperation = bool (*)(const Pixel* row, const Pixel* next, ColumnTaps taps, int count, Sample* out,
                                 StopFlag stop);
template <typename Sample, std::size_t Rows, typename Weights, typename Pixel>
using DownOperation = bool (*)(const std::array<const Sample*, Rows>& rows, Weights weights, int count, Pixel* out,
                               StopFlag stop);

/// All variants give the same bits.
struct UprightOperations {
    // Bilinear. The fraction at which a column lies between its two pixels counts from 0 to 65536, the second pixel.

    /// Weights: minus half of 65536 - fraction, minus half of the fraction. Values have 12 bits, others are cut off.
    AcrossOperation<std::uint16_t, std::int16_t> bilinearGrey12Across;
    /// Weights: the two 16-bit halves of the fraction, low one first.
    AcrossOperation<std::uint16_t, std::int32_t> bilinearGrey16Across;
    /// Weights: minus half of the fraction, four times. Filtered pixels keep the layout of the source.
    AcrossOperation<std::uint32_t, std::uint32_t> bilinearRgbAcross;
    DownOperation<std::int16_t, 2, std::uint32_t, std::uint16_t> bilinearGrey12Down;
    DownOperation<std::int32_t, 2, std::uint32_t, std::uint16_t> bilinearGrey16Down;
    DownOperation<std::uint32_t, 2, std::uint32_t, std::uint32_t> bilinearRgbDown;

    // Bicubic. Weights are a quarter (rounded down) of the four 16.16 ones, remainders what four times that leaves.

    AcrossOperation<std::uint16_t, std::int16_t> cubicGrey12Across;
    AcrossOperation<std::uint16_t, std::int32_t> cubicGrey16Across;
    /// Filtered pixels have four samples, of which the last one means nothing.
    AcrossOperation<std::uint32_t, std::int16_t> cubicRgbAcross;
    DownOperation<std::int16_t, 4, const CubicWeights&, std::uint16_t> cubicGrey12Down;
    DownOperation<std::int32_t, 4, const CubicWeights&, std::uint16_t> cubicGrey16Down;
    DownOperation<std::int16_t, 4, const CubicWeights&, std::uint32_t> cubicRgbDown;

    /// The variant for this processor, or the one that a test has chosen.
    static const UprightOperations& chosen();

    /// The variant that every processor runs.
    static const UprightOperations& portable();
};

/// out[i] = table[values[i]] for a table of 65536 entries; looks at the flag before each block, false when it was
/// raised.
bool lookUpRow(const std::uint16_t* values, int count, const std::uint32_t* table, std::uint32_t* out, StopFlag stop);

}  // namespace zolcs
