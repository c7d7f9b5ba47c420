// An image as it is to be shown, whatever it was read from. All coordinates are 0-based, x the column and y the row.
#pragma once

#include "viewing/image/bit_plane.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace viewing {

/// A refusal, in words for the person at the keyboard.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What the resampler's 16.16 coordinates can address.
inline constexpr int maxSide = 32767;
/// Keeps every buffer of one picture below half a gigabyte.
inline constexpr std::int64_t maxPixels = std::int64_t{1} << 26;
/// Levels of the raster: 12 bits, and 16 for images that need more.
inline constexpr int rasterLevels = 4096;
inline constexpr int deepLevels = 65536;

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

/// DICOM's look-up table. Inputs before the first and behind the last entry take these entries.
struct LookupTable {
    int first = 0;  ///< the input of the first entry
    int bits = 16;  ///< of an entry: outputs reach from 0 to 2^bits - 1
    std::vector<std::uint16_t> entries;

    [[nodiscard]] int last() const { return first + static_cast<int>(entries.size()) - 1; }
    [[nodiscard]] int top() const { return (1 << bits) - 1; }
    [[nodiscard]] std::uint16_t at(int input) const {
        return entries[static_cast<std::size_t>(std::clamp(input, first, last()) - first)];
    }
};

/// One of the ways in which a file wants its values of interest shown: a window, or a table in its place.
struct VoiChoice {
    std::string name;
    Window window;
    WindowFunction function = WindowFunction::Linear;
    std::optional<LookupTable> table;
    /// Why it cannot be applied; empty where it can.
    std::string flaw;
    /// What was odd about it and how it is taken; empty for nothing.
    std::string note;
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

    /// Grey images, row by row: the level, embedded planes above its 12 bits.
    std::vector<std::uint16_t> samples;
    /// rasterLevels, or deepLevels where embedded planes have no place.
    int levels = rasterLevels;
    /// Colour images, in place of all that concerns grey: pixels of 8 bits a channel as 0x00RRGGBB, or of 12 bits a
    /// channel as 0x0000RRRRGGGGBBBB.
    std::vector<std::uint32_t> rgb8;
    std::vector<std::uint64_t> rgb12;

    [[nodiscard]] bool isColour() const { return !rgb8.empty() || !rgb12.empty(); }

    /// The stored value that became level 0: stored = level + lowest. The output is that of the modality table, or
    /// slope * stored + intercept.
    int lowest = 0;
    double slope = 1.0;
    double intercept = 0.0;
    std::optional<LookupTable> modality;
    /// Smallest and largest level, padding aside.
    int minLevel = 0;
    int maxLevel = 0;

    /// Empty, or a set bit for each pixel that is no part of the picture.
    BitPlane padding;

    /// All that there is to choose from, numbered from 1.
    std::vector<VoiChoice> voi;
    /// What is chosen of it: a window with its function, or a table; neither for the full range of values.
    std::optional<Window> window;
    WindowFunction function = WindowFunction::Linear;
    std::optional<LookupTable> voiTable;
    /// From what the window or table gives, spread over all entries, to grey.
    std::optional<LookupTable> presentation;
    /// The low end of the window is white.
    bool inverted = false;

    Shutters shutters;
    std::vector<OverlayPlane> overlays;
    std::vector<EmbeddedPlane> embedded;

    /// What was found odd and how it was taken; one line each.
    std::vector<std::string> notes;
};

}  // namespace viewing
