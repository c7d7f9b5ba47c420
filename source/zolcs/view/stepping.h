// How a display pixel finds its source position: the 16.16 arithmetic of all resamplers.
//
// Spaces: a *column* x and a *row* y count display pixels. u (along source columns) and v (along source rows) are
// source coordinates in 16.16 fixed point.
#pragma once

#include "zolcs/view/fixed16.h"
#include "zolcs/view/spans.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace zolcs {

/// Coordinates stay below this everywhere on the display; leaves room for every sum and difference of them.
inline constexpr double fixed16Range = 0x1.0p62;

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

    /// Row y of the display.
    [[nodiscard]] constexpr DisplayRow row(int y) const {
        return {startU + y * stepYu, startV + y * stepYv, stepXu, stepXv, y};
    }

    /// The columns of row y whose position lies on the source.
    [[nodiscard]] constexpr ColumnRange span(int y) const {
        return hasSource() ? spanOf(row(y), limitU, limitV, width) : ColumnRange{};
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
        const auto magnitude = [&](int i) { return std::fabs(matrix[static_cast<std::size_t>(i)]) / fixed16Unit; };
        return magnitude(origin) + magnitude(alongX) * (result.width + 1.0) + magnitude(alongY) * (result.height + 1.0);
    };
    // Written so that a NaN fails, too.
    const bool inRange = reach(0, 2, 4) < fixed16Range && reach(1, 3, 5) < fixed16Range;
    if (!inRange) return result;
    const auto fixed = [&](std::size_t i) { return static_cast<Fixed16>(matrix[i] / fixed16Unit); };
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
