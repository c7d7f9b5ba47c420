#include "viewing/display/magnifier.h"

#include "viewing/display/image_pixels.h"
#include "viewing/display/report_log.h"
#include "viewing/display/resampling.h"
#include "viewing/display/view.h"
#include "viewing/image/refusal.h"
#include "zolcs/ccsbilinear.h"
#include "zolcs/ccsframe.h"
#include "zolcs/ccsimageutils.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace viewing {

namespace {

/// The view through the glass: larger than the picture's by the factor, with the image's point under the middle pixel
/// of the glass where it was.
CCs2dTrafo lensOf(CCs2dTrafo& view, const CCsRaster& shown, const CCsFrame& lens, const Magnifier& glass) {
    constexpr double half = 0.5;
    const CCsPointDouble point = CCsImageUtils::dspToImgD(view, CCsPointDouble(glass.x + half, glass.y + half));
    double scale = 1.0;
    view.getDspScaleFactor(scale);

    // Both views differ in how much of the display one unit of scale fills; measuring it needs no rule for that.
    CCs2dTrafo result(view);
    result.setFitIntoSegementMode(false);
    result.setSizes(shown, lens);
    double ownScale = 1.0;
    result.getDspScaleFactor(ownScale);
    result.scale2dMatrix(scale * glass.factor / ownScale);

    setPan(result, 0.0, 0.0);
    const CCsPointDouble shownAt = CCsImageUtils::imgToDspD(result, point);
    setPan(result, glass.radius + half - shownAt.x, glass.radius + half - shownAt.y);
    return result;
}

/// A display pixel of which `share` comes from the second one.
std::uint32_t blended(std::uint32_t below, std::uint32_t above, double share) {
    std::uint32_t result = 0;
    for (unsigned shift = 0; shift < 24; shift += 8) {
        const double from = (below >> shift) & 0xFFU;
        const double to = (above >> shift) & 0xFFU;
        result |= static_cast<std::uint32_t>(std::lround(from + (to - from) * share)) << shift;
    }
    return result;
}

void blend(CCsFrame& frame, CCsFrame& lens, const Magnifier& glass) {
    const ImagePixels<std::uint32_t> picture(frame);
    const ImagePixels<std::uint32_t> magnified(lens);
    const int top = std::max(glass.y - glass.radius, 0);
    const int bottom = std::min(glass.y + glass.radius, frame.getHeight() - 1);
    const int left = std::max(glass.x - glass.radius, 0);
    const int right = std::min(glass.x + glass.radius, frame.getWidth() - 1);
    for (int y = top; y <= bottom; ++y) {
        for (int x = left; x <= right; ++x) {
            constexpr double half = 0.5;
            const double share = glass.radius + half - std::hypot(x - glass.x, y - glass.y);
            if (share <= 0.0) continue;
            const std::uint32_t above = magnified.row(y - glass.y + glass.radius)[x - glass.x + glass.radius];
            std::uint32_t& pixel = picture.row(y)[x];
            pixel = blended(pixel, above, std::min(share, 1.0));
        }
    }
}

}  // namespace

void magnify(CCsRaster& shown, CCsFrame& frame, CCs2dTrafo view, const Magnifier& glass, int background) {
    const int side = 2 * glass.radius + 1;
    CCsFrame lens(side, side);
    if (lens.init() != 255) throw Refusal("not enough memory for the magnifier");
    CCs2dTrafo through = lensOf(view, shown, lens, glass);
    CCsBilinear().bilinearRgb8Rgb8_ForMagicGlass(shown, lens, through, backgroundPixel(background));
    ReportLog::check();
    blend(frame, lens, glass);
}

}  // namespace viewing
