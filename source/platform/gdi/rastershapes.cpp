// Surfaces and outlines on pixel memory.
#include "platform/gdi/figures.h"
#include "platform/gdi/mask.h"
#include "platform/gdi/raster.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace zolgdi {

namespace {

// Coordinates stay below this, so that products of two distances fit 64 bits with room to spare.
constexpr double safe = 1 << 27;

std::int64_t floorDivide(std::int64_t a, std::int64_t b) {  // b > 0
    return a >= 0 ? a / b : -((-a + b - 1) / b);
}
std::int64_t ceilDivide(std::int64_t a, std::int64_t b) { return -floorDivide(-a, b); }

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

/// Calls span(y, left, right) for all runs of pixels inside, right exclusive, row by row within [top, bottom).
template <typename Span>
void scanSurface(const Figures& figures, int fillMode, LONG top, LONG bottom, const Span& span) {
    const std::vector<Edge> edges = edgesOf(figures);
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
            if (inside && crossings[i].x < crossings[i + 1].x) span(y, crossings[i].x, crossings[i + 1].x);
        }
    }
}

/// On and off lengths of the styled pens, in pixels along the line.
class Pattern {
public:
    explicit Pattern(UINT style) {
        switch (style) {
            case PS_DASH:
                set({18, 6});
                break;
            case PS_DOT:
                set({3, 3});
                break;
            case PS_DASHDOT:
                set({9, 6, 3, 6});
                break;
            case PS_DASHDOTDOT:
                set({9, 3, 3, 3, 3, 3});
                break;
            default:
                break;
        }
    }
    [[nodiscard]] bool on(std::int64_t position) const {
        return cycle_ == 0 || on_[static_cast<std::size_t>(position % cycle_)];
    }

private:
    void set(std::initializer_list<int> lengths) {
        bool on = true;
        for (const int length : lengths) {
            for (int i = 0; i < length; ++i) on_[static_cast<std::size_t>(cycle_++)] = on;
            on = !on;
        }
    }

    std::array<bool, 24> on_{};
    std::int64_t cycle_ = 0;
};

/// One-pixel lines. Of two pixels at the same distance from the line, the upper or left one is drawn.
class ThinLines {
public:
    ThinLines(const Pixels& to, const Area& clip, const Stroke& stroke)
        : to_(to), clip_(clip), stroke_(stroke), pattern_(stroke.style) {}

    /// From a to b, without b's pixel.
    void draw(POINT a, POINT b) {
        const std::int64_t dx = std::int64_t{b.x} - a.x;
        const std::int64_t dy = std::int64_t{b.y} - a.y;
        if (std::abs(dx) >= std::abs(dy)) {
            walk(
                a.x, a.y, dx, dy,
                [](const RECT& r) {
                    return Limits{r.left, r.right, r.top, r.bottom};
                },
                [this](LONG x, LONG y, COLORREF color) { put(x, y, color); });
        } else {
            walk(
                a.y, a.x, dy, dx,
                [](const RECT& r) {
                    return Limits{r.top, r.bottom, r.left, r.right};
                },
                [this](LONG y, LONG x, COLORREF color) { put(x, y, color); });
        }
    }
    /// Dashes start anew.
    void restart() { phase_ = 0; }

private:
    struct Limits {
        LONG first, last, minorFirst, minorLast;
    };

    template <typename LimitsOf, typename Put>
    void walk(LONG major, LONG minor, std::int64_t length, std::int64_t height, const LimitsOf& limitsOf,
              const Put& put) {
        const std::int64_t step = length < 0 ? -1 : 1;
        const std::int64_t count = length * step;
        const std::int64_t rise = std::abs(height);
        for (const RECT& rect : clip_.rects()) {
            const Limits limits = limitsOf(rect);
            const std::int64_t toFirst =
                step > 0 ? std::int64_t{limits.first} - major : std::int64_t{major} - (limits.last - 1);
            const std::int64_t toLast =
                step > 0 ? std::int64_t{limits.last} - major : std::int64_t{major} - (limits.first - 1);
            const std::int64_t end = std::min(count, toLast);
            for (std::int64_t i = std::max<std::int64_t>(0, toFirst); i < end; ++i) {
                const std::int64_t offset = height >= 0 ? ceilDivide(2 * i * rise - count, 2 * count)
                                                        : -floorDivide(2 * i * rise + count, 2 * count);
                const std::int64_t at = minor + offset;
                if (at < limits.minorFirst || at >= limits.minorLast) continue;
                const bool on = pattern_.on(phase_ + i);
                if (!on && !stroke_.opaqueGaps) continue;
                put(static_cast<LONG>(major + i * step), static_cast<LONG>(at), on ? stroke_.color : stroke_.gapColor);
            }
        }
        phase_ += count;
    }

    void put(LONG x, LONG y, COLORREF color) {
        BYTE* pixel = to_.at(x, y);
        pixel[0] = GetBValue(color);
        pixel[1] = GetGValue(color);
        pixel[2] = GetRValue(color);
        if (to_.bytes == 4) pixel[3] = 0;
    }

    const Pixels& to_;
    const Area& clip_;
    const Stroke& stroke_;
    Pattern pattern_;
    std::int64_t phase_ = 0;
};

