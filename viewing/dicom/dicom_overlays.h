// The overlay planes that a data set carries in groups 6000 to 601E and in spare bits of its pixels.
#pragma once

#include "viewing/dicom/dicom_attributes.h"
#include "viewing/dicom/sample_conversion.h"
#include "viewing/image/stored_image.h"

#include <cstdint>
#include <span>

namespace viewing {

/// Adds the planes that belong to a frame (counted from 0) to an image whose width and height are set, and a note for
/// each that cannot be shown. `words` are its pixels as stored, none for pixels of several samples. Planes in bits 12
/// to 15 of grey pixels of at most 12 low bits are listed as embedded, for convertSamples to carry over; in all other
/// bits they become planes of their own.
void readOverlays(StoredImage& image, DcmItem& dataset, int frame, std::span<const std::uint16_t> words,
                  const PixelFormat& format);

/// Bits 12 to 15 that the image's embedded planes occupy.
std::uint16_t embeddedBits(const GreyImage& image);

}  // namespace viewing
