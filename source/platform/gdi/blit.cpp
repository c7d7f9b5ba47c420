// Copies of rectangles of pixels.
#include "platform/gdi/dc.h"

#include <algorithm>
#include <cstdlib>

namespace zolgdi {

namespace {

/// A position and an extent in one direction. A negative extent counts backward from the position, which belongs to
/// the run: GDI's rule for mirrored copies.
struct Run {
    std::int64_t start;
    std::int64_t extent;

    [[nodiscard]] bool backward() const { return extent < 0; }
    [[nodiscard]] std::int64_t first() const { return backward() ? start + extent + 1 : start; }
    [[nodiscard]] std::int64_t length() const { return backward() ? -extent : extent; }
};

Run deviceRun(double from, double to) {
    const std::int64_t start = roundToDevice(from);
    return {start, roundToDevice(to) - start};
}

bool fits(const Run& run) {
    constexpr std::int64_t limit = 1 << 30;
    return run.first() >= -limit && run.first() + run.length() <= limit;
}

/// A logical rectangle on the device; false where the device context turns or shears it, which no copy can follow.
bool deviceRuns(const DeviceContext& context, int x, int y, std::int64_t width, std::int64_t height, Run& columns,
                Run& rows) {
    const Affine map = context.toDevice();
    if (!map.axisAligned()) return false;
    const PointD from = map(x, y);
    const PointD to = map(static_cast<double>(x + width), static_cast<double>(y + height));
    columns = deviceRun(from.x, to.x);
    rows = deviceRun(from.y, to.y);
    return true;
}

/// GDI leaves the last column or row out of what shrinks to a single one.
void shrinkToOne(Run& source, const Run& destination) {
    if (destination.extent == 1 && source.extent > 1) --source.extent;
}

/// A picture from the two rectangles; false when one of them is empty or beyond all devices.
bool makePicture(const Pixels& pixels, const Run& sourceColumns, const Run& sourceRows, const Run& columns,
                 const Run& rows, Picture& picture) {
    if (!fits(sourceColumns) || !fits(sourceRows)) return false;
    for (const Run* run : {&sourceColumns, &sourceRows, &columns, &rows}) {
        if (run->extent == 0) return false;
    }
    picture.pixels = pixels;
    picture.x = static_cast<LONG>(sourceColumns.first());
    picture.y = static_cast<LONG>(sourceRows.first());
    picture.width = static_cast<LONG>(sourceColumns.length());
    picture.height = static_cast<LONG>(sourceRows.length());
    picture.destination = {static_cast<LONG>(columns.first()), static_cast<LONG>(rows.first()),
                           static_cast<LONG>(columns.first() + columns.length()),
                           static_cast<LONG>(rows.first() + rows.length())};
    picture.mirrorX = sourceColumns.backward() != columns.backward();
    picture.mirrorY = sourceRows.backward() != rows.backward();
    return true;
}

BOOL paintLogical(DeviceContext& context, Canvas& canvas, const Brush& brush, int x, int y, std::int64_t width,
                  std::int64_t height, BYTE rop) {
    if (ropUsesPattern(rop) && brush.hollow()) return TRUE;
    Run columns{};
    Run rows{};
    if (!deviceRuns(context, x, y, width, height, columns, rows)) return FALSE;
    const RECT rect{static_cast<LONG>(columns.first()), static_cast<LONG>(rows.first()),
                    static_cast<LONG>(columns.first() + columns.length()),
                    static_cast<LONG>(rows.first() + rows.length())};
    canvas.paint(context.clipArea().intersected(Area(rect)), rop, brush.color());
    return TRUE;
}

BOOL copyBetween(DeviceContext& to, DeviceContext& from, const RECT& target, const RECT& source, BYTE rop) {
    Canvas* canvas = to.canvas();
    const Canvas* sourceCanvas = from.canvas();
    if (canvas == nullptr || sourceCanvas == nullptr || sourceCanvas->pixels() == nullptr) return FALSE;
    if (sourceCanvas->pixels()->top == nullptr) return TRUE;
    Run columns{};
    Run rows{};
    Run sourceColumns{};
    Run sourceRows{};
    // The rectangles hold x, y, width and height.
    if (!deviceRuns(to, target.left, target.top, target.right, target.bottom, columns, rows) ||
        !deviceRuns(from, source.left, source.top, source.right, source.bottom, sourceColumns, sourceRows)) {
        return FALSE;
    }
    shrinkToOne(sourceColumns, columns);
    shrinkToOne(sourceRows, rows);
    Picture picture;
    if (!makePicture(*sourceCanvas->pixels(), sourceColumns, sourceRows, columns, rows, picture)) return TRUE;
    canvas->picture(to.clipArea(), picture, rop, to.state.brush->color());
    return TRUE;
}

}  // namespace

}  // namespace zolgdi

