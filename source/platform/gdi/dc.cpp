#include "platform/gdi/dc.h"

#include "platform/gdi/region.h"

#include <algorithm>
#include <cmath>

namespace zolgdi {

namespace {

constexpr double farAway = 1 << 30;  // beyond every device, with room for sums in 32 bits

struct Extents {
    SIZE window;
    SIZE viewport;
};

/// The extents that a mapping mode begins with: those of the metric ones make `unitsPerInch` units an inch, upward.
Extents metricExtents(int unitsPerInch, int dpi) { return {{unitsPerInch, unitsPerInch}, {dpi, -dpi}}; }

Extents initialExtents(int mapMode, int dpi) {
    switch (mapMode) {
        case MM_LOMETRIC:
        case MM_ISOTROPIC:
            return metricExtents(254, dpi);
        case MM_HIMETRIC:
            return metricExtents(2540, dpi);
        case MM_LOENGLISH:
            return metricExtents(100, dpi);
        case MM_HIENGLISH:
            return metricExtents(1000, dpi);
        case MM_TWIPS:
            return metricExtents(1440, dpi);
        default:
            return {{1, 1}, {1, 1}};
    }
}

/// Shortens one of the viewport's extents, so that units are equally long in both directions.
void equalizeUnits(State& state) {
    const double x = std::fabs(static_cast<double>(state.viewportExtent.cx) / state.windowExtent.cx);
    const double y = std::fabs(static_cast<double>(state.viewportExtent.cy) / state.windowExtent.cy);
    LONG& extent = x > y ? state.viewportExtent.cx : state.viewportExtent.cy;
    const LONG direction = extent < 0 ? -1 : 1;
    extent = roundToDevice(extent * (std::min(x, y) / std::max(x, y)));
    if (extent == 0) extent = direction;
}

}  // namespace

LONG roundToDevice(double value) {
    if (!(value > -farAway)) return static_cast<LONG>(-farAway);
    return static_cast<LONG>(std::floor(std::min(value, farAway) + 0.5));
}

int Capabilities::millimetres(int pixels) const { return static_cast<int>(std::lround(pixels * 25.4 / dpi)); }

int Capabilities::value(int index) const {
    const bool printer = technology == DT_RASPRINTER;
    switch (index) {
        case DRIVERVERSION:
            return 0x4000;
        case TECHNOLOGY:
            return technology;
        case HORZSIZE:
            return millimetres(width);
        case VERTSIZE:
            return millimetres(height);
        case HORZRES:
            return width;
        case VERTRES:
            return height;
        case BITSPIXEL:
            return printer ? 24 : 32;
        case PLANES:
            return 1;
        case NUMCOLORS:
            return -1;
        case RASTERCAPS:
            return RC_BITBLT | RC_DI_BITMAP | RC_DIBTODEV | RC_STRETCHBLT | RC_STRETCHDIB;
        case ASPECTX:
        case ASPECTY:
            return printer ? dpi : 36;
        case ASPECTXY:
            return printer ? static_cast<int>(std::lround(dpi * std::sqrt(2.0))) : 51;
        case LOGPIXELSX:
        case LOGPIXELSY:
            return dpi;
        case PHYSICALWIDTH:
            return printer ? width : 0;
        case PHYSICALHEIGHT:
            return printer ? height : 0;
        default:
            return 0;
    }
}

State::State() : pen(stockObject(BLACK_PEN)), brush(stockObject(WHITE_BRUSH)), font(stockObject(SYSTEM_FONT)) {
    if (!pen || !brush || !font) throw std::bad_alloc();
}

Affine State::toDevice() const {
    Affine page;
    // A transformation has an XFORM's precision, which decides where ties go.
    page.m11 = static_cast<FLOAT>(static_cast<double>(viewportExtent.cx) / windowExtent.cx);
    page.m22 = static_cast<FLOAT>(static_cast<double>(viewportExtent.cy) / windowExtent.cy);
    page.dx = viewportOrigin.x - windowOrigin.x * page.m11;
    page.dy = viewportOrigin.y - windowOrigin.y * page.m22;
    return Affine{world.eM11, world.eM12, world.eM21, world.eM22, world.eDx, world.eDy}.then(page);
}

Area DeviceContext::clipArea() {
    const Canvas* target = canvas();
    const Area all = target != nullptr ? Area(target->bounds()) : Area();
    return state.clip ? all.intersected(*state.clip) : all;
}

}  // namespace zolgdi

