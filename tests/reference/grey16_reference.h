// The 16-bit grey map restated, where it differs from the 12-bit one: how its table comes about and what a pixel shows.
#pragma once

#include "reference/grey12_reference.h"

namespace zolref {

/// Settings and state as those of the 12-bit map, with a longer table.
struct Grey16 : Grey12 {
    Grey16() { lut.assign(65536, 0); }
};

/// One entry without a non-linear table; `before` is what it was.
inline std::uint32_t windowEntry16(const Grey16& map, std::int64_t v, std::uint32_t before) {
    const std::int64_t lo = map.centre - map.width / 2;
    const std::int64_t hi = lo + map.width;
    const std::uint32_t* pal = map.palette;
    if (map.remapSet && map.sigmoid) {
        if (v == 65535) return before;
        const double ymax = std::pow(2.0, map.sigmoidBits);
        const int shift = bitShiftForGrey(static_cast<int>(sigmoidAt(map, ymax, ymax - 1) & 0xFFFF));
        const std::int64_t level = (sigmoidAt(map, ymax, static_cast<double>(v)) & 0xFFFF) >> shift;
        return pal[map.remap[limited(level, 255)]];
    }
    if (map.presentationSet && !map.remapSet) {
        std::int64_t at = v;
        if (v < lo) at = 0;
        if (v >= hi) at = map.presentationCount - 1;
        // A table that is too short ends in its last value.
        const std::int64_t entry = limited(at, map.presentationCount > 0 ? map.presentationCount - 1 : 0);
        return pal[limited(map.presentation[static_cast<std::size_t>(entry)] >> map.presentationShift, 255)];
    }
    if (map.sigmoid && !map.remapSet) {
        if (v == 65535) return before;
        const double ymax = std::pow(2.0, map.sigmoidBits) - 1;
        const int shift = bitShiftForGrey(static_cast<int>(sigmoidAt(map, ymax, ymax) & 0xFFFF));
        return pal[limited(sigmoidAt(map, ymax, static_cast<double>(v)) >> shift, 255)];
    }
    std::int64_t level = 0;
    if (v >= hi) level = 255;
    if (v >= lo && v < hi) level = ((v - lo) * 256 / map.width) & 255;
    return pal[map.remapSet ? map.remap[level] : level];
}

/// One entry with a non-linear table that has been cut to the window.
inline std::uint32_t nonLinearEntry16(const Grey16& map, std::int64_t v) {
    const std::int64_t s = map.windowedStart;
    const auto n = static_cast<std::int64_t>(map.windowed.size());
    std::int64_t level = 0;
    if (map.exact) {
        if (v >= s) level = 255;
        if (v >= s && v < s + n) level = ((v - s) * 256 / n) & 255;
    } else {
        level = map.windowed[static_cast<std::size_t>(limited(v - s, n - 1))] >> map.nonLinearShift;
    }
    if (map.remapSet) level = map.remap[level];
    return map.palette[level];
}

/// Brings what entries are made of up to date; false when there can be none.
inline bool prepareEntries(Grey16& map) {
    if (map.nonLinearSet) {
        if (!buildWindowed(map, 65536)) return false;
        if (map.palette == nullptr) return false;
        map.nonLinearShift = bitShiftForGrey(static_cast<int>(largest(map.windowed)));
        return true;
    }
    return map.width >= 1 && map.palette != nullptr;
}

/// One entry; some sigmoids leave the last as it was.
inline std::uint32_t entryOf(const Grey16& map, std::int64_t v) {
    return map.nonLinearSet ? nonLinearEntry16(map, v) : windowEntry16(map, v, map.lut[static_cast<std::size_t>(v)]);
}

/// Brings the table up to date when it is stale; false when it cannot be built.
inline bool buildLut(Grey16& map) {
    if (map.lutValid) return true;
    if (!prepareEntries(map)) return false;
    for (std::int64_t v = 0; v < 65536; ++v) map.lut[static_cast<std::size_t>(v)] = entryOf(map, v);
    map.lutValid = true;
    return true;
}

/// One pixel: plane, padding, shutter, table.
inline std::uint32_t mappedPixel(const Grey16& map, const MappedView& view, unsigned value, int x, int y, int width,
                                 int height) {
    if (view.enabled && view.groupColours != nullptr) {
        const int plane = firstPlaneAt(view.shutters.planes, x, y);
        if (plane >= 0) return view.groupColours[plane > 15 ? 15 : plane];
    }
    if (view.padding != nullptr) {
        const std::int64_t index = static_cast<std::int64_t>(y) * width + x;
        if (index >= 1 && index < static_cast<std::int64_t>(width) * height && bitOf(view.padding, index)) return 0;
    }
    if (hiddenInMapping(view.shutters, width, x, y)) return (presentationValueOf(view.shutters) / 256U) * 0x010101U;
    return map.lut[value];
}

}  // namespace zolref
