// The rows of a display as they cross a source, and which of their columns lie on it.
#pragma once

#include "zolcs/view/fixed16.h"

#include <algorithm>
#include <array>

namespace zolcs {

/// Columns [begin, end) of a row.
struct ColumnRange {
    int begin = 0;
    int end = 0;

    [[nodiscard]] constexpr bool empty() const { return end <= begin; }
    [[nodiscard]] constexpr int size() const { return end - begin; }
    bool operator==(const ColumnRange&) const = default;
};

/// Columns that belong to both; where there are none, an empty range.
constexpr ColumnRange common(ColumnRange a, ColumnRange b) {
    return {std::max(a.begin, b.begin), std::min(a.end, b.end)};
}

/// The source positions of one display row: column x lies at (u + x du, v + x dv).
struct DisplayRow {
    Fixed16 u = 0;
    Fixed16 v = 0;
    Fixed16 du = 0;
    Fixed16 dv = 0;
    int y = -1;  ///< number of the row, by which what is known about it is found; negative: unknown

    [[nodiscard]] constexpr Fixed16 uAt(int x) const { return u + x * du; }
    [[nodiscard]] constexpr Fixed16 vAt(int x) const { return v + x * dv; }
    bool operator==(const DisplayRow&) const = default;
};

namespace spans {

/// A bound that lies beyond every display, for a coordinate that does not change along the row.
inline constexpr Fixed16 farBound = 1000000;

/// The last column before the coordinate start + x * step leaves the low side (for falling steps: before it would).
constexpr Fixed16 lowBound(Fixed16 start, Fixed16 step) {
    if (start > 0) {
        if (step == 0) return -farBound;
        return step > 0 ? -((start - 1 + step) / step) : -(start / step);
    }
    if (step == 0) return farBound;
    return step > 0 ? -(start / step) : ((-1 - step) - start) / step;
}

/// The last column at which the coordinate is still below `limit`.
constexpr Fixed16 highBound(Fixed16 start, Fixed16 step, Fixed16 limit) {
    const Fixed16 room = limit - start - 1;
    if (room < 0) {
        if (step == 0) return -farBound;
        return step < 0 ? -((start - limit + 1) / step) : -((step - limit + start) / step);
    }
    if (step == 0) return farBound;
    return step < 0 ? ((limit - step - start) - 2) / step : room / step;
}

}  // namespace spans

/// The columns of [0, width) whose position lies on a source of limitU by limitV (16.16).
///
/// For rising steps that is 0 < u <= limit - 1: a coordinate of exactly 0 is deliberately outside. For falling steps it
/// is the mirror image, 0 <= u <= limit - 2. Both ends lie within [0, width] even where the range is empty, so that
/// nothing beside the row can be written however far away the source is.
constexpr ColumnRange spanOf(const DisplayRow& row, Fixed16 limitU, Fixed16 limitV, int width) {
    const auto boundsOf = [](Fixed16 start, Fixed16 step, Fixed16 limit) {
        const Fixed16 low = spans::lowBound(start, step);
        const Fixed16 high = spans::highBound(start, step, limit);
        return std::array<Fixed16, 2>{std::min(low, high), std::max(low, high)};
    };
    const auto [lowU, highU] = boundsOf(row.u, row.du, limitU);
    const auto [lowV, highV] = boundsOf(row.v, row.dv, limitV);
    const auto clamped = [width](Fixed16 bound) {
        return static_cast<int>(std::clamp<Fixed16>(bound, -1, std::max(width, 0) - 1));
    };
    // The columns x with first < x <= last.
    const int first = clamped(std::max(lowU, lowV));
    const int last = clamped(std::min(highU, highV));
    return {first + 1, std::max(last, first) + 1};
}

/// The columns of `within` at which low <= start + x * step <= high.
constexpr ColumnRange columnsBetween(Fixed16 start, Fixed16 step, Fixed16 low, Fixed16 high, ColumnRange within) {
    const ColumnRange none{within.begin, within.begin};
    if (within.empty() || low > high) return none;
    const auto isBetween = [&](int x) { return low <= start + x * step && start + x * step <= high; };
    if (isBetween(within.begin) && isBetween(within.end - 1)) return within;  // mostly, and without divisions
    if (step == 0) return none;
    const auto floorDivided = [](Fixed16 a, Fixed16 b) { return a / b - (a % b != 0 && (a < 0) != (b < 0) ? 1 : 0); };
    const Fixed16 entered = step > 0 ? low - start : high - start;
    const Fixed16 left = step > 0 ? high - start : low - start;
    const Fixed16 firstColumn = -floorDivided(-entered, step);
    const Fixed16 lastColumn = floorDivided(left, step);
    const Fixed16 begin = std::max<Fixed16>(firstColumn, within.begin);
    const Fixed16 end = std::min<Fixed16>(lastColumn + 1, within.end);
    return begin < end ? ColumnRange{static_cast<int>(begin), static_cast<int>(end)} : none;
}

}  // namespace zolcs
