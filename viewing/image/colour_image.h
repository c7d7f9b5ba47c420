// The pixels of a colour image.
#pragma once

#include <cstdint>
#include <variant>
#include <vector>

namespace viewing {

/// Pixels of 8 bits a channel: 0x00RRGGBB.
using Rgb8Pixels = std::vector<std::uint32_t>;
/// Pixels of 12 bits a channel: 0x0000RRRRGGGGBBBB.
using Rgb12Pixels = std::vector<std::uint64_t>;

/// Red, green and blue of either depth.
struct ColourImage {
    /// width * height pixels, row by row.
    std::variant<Rgb8Pixels, Rgb12Pixels> pixels;
};

}  // namespace viewing
