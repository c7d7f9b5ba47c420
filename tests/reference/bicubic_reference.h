// Cubic convolution restated pixel by pixel; the weights in whole numbers.
#pragma once

#include "reference/bilinear_reference.h"

#include <cstdint>

namespace zolref {

struct FourWeights {
    std::int64_t w[4] = {};
};

/// The weights at the fraction i / 4096. With s and t in units of 1 / 4096, s * s * s has 2 to the 36th as its unit;
/// -0.75 times 65536 over that is -3 over 2 to the 22nd. Division cuts towards zero.
inline FourWeights weightsAt(std::int64_t i) {
    const std::int64_t one = 4096;
    const auto outer = [&](std::int64_t s) {
        const std::int64_t cubic = s * s * s - 5 * one * s * s + 8 * one * one * s - 4 * one * one * one;
        return -3 * cubic / (std::int64_t{1} << 22);
    };
    FourWeights weights;
    weights.w[0] = outer(one + i);
    weights.w[1] = (5 * i * i * i - 9 * one * i * i + 4 * one * one * one) / (std::int64_t{1} << 22);
    weights.w[3] = outer(2 * one - i);
    weights.w[2] = 65536 - weights.w[0] - weights.w[1] - weights.w[3];
    return weights;
}

inline std::int64_t clampedIndex(std::int64_t index, int count) {
    if (index < 0) return 0;
    if (index > count - 1) return count - 1;
    return index;
}

/// `steps` entries lie between two pixels; `load` gives the number that a pixel counts as.
template <typename Load>
std::int64_t cubicTotal(const Pixels& src, std::int64_t u, std::int64_t v, std::int64_t steps, const Load& load) {
    const std::int64_t shiftedU = u - 32768;
    const std::int64_t shiftedV = v - 32768;
    const std::int64_t column = floorOf(shiftedU, 65536);
    const std::int64_t row = floorOf(shiftedV, 65536);
    const FourWeights across = weightsAt((shiftedU - column * 65536) * steps / 65536 * (4096 / steps));
    const FourWeights down = weightsAt((shiftedV - row * 65536) * steps / 65536 * (4096 / steps));
    std::int64_t total = 0;
    for (int j = 0; j < 4; ++j) {
        std::int64_t sum = 0;
        for (int k = 0; k < 4; ++k) {
            const std::int64_t atColumn = clampedIndex(column - 1 + k, src.width);
            const std::int64_t atRow = clampedIndex(row - 1 + j, src.height);
            sum += load(pixelAt(src, atColumn, atRow)) * across.w[k];
        }
        total += floorOf(sum, 65536) * down.w[j];
    }
    return total;
}

inline unsigned bicubicGreyValue(const Pixels& src, std::int64_t u, std::int64_t v, bool twelveBit, bool keepBits) {
    const std::int64_t values = twelveBit ? 4096 : 65536;
    std::int64_t total =
        cubicTotal(src, u, v, 4096, [&](const unsigned char* at) { return std::int64_t{load16(at)} % values; });
    if (total < 0) total = 0;
    if (total >= values * 65536) total = (values - 1) * 65536;
    const unsigned raw = load16(pixelAt(src, clampedIndex(floorOf(u - 32768, 65536), src.width),
                                        clampedIndex(floorOf(v - 32768, 65536), src.height)));
    return static_cast<unsigned>(total / 65536) | (keepBits && twelveBit ? raw & 0xF000U : 0U);
}

inline std::uint32_t bicubicRgbValue(const Pixels& src, std::int64_t u, std::int64_t v) {
    std::uint32_t pixel = 0;
    for (int i = 2; i >= 0; --i) {
        const std::int64_t total =
            cubicTotal(src, u, v, 256, [i](const unsigned char* at) { return std::int64_t{at[i]}; });
        std::int64_t level = floorOf(total, 65536);
        if (level < 0) level = 0;
        if (level > 255) level = 255;
        pixel = pixel * 256 + static_cast<std::uint32_t>(level);
    }
    return pixel;
}

inline void bicubicGrey(const double m[6], const Pixels& src, const Pixels& dst, unsigned background, bool twelveBit,
                        bool keepBits) {
    resampleGrey(m, src, dst, background,
                 [&](std::int64_t u, std::int64_t v) { return bicubicGreyValue(src, u, v, twelveBit, keepBits); });
}

inline void bicubicMapped(const double m[6], const Pixels& src, const Pixels& dst, const GreyView& view) {
    resampleDisplay(m, src, dst, view.background, [&](std::int64_t u, std::int64_t v) {
        std::uint32_t out = 0;
        if (shownAbove(view, src, dst.width, u, v, out)) return out;
        return view.table[bicubicGreyValue(src, u, v, view.twelveBit, false)];
    });
}

inline void bicubicRgb(const double m[6], const Pixels& src, const Pixels& dst, std::uint32_t background,
                       const unsigned char* table) {
    resampleDisplay(m, src, dst, background,
                    [&](std::int64_t u, std::int64_t v) { return throughTable(bicubicRgbValue(src, u, v), table); });
}

}  // namespace zolref
