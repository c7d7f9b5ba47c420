// What has to be averaged so that a view leaves no pixel of a source out.
//
// Spaces: the source and the reduced raster count their own pixels, the display its own, each from the left upper
// corner of the first pixel; x grows right, y down.
#pragma once

#include "viewing/averaging/coverage.h"

#include <array>

namespace viewing::averaging {

/// (a, b, c, d, e, f) with x' = a x + c y + e and y' = b x + d y + f.
using Matrix = std::array<double, 6>;

struct Extent {
    int width = 0;
    int height = 0;
};

/// How many display pixels a source pixel's side takes.
enum class Scale { Reduced, Same, Magnified };

/// A view's scales along the source's columns (x) and rows (y). "Same" is as near to 1 as makes less than 1/2048 of a
/// pixel over the whole display.
struct Scales {
    Scale x = Scale::Same;
    Scale y = Scale::Same;
    /// The source's axes lie on the display's, mirrored or exchanged though they may be.
    bool upright = true;

    [[nodiscard]] bool reduce() const { return x == Scale::Reduced || y == Scale::Reduced; }
    [[nodiscard]] bool magnify() const { return x == Scale::Magnified || y == Scale::Magnified; }
};

/// The scales of a view of a source on a display, given by the matrix from source to display.
Scales scalesOf(const Matrix& toDisplay, Extent source, Extent display);

/// A view taken apart into averaging and the drawing of what that gives.
struct Reduction {
    Coverage coverage;
    /// Of the reduced raster. Without `interpolates` it brings pixels onto pixels.
    Matrix toDisplay{1.0, 0.0, 0.0, 1.0, 0.0, 0.0};
    /// What has been averaged along one axis is still to be magnified along the other one.
    bool interpolates = false;

    [[nodiscard]] bool empty() const { return widthOf(coverage) == 0 || heightOf(coverage) == 0; }
};

/// For views that reduce along one axis at least. Upright views, and turned ones that magnify along the other axis, are
/// averaged along the source's axes; turned views that magnify nowhere over the parallelograms that display pixels
/// cover. An axis of scale 1 keeps its pixels: each goes to the display pixel whose middle lies on it. Only what the
/// display shows is covered; nothing at all if it shows nothing.
Reduction reductionOf(const Matrix& toDisplay, Extent source, Extent display);

}  // namespace viewing::averaging
