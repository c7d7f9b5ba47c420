// Unsharp masking restated: every box is summed anew, every division is a long division.
#pragma once

#include <cstdint>
#include <vector>

namespace zolref {

/// ((sum * strength) << p) / area >> p, the quotient cut towards zero, the shift towards minus infinity.
inline std::int64_t edgeShare(std::int64_t sum, std::int64_t strength, std::int64_t area, int p) {
    const bool negative = strength < 0;
    const std::uint64_t times = static_cast<std::uint64_t>(negative ? -strength : strength);
    // Binary long division of sum * times * 2^p, one bit of (times * 2^p) after the other.
    std::uint64_t quotient = 0;
    std::uint64_t rest = 0;
    for (int bit = 63; bit >= 0; --bit) {
        const bool one = bit >= p && bit - p < 33 && ((times >> (bit - p)) & 1U) != 0;
        rest = 2 * rest + (one ? static_cast<std::uint64_t>(sum) : 0U);
        quotient = 2 * quotient + rest / static_cast<std::uint64_t>(area);
        rest %= static_cast<std::uint64_t>(area);
    }
    std::int64_t value = static_cast<std::int64_t>(quotient);
    if (negative) value = -value;
    std::int64_t power = 1;
    for (int i = 0; i < p; ++i) power *= 2;
    std::int64_t shifted = value / power;
    if (value < 0 && shifted * power != value) --shifted;
    return shifted;
}

/// A plane of numbers, without padding.
struct EdgePlane {
    int width;
    int height;
    std::vector<std::int64_t> values;

    [[nodiscard]] std::int64_t at(std::int64_t x, std::int64_t y) const {
        return values[static_cast<std::size_t>(y * width + x)];
    }
};

/// The sharpened numbers; border pixels are the numbers themselves. `columnModulus`: where column sums wrap.
inline std::vector<std::int64_t> sharpened(const EdgePlane& plane, std::int64_t k, std::int64_t strength, int p,
                                           std::int64_t largest, std::int64_t columnModulus) {
    std::vector<std::int64_t> out = plane.values;
    const std::int64_t h = k / 2;
    for (std::int64_t y = h; y < plane.height - h; ++y) {
        for (std::int64_t x = h; x < plane.width - h; ++x) {
            std::int64_t sum = 0;
            for (std::int64_t column = x - h; column < x - h + k; ++column) {
                std::int64_t columnSum = 0;
                for (std::int64_t row = y - h; row < y - h + k; ++row) columnSum += plane.at(column, row);
                sum += columnSum % columnModulus;
            }
            std::int64_t value = plane.at(x, y) * (strength + 1) - edgeShare(sum, strength, k * k, p);
            if (value < 0) value = 0;
            if (value > largest) value = largest;
            out[static_cast<std::size_t>(y * plane.width + x)] = value;
        }
    }
    return out;
}

/// True for pixels that are sharpened and not copied.
inline bool isEdgeInterior(const EdgePlane& plane, std::int64_t k, std::int64_t x, std::int64_t y) {
    const std::int64_t h = k / 2;
    return x >= h && x < plane.width - h && y >= h && y < plane.height - h;
}

}  // namespace zolref
