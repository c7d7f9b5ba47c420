// Palettes in data sets: of images with PALETTE COLOR, and in files of their own (DICOM PS3.3 C.7.6.3.1.5 and C.7.9).
#pragma once

#include "viewing/dicom/dicom_attributes.h"
#include "viewing/dicom/sample_conversion.h"
#include "viewing/image/colour_image.h"
#include "viewing/image/lookup_table.h"
#include "viewing/image/palette.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace viewing {

/// Red, green and blue by stored value. All three tables have entries of the same number of bits.
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

/// The colours of an image's pixels, row by row, and black for padding. `words` are its width * height pixels as they
/// are stored in `format`.
Rgb8Pixels toColours(const PaletteTables& tables, const std::vector<std::uint16_t>& words, int width,
                     const PixelFormat& format, const std::optional<PaddingRange>& padding);

}  // namespace viewing
