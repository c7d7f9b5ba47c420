#include "zolcs/ccsellipse.h"

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsgroup.h"
#include "zolcs/ccsimageutils.h"
#include "zolcs/drawing/gdiscope.h"
#include "zolcs/drawing/modes.h"
#include "zolcs/drawing/placement.h"
#include "zolcs/support/clone.h"
#include "zolcs/support/conversion.h"
#include "zolcs/support/portablemath.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <utility>

using zolcs::OutputBounds;
using zolcs::OutputPoint;
using zolcs::saturated;
using zolcs::truncated;

/// Two opposite corners, left top first.
struct zolcs::OutputBounds {
    OutputPoint low;
    OutputPoint high;
};

namespace {

using DisplayRect = CCsRect<int, CCsPoint>;

constexpr int minimumSide = 10;
constexpr double pickBand = 0.25;

/// The upright rectangle around an ellipse whose axes end in the given points.
OutputBounds boundsOf(const std::array<OutputPoint, 4>& axes) {
    const OutputPoint centre = (axes[0] + axes[1]) * 0.5;
    const OutputPoint p = (axes[1] - axes[0]) * 0.5;
    const OutputPoint q = (axes[3] - axes[2]) * 0.5;
    const OutputPoint reach{std::sqrt(p.x * p.x + q.x * q.x), std::sqrt(p.y * p.y + q.y * q.y)};
    return {centre - reach, centre + reach};
}

DisplayRect rounded(const OutputBounds& bounds) {
    return {CCsImageUtils::roundOff(bounds.low.x), CCsImageUtils::roundOff(bounds.low.y),
            CCsImageUtils::roundOff(bounds.high.x), CCsImageUtils::roundOff(bounds.high.y)};
}

DisplayRect normalised(const DisplayRect& rect) {
    return {std::min(rect.x1, rect.x2), std::min(rect.y1, rect.y2), std::max(rect.x1, rect.x2),
            std::max(rect.y1, rect.y2)};
}

OutputBounds ordered(OutputPoint a, OutputPoint b) {
    return {{std::min(a.x, b.x), std::min(a.y, b.y)}, {std::max(a.x, b.x), std::max(a.y, b.y)}};
}

int halfOf(std::int64_t first, std::int64_t second) { return saturated(std::abs(second - first) / 2); }

int middleOf(std::int64_t first, std::int64_t second) { return static_cast<int>((first + second) / 2); }

/// Where the handles of a rectangle are: left, right, top, bottom.
std::array<CCsPoint, 4> handlesOf(int left, int top, int right, int bottom) {
    const int x = middleOf(left, right);
    const int y = middleOf(top, bottom);
    return {CCsPoint(left, y), CCsPoint(right, y), CCsPoint(x, top), CCsPoint(x, bottom)};
}

double squared(double value) { return value * value; }

double distance(OutputPoint a, OutputPoint b) { return std::sqrt(dot(b - a, b - a)); }

/// Maps a coordinate from one interval to the corresponding place of another; an interval without length only moves.
double stretched(double value, int low, int high, int newLow, int newHigh) {
    const double length = static_cast<double>(high) - low;
    const double newLength = static_cast<double>(newHigh) - newLow;
    return newLow + (value - low) * (length != 0.0 ? newLength / length : 1.0);
}

}  // namespace

CCsEllipse::CCsEllipse() = default;

CCsEllipse::CCsEllipse(CCs2dTrafo* trafo, const CCsPoint& first, const CCsPoint& second) {
    displayRect = normalised({first.x, first.y, second.x, second.y});
    displayAuthoritative = true;
    CCsEllipse::dspToImg(trafo);
}

CCsEllipse::CCsEllipse(CCs2dTrafo* trafo, const CCsPointDouble& p0, const CCsPointDouble& p1, const CCsPointDouble& p2,
                       const CCsPointDouble& p3)
    : angular(true), axisPoints{p0, p1, p2, p3} {
    setImageRectFromAxes_();
    CCsEllipse::imgToDsp(trafo);
}

CCsEllipse::CCsEllipse(const CCsEllipse& other) = default;

CCsEllipse::~CCsEllipse() = default;

CCsOverlay* CCsEllipse::NewInstance() { return zolcs::cloneOf(*this); }

