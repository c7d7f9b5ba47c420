// CSize, CPoint and CRect: Win32's records with MFC's operations. Arithmetic wraps in 32 bits.
#pragma once

#include "platform/mfc/win32.h"

class CPoint;
class CRect;

namespace zolmfc {

/// Sums and differences of coordinates wrap at 32 bits, so that no rectangle makes them undefined.
constexpr LONG add(LONG a, LONG b) {
    return static_cast<LONG>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}
constexpr LONG subtract(LONG a, LONG b) {
    return static_cast<LONG>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

}  // namespace zolmfc

/// An extent.
class CSize : public tagSIZE {
public:
    constexpr CSize() : tagSIZE{0, 0} {}
    constexpr CSize(int width, int height) : tagSIZE{width, height} {}
    constexpr CSize(SIZE size) : tagSIZE(size) {}
    explicit constexpr CSize(POINT point) : tagSIZE{point.x, point.y} {}

    friend constexpr bool operator==(const CSize& a, const CSize& b) { return a.cx == b.cx && a.cy == b.cy; }
    CSize& operator+=(SIZE other) { return *this = *this + other; }
    CSize& operator-=(SIZE other) { return *this = *this - other; }
    constexpr CSize operator+(SIZE other) const { return SIZE{zolmfc::add(cx, other.cx), zolmfc::add(cy, other.cy)}; }
    constexpr CSize operator-(SIZE other) const {
        return SIZE{zolmfc::subtract(cx, other.cx), zolmfc::subtract(cy, other.cy)};
    }
    constexpr CSize operator-() const { return CSize() - *this; }
};

/// A position.
class CPoint : public tagPOINT {
public:
    constexpr CPoint() : tagPOINT{0, 0} {}
    constexpr CPoint(int newX, int newY) : tagPOINT{newX, newY} {}
    constexpr CPoint(POINT point) : tagPOINT(point) {}
    explicit constexpr CPoint(SIZE size) : tagPOINT{size.cx, size.cy} {}

    void Offset(int dx, int dy) { *this += CSize(dx, dy); }

    friend constexpr bool operator==(const CPoint& a, const CPoint& b) { return a.x == b.x && a.y == b.y; }
    CPoint& operator+=(SIZE distance) { return *this = *this + distance; }
    CPoint& operator-=(SIZE distance) { return *this = *this - distance; }
    CPoint& operator+=(POINT distance) { return *this += CSize(distance); }
    CPoint& operator-=(POINT distance) { return *this -= CSize(distance); }
    constexpr CPoint operator+(SIZE distance) const {
        return POINT{zolmfc::add(x, distance.cx), zolmfc::add(y, distance.cy)};
    }
    constexpr CPoint operator-(SIZE distance) const {
        return POINT{zolmfc::subtract(x, distance.cx), zolmfc::subtract(y, distance.cy)};
    }
    constexpr CPoint operator+(POINT distance) const { return *this + CSize(distance); }
    /// The distance from `other` to this point.
    constexpr CSize operator-(POINT other) const { return CSize(POINT{x, y}) - CSize(other); }
    constexpr CPoint operator-() const { return CPoint() - CSize(POINT{x, y}); }
};

/// A rectangle; right and bottom are exclusive. Only NormalizeRect puts its edges in order; the members that combine
/// rectangles expect them in order.
class CRect : public tagRECT {
public:
    constexpr CRect() : tagRECT{0, 0, 0, 0} {}
    constexpr CRect(int newLeft, int newTop, int newRight, int newBottom)
        : tagRECT{newLeft, newTop, newRight, newBottom} {}
    constexpr CRect(const RECT& rect) : tagRECT(rect) {}
    constexpr CRect(LPCRECT rect) : tagRECT(*rect) {}
    constexpr CRect(POINT topLeft, SIZE size)
        : tagRECT{topLeft.x, topLeft.y, zolmfc::add(topLeft.x, size.cx), zolmfc::add(topLeft.y, size.cy)} {}
    constexpr CRect(POINT topLeft, POINT bottomRight) : tagRECT{topLeft.x, topLeft.y, bottomRight.x, bottomRight.y} {}

    [[nodiscard]] constexpr int Width() const { return zolmfc::subtract(right, left); }
    [[nodiscard]] constexpr int Height() const { return zolmfc::subtract(bottom, top); }
    [[nodiscard]] constexpr CSize Size() const { return {Width(), Height()}; }
    [[nodiscard]] constexpr CPoint TopLeft() const { return {left, top}; }
    [[nodiscard]] constexpr CPoint BottomRight() const { return {right, bottom}; }
    [[nodiscard]] constexpr CPoint CenterPoint() const {
        return {static_cast<int>((std::int64_t{left} + right) / 2), static_cast<int>((std::int64_t{top} + bottom) / 2)};
    }

