// How a display pixel finds its source position: the 16.16 arithmetic of all resamplers, in one place.
//
// Spaces: a *column* x and a *row* y count display pixels. u (along source columns) and v (along source rows) are
// source coordinates in 16.16 fixed point, held in 64 bits, so that neither a far zoom-out nor a far pan wraps.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

namespace zolcs {

/// 16.16 fixed point with room above: sums along a display line stay exact.
using Fixed16 = std::int64_t;

inline constexpr int fixed16Bits = 16;
inline constexpr Fixed16 fixed16One = Fixed16{1} << fixed16Bits;

/// Coordinates stay below this everywhere on the display; leaves room for every sum and difference below.
inline constexpr double fixed16Range = 0x1.0p62;

/// The whole pixel that a coordinate lies on.
constexpr std::int64_t pixelOf(Fixed16 coordinate) { return coordinate >> fixed16Bits; }

/// A coordinate in pixels, in single precision: overlay planes, padding and the shutters' curves are decided at this
/// position. From 2^24 on it is coarser than 16.16 and may round up to the next pixel; pictures depend on it.
constexpr float singlePosition(Fixed16 coordinate) { return static_cast<float>(coordinate) * 1.5258789e-5F; }

/// The whole pixel of a coordinate's single-precision position.
constexpr std::int64_t roundedPixel(Fixed16 coordinate) {
    return static_cast<std::int64_t>(singlePosition(coordinate));
}

/// `value` truncated toward zero and saturated; 0 for a NaN.
inline std::int32_t saturated32(double value) {
    if (std::isnan(value)) return 0;
    return static_cast<std::int32_t>(std::clamp(value, -0x1.0p31, 0x1.0p31 - 1.0));
}

constexpr std::int32_t saturated32(std::int64_t value) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, std::numeric_limits<std::int32_t>::min(),
                                                              std::numeric_limits<std::int32_t>::max()));
}

/// The source positions of one display line: column x lies at (u + x du, v + x dv).
struct SourceLine {
    Fixed16 u = 0;
    Fixed16 v = 0;
    Fixed16 du = 0;
    Fixed16 dv = 0;
    int row = -1;  ///< of the display; what is known about that row may be used. Negative: unknown

    [[nodiscard]] constexpr Fixed16 uAt(int x) const { return u + x * du; }
    [[nodiscard]] constexpr Fixed16 vAt(int x) const { return v + x * dv; }
    bool operator==(const SourceLine&) const = default;
};

/// The display columns of a line that lie on the source: column x does when first < x <= last.
struct Span {
    int first = -1;
    int last = -1;

    [[nodiscard]] constexpr int begin() const { return first + 1; }
    [[nodiscard]] constexpr int end() const { return std::max(last, first) + 1; }
    [[nodiscard]] constexpr bool empty() const { return last <= first; }
    bool operator==(const Span&) const = default;
};

namespace stepping {

/// A bound that lies beyond every display, for a coordinate that does not change along the line.
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

}  // namespace stepping

/// The columns of [0, width) whose position lies on a source of limitU by limitV (16.16).
///
/// For rising steps that is 0 < u <= limit - 1: a coordinate of exactly 0 is deliberately outside. For falling steps it
/// is the mirror image, 0 <= u <= limit - 2. Both bounds are clamped to [-1, width - 1], so that nothing beside the
/// line can be written however far away the source is.
constexpr Span spanOf(const SourceLine& line, Fixed16 limitU, Fixed16 limitV, int width) {
    const auto boundsOf = [](Fixed16 start, Fixed16 step, Fixed16 limit) {
        const Fixed16 low = stepping::lowBound(start, step);
        const Fixed16 high = stepping::highBound(start, step, limit);
        return std::array<Fixed16, 2>{std::min(low, high), std::max(low, high)};
    };
    const auto [lowU, highU] = boundsOf(line.u, line.du, limitU);
    const auto [lowV, highV] = boundsOf(line.v, line.dv, limitV);
    const auto clamped = [width](Fixed16 bound) {
        return static_cast<int>(std::clamp<Fixed16>(bound, -1, std::max(width, 0) - 1));
    };
    return {clamped(std::max(lowU, lowV)), clamped(std::min(highU, highV))};
}

