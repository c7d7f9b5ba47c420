#include "zolcs/mapping/colourmap.h"

#include "zolcs/ccsimageutils.h"

#include <limits>

namespace zolcs::mapping {

bool buildLevels(std::span<unsigned char> table, const Window& window, const ReportSite& widthRefused) {
    if (window.width < 1) return refuse(widthRefused, window.width);
    fillLevels(table, window);
    return true;
}

ColumnRange columnsInCircle(const CCsCircularShutterInfo& circle, int y) {
    constexpr int most = std::numeric_limits<int>::max();
    // The whole row goes in, so that what a pixel shows does not depend on the segment that it is mapped with.
    int first = std::numeric_limits<int>::min();
    int last = most;
    if (circle.present != 0 && !CCsImageUtils::findCircleScanLineIntersectionPoints(circle, y, first, last)) return {};
    return {first, last < most ? last + 1 : most};
}

}  // namespace zolcs::mapping
