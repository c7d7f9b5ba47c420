// Division of integers that rounds in one direction, also for negative numbers.
#pragma once

#include <cstdint>

namespace zolgdi {

/// Rounds down; b > 0.
constexpr std::int64_t floorDivide(std::int64_t a, std::int64_t b) { return a >= 0 ? a / b : -((-a + b - 1) / b); }
/// Rounds up; b > 0.
constexpr std::int64_t ceilDivide(std::int64_t a, std::int64_t b) { return -floorDivide(-a, b); }

}  // namespace zolgdi
