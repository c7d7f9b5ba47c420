// The size and shape of an image's pixels.
#pragma once

#include "viewing/dicom/dicom_attributes.h"

#include <optional>
#include <string>
#include <vector>

namespace viewing {

/// Size and shape of a pixel, as far as a data set gives them.
struct PixelSpacing {
    double ratioYx = 1.0;         ///< height divided by width
    std::optional<double> width;  ///< millimetres
    bool isUncalibrated = false;  ///< the width is that on a detector or film, not in the body
};

/// Reads the first that makes sense of Pixel Spacing, Imager Pixel Spacing, Nominal Scanned Pixel Spacing (DICOM PS3.3
/// 10.7) and Pixel Aspect Ratio (C.7.6.3.1.7): spacings are measured, and the ratio is what remains without them. Adds
/// a note for each that makes no sense: not two numbers above 0, or one of them more than a hundred times the other.
PixelSpacing readPixelSpacing(const Attributes& attributes, std::vector<std::string>& notes);

}  // namespace viewing
