// The overlay planes of a data set, in groups 6000 to 601E and in unused bits of its pixels (DICOM PS3.3 C.9.2).
#pragma once

#include "viewing/dicom/dicom_attributes.h"
#include "viewing/dicom/sample_conversion.h"
#include "viewing/image/stored_image.h"

#include <cstdint>
#include <span>

namespace viewing {

/// Adds to an image the planes that belong to a frame, counted from 0, and a note for each that cannot be shown. The
/// image's width, height and kind of pixels are set. `words` are its width * height pixels as stored, or none for
/// pixels of several samples. Planes in bits 12 to 15 of grey pixels of at most 12 bits are listed as embedded, for
/// convertSamples to carry over; planes in other bits become planes of their own.
void readOverlays(StoredImage& image, DcmItem& dataset, int frame, std::span<const std::uint16_t> words,
                  const PixelFormat& format);

/// A mask of those of the bits 12 to 15 in which the image has embedded planes.
std::uint16_t embeddedBits(const GreyImage& image);

}  // namespace viewing
