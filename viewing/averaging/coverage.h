// Which area of a source each pixel of a reduced raster covers.
//
// Positions on a source count 1/1024 of its pixels: 0 is the left or upper edge of the first pixel. Every edge between
// two pixels of the reduced raster is rounded to such a position once, for both of them. So they leave nothing out and
// count nothing twice, whatever the rounding.
#pragma once

#include <array>
#include <cstdint>
#include <variant>
#include <vector>

namespace viewing::averaging {

inline constexpr int positionBits = 10;
inline constexpr std::int64_t onePixel = std::int64_t{1} << positionBits;

/// Along one axis of the source: pixel i of the reduced raster covers what lies between bounds i and i + 1.
struct AxisCells {
    /// Ascending, no two alike, none outside the source. Fewer than two for no cell at all.
    std::vector<std::int64_t> bounds;

    [[nodiscard]] int count() const { return bounds.size() < 2 ? 0 : static_cast<int>(bounds.size()) - 1; }
    [[nodiscard]] std::int64_t length(int i) const {
        return bounds[static_cast<std::size_t>(i) + 1] - bounds[static_cast<std::size_t>(i)];
    }
    /// Whether every cell is one whole pixel of the source.
    [[nodiscard]] bool arePixels() const;
    bool operator==(const AxisCells&) const = default;
};

/// A cell for each of a source's pixels.
AxisCells wholePixels(int extent);

/// Where the source's axes are the reduced raster's. It has as many pixels as there are cells.
struct AxisCoverage {
    AxisCells columns;
    AxisCells rows;
};

/// At any angle: pixel (x, y) of the reduced raster covers the parallelogram that the matrix makes of the unit square
/// at (left + x, top + y).
struct ObliqueCoverage {
    /// (a, b, c, d, e, f) with source column = a x + c y + e and source row = b x + d y + f.
    std::array<double, 6> toSource{1.0, 0.0, 0.0, 1.0, 0.0, 0.0};
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

using Coverage = std::variant<AxisCoverage, ObliqueCoverage>;

/// Size of the reduced raster.
int widthOf(const AxisCoverage& coverage);
int heightOf(const AxisCoverage& coverage);
int widthOf(const ObliqueCoverage& coverage);
int heightOf(const ObliqueCoverage& coverage);
int widthOf(const Coverage& coverage);
int heightOf(const Coverage& coverage);

}  // namespace viewing::averaging
