#include "zolcs/ccsline.h"

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsgroup.h"
#include "zolcs/ccsimageutils.h"
#include "zolcs/drawing/figure.h"
#include "zolcs/drawing/placement.h"
#include "zolcs/drawing/reshape.h"
#include "zolcs/support/clone.h"
#include "zolcs/support/conversion.h"

#include <algorithm>
#include <cmath>

using zolcs::Outline;
using zolcs::OutputPoint;
using zolcs::saturated;

namespace {

using Vertices = std::vector<OutputPoint>;

constexpr double pickTolerance = 4.0;

template <typename Point>
std::unique_ptr<Point[]> copyOf(const std::unique_ptr<Point[]>& points, std::int32_t count) {
    if (points == nullptr) return nullptr;
    auto copy = std::make_unique<Point[]>(static_cast<std::size_t>(count));
    std::copy_n(points.get(), count, copy.get());
    return copy;
}

template <typename Number>
struct Target {
    Number& x;
    Number& y;
};

/// Copies the first points to the targets, as many as there are.
template <typename Number, typename Point>
void read(const std::unique_ptr<Point[]>& points, std::int32_t count, std::initializer_list<Target<Number>> targets) {
    if (points == nullptr) return;
    const Point* point = points.get();
    const Point* const end = point + count;
    for (const Target<Number>& target : targets) {
        if (point == end) return;
        target.x = point->x;
        target.y = point->y;
        ++point;
    }
}

}  // namespace

CCsLine::CCsLine() = default;

CCsLine::CCsLine(CCs2dTrafo* trafo, const CCsPointDouble* points, std::size_t count, int penStyle, bool normalised)
    : maxPointCount(saturated(static_cast<std::int64_t>(count))),
      pointCount(maxPointCount),
      penStyle(penStyle),
      normalised(normalised) {
    if (pointCount == 0) return;
    const auto size = static_cast<std::size_t>(pointCount);
    if (normalised) {
        normalisedPoints = std::make_unique<CCsPointDouble[]>(size);
        std::copy_n(points, size, normalisedPoints.get());
        return;
    }
    displayPoints = std::make_unique<CCsPoint[]>(size);
    displayPointsDouble = std::make_unique<CCsPointDouble[]>(size);
    imagePoints = std::make_unique<CCsPointDouble[]>(size);
    storeDisplayPoints_(points);
    if (trafo != nullptr) {
        CCsLine::dspToImg(trafo);
    } else {
        displayAuthoritative = 1;
    }
}

CCsLine::CCsLine(CCs2dTrafo* trafo, std::initializer_list<CCsPointDouble> points, int penStyle, bool normalised)
    : CCsLine(trafo, points.begin(), points.size(), penStyle, normalised) {
    maxPointCount = 4;
}

CCsLine::CCsLine(CCs2dTrafo* trafo, int x, int y, int penStyle)
    : CCsLine(trafo, {CCsPointDouble(x, y)}, penStyle, false) {}

CCsLine::CCsLine(CCs2dTrafo* trafo, int x1, int y1, int x2, int y2, int penStyle)
    : CCsLine(trafo, {CCsPointDouble(x1, y1), CCsPointDouble(x2, y2)}, penStyle, false) {}

CCsLine::CCsLine(CCs2dTrafo* trafo, int x1, int y1, int x2, int y2, int x3, int y3, int penStyle)
    : CCsLine(trafo, {CCsPointDouble(x1, y1), CCsPointDouble(x2, y2), CCsPointDouble(x3, y3)}, penStyle, false) {}

CCsLine::CCsLine(CCs2dTrafo* trafo, int x1, int y1, int x2, int y2, int x3, int y3, int x4, int y4, int penStyle)
    : CCsLine(trafo, {CCsPointDouble(x1, y1), CCsPointDouble(x2, y2), CCsPointDouble(x3, y3), CCsPointDouble(x4, y4)},
              penStyle, false) {}

CCsLine::CCsLine(CCs2dTrafo* trafo, const CCsPointDouble& first, const CCsPointDouble& second, int penStyle)
    : CCsLine(trafo, {first, second}, penStyle, false) {}

