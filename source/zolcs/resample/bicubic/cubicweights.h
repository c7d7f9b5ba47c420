// The weights of cubic convolution, computed once for the whole process.
#pragma once

#include <array>
#include <cstdint>

namespace zolcs {

/// 16.16 weights of the samples at the offsets -1, 0, 1 and 2; their sum is exactly 65536.
using CubicWeights = std::array<std::int32_t, 4>;

inline constexpr int fineCubicSteps = 4096;   ///< entries of the table for grey values
inline constexpr int coarseCubicSteps = 256;  ///< entries of the table for colour bytes

/// Builds the tables that do not exist yet; throws 1 when memory is exhausted. Not locked: the first call must be over
/// before other threads make one.
void buildCubicWeights();

/// Frees both tables for good: nothing may ask for weights afterwards. Unless it was called, they are freed at unload.
void freeCubicWeights();

/// The tables; entry i holds the weights at the fraction i / fineCubicSteps or i / coarseCubicSteps.
[[nodiscard]] const CubicWeights* fineCubicWeights();
[[nodiscard]] const CubicWeights* coarseCubicWeights();

}  // namespace zolcs
