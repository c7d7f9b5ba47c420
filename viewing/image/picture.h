// What came out of the window: the pixels to save.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace viewing {

/// Pixels 0x00RRGGBB, row by row without padding.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    [[nodiscard]] std::uint32_t at(int x, int y) const {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
    }
};

}  // namespace viewing
