// The 12-bit grey map restated: how its table comes about, what it does to a raster, how graphics are merged.
#pragma once

#include "reference/shutter_reference.h"
#include "zolcs/support/portablemath.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zolref {

/// Settings and state of a map. `lut` and `windowed` keep what they held until something makes them stale.
struct Grey12 {
    const std::uint32_t* palette = nullptr;  // 256 display pixels
    std::int64_t centre = 1;
    std::int64_t width = 2;
    bool enabled = true;
    bool sigmoid = false;
    int sigmoidBits = 12;
    bool remapSet = false;
    unsigned char remap[256] = {};

    bool nonLinearSet = false;
    std::vector<unsigned> nonLinear;  // count + 1 entries, the last one twice
    std::int64_t nonLinearCount = 0;
    unsigned nonLinearFirst = 0;
    unsigned nonLinearMaximum = 0;
    int nonLinearShift = 0;
    bool exact = false;

    bool windowedValid = false;
    std::vector<unsigned> windowed;
    std::int64_t windowedStart = 0;

    bool presentationSet = false;
    std::vector<unsigned> presentation;  // count + 1 entries, the last one twice
    std::int64_t presentationCount = 0;
    std::int64_t presentationFirst = 0;
    int presentationShift = 0;

    bool lutValid = false;
    std::vector<std::uint32_t> lut = std::vector<std::uint32_t>(4096);
};

inline std::int64_t limited(std::int64_t value, std::int64_t highest) {
    if (value < 0) return 0;
    return value > highest ? highest : value;
}

inline void setWindow(Grey12& map, unsigned centre, int width) {
    map.centre = static_cast<int>(centre);  // a negative centre arrives as its 32-bit pattern
    map.width = width;
    map.lutValid = false;
    map.windowedValid = false;
}

/// A count below 1 leaves a single entry 0.
inline std::vector<unsigned> copyTwiceLast(const unsigned short* values, int count) {
    if (count < 1) return {0};
    std::vector<unsigned> out;
    for (int i = 0; i < count; ++i) out.push_back(values[i]);
    out.push_back(values[count - 1]);
    return out;
}

inline unsigned largest(const std::vector<unsigned>& values) {
    unsigned most = 0;
    for (const unsigned value : values) {
        if (value > most) most = value;
    }
    return most;
}

inline void setNonLinear(Grey12& map, const unsigned short* values, unsigned first, int count, bool exact) {
    map.nonLinear = copyTwiceLast(values, count);
    map.nonLinearCount = count < 1 ? 0 : count;
    map.nonLinearFirst = first;
    map.nonLinearMaximum = largest(map.nonLinear);
    map.exact = exact;
    map.nonLinearSet = true;
    map.lutValid = false;
    map.windowedValid = false;
}

/// Leaves the table as it is until something else makes it stale.
inline void setPresentation(Grey12& map, const unsigned short* values, unsigned first, int count) {
    map.presentation = copyTwiceLast(values, count);
    map.presentationCount = count < 1 ? 0 : count;
    map.presentationFirst = first;
    map.presentationShift = bitShiftForGrey(static_cast<int>(largest(map.presentation)));
    map.presentationSet = true;
}

inline void setRemap(Grey12& map, const unsigned char* table) {
    for (int i = 0; i < 256; ++i) map.remap[i] = table[i];
    map.remapSet = true;
    map.lutValid = false;
}

/// The 8-bit level of a value.
inline unsigned presentationLevel(const Grey12& map, unsigned value, int shift) {
    if (!map.presentationSet) return (value >> shift) & 255;
    const double perStep = static_cast<double>(map.presentationCount) / std::pow(2.0, shift + 8);
    const std::int64_t i = static_cast<std::int64_t>(perStep * value) & 0xFFFF;
    std::int64_t at = limited(map.presentationCount - 1, map.presentationCount);
    if (i < map.presentationFirst) {
        at = 0;
    } else if (i <= map.presentationCount - 1 + map.presentationFirst) {
        at = i - map.presentationFirst;
    }
    return (map.presentation[static_cast<std::size_t>(at)] >> map.presentationShift) & 255;
}

/// ymax / (exp(-4 (v - centre) / width) + 1), cut to an integer.
inline std::int64_t sigmoidAt(const Grey12& map, double ymax, double v) {
    const double exponent = -4.0 * (v - static_cast<double>(map.centre)) / static_cast<double>(map.width);
    return static_cast<std::int64_t>(ymax / (zolcs::portable::exp(exponent) + 1));
}

