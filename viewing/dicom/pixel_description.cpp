#include "viewing/dicom/pixel_description.h"

#include "viewing/image/limits.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace viewing {

namespace {

void refuseUnless(bool accepted, const std::string& otherwise) {
    if (!accepted) throw Refusal(otherwise);
}

PixelKind readKind(const Attributes& attributes) {
    const std::string photometric = attributes.text(DCM_PhotometricInterpretation);
    refuseUnless(attributes.has(DCM_PixelData), "contains no image (it is a " + sopClassName(attributes) + ")");
    const int samples = std::max(attributes.count(DCM_SamplesPerPixel), 1);
    PixelKind kind = PixelKind::Grey;
    if (photometric == "PALETTE COLOR") {
        kind = PixelKind::Palette;
    } else if (photometric == "RGB" || photometric == "YBR_FULL" || photometric == "YBR_FULL_422" ||
               photometric == "YBR_RCT" || photometric == "YBR_ICT") {
        kind = PixelKind::Colour;
    } else {
        refuseUnless(photometric == "MONOCHROME1" || photometric == "MONOCHROME2",
                     "has the photometric interpretation '" + photometric + "', which zolview cannot show");
    }
    refuseUnless(samples == (kind == PixelKind::Colour ? 3 : 1),
                 "has " + std::to_string(samples) + " samples a pixel, which does not go with " + photometric);
    return kind;
}

/// The shape with its size alone.
FrameShape readSize(const Attributes& attributes) {
    FrameShape shape;
    shape.width = attributes.count(DCM_Columns);
    shape.height = attributes.count(DCM_Rows);
    const std::string size = std::to_string(shape.width) + " x " + std::to_string(shape.height) + " pixels";
    refuseUnless(shape.width > 0 && shape.height > 0, "has no rows or no columns");
    refuseUnless(shape.width <= maxSide && shape.height <= maxSide,
                 "has " + size + "; zolview shows up to " + std::to_string(maxSide) + " a side");
    refuseUnless(std::int64_t{shape.width} * shape.height <= maxPixels,
                 "has " + size + "; zolview shows up to " + std::to_string(maxPixels) + " in all");
    return shape;
}

PixelFormat readFormat(const Attributes& attributes) {
    PixelFormat format;
    format.bitsAllocated = attributes.count(DCM_BitsAllocated);
    format.bitsStored = attributes.count(DCM_BitsStored);
    format.highBit = attributes.word(DCM_HighBit).value_or(static_cast<std::uint16_t>(format.bitsStored - 1));
    const int representation = attributes.count(DCM_PixelRepresentation);
    refuseUnless(format.bitsAllocated == 8 || format.bitsAllocated == 16,
                 "has pixels of " + std::to_string(format.bitsAllocated) + " bits allocated; zolview reads 8 and 16");
    refuseUnless(format.bitsStored >= 1 && format.bitsStored <= format.highBit + 1 &&
                     format.highBit < format.bitsAllocated && representation <= 1,
                 "describes its pixels in a way that cannot be (bits allocated " +
                     std::to_string(format.bitsAllocated) + ", bits stored " + std::to_string(format.bitsStored) +
                     ", high bit " + std::to_string(format.highBit) + ", representation " +
                     std::to_string(representation) + ")");
    format.isSigned = representation == 1;
    return format;
}

std::optional<PaddingRange> readPadding(const Attributes& attributes, const PixelFormat& format) {
    const std::optional<std::uint16_t> value = attributes.word(DCM_PixelPaddingValue);
    if (!value) return std::nullopt;
    const auto asStored = [&format](std::uint16_t word) -> int {
        return format.isSigned ? static_cast<std::int16_t>(word) : word;
    };
    const int one = asStored(*value);
    const int other = asStored(attributes.word(DCM_PixelPaddingRangeLimit).value_or(*value));
    return PaddingRange{std::min(one, other), std::max(one, other)};
}

}  // namespace

PixelDescription readPixelDescription(const Attributes& attributes) {
    PixelDescription pixels;
    pixels.kind = readKind(attributes);
    pixels.shape = readSize(attributes);
    pixels.format = readFormat(attributes);
    pixels.shape.samples = std::max(attributes.count(DCM_SamplesPerPixel), 1);
    pixels.shape.bitsAllocated = pixels.format.bitsAllocated;
    pixels.shape.bitsStored = pixels.format.bitsStored;
    pixels.shape.isSigned = pixels.format.isSigned;
    pixels.shape.photometric = attributes.text(DCM_PhotometricInterpretation);
    pixels.shape.planar = attributes.count(DCM_PlanarConfiguration) == 1;
    pixels.shape.frames = readFrameCount(attributes);
    pixels.padding = readPadding(attributes, pixels.format);
    return pixels;
}

int readFrameCount(const Attributes& attributes) {
    const double frames = attributes.number(DCM_NumberOfFrames).value_or(1.0);
    return frames >= 1.0 && frames <= std::numeric_limits<int>::max() ? static_cast<int>(frames) : 1;
}

std::string sopClassName(const Attributes& attributes) {
    const std::string uid = attributes.text(DCM_SOPClassUID);
    return uid.empty() ? "data set without a class" : dcmFindNameOfUID(uid.c_str(), uid.c_str());
}

}  // namespace viewing
