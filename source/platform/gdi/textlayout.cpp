#include "platform/gdi/textlayout.h"

#include "platform/unicode.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace zolgdi {

namespace {

/// Font maps belong to a thread. Pango's own one for the main thread would never be given back.
PangoFontMap* fontMap() {
    thread_local const GObjectPtr<PangoFontMap> map(pango_cairo_font_map_new());
    return map.get();
}

GObjectPtr<PangoContext> makeContext(bool exact, BYTE quality) {
    GObjectPtr<PangoContext> context(pango_font_map_create_context(fontMap()));
    if (!context) throw std::bad_alloc();
    const std::unique_ptr<cairo_font_options_t, ReleaseWith<&cairo_font_options_destroy>> options(
        cairo_font_options_create());
    const bool smooth = exact || quality == ANTIALIASED_QUALITY || quality == CLEARTYPE_QUALITY;
    cairo_font_options_set_antialias(options.get(), smooth ? CAIRO_ANTIALIAS_GRAY : CAIRO_ANTIALIAS_NONE);
    cairo_font_options_set_hint_style(options.get(), exact ? CAIRO_HINT_STYLE_NONE : CAIRO_HINT_STYLE_FULL);
    cairo_font_options_set_hint_metrics(options.get(), exact ? CAIRO_HINT_METRICS_OFF : CAIRO_HINT_METRICS_ON);
    pango_cairo_context_set_font_options(context.get(), options.get());
    // A line reads from the left, whatever scripts are in it; runs of right-to-left ones are turned round within it.
    pango_context_set_base_dir(context.get(), PANGO_DIRECTION_LTR);
    pango_context_set_round_glyph_positions(context.get(), exact ? FALSE : TRUE);
    return context;
}

/// Measures of a font at an em of 1.
struct Proportions {
    double ascent = 0.0;
    double descent = 0.0;
    double average = 0.0;
};

Proportions proportionsOf(PangoContext* context, PangoFontDescription* description) {
    constexpr double sample = 1024.0;  // pixels: large enough for rounding not to matter
    pango_font_description_set_absolute_size(description, sample * PANGO_SCALE);
    const std::unique_ptr<PangoFontMetrics, ReleaseWith<&pango_font_metrics_unref>> metrics(
        pango_context_get_metrics(context, description, nullptr));
    if (!metrics) throw std::bad_alloc();
    const auto ratio = [&](int value) { return value / (sample * PANGO_SCALE); };
    return {ratio(pango_font_metrics_get_ascent(metrics.get())), ratio(pango_font_metrics_get_descent(metrics.get())),
            ratio(pango_font_metrics_get_approximate_char_width(metrics.get()))};
}

/// Sizes beyond this are cut: they would not fit Pango's units.
constexpr double largest = 16384.0;

double limited(LONG size) { return std::min(std::fabs(static_cast<double>(size)), largest); }

}  // namespace

std::string toUtf8(std::wstring_view text) {
    std::string out;
    for (const wchar_t unit : text) {
        const char32_t code = zolplatform::unitOf(unit);
        const bool control = code < 0x20 || code == 0x7F;
        zolplatform::appendUtf8(out, control ? U' ' : code);
    }
    return out;
}

SizedFont::SizedFont(const LOGFONTW& font, int dpi, bool exact)
    : context_(makeContext(exact, font.lfQuality)), description_(pango_font_description_new()) {
    PangoFontDescription* description = description_.get();
    const std::string face = toUtf8(font.lfFaceName);
    pango_font_description_set_family(description, face.empty() ? "Sans" : face.c_str());
    const LONG weight = font.lfWeight == FW_DONTCARE ? FW_NORMAL : std::clamp<LONG>(font.lfWeight, 100, 1000);
    pango_font_description_set_weight(description, static_cast<PangoWeight>(weight));
    pango_font_description_set_style(description, font.lfItalic != 0 ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);

    const Proportions proportions = proportionsOf(context_.get(), description);
    // A positive height is the cell's, a negative one the em's; 0 is 12 points.
    const double cell = font.lfHeight == 0 ? std::round(12.0 * dpi / 72.0) : limited(font.lfHeight);
    const double cellOfEm = std::max(proportions.ascent + proportions.descent, 0.01);
    em_ = std::max(font.lfHeight < 0 ? cell : cell / cellOfEm, 1.0 / PANGO_SCALE);
    pango_font_description_set_absolute_size(description, em_ * PANGO_SCALE);
    ascent_ = static_cast<int>(std::lround(proportions.ascent * em_));
    descent_ =
        font.lfHeight < 0 ? static_cast<int>(std::lround(proportions.descent * em_)) : static_cast<int>(cell) - ascent_;
    const double natural = std::max(proportions.average * em_, 1.0 / PANGO_SCALE);
    if (font.lfWidth != 0) stretch_ = limited(font.lfWidth) / natural;
    averageWidth_ = std::max(static_cast<int>(std::lround(natural * stretch_)), 1);
}

