#include "platform/gdi/strokes.h"

#include "platform/gdi/cairopath.h"
#include "platform/gdi/coverage.h"
#include "platform/gdi/dashes.h"
#include "platform/gdi/figures.h"
#include "platform/gdi/integerdivision.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace zolgdi {

namespace {

/// Which pixels of a styled line are drawn.
class Pattern {
public:
    explicit Pattern(UINT style) {
        bool on = true;
        for (const int length : dashesOf(style)) {
            for (int i = 0; i < length; ++i) on_[static_cast<std::size_t>(cycle_++)] = on;
            on = !on;
        }
    }
    [[nodiscard]] bool on(std::int64_t position) const {
        return cycle_ == 0 || on_[static_cast<std::size_t>(position % cycle_)];
    }

private:
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

void strokeThin(const Pixels& to, const Area& clip, const Figures& figures, const Stroke& stroke) {
    ThinLines thin(to, clip, stroke);
    for (const Figure& figure : linesWithin(flattened(figures), rasterLimit)) {
        const auto& points = figure.points;
        thin.restart();
        for (std::size_t i = 0; i + (figure.closed ? 0 : 1) < points.size(); ++i) {
            thin.draw(roundToDevice(points[i]), roundToDevice(points[(i + 1) % points.size()]));
        }
    }
}

/// Around the points of figures and a margin.
RECT boundsOf(const Figures& figures, double margin) {
    zolplatform::Bounds<PointD> bounds{{rasterLimit, rasterLimit}, {-rasterLimit, -rasterLimit}};
    for (const Figure& figure : figures) {
        for (const PointD p : figure.points) bounds.include(p);
    }
    const auto& [low, high] = bounds;
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

}  // namespace

void strokeFigures(const Pixels& to, const Area& clip, const Figures& figures, const Stroke& stroke) {
    if (clip.empty() || stroke.style == PS_NULL) return;
    isThin(stroke.width) ? strokeThin(to, clip, figures, stroke) : strokeWide(to, clip, figures, stroke);
}

}  // namespace zolgdi