/// One entry without a non-linear table.
inline std::uint32_t windowEntry(const Grey12& map, std::int64_t v) {
    const std::int64_t lo = map.centre - map.width / 2;
    const std::int64_t hi = lo + map.width;
    const std::uint32_t* pal = map.palette;
    if (map.remapSet && map.sigmoid) {
        const double ymax = std::pow(2.0, map.sigmoidBits);
        const int shift = bitShiftForGrey(static_cast<int>(sigmoidAt(map, ymax, ymax - 1) & 0xFFFF));
        const std::int64_t level = (sigmoidAt(map, ymax, static_cast<double>(v)) & 0xFFFF) >> shift;
        return pal[map.remap[limited(level, 255)]];
    }
    if (map.remapSet) {
        if (v < lo) return pal[map.remap[0]];
        if (v >= hi) return pal[map.remap[255]];
        return pal[map.remap[((v - lo) * 256 / map.width) & 255]];
    }
    if (map.presentationSet) {
        const auto last = static_cast<std::size_t>(limited(map.presentationCount - 1, map.presentationCount));
        if (v < lo) return pal[limited(map.presentation[0] >> map.presentationShift, 255)];
        if (v >= hi) return pal[limited(map.presentation[last] >> map.presentationShift, 255)];
        const std::int64_t q = ((v - lo) * 4096) / map.width;
        return pal[presentationLevel(map, static_cast<unsigned>(q & 0xFFFF), 4)];
    }
    if (map.sigmoid) {
        const double ymax = std::pow(2.0, map.sigmoidBits) - 1;
        const int shift = bitShiftForGrey(static_cast<int>(sigmoidAt(map, ymax, ymax) & 0xFFFF));
        return pal[limited(sigmoidAt(map, ymax, static_cast<double>(v)) >> shift, 255)];
    }
    if (v < lo) return pal[0];
    if (v >= hi) return pal[255];
    return pal[((v - lo) * 256 / map.width) & 255];
}

/// The non-linear table cut to the window and to the stored values that there are. False where the width is refused or
/// there is no table.
inline bool buildWindowed(Grey12& map, std::int64_t depth = 4096) {
    if (map.windowedValid) return true;
    if (map.width < 1) return false;
    if (map.nonLinear.empty()) return false;
    const std::int64_t count = map.nonLinearCount;
    const double ratio = static_cast<double>(count) / static_cast<double>(map.width);
    const std::int64_t lo = map.centre - map.width / 2;
    double position = 0;
    map.windowedStart = lo;
    if (lo < 0) {
        map.windowedStart = 0;
        position = static_cast<double>(map.width / 2 - map.centre) * ratio;
    }
    const std::int64_t end = lo + map.width < depth ? lo + map.width : depth;
    std::int64_t n = end - map.windowedStart;
    if (n < 1) {
        n = 1;
        position = 0;
    }
    map.windowed.clear();
    for (std::int64_t i = 0; i < n; ++i) {
        const auto k = static_cast<std::int64_t>(position);
        const double f = position - static_cast<double>(k);
        const double here = map.nonLinear[static_cast<std::size_t>(limited(k, count))];
        const double next = map.nonLinear[static_cast<std::size_t>(limited(k + 1, count))];
        map.windowed.push_back(static_cast<unsigned>((1 - f) * here + f * next + 0.5));
        position = position + ratio;
    }
    map.windowedValid = true;
    return true;
}

/// Centre and width of the part of the windowed table that rises from 5 to 95 % of its last entry, or falls from
/// 95 % of its first entry to 1.
inline void autoWindow(const std::vector<unsigned>& windowed, std::int64_t& centre, std::int64_t& width) {
    const auto n = static_cast<std::int64_t>(windowed.size());
    std::int64_t lower = 0;
    std::int64_t upper = n - 1;
    const unsigned first = windowed.front();
    const unsigned last = windowed.back();
    if (first > last) {
        const auto t = static_cast<unsigned>(first * 0.95);
        for (std::int64_t i = 0; i < n; ++i) {
            if (windowed[static_cast<std::size_t>(i)] >= 1) upper = i;
        }
        for (std::int64_t i = n - 1; i >= 0; --i) {
            if (windowed[static_cast<std::size_t>(i)] <= t) lower = i;
        }
    } else {
        const auto high = static_cast<unsigned>(last * 0.95);
        const auto low = static_cast<unsigned>(last * 0.05);
        for (std::int64_t i = n - 1; i >= 0; --i) {
            if (windowed[static_cast<std::size_t>(i)] >= low) lower = i;
        }
        for (std::int64_t i = 0; i < n; ++i) {
            if (windowed[static_cast<std::size_t>(i)] <= high) upper = i;
        }
    }
    width = upper - lower;
    centre = width / 2 + lower;
}

/// One entry with a non-linear table that has been cut to the window.
inline std::uint32_t nonLinearEntry(const Grey12& map, std::int64_t v) {
    const std::int64_t s = map.windowedStart;
    const auto n = static_cast<std::int64_t>(map.windowed.size());
    std::int64_t level = 0;
    if (map.exact) {
        if (v >= s) level = 255;
        if (v >= s && v < s + n) level = ((v - s) * 256 / n) & 255;
    } else {
        std::int64_t at = v - s;
        if (at < 0) at = 0;
        if (at > n - 1) at = n - 1;
        level = presentationLevel(map, map.windowed[static_cast<std::size_t>(at)], map.nonLinearShift);
    }
    if (map.remapSet) level = map.remap[level];
    return map.palette[level];
}

