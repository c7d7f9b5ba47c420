// Pictures in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace viewing {

/// A picture as it is seen.
struct Picture {
    int width = 0;
    int height = 0;
    /// width * height display pixels 0x00RRGGBB, row by row without padding.
    std::vector<std::uint32_t> pixels;

    /// The pixel in column x and row y, both from 0 and inside the picture.
    [[nodiscard]] std::uint32_t at(int x, int y) const {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
    }
};

}  // namespace viewing
