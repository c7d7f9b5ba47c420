// The texts of options as values.
#pragma once

#include "viewing/display/settings.h"
#include "viewing/output/page_settings.h"

#include <optional>
#include <string>

namespace zolview {

/// "WxH", whole numbers from 1 to 32767 with no more than maxPixels together; null for anything else.
std::optional<viewing::Size> parseSize(const std::string& text);

/// "CENTRE/WIDTH", the width from 1 to maxWindow, the centre as far either way; null for anything else.
std::optional<viewing::Window> parseWindow(const std::string& text);

/// "X,Y", each from -maxPan to maxPan; null for anything else.
std::optional<viewing::Pan> parsePan(const std::string& text);

/// "nearest", "bilinear" or "bicubic"; null for anything else.
std::optional<viewing::Interpolation> parseInterpolation(const std::string& text);

/// "BOX,STRENGTH", whole numbers, the box from 1 to maxSide, the strength from 1 to maxStrength; null for anything
/// else.
std::optional<viewing::Sharpening> parseSharpening(const std::string& text);

/// "X,Y,RADIUS,FACTOR", the first three whole numbers, the place as far away as a pan can be, the radius from 1 to
/// maxRadius, the factor from minFactor to maxFactor; null for anything else.
std::optional<viewing::Magnifier> parseMagnifier(const std::string& text);

/// "h" or "v"; null for anything else.
std::optional<viewing::Flip> parseFlip(const std::string& text);

/// "0", "90", "180" or "270"; null for anything else.
std::optional<int> parseQuarterTurn(const std::string& text);

/// A whole number from `low` to `high`; null for anything else.
std::optional<int> parseWhole(const std::string& text, int low, int high);

/// A number from `low` to `high`; null for anything else.
std::optional<double> parseNumber(const std::string& text, double low, double high);

/// "A4", "A3" or "letter", upright; null for anything else.
std::optional<viewing::Millimetres> parsePaper(const std::string& text);

}  // namespace zolview
