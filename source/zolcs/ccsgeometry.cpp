#include "zolcs/ccsgeometry.h"

#include "zolcs/support/conversion.h"

#include <algorithm>
#include <cstdlib>

namespace {

using zolcs::saturated;

std::int32_t distance(std::int32_t a, std::int32_t b) { return saturated(std::abs(std::int64_t{b} - a)); }

/// One axis of a region: where it starts and how far it reaches.
struct Extent {
    std::int32_t start;
    std::int32_t length;
};

Extent between(std::int64_t low, std::int64_t high) { return {saturated(low), saturated(high - saturated(low))}; }

Extent normalised(std::int32_t start, std::int32_t length) {
    const std::int64_t end = std::int64_t{start} + length;
    return between(std::min<std::int64_t>(start, end), std::max<std::int64_t>(start, end));
}

Extent joined(Extent a, Extent b) {
    return between(std::min(a.start, b.start),
                   std::max(std::int64_t{a.start} + a.length, std::int64_t{b.start} + b.length));
}

}  // namespace

CCsPoint::~CCsPoint() = default;

void CCsPoint::setPosition(int newX, int newY) {
    x = newX;
    y = newY;
}

CCsPointDouble::~CCsPointDouble() = default;

void CCsPointDouble::setPosition(double newX, double newY) {
    x = newX;
    y = newY;
}

CCsRect<int, CCsPoint>::~CCsRect() = default;

void CCsRect<int, CCsPoint>::setPosition(int newX1, int newY1, int newX2, int newY2) {
    x1 = newX1;
    y1 = newY1;
    x2 = newX2;
    y2 = newY2;
}

CCsPoint CCsRect<int, CCsPoint>::getLeftTop() const { return {std::min(x1, x2), std::min(y1, y2)}; }

CCsPoint CCsRect<int, CCsPoint>::getBottomRight() const { return {std::max(x1, x2), std::max(y1, y2)}; }

int CCsRect<int, CCsPoint>::getWidth() const { return distance(x1, x2); }

int CCsRect<int, CCsPoint>::getHeight() const { return distance(y1, y2); }

void CCsRect<int, CCsPoint>::getSize(tagRECT& rect) const {
    rect.left = std::min(x1, x2);
    rect.top = std::min(y1, y2);
    rect.right = std::max(x1, x2);
    rect.bottom = std::max(y1, y2);
}

CCsRect<double, CCsPointDouble>::~CCsRect() = default;

void CCsRect<double, CCsPointDouble>::setPosition(double newX1, double newY1, double newX2, double newY2) {
    x1 = newX1;
    y1 = newY1;
    x2 = newX2;
    y2 = newY2;
}

CCsPointDouble CCsRect<double, CCsPointDouble>::getLeftTop() const { return {std::min(x1, x2), std::min(y1, y2)}; }

CCsPointDouble CCsRect<double, CCsPointDouble>::getBottomRight() const { return {std::max(x1, x2), std::max(y1, y2)}; }

CCsRegion::CCsRegion(int x, int y, int w, int h) { set(x, y, w, h); }

CCsRegion::~CCsRegion() = default;

void CCsRegion::set(int x, int y, int w, int h) {
    const Extent across = normalised(x, w);
    const Extent down = normalised(y, h);
    left = across.start;
    width = across.length;
    top = down.start;
    height = down.length;
}

void CCsRegion::join(const CCsRegion& other) {
    if (width == 0 && height == 0) {
        *this = other;
        return;
    }
    if (other.width < 1 && other.height < 1) return;
    const Extent across = joined({left, width}, {other.left, other.width});
    const Extent down = joined({top, height}, {other.top, other.height});
    left = across.start;
    width = across.length;
    top = down.start;
    height = down.length;
}
