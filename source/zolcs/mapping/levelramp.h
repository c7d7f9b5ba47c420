// Levels of a linear window over channels of 16 bits that are quicker computed than looked up.
#pragma once

#include "zolcs/mapping/windowlut.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace zolcs::mapping {

/// position * 256 / width by one multiplication, for a position counted from the window's beginning. Positions are
/// shifted until the width has its highest bit, and multiplied with 2^40 / (width << shift), rounded up: what that adds
/// is less than 2^-16, and so never reaches the next multiple of 1 / width.
struct LevelRamp {
    std::uint16_t up = 0;    ///< of up and down at most one is not 0: how far the window begins below or above 0
    std::uint16_t down = 0;  ///< positions below the window are 0
    std::uint16_t last = 0;  ///< the last position of all, which is also that of all values above
    int shift = 0;
    std::uint32_t multiplier = 0;

    /// The ramp that gives what fillLevels gives for a table of so many entries, and its last entry for all values
    /// beyond. Nothing for windows that are more than 65535 values wide or that begin further than that from 0.
    static std::optional<LevelRamp> of(const Window& window, std::size_t entries);

    [[nodiscard]] unsigned char operator()(std::uint16_t value) const {
        const auto position = static_cast<std::uint64_t>(std::clamp(value + up - down, 0, int{last}));
        // Behind the window it is 256.
        return static_cast<unsigned char>(std::min<std::uint64_t>(((position << shift) * multiplier) >> 32U, 255));
    }
};

/// Maps that many pixels of four channels to three levels and a 0; false, with nothing done, where the processor looks
/// levels up as fast. Written with non-temporal stores where asked for.
bool fillLevelRamp(const LevelRamp& ramp, const std::uint16_t* channels, unsigned char* levels, std::size_t pixels,
                   bool nonTemporal);

}  // namespace zolcs::mapping
