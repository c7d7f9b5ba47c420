// An image as it is to be shown, whatever it was read from. All coordinates are 0-based, x the column and y the row.
#pragma once

#include "bit_plane.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace zolview {

/// A refusal, in words for the person at the keyboard.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What the resampler's 16.16 coordinates can address.
inline constexpr int maxSide = 32767;
/// Keeps every buffer of one picture below half a gigabyte.
inline constexpr std::int64_t maxPixels = std::int64_t{1} << 26;
/// Levels of the raster: 12 bits.
inline constexpr int rasterLevels = 4096;

struct Point {
    int x = 0;
    int y = 0;
    bool operator==(const Point&) const = default;
};

/// All four edges belong to the rectangle.
struct Box {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    bool operator==(const Box&) const = default;
};

/// The radius counts columns; with pixels that are not square it covers radius / ratioYx rows.
struct Circle {
    Point centre;
    int radius = 0;
    bool operator==(const Circle&) const = default;
};

/// A pixel is visible when it lies inside every shape that is present.
struct Shutters {
    std::optional<Box> rectangle;
    std::optional<Circle> circle;
    std::vector<Point> polygon;
    std::uint16_t presentationValue = 0;

    [[nodiscard]] bool any() const { return rectangle || circle || !polygon.empty(); }
};

/// What an overlay plane marks; each kind has its own colour.
enum class PlaneKind { Graphics, RegionOfInterest };

/// An overlay plane, already cut to the image: it lies inside it entirely.
struct OverlayPlane {
    Point origin;
    BitPlane bits;
    PlaneKind kind = PlaneKind::Graphics;
};

/// An overlay plane that travels in one of the raster's bits 12 to 15.
struct EmbeddedPlane {
    int bit = 12;
    PlaneKind kind = PlaneKind::Graphics;
};

/// How a window turns values into grey. DICOM's LINEAR counts pixel values, LINEAR_EXACT measures a length.
enum class WindowFunction { Linear, LinearExact, Sigmoid };

/// In the image's output units (Hounsfield units, for one): after slope and intercept.
struct Window {
    double centre = 0.0;
    double width = 1.0;
    bool operator==(const Window&) const = default;
};

struct StoredImage {
    int width = 0;
    int height = 0;
    /// Height of a pixel divided by its width.
    double ratioYx = 1.0;
    /// Millimetres, where a spacing is given.
    std::optional<double> pixelWidth;
    /// The spacing is that on a detector or film, which magnifies, not one calibrated to the body.
    bool spacingIsUncalibrated = false;

    /// Row by row: the level in bits 0 to 11, embedded planes above.
    std::vector<std::uint16_t> samples;
    /// The stored value that became level 0: stored = level + lowest, output = slope * stored + intercept.
    int lowest = 0;
    double slope = 1.0;
    double intercept = 0.0;
    /// Smallest and largest level, padding aside.
    int minLevel = 0;
    int maxLevel = 0;

    /// Empty, or a set bit for each pixel that is no part of the picture.
    BitPlane padding;

    /// The low end of the window is white.
    bool inverted = false;
    std::optional<Window> window;
    WindowFunction function = WindowFunction::Linear;
    /// The image comes with a VOI LUT and no window: it can be shown only with a window from elsewhere.
    bool needsWindow = false;

    Shutters shutters;
    std::vector<OverlayPlane> overlays;
    std::vector<EmbeddedPlane> embedded;

    /// What was found odd and how it was taken; one line each.
    std::vector<std::string> notes;
};

}  // namespace zolview
