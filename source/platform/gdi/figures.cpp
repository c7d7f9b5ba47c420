#include "platform/gdi/figures.h"

#include "platform/geometry.h"

#include <utility>

namespace zolgdi {

namespace {

using zolplatform::areWithin;
using zolplatform::clipped;

Figure flattened(const Figure& figure) {
    if (!figure.curved || figure.points.empty()) return figure;
    Figure out;
    out.closed = figure.closed;
    out.points.push_back(figure.points.front());
    const auto& p = figure.points;
    for (std::size_t i = 0; i + 3 < p.size(); i += 3) {
        zolplatform::appendEvenLines({p[i], p[i + 1], p[i + 2], p[i + 3]}, out.points);
    }
    return out;
}

void appendCut(const Figure& figure, double limit, Figures& out) {
    const std::size_t count = figure.points.size();
    for (std::size_t i = 0; i + (figure.closed ? 0 : 1) < count; ++i) {
        const auto line =
            clipped(zolplatform::Segment<PointD>{figure.points[i], figure.points[(i + 1) % count]}, limit);
        if (line) out.push_back({{line->start, line->end}, false, false});
    }
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
        if (areWithin(figure.points, limit)) {
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
        Figure cut = areWithin(figure.points, limit) ? figure : flattened(figure);
        cut.points = zolplatform::clippedPolygon(std::move(cut.points), limit);
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
    // From the middle of the right side towards the top.
    return {zolplatform::ellipseCurves<PointD>({corners[2], corners[3], corners[0], corners[1]}), true, true};
}

}  // namespace zolgdi
