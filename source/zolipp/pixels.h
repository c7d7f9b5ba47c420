// Pixel formats and rows of pixels. Private to the library.
#pragma once

#include "zolipp/zolipp.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

namespace zolipp {

struct Grey16 {
    using Sample = Ipp16u;
    static constexpr int channels = 1;  ///< in memory
    static constexpr int written = 1;   ///< of them, from the first one on
};

struct FourBytes {
    using Sample = Ipp8u;
    static constexpr int channels = 4;
    static constexpr int written = 4;
};

/// Four bytes of which the last one of a destination stays as it is.
struct ThreeOfFourBytes : FourBytes {
    static constexpr int written = 3;
};

template <typename Format>
inline constexpr int pixelBytes = Format::channels* static_cast<int>(sizeof(typename Format::Sample));

/// Pixels of one or more rows; row y starts y * step bytes behind the first one.
template <typename Byte>
struct Rows {
    Byte* first;
    std::ptrdiff_t step;

    [[nodiscard]] Byte* at(std::ptrdiff_t y) const { return first + y * step; }
};

using SourceRows = Rows<const std::byte>;
using TargetRows = Rows<std::byte>;

inline SourceRows rowsOf(const void* pixels, int step) { return {static_cast<const std::byte*>(pixels), step}; }
inline TargetRows rowsOf(void* pixels, int step) { return {static_cast<std::byte*>(pixels), step}; }

/// Addresses may be odd, so every access goes through memcpy, which compiles to one move.
template <typename Sample>
Sample loadSample(const std::byte* row, std::ptrdiff_t index) {
    Sample sample;
    std::memcpy(&sample, row + index * static_cast<std::ptrdiff_t>(sizeof(Sample)), sizeof sample);
    return sample;
}

template <typename Sample>
void storeSample(std::byte* row, std::ptrdiff_t index, Sample sample) {
    std::memcpy(row + index * static_cast<std::ptrdiff_t>(sizeof(Sample)), &sample, sizeof sample);
}

/// Copies what a destination of this format takes of one pixel.
template <typename Format>
void copyPixel(const std::byte* source, std::byte* target) {
    std::memcpy(target, source, Format::written * sizeof(typename Format::Sample));
}

/// Added to a number of less than 2^22, this leaves the nearest whole number in the low bits, halves rounded to even:
/// quicker than a conversion, and the same in every variant.
inline constexpr float roundingShift = 12582912.0F;
inline constexpr std::int32_t roundingShiftBits = 0x4B400000;

/// The nearest value of the type.
template <typename Sample>
Sample roundedSample(float value) {
    const auto rounded = std::bit_cast<std::int32_t>(value + roundingShift) - roundingShiftBits;
    return static_cast<Sample>(std::clamp<std::int32_t>(rounded, 0, std::numeric_limits<Sample>::max()));
}

}  // namespace zolipp