CCsLine::CCsLine(CCs2dTrafo* trafo, double x1, double y1, double x2, double y2, int penStyle, bool normalised)
    : CCsLine(trafo, {CCsPointDouble(x1, y1), CCsPointDouble(x2, y2)}, penStyle, normalised) {}

CCsLine::CCsLine(CCs2dTrafo* trafo, double x1, double y1, double x2, double y2, double x3, double y3, double x4,
                 double y4, int penStyle, bool ellipse, bool normalised)
    : CCsLine(trafo, {CCsPointDouble(x1, y1), CCsPointDouble(x2, y2), CCsPointDouble(x3, y3), CCsPointDouble(x4, y4)},
              penStyle, normalised) {
    this->ellipse = ellipse;
}

CCsLine::CCsLine(CCs2dTrafo* trafo, const std::vector<CCsPointDouble>& points, int penStyle, bool interpolated,
                 bool normalised, bool filled)
    : CCsLine(trafo, points.data(), points.size(), penStyle, normalised) {
    this->interpolated = interpolated ? 1 : 0;
    this->filled = filled;
}

CCsLine::CCsLine(const CCsLine& other)
    : CCsOverlay(other),
      maxPointCount(other.maxPointCount),
      pointCount(other.pointCount),
      displayPoints(copyOf(other.displayPoints, other.pointCount)),
      displayPointsDouble(copyOf(other.displayPointsDouble, other.pointCount)),
      normalisedPoints(copyOf(other.normalisedPoints, other.pointCount)),
      imagePoints(copyOf(other.imagePoints, other.pointCount)),
      closed(other.closed),
      displayAuthoritative(other.displayAuthoritative),
      penStyle(other.penStyle),
      ellipse(other.ellipse),
      interpolated(other.interpolated),
      normalised(other.normalised),
      filled(other.filled),
      fillColor(other.fillColor) {}

CCsLine::~CCsLine() = default;

CCsOverlay* CCsLine::NewInstance() { return zolcs::cloneOf(*this); }

/// Whether the point is within the tolerance of the segment between two display points, beyond its ends too.
bool CCsLine::pickSegment(int from, int to, int x, int y) const {
    const CCsPoint& start = displayPoints[static_cast<std::size_t>(from)];
    const CCsPoint& end = displayPoints[static_cast<std::size_t>(to)];
    const OutputPoint s{static_cast<double>(start.x), static_cast<double>(start.y)};
    const OutputPoint segment = OutputPoint{static_cast<double>(end.x), static_cast<double>(end.y)} - s;
    const OutputPoint way = OutputPoint{static_cast<double>(x), static_cast<double>(y)} - s;
    const double squared = dot(segment, segment);
    if (squared < 1e-8) return false;
    const double length = std::sqrt(squared);
    const double along = dot(way, segment) / length;
    const double across = (way.x * segment.y - way.y * segment.x) / length;
    return along >= -pickTolerance && along <= length + pickTolerance && std::fabs(across) <= pickTolerance;
}

CCsOverlay* CCsLine::pick(int x, int y) {
    if (groupPickFlag == 0 || displayPoints == nullptr) return nullptr;
    for (int i = 0; i + 1 < pointCount; ++i) {
        if (pickSegment(i, i + 1, x, y)) return this;
    }
    return closed != 0.0 && pickSegment(pointCount - 1, 0, x, y) ? this : nullptr;
}

void CCsLine::select() { selected = 1; }

int CCsLine::unselect() {
    selected = 0;
    return 0;
}

/// The last vertex whose handle holds the pointer's previous position (x - dx, y - dy); -1 for none.
int CCsLine::vertexAt_(int dx, int dy, int x, int y) const {
    if (displayPoints == nullptr) return -1;
    const int pointerX = saturated(std::int64_t{x} - dx);
    const int pointerY = saturated(std::int64_t{y} - dy);
    int vertex = pointCount - 1;
    while (vertex >= 0) {
        const CCsPoint& point = displayPoints[static_cast<std::size_t>(vertex)];
        if (CCsBox::pick(point.x, point.y, pointerX, pointerY) != 0) break;
        --vertex;
    }
    return vertex;
}

int CCsLine::pickVertex(int dx, int dy, int x, int y) { return selected != 0 && vertexAt_(dx, dy, x, y) >= 0 ? 1 : 0; }

