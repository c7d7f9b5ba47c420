#include "viewing/display/shutter_plane.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

namespace viewing {

namespace {

/// Columns of a row, both included.
struct Run {
    int first = 0;
    int last = 0;
};

/// Where an edge meets a row: across / down columns from the first one, `down` being above 0.
struct Crossing {
    std::int64_t across = 0;
    std::int64_t down = 1;

    bool operator<(const Crossing& other) const { return across * other.down < other.across * down; }
    /// The last column at or before it.
    [[nodiscard]] int floor() const {
        const std::int64_t whole = across / down;
        return static_cast<int>(across % down < 0 ? whole - 1 : whole);
    }
    /// The first column at or behind it.
    [[nodiscard]] int ceil() const { return across % down == 0 ? floor() : floor() + 1; }
};

/// The runs of a polygon's columns row by row.
class PolygonRows {
public:
    explicit PolygonRows(const std::vector<Point>& vertices) {
        for (std::size_t i = 0; i < vertices.size(); ++i) {
            const Point& one = vertices[i];
            const Point& other = vertices[i + 1 < vertices.size() ? i + 1 : 0];
            edges_.push_back(one.y <= other.y ? Edge{one, other} : Edge{other, one});
        }
    }

    /// Runs may touch and overlap.
    const std::vector<Run>& row(int y) {
        runs_.clear();
        crossings_.clear();
        for (const Edge& edge : edges_) addEdge(edge, y);
        std::sort(crossings_.begin(), crossings_.end());
        for (std::size_t i = 0; i + 1 < crossings_.size(); i += 2)
            runs_.push_back({crossings_[i].ceil(), crossings_[i + 1].floor()});
        return runs_;
    }

private:
    struct Edge {
        Point upper;
        Point lower;
    };

    void addEdge(const Edge& edge, int y) {
        if (y < edge.upper.y || y > edge.lower.y) return;
        if (edge.upper.y == edge.lower.y) {
            runs_.push_back({std::min(edge.upper.x, edge.lower.x), std::max(edge.upper.x, edge.lower.x)});
            return;
        }
        Crossing crossing;
        crossing.down = edge.lower.y - edge.upper.y;
        crossing.across = edge.upper.x * crossing.down + std::int64_t{y - edge.upper.y} * (edge.lower.x - edge.upper.x);
        // A vertex between two rows of edges counts for the lower one alone; the polygon's lowest points count as
        // edges.
        if (y < edge.lower.y) crossings_.push_back(crossing);
        if (crossing.floor() == crossing.ceil()) runs_.push_back({crossing.floor(), crossing.floor()});
    }

    std::vector<Edge> edges_;
    std::vector<Crossing> crossings_;
    std::vector<Run> runs_;
};

/// The columns of a circle in a row; null where it does not reach it.
std::optional<Run> circleRow(const Circle& circle, int y, double ratioYx) {
    const double dy = (y - circle.centre.y) * ratioYx;
    const double square = static_cast<double>(circle.radius) * circle.radius - dy * dy;
    if (square < 0.0) return std::nullopt;
    auto half = static_cast<int>(std::sqrt(square));
    // The root may be rounded across a whole number.
    while (static_cast<double>(half) * half > square) --half;
    while (static_cast<double>(half + 1) * (half + 1) <= square) ++half;
    return Run{circle.centre.x - half, circle.centre.x + half};
}

}  // namespace

BitPlane hiddenPixels(const Shutters& shutters, int width, int height, double ratioYx) {
    PolygonRows polygon(shutters.polygon);
    BitPlane hidden(width, height);
    std::vector<std::uint8_t> isVisible(static_cast<std::size_t>(width));
    const std::vector<Run> wholeRow{{0, width - 1}};
    for (int y = 0; y < height; ++y) {
        Run limits{0, width - 1};
        const auto narrow = [&limits](int first, int last) {
            limits = {std::max(limits.first, first), std::min(limits.last, last)};
        };
        if (const auto& r = shutters.rectangle)
            y >= r->top&& y <= r->bottom ? narrow(r->left, r->right) : narrow(width, -1);
        if (shutters.circle) {
            const auto run = circleRow(*shutters.circle, y, ratioYx);
            run ? narrow(run->first, run->last) : narrow(width, -1);
        }
        std::fill(isVisible.begin(), isVisible.end(), std::uint8_t{0});
        for (const Run& run : shutters.polygon.empty() ? wholeRow : polygon.row(y)) {
            const int first = std::max(run.first, limits.first);
            const int last = std::min(run.last, limits.last);
            if (first <= last) std::fill(isVisible.begin() + first, isVisible.begin() + last + 1, std::uint8_t{1});
        }
        for (int x = 0; x < width; ++x)
            if (isVisible[static_cast<std::size_t>(x)] == 0) hidden.set(x, y);
    }
    return hidden;
}

}  // namespace viewing
