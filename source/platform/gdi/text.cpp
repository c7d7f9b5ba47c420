// Calls that draw and measure text.
#include "platform/gdi/dc.h"
#include "platform/gdi/textlayout.h"

#include <algorithm>
#include <cmath>

namespace zolgdi {

namespace {

constexpr int longest = 8192;  // characters of one call, GDI's limit

/// The text of a call; false where the arguments make none.
bool viewOf(LPCWSTR text, int length, std::wstring_view& view) {
    if (length < 0 || length > longest || (text == nullptr && length > 0)) return false;
    view = length > 0 ? std::wstring_view(text, static_cast<std::size_t>(length)) : std::wstring_view();
    return true;
}

void appendOutlines(Path& path, const TextRun& run, bool exact) {
    const TextLine& line = TextLine::shaped(*run.font, run.dpi, exact, run.text);
    const Affine placement = line.placed(run.transform);
    if (run.opaque) path.append({line.cell(placement)});
    path.append(line.outlines(placement));
}

bool isExact(const DeviceContext& context) { return context.capabilities.technology == DT_RASPRINTER; }

/// How text is turned and scaled. A mapping mode that counts upward does not turn text over.
Affine textTransform(const DeviceContext& context, int x, int y) {
    Affine map = context.toDevice();
    const POINT origin = roundToDevice(map(x, y));
    if (context.state.graphicsMode != GM_ADVANCED) {
        map.m11 = std::fabs(map.m11);
        map.m22 = std::fabs(map.m22);
    }
    map.dx = origin.x;
    map.dy = origin.y;
    return map;
}

void fillMetrics(const LOGFONTW& font, const SizedFont& sized, const Capabilities& capabilities, TEXTMETRICW& out) {
    out = {};
    out.tmHeight = sized.height();
    out.tmAscent = sized.ascent();
    out.tmDescent = sized.descent();
    out.tmInternalLeading = std::max(sized.height() - static_cast<int>(std::lround(sized.em())), 0);
    out.tmAveCharWidth = sized.averageWidth();
    out.tmMaxCharWidth = std::max(static_cast<int>(std::lround(sized.em() * sized.stretch())), sized.averageWidth());
    out.tmWeight = font.lfWeight == FW_DONTCARE ? FW_NORMAL : font.lfWeight;
    out.tmDigitizedAspectX = capabilities.dpi;
    out.tmDigitizedAspectY = capabilities.dpi;
    out.tmFirstChar = 0x20;
    out.tmLastChar = 0xFFFC;
    out.tmDefaultChar = 0x1F;
    out.tmBreakChar = 0x20;
    out.tmItalic = font.lfItalic;
    out.tmUnderlined = font.lfUnderline;
    out.tmStruckOut = font.lfStrikeOut;
    const BYTE pitch = (font.lfPitchAndFamily & 3U) == FIXED_PITCH ? 0 : TMPF_FIXED_PITCH;
    out.tmPitchAndFamily = static_cast<BYTE>((font.lfPitchAndFamily & 0xF0U) | pitch | TMPF_VECTOR | TMPF_TRUETYPE);
    out.tmCharSet = font.lfCharSet;
}

}  // namespace

}  // namespace zolgdi

using zolgdi::Canvas;
using zolgdi::DeviceContext;
using zolgdi::withCanvas;
using zolgdi::withDc;

BOOL TextOutW(HDC dc, int x, int y, LPCWSTR text, int length) {
    std::wstring_view view;
    if (!zolgdi::viewOf(text, length, view)) return FALSE;
    return withCanvas(dc, FALSE, [&](DeviceContext& context, Canvas& canvas) {
        const zolgdi::State& state = context.state;
        zolgdi::TextRun run;
        run.font = &state.font->description();
        run.transform = zolgdi::textTransform(context, x, y);
        run.dpi = context.capabilities.dpi;
        run.text = view;
        run.color = state.textColor;
        run.opaque = state.backgroundMode == OPAQUE;
        run.background = state.backgroundColor;
        if (view.empty()) return TRUE;
        if (context.path.isOpen()) {
            zolgdi::appendOutlines(context.path, run, zolgdi::isExact(context));
        } else {
            canvas.text(context.clipArea(), run);
        }
        return TRUE;
    });
}

BOOL GetTextExtentPoint32W(HDC dc, LPCWSTR text, int length, LPSIZE size) {
    std::wstring_view view;
    if (size == nullptr || !zolgdi::viewOf(text, length, view)) return FALSE;
    return withDc(dc, FALSE, [&](DeviceContext& context) {
        const zolgdi::TextLine& line = zolgdi::TextLine::shaped(
            context.state.font->description(), context.capabilities.dpi, zolgdi::isExact(context), view);
        *size = {view.empty() ? 0 : line.width(), line.font().height()};
        return TRUE;
    });
}

BOOL GetTextMetricsW(HDC dc, TEXTMETRICW* metrics) {
    if (metrics == nullptr) return FALSE;
    return withDc(dc, FALSE, [&](DeviceContext& context) {
        const LOGFONTW& font = context.state.font->description();
        const zolgdi::SizedFont sized(font, context.capabilities.dpi, zolgdi::isExact(context));
        zolgdi::fillMetrics(font, sized, context.capabilities, *metrics);
        return TRUE;
    });
}
