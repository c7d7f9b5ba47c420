// One line of text in a font: its measures, and its glyphs through Pango and Cairo.
#pragma once

#include "platform/gdi/cairoscope.h"
#include "platform/gdi/canvas.h"

#include <pango/pangocairo.h>

#include <string>

namespace zolgdi {

/// A line in UTF-8, of which every wide character is one: control characters become blanks, since a line has no line
/// breaks and no tabs.
std::string toUtf8(std::wstring_view text);

template <typename T>
using GObjectPtr = std::unique_ptr<T, ReleaseWith<&g_object_unref>>;

/// A font at its size, in logical units.
class SizedFont {
public:
    /// `exact`: without hinting and rounding to pixels, for paper.
    SizedFont(const LOGFONTW& font, int dpi, bool exact);

    [[nodiscard]] PangoContext* context() const { return context_.get(); }
    [[nodiscard]] const PangoFontDescription* description() const { return description_.get(); }
    [[nodiscard]] int ascent() const { return ascent_; }
    [[nodiscard]] int descent() const { return descent_; }
    [[nodiscard]] int height() const { return ascent_ + descent_; }
    [[nodiscard]] double em() const { return em_; }
    /// How much wider than its natural shape the font is drawn.
    [[nodiscard]] double stretch() const { return stretch_; }
    [[nodiscard]] int averageWidth() const { return averageWidth_; }

private:
    GObjectPtr<PangoContext> context_;
    std::unique_ptr<PangoFontDescription, ReleaseWith<&pango_font_description_free>> description_;
    double em_ = 0.0;
    int ascent_ = 0;
    int descent_ = 0;
    double stretch_ = 1.0;
    int averageWidth_ = 0;
};

class TextLine {
public:
    TextLine(const LOGFONTW& font, int dpi, bool exact, std::wstring_view text);

    /// The line for these arguments, good until this thread's next call: a halo draws the same text many times, and
    /// shaping it is most of the work.
    static const TextLine& shaped(const LOGFONTW& font, int dpi, bool exact, std::wstring_view text);

    [[nodiscard]] const SizedFont& font() const { return font_; }
    [[nodiscard]] int width() const;
    /// From the line's own coordinates (reference point at the origin) to the device.
    [[nodiscard]] Affine placed(const Affine& transform) const;
    /// What the glyphs may cover on the device.
    [[nodiscard]] RECT extent(const Affine& placement) const;
    /// The corners of the line's cell on the device.
    [[nodiscard]] Figure cell(const Affine& placement) const;
    /// The glyphs' outlines on the device.
    [[nodiscard]] Figures outlines(const Affine& placement) const;
    /// Draws the glyphs in Cairo's current source.
    void draw(cairo_t* cairo, const Affine& placement) const;

private:
    SizedFont font_;
    int escapement_;
    GObjectPtr<PangoLayout> layout_;
    PangoLayoutLine* line_ = nullptr;  // the layout's
};

}  // namespace zolgdi