TextLine::TextLine(const LOGFONTW& font, int dpi, bool exact, std::wstring_view text)
    : font_(font, dpi, exact), escapement_(font.lfEscapement), layout_(pango_layout_new(font_.context())) {
    if (!layout_) throw std::bad_alloc();
    const std::string utf8 = toUtf8(text);
    pango_layout_set_font_description(layout_.get(), font_.description());
    pango_layout_set_single_paragraph_mode(layout_.get(), TRUE);
    pango_layout_set_auto_dir(layout_.get(), FALSE);
    const std::unique_ptr<PangoAttrList, ReleaseWith<&pango_attr_list_unref>> attributes(pango_attr_list_new());
    // Characters stand side by side at their own widths.
    pango_attr_list_insert(attributes.get(), pango_attr_font_features_new("kern=0, liga=0, clig=0"));
    if (font.lfUnderline != 0) {
        pango_attr_list_insert(attributes.get(), pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
    }
    if (font.lfStrikeOut != 0) pango_attr_list_insert(attributes.get(), pango_attr_strikethrough_new(TRUE));
    pango_layout_set_attributes(layout_.get(), attributes.get());
    pango_layout_set_text(layout_.get(), utf8.data(), static_cast<int>(utf8.size()));
    line_ = pango_layout_get_line_readonly(layout_.get(), 0);
}

const TextLine& TextLine::shaped(const LOGFONTW& font, int dpi, bool exact, std::wstring_view text) {
    struct Last {
        LOGFONTW font{};
        int dpi = 0;
        bool exact = false;
        std::wstring text;
        std::unique_ptr<const TextLine> line;
    };
    thread_local Last last;
    const bool same = last.line && last.dpi == dpi && last.exact == exact && last.text == text &&
                      std::memcmp(&last.font, &font, sizeof(font)) == 0;
    if (!same) {
        last.line = nullptr;
        last.line = std::make_unique<const TextLine>(font, dpi, exact, text);
        last.font = font;
        last.dpi = dpi;
        last.exact = exact;
        last.text = text;
    }
    return *last.line;
}

int TextLine::width() const {
    PangoRectangle logical{};
    if (line_ != nullptr) pango_layout_line_get_extents(line_, nullptr, &logical);
    return static_cast<int>(std::ceil(logical.width * font_.stretch() / PANGO_SCALE));
}

Affine TextLine::placed(const Affine& transform) const {
    constexpr double degree = 3.141592653589793 / 180.0;
    const double angle = -static_cast<double>(escapement_) / 10.0 * degree;
    const double c = escapement_ == 0 ? 1.0 : std::cos(angle);
    const double s = escapement_ == 0 ? 0.0 : std::sin(angle);
    return Affine{c, s, -s, c, 0.0, 0.0}.then(transform);
}

Figure TextLine::cell(const Affine& placement) const {
    const double right = width();
    const double bottom = font_.height();
    return {
        {placement(0.0, 0.0), placement(right, 0.0), placement(right, bottom), placement(0.0, bottom)}, false, true};
}

RECT TextLine::extent(const Affine& placement) const {
    PangoRectangle ink{};
    if (line_ != nullptr) pango_layout_line_get_extents(line_, &ink, nullptr);
    constexpr double margin = 3.0;
    const double left = ink.x * font_.stretch() / PANGO_SCALE - margin;
    const double right = (ink.x + ink.width) * font_.stretch() / PANGO_SCALE + margin;
    const double top = font_.ascent() + static_cast<double>(ink.y) / PANGO_SCALE - margin;
    const double bottom = font_.ascent() + static_cast<double>(ink.y + ink.height) / PANGO_SCALE + margin;
    const auto bounds = placement.boundsOf(left, top, right, bottom);
    const POINT first = roundToDevice(bounds.low);
    const POINT last = roundToDevice(bounds.high);
    return {first.x - 1, first.y - 1, last.x + 1, last.y + 1};
}

Figures TextLine::outlines(const Affine& placement) const {
    Figures figures;
    if (line_ == nullptr) return figures;
    // A surface without limits: of one that has some, Cairo leaves out the glyphs that lie beyond them.
    const CairoSurface surface(cairo_recording_surface_create(CAIRO_CONTENT_ALPHA, nullptr));
    const CairoContext cairo(cairo_create(surface.get()));
    cairo_scale(cairo.get(), font_.stretch(), 1.0);
    cairo_move_to(cairo.get(), 0.0, font_.ascent());
    pango_cairo_layout_line_path(cairo.get(), line_);
    cairo_identity_matrix(cairo.get());
    const std::unique_ptr<cairo_path_t, ReleaseWith<&cairo_path_destroy>> path(cairo_copy_path(cairo.get()));
    if (path->status != CAIRO_STATUS_SUCCESS) throw std::bad_alloc();

    // Figures count from the middles of pixels.
    const auto at = [&](const cairo_path_data_t& data) {
        const PointD p = placement(data.point.x, data.point.y);
        return PointD{p.x - 0.5, p.y - 0.5};
    };
    for (int i = 0; i < path->num_data; i += path->data[i].header.length) {
        const cairo_path_data_t* const data = path->data + i;
        if (data->header.type == CAIRO_PATH_MOVE_TO) {
            figures.push_back({{at(data[1])}, true, false});
        } else if (data->header.type == CAIRO_PATH_LINE_TO) {
            auto& points = figures.back().points;
            points.insert(points.end(), {PointD(points.back()), at(data[1]), at(data[1])});
        } else if (data->header.type == CAIRO_PATH_CURVE_TO) {
            auto& points = figures.back().points;
            points.insert(points.end(), {at(data[1]), at(data[2]), at(data[3])});
        } else {
            figures.back().closed = true;
        }
    }
    // Cairo begins another figure behind each closed one.
    figures.erase(std::remove_if(figures.begin(), figures.end(), [](const Figure& f) { return f.points.size() < 2; }),
                  figures.end());
    return figures;
}

void TextLine::draw(cairo_t* cairo, const Affine& placement) const {
    if (line_ == nullptr) return;
    const cairo_matrix_t matrix{placement.m11, placement.m12, placement.m21, placement.m22, placement.dx, placement.dy};
    cairo_save(cairo);
    cairo_transform(cairo, &matrix);
    cairo_scale(cairo, font_.stretch(), 1.0);
    cairo_move_to(cairo, 0.0, font_.ascent());
    pango_cairo_show_layout_line(cairo, line_);
    cairo_restore(cairo);
}

}  // namespace zolgdi
