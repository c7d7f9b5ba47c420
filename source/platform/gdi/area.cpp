#include "platform/gdi/area.h"

#include "platform/saturate.h"

#include <algorithm>

namespace zolgdi {

namespace {

using zolplatform::saturated;

using Edges = std::vector<LONG>;  // left, right, left, right...

/// The horizontal edges of the rectangles that cover the band starting at `top`.
Edges edgesOfBand(const std::vector<RECT>& rects, LONG top, std::size_t& first) {
    while (first < rects.size() && rects[first].bottom <= top) ++first;
    Edges edges;
    for (std::size_t i = first; i < rects.size() && rects[i].top <= top; ++i) {
        edges.push_back(rects[i].left);
        edges.push_back(rects[i].right);
    }
    return edges;
}

/// Where the combination of two edge lists begins and ends.
Edges combineEdges(const Edges& a, const Edges& b, const Area::Operation& operation) {
    Edges out;
    std::size_t i = 0;
    std::size_t j = 0;
    bool inside = false;
    while (i < a.size() || j < b.size()) {
        const LONG x = j == b.size() || (i < a.size() && a[i] <= b[j]) ? a[i] : b[j];
        while (i < a.size() && a[i] == x) ++i;
        while (j < b.size() && b[j] == x) ++j;
        const bool now = operation(i % 2 != 0, j % 2 != 0);
        if (now != inside) out.push_back(x);
        inside = now;
    }
    return out;
}

Edges horizontalLines(const Area& first, const Area& second) {
    Edges lines;
    for (const Area* area : {&first, &second}) {
        for (const RECT& rect : area->rects()) {
            lines.push_back(rect.top);
            lines.push_back(rect.bottom);
        }
    }
    std::sort(lines.begin(), lines.end());
    lines.erase(std::unique(lines.begin(), lines.end()), lines.end());
    return lines;
}

/// True when the band in [lastBand, rects.size()) has these edges and ends where the new one begins.
bool continues(const std::vector<RECT>& rects, std::size_t lastBand, const Edges& edges, LONG top) {
    if ((rects.size() - lastBand) * 2 != edges.size() || rects[lastBand].bottom != top) return false;
    for (std::size_t k = 0; k < edges.size(); k += 2) {
        const RECT& rect = rects[lastBand + k / 2];
        if (rect.left != edges[k] || rect.right != edges[k + 1]) return false;
    }
    return true;
}

}  // namespace

Area Area::combine(const Area& first, const Area& second, const Operation& operation) {
    Area out;
    const Edges lines = horizontalLines(first, second);
    std::size_t lastBand = 0;
    std::size_t i = 0;
    std::size_t j = 0;
    for (std::size_t k = 0; k + 1 < lines.size(); ++k) {
        const Edges edges =
            combineEdges(edgesOfBand(first.rects_, lines[k], i), edgesOfBand(second.rects_, lines[k], j), operation);
        if (edges.empty()) continue;
        if (!out.empty() && continues(out.rects_, lastBand, edges, lines[k])) {
            for (std::size_t r = lastBand; r < out.rects_.size(); ++r) out.rects_[r].bottom = lines[k + 1];
            continue;
        }
        lastBand = out.rects_.size();
        for (std::size_t e = 0; e < edges.size(); e += 2) {
            out.rects_.push_back({edges[e], lines[k], edges[e + 1], lines[k + 1]});
        }
    }
    return out;
}

Area Area::intersected(const Area& other) const {
    if (rects_.size() == 1 && other.rects_.size() == 1) return Area(intersection(rects_[0], other.rects_[0]));
    return combine(*this, other, [](bool a, bool b) { return a && b; });
}

Area Area::moved(std::int64_t dx, std::int64_t dy) const {
    Area out;
    for (const RECT& rect : rects_) {
        const RECT at{saturated(rect.left + dx), saturated(rect.top + dy), saturated(rect.right + dx),
                      saturated(rect.bottom + dy)};
        if (!isEmpty(at)) out.rects_.push_back(at);
    }
    return out;
}

RECT Area::bounds() const {
    if (empty()) return {0, 0, 0, 0};
    RECT box = rects_.front();
    for (const RECT& rect : rects_) {
        box.left = std::min(box.left, rect.left);
        box.right = std::max(box.right, rect.right);
        box.bottom = std::max(box.bottom, rect.bottom);
    }
    return box;
}

bool Area::contains(LONG x, LONG y) const {
    return std::any_of(rects_.begin(), rects_.end(), [&](const RECT& rect) {
        return x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
    });
}

int Area::complexity() const {
    if (empty()) return NULLREGION;
    return rects_.size() == 1 ? SIMPLEREGION : COMPLEXREGION;
}

bool Area::operator==(const Area& other) const {
    return std::equal(rects_.begin(), rects_.end(), other.rects_.begin(), other.rects_.end(),
                      [](const RECT& a, const RECT& b) {
                          return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
                      });
}

}  // namespace zolgdi
