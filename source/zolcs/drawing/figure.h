// Drawing of figures made of vertices, the same for every kind of outline.
#pragma once

#include "zolcs/ccsrendermodes.h"
#include "zolcs/drawing/outline.h"

#include <cstdint>
#include <vector>

namespace zolcs {

struct FigureStyle {
    /// Filled figures of more than three vertices are areas; those with fewer are drawn as outlines.
    [[nodiscard]] bool isArea(std::size_t vertexCount) const { return filled && vertexCount > 3; }

    int mode = CCS_MODE_SCREEN;
    COLORREF color = 0;  ///< of the outline on the screen
    int penStyle = 0;
    bool filled = false;
    COLORREF fillColor = 0;  ///< 0: the colour of the outline fills
    bool shadow = true;
    bool selected = false;
    bool dicomPrint = false;  ///< shadow in nearly black
};

/// Draws a figure: an area without shadow and handles; or the outline's shadow, the outline and, while selected, a
/// handle with its shadow at every vertex. Restores pen, brush and background mode of `dc`.
void drawFigure(HDC dc, const FigureStyle& style, const Outline& outline, const std::vector<OutputPoint>& vertices);

}  // namespace zolcs
