// The palette look-up's two forms, which agree bit for bit. Private to the library and its tests.
#pragma once

#include "zolipp/zolipp.h"

#include <cstddef>

namespace zolipp {

/// What both forms take: rows of 16-bit samples in, rows of 32-bit pixels out, both `step` bytes apart and at any
/// address, odd ones included. A sample's bits outside `mask` are ignored; the table holds mask + 1 entries.
struct LutPaletteJob {
    const std::byte* source;
    std::ptrdiff_t sourceStep;
    std::byte* destination;
    std::ptrdiff_t destinationStep;
    IppiSize size;
    const Ipp32u* table;
    Ipp16u mask;
};

/// The obvious form: one pixel after the other.
void lutPaletteScalar(const LutPaletteJob& job);

/// The form that the primitive runs: unrolled table loads, and on processors with SSE2 whole vectors of pixels, stored
/// past the cache with `nonTemporal`, which the primitive chooses for destinations too large to stay in it.
void lutPaletteFast(const LutPaletteJob& job, bool nonTemporal);

}  // namespace zolipp
