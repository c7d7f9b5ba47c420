#include "windowing.h"

#include <algorithm>
#include <cmath>

namespace zolview {

namespace {

/// The map spreads 256 greys evenly over the levels from centre - width / 2 (integers), the first grey at that level;
/// from centre - width / 2 + width on everything is white. DICOM's line is black at `black` and white at `white`, both
/// in levels and usually not whole. The map's width is therefore the length of that line (not the window's width,
/// which for LINEAR counts both of its ends: a width of 2 is a step from one value to the next and must show no grey
/// between), and its first level is rounded to the nearest, halves up. No grey is then off by more than one step, but
/// for what rounding the ends to whole levels costs.
RasterWindow straightLine(double black, double white) {
    RasterWindow out;
    double length = std::max(std::round(white - black), 1.0);
    double first = (black + white - length) / 2.0;

    // All levels share one or two greys of a line this long; a shorter one through the same grey in the middle of the
    // levels shows the same and stays within the map's integers.
    constexpr double longest = 1 << 20;
    constexpr double middle = rasterLevels / 2.0;
    if (length > longest) {
        first = middle - (middle - first) / length * longest;
        length = longest;
    }
    // Lines that lie beside the levels altogether: black or white all over, wherever they are.
    first = std::clamp(std::floor(first + 0.5), -length - 1.0, static_cast<double>(rasterLevels));

    out.width = static_cast<int>(length);
    out.centre = static_cast<int>(first) + out.width / 2;
    return out;
}

/// The map scales its sigmoid down to 256 greys by the grey of the highest level, a whole number of bits; that is
/// DICOM's curve only while this level lies in the upper half of the greys.
bool mapDrawsSigmoid(int centre, int width) {
    const double highest = rasterLevels - 1;
    return std::trunc(highest / (std::exp(-4.0 * (highest - centre) / width) + 1.0)) >= rasterLevels / 2.0;
}

}  // namespace

bool isUsable(const Window& window, WindowFunction function) {
    if (!std::isfinite(window.centre) || !std::isfinite(window.width)) return false;
    return function == WindowFunction::Linear ? window.width >= 1.0 : window.width > 0.0;
}

RasterWindow toRasterWindow(const StoredImage& image, const Window& window, WindowFunction function) {
    // What lies beyond any stored value is as far away as the largest double, without leaving the doubles.
    constexpr double huge = 1e15;
    const double centre = std::clamp(window.centre, -huge, huge);
    const double width = std::min(window.width, huge);
    const auto level = [&image](double output) { return (output - image.intercept) / image.slope - image.lowest; };
    constexpr double reach = 1e6;
    if (function == WindowFunction::Sigmoid) {
        const double middle = std::clamp(std::round(level(centre)), -reach, reach);
        const double spread = std::clamp(std::round(width / std::abs(image.slope)), 1.0, reach);
        const RasterWindow out{static_cast<int>(middle), static_cast<int>(spread), true, image.slope < 0.0, false};
        if (mapDrawsSigmoid(out.centre, out.width)) return out;
    }

    // LINEAR reaches black at centre - 0.5 - (width - 1) / 2 and white at centre - 0.5 + (width - 1) / 2; the exact
    // form at centre - width / 2 and centre + width / 2.
    const bool counted = function == WindowFunction::Linear;
    const double middle = counted ? centre - 0.5 : centre;
    const double half = (counted ? width - 1.0 : width) / 2.0;
    const double ends[] = {level(middle - half), level(middle + half)};
    RasterWindow out = straightLine(std::min(ends[0], ends[1]), std::max(ends[0], ends[1]));
    out.reversed = image.slope < 0.0;
    out.sigmoidReplaced = function == WindowFunction::Sigmoid;
    return out;
}

RasterWindow fullRange(const StoredImage& image) {
    RasterWindow out = straightLine(image.minLevel, image.maxLevel);
    out.reversed = image.slope < 0.0;
    return out;
}

}  // namespace zolview
