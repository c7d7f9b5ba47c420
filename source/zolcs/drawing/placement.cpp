#include "zolcs/drawing/placement.h"

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsimageutils.h"

#include <cmath>

namespace zolcs {

OutputPoint mapped(CCs2dTrafo& trafo, OutputPoint point) {
    const CCsPointDouble out = CCsImageUtils::imgToDspD(trafo, {point.x, point.y});
    return {out.x, out.y};
}

std::optional<OutputPoint> place(const Placement& placement, bool displayAuthoritative, Vertex vertex) {
    if (!isRenderMode(placement.mode)) return std::nullopt;
    const bool printer = isForPrinter(placement.mode);
    const OutputPoint shown{static_cast<double>(vertex.shown.x), static_cast<double>(vertex.shown.y)};
    if (placement.mode == screenMode && displayAuthoritative) return shown;
    const bool fromDisplay = printer && displayAuthoritative;
    CCs2dTrafo* const trafo = fromDisplay ? placement.output : placement.image;
    if (trafo == nullptr) return std::nullopt;
    const OutputPoint position = mapped(*trafo, fromDisplay ? shown : OutputPoint{vertex.image.x, vertex.image.y});
    if (printer) return position;

    vertex.shown.setPosition(CCsImageUtils::roundOff(position.x), CCsImageUtils::roundOff(position.y));
    vertex.exact.setPosition(position.x, position.y);
    // Rounded like the stored integers, but good beyond their range, too: a line keeps its direction.
    return OutputPoint{std::round(position.x), std::round(position.y)};
}

std::optional<OutputPoint> placeNormalised(const Placement& placement, OutputPoint fractions) {
    if (placement.image == nullptr) return std::nullopt;
    const CSize size = placement.image->getDstSize();
    return OutputPoint{size.cx * fractions.x, size.cy * fractions.y};
}

}  // namespace zolcs
