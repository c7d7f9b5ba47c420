// What a picture of an image is to look like: the view, the grey or colours, and what is drawn over it.
#pragma once

#include "viewing/annotations/annotations.h"
#include "viewing/image/palette.h"
#include "viewing/image/window.h"

#include <optional>
#include <vector>

namespace viewing {

/// Width and height in pixels of the picture.
struct Size {
    int width = 0;
    int height = 0;
    bool operator==(const Size&) const = default;
};

/// A shift to the right and down, in pixels of the picture.
struct Pan {
    double x = 0.0;
    double y = 0.0;
    bool operator==(const Pan&) const = default;
};

/// Mirroring: horizontal exchanges left and right, vertical top and bottom.
enum class Flip { None, Horizontal, Vertical };

/// How values between the image's pixels are made.
enum class Interpolation { Nearest, Bilinear, Bicubic };

/// Unsharp masking of the image's pixels: each one is moved away from the mean of a square box around it.
struct Sharpening {
    int box = 1;       ///< side of the box in pixels of the image, 1 to maxSide
    int strength = 1;  ///< factor of the distance from the mean, 1 to maxStrength
    bool operator==(const Sharpening&) const = default;
};

/// A round magnifying glass over the picture.
struct Magnifier {
    int x = 0;            ///< centre, in pixels of the picture, at most maxPan from the first one
    int y = 0;            ///< as x
    int radius = 1;       ///< in pixels of the picture, 1 to maxRadius
    double factor = 1.0;  ///< magnification relative to the picture, minFactor to maxFactor
    bool operator==(const Magnifier&) const = default;
};

/// The largest centre of a window, either way, and the largest width, in output units.
inline constexpr double maxWindow = 1e9;
inline constexpr double minZoom = 0.001;
inline constexpr double maxZoom = 1000.0;
/// The farthest shift, either way, in pixels of the picture.
inline constexpr double maxPan = 1e6;
/// The largest turn, either way.
inline constexpr double maxDegrees = 1e6;
inline constexpr int maxStrength = 1000;
inline constexpr int maxRadius = 4096;
inline constexpr double minFactor = 0.01;
inline constexpr double maxFactor = 100.0;

/// All that can be asked of a picture. The view is made in this order: flip, rotate, zoom, pan.
struct DisplaySettings {
    /// Size of the picture, with sides up to maxSide and at most maxPixels in all; the image's own where none is given.
    std::optional<Size> size;
    /// The window in place of what is chosen in the image; the width is at least 1. Of colour images, the window of
    /// each channel over its stored values.
    std::optional<Window> window;
    Flip flip = Flip::None;
    /// The turn in degrees, clockwise.
    double degrees = 0.0;
    /// Magnification; 1 fits the whole image into the picture.
    double zoom = 1.0;
    Pan pan;
    Interpolation interpolation = Interpolation::Nearest;
    /// Draws through the host's image primitives where they can show the image.
    bool accelerated = false;
    std::optional<Sharpening> sharpening;
    std::optional<Magnifier> magnifier;
    /// Exchanges black and white.
    bool invert = false;
    /// The colours in which a grey image is shown, in place of greys.
    std::optional<Palette> palette;
    /// Shows the image's overlay planes.
    bool overlays = true;
    /// Hides what lies outside the image's shutters.
    bool shutters = true;
    /// Grey of what lies outside the image, 0 (black) to 255.
    int background = 0;
    std::vector<Annotation> annotations;
    /// Writes the annotations into the image's pixels instead of drawing them over the picture.
    bool burnIn = false;
};

}  // namespace viewing