void strokeThin(const Pixels& to, const Area& clip, const Figures& lines, const Stroke& stroke) {
    ThinLines thin(to, clip, stroke);
    for (const Figure& figure : linesWithin(lines, safe)) {
        const auto& points = figure.points;
        thin.restart();
        for (std::size_t i = 0; i + (figure.closed ? 0 : 1) < points.size(); ++i) {
            thin.draw(roundToDevice(points[i]), roundToDevice(points[(i + 1) % points.size()]));
        }
    }
}

RECT boundsOf(const Figures& figures, double margin) {
    PointD low{safe, safe};
    PointD high{-safe, -safe};
    for (const Figure& figure : figures) {
        for (const PointD p : figure.points) {
            low = {std::min(low.x, p.x), std::min(low.y, p.y)};
            high = {std::max(high.x, p.x), std::max(high.y, p.y)};
        }
    }
    return {roundToDevice(low.x - margin), roundToDevice(low.y - margin), roundToDevice(high.x + margin),
            roundToDevice(high.y + margin)};
}

/// Round ends and joins, a whole number of pixels thick.
void strokeWide(const Pixels& to, const Area& clip, const Figures& figures, const Stroke& stroke) {
    const double width = std::round(std::min(stroke.width, cairoLimit));
    const Figures near = linesWithin(figures, cairoLimit);
    // Of the pixels whose middles lie on the two edges the left and upper ones are drawn, curves rounded or not.
    constexpr double middle = 0.5 - 1.0 / 32.0;
    constexpr double tolerance = 0.02;
    paintCoverage(to, clip, boundsOf(near, width / 2.0 + 2.0), stroke.color, [&](cairo_t* cairo) {
        cairo_set_antialias(cairo, CAIRO_ANTIALIAS_NONE);
        cairo_set_tolerance(cairo, tolerance);
        cairo_set_line_width(cairo, width);
        cairo_set_line_cap(cairo, CAIRO_LINE_CAP_ROUND);
        cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
        appendPath(cairo, near, middle);
        cairo_stroke(cairo);
    });
}

/// Runs of an ellipse's pixels: those whose middles lie in the ellipse that touches the rectangle's sides.
class EllipseRows {
public:
    explicit EllipseRows(const RECT& box)
        : box_(box), width_(std::int64_t{box.right} - box.left), height_(std::int64_t{box.bottom} - box.top) {}

    /// Left and right end (exclusive) of row y; empty outside.
    [[nodiscard]] std::pair<LONG, LONG> row(LONG y) const {
        if (isEmpty(box_) || y < box_.top || y >= box_.bottom) return {0, 0};
        const double v =
            static_cast<double>(2 * (std::int64_t{y} - box_.top) + 1 - height_) / static_cast<double>(height_);
        const double reach = std::sqrt(1.0 - v * v) * static_cast<double>(width_);
        // Middles lie at 2i + 1 - width in half pixels from the centre.
        const auto inset = static_cast<std::int64_t>(std::ceil((static_cast<double>(width_) - 1.0 - reach) / 2.0));
        return {static_cast<LONG>(box_.left + inset), static_cast<LONG>(box_.right - inset)};
    }

private:
    RECT box_;
    std::int64_t width_;
    std::int64_t height_;
};

}  // namespace

void RasterCanvas::fill(const Area& clip, const Figures& figures, int fillMode, COLORREF color) {
    const RECT bounds = clip.bounds();
    const Figures surfaces = surfacesWithin(flattened(figures), safe);
    scanSurface(surfaces, fillMode, bounds.top, bounds.bottom, [&](LONG y, LONG left, LONG right) {
        paint(clip.intersected(Area(RECT{left, y, right, y + 1})), ropIndex(PATCOPY), color);
    });
}

void RasterCanvas::stroke(const Area& clip, const Figures& figures, const Stroke& stroke) {
    if (clip.empty() || stroke.style == PS_NULL) return;
    stroke.width >= 1.5 ? strokeWide(pixels_, clip, figures, stroke)
                        : strokeThin(pixels_, clip, flattened(figures), stroke);
}

void RasterCanvas::ellipse(const Area& clip, const RECT& box, const Stroke& stroke, const COLORREF* fillColor) {
    const RECT bounds = intersection(clip.bounds(), box);
    const EllipseRows rows(box);
    const auto span = [&](LONG y, LONG left, LONG right, COLORREF color) {
        if (left < right) paint(clip.intersected(Area(RECT{left, y, right, y + 1})), ropIndex(PATCOPY), color);
    };
    const bool thin = stroke.style == PS_SOLID && stroke.width < 1.5;
    for (LONG y = bounds.top; y < bounds.bottom; ++y) {
        const auto [left, right] = rows.row(y);
        if (fillColor != nullptr) span(y, left, right, *fillColor);
        if (!thin) continue;
        // The outline: pixels with a neighbour outside.
        const auto above = rows.row(y - 1);
        const auto below = rows.row(y + 1);
        const LONG innerLeft = std::max({left + 1, above.first, below.first});
        const LONG innerRight = std::min({right - 1, above.second, below.second});
        const bool hollow = above.first < above.second && below.first < below.second && innerLeft < innerRight;
        span(y, left, hollow ? innerLeft : right, stroke.color);
        if (hollow) span(y, innerRight, right, stroke.color);
    }
    if (thin || stroke.style == PS_NULL) return;
    this->stroke(clip, {ellipseFigure(cornersOf(box))}, stroke);
}

}  // namespace zolgdi
