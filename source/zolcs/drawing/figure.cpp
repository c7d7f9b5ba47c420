#include "zolcs/drawing/figure.h"

#include "zolcs/ccsgroup.h"
#include "zolcs/drawing/gdiscope.h"
#include "zolcs/drawing/modes.h"
#include "zolcs/support/conversion.h"

namespace zolcs {

namespace {

/// The figure's own fill colour, or 0.
COLORREF ownFillColor(const FigureStyle& style) { return style.filled ? style.fillColor : 0; }

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
    const int offset = shadowOffset(style.mode);
    drawOutline(dc, outline, offset);
    if (hasWideShadow(style.mode, style.dicomPrint)) drawOutline(dc, outline, offset + 1);
    if (style.selected) drawHandles(dc, vertices, 1);
}

}  // namespace

void drawFigure(HDC dc, const FigureStyle& style, const Outline& outline, const std::vector<OutputPoint>& vertices) {
    const FigureColors look = figureColors(dc, style.mode, style.color, ownFillColor(style));
    const Pen mainPen(CreatePen(style.penStyle, look.penWidth, look.pen));
    const Brush mainBrush(CreateSolidBrush(look.brush));
    const Pen shadowPen(CreatePen(style.penStyle, look.penWidth, shadowColor(style.mode, style.dicomPrint)));
    const Brush shadowBrush(CreateSolidBrush(RGB(0, 0, 0)));

    // Deliberate: a figure with a fill colour of its own leaves the shadow, if it has one, to the caller's pen and
    // brush.
    const bool callersShadow = ownFillColor(style) != 0;
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