/// Columns [begin, end) of a line.
struct ColumnRange {
    int begin = 0;
    int end = 0;

    [[nodiscard]] constexpr bool empty() const { return end <= begin; }
    bool operator==(const ColumnRange&) const = default;
};

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

/// One call's stepping: where display pixel (x, y) lies on the source.
struct Stepping {
    Fixed16 stepXu = 0;  ///< change of u and v per display column
    Fixed16 stepXv = 0;
    Fixed16 stepYu = 0;  ///< change of u and v per display row
    Fixed16 stepYv = 0;
    Fixed16 startU = 0;  ///< centre of display pixel (0, 0)
    Fixed16 startV = 0;
    Fixed16 limitU = 0;  ///< source width and height, 0 when no position counts as on the source
    Fixed16 limitV = 0;
    int width = 0;  ///< display size
    int height = 0;

    /// False when every display pixel is background.
    [[nodiscard]] constexpr bool hasSource() const { return limitU > 0 && limitV > 0; }

    [[nodiscard]] constexpr SourceLine line(int y) const {
        return {startU + y * stepYu, startV + y * stepYv, stepXu, stepXv, y};
    }

    [[nodiscard]] constexpr Span span(int y) const {
        return hasSource() ? spanOf(line(y), limitU, limitV, width) : Span{};
    }

    /// Source columns along display columns, source rows along display rows (0 and 180 degrees, mirrored or not).
    [[nodiscard]] constexpr bool isUpright() const { return stepXv == 0 && stepYu == 0; }

    /// Source rows along display columns, source columns along display rows (90 and 270 degrees, mirrored or not).
    [[nodiscard]] constexpr bool isQuarterTurn() const { return stepXu == 0 && stepYv == 0; }

    /// The same picture with display rows and columns exchanged.
    [[nodiscard]] constexpr Stepping transposed() const {
        return {stepYu, stepYv, stepXu, stepXv, startU, startV, limitU, limitV, height, width};
    }
};

/// A display-to-image matrix (a, b, c, d, e, f): u = a x + c y + e, v = b x + d y + f.
using DisplayToImage = std::array<double, 6>;

/// Prepares the stepping of one call. The six numbers become 16.16 by truncation toward zero. A matrix that is not
/// finite, one that leaves the range of the arithmetic somewhere on the display (2^46 source pixels away), and a source
/// without pixels all give a stepping for which everything is background.
inline Stepping makeStepping(const DisplayToImage& matrix, int sourceWidth, int sourceHeight, int width, int height) {
    Stepping result;
    result.width = std::max(width, 0);
    result.height = std::max(height, 0);
    if (sourceWidth < 1 || sourceHeight < 1) return result;
    const auto reach = [&](int alongX, int alongY, int origin) {
        const auto magnitude = [&](int i) { return std::fabs(matrix[static_cast<std::size_t>(i)]) * 65536.0; };
        return magnitude(origin) + magnitude(alongX) * (result.width + 1.0) + magnitude(alongY) * (result.height + 1.0);
    };
    // Written so that a NaN fails, too.
    const bool inRange = reach(0, 2, 4) < fixed16Range && reach(1, 3, 5) < fixed16Range;
    if (!inRange) return result;
    const auto fixed = [&](std::size_t i) { return static_cast<Fixed16>(matrix[i] * 65536.0); };
    result.stepXu = fixed(0);
    result.stepXv = fixed(1);
    result.stepYu = fixed(2);
    result.stepYv = fixed(3);
    result.startU = (result.stepXu + result.stepYu) / 2 + fixed(4);
    result.startV = (result.stepXv + result.stepYv) / 2 + fixed(5);
    result.limitU = static_cast<Fixed16>(sourceWidth) << fixed16Bits;
    result.limitV = static_cast<Fixed16>(sourceHeight) << fixed16Bits;
    return result;
}

}  // namespace zolcs
