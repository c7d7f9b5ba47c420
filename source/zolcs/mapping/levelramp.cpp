#include "zolcs/mapping/levelramp.h"

#include "zolcs/mapping/levelrampvectors.h"
#include "zolcs/simd/variant.h"

#include <bit>
#include <cstdlib>
#include <limits>

namespace zolcs::mapping {

std::optional<LevelRamp> LevelRamp::of(const Window& window, std::size_t entries) {
    constexpr std::int64_t largest = std::numeric_limits<std::uint16_t>::max();
    const std::int64_t low = window.low();
    if (window.width < 1 || window.width > largest || std::abs(low) > largest) return std::nullopt;
    LevelRamp ramp;
    ramp.up = static_cast<std::uint16_t>(std::max<std::int64_t>(-low, 0));
    ramp.down = static_cast<std::uint16_t>(std::max<std::int64_t>(low, 0));
    const std::int64_t last = static_cast<std::int64_t>(entries) - 1 - low;
    ramp.last = static_cast<std::uint16_t>(std::clamp<std::int64_t>(last, 0, window.width));
    ramp.shift = std::countl_zero(static_cast<std::uint16_t>(window.width));
    const std::uint64_t divisor = static_cast<std::uint64_t>(window.width) << static_cast<unsigned>(ramp.shift);
    ramp.multiplier = static_cast<std::uint32_t>(((std::uint64_t{1} << 40U) + divisor - 1) / divisor);
    return ramp;
}

bool fillLevelRamp([[maybe_unused]] const LevelRamp& ramp, [[maybe_unused]] const std::uint16_t* channels,
                   [[maybe_unused]] unsigned char* levels, [[maybe_unused]] std::size_t pixels,
                   [[maybe_unused]] bool nonTemporal) {
#if defined(ZOL_USE_HIGHWAY)
    if (simd::usesVectors()) return levelvectors::fill(ramp, channels, levels, pixels, nonTemporal);
#endif
    return false;
}

}  // namespace zolcs::mapping
