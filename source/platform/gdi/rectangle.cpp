#include "platform/gdi/rectangle.h"

BOOL SetRect(LPRECT rect, int left, int top, int right, int bottom) {
    if (rect == nullptr) return FALSE;
    *rect = {left, top, right, bottom};
    return TRUE;
}

BOOL SetRectEmpty(LPRECT rect) { return SetRect(rect, 0, 0, 0, 0); }

BOOL IsRectEmpty(const RECT* rect) { return rect == nullptr || zolgdi::isEmpty(*rect) ? TRUE : FALSE; }

BOOL PtInRect(const RECT* rect, POINT point) {
    if (rect == nullptr) return FALSE;
    return point.x >= rect->left && point.x < rect->right && point.y >= rect->top && point.y < rect->bottom ? TRUE
                                                                                                            : FALSE;
}

BOOL IntersectRect(LPRECT out, const RECT* first, const RECT* second) {
    if (out == nullptr || first == nullptr || second == nullptr) return FALSE;
    const RECT common = zolgdi::intersection(*first, *second);
    const bool none = zolgdi::isEmpty(*first) || zolgdi::isEmpty(*second) || zolgdi::isEmpty(common);
    *out = none ? RECT{0, 0, 0, 0} : common;
    return none ? FALSE : TRUE;
}
