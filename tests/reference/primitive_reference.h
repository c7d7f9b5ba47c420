// What the interpolating primitives show, in double straight from the definition: slow and obvious.
#pragma once

#include <algorithm>
#include <cmath>

#include "zolipp/zolipp.h"

namespace zolref {

/// Keys' cubic convolution kernel with the parameter -1/2, at a distance.
inline double cubicKernel(double distance) {
    const double a = -0.5;
    const double d = std::fabs(distance);
    if (d < 1.0) return (a + 2.0) * d * d * d - (a + 3.0) * d * d + 1.0;
    if (d < 2.0) return a * d * d * d - 5.0 * a * d * d + 8.0 * a * d - 4.0 * a;
    return 0.0;
}

inline double linearKernel(double distance) { return std::max(0.0, 1.0 - std::fabs(distance)); }

/// The value at a point of an image that goes on forever as its outermost pixels; `at(x, y)` gives a pixel's sample,
/// which lies at (x + 0.5, y + 0.5). Not limited to the type and not rounded.
template <typename At>
double valueAt(const At& at, IppiSize size, double x, double y, int interpolation) {
    const auto pixel = [&](double column, double row) {
        return static_cast<double>(at(static_cast<int>(std::clamp(column, 0.0, size.width - 1.0)),
                                      static_cast<int>(std::clamp(row, 0.0, size.height - 1.0))));
    };
    if (interpolation == IPPI_INTER_NN) return pixel(std::floor(x), std::floor(y));
    const bool cubic = interpolation == IPPI_INTER_CUBIC;
    const auto kernel = [&](double distance) { return cubic ? cubicKernel(distance) : linearKernel(distance); };
    double sum = 0.0;
    for (double row = std::floor(y) - 3.0; row <= std::floor(y) + 3.0; ++row) {
        for (double column = std::floor(x) - 3.0; column <= std::floor(x) + 3.0; ++column) {
            sum += kernel(x - (column + 0.5)) * kernel(y - (row + 0.5)) * pixel(column, row);
        }
    }
    return sum;
}

inline bool isInside(IppiRect region, double x, double y) {
    return x >= region.x && x < static_cast<double>(region.x) + region.width && y >= region.y &&
           y < static_cast<double>(region.y) + region.height;
}

}  // namespace zolref
