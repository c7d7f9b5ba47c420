// A line that shows its fields, and its coordinates as plain numbers to compare.
#pragma once

#include "zolcs/ccsline.h"

#include <cstddef>
#include <vector>

namespace zoltest {

class OpenLine : public CCsLine {
public:
    using CCsLine::CCsLine;
    using CCsLine::transformToOutput;

    using CCsLine::closed;
    using CCsLine::dicomPrintFlag;
    using CCsLine::displayAuthoritative;
    using CCsLine::displayPoints;
    using CCsLine::displayPointsDouble;
    using CCsLine::ellipse;
    using CCsLine::fillColor;
    using CCsLine::filled;
    using CCsLine::groupPickFlag;
    using CCsLine::imagePoints;
    using CCsLine::interpolated;
    using CCsLine::maxPointCount;
    using CCsLine::normalised;
    using CCsLine::normalisedPoints;
    using CCsLine::penStyle;
    using CCsLine::pointCount;
    using CCsLine::selected;
    using CCsLine::shadow;
};

using Numbers = std::vector<double>;

/// x and y of each point in turn; none where there is no array.
template <typename Points>
Numbers numbersOf(const Points& points, int count) {
    Numbers out;
    for (std::size_t i = 0; points != nullptr && i < static_cast<std::size_t>(count); ++i) {
        out.insert(out.end(), {1.0 * points[i].x, 1.0 * points[i].y});
    }
    return out;
}

inline Numbers exactOf(const OpenLine& line) { return numbersOf(line.displayPointsDouble, line.pointCount); }
inline Numbers imageOf(const OpenLine& line) { return numbersOf(line.imagePoints, line.pointCount); }
inline Numbers normalisedOf(const OpenLine& line) { return numbersOf(line.normalisedPoints, line.pointCount); }

/// The integer display coordinates, which every line shows.
inline Numbers displayOf(const CCsLine& line) {
    std::vector<CPoint> points;
    line.getEndPts(points);
    Numbers out;
    for (const CPoint& point : points) out.insert(out.end(), {1.0 * point.x, 1.0 * point.y});
    return out;
}

}  // namespace zoltest