CCsOverlay* CCsEllipse::pick(int x, int y) {
    const int a = halfOf(displayRect.x1, displayRect.x2);
    const int b = halfOf(displayRect.y1, displayRect.y2);
    if (a == 0 || b == 0) return nullptr;
    const double across = static_cast<double>(x) - displayRect.x1 - a;
    const double down = static_cast<double>(y) - displayRect.y1 - b;
    const double distance = across * across / squared(a) + down * down / squared(b);
    if (std::fabs(1.0 - distance) > pickBand) return nullptr;

    const auto handles = handlesOf(displayRect.x1, displayRect.y1, displayRect.x2, displayRect.y2);
    const auto hit = std::find_if(handles.begin(), handles.end(),
                                  [&](const CCsPoint& handle) { return CCsBox::pick(handle.x, handle.y, x, y) != 0; });
    grabbedHandle = static_cast<std::int32_t>(hit - handles.begin());  // noHandle when there is none
    return this;
}

void CCsEllipse::select(RECT& /*rect*/) { selected = 1; }

int CCsEllipse::unselect(RECT& /*rect*/) {
    selected = 0;
    return 0;
}

/// The axis points as they are displayed.
std::array<OutputPoint, 4> CCsEllipse::displayedAxes_(CCs2dTrafo& trafo) const {
    std::array<OutputPoint, 4> out;
    std::transform(std::begin(axisPoints), std::end(axisPoints), out.begin(), [&](const CCsPointDouble& point) {
        return zolcs::mapped(trafo, {point.x, point.y});
    });
    return out;
}

void CCsEllipse::setImageRectFromAxes_() {
    const auto point = [this](int i) { return OutputPoint{axisPoints[i].x, axisPoints[i].y}; };
    const OutputBounds bounds = boundsOf({point(0), point(1), point(2), point(3)});
    imageRect.setPosition(bounds.low.x, bounds.low.y, bounds.high.x, bounds.high.y);
}

/// Takes an angular ellipse's axes along when its display rectangle has changed.
void CCsEllipse::stretchAxes_(CCs2dTrafo& trafo, const DisplayRect& before) {
    const std::array<OutputPoint, 4> displayed = displayedAxes_(trafo);
    for (std::size_t i = 0; i < displayed.size(); ++i) {
        axisPoints[i] = CCsImageUtils::dspToImgD(
            trafo, {stretched(displayed[i].x, before.x1, before.x2, displayRect.x1, displayRect.x2),
                    stretched(displayed[i].y, before.y1, before.y2, displayRect.y1, displayRect.y2)});
    }
    setImageRectFromAxes_();
}

void CCsEllipse::joinArea_(CCsRegion* region) {
    if (region == nullptr) return;
    RECT area{};
    getSize(area, nullptr);
    region->join(CCsRegion(area.left, area.top, saturated(std::int64_t{area.right} - area.left),
                           saturated(std::int64_t{area.bottom} - area.top)));
}

/// Edges that have passed one another exchange their names, and the grabbed one keeps its handle.
void CCsEllipse::sortEdges_() {
    if (displayRect.x1 > displayRect.x2) {
        std::swap(displayRect.x1, displayRect.x2);
        std::swap(roundedOff.x1, roundedOff.x2);
        grabbedHandle = grabbedHandle == leftHandle ? rightHandle : leftHandle;
    }
    if (displayRect.y1 > displayRect.y2) {
        std::swap(displayRect.y1, displayRect.y2);
        std::swap(roundedOff.y1, roundedOff.y2);
        grabbedHandle = grabbedHandle == topHandle ? bottomHandle : topHandle;
    }
}

void CCsEllipse::move(CCs2dTrafo* trafo, int dx, int dy, int /*x*/, int /*y*/, CCsRegion* region) {
    if (!movable || (angular && trafo == nullptr)) return;
    joinArea_(region);
    const DisplayRect before = displayRect;
    const auto shift = [](std::int32_t& edge, int by) { edge = saturated(std::int64_t{edge} + by); };
    const std::int32_t handle = grabbedHandle;
    const bool whole = handle == noHandle;
    if (whole || handle == leftHandle) shift(displayRect.x1, dx);
    if (whole || handle == rightHandle) shift(displayRect.x2, dx);
    if (whole || handle == topHandle) shift(displayRect.y1, dy);
    if (whole || handle == bottomHandle) shift(displayRect.y2, dy);
    if (!whole) {
        sortEdges_();
        maintainMinimumSize();
    }
    displayAuthoritative = true;
    if (angular) stretchAxes_(*trafo, before);
    joinArea_(region);
}

void CCsEllipse::beginMove(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region) {
    const bool hit = pick(saturated(std::int64_t{x} - dx), saturated(std::int64_t{y} - dy)) != nullptr;
    if (!hit) grabbedHandle = noHandle;
    move(trafo, dx, dy, x, y, region);
}