using zolgdi::DeviceContext;
using zolgdi::withDc;

int GetDeviceCaps(HDC dc, int index) {
    return withDc(dc, 0, [&](DeviceContext& context) { return context.capabilities.value(index); });
}

namespace {

template <typename T>
HGDIOBJ exchangeSelection(zolgdi::Selection<T>& current, HGDIOBJ object) {
    zolgdi::Selection<T> next(object);
    if (!next) return nullptr;
    std::swap(current, next);
    return next.handle();
}

HGDIOBJ selectBitmap(DeviceContext& context, HGDIOBJ object) {
    if (!context.state.bitmap) return nullptr;  // not a memory device context
    if (object == context.state.bitmap.handle()) return object;
    const bool shared = object == zolgdi::stockObject(zolgdi::STOCK_BITMAP);
    if (!shared && zolgdi::HandleTable::instance().isSelected(object)) return nullptr;
    return exchangeSelection(context.state.bitmap, object);
}

}  // namespace

HGDIOBJ SelectObject(HDC dc, HGDIOBJ object) {
    return withDc(dc, HGDIOBJ{nullptr}, [&](DeviceContext& context) -> HGDIOBJ {
        if (zolgdi::find<zolgdi::Pen>(object)) return exchangeSelection(context.state.pen, object);
        if (zolgdi::find<zolgdi::Brush>(object)) return exchangeSelection(context.state.brush, object);
        if (zolgdi::find<zolgdi::Font>(object)) return exchangeSelection(context.state.font, object);
        if (zolgdi::find<zolgdi::Bitmap>(object)) return selectBitmap(context, object);
        if (const auto region = zolgdi::find<zolgdi::Region>(object)) {
            context.state.clip = region->area();
            const auto complexity = static_cast<LONG_PTR>(context.clipArea().complexity());
            return reinterpret_cast<HGDIOBJ>(complexity);
        }
        return nullptr;
    });
}

HGDIOBJ GetCurrentObject(HDC dc, UINT kind) {
    return withDc(dc, HGDIOBJ{nullptr}, [&](DeviceContext& context) -> HGDIOBJ {
        switch (kind) {
            case OBJ_PEN:
                return context.state.pen.handle();
            case OBJ_BRUSH:
                return context.state.brush.handle();
            case OBJ_FONT:
                return context.state.font.handle();
            case OBJ_BITMAP:
                return context.state.bitmap.handle();
            default:
                return nullptr;
        }
    });
}

int SaveDC(HDC dc) {
    return withDc(dc, 0, [](DeviceContext& context) {
        context.saved.push_back(context.state);
        return static_cast<int>(context.saved.size());
    });
}

BOOL RestoreDC(HDC dc, int saved) {
    return withDc(dc, FALSE, [&](DeviceContext& context) {
        const auto count = static_cast<std::int64_t>(context.saved.size());
        const std::int64_t level = saved < 0 ? count + saved + 1 : saved;
        if (level < 1 || level > count) return FALSE;
        context.state = std::move(context.saved[static_cast<std::size_t>(level - 1)]);
        context.saved.resize(static_cast<std::size_t>(level - 1));
        return TRUE;
    });
}

COLORREF SetTextColor(HDC dc, COLORREF color) {
    return zolgdi::replaceState(dc, &zolgdi::State::textColor, color, CLR_INVALID);
}
COLORREF GetTextColor(HDC dc) {
    return withDc(dc, CLR_INVALID, [](DeviceContext& context) { return context.state.textColor; });
}

COLORREF SetBkColor(HDC dc, COLORREF color) {
    return zolgdi::replaceState(dc, &zolgdi::State::backgroundColor, color, CLR_INVALID);
}
COLORREF GetBkColor(HDC dc) {
    return withDc(dc, CLR_INVALID, [](DeviceContext& context) { return context.state.backgroundColor; });
}

int SetBkMode(HDC dc, int mode) {
    if (mode != TRANSPARENT && mode != OPAQUE) return 0;
    return zolgdi::replaceState(dc, &zolgdi::State::backgroundMode, mode, 0);
}
int GetBkMode(HDC dc) {
    return withDc(dc, 0, [](DeviceContext& context) { return context.state.backgroundMode; });
}

