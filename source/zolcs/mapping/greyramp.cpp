#include "zolcs/mapping/greyramp.h"

#include "zolcs/mapping/greyrampvectors.h"
#include "zolcs/simd/variant.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <numeric>

namespace zolcs::mapping {

namespace {

constexpr std::size_t valueCount = 0x10000;

/// Of narrower windows, the last value inside is darker than those above.
constexpr std::int32_t minimumWidth = 256;
constexpr std::int32_t maximumWidth = 0x10000;
constexpr std::int64_t maximumShift = 0xFFFF;

GreyRampFill vectorFill() {
#if defined(ZOL_USE_HIGHWAY)
    if (simd::usesVectors()) return vectorGreyRampFill();
#endif
    return nullptr;
}

bool gives(const GreyRamp& ramp, std::span<const std::uint32_t> table) {
    constexpr std::size_t step = 2048;
    std::array<std::uint16_t, step> values{};
    std::array<std::uint32_t, step> pixels{};
    for (std::size_t begin = 0; begin < valueCount; begin += step) {
        std::iota(values.begin(), values.end(), static_cast<std::uint16_t>(begin));
        fillGreyRamp(ramp, values.data(), pixels.data(), step, false);
        if (!std::equal(pixels.begin(), pixels.end(), table.data() + begin)) return false;
    }
    return true;
}

}  // namespace

std::optional<GreyRamp> findGreyRamp(std::span<const std::uint32_t> table, const Window& window, std::size_t depth) {
    if (vectorFill() == nullptr || table.size() != valueCount) return std::nullopt;
    if (window.width < minimumWidth || window.width > maximumWidth) return std::nullopt;
    const std::int64_t end = std::min(static_cast<std::int64_t>(depth), window.high());
    if (std::abs(window.low()) > maximumShift || end <= window.low()) return std::nullopt;
    GreyRamp ramp;
    ramp.up = static_cast<std::uint16_t>(std::max<std::int64_t>(-window.low(), 0));
    ramp.down = static_cast<std::uint16_t>(std::max<std::int64_t>(window.low(), 0));
    ramp.last = static_cast<std::uint16_t>(end - 1 - window.low());
    ramp.flip = table.front() <= table[valueCount - 2] ? 0 : 0x00FFFFFF;
    ramp.highest = ramp.last;
    if (table.back() != table[valueCount - 2]) {
        ramp.highest = table.back() == ramp.flip ? std::uint16_t{0} : static_cast<std::uint16_t>(window.width - 1);
    }
    // A factor that is rounded up serves most windows, one that is rounded to the nearest most of the others.
    const float nearest = 256.0F / static_cast<float>(window.width);
    for (const float scale : {std::nextafter(nearest, std::numeric_limits<float>::max()), nearest}) {
        ramp.scale = scale;
        if (gives(ramp, table)) return ramp;
    }
    return std::nullopt;
}

void fillGreyRamp(const GreyRamp& ramp, const std::uint16_t* values, std::uint32_t* pixels, std::size_t count,
                  bool nonTemporal) {
    vectorFill()(ramp, values, pixels, count, nonTemporal);
}

}  // namespace zolcs::mapping
