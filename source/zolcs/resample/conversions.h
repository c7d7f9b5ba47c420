// The conversions of what a kernel samples from the source into display pixels.
//
// A kernel gives the sample at a source position, a conversion makes a display pixel of it. Both are small values that
// the plain loop calls for single pixels; a faster filler may take them apart.
#pragma once

#include "zolcs/pixels/imageview.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace zolcs {

/// The sample as it is.
template <typename Pixel>
struct Copy {
    Pixel operator()(Pixel sample) const { return sample; }
};

/// A stored grey value through a table of 65536 display pixels.
struct GreyTable {
    const std::uint32_t* entries;

    std::uint32_t operator()(std::uint16_t sample) const { return entries[sample]; }
};

/// A byte through a table of 256 bytes.
struct ByteTable {
    const unsigned char* entries;

    std::uint8_t operator()(std::uint8_t sample) const { return entries[sample]; }
};

/// Each colour byte through a table of its own; the fourth byte becomes 0.
class ColourTables {
public:
    ColourTables(const unsigned char* blue, const unsigned char* green, const unsigned char* red) {
        for (std::size_t i = 0; i < 256; ++i) {
            blue_[i] = blue[i];
            green_[i] = std::uint32_t{green[i]} << 8U;
            red_[i] = std::uint32_t{red[i]} << 16U;
        }
    }

    std::uint32_t operator()(std::uint32_t sample) const {
        return blue_[sample & 0xFFU] | green_[sample >> 8U & 0xFFU] | red_[sample >> 16U & 0xFFU];
    }

private:
    std::array<std::uint32_t, 256> blue_{};
    std::array<std::uint32_t, 256> green_{};
    std::array<std::uint32_t, 256> red_{};
};

/// Each 16-bit colour channel through one table of 4096 bytes, higher values through its last entry.
struct Colour12Table {
    const unsigned char* entries;

    std::uint32_t operator()(std::uint64_t sample) const {
        return level(sample, 0) | level(sample, 1) | level(sample, 2);
    }

private:
    [[nodiscard]] std::uint32_t level(std::uint64_t sample, unsigned channel) const {
        const std::uint64_t value = sample >> (16U * channel) & 0xFFFFU;
        return std::uint32_t{entries[std::min<std::uint64_t>(value, 4095)]} << (8U * channel);
    }
};

/// The three colour bytes in reversed order, as files want them.
struct ReversedRgb24 {
    Rgb24 operator()(std::uint32_t sample) const {
        return {{static_cast<std::uint8_t>(sample >> 16U), static_cast<std::uint8_t>(sample >> 8U),
                 static_cast<std::uint8_t>(sample)}};
    }
};

}  // namespace zolcs
