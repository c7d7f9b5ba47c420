// What device contexts draw on, in device pixels: pixel memory or the page of a document.
#pragma once

#include "platform/gdi/area.h"
#include "platform/gdi/objects.h"
#include "platform/gdi/transform.h"

#include <string_view>
#include <vector>

namespace zolgdi {

/// The operation of a raster-operation code: its third byte, the truth table over pattern, source and destination.
constexpr BYTE ropIndex(DWORD rop) { return static_cast<BYTE>((rop >> 16U) & 0xFFU); }
constexpr bool ropUsesSource(BYTE rop) { return ((rop >> 2U) & 0x33U) != (rop & 0x33U); }
constexpr bool ropUsesPattern(BYTE rop) { return ((rop >> 4U) & 0x0FU) != (rop & 0x0FU); }

/// A colour as a pixel of a 32-bit DIB: the fourth byte is 0.
constexpr DWORD pixelOf(COLORREF color) {
    return (DWORD{GetRValue(color)} << 16U) | (DWORD{GetGValue(color)} << 8U) | GetBValue(color);
}

/// Pixels to be copied: a rectangle of them, stretched over a rectangle of the device. Both rectangles have positive
/// extents; a mirrored copy says so.
struct Picture {
    Pixels pixels;
    LONG x = 0;
    LONG y = 0;
    LONG width = 0;
    LONG height = 0;
    RECT destination{};
    bool mirrorX = false;
    bool mirrorY = false;
};

/// A piece of an outline: points joined by straight lines, or by Bezier curves (one point, then three for each piece; a
/// piece whose control points are its ends is a straight line).
struct Figure {
    std::vector<PointD> points;
    bool curved = false;
    bool closed = false;
};
using Figures = std::vector<Figure>;

/// How outlines are drawn, in device pixels. A width of 0 is the thinnest line.
struct Stroke {
    UINT style = PS_SOLID;
    double width = 0.0;
    COLORREF color = 0;
    bool opaqueGaps = false;  ///< gaps of a styled line are drawn, too
    COLORREF gapColor = 0;
};

struct TextRun {
    const LOGFONTW* font = nullptr;
    Affine transform;  ///< of the font; its translation is the text's reference point
    int dpi = 96;
    std::wstring_view text;
    COLORREF color = 0;
    bool opaque = false;
    COLORREF background = 0;
};

class Canvas {
public:
    Canvas() = default;
    virtual ~Canvas() = default;
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    [[nodiscard]] virtual RECT bounds() const = 0;
    /// The pixels drawn so far, where others may copy from; null for a document.
    [[nodiscard]] virtual const Pixels* pixels() const { return nullptr; }

    // Everything is drawn inside `clip` only, which lies inside the bounds.
    virtual void paint(const Area& clip, BYTE rop, COLORREF color) = 0;
    virtual void picture(const Area& clip, const Picture& picture, BYTE rop, COLORREF pattern) = 0;
    virtual void fill(const Area& clip, const Figures& figures, int fillMode, COLORREF color) = 0;
    virtual void stroke(const Area& clip, const Figures& figures, const Stroke& stroke) = 0;
    /// The ellipse that touches the sides of `box`, right and bottom exclusive; `fillColor` null leaves it empty.
    virtual void ellipse(const Area& clip, const RECT& box, const Stroke& stroke, const COLORREF* fillColor) = 0;
    virtual void text(const Area& clip, const TextRun& run) = 0;
};

}  // namespace zolgdi