int SetPolyFillMode(HDC dc, int mode) {
    if (mode != ALTERNATE && mode != WINDING) return 0;
    return zolgdi::replaceState(dc, &zolgdi::State::fillMode, mode, 0);
}
int GetPolyFillMode(HDC dc) {
    return withDc(dc, 0, [](DeviceContext& context) { return context.state.fillMode; });
}

int SetStretchBltMode(HDC dc, int mode) {
    if (mode < BLACKONWHITE || mode > HALFTONE) return 0;
    return zolgdi::replaceState(dc, &zolgdi::State::stretchMode, mode, 0);
}
int GetStretchBltMode(HDC dc) {
    return withDc(dc, 0, [](DeviceContext& context) { return context.state.stretchMode; });
}

// A world transform that is there stays in force when the mode that cannot set one returns: so does GDI's.
int SetGraphicsMode(HDC dc, int mode) {
    if (mode != GM_COMPATIBLE && mode != GM_ADVANCED) return 0;
    return zolgdi::replaceState(dc, &zolgdi::State::graphicsMode, mode, 0);
}
int GetGraphicsMode(HDC dc) {
    return withDc(dc, 0, [](DeviceContext& context) { return context.state.graphicsMode; });
}

BOOL SetWorldTransform(HDC dc, const XFORM* transform) {
    return withDc(dc, FALSE, [&](DeviceContext& context) {
        if (context.state.graphicsMode != GM_ADVANCED || transform == nullptr) return FALSE;
        const double determinant = static_cast<double>(transform->eM11) * transform->eM22 -
                                   static_cast<double>(transform->eM12) * transform->eM21;
        if (!std::isfinite(determinant) || determinant == 0.0) return FALSE;
        if (!std::isfinite(transform->eDx) || !std::isfinite(transform->eDy)) return FALSE;
        context.state.world = *transform;
        return TRUE;
    });
}
BOOL GetWorldTransform(HDC dc, XFORM* transform) {
    return withDc(dc, FALSE, [&](DeviceContext& context) {
        if (transform == nullptr) return FALSE;
        *transform = context.state.world;
        return TRUE;
    });
}

namespace {

XFORM product(const XFORM& first, const XFORM& second) {
    const zolgdi::Affine a{first.eM11, first.eM12, first.eM21, first.eM22, first.eDx, first.eDy};
    const zolgdi::Affine p = a.then({second.eM11, second.eM12, second.eM21, second.eM22, second.eDx, second.eDy});
    return {static_cast<FLOAT>(p.m11), static_cast<FLOAT>(p.m12), static_cast<FLOAT>(p.m21),
            static_cast<FLOAT>(p.m22), static_cast<FLOAT>(p.dx),  static_cast<FLOAT>(p.dy)};
}

template <typename Record, typename Value>
BOOL exchangeRecord(HDC dc, Record zolgdi::State::*field, Value value, Record* previous) {
    return withDc(dc, FALSE, [&](DeviceContext& context) {
        const Record old = std::exchange(context.state.*field, value);
        if (previous != nullptr) *previous = old;
        return TRUE;
    });
}

template <typename Record>
BOOL readRecord(HDC dc, Record zolgdi::State::*field, Record* record) {
    return withDc(dc, FALSE, [&](DeviceContext& context) {
        if (record == nullptr) return FALSE;
        *record = context.state.*field;
        return TRUE;
    });
}

/// The extents can be set in the two free mapping modes only; elsewhere the call succeeds without effect.
BOOL setExtent(HDC dc, SIZE zolgdi::State::*field, SIZE extent, SIZE* previous) {
    return withDc(dc, FALSE, [&](DeviceContext& context) {
        if (previous != nullptr) *previous = context.state.*field;
        const int mode = context.state.mapMode;
        if (mode != MM_ISOTROPIC && mode != MM_ANISOTROPIC) return TRUE;
        if (extent.cx == 0 || extent.cy == 0) return FALSE;
        context.state.*field = extent;
        if (mode == MM_ISOTROPIC) zolgdi::equalizeUnits(context.state);
        return TRUE;
    });
}

}  // namespace

