// Which pixels lie inside polygons and ellipses, as runs in rows.
#pragma once

#include "platform/gdi/canvas.h"
#include "platform/gdi/rectangle.h"

#include <cstdint>
#include <functional>
#include <utility>

namespace zolgdi {

/// What is done with a run of pixels, whose right end is exclusive.
using RunAction = std::function<void(LONG y, LONG left, LONG right)>;

/// Goes through the pixels inside figures, which are closed for that, row by row within [top, bottom). A pixel is
/// inside when its middle is; of those on an edge the left and upper ones are. `fillMode` is ALTERNATE or WINDING.
void scanSurface(const Figures& figures, int fillMode, LONG top, LONG bottom, const RunAction& action);

/// Runs of an ellipse's pixels: those whose middles lie in the ellipse that touches the rectangle's sides.
class EllipseRows {
public:
    explicit EllipseRows(const RECT& box)
        : box_(box), width_(std::int64_t{box.right} - box.left), height_(std::int64_t{box.bottom} - box.top) {}

    /// Left and right end (exclusive) of row y; empty outside.
    [[nodiscard]] std::pair<LONG, LONG> row(LONG y) const;

private:
    RECT box_;
    std::int64_t width_;
    std::int64_t height_;
};

}  // namespace zolgdi