void CCsEllipse::endMove(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region) {
    move(trafo, dx, dy, x, y, region);
    dspToImg(trafo);
    grabbedHandle = noHandle;
}

void CCsEllipse::maintainMinimumSize() {
    const auto grow = [](std::int32_t& edge) { edge = saturated(std::int64_t{edge} + minimumSide); };
    const bool wideEnough = displayRect.getWidth() >= minimumSide;
    if (wideEnough && displayRect.getHeight() >= minimumSide) return;
    if (wideEnough) {
        grow(displayRect.y2);
        imageRect.y2 += minimumSide;
        grabbedHandle = grabbedHandle != bottomHandle ? bottomHandle : topHandle;
    } else {
        grow(displayRect.x2);
        imageRect.x2 += minimumSide;
        grabbedHandle = grabbedHandle == leftHandle ? rightHandle : leftHandle;
    }
}

void CCsEllipse::setPts(CCs2dTrafo* trafo, const CCsPoint& first, const CCsPoint& second) {
    if (angular && trafo == nullptr) return;
    const DisplayRect before = displayRect;
    displayRect = normalised({first.x, first.y, second.x, second.y});
    roundedOff = {};
    displayAuthoritative = true;
    if (angular) stretchAxes_(*trafo, before);
    dspToImg(trafo);
}

void CCsEllipse::dspToImg(CCs2dTrafo* trafo) {
    if (trafo == nullptr) return;
    if (!angular) {  // whose axes have been taken along already
        const OutputBounds exact = exactDisplay_();
        const CCsPointDouble first = CCsImageUtils::dspToImgD(*trafo, {exact.low.x, exact.low.y});
        const CCsPointDouble second = CCsImageUtils::dspToImgD(*trafo, {exact.high.x, exact.high.y});
        imageRect.setPosition(first.x, first.y, second.x, second.y);
    }
    displayAuthoritative = false;
}

void CCsEllipse::imgToDsp(CCs2dTrafo* trafo) {
    outputBounds_({trafo, nullptr, CCS_MODE_BURN_IN});  // the mode that always takes the image coordinates
}

/// The display rectangle as it was before it was rounded to whole pixels.
OutputBounds CCsEllipse::exactDisplay_() const {
    return {{displayRect.x1 + roundedOff.x1, displayRect.y1 + roundedOff.y1},
            {displayRect.x2 + roundedOff.x2, displayRect.y2 + roundedOff.y2}};
}

/// Left top and right bottom in output coordinates; nothing where the ellipse has no place there. On the screen and
/// where it is burnt in, the display rectangle keeps in step.
std::optional<zolcs::OutputBounds> CCsEllipse::outputBounds_(const zolcs::Placement& placement) {
    if (angular) {
        std::array<OutputPoint, 4> axes;
        for (std::size_t i = 0; i < axes.size(); ++i) {
            const auto end = zolcs::placeImagePoint(placement, {axisPoints[i].x, axisPoints[i].y});
            if (!end) return std::nullopt;
            axes[i] = *end;
        }
        const OutputBounds bounds = boundsOf(axes);
        if (zolcs::keepsDisplayInStep(placement.mode)) displayRect = rounded(bounds);
        return bounds;
    }
    CCsPoint first = displayRect.getLeftTop();
    CCsPoint second = displayRect.getBottomRight();
    const OutputBounds before = exactDisplay_();
    CCsPointDouble firstExact(before.low.x, before.low.y);
    CCsPointDouble secondExact(before.high.x, before.high.y);
    const CCsPointDouble firstImage(imageRect.x1, imageRect.y1);
    const CCsPointDouble secondImage(imageRect.x2, imageRect.y2);
    const auto a = zolcs::place(placement, displayAuthoritative, {first, firstExact, firstImage});
    const auto b = zolcs::place(placement, displayAuthoritative, {second, secondExact, secondImage});
    if (!a || !b) return std::nullopt;
    displayRect = normalised({first.x, first.y, second.x, second.y});
    const OutputBounds exact = ordered({firstExact.x, firstExact.y}, {secondExact.x, secondExact.y});
    roundedOff.setPosition(exact.low.x - displayRect.x1, exact.low.y - displayRect.y1, exact.high.x - displayRect.x2,
                           exact.high.y - displayRect.y2);
    return ordered(*a, *b);
}

void CCsEllipse::render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode,
                        int /*width*/, int /*height*/, int /*offsetX*/, int /*offsetY*/) {
    if (!renderable) return;
    const auto bounds = outputBounds_({imageTrafo, outputTrafo, mode});
    if (!bounds || !isDrawable(bounds->low) || !isDrawable(bounds->high)) return;
    const RECT rect{truncated(bounds->low.x), truncated(bounds->low.y), truncated(bounds->high.x),
                    truncated(bounds->high.y)};
    renderEllipse(imageTrafo, rect, color, dc, mode);
}

