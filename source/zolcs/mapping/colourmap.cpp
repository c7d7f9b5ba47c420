#include "zolcs/mapping/colourmap.h"

#include "zolcs/ccsimageutils.h"

#include <limits>

namespace zolcs::mapping {

bool buildLevels(std::span<unsigned char> table, const Window& window, const ReportSite& widthRefused) {
    if (window.width < 1) return fail(widthRefused, window.width, 0) != 0;
    fillLevels(table, window);
    return true;
}

Columns columnsInCircle(const CCsCircularShutterInfo& circle, int line) {
    // The whole line goes in, so that what a pixel shows does not depend on the segment that it is mapped with.
    Columns columns = {std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};
    const bool shown = circle.present == 0 ||
                       CCsImageUtils::findCircleScanLineIntersectionPoints(circle, line, columns.first, columns.last);
    return shown ? columns : Columns{0, -1};
}

}  // namespace zolcs::mapping
