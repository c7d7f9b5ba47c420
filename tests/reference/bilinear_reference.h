// Bilinear resampling restated pixel by pixel, in 64 bits, with every wrap and cut written out.
#pragma once

#include "reference/nearest_reference.h"

#include <cstdint>

namespace zolref {

/// The greatest integer not above value / divisor.
inline std::int64_t floorOf(std::int64_t value, std::int64_t divisor) {
    std::int64_t quotient = value / divisor;
    if (value % divisor != 0 && value < 0) --quotient;
    return quotient;
}

/// What 32 signed bits hold of a number.
inline std::int64_t wrapped32(std::int64_t value) {
    std::int64_t low = value % 4294967296;
    if (low < 0) low += 4294967296;
    return low >= 2147483648 ? low - 4294967296 : low;
}

/// A position after the half-pixel shift, held between the centres of the outermost pixels.
inline std::int64_t heldBetweenCentres(std::int64_t coordinate, std::int64_t limit) {
    const std::int64_t shifted = coordinate - 32768;
    if (shifted < 0) return 0;
    if (shifted > limit - 65536) return limit - 65536;
    return shifted;
}

inline std::int64_t blended(std::int64_t a, std::int64_t b, std::int64_t fraction) {
    return a + floorOf(wrapped32((b - a) * fraction), 65536);
}

/// Four stored values; what lies beside the image has no weight and counts as 0.
struct Four {
    std::int64_t topLeft = 0, topRight = 0, bottomLeft = 0, bottomRight = 0;
};

template <typename Load>
Four fourAround(const Pixels& src, std::int64_t heldU, std::int64_t heldV, const Load& load) {
    const std::int64_t column = heldU / 65536;
    const std::int64_t row = heldV / 65536;
    const bool hasRight = column + 1 < src.width;
    const bool hasBelow = row + 1 < src.height;
    Four four;
    four.topLeft = load(pixelAt(src, column, row));
    if (hasRight) four.topRight = load(pixelAt(src, column + 1, row));
    if (hasBelow) four.bottomLeft = load(pixelAt(src, column, row + 1));
    if (hasRight && hasBelow) four.bottomRight = load(pixelAt(src, column + 1, row + 1));
    return four;
}

inline unsigned bilinearGreyValue(const Pixels& src, std::int64_t u, std::int64_t v, bool twelveBit, bool keepBits) {
    const std::int64_t values = twelveBit ? 4096 : 65536;
    const std::int64_t heldU = heldBetweenCentres(u, std::int64_t{src.width} * 65536);
    const std::int64_t heldV = heldBetweenCentres(v, std::int64_t{src.height} * 65536);
    const Four four =
        fourAround(src, heldU, heldV, [&](const unsigned char* at) { return std::int64_t{load16(at)} % values; });
    const std::int64_t across = heldU % 65536 / 2 * 2;
    const std::int64_t down = heldV % values;
    const std::int64_t top = blended(four.topLeft, four.topRight, across);
    const std::int64_t bottom = blended(four.bottomLeft, four.bottomRight, across);
    std::int64_t result = blended(top, bottom, down) % 65536;
    if (result < 0) result += 65536;
    const unsigned raw = load16(pixelAt(src, heldU / 65536, heldV / 65536));
    return static_cast<unsigned>(result) | (keepBits && twelveBit ? raw & 0xF000U : 0U);
}

inline std::int64_t signed16(std::int64_t value) { return value >= 32768 ? value - 65536 : value; }

inline std::int64_t saturated16(std::int64_t value) {
    if (value > 32767) return 32767;
    if (value < -32768) return -32768;
    return value;
}

inline unsigned bilinearPackedValue(const Pixels& src, std::int64_t u, std::int64_t v) {
    const std::int64_t heldU = heldBetweenCentres(u, std::int64_t{src.width} * 65536);
    const std::int64_t heldV = heldBetweenCentres(v, std::int64_t{src.height} * 65536);
    const Four four =
        fourAround(src, heldU, heldV, [](const unsigned char* at) { return signed16(std::int64_t{load16(at)}); });
    const std::int64_t across = heldU / 2 % 32768;
    const std::int64_t down = heldV / 2 % 32768;
    const std::int64_t top = saturated16(floorOf(four.topLeft * (32767 - across) + four.topRight * across, 32768));
    const std::int64_t bottom =
        saturated16(floorOf(four.bottomLeft * (32767 - across) + four.bottomRight * across, 32768));
    std::int64_t result = floorOf(top * (32767 - down) + bottom * down, 32768);
    if (result < 0) result += 65536;
    return static_cast<unsigned>(result);
}

inline std::uint32_t bilinearRgbValue(const Pixels& src, std::int64_t u, std::int64_t v) {
    const std::int64_t heldU = heldBetweenCentres(u, std::int64_t{src.width} * 65536);
    const std::int64_t heldV = heldBetweenCentres(v, std::int64_t{src.height} * 65536);
    std::uint32_t pixel = 0;
    for (int i = 2; i >= 0; --i) {
        const Four four = fourAround(src, heldU, heldV, [i](const unsigned char* at) { return std::int64_t{at[i]}; });
        const std::int64_t across = heldU % 65536 / 2 * 2;
        const std::int64_t down = heldV % 65536 / 2 * 2;
        const std::int64_t top = blended(four.topLeft, four.topRight, across);
        const std::int64_t bottom = blended(four.bottomLeft, four.bottomRight, across);
        pixel = pixel * 256 + static_cast<std::uint32_t>(blended(top, bottom, down));
    }
    return pixel;
}

inline void store16(unsigned char* to, unsigned value) {
    to[0] = static_cast<unsigned char>(value & 255U);
    to[1] = static_cast<unsigned char>((value >> 8U) & 255U);
}

/// Fills 16-bit pixels with what `value(u, v)` gives inside the image.
template <typename Value>
void resampleGrey(const double m[6], const Pixels& src, const Pixels& dst, unsigned background, const Value& value) {
    const Stepping s = steppingOf(m, src, dst);
    for (int y = 0; y < dst.height; ++y) {
        for (int x = 0; x < dst.width; ++x) {
            std::int64_t u = 0, v = 0;
            store16(pixelAt(dst, x, y), sourcePosition(s, x, y, u, v) ? value(u, v) : background);
        }
    }
}

/// Fills 32-bit pixels with what `value(u, v)` gives inside the image.
template <typename Value>
void resampleDisplay(const double m[6], const Pixels& src, const Pixels& dst, std::uint32_t background,
                     const Value& value) {
    const Stepping s = steppingOf(m, src, dst);
    for (int y = 0; y < dst.height; ++y) {
        for (int x = 0; x < dst.width; ++x) {
            std::int64_t u = 0, v = 0;
            store32(pixelAt(dst, x, y), sourcePosition(s, x, y, u, v) ? value(u, v) : background);
        }
    }
}

inline void bilinearGrey(const double m[6], const Pixels& src, const Pixels& dst, unsigned background, bool twelveBit,
                         bool keepBits) {
    resampleGrey(m, src, dst, background,
                 [&](std::int64_t u, std::int64_t v) { return bilinearGreyValue(src, u, v, twelveBit, keepBits); });
}

/// The position to write at moves with background pixels, and once after a row's image.
inline void bilinearPacked(const double m[6], const Pixels& src, const Pixels& dst, unsigned background) {
    const Stepping s = steppingOf(m, src, dst);
    for (int y = 0; y < dst.height; ++y) {
        int position = 0;
        bool imageCame = false;
        for (int x = 0; x < dst.width; ++x) {
            std::int64_t u = 0, v = 0;
            if (sourcePosition(s, x, y, u, v)) {
                store16(pixelAt(dst, position, y), bilinearPackedValue(src, u, v));
                imageCame = true;
            } else {
                if (imageCame) ++position;
                imageCame = false;
                store16(pixelAt(dst, position, y), background);
                ++position;
            }
        }
    }
}

/// Values through the view's table below whatever goes before it.
inline void bilinearMapped(const double m[6], const Pixels& src, const Pixels& dst, const GreyView& view) {
    resampleDisplay(m, src, dst, view.background, [&](std::int64_t u, std::int64_t v) {
        std::uint32_t out = 0;
        if (shownAbove(view, src, dst.width, u, v, out)) return out;
        return view.table[bilinearGreyValue(src, u, v, view.twelveBit, false)];
    });
}

/// The three bytes of a colour, each through a table where there is one.
inline std::uint32_t throughTable(std::uint32_t pixel, const unsigned char* table) {
    if (table == nullptr) return pixel;
    return table[pixel % 256] + 256U * table[pixel / 256 % 256] + 65536U * table[pixel / 65536 % 256];
}

inline void bilinearRgb(const double m[6], const Pixels& src, const Pixels& dst, std::uint32_t background,
                        const unsigned char* table) {
    resampleDisplay(m, src, dst, background,
                    [&](std::int64_t u, std::int64_t v) { return throughTable(bilinearRgbValue(src, u, v), table); });
}

}  // namespace zolref
