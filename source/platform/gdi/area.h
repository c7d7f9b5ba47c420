// Sets of pixels as lists of rectangles.
#pragma once

#include "platform/gdi/rectangle.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace zolgdi {

/// Disjoint rectangles in bands: sorted by top, then by left; rectangles of one band have the same top and bottom, and
/// bands do not overlap. Right and bottom are exclusive.
class Area {
public:
    Area() = default;
    explicit Area(const RECT& rect) {
        if (!isEmpty(rect)) rects_.push_back(rect);
    }

    using Operation = std::function<bool(bool inFirst, bool inSecond)>;
    static Area combine(const Area& first, const Area& second, const Operation& operation);
    [[nodiscard]] Area intersected(const Area& other) const;
    /// Moved; what would leave the coordinates' range is cut off.
    [[nodiscard]] Area moved(std::int64_t dx, std::int64_t dy) const;

    [[nodiscard]] const std::vector<RECT>& rects() const { return rects_; }
    [[nodiscard]] bool empty() const { return rects_.empty(); }
    /// All zero when the area is empty.
    [[nodiscard]] RECT bounds() const;
    [[nodiscard]] bool contains(LONG x, LONG y) const;
    /// NULLREGION, SIMPLEREGION or COMPLEXREGION.
    [[nodiscard]] int complexity() const;
    bool operator==(const Area& other) const;

private:
    std::vector<RECT> rects_;
};

}  // namespace zolgdi
