// Conversions to 32 bits that are defined for every value.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace zolplatform {

/// The value, or the nearer end of the 32-bit range.
constexpr std::int32_t saturated(std::int64_t value) {
    constexpr std::int64_t lowest = std::numeric_limits<std::int32_t>::min();
    constexpr std::int64_t highest = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(value < lowest ? lowest : value > highest ? highest : value);
}

/// The value without its fraction, or the nearer end of the 32-bit range; 0 for NaN.
inline std::int32_t truncated(double value) {
    if (std::isnan(value)) return 0;
    if (value <= -2147483648.0) return std::numeric_limits<std::int32_t>::min();
    if (value >= 2147483647.0) return std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(value);
}

}  // namespace zolplatform
