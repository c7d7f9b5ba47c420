// The vector variants of the level ramp. Empty where the vector library is not there.
#pragma once

#include "zolcs/mapping/levelramp.h"

#include <cstddef>
#include <cstdint>

namespace zolcs::mapping::levelvectors {

/// fillLevelRamp in the chosen variant.
bool fill(const LevelRamp& ramp, const std::uint16_t* channels, unsigned char* levels, std::size_t pixels,
          bool nonTemporal);

}  // namespace zolcs::mapping::levelvectors
