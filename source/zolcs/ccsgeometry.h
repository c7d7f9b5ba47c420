#pragma once

#include "zolcs/ccsexport.h"

#include <cstdint>

/// An integer point, x to the right and y down.
class ZOLWEBCS_API CCsPoint {
public:
    CCsPoint() = default;
    CCsPoint(int x, int y) : x(x), y(y) {}
    CCsPoint(const CCsPoint&) = default;
    CCsPoint& operator=(const CCsPoint&) = default;
    virtual ~CCsPoint();

    void setPosition(int newX, int newY);

    std::int32_t x = 0;
    std::int32_t y = 0;
};

/// A point in double precision, x to the right and y down.
class ZOLWEBCS_API CCsPointDouble {
public:
    CCsPointDouble() = default;
    CCsPointDouble(double x, double y) : x(x), y(y) {}
    CCsPointDouble(const CCsPointDouble&) = default;
    CCsPointDouble& operator=(const CCsPointDouble&) = default;
    virtual ~CCsPointDouble();

    void setPosition(double newX, double newY);

    double x = 0.0;
    double y = 0.0;
};

/// A rectangle given by two opposite corners, kept as they were given.
template <typename Number, typename Point>
class CCsRect;

/// Integer corners in the caller's space.
template <>
class ZOLWEBCS_API CCsRect<int, CCsPoint> {
public:
    CCsRect() = default;
    CCsRect(int x1, int y1, int x2, int y2) : x1(x1), y1(y1), x2(x2), y2(y2) {}
    CCsRect(const CCsRect&) = default;
    CCsRect& operator=(const CCsRect&) = default;
    virtual ~CCsRect();

    void setPosition(int newX1, int newY1, int newX2, int newY2);

    /// The smaller x and the smaller y.
    [[nodiscard]] CCsPoint getLeftTop() const;

    /// The larger x and the larger y; a corner like any other, neither inclusive nor exclusive.
    [[nodiscard]] CCsPoint getBottomRight() const;

    /// |x2 - x1|, limited to the largest int.
    [[nodiscard]] int getWidth() const;

    /// |y2 - y1|, limited to the largest int.
    [[nodiscard]] int getHeight() const;

    /// Sets all four edges of `rect` from the ordered corners.
    void getSize(tagRECT& rect) const;

    std::int32_t x1 = 0;
    std::int32_t y1 = 0;
    std::int32_t x2 = 0;
    std::int32_t y2 = 0;
};

/// Corners in double precision in the caller's space.
template <>
class ZOLWEBCS_API CCsRect<double, CCsPointDouble> {
public:
    CCsRect() = default;
    CCsRect(double x1, double y1, double x2, double y2) : x1(x1), y1(y1), x2(x2), y2(y2) {}
    CCsRect(const CCsRect&) = default;
    CCsRect& operator=(const CCsRect&) = default;
    virtual ~CCsRect();

    void setPosition(double newX1, double newY1, double newX2, double newY2);

    /// The smaller x and the smaller y.
    [[nodiscard]] CCsPointDouble getLeftTop() const;

    /// The larger x and the larger y.
    [[nodiscard]] CCsPointDouble getBottomRight() const;

    double x1 = 0.0;
    double y1 = 0.0;
    double x2 = 0.0;
    double y2 = 0.0;
};

/// An integer area that grows by union, such as the area to repaint. It is always normalised: no extent is negative,
/// and two extents of 0 mean empty. Right and bottom (left + width, top + height) are exclusive. Edges and extents that
/// do not fit an int are limited to its range.
class ZOLWEBCS_API CCsRegion {
public:
    CCsRegion() = default;
    /// As `set`.
    CCsRegion(int x, int y, int w, int h);
    CCsRegion(const CCsRegion&) = default;
    CCsRegion& operator=(const CCsRegion&) = default;
    virtual ~CCsRegion();

    /// Sets corner and extents; a negative extent counts backwards from (x, y).
    void set(int x, int y, int w, int h);

    /// Grows to the bounding box of both regions. Deliberately asymmetric: this region is empty only when both extents
    /// are 0, `other` when both are below 1. An argument with one zero and one positive extent takes part.
    void join(const CCsRegion& other);

    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
};
