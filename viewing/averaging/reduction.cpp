#include "viewing/averaging/reduction.h"

#include <algorithm>
#include <cmath>

namespace viewing::averaging {

namespace {

/// Less than this is no difference, in pixels over the whole of a source or display.
constexpr double negligible = 0.5 / onePixel;

/// Display position = scale * source position + offset, along one axis of each.
struct AxisView {
    double scale = 1.0;
    double offset = 0.0;
    int extent = 0;   ///< of the source
    int display = 0;  ///< of the display
};

/// Cells along one axis, and where their raster lies on the display.
struct AxisReduction {
    AxisCells cells;
    AxisView view;
};

std::int64_t positionOf(double pixels) {
    // Far outside, where it makes no difference, the conversion must not overflow.
    constexpr double far = 1e9;
    return static_cast<std::int64_t>(std::floor(std::clamp(pixels, -far, far) * onePixel + 0.5));
}

/// A cell for each display pixel that shows something.
AxisReduction cellsOnDisplay(const AxisView& view) {
    const bool falls = view.scale < 0.0;
    AxisCells cells;
    int first = 0;
    for (int i = 0; i <= view.display; ++i) {
        const int edge = falls ? view.display - i : i;  // in the source's order
        const std::int64_t bound =
            std::clamp<std::int64_t>(positionOf((edge - view.offset) / view.scale), 0, view.extent * onePixel);
        const bool isNew = cells.bounds.empty() || cells.bounds.back() != bound;
        if (isNew) cells.bounds.push_back(bound);
        if (cells.bounds.size() == 1) first = edge;
    }
    return {cells, {falls ? -1.0 : 1.0, static_cast<double>(first), cells.count(), view.display}};
}

/// The view of scale 1 that brings whole pixels onto whole pixels: those that lie under display pixels' middles.
AxisView snapped(const AxisView& view) {
    if (view.scale < 0.0) return {-1.0, std::floor(view.offset + 0.5), view.extent, view.display};
    return {1.0, -std::floor(0.5 - view.offset), view.extent, view.display};
}

AxisReduction reduceUpright(const AxisView& view, Scale scale) {
    if (scale == Scale::Magnified) return {wholePixels(view.extent), view};
    return cellsOnDisplay(scale == Scale::Same ? snapped(view) : view);
}

/// Cells as long as a display pixel from the first pixel of the source on; the last one may be shorter.
AxisCells cellsOfDisplayPixels(int extent, double scale) {
    AxisCells cells{{0}};
    const std::int64_t end = extent * onePixel;
    for (int i = 1; cells.bounds.back() < end; ++i) cells.bounds.push_back(std::min(positionOf(i / scale), end));
    return cells;
}

Matrix inverseOf(const Matrix& matrix) {
    const auto& [a, b, c, d, e, f] = matrix;
    const double determinant = a * d - b * c;
    return {d / determinant,
            -b / determinant,
            -c / determinant,
            a / determinant,
            (c * f - d * e) / determinant,
            (b * e - a * f) / determinant};
}

double lengthOf(double x, double y) { return std::sqrt(x * x + y * y); }

/// What the display shows of the rectangle that lies around the turned source.
ObliqueCoverage coverObliquely(const Matrix& toDisplay, Extent source, Extent display) {
    const auto& [a, b, c, d, e, f] = toDisplay;
    const auto range = [](double alongX, double alongY, double offset, int limit) {
        const double low = offset + std::min(alongX, 0.0) + std::min(alongY, 0.0);
        const double high = offset + std::max(alongX, 0.0) + std::max(alongY, 0.0);
        const auto within = [limit](double edge) {
            return static_cast<int>(std::clamp(edge, 0.0, static_cast<double>(limit)));
        };
        return std::array<int, 2>{within(std::floor(low)), within(std::ceil(high))};
    };
    const auto [left, right] = range(a * source.width, c * source.height, e, display.width);
    const auto [top, bottom] = range(b * source.width, d * source.height, f, display.height);
    return {inverseOf(toDisplay), left, top, right - left, bottom - top};
}

}  // namespace

Scales scalesOf(const Matrix& toDisplay, Extent source, Extent display) {
    const auto& [a, b, c, d, e, f] = toDisplay;
    const double longest = std::max(display.width, display.height);
    const auto classify = [longest](double scale) {
        if (std::fabs(1.0 / scale - 1.0) * longest < negligible) return Scale::Same;
        return scale < 1.0 ? Scale::Reduced : Scale::Magnified;
    };
    const auto isNothing = [&](double acrossX, double acrossY) {
        return std::fabs(acrossX) * source.width + std::fabs(acrossY) * source.height < negligible;
    };
    return {classify(lengthOf(a, b)), classify(lengthOf(c, d)), isNothing(b, c) || isNothing(a, d)};
}

Reduction reductionOf(const Matrix& toDisplay, Extent source, Extent display) {
    const auto& [a, b, c, d, e, f] = toDisplay;
    const Scales scales = scalesOf(toDisplay, source, display);
    if (scales.upright) {
        const bool exchanged = std::fabs(a) < std::fabs(b);
        const AxisView columns =
            exchanged ? AxisView{b, f, source.width, display.height} : AxisView{a, e, source.width, display.width};
        const AxisView rows =
            exchanged ? AxisView{c, e, source.height, display.width} : AxisView{d, f, source.height, display.height};
        const AxisReduction x = reduceUpright(columns, scales.x);
        const AxisReduction y = reduceUpright(rows, scales.y);
        const Matrix onto = exchanged ? Matrix{0.0, x.view.scale, y.view.scale, 0.0, y.view.offset, x.view.offset}
                                      : Matrix{x.view.scale, 0.0, 0.0, y.view.scale, x.view.offset, y.view.offset};
        return {AxisCoverage{x.cells, y.cells}, onto, scales.magnify()};
    }
    if (!scales.magnify()) {
        const ObliqueCoverage coverage = coverObliquely(toDisplay, source, display);
        return {coverage,
                Matrix{1.0, 0.0, 0.0, 1.0, static_cast<double>(coverage.left), static_cast<double>(coverage.top)},
                false};
    }
    const double scaleX = scales.x == Scale::Reduced ? lengthOf(a, b) : 1.0;
    const double scaleY = scales.y == Scale::Reduced ? lengthOf(c, d) : 1.0;
    return {AxisCoverage{cellsOfDisplayPixels(source.width, scaleX), cellsOfDisplayPixels(source.height, scaleY)},
            Matrix{a / scaleX, b / scaleX, c / scaleY, d / scaleY, e, f}, true};
}

}  // namespace viewing::averaging