/// Adds what is painted around a vertex to the area to repaint.
void CCsLine::joinArea_(int vertex, CCsRegion* region) const {
    if (region == nullptr) return;
    const CCsPoint& point = displayPoints[static_cast<std::size_t>(vertex)];
    if (selected != 0) {
        region->join(CCsRegion(saturated(std::int64_t{point.x} - 3), saturated(std::int64_t{point.y} - 3), 7, 7));
    } else {
        region->join(CCsRegion(point.x, point.y, 2, 2));
    }
}

/// Moves one vertex, or all of them for -1.
void CCsLine::shift_(int onlyVertex, int dx, int dy, CCsRegion* region) {
    displayAuthoritative = 1;
    for (int i = 0; i < pointCount; ++i) {
        joinArea_(i, region);
        if (onlyVertex < 0 || onlyVertex == i) {
            CCsPoint& point = displayPoints[static_cast<std::size_t>(i)];
            point.setPosition(saturated(std::int64_t{point.x} + dx), saturated(std::int64_t{point.y} + dy));
            CCsPointDouble& exact = displayPointsDouble[static_cast<std::size_t>(i)];
            exact.setPosition(exact.x + dx, exact.y + dy);
        }
        joinArea_(i, region);
    }
}

void CCsLine::move(CCs2dTrafo* /*trafo*/, int dx, int dy, int x, int y, CCsRegion* region) {
    if (!movable || displayPoints == nullptr) return;
    shift_(selected != 0 ? vertexAt_(dx, dy, x, y) : -1, dx, dy, region);
}

/// The corner that a drag holds, or -1. The shape's rules may put the corner elsewhere than the pointer is, so a drag
/// that goes on where it was keeps the corner that it has taken hold of, until dspToImg ends it.
int CCsLine::heldCorner_(int dx, int dy, int x, int y) {
    const int fromX = saturated(std::int64_t{x} - dx);
    const int fromY = saturated(std::int64_t{y} - dy);
    const bool goesOn = hold_.vertex >= 0 && hold_.pointerX == fromX && hold_.pointerY == fromY;
    if (!goesOn) {
        hold_.vertex = vertexAt_(dx, dy, x, y);
        if (hold_.vertex < 0) return -1;
        const CCsPointDouble& corner = displayPointsDouble[static_cast<std::size_t>(hold_.vertex)];
        hold_.offsetX = corner.x - fromX;
        hold_.offsetY = corner.y - fromY;
    }
    hold_.pointerX = x;
    hold_.pointerY = y;
    return hold_.vertex;
}

void CCsLine::reshape_(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region,
                       void (*shape)(zolcs::Corners&)) {
    const bool mayReshape = movable && displayPoints != nullptr && pointCount == 4 && selected != 0;
    const int corner = mayReshape ? heldCorner_(dx, dy, x, y) : -1;
    if (corner < 0) {
        // Not through the table: a host's figure may well do its own moving by one of the reshaping rules.
        CCsLine::move(trafo, dx, dy, x, y, region);
        return;
    }
    zolcs::Corners corners{{}, static_cast<std::size_t>(corner), {x + hold_.offsetX, y + hold_.offsetY}};
    for (std::size_t i = 0; i < 4; ++i) corners.points[i] = {displayPointsDouble[i].x, displayPointsDouble[i].y};
    shape(corners);
    displayAuthoritative = 1;
    for (std::size_t i = 0; i < 4; ++i) {
        joinArea_(static_cast<int>(i), region);
        const OutputPoint& point = corners.points[i];
        displayPointsDouble[i].setPosition(point.x, point.y);
        displayPoints[i].setPosition(CCsImageUtils::roundOff(point.x), CCsImageUtils::roundOff(point.y));
        joinArea_(static_cast<int>(i), region);
    }
}

void CCsLine::moveRectangle(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region) {
    reshape_(trafo, dx, dy, x, y, region, zolcs::reshapeRectangle);
}

void CCsLine::moveSquare(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region) {
    reshape_(trafo, dx, dy, x, y, region, zolcs::reshapeSquare);
}

