// The step from one value to another by a 16-bit fraction, as bilinear interpolation takes it everywhere.
#pragma once

#include <cstdint>

namespace zolcs {

/// The step from `a` to `b`. The product has 32 bits and wraps, which 16-bit grey values can make it do.
constexpr std::int32_t blend(std::int32_t a, std::int32_t b, std::uint32_t fraction) {
    return a + (static_cast<std::int32_t>(static_cast<std::uint32_t>(b - a) * fraction) >> 16);
}

/// The lowest bit of a fraction does not count.
inline constexpr std::uint32_t blendFraction = 0xFFFE;

}  // namespace zolcs
