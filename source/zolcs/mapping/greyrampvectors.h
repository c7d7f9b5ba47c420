// The vector variants of the grey ramp. Empty where the vector library is not there.
#pragma once

#include "zolcs/mapping/greyramp.h"

#include <cstddef>
#include <cstdint>

namespace zolcs::mapping {

using GreyRampFill = void (*)(const GreyRamp& ramp, const std::uint16_t* values, std::uint32_t* pixels,
                              std::size_t count, bool nonTemporal);

/// fillGreyRamp for this processor; null where a table is quicker.
GreyRampFill vectorGreyRampFill();

}  // namespace zolcs::mapping
