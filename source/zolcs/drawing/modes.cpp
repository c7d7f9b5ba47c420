#include "zolcs/drawing/modes.h"

#include "zolcs/support/conversion.h"

#include <cstdint>

namespace zolcs {

namespace {

constexpr COLORREF midGrey = 0x808080;
constexpr COLORREF yellow = 0x00FFFF;
constexpr COLORREF white = 0xFFFFFF;

/// Ten pixels at 600 dpi, and the same length at other resolutions.
int printerPenWidth(HDC dc) { return saturated(std::int64_t{GetDeviceCaps(dc, LOGPIXELSY)} * 10 / 600); }

/// A tenth of the height of the text in the selected font.
int textPenWidth(HDC dc) {
    TEXTMETRICW metrics{};
    GetTextMetricsW(dc, &metrics);
    return truncated(metrics.tmHeight / 10.0 + 1.5);
}

}  // namespace

FigureColors figureColors(HDC dc, int mode, COLORREF color, COLORREF fillColor) {
    const bool fills = fillColor != 0;
    switch (mode) {
        case CCS_MODE_PRINTER:
            return {printerPenWidth(dc), white, fills ? fillColor : white};
        case CCS_MODE_BURN_IN:
            return {textPenWidth(dc), yellow, fills ? fillColor : yellow};
        default:
            return {0, color, fills ? midGrey : color};
    }
}

}  // namespace zolcs
