// The canvas of printers: a page of a PDF file.
#pragma once

#include "platform/gdi/canvas.h"

#include <cairo.h>

namespace zolgdi {

/// Draws on the page that a Cairo context has begun; one unit of it is a dot of the printer. Shapes and text stay
/// shapes and text, and pictures keep their own resolution.
class PdfCanvas : public Canvas {
public:
    /// The context stays the caller's.
    PdfCanvas(cairo_t* cairo, const RECT& page) : cairo_(cairo), page_(page) {}

    [[nodiscard]] RECT bounds() const override { return page_; }

    void paint(const Area& clip, BYTE rop, COLORREF color) override;
    void picture(const Area& clip, const Picture& picture, BYTE rop, COLORREF pattern) override;
    void fill(const Area& clip, const Figures& figures, int fillMode, COLORREF color) override;
    void stroke(const Area& clip, const Figures& figures, const Stroke& stroke) override;
    void ellipse(const Area& clip, const RECT& box, const Stroke& stroke, const COLORREF* fillColor) override;
    void text(const Area& clip, const TextRun& run) override;

private:
    void strokePath(const Figures& figures, COLORREF color);

    cairo_t* cairo_;
    RECT page_;
};

}  // namespace zolgdi