    operator LPRECT() { return this; }
    operator LPCRECT() const { return this; }

    /// True when the width or the height is below 1.
    [[nodiscard]] constexpr BOOL IsRectEmpty() const { return (right <= left || bottom <= top) ? TRUE : FALSE; }
    /// True when all four coordinates are 0.
    [[nodiscard]] constexpr BOOL IsRectNull() const {
        return (left == 0 && top == 0 && right == 0 && bottom == 0) ? TRUE : FALSE;
    }
    /// Left and top are inside, right and bottom are not.
    [[nodiscard]] constexpr BOOL PtInRect(POINT point) const {
        return (point.x >= left && point.x < right && point.y >= top && point.y < bottom) ? TRUE : FALSE;
    }

    void SetRect(int newLeft, int newTop, int newRight, int newBottom) {
        *this = CRect(newLeft, newTop, newRight, newBottom);
    }
    void SetRectEmpty() { *this = CRect(); }

    void InflateRect(int dx, int dy) { InflateRect(dx, dy, dx, dy); }
    void InflateRect(int dLeft, int dTop, int dRight, int dBottom) {
        left = zolmfc::subtract(left, dLeft);
        top = zolmfc::subtract(top, dTop);
        right = zolmfc::add(right, dRight);
        bottom = zolmfc::add(bottom, dBottom);
    }
    void DeflateRect(int dx, int dy) { DeflateRect(dx, dy, dx, dy); }
    void DeflateRect(int dLeft, int dTop, int dRight, int dBottom) {
        left = zolmfc::add(left, dLeft);
        top = zolmfc::add(top, dTop);
        right = zolmfc::subtract(right, dRight);
        bottom = zolmfc::subtract(bottom, dBottom);
    }
    void OffsetRect(int dx, int dy) { *this = CRect(TopLeft() + CSize(dx, dy), BottomRight() + CSize(dx, dy)); }
    void OffsetRect(POINT distance) { OffsetRect(distance.x, distance.y); }

    /// Exchanges edges that are out of order.
    void NormalizeRect() {
        *this = CRect(left < right ? left : right, top < bottom ? top : bottom, left < right ? right : left,
                      top < bottom ? bottom : top);
    }

    /// Becomes what both rectangles have in common. When they have nothing in common (or one is empty) it becomes all
    /// zero and the result is FALSE.
    BOOL IntersectRect(LPCRECT first, LPCRECT second) {
        const CRect common(first->left > second->left ? first->left : second->left,
                           first->top > second->top ? first->top : second->top,
                           first->right < second->right ? first->right : second->right,
                           first->bottom < second->bottom ? first->bottom : second->bottom);
        const bool none = CRect(first).IsRectEmpty() != FALSE || CRect(second).IsRectEmpty() != FALSE ||
                          common.IsRectEmpty() != FALSE;
        *this = none ? CRect() : common;
        return none ? FALSE : TRUE;
    }

    /// Becomes the smallest rectangle that holds both; an empty one does not count. When both are empty it becomes all
    /// zero and the result is FALSE.
    BOOL UnionRect(LPCRECT first, LPCRECT second) {
        const CRect a(first);
        const CRect b(second);
        if (a.IsRectEmpty() != FALSE) {
            *this = b.IsRectEmpty() != FALSE ? CRect() : b;
        } else if (b.IsRectEmpty() != FALSE) {
            *this = a;
        } else {
            *this = CRect(a.left < b.left ? a.left : b.left, a.top < b.top ? a.top : b.top,
                          a.right > b.right ? a.right : b.right, a.bottom > b.bottom ? a.bottom : b.bottom);
        }
        return IsRectEmpty() != FALSE ? FALSE : TRUE;
    }

    friend constexpr bool operator==(const CRect& a, const CRect& b) {
        return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
    }
    CRect& operator+=(POINT distance) { return *this = *this + distance; }
    CRect& operator-=(POINT distance) { return *this = *this - distance; }
    CRect& operator+=(SIZE distance) { return *this = *this + distance; }
    CRect& operator-=(SIZE distance) { return *this = *this - distance; }
    CRect& operator&=(const RECT& other) { return *this = *this & other; }
    CRect& operator|=(const RECT& other) { return *this = *this | other; }
    constexpr CRect operator+(SIZE distance) const { return {TopLeft() + distance, BottomRight() + distance}; }
    constexpr CRect operator-(SIZE distance) const { return {TopLeft() - distance, BottomRight() - distance}; }
    constexpr CRect operator+(POINT distance) const { return *this + CSize(distance); }
    constexpr CRect operator-(POINT distance) const { return *this - CSize(distance); }
    CRect operator&(const RECT& other) const {
        CRect common;
        common.IntersectRect(this, &other);
        return common;
    }
    CRect operator|(const RECT& other) const {
        CRect both;
        both.UnionRect(this, &other);
        return both;
    }
};
