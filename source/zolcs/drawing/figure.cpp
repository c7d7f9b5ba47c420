#include "zolcs/drawing/figure.h"

#include "zolcs/ccsgroup.h"
#include "zolcs/drawing/gdiscope.h"
#include "zolcs/support/conversion.h"

#include <cstdint>

namespace zolcs {

namespace {

constexpr COLORREF midGrey = 0x808080;
constexpr COLORREF yellow = 0x00FFFF;
constexpr COLORREF white = 0xFFFFFF;

struct Look {
    int width = 0;
    COLORREF pen = 0;
    COLORREF brush = 0;
};

bool hasFillColor(const FigureStyle& style) { return style.filled && style.fillColor != 0; }

// Ten pixels at 600 dpi, the same length at other resolutions.
int printerPenWidth(HDC dc) { return saturated(std::int64_t{GetDeviceCaps(dc, LOGPIXELSY)} * 10 / 600); }

// A tenth of the height of the text beside it.
int textPenWidth(HDC dc) {
    TEXTMETRICW metrics{};
    GetTextMetricsW(dc, &metrics);
    return truncated(metrics.tmHeight / 10.0 + 1.5);
}

Look lookOf(HDC dc, const FigureStyle& style) {
    const bool fills = hasFillColor(style);
    switch (style.mode) {
        case printerMode:
            return {printerPenWidth(dc), white, fills ? style.fillColor : white};
        case textMode:
            return {textPenWidth(dc), yellow, fills ? style.fillColor : yellow};
        default:
            return {0, style.color, fills ? midGrey : style.color};
    }
}

/// Gaps of dotted lines show what lies below; the mode before comes back.
class TransparentGaps {
public:
    TransparentGaps(HDC dc, bool wanted) : dc_(dc), previous_(wanted ? SetBkMode(dc, TRANSPARENT) : 0) {}
    ~TransparentGaps() {
        if (previous_ != 0) SetBkMode(dc_, previous_);
    }
    TransparentGaps(const TransparentGaps&) = delete;
    TransparentGaps& operator=(const TransparentGaps&) = delete;

private:
    HDC dc_;
    int previous_;
};

void drawHandles(HDC dc, const std::vector<OutputPoint>& vertices, int offset) {
    for (const OutputPoint vertex : vertices) {
        if (isDrawable(vertex)) CCsBox::render(truncated(vertex.x) + offset, truncated(vertex.y) + offset, dc);
    }
}

void drawShadow(HDC dc, const FigureStyle& style, const Outline& outline, const std::vector<OutputPoint>& vertices) {
    const int offset = style.mode == printerMode ? 10 : 1;
    drawOutline(dc, outline, offset);
    if (style.mode == textMode && style.dicomPrint) drawOutline(dc, outline, offset + 1);
    if (style.selected) drawHandles(dc, vertices, 1);
}

}  // namespace

void drawFigure(HDC dc, const FigureStyle& style, const Outline& outline, const std::vector<OutputPoint>& vertices) {
    const Look look = lookOf(dc, style);
    const Pen mainPen(CreatePen(style.penStyle, look.width, look.pen));
    const Brush mainBrush(CreateSolidBrush(look.brush));
    const Pen shadowPen(CreatePen(style.penStyle, look.width, shadowColor(style.mode, style.dicomPrint)));
    const Brush shadowBrush(CreateSolidBrush(RGB(0, 0, 0)));

    // Deliberate: a figure with a fill colour of its own leaves the shadow, if it has one, to the caller's pen and
    // brush.
    const bool callersShadow = hasFillColor(style);
    SelectGuard pen(dc, callersShadow ? nullptr : shadowPen.get());
    SelectGuard brush(dc, callersShadow ? nullptr : shadowBrush.get());
    const TransparentGaps gaps(dc, style.penStyle == PS_DOT);
    const bool area = style.isArea(vertices.size());
    if (style.shadow && !area) drawShadow(dc, style, outline, vertices);
    pen.change(mainPen.get());
    brush.change(mainBrush.get());
    if (area) {
        fillOutline(dc, outline);
    } else {
        drawOutline(dc, outline, 0.0);
        if (style.selected) drawHandles(dc, vertices, 0);
    }
}

}  // namespace zolcs
