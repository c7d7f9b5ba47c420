#include "viewing/dicom/dicom_geometry.h"

#include <algorithm>
#include <cmath>

namespace viewing {

namespace {

// Beyond every image, and small enough for the squares of distances.
constexpr double farAway = 100000.0;

int limited(double value) { return static_cast<int>(std::lround(std::clamp(value, -farAway, farAway))); }

}  // namespace

Point fromRowColumn(double row, double column) { return {limited(column - 1.0), limited(row - 1.0)}; }

std::optional<Box> fromEdges(double left, double right, double upper, double lower) {
    const Point first = fromRowColumn(upper, left);
    const Point last = fromRowColumn(lower, right);
    if (first.x > last.x || first.y > last.y) return std::nullopt;
    return Box{first.x, first.y, last.x, last.y};
}

std::optional<Circle> fromCentre(double row, double column, double radius) {
    const int r = limited(radius);
    if (r < 1) return std::nullopt;
    return Circle{fromRowColumn(row, column), r};
}

std::optional<std::vector<Point>> fromVertices(std::span<const double> rowsAndColumns) {
    if (rowsAndColumns.size() < 6 || rowsAndColumns.size() % 2 != 0) return std::nullopt;
    std::vector<Point> points;
    for (std::size_t i = 0; i < rowsAndColumns.size(); i += 2)
        points.push_back(fromRowColumn(rowsAndColumns[i], rowsAndColumns[i + 1]));
    return points;
}

std::optional<OverlayPlane> placePlane(Point origin, int rows, int columns, std::span<const unsigned char> packed,
                                       std::size_t firstBit, int width, int height) {
    const int left = std::max(origin.x, 0);
    const int top = std::max(origin.y, 0);
    const int right = std::min(origin.x + columns, width);
    const int bottom = std::min(origin.y + rows, height);
    if (left >= right || top >= bottom) return std::nullopt;

    OverlayPlane plane{{left, top}, BitPlane(right - left, bottom - top), PlaneKind::Graphics};
    for (int y = top; y < bottom; ++y) {
        const std::size_t row = firstBit + static_cast<std::size_t>(y - origin.y) * static_cast<std::size_t>(columns);
        for (int x = left; x < right; ++x) {
            if (packedBit(packed, row + static_cast<std::size_t>(x - origin.x))) plane.bits.set(x - left, y - top);
        }
    }
    return plane;
}

}  // namespace viewing