using zolgdi::Canvas;
using zolgdi::DeviceContext;
using zolgdi::guarded;
using zolgdi::withCanvas;

BOOL PatBlt(HDC dc, int x, int y, int width, int height, DWORD rop) {
    const BYTE operation = zolgdi::ropIndex(rop);
    if (zolgdi::ropUsesSource(operation)) return FALSE;
    return withCanvas(dc, FALSE, [&](DeviceContext& context, Canvas& canvas) {
        return zolgdi::paintLogical(context, canvas, *context.state.brush, x, y, width, height, operation);
    });
}

int FillRect(HDC dc, const RECT* rect, HBRUSH brush) {
    const auto with = zolgdi::find<zolgdi::Brush>(brush);
    if (rect == nullptr || !with) return 0;
    const std::int64_t width = std::int64_t{rect->right} - rect->left;
    const std::int64_t height = std::int64_t{rect->bottom} - rect->top;
    return withCanvas(dc, 0, [&](DeviceContext& context, Canvas& canvas) {
        return zolgdi::paintLogical(context, canvas, *with, rect->left, rect->top, width, height,
                                    zolgdi::ropIndex(PATCOPY));
    });
}

BOOL StretchBlt(HDC dc, int x, int y, int width, int height, HDC source, int sourceX, int sourceY, int sourceWidth,
                int sourceHeight, DWORD rop) {
    const BYTE operation = zolgdi::ropIndex(rop);
    if (!zolgdi::ropUsesSource(operation)) return PatBlt(dc, x, y, width, height, rop);
    return guarded(FALSE, [&] {
        const zolgdi::DcPairLock lock(dc, source);
        if (!lock) return FALSE;
        return zolgdi::copyBetween(lock.first(), lock.second(), {x, y, width, height},
                                   {sourceX, sourceY, sourceWidth, sourceHeight}, operation);
    });
}

BOOL BitBlt(HDC dc, int x, int y, int width, int height, HDC source, int sourceX, int sourceY, DWORD rop) {
    return StretchBlt(dc, x, y, width, height, source, sourceX, sourceY, width, height, rop);
}

int StretchDIBits(HDC dc, int x, int y, int width, int height, int sourceX, int sourceY, int sourceWidth,
                  int sourceHeight, const void* bits, const BITMAPINFO* info, UINT usage, DWORD rop) {
    using zolgdi::Run;
    const BYTE operation = zolgdi::ropIndex(rop);
    zolgdi::DibLayout layout;
    if (bits == nullptr || info == nullptr || usage != DIB_RGB_COLORS) return 0;
    if (!zolgdi::DibLayout::of(&info->bmiHeader, layout)) return 0;
    return withCanvas(dc, 0, [&](DeviceContext& context, Canvas& canvas) {
        Run columns{};
        Run rows{};
        if (!zolgdi::deviceRuns(context, x, y, width, height, columns, rows)) return 0;
        // The canvas only reads a picture's pixels.
        const zolgdi::Pixels pixels = layout.pixels(static_cast<BYTE*>(const_cast<void*>(bits)));
        const bool plain = operation == zolgdi::ropIndex(SRCCOPY);
        const bool fromOrigin =
            sourceX == 0 && sourceY == 0 && columns.extent == sourceWidth && rows.extent == sourceHeight;
        Run sourceColumns{sourceX, sourceWidth};
        Run sourceRows{sourceY, sourceHeight};
        if (!plain) {
            zolgdi::shrinkToOne(sourceColumns, columns);
            zolgdi::shrinkToOne(sourceRows, rows);
        }
        // Rows of a source rectangle count from the bottom; from the top of a top-down DIB that is copied from its
        // origin without being stretched, or is not just copied.
        if (!layout.topDown || (plain && !fromOrigin)) {
            sourceRows.start = std::int64_t{layout.height} - 1 - sourceRows.start;
            sourceRows.start -= sourceRows.backward() ? sourceRows.extent + 1 : sourceRows.extent - 1;
        }
        zolgdi::Picture picture;
        if (zolgdi::makePicture(pixels, sourceColumns, sourceRows, columns, rows, picture)) {
            canvas.picture(context.clipArea(), picture, operation, context.state.brush->color());
        }
        return static_cast<int>(layout.height);
    });
}
