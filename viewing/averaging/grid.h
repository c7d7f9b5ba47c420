// Pixels in memory, as averaging reads them.
#pragma once

#include <cstddef>

namespace viewing::averaging {

/// Rows of pixels that lie in memory as `Channels` samples one after the other. Owns nothing.
template <typename Sample, std::size_t Channels>
struct Grid {
    const Sample* first = nullptr;
    std::ptrdiff_t pitch = 0;  ///< samples from one row to the next
    int width = 0;             ///< pixels
    int height = 0;

    [[nodiscard]] const Sample* row(int y) const { return first + y * pitch; }
};

}  // namespace viewing::averaging
