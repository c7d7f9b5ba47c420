// Painting on the screen, apart because it reports under a module path of its own.
#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsframe.h"
#include "zolcs/ccsoverlay.h"
#include "zolcs/drawing/gdiscope.h"
#include "zolcs/support/conversion.h"
#include "zolcs/support/report.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr const wchar_t* module = L"source\\zolcs\\ccsframe_safety";
constexpr zolcs::ReportSite notInitialised{L"Initialization of frame object not performed", module, 73};
constexpr zolcs::ReportSite copyFailed{L"BitBlt failed", module, 129};

/// The part of a frame's axis that is asked for: from `first` up to, but not including, `end`.
struct Range {
    std::int64_t first;
    std::int64_t end;

    [[nodiscard]] bool empty() const { return end - first < 1; }
    [[nodiscard]] int start() const { return zolcs::saturated(first); }
    [[nodiscard]] int length() const { return zolcs::saturated(end - first); }
};

Range clip(std::int64_t frameStart, std::int64_t frameLength, std::int64_t start, std::int64_t length) {
    return {std::max(frameStart, start), std::min(frameStart + frameLength, start + length)};
}

}  // namespace

int CCsFrame::paint(HDC dc, CCsOverlay* overlay, CCs2dTrafo* trafo, unsigned long color, int areaWidth, int areaHeight,
                    int left, int top, CCsOverlay* textOverlay, unsigned long textColor, HFONT font,
                    CCsOverlay* extraOverlay) {
    if (valid_ != 1) return zolcs::fail(notInitialised, 0, CCS_INVALID);
    const Range across = clip(x, width, left != -1 ? left : x, areaWidth != -1 ? areaWidth : width);
    const Range down = clip(y, height, top != -1 ? top : y, areaHeight != -1 ? areaHeight : height);
    if (across.empty() || down.empty()) return CCS_DONE;

    BOOL copied = FALSE;
    {
        const zolcs::MemoryDC memory(dc);
        const zolcs::SelectGuard bitmap(memory.get(), getHBitmap());
        if (bitmap) {
            HGDIOBJ remembered = GetCurrentObject(memory.get(), OBJ_FONT);
            const zolcs::SelectGuard fontOfDc(memory.get(), GetCurrentObject(dc, OBJ_FONT));
            CCs2dTrafo identity;
            const auto render = [&](CCsOverlay& drawn, unsigned long drawnColor) {
                drawn.render(trafo, &identity, drawnColor, memory.get(), CCS_MODE_SCREEN, across.length(),
                             down.length(), 0, 0);
            };
            if (overlay != nullptr && overlay->isTransformable() == 0 && trafo != nullptr) {
                render(*overlay, color);
                SelectObject(memory.get(), remembered);
            }
            if (textOverlay != nullptr && font != nullptr) {
                SelectObject(memory.get(), font);
                render(*textOverlay, textColor);
                SelectObject(memory.get(), remembered);
            }
            if (extraOverlay != nullptr) render(*extraOverlay, textColor);
            copied = BitBlt(dc, across.start(), down.start(), across.length(), down.length(), memory.get(),
                            zolcs::saturated(across.first - x), zolcs::saturated(down.first - y), SRCCOPY);
        }
    }
    unmapBitmap();
    return copied != FALSE ? CCS_DONE : zolcs::fail(copyFailed, copied, CCS_FAILED);
}