void CCsEllipse::renderEllipse(CCs2dTrafo* trafo, const RECT& rect, unsigned long color, HDC dc, int mode) {
    if (!renderable) return;
    const auto lineColor = static_cast<COLORREF>(color);
    const zolcs::Pen pen(CreatePen(PS_SOLID, zolcs::ellipsePenWidth(mode), lineColor));
    const zolcs::Brush fill(filled ? CreateSolidBrush(fillColor != 0 ? fillColor : lineColor) : nullptr);
    const zolcs::Brush handles(CreateSolidBrush(lineColor));

    const zolcs::SelectGuard selectedPen(dc, pen.get());
    zolcs::SelectGuard selectedBrush(dc, fill ? fill.get() : GetStockObject(HOLLOW_BRUSH));
    if (!angular) {
        Ellipse(dc, rect.left, rect.top, rect.right, rect.bottom);
    } else if (trafo != nullptr) {
        drawTurned_(*trafo, dc);
    }
    selectedBrush.change(handles.get());
    renderSelectionHandles(rect, dc);
}

/// Draws an angular ellipse in a world of its own, whose origin is the first axis point and whose x axis runs along the
/// first axis. Its unit, a hundredth of an inch with y growing upwards, is deliberate.
void CCsEllipse::drawTurned_(CCs2dTrafo& trafo, HDC dc) const {
    const std::array<OutputPoint, 4> axes = displayedAxes_(trafo);
    const double along = distance(axes[0], axes[1]);
    const double across = distance(axes[2], axes[3]);
    double rotation = 0.0;
    int mirrored = 0;
    double scale = 1.0;
    double tx = 0.0;
    double ty = 0.0;
    trafo.getOperations(rotation, mirrored, scale, tx, ty);
    double theta = zolcs::portable::atan2(axisPoints[0].y - axisPoints[1].y, axisPoints[1].x - axisPoints[0].x) -
                   rotation * std::numbers::pi / 180.0;
    if (mirrored != 0) theta = std::numbers::pi - theta;
    if (!isDrawable(axes[0]) || !zolcs::isDrawable({along, across}) || !std::isfinite(theta)) return;

    const auto cosine = static_cast<FLOAT>(zolcs::portable::cos(theta));
    const auto sine = static_cast<FLOAT>(zolcs::portable::sin(theta));
    const XFORM rotated{cosine, sine, -sine, cosine, 0.0F, 0.0F};
    const int saved = SaveDC(dc);
    if (saved == 0) return;  // nothing that is drawn later may land in this world
    SetGraphicsMode(dc, GM_ADVANCED);
    SetViewportOrgEx(dc, truncated(axes[0].x), truncated(axes[0].y), nullptr);
    SetMapMode(dc, MM_LOENGLISH);
    SetWorldTransform(dc, &rotated);
    Ellipse(dc, 0, truncated(across * 0.5), truncated(along), truncated(across * -0.5));
    RestoreDC(dc, saved);
}

void CCsEllipse::renderSelectionHandles(const RECT& rect, HDC dc) const {
    if (selected == 0) return;
    for (const CCsPoint& handle : handlesOf(rect.left, rect.top, rect.right, rect.bottom)) {
        CCsBox::render(handle.x, handle.y, dc);
    }
}

void CCsEllipse::getSize(RECT& /*rect*/) {}

void CCsEllipse::setDicomPrintFlag(bool /*on*/) {}

void CCsEllipse::getSize(RECT& rect, HDC /*dc*/) {
    displayRect.getSize(rect);
    if (selected == 0) return;
    rect.left = saturated(std::int64_t{rect.left} - 3);
    rect.top = saturated(std::int64_t{rect.top} - 3);
    rect.right = saturated(std::int64_t{rect.right} + 2);
    rect.bottom = saturated(std::int64_t{rect.bottom} + 2);
}

void CCsEllipse::getEndPts(CCsPoint& first, CCsPoint& second) const {
    first = displayRect.getLeftTop();
    second = displayRect.getBottomRight();
}

void CCsEllipse::getImagePts(CCsPointDouble& first, CCsPointDouble& second) const {
    first.setPosition(imageRect.x1, imageRect.y1);
    second.setPosition(imageRect.x2, imageRect.y2);
}

void CCsEllipse::setColorFilled(unsigned long newColor) {
    fillColor = static_cast<std::uint32_t>(newColor);
    filled = true;
}
