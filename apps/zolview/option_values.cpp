#include "zolview/option_values.h"

#include "viewing/image/limits.h"
#include "viewing/text/numbers.h"

#include <cstdint>
#include <string_view>
#include <utility>

namespace zolview {

using namespace viewing;

namespace {

/// The texts before and after the separator, which must be there.
std::optional<std::pair<std::string_view, std::string_view>> split(std::string_view text, char separator) {
    const std::size_t at = text.find(separator);
    if (at == std::string_view::npos) return std::nullopt;
    return std::pair(text.substr(0, at), text.substr(at + 1));
}

bool isBetween(double value, double low, double high) { return value >= low && value <= high; }

}  // namespace

std::optional<Size> parseSize(const std::string& text) {
    const auto parts = split(text, 'x');
    if (!parts) return std::nullopt;
    const auto width = parseAs<int>(parts->first);
    const auto height = parseAs<int>(parts->second);
    if (!width || !height || *width < 1 || *height < 1 || *width > maxSide || *height > maxSide) return std::nullopt;
    if (std::int64_t{*width} * *height > maxPixels) return std::nullopt;
    return Size{*width, *height};
}

std::optional<Window> parseWindow(const std::string& text) {
    const auto parts = split(text, '/');
    if (!parts) return std::nullopt;
    const auto centre = parseAs<double>(parts->first);
    const auto width = parseAs<double>(parts->second);
    if (!centre || !width || !isBetween(*centre, -maxWindow, maxWindow) || !isBetween(*width, 1.0, maxWindow))
        return std::nullopt;
    return Window{*centre, *width};
}

std::optional<Pan> parsePan(const std::string& text) {
    const auto parts = split(text, ',');
    if (!parts) return std::nullopt;
    const auto x = parseAs<double>(parts->first);
    const auto y = parseAs<double>(parts->second);
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
    const auto box = parseAs<int>(parts->first);
    const auto strength = parseAs<int>(parts->second);
    if (!box || !strength || !isBetween(*box, 1, maxSide) || !isBetween(*strength, 1, maxStrength)) return std::nullopt;
    return Sharpening{*box, *strength};
}

std::optional<Magnifier> parseMagnifier(const std::string& text) {
    const auto first = split(text, ',');
    const auto second = first ? split(first->second, ',') : std::nullopt;
    const auto third = second ? split(second->second, ',') : std::nullopt;
    if (!third) return std::nullopt;
    const auto x = parseAs<int>(first->first);
    const auto y = parseAs<int>(second->first);
    const auto radius = parseAs<int>(third->first);
    const auto factor = parseAs<double>(third->second);
    if (!x || !y || !radius || !factor) return std::nullopt;
    if (!isBetween(*x, -maxPan, maxPan) || !isBetween(*y, -maxPan, maxPan)) return std::nullopt;
    if (!isBetween(*radius, 1, maxRadius) || !isBetween(*factor, minFactor, maxFactor)) return std::nullopt;
    return Magnifier{*x, *y, *radius, *factor};
}

std::optional<Flip> parseFlip(const std::string& text) {
    if (text == "h") return Flip::Horizontal;
    if (text == "v") return Flip::Vertical;
    return std::nullopt;
}

std::optional<int> parseQuarterTurn(const std::string& text) {
    const auto degrees = parseWhole(text, 0, 270);
    return degrees && *degrees % 90 == 0 ? degrees : std::nullopt;
}

std::optional<int> parseWhole(const std::string& text, int low, int high) {
    const auto value = parseAs<int>(text);
    if (!value || !isBetween(*value, low, high)) return std::nullopt;
    return value;
}

std::optional<double> parseNumber(const std::string& text, double low, double high) {
    const auto value = parseAs<double>(text);
    if (!value || !isBetween(*value, low, high)) return std::nullopt;
    return value;
}

std::optional<Millimetres> parsePaper(const std::string& text) {
    if (text == "A4") return paperA4;
    if (text == "A3") return paperA3;
    if (text == "letter") return paperLetter;
    return std::nullopt;
}

}  // namespace zolview
