// From the words of Pixel Data to the raster's levels.
#pragma once

#include "viewing/image/stored_image.h"

#include <cstdint>
#include <optional>
#include <span>

namespace viewing {

/// Where a stored value lies in its word.
struct PixelFormat {
    int bitsAllocated = 16;
    int bitsStored = 12;
    int highBit = 11;
    bool isSigned = false;

    /// The value's own bits in the word.
    [[nodiscard]] std::uint16_t valueBits() const;
    /// The stored value in `word`, sign-extended; the word's other bits do not matter.
    [[nodiscard]] int value(std::uint16_t word) const;
};

/// Stored values, both ends included, that mark pixels which are no part of the picture.
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