void CCsLine::moveCircle(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region) {
    const bool centreDragged = pointCount == 2 && vertexAt_(dx, dy, x, y) == 0;
    if (centreDragged && movable) {
        shift_(-1, dx, dy, region);
    } else {
        reshape_(trafo, dx, dy, x, y, region, zolcs::reshapeCircle);
    }
}

void CCsLine::dspToImg(CCs2dTrafo* trafo) {
    if (displayPointsDouble != nullptr && imagePoints != nullptr) {
        if (trafo == nullptr) return;
        std::transform(displayPointsDouble.get(), displayPointsDouble.get() + pointCount, imagePoints.get(),
                       [&](const CCsPointDouble& point) { return CCsImageUtils::dspToImgD(*trafo, point); });
    }
    displayAuthoritative = 0;
    hold_ = Hold();  // the drag has ended
}

void CCsLine::imgToDsp(CCs2dTrafo* trafo) {
    const bool complete = displayPoints != nullptr && displayPointsDouble != nullptr && imagePoints != nullptr;
    if (trafo == nullptr || !complete) return;
    for (std::size_t i = 0; i < static_cast<std::size_t>(pointCount); ++i) {
        displayPointsDouble[i] = CCsImageUtils::imgToDspD(*trafo, imagePoints[i]);
        displayPoints[i].setPosition(CCsImageUtils::roundOff(displayPointsDouble[i].x),
                                     CCsImageUtils::roundOff(displayPointsDouble[i].y));
    }
}

bool CCsLine::transformToOutput(int index, CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, double& x, double& y,
                                int mode) {
    if (index < 0 || index >= pointCount) return false;
    const auto i = static_cast<std::size_t>(index);
    const zolcs::Placement placement{imageTrafo, outputTrafo, mode};
    const auto position = normalised ? zolcs::placeNormalised(placement, {normalisedPoints[i].x, normalisedPoints[i].y})
                                     : zolcs::place(placement, displayAuthoritative != 0,
                                                    {displayPoints[i], displayPointsDouble[i], imagePoints[i]});
    if (!position) return false;
    x = position->x;
    y = position->y;
    return true;
}

/// All that the ways to draw have in common; makeOutline makes the outline of the vertices, closed or not, or gives
/// none. Areas ask for theirs as an area.
void CCsLine::draw_(const Scene& scene, Outline (*makeOutline)(const Vertices&, bool closed, bool area)) {
    if (!renderable) return;
    Vertices vertices(static_cast<std::size_t>(pointCount));
    for (int i = 0; i < pointCount; ++i) {
        OutputPoint& vertex = vertices[static_cast<std::size_t>(i)];
        if (!transformToOutput(i, scene.imageTrafo, scene.outputTrafo, vertex.x, vertex.y, scene.mode)) return;
    }
    const zolcs::FigureStyle style{
        scene.mode,    static_cast<COLORREF>(scene.color), penStyle, filled, fillColor, shadow != 0, selected != 0,
        dicomPrintFlag};
    const Outline outline = makeOutline(vertices, closed != 0.0, style.isArea(vertices.size()));
    if (!outline.points.empty()) zolcs::drawFigure(scene.dc, style, outline, vertices);
}

void CCsLine::render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode, int width,
                     int height, int offsetX, int offsetY) {
    if (!renderable) return;
    if (interpolated != 0) {
        renderInterpolatedLine(imageTrafo, outputTrafo, color, dc, mode, width, height, offsetX, offsetY, false, true);
    } else if (ellipse) {
        renderEllipse(imageTrafo, outputTrafo, color, dc, mode, width, height, offsetX, offsetY, false, true);
    } else {
        draw_({imageTrafo, outputTrafo, color, dc, mode}, [](const Vertices& vertices, bool isClosed, bool area) {
            return zolcs::straightOutline(vertices, isClosed && !area);  // an area closes itself
        });
    }
}

void CCsLine::renderEllipse(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode,
                            int /*width*/, int /*height*/, int /*offsetX*/, int /*offsetY*/, bool /*flag1*/,
                            bool /*flag2*/) {
    draw_({imageTrafo, outputTrafo, color, dc, mode}, [](const Vertices& corners, bool, bool) {
        return corners.size() == 4 ? zolcs::ellipseOutline({corners[0], corners[1], corners[2], corners[3]})
                                   : Outline();
    });
}

