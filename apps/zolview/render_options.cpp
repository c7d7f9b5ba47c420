#include "render_options.h"

#include <charconv>
#include <string_view>
#include <utility>

namespace zolview {

namespace {

template <typename Number>
std::optional<Number> parse(std::string_view text) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

/// The texts before and after the separator, which must be there.
std::optional<std::pair<std::string_view, std::string_view>> split(std::string_view text, char separator) {
    const std::size_t at = text.find(separator);
    if (at == std::string_view::npos) return std::nullopt;
    return std::pair(text.substr(0, at), text.substr(at + 1));
}

/// False for NaN too.
bool isBetween(double value, double low, double high) { return value >= low && value <= high; }

}  // namespace

std::optional<Size> parseSize(const std::string& text) {
    const auto parts = split(text, 'x');
    if (!parts) return std::nullopt;
    const auto width = parse<int>(parts->first);
    const auto height = parse<int>(parts->second);
    if (!width || !height || *width < 1 || *height < 1 || *width > maxSide || *height > maxSide) return std::nullopt;
    if (std::int64_t{*width} * *height > maxPixels) return std::nullopt;
    return Size{*width, *height};
}

std::optional<Window> parseWindow(const std::string& text) {
    const auto parts = split(text, '/');
    if (!parts) return std::nullopt;
    constexpr double extreme = 1e9;
    const auto centre = parse<double>(parts->first);
    const auto width = parse<double>(parts->second);
    if (!centre || !width || !isBetween(*centre, -extreme, extreme) || !isBetween(*width, 1.0, extreme))
        return std::nullopt;
    return Window{*centre, *width};
}

std::optional<Pan> parsePan(const std::string& text) {
    const auto parts = split(text, ',');
    if (!parts) return std::nullopt;
    const auto x = parse<double>(parts->first);
    const auto y = parse<double>(parts->second);
    if (!x || !y || !isBetween(*x, -maxPan, maxPan) || !isBetween(*y, -maxPan, maxPan)) return std::nullopt;
    return Pan{*x, *y};
}

std::optional<Interpolation> parseInterpolation(const std::string& text) {
    if (text == "nearest") return Interpolation::Nearest;
    if (text == "bilinear") return Interpolation::Bilinear;
    if (text == "bicubic") return Interpolation::Bicubic;
    return std::nullopt;
}

std::optional<Sharpening> parseSharpening(const std::string& text) {
    const auto parts = split(text, ',');
    if (!parts) return std::nullopt;
    const auto box = parse<int>(parts->first);
    const auto strength = parse<int>(parts->second);
    if (!box || !strength || !isBetween(*box, 1, maxSide) || !isBetween(*strength, 1, maxStrength)) return std::nullopt;
    return Sharpening{*box, *strength};
}

std::optional<Magnifier> parseMagnifier(const std::string& text) {
    const auto first = split(text, ',');
    const auto second = first ? split(first->second, ',') : std::nullopt;
    const auto third = second ? split(second->second, ',') : std::nullopt;
    if (!third) return std::nullopt;
    const auto x = parse<int>(first->first);
    const auto y = parse<int>(second->first);
    const auto radius = parse<int>(third->first);
    const auto factor = parse<double>(third->second);
    if (!x || !y || !radius || !factor) return std::nullopt;
    if (!isBetween(*x, -maxPan, maxPan) || !isBetween(*y, -maxPan, maxPan)) return std::nullopt;
    if (!isBetween(*radius, 1, maxRadius) || !isBetween(*factor, minFactor, maxFactor)) return std::nullopt;
    return Magnifier{*x, *y, *radius, *factor};
}

std::optional<double> parseNumber(const std::string& text, double low, double high) {
    const auto value = parse<double>(text);
    if (!value || !isBetween(*value, low, high)) return std::nullopt;
    return value;
}

}  // namespace zolview
