// The number in which positions on a source are counted: 16.16 fixed point.
#pragma once

#include <cstdint>

namespace zolcs {

/// 16.16 fixed point, held in 64 bits: sums along a display row are exact, and neither a far zoom-out nor a far pan
/// wraps.
using Fixed16 = std::int64_t;

inline constexpr int fixed16Bits = 16;
inline constexpr Fixed16 fixed16One = Fixed16{1} << fixed16Bits;

/// The value of the lowest bit. A power of two, so that multiplying with it rounds no double.
inline constexpr float fixed16Unit = 0x1.0p-16F;

/// The whole pixel on which a coordinate lies.
constexpr std::int64_t pixelOf(Fixed16 coordinate) { return coordinate >> fixed16Bits; }

/// A coordinate in pixels, in single precision: overlay planes, padding and the shutters' curves are decided at this
/// position. From 2^24 on it is coarser than 16.16 and may round up to the next pixel; pictures depend on it.
constexpr float singlePosition(Fixed16 coordinate) { return static_cast<float>(coordinate) * fixed16Unit; }

/// The whole pixel of a coordinate's single-precision position.
constexpr std::int64_t roundedPixel(Fixed16 coordinate) {
    return static_cast<std::int64_t>(singlePosition(coordinate));
}

}  // namespace zolcs
