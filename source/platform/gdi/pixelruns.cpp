#include "platform/gdi/pixelruns.h"

#include "platform/gdi/figures.h"
#include "platform/gdi/integerdivision.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace zolgdi {

namespace {

/// An edge of a surface, from its upper end (inclusive) to its lower end (exclusive).
struct Edge {
    LONG top;
    LONG bottom;
    LONG x;  ///< at the top
    std::int64_t dx;
    std::int64_t dy;
    int direction;

    /// The first pixel at or right of the edge in row y.
    [[nodiscard]] LONG at(LONG y) const { return static_cast<LONG>(x + ceilDivide((std::int64_t{y} - top) * dx, dy)); }
};

std::vector<Edge> edgesOf(const Figures& figures) {
    std::vector<Edge> edges;
    for (const Figure& figure : figures) {
        for (std::size_t i = 0; i < figure.points.size(); ++i) {
            POINT a = roundToDevice(figure.points[i]);
            POINT b = roundToDevice(figure.points[(i + 1) % figure.points.size()]);
            if (a.y == b.y) continue;
            const int direction = a.y < b.y ? 1 : -1;
            if (direction < 0) std::swap(a, b);
            edges.push_back({a.y, b.y, a.x, std::int64_t{b.x} - a.x, std::int64_t{b.y} - a.y, direction});
        }
    }
    std::sort(edges.begin(), edges.end(), [](const Edge& a, const Edge& b) { return a.top < b.top; });
    return edges;
}

struct Crossing {
    LONG x;
    int direction;
};

}  // namespace

void scanSurface(const Figures& figures, int fillMode, LONG top, LONG bottom, const RunAction& action) {
    const std::vector<Edge> edges = edgesOf(surfacesWithin(flattened(figures), rasterLimit));
    if (edges.empty()) return;
    std::vector<const Edge*> active;
    std::vector<Crossing> crossings;
    std::size_t next = 0;
    for (LONG y = std::max(top, edges.front().top); y < bottom; ++y) {
        for (; next < edges.size() && edges[next].top <= y; ++next) active.push_back(&edges[next]);
        active.erase(std::remove_if(active.begin(), active.end(), [&](const Edge* e) { return e->bottom <= y; }),
                     active.end());
        if (active.empty() && next == edges.size()) return;
        crossings.clear();
        for (const Edge* edge : active) crossings.push_back({edge->at(y), edge->direction});
        std::sort(crossings.begin(), crossings.end(), [](Crossing a, Crossing b) { return a.x < b.x; });
        int winding = 0;
        for (std::size_t i = 0; i + 1 < crossings.size(); ++i) {
            winding += crossings[i].direction;
            const bool inside = fillMode == WINDING ? winding != 0 : i % 2 == 0;
            if (inside && crossings[i].x < crossings[i + 1].x) action(y, crossings[i].x, crossings[i + 1].x);
        }
    }
}

std::pair<LONG, LONG> EllipseRows::row(LONG y) const {
    if (isEmpty(box_) || y < box_.top || y >= box_.bottom) return {0, 0};
    const double v = static_cast<double>(2 * (std::int64_t{y} - box_.top) + 1 - height_) / static_cast<double>(height_);
    const double reach = std::sqrt(1.0 - v * v) * static_cast<double>(width_);
    // Middles lie at 2i + 1 - width in half pixels from the centre.
    const auto inset = static_cast<std::int64_t>(std::ceil((static_cast<double>(width_) - 1.0 - reach) / 2.0));
    return {static_cast<LONG>(box_.left + inset), static_cast<LONG>(box_.right - inset)};
}

}  // namespace zolgdi
