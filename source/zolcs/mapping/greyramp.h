// Tables of display pixels that are quicker computed than looked up: those of a linear window on a grey palette.
#pragma once

#include "zolcs/mapping/windowlut.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace zolcs::mapping {

/// A grey pixel for every 16-bit value: integers to the position in the window, single precision to the level.
struct GreyRamp {
    std::uint16_t up = 0;       ///< of up and down at most one is not 0: how far the window begins below or above 0
    std::uint16_t down = 0;     ///< positions below the window are 0
    std::uint16_t last = 0;     ///< the last position of all, which is also that of all values above
    std::uint16_t highest = 0;  ///< the position of 65535, which follows no rule
    float scale = 0.0F;         ///< levels per position
    std::uint32_t flip = 0;     ///< 0x00FFFFFF where levels fall, else 0

    [[nodiscard]] std::uint32_t operator()(std::uint16_t value) const {
        const int position = value == 0xFFFF ? highest : std::clamp(value + up - down, 0, int{last});
        return (static_cast<std::uint32_t>(static_cast<float>(position) * scale) * 0x010101U) ^ flip;
    }
};

/// The ramp that gives every entry of a table of 65536, bit for bit. `window` is the one that the table may have been
/// built from, for `depth` values of which the last serves all others; a wrong guess finds nothing. Nothing either for
/// other palettes, for windows that are less than 256 or more than 65536 values wide or begin beyond 65535 on either
/// side of 0, for the few (from a width of 52275 on) that single precision cannot tell, and where the processor has no
/// vectors that beat a table.
std::optional<GreyRamp> findGreyRamp(std::span<const std::uint32_t> table, const Window& window, std::size_t depth);

/// pixels[i] = ramp(values[i]), written with non-temporal stores where asked for. Only for a ramp that findGreyRamp has
/// found.
void fillGreyRamp(const GreyRamp& ramp, const std::uint16_t* values, std::uint32_t* pixels, std::size_t count,
                  bool nonTemporal);

}  // namespace zolcs::mapping
