// An image as it is to be shown, whatever it was read from.
#pragma once

#include "viewing/image/colour_image.h"
#include "viewing/image/grey_image.h"
#include "viewing/image/overlay_plane.h"
#include "viewing/image/shutters.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace viewing {

/// One grey or colour image, with what lies over it. Positions count from 0, x the column and y the row.
struct StoredImage {
    int width = 0;   ///< columns, 1 to maxSide
    int height = 0;  ///< rows, 1 to maxSide; width * height is at most maxPixels
    /// Height of a pixel divided by its width.
    double ratioYx = 1.0;
    /// Millimetres, where a spacing is given.
    std::optional<double> pixelWidth;
    /// The spacing is that on a detector or film, which magnifies, not one calibrated to the body.
    bool spacingIsUncalibrated = false;

    std::variant<GreyImage, ColourImage> pixels;

    Shutters shutters;
    std::vector<OverlayPlane> overlays;

    /// What was found odd and how it was taken; one line each.
    std::vector<std::string> notes;

    [[nodiscard]] bool isColour() const { return std::holds_alternative<ColourImage>(pixels); }
    /// The pixels of a grey image; throws std::bad_variant_access for a colour image.
    [[nodiscard]] GreyImage& grey() { return std::get<GreyImage>(pixels); }
    [[nodiscard]] const GreyImage& grey() const { return std::get<GreyImage>(pixels); }
    /// The pixels of a colour image; throws std::bad_variant_access for a grey image.
    [[nodiscard]] const ColourImage& colour() const { return std::get<ColourImage>(pixels); }
};

}  // namespace viewing