void CCsLine::renderInterpolatedLine(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc,
                                     int mode, int /*width*/, int /*height*/, int /*offsetX*/, int /*offsetY*/,
                                     bool /*flag1*/, bool /*flag2*/) {
    draw_({imageTrafo, outputTrafo, color, dc, mode}, [](const Vertices& vertices, bool isClosed, bool area) {
        return zolcs::smoothOutline(vertices, isClosed || area);
    });
}

void CCsLine::getSize(RECT& rect) {
    if (displayPoints == nullptr) return;
    std::vector<CPoint> points;
    getEndPts(points);
    const RECT own = CCsImageUtils::getROIBoundingRect(points);
    const bool zero = rect.left == 0 && rect.top == 0 && rect.right == 0 && rect.bottom == 0;
    if (zero || rect.left > rect.right || rect.top > rect.bottom) {
        rect = own;
        return;
    }
    rect = {std::min(rect.left, own.left), std::min(rect.top, own.top), std::max(rect.right, own.right),
            std::max(rect.bottom, own.bottom)};
}

void CCsLine::setDicomPrintFlag(bool on) { dicomPrintFlag = on; }

void CCsLine::getEndPts(int& x1, int& y1, int& x2, int& y2) const {
    read<int>(displayPoints, pointCount, {{x1, y1}, {x2, y2}});
}

void CCsLine::getEndPts(int& x1, int& y1, int& x2, int& y2, int& x3, int& y3) const {
    read<int>(displayPoints, pointCount, {{x1, y1}, {x2, y2}, {x3, y3}});
}

void CCsLine::getEndPts(int& x1, int& y1, int& x2, int& y2, int& x3, int& y3, int& x4, int& y4) const {
    read<int>(displayPoints, pointCount, {{x1, y1}, {x2, y2}, {x3, y3}, {x4, y4}});
}

void CCsLine::getEndPts(std::vector<CPoint>& points) const {
    points.clear();
    if (displayPoints == nullptr) return;
    points.reserve(static_cast<std::size_t>(pointCount));
    std::for_each_n(displayPoints.get(), pointCount,
                    [&](const CCsPoint& point) { points.emplace_back(point.x, point.y); });
}

void CCsLine::getEndPts(double& x1, double& y1, double& x2, double& y2) const {
    read<double>(displayPointsDouble, pointCount, {{x1, y1}, {x2, y2}});
}

void CCsLine::getImagePts(double& x1, double& y1, double& x2, double& y2) const {
    read<double>(imagePoints, pointCount, {{x1, y1}, {x2, y2}});
}

void CCsLine::getImagePts(double& x1, double& y1, double& x2, double& y2, double& x3, double& y3) const {
    read<double>(imagePoints, pointCount, {{x1, y1}, {x2, y2}, {x3, y3}});
}

void CCsLine::getImagePts(double& x1, double& y1, double& x2, double& y2, double& x3, double& y3, double& x4,
                          double& y4) const {
    read<double>(imagePoints, pointCount, {{x1, y1}, {x2, y2}, {x3, y3}, {x4, y4}});
}

/// Ends a move that has not been ended by dspToImg.
void CCsLine::bringImagePointsUpToDate_(CCs2dTrafo* trafo) {
    if (displayAuthoritative != 0) dspToImg(trafo);
}

void CCsLine::getImagePts(CCs2dTrafo* trafo, double& x1, double& y1, double& x2, double& y2) {
    bringImagePointsUpToDate_(trafo);
    getImagePts(x1, y1, x2, y2);
}

void CCsLine::getImagePts(CCs2dTrafo* trafo, double& x1, double& y1, double& x2, double& y2, double& x3, double& y3) {
    bringImagePointsUpToDate_(trafo);
    getImagePts(x1, y1, x2, y2, x3, y3);
}

void CCsLine::getImagePts(CCs2dTrafo* trafo, double& x1, double& y1, double& x2, double& y2, double& x3, double& y3,
                          double& x4, double& y4) {
    bringImagePointsUpToDate_(trafo);
    getImagePts(x1, y1, x2, y2, x3, y3, x4, y4);
}

