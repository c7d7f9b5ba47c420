// Averaging, restated slowly: every display pixel looks at every pixel of the source.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace area_reference {

/// How much of [from, to) lies within pixel i, in 1/1024 of a pixel.
inline std::int64_t overlap(std::int64_t from, std::int64_t to, std::int64_t i) {
    return std::max<std::int64_t>(std::min(to, (i + 1) * 1024) - std::max(from, i * 1024), 0);
}

/// A source of one channel whose pixels take part or do not.
struct Source {
    int width = 0;
    int height = 0;
    std::vector<unsigned> values;
    std::vector<std::uint8_t> takesPart;  // empty: all do

    [[nodiscard]] std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
    }
    [[nodiscard]] bool counts(int x, int y) const { return takesPart.empty() || takesPart[index(x, y)] != 0; }
};

/// The mean of a rectangle, halves rounded up; 0 where nothing takes part.
inline unsigned mean(const Source& source, std::int64_t left, std::int64_t right, std::int64_t top,
                     std::int64_t bottom) {
    std::uint64_t sum = 0;
    std::uint64_t weight = 0;
    for (int y = 0; y < source.height; ++y) {
        for (int x = 0; x < source.width; ++x) {
            if (!source.counts(x, y)) continue;
            const auto share = static_cast<std::uint64_t>(overlap(left, right, x) * overlap(top, bottom, y));
            weight += share;
            sum += share * source.values[source.index(x, y)];
        }
    }
    if (weight == 0) return 0;
    const std::uint64_t whole = sum / weight;
    return static_cast<unsigned>(sum % weight * 2 >= weight ? whole + 1 : whole);
}

using Corner = std::array<double, 2>;

/// The part of a convex polygon on one side of a line: where sign * (coordinate - limit) >= 0.
inline std::vector<Corner> cut(const std::vector<Corner>& polygon, std::size_t axis, double limit, double sign) {
    std::vector<Corner> out;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const Corner& a = polygon[i];
        const Corner& b = polygon[(i + 1) % polygon.size()];
        const double da = sign * (a[axis] - limit);
        const double db = sign * (b[axis] - limit);
        if (da >= 0.0) out.push_back(a);
        if ((da > 0.0 && db < 0.0) || (da < 0.0 && db > 0.0)) {
            const double t = da / (da - db);
            out.push_back({a[0] + t * (b[0] - a[0]), a[1] + t * (b[1] - a[1])});
        }
    }
    return out;
}

inline double areaOf(const std::vector<Corner>& polygon) {
    double sum = 0.0;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const Corner& a = polygon[i];
        const Corner& b = polygon[(i + 1) % polygon.size()];
        sum += a[0] * b[1] - b[0] * a[1];
    }
    return std::fabs(sum) / 2.0;
}

/// Mean and weight of what a polygon covers.
inline std::pair<double, double> mean(const Source& source, const std::vector<Corner>& polygon) {
    double sum = 0.0;
    double weight = 0.0;
    for (int y = 0; y < source.height; ++y) {
        const auto row = cut(cut(polygon, 1, y, 1.0), 1, y + 1.0, -1.0);
        if (row.empty()) continue;
        for (int x = 0; x < source.width; ++x) {
            if (!source.counts(x, y)) continue;
            const double share = areaOf(cut(cut(row, 0, x, 1.0), 0, x + 1.0, -1.0));
            weight += share;
            sum += share * source.values[source.index(x, y)];
        }
    }
    return {weight > 0.0 ? sum / weight : 0.0, weight};
}

}  // namespace area_reference
