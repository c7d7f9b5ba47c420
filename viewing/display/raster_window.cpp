#include "viewing/display/raster_window.h"

#include <algorithm>
#include <cmath>

namespace viewing {

RasterWindow straightWindow(double black, double white, int levels) {
    // The map spreads 256 greys evenly over the levels from centre - width / 2 (integers), the first grey at that
    // level; from centre - width / 2 + width on everything is white. DICOM's line is black at `black` and white at
    // `white`, usually not whole. The map's width is therefore the length of that line (not the window's width, which
    // for LINEAR counts both of its ends: a width of 2 is a step from one value to the next and must show no grey
    // between), and its first level is rounded to the nearest, halves up.
    RasterWindow out;
    double length = std::max(std::round(white - black), 1.0);
    double first = (black + white - length) / 2.0;

    // All levels share one or two greys of a line this long; a shorter one through the same grey in the middle of the
    // levels shows the same and stays within the map's integers.
    const double longest = levels * 256.0;
    const double middle = levels / 2.0;
    if (length > longest) {
        first = middle - (middle - first) / length * longest;
        length = longest;
    }
    // Lines that lie beside the levels altogether: black or white all over, wherever they are.
    first = std::clamp(std::floor(first + 0.5), -length - 1.0, static_cast<double>(levels));

    out.width = static_cast<int>(length);
    out.centre = static_cast<int>(first) + out.width / 2;
    return out;
}

RasterWindow toRasterWindow(const VoiWindow& voi, double first, double slope, int levels) {
    // What lies beyond any stored value is as far away as the largest double, without leaving the doubles.
    constexpr double huge = 1e15;
    const Window near{std::clamp(voi.window.centre, -huge, huge), std::min(voi.window.width, huge)};
    const auto level = [first, slope](double output) { return (output - first) / slope; };
    if (voi.function == WindowFunction::Sigmoid) {
        constexpr double reach = 1e6;
        const double middle = std::clamp(std::round(level(near.centre)), -reach, reach);
        const double spread = std::clamp(std::round(near.width / slope), 1.0, reach);
        return {static_cast<int>(middle), static_cast<int>(spread), true};
    }
    const GreyLine line = lineOf({near, voi.function});
    return straightWindow(level(line.black), level(line.white), levels);
}

}  // namespace viewing
