// Palettes in data sets: of images with PALETTE COLOR, and of palettes in files of their own.
#pragma once

#include "viewing/dicom/dicom_attributes.h"
#include "viewing/image/palette.h"
#include "viewing/image/stored_image.h"

#include <cstdint>
#include <vector>

namespace viewing {

/// Red, green and blue by stored value.
struct PaletteTables {
    LookupTable red;
    LookupTable green;
    LookupTable blue;

    /// The display pixel of a stored value: of entries of more than 8 bits the upper 8.
    [[nodiscard]] std::uint32_t colour(int stored) const;
};

/// The tables of a data set. Refuses tables that are missing or cannot be.
PaletteTables readPaletteTables(const Attributes& attributes, bool signedInputs);

/// The tables' colours, spread over 256 levels.
Palette toPalette(const PaletteTables& tables);

}  // namespace viewing
