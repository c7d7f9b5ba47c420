// From the words of Pixel Data to the raster's levels.
#pragma once

#include "viewing/image/stored_image.h"

#include <cstdint>
#include <optional>
#include <span>

namespace viewing {

/// Where a stored value lies in its word (DICOM PS3.5 8.1.1).
struct PixelFormat {
    int bitsAllocated = 16;  ///< 8 or 16
    int bitsStored = 12;     ///< 1 to highBit + 1
    int highBit = 11;        ///< below bitsAllocated
    bool isSigned = false;

    /// A mask of the value's bits in the word.
    [[nodiscard]] std::uint16_t valueBits() const;
    /// The stored value in `word`, sign-extended; the word's other bits do not matter.
    [[nodiscard]] int value(std::uint16_t word) const;
};

/// The stored values, both ends included, of pixels that are no part of the picture (DICOM PS3.3 C.7.5.1.1.2).
struct PaddingRange {
    int low = 0;
    int high = 0;

    [[nodiscard]] bool contains(int value) const { return value >= low && value <= high; }
};

/// Fills samples, levels, lowest, minLevel, maxLevel and padding of a grey image whose width and height are set;
/// `words` holds width * height words. Up to 12 bits stored, every storable value has one of 4096 levels; above, the
/// values that occur have, padding aside, where they fit, and every storable value has one of 65536 where not.
/// `embeddedBits` (bits 12 to 15, none above 12 bits stored) are carried over into the samples.
void convertSamples(StoredImage& image, std::span<const std::uint16_t> words, const PixelFormat& format,
                    std::optional<PaddingRange> padding, std::uint16_t embeddedBits);

}  // namespace viewing