/// Brings what entries are made of up to date; false when there can be none.
inline bool prepareEntries(Grey12& map) {
    if (map.nonLinearSet) {
        if (!buildWindowed(map)) return false;
        if (map.palette == nullptr) return false;
        map.nonLinearShift = bitShiftForGrey(static_cast<int>(map.nonLinearMaximum));
        return true;
    }
    return map.width >= 1 && map.palette != nullptr;
}

inline std::uint32_t entryOf(const Grey12& map, std::int64_t v) {
    return map.nonLinearSet ? nonLinearEntry(map, v) : windowEntry(map, v);
}

/// Brings the table up to date when it is stale; false when it cannot be built.
inline bool buildLut(Grey12& map) {
    if (map.lutValid) return true;
    if (!prepareEntries(map)) return false;
    for (std::int64_t v = 0; v < 4096; ++v) map.lut[static_cast<std::size_t>(v)] = entryOf(map, v);
    map.lutValid = true;
    return true;
}

// ---------------------------------------------------------------------------------------------------------------

/// What whole-raster mapping needs to know besides the pixels.
struct MappedView {
    bool enabled = true;
    const std::uint32_t* planeColours = nullptr;
    const std::uint32_t* groupColours = nullptr;
    RasterShutters shutters;
    const unsigned char* padding = nullptr;
};

/// One pixel: plane, embedded bits, padding, shutter, table. `x`, `y` in a raster of width x height.
inline std::uint32_t mappedPixel(const Grey12& map, const MappedView& view, unsigned value, int x, int y, int width,
                                 int height) {
    if (view.enabled && view.groupColours != nullptr) {
        const int plane = firstPlaneAt(view.shutters.planes, x, y);
        if (plane >= 0) return view.groupColours[plane > 15 ? 15 : plane];
    }
    if (view.enabled && view.shutters.embedded && view.planeColours != nullptr && (value >> 12) != 0) {
        return view.planeColours[value >> 12];
    }
    if (view.padding != nullptr) {
        const std::int64_t index = static_cast<std::int64_t>(y) * width + x;
        if (index >= 1 && index < static_cast<std::int64_t>(width) * height && bitOf(view.padding, index)) return 0;
    }
    if (hiddenInMapping(view.shutters, width, x, y)) return (presentationValueOf(view.shutters) / 256U) * 0x010101U;
    return map.lut[value > 4095 ? 4095 : value];
}

/// The merge of a rendered bitmap into 16-bit values; rows of the bitmap are `bitmapWidth` words.
inline void mergeBitmap(unsigned char* pixels, int width, int height, int pitch, const std::uint32_t* bitmap,
                        int bitmapWidth, int bitmapHeight, unsigned depth, int bits, bool blankToMax) {
    const auto mask = static_cast<unsigned>((std::uint64_t{2} << bits) - 1) & 0xFFFFU;
    unsigned most = 0;
    if (depth == 8) {
        most = 255;
    } else if (bits != 0) {
        most = mask;
    }
    const unsigned blank = blankToMax ? most : 0;
    const unsigned ink = blankToMax ? 0 : most;
    for (int y = 0; y < height && y < bitmapHeight; ++y) {
        for (int x = 0; x < width && x < bitmapWidth; ++x) {
            unsigned char* at = pixels + (static_cast<std::ptrdiff_t>(y) * pitch + x) * 2;
            const unsigned s = at[0] + 256U * at[1];
            const std::uint32_t p = bitmap[static_cast<std::ptrdiff_t>(y) * bitmapWidth + x];
            unsigned result = s;
            if (p == 0x00010101U) {
                result = blank;
            } else if (bits != 0 && (s & ~mask) != 0) {
                result = ink;
            } else if (p == 0x00FFFF00U) {
                result = ink;
            } else if (p != 0) {
                result = ink / 2;
            }
            at[0] = static_cast<unsigned char>(result & 255);
            at[1] = static_cast<unsigned char>(result >> 8);
        }
    }
}

/// The same for 32-bit colour pixels: one word clears, every other is ORed in.
inline void mergeColourBitmap(unsigned char* pixels, int width, int height, int pitch, const std::uint32_t* bitmap,
                              int bitmapWidth, int bitmapHeight) {
    for (int y = 0; y < height && y < bitmapHeight; ++y) {
        for (int x = 0; x < width && x < bitmapWidth; ++x) {
            unsigned char* at = pixels + (static_cast<std::ptrdiff_t>(y) * pitch + x) * 4;
            const std::uint32_t p = bitmap[static_cast<std::ptrdiff_t>(y) * bitmapWidth + x];
            for (int i = 0; i < 4; ++i) {
                at[i] = static_cast<unsigned char>(p == 0x00010101U ? 0U : at[i] | ((p >> (8 * i)) & 255U));
            }
        }
    }
}

}  // namespace zolref
