#include "platform/gdi/figures.h"

#include <algorithm>
#include <cmath>

namespace zolgdi {

namespace {

double distance(PointD a, PointD b) { return std::hypot(b.x - a.x, b.y - a.y); }

PointD between(PointD a, PointD b, double t) { return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t}; }

/// Appends the curve from p[0] to p[3] without its first point.
void flattenCurve(const PointD* p, std::vector<PointD>& out) {
    const bool straight = p[1] == p[0] && p[2] == p[3];
    if (straight) {
        out.push_back(p[3]);
        return;
    }
    const double length = distance(p[0], p[1]) + distance(p[1], p[2]) + distance(p[2], p[3]);
    constexpr double pixelsPerPiece = 4.0;
    constexpr double most = 512.0;
    const int pieces = static_cast<int>(std::clamp(length / pixelsPerPiece, 4.0, most));  // a NaN gives 4
    for (int i = 1; i < pieces; ++i) {
        const double t = static_cast<double>(i) / pieces;
        const double s = 1.0 - t;
        const double b0 = s * s * s;
        const double b1 = 3.0 * s * s * t;
        const double b2 = 3.0 * s * t * t;
        const double b3 = t * t * t;
        out.push_back({b0 * p[0].x + b1 * p[1].x + b2 * p[2].x + b3 * p[3].x,
                       b0 * p[0].y + b1 * p[1].y + b2 * p[2].y + b3 * p[3].y});
    }
    out.push_back(p[3]);
}

Figure flattened(const Figure& figure) {
    if (!figure.curved || figure.points.empty()) return figure;
    Figure out;
    out.closed = figure.closed;
    out.points.push_back(figure.points.front());
    for (std::size_t i = 0; i + 3 < figure.points.size(); i += 3) flattenCurve(&figure.points[i], out.points);
    return out;
}

bool isWithin(const Figure& figure, double limit) {
    return std::all_of(figure.points.begin(), figure.points.end(),
                       [&](PointD p) { return std::fabs(p.x) <= limit && std::fabs(p.y) <= limit; });
}

/// Cuts the line to the box; false when nothing is left.
bool cutLine(PointD& a, PointD& b, double limit) {
    double first = 0.0;
    double last = 1.0;
    const auto cut = [&](double from, double step) {
        for (const double side : {-1.0, 1.0}) {
            const double room = limit - side * from;
            const double pace = side * step;
            if (pace > 0.0) {
                last = std::min(last, room / pace);
            } else if (pace < 0.0) {
                first = std::max(first, room / pace);
            } else if (!(room >= 0.0)) {
                last = -1.0;
            }
        }
    };
    cut(a.x, b.x - a.x);
    cut(a.y, b.y - a.y);
    if (!(first <= last)) return false;
    const PointD start = a;
    a = between(start, b, first);
    b = between(start, b, last);
    return true;
}

void appendCut(const Figure& figure, double limit, Figures& out) {
    const std::size_t count = figure.points.size();
    for (std::size_t i = 0; i + (figure.closed ? 0 : 1) < count; ++i) {
        PointD a = figure.points[i];
        PointD b = figure.points[(i + 1) % count];
        if (cutLine(a, b, limit)) out.push_back({{a, b}, false, false});
    }
}

/// The part of the surface where inside(p) is at least 0; inside is a distance from a straight line.
template <typename Inside>
std::vector<PointD> cutSurface(const std::vector<PointD>& points, const Inside& inside) {
    std::vector<PointD> out;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const PointD a = points[i];
        const PointD b = points[(i + 1) % points.size()];
        const double da = inside(a);
        const double db = inside(b);
        if (da >= 0.0) out.push_back(a);
        if ((da >= 0.0) != (db >= 0.0)) out.push_back(between(a, b, da / (da - db)));
    }
    return out;
}

}  // namespace

Figures flattened(const Figures& figures) {
    Figures out;
    out.reserve(figures.size());
    for (const Figure& figure : figures) out.push_back(flattened(figure));
    return out;
}

Figures linesWithin(const Figures& figures, double limit) {
    Figures out;
    for (const Figure& figure : figures) {
        if (isWithin(figure, limit)) {
            out.push_back(figure);
        } else {
            appendCut(flattened(figure), limit, out);
        }
    }
    return out;
}

Figures surfacesWithin(const Figures& figures, double limit) {
    Figures out;
    for (const Figure& figure : figures) {
        const bool within = isWithin(figure, limit);
        Figure cut = within ? figure : flattened(figure);
        if (!within) {
            cut.points = cutSurface(cut.points, [&](PointD p) { return p.x + limit; });
            cut.points = cutSurface(cut.points, [&](PointD p) { return limit - p.x; });
            cut.points = cutSurface(cut.points, [&](PointD p) { return p.y + limit; });
            cut.points = cutSurface(cut.points, [&](PointD p) { return limit - p.y; });
        }
        cut.closed = true;
        out.push_back(std::move(cut));
    }
    return out;
}

Corners cornersOf(const RECT& rect) {
    const double left = rect.left;
    const double top = rect.top;
    const double right = rect.right - 1.0;
    const double bottom = rect.bottom - 1.0;
    return {{{right, top}, {left, top}, {left, bottom}, {right, bottom}}};
}

Figure ellipseFigure(const Corners& corners) {
    constexpr double kappa = 0.5522847498307936;  // how far a quarter circle's handles reach
    const auto middle = [&](std::size_t i) { return between(corners[(i + 3) % 4], corners[i % 4], 0.5); };
    Figure figure;
    figure.curved = true;
    figure.closed = true;
    figure.points.push_back(middle(0));
    for (std::size_t i = 0; i < 4; ++i) {
        const PointD next = middle(i + 1);
        figure.points.push_back(between(middle(i), corners[i], kappa));
        figure.points.push_back(between(next, corners[i], kappa));
        figure.points.push_back(next);
    }
    return figure;
}

}  // namespace zolgdi
