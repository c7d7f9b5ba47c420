#include "zolcs/drawing/placement.h"

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsimageutils.h"
#include "zolcs/drawing/modes.h"
#include "zolcs/support/conversion.h"

#include <cmath>

namespace zolcs {

namespace {

/// An output position before it is rounded.
struct Place {
    OutputPoint position;
    bool fromImage = false;
};

std::optional<Place> placeOf(const Placement& placement, bool displayCounts, OutputPoint shown, OutputPoint image) {
    if (!isRenderMode(placement.mode)) return std::nullopt;
    const bool fromImage = !displayCounts || placement.mode == CCS_MODE_BURN_IN;
    if (!fromImage && placement.mode == CCS_MODE_SCREEN) return Place{shown, false};
    CCs2dTrafo* const trafo = fromImage ? placement.image : placement.output;
    if (trafo == nullptr) return std::nullopt;
    return Place{mapped(*trafo, fromImage ? image : shown), fromImage};
}

}  // namespace

OutputPoint mapped(CCs2dTrafo& trafo, OutputPoint point) {
    const CCsPointDouble out = CCsImageUtils::imgToDspD(trafo, {point.x, point.y});
    return {out.x, out.y};
}

std::optional<OutputPoint> place(const Placement& placement, bool displayCounts, Vertex vertex) {
    const OutputPoint shown{static_cast<double>(vertex.shown.x), static_cast<double>(vertex.shown.y)};
    const auto found = placeOf(placement, displayCounts, shown, {vertex.image.x, vertex.image.y});
    if (!found) return std::nullopt;
    const OutputPoint position = found->position;
    if (!found->fromImage || !keepsDisplayInStep(placement.mode)) return position;
    vertex.shown.setPosition(CCsImageUtils::roundOff(position.x), CCsImageUtils::roundOff(position.y));
    vertex.exact.setPosition(position.x, position.y);
    // Rounded like the stored integers, but valid beyond their range, too, so that a line keeps its direction.
    return OutputPoint{std::round(position.x), std::round(position.y)};
}

std::optional<OutputPoint> place(const Placement& placement, bool displayCounts, Anchor anchor) {
    const OutputPoint shown{static_cast<double>(anchor.shownX), static_cast<double>(anchor.shownY)};
    const auto found = placeOf(placement, displayCounts, shown, anchor.image);
    if (!found) return std::nullopt;
    const OutputPoint position = found->position;
    if (!found->fromImage || placement.mode != CCS_MODE_SCREEN) return position;
    anchor.shownX = truncated(position.x);
    anchor.shownY = truncated(position.y);
    // Truncated like the stored integers, but valid beyond their range, too.
    return OutputPoint{std::trunc(position.x), std::trunc(position.y)};
}

std::optional<OutputPoint> placeImagePoint(const Placement& placement, OutputPoint image) {
    const auto found = placeOf(placement, false, {}, image);
    return found ? std::optional(found->position) : std::nullopt;
}

std::optional<OutputPoint> placeNormalised(const Placement& placement, OutputPoint fractions) {
    if (placement.image == nullptr) return std::nullopt;
    const CSize size = placement.image->getDstSize();
    return OutputPoint{size.cx * fractions.x, size.cy * fractions.y};
}

}  // namespace zolcs
