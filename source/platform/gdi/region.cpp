#include "platform/gdi/region.h"

#include "platform/gdi/dc.h"

#include <algorithm>

namespace zolgdi {

namespace {

RECT ordered(int left, int top, int right, int bottom) {
    return {std::min(left, right), std::min(top, bottom), std::max(left, right), std::max(top, bottom)};
}

/// A region given in logical coordinates, on the device. Regions do not turn: of a turned one the bounds are taken.
Area deviceArea(const DeviceContext& context, const Area& area) {
    const Affine map = context.toDevice();
    if (map.m11 == 1.0 && map.m22 == 1.0 && map.axisAligned()) {
        const POINT shift = roundToDevice({map.dx, map.dy});
        return area.moved(shift.x, shift.y);
    }
    Area out;
    for (const RECT& rect : area.rects()) {
        const auto bounds = map.boundsOf(rect.left, rect.top, rect.right, rect.bottom);
        const POINT a = roundToDevice(bounds.low);
        const POINT b = roundToDevice(bounds.high);
        out = Area::combine(out, Area(RECT{a.x, a.y, b.x, b.y}), [](bool x, bool y) { return x || y; });
    }
    return out;
}

BOOL paintRegion(HDC dc, HRGN region, const Brush* brush) {
    const auto object = find<Region>(region);
    if (!object) return FALSE;
    return withCanvas(dc, FALSE, [&](DeviceContext& context, Canvas& canvas) {
        const Brush& with = brush != nullptr ? *brush : *context.state.brush;
        if (with.hollow()) return TRUE;
        const Area area = deviceArea(context, object->area());
        canvas.paint(context.clipArea().intersected(area), ropIndex(PATCOPY), with.color());
        return TRUE;
    });
}

}  // namespace

}  // namespace zolgdi

using zolgdi::Area;
using zolgdi::find;
using zolgdi::guarded;
using zolgdi::Region;

HRGN CreateRectRgn(int left, int top, int right, int bottom) {
    return guarded(nullptr, [&] {
        return zolgdi::publish<HRGN>(std::make_shared<Region>(Area(zolgdi::ordered(left, top, right, bottom))));
    });
}

HRGN CreateRectRgnIndirect(const RECT* rect) {
    return rect != nullptr ? CreateRectRgn(rect->left, rect->top, rect->right, rect->bottom) : nullptr;
}

int CombineRgn(HRGN destination, HRGN first, HRGN second, int mode) {
    return guarded(ERROR, [&] {
        const auto out = find<Region>(destination);
        const auto a = find<Region>(first);
        const auto b = mode == RGN_COPY ? a : find<Region>(second);
        if (!out || !a || !b || mode < RGN_AND || mode > RGN_COPY) return ERROR;
        Area area = Area::combine(a->area(), b->area(), [&](bool inFirst, bool inSecond) {
            switch (mode) {
                case RGN_AND:
                    return inFirst && inSecond;
                case RGN_OR:
                    return inFirst || inSecond;
                case RGN_XOR:
                    return inFirst != inSecond;
                case RGN_DIFF:
                    return inFirst && !inSecond;
                default:
                    return inFirst;
            }
        });
        const int complexity = area.complexity();
        out->set(std::move(area));
        return complexity;
    });
}

int OffsetRgn(HRGN region, int dx, int dy) {
    return guarded(ERROR, [&] {
        const auto object = find<Region>(region);
        if (!object) return ERROR;
        Area area = object->area().moved(dx, dy);
        const int complexity = area.complexity();
        object->set(std::move(area));
        return complexity;
    });
}

int GetRgnBox(HRGN region, LPRECT box) {
    return guarded(ERROR, [&] {
        const auto object = find<Region>(region);
        if (!object || box == nullptr) return ERROR;
        const Area area = object->area();
        *box = area.bounds();
        return area.complexity();
    });
}

BOOL PtInRegion(HRGN region, int x, int y) {
    return guarded(FALSE, [&] {
        const auto object = find<Region>(region);
        return object && object->area().contains(x, y) ? TRUE : FALSE;
    });
}

BOOL EqualRgn(HRGN first, HRGN second) {
    return guarded(FALSE, [&] {
        const auto a = find<Region>(first);
        const auto b = find<Region>(second);
        return a && b && a->area() == b->area() ? TRUE : FALSE;
    });
}

BOOL PaintRgn(HDC dc, HRGN region) { return zolgdi::paintRegion(dc, region, nullptr); }

BOOL FillRgn(HDC dc, HRGN region, HBRUSH brush) {
    const auto object = find<zolgdi::Brush>(brush);
    return object ? zolgdi::paintRegion(dc, region, object.get()) : FALSE;
}
