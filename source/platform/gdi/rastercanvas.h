// The canvas of windows and bitmaps: pixel memory.
#pragma once

#include "platform/gdi/canvas.h"

namespace zolgdi {

/// Draws with exact integer code all that GDI defines to the pixel.
class RasterCanvas : public Canvas {
public:
    /// The memory to draw on, which stays the caller's; none at first.
    void setPixels(const Pixels& pixels) { pixels_ = pixels; }

    [[nodiscard]] RECT bounds() const override { return {0, 0, pixels_.width, pixels_.height}; }
    [[nodiscard]] const Pixels* pixels() const override { return &pixels_; }

    void paint(const Area& clip, BYTE rop, COLORREF color) override;
    void picture(const Area& clip, const Picture& picture, BYTE rop, COLORREF pattern) override;
    void fill(const Area& clip, const Figures& figures, int fillMode, COLORREF color) override;
    void stroke(const Area& clip, const Figures& figures, const Stroke& stroke) override;
    void ellipse(const Area& clip, const RECT& box, const Stroke& stroke, const COLORREF* fillColor) override;
    void text(const Area& clip, const TextRun& run) override;

private:
    void paintRun(const Area& clip, LONG y, LONG left, LONG right, COLORREF color);

    Pixels pixels_;
};

}  // namespace zolgdi