void CCsLine::getNormEndPts(double& x1, double& y1, double& x2, double& y2) const {
    read<double>(normalisedPoints, pointCount, {{x1, y1}, {x2, y2}});
}

void CCsLine::getNormEndPts(double& x1, double& y1, double& x2, double& y2, double& x3, double& y3) const {
    read<double>(normalisedPoints, pointCount, {{x1, y1}, {x2, y2}, {x3, y3}});
}

void CCsLine::getNormEndPts(double& x1, double& y1, double& x2, double& y2, double& x3, double& y3, double& x4,
                            double& y4) const {
    read<double>(normalisedPoints, pointCount, {{x1, y1}, {x2, y2}, {x3, y3}, {x4, y4}});
}

void CCsLine::storeDisplayPoints_(const CCsPointDouble* points) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(pointCount); ++i) {
        displayPoints[i].setPosition(zolcs::truncated(points[i].x), zolcs::truncated(points[i].y));
        displayPointsDouble[i] = points[i];
    }
}

void CCsLine::setDisplayPoints_(CCs2dTrafo* trafo, std::initializer_list<CCsPointDouble> points) {
    if (displayPoints == nullptr || points.size() != static_cast<std::size_t>(pointCount)) return;
    storeDisplayPoints_(points.begin());
    if (trafo != nullptr) {
        dspToImg(trafo);
    } else {
        displayAuthoritative = 1;
    }
}

void CCsLine::setPts(CCs2dTrafo* trafo, int x1, int y1, int x2, int y2) {
    setDisplayPoints_(trafo, {CCsPointDouble(x1, y1), CCsPointDouble(x2, y2)});
}

void CCsLine::setPts(CCs2dTrafo* trafo, int x1, int y1, int x2, int y2, int x3, int y3) {
    setDisplayPoints_(trafo, {CCsPointDouble(x1, y1), CCsPointDouble(x2, y2), CCsPointDouble(x3, y3)});
}

void CCsLine::setPts(CCs2dTrafo* trafo, int x1, int y1, int x2, int y2, int x3, int y3, int x4, int y4) {
    setDisplayPoints_(trafo,
                      {CCsPointDouble(x1, y1), CCsPointDouble(x2, y2), CCsPointDouble(x3, y3), CCsPointDouble(x4, y4)});
}

void CCsLine::setNormalisedPoints_(CCs2dTrafo* trafo, std::initializer_list<CCsPointDouble> points) {
    if (normalisedPoints == nullptr || points.size() != static_cast<std::size_t>(pointCount)) return;
    std::copy(points.begin(), points.end(), normalisedPoints.get());
    if (trafo != nullptr) dspToImg(trafo);
}

void CCsLine::setDspPoints(CCs2dTrafo* trafo, double x1, double y1, double x2, double y2) {
    const std::initializer_list<CCsPointDouble> points{CCsPointDouble(x1, y1), CCsPointDouble(x2, y2)};
    if (normalised) {
        setNormalisedPoints_(trafo, points);
    } else {
        setDisplayPoints_(trafo, points);
    }
}

void CCsLine::setImgPts(CCs2dTrafo* trafo, double x1, double y1, double x2, double y2) {
    if (imagePoints == nullptr || pointCount != 2) return;
    imagePoints[0].setPosition(x1, y1);
    imagePoints[1].setPosition(x2, y2);
    displayAuthoritative = 0;
    imgToDsp(trafo);
}

void CCsLine::setNormPts(CCs2dTrafo* trafo, double x1, double y1, double x2, double y2, double x3, double y3, double x4,
                         double y4) {
    setNormalisedPoints_(
        trafo, {CCsPointDouble(x1, y1), CCsPointDouble(x2, y2), CCsPointDouble(x3, y3), CCsPointDouble(x4, y4)});
}

void CCsLine::setShadow(bool on) { shadow = on ? 1 : 0; }

void CCsLine::setPenStyle(int style) { penStyle = style; }

void CCsLine::setColorFilled(unsigned long newColor) {
    fillColor = static_cast<std::uint32_t>(newColor);
    filled = fillColor != 0;
}

void CCsLine::close() { closed = 1.0; }
