// The colour maps restated: the table of a window, which pixels are mapped, and the mapping by separate channels.
#pragma once

#include "reference/shutter_reference.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zolref {

/// Settings and state of a colour map; `lut` keeps what it held until something makes it stale.
struct ColourMap {
    int bits = 8;
    std::int64_t centre = 2048;
    std::int64_t width = 2048;
    bool lutValid = false;
    std::vector<unsigned> lut;

    explicit ColourMap(int bitsPerChannel) : bits(bitsPerChannel), lut(std::size_t{1} << bitsPerChannel) {}
};

inline unsigned windowedLevel(std::int64_t v, std::int64_t centre, std::int64_t width) {
    const std::int64_t lo = centre - width / 2;
    const std::int64_t hi = lo + width;
    if (v < lo) return 0;
    if (v >= hi) return 255;
    return static_cast<unsigned>((v - lo) * 256 / width) & 255;
}

/// Only the 8-bit map sees a new window at once.
inline void setWindow(ColourMap& map, unsigned centre, int width) {
    map.centre = static_cast<int>(centre);  // a negative centre arrives as its 32-bit pattern
    map.width = width;
    if (map.bits == 8) map.lutValid = false;
}

/// What a clone is: everything the same, but the 12-bit map's table stale.
inline ColourMap cloned(const ColourMap& map) {
    ColourMap copy = map;
    if (map.bits == 12) copy.lutValid = false;
    return copy;
}

/// False where the width is refused.
inline bool buildLut(ColourMap& map) {
    if (map.lutValid) return true;
    if (map.width < 1) return false;
    for (std::size_t v = 0; v < map.lut.size(); ++v) {
        map.lut[v] = windowedLevel(static_cast<std::int64_t>(v), map.centre, map.width);
    }
    map.lutValid = true;
    return true;
}

/// Whether a circular shutter lets a pixel be mapped: between the truncated intersections of circle and row.
inline bool mappedInCircle(const RasterShutters& shutters, int rasterWidth, int x, int y) {
    if (!shutters.circOn) return true;
    const Circle circle = circleOfBox(boxOf(shutters.circle), rasterWidth);
    const float cx = static_cast<float>(circle.centreX);
    const float cy = static_cast<float>(circle.centreY);
    const float row = static_cast<float>(y);
    if (row < cy - circle.radius || row > cy + circle.radius) return false;
    const float half = std::sqrt(circle.radius * circle.radius - (cy - row) * (cy - row));
    return x >= static_cast<int>(cx - half) && x <= static_cast<int>(cx + half);
}

/// One pixel's four bytes from its channels, each through a table of its own.
inline void mapChannels(const std::vector<unsigned>& first, const std::vector<unsigned>& second,
                        const std::vector<unsigned>& third, const unsigned* channels, unsigned char* out) {
    const std::vector<unsigned>* tables[] = {&first, &second, &third};
    for (int i = 0; i < 3; ++i) {
        const std::vector<unsigned>& table = *tables[i];
        const std::size_t at = channels[i] < table.size() ? channels[i] : table.size() - 1;
        out[i] = static_cast<unsigned char>(table[at]);
    }
    out[3] = 0;
}

}  // namespace zolref
