#include "viewing/averaging/coverage.h"

namespace viewing::averaging {

bool AxisCells::arePixels() const {
    if (count() == 0) return true;
    if (bounds.front() % onePixel != 0) return false;
    for (int i = 0; i < count(); ++i)
        if (length(i) != onePixel) return false;
    return true;
}

AxisCells wholePixels(int extent) {
    AxisCells cells;
    for (int i = 0; i <= extent; ++i) cells.bounds.push_back(i * onePixel);
    return cells;
}

int widthOf(const AxisCoverage& coverage) { return coverage.columns.count(); }
int heightOf(const AxisCoverage& coverage) { return coverage.rows.count(); }
int widthOf(const ObliqueCoverage& coverage) { return coverage.width; }
int heightOf(const ObliqueCoverage& coverage) { return coverage.height; }

int widthOf(const Coverage& coverage) {
    return std::visit([](const auto& shape) { return widthOf(shape); }, coverage);
}

int heightOf(const Coverage& coverage) {
    return std::visit([](const auto& shape) { return heightOf(shape); }, coverage);
}

}  // namespace viewing::averaging
