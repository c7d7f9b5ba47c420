// What each render mode takes, positions apart (placement.h knows those): colours, shadows and widths.
#pragma once

#include "platform/platform.h"
#include "zolcs/ccsrendermodes.h"

namespace zolcs {

constexpr bool isRenderMode(int mode) { return mode >= CCS_MODE_SCREEN && mode <= CCS_MODE_BURN_IN; }

/// Whether drawing updates the display coordinates, so that picking and moving use the newest view.
constexpr bool keepsDisplayInStep(int mode) { return mode == CCS_MODE_SCREEN || mode == CCS_MODE_BURN_IN; }

/// Whether texts that stay where they are on the display are drawn: not into an image.
constexpr bool drawsFixedTexts(int mode) { return mode != CCS_MODE_BURN_IN; }

/// Text on a printer's page is white, elsewhere of its own colour.
constexpr unsigned long textColor(int mode, unsigned long ownColor) {
    return mode == CCS_MODE_PRINTER ? 0xFFFFFF : ownColor;
}

/// The pen of ellipses: on a printer's page ten pixels wide, whatever its resolution.
constexpr int ellipsePenWidth(int mode) { return mode == CCS_MODE_PRINTER ? 10 : 1; }

/// How many pixels a line's shadow lies to the right of it and below.
constexpr int shadowOffset(int mode) { return mode == CCS_MODE_PRINTER ? 10 : 1; }

/// Shadows and halos of prints that are burnt in are one pixel wider than others.
constexpr bool hasWideShadow(int mode, bool dicomPrint) { return mode == CCS_MODE_BURN_IN && dicomPrint; }

/// Shadows and halos are black; wide ones nearly black, because pure black would mean "nothing here".
constexpr COLORREF shadowColor(int mode, bool dicomPrint) {
    return hasWideShadow(mode, dicomPrint) ? 0x010101 : 0x000000;
}

/// Width and colours of the lines, and colours of the areas, of figures made of vertices.
struct FigureColors {
    int penWidth = 0;  ///< 0 is GDI's thinnest line
    COLORREF pen = 0;
    COLORREF brush = 0;
};

/// `color` is the figure's; `fillColor` fills it where it is not 0. `dc` gives the resolution and the text's height.
FigureColors figureColors(HDC dc, int mode, COLORREF color, COLORREF fillColor);

}  // namespace zolcs
