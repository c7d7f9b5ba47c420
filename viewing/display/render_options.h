// What a picture is to look like, as asked for on the command line.
#pragma once

#include "viewing/annotations/annotations.h"
#include "viewing/image/palette.h"
#include "viewing/image/stored_image.h"

#include <optional>
#include <string>
#include <vector>

namespace viewing {

struct Size {
    int width = 0;
    int height = 0;
    bool operator==(const Size&) const = default;
};

struct Pan {
    double x = 0.0;
    double y = 0.0;
    bool operator==(const Pan&) const = default;
};

enum class Flip { None, Horizontal, Vertical };

/// How values between the image's pixels are made.
enum class Interpolation { Nearest, Bilinear, Bicubic };

/// Unsharp masking of the image's pixels with a square box.
struct Sharpening {
    int box = 1;  ///< its edge in pixels of the image
    int strength = 1;
    bool operator==(const Sharpening&) const = default;
};

/// A round glass over the picture, in whole pixels of the picture.
struct Magnifier {
    int x = 0;
    int y = 0;
    int radius = 1;
    double factor = 1.0;  ///< beside what is around it
    bool operator==(const Magnifier&) const = default;
};

/// Of a window's centre, either way, and of its width.
inline constexpr double maxWindow = 1e9;
inline constexpr double minZoom = 0.001;
inline constexpr double maxZoom = 1000.0;
inline constexpr double maxPan = 1e6;
inline constexpr double maxDegrees = 1e6;
inline constexpr int maxStrength = 1000;
inline constexpr int maxRadius = 4096;
inline constexpr double minFactor = 0.01;
inline constexpr double maxFactor = 100.0;

/// The view's steps in their order: flip, rotate, zoom, pan.
struct RenderOptions {
    /// The picture's size; without one, the image's own.
    std::optional<Size> size;
    /// In output units, in place of the file's.
    std::optional<Window> window;
    Flip flip = Flip::None;
    /// Clockwise.
    double degrees = 0.0;
    /// 1 fits the whole image into the picture.
    double zoom = 1.0;
    /// Pixels of the picture, to the right and down.
    Pan pan;
    Interpolation interpolation = Interpolation::Nearest;
    /// Through the host's image primitives where they can show the image.
    bool accelerated = false;
    std::optional<Sharpening> sharpening;
    std::optional<Magnifier> magnifier;
    bool invert = false;
    /// In which grey images are shown, in place of greys.
    std::optional<Palette> palette;
    bool overlays = true;
    bool shutters = true;
    /// Grey of what lies outside the image, 0 to 255.
    int background = 0;
    std::vector<Annotation> annotations;
    /// Writes the annotations into the image's pixels instead of drawing them over the picture.
    bool burnIn = false;
};

/// "WxH", whole numbers from 1 to 32767 with no more than maxPixels together; null for anything else.
std::optional<Size> parseSize(const std::string& text);

/// "CENTRE/WIDTH", the width from 1 to maxWindow, the centre as far either way; null for anything else.
std::optional<Window> parseWindow(const std::string& text);

/// "X,Y", each from -maxPan to maxPan; null for anything else.
std::optional<Pan> parsePan(const std::string& text);

/// "nearest", "bilinear" or "bicubic"; null for anything else.
std::optional<Interpolation> parseInterpolation(const std::string& text);

/// "BOX,STRENGTH", whole numbers, the box from 1 to maxSide, the strength from 1 to maxStrength; null for anything
/// else.
std::optional<Sharpening> parseSharpening(const std::string& text);

/// "X,Y,RADIUS,FACTOR", the first three whole numbers, the place as far away as a pan can be, the radius from 1 to
/// maxRadius, the factor from minFactor to maxFactor; null for anything else.
std::optional<Magnifier> parseMagnifier(const std::string& text);

/// "h" or "v"; null for anything else.
std::optional<Flip> parseFlip(const std::string& text);

/// "0", "90", "180" or "270"; null for anything else.
std::optional<int> parseQuarterTurn(const std::string& text);

/// A whole number from `low` to `high`; null for anything else.
std::optional<int> parseWhole(const std::string& text, int low, int high);

/// A number from `low` to `high`; null for anything else.
std::optional<double> parseNumber(const std::string& text, double low, double high);

}  // namespace viewing
