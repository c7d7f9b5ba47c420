// Interpolation of neighbouring display pixels in oblique views, in the variants that the processor offers.
#pragma once

#include "zolcs/resample/bicubic/cubicweights.h"
#include "zolcs/view/samplingoffsets.h"

#include <cstdint>

namespace zolcs {

/// What kernels compute, for `count` positions whose source pixels all exist: nothing is limited to the source here.
/// Positions have been shifted by half a pixel, so that whole numbers are pixel centres. All variants give the same
/// bits.
struct ObliqueOperations {
    /// Grey values on the plain path; `mask` holds their bits.
    void (*bilinearGrey)(const std::uint16_t* source, const SamplePositions& positions, std::uint16_t mask, int count,
                         std::uint16_t* out);
    void (*bilinearRgb)(const std::uint32_t* source, const SamplePositions& positions, int count, std::uint32_t* out);
    /// `mask` is 0x0FFF or 0xFFFF.
    void (*cubicGrey)(const std::uint16_t* source, const SamplePositions& positions, const CubicWeights* weights,
                      std::uint16_t mask, int count, std::uint16_t* out);
    void (*cubicRgb)(const std::uint32_t* source, const SamplePositions& positions, const CubicWeights* weights,
                     int count, std::uint32_t* out);

    /// The variant for this processor, or the one that a test has chosen; null where there is none.
    static const ObliqueOperations* chosen();
};

}  // namespace zolcs