BOOL ModifyWorldTransform(HDC dc, const XFORM* transform, DWORD mode) {
    if (mode == MWT_IDENTITY) {
        return withDc(dc, FALSE, [](DeviceContext& context) {
            context.state.world = {1.0F, 0.0F, 0.0F, 1.0F, 0.0F, 0.0F};
            return TRUE;
        });
    }
    XFORM world{};
    if (transform == nullptr || GetWorldTransform(dc, &world) == FALSE) return FALSE;
    if (mode != MWT_LEFTMULTIPLY && mode != MWT_RIGHTMULTIPLY) return FALSE;
    const XFORM result = mode == MWT_LEFTMULTIPLY ? product(*transform, world) : product(world, *transform);
    return SetWorldTransform(dc, &result);
}

int SetMapMode(HDC dc, int mode) {
    if (mode < MM_TEXT || mode > MM_ANISOTROPIC) return 0;
    return withDc(dc, 0, [&](DeviceContext& context) {
        // The freest mode goes on with the extents that are there.
        if (mode != MM_ANISOTROPIC && mode != context.state.mapMode) {
            const auto [window, viewport] = zolgdi::initialExtents(mode, context.capabilities.dpi);
            context.state.windowExtent = window;
            context.state.viewportExtent = viewport;
        }
        return std::exchange(context.state.mapMode, mode);
    });
}
int GetMapMode(HDC dc) {
    return withDc(dc, 0, [](DeviceContext& context) { return context.state.mapMode; });
}

BOOL SetViewportOrgEx(HDC dc, int x, int y, LPPOINT previous) {
    return exchangeRecord(dc, &zolgdi::State::viewportOrigin, POINT{x, y}, previous);
}
BOOL GetViewportOrgEx(HDC dc, LPPOINT origin) { return readRecord(dc, &zolgdi::State::viewportOrigin, origin); }
BOOL SetWindowOrgEx(HDC dc, int x, int y, LPPOINT previous) {
    return exchangeRecord(dc, &zolgdi::State::windowOrigin, POINT{x, y}, previous);
}
BOOL GetWindowOrgEx(HDC dc, LPPOINT origin) { return readRecord(dc, &zolgdi::State::windowOrigin, origin); }
BOOL SetWindowExtEx(HDC dc, int x, int y, LPSIZE previous) {
    return setExtent(dc, &zolgdi::State::windowExtent, SIZE{x, y}, previous);
}
BOOL SetViewportExtEx(HDC dc, int x, int y, LPSIZE previous) {
    return setExtent(dc, &zolgdi::State::viewportExtent, SIZE{x, y}, previous);
}

namespace {

int setClip(DeviceContext& context, std::optional<zolgdi::Area> clip) {
    context.state.clip = std::move(clip);
    return context.clipArea().complexity();
}

}  // namespace

int SelectClipRgn(HDC dc, HRGN region) {
    return withDc(dc, ERROR, [&](DeviceContext& context) {
        if (region == nullptr) return setClip(context, std::nullopt);
        const auto object = zolgdi::find<zolgdi::Region>(region);
        return object ? setClip(context, object->area()) : ERROR;
    });
}

int IntersectClipRect(HDC dc, int left, int top, int right, int bottom) {
    return withDc(dc, ERROR, [&](DeviceContext& context) {
        const zolgdi::Affine map = context.toDevice();
        const POINT a = zolgdi::roundToDevice(map(left, top));
        const POINT b = zolgdi::roundToDevice(map(right, bottom));
        const zolgdi::Area rect(RECT{std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)});
        return setClip(context, context.state.clip ? context.state.clip->intersected(rect) : rect);
    });
}

int GetClipBox(HDC dc, LPRECT box) {
    return withDc(dc, ERROR, [&](DeviceContext& context) {
        if (box == nullptr) return ERROR;
        const zolgdi::Area area = context.clipArea();
        const RECT bounds = area.bounds();
        const zolgdi::Affine map = context.toDevice().inverse();
        const POINT first = zolgdi::roundToDevice(map(bounds.left, bounds.top));
        const POINT last = zolgdi::roundToDevice(map(bounds.right, bounds.bottom));
        *box = area.empty() ? bounds : RECT{first.x, first.y, last.x, last.y};
        return area.complexity();
    });
}

BOOL GdiFlush() { return TRUE; }
