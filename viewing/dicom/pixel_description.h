// What a data set says about its pixels: the Image Pixel Module (DICOM PS3.3 C.7.6.3).
#pragma once

#include "viewing/dicom/dicom_attributes.h"
#include "viewing/dicom/dicom_frame.h"
#include "viewing/dicom/sample_conversion.h"
#include "viewing/image/refusal.h"

#include <optional>
#include <string>

namespace viewing {

/// What the pixels of an image are.
enum class PixelKind { Grey, Palette, Colour };

/// The description of an image's pixels, checked.
struct PixelDescription {
    PixelKind kind = PixelKind::Grey;
    PixelFormat format;
    FrameShape shape;
    /// Stored values that are no part of the picture; not of colours.
    std::optional<PaddingRange> padding;
};

/// Refuses a data set without an image, and pixels that cannot be shown or are described in a way that cannot be.
PixelDescription readPixelDescription(const Attributes& attributes);

/// The number of frames; 1 where the data set gives none that can be.
int readFrameCount(const Attributes& attributes);

/// The name of the data set's SOP class, or of its UID where that is not known.
std::string sopClassName(const Attributes& attributes);

}  // namespace viewing
