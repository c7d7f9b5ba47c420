// From the samples of colour images to red, green and blue.
#pragma once

#include "viewing/dicom/sample_conversion.h"
#include "viewing/image/stored_image.h"

#include <cstdint>
#include <span>
#include <string>

namespace viewing {

/// What the three samples of a pixel are.
enum class ColourModel {
    Rgb,
    YbrFull,
    /// Of two neighbouring pixels: luminance of both, blue and red difference that they share.
    YbrFull422,
};

/// How the samples of a frame follow one another.
struct ColourLayout {
    ColourModel model = ColourModel::Rgb;
    /// All first samples, then all second, then all third ones; not for YbrFull422.
    bool planar = false;

    /// Words for so many pixels; the pixels of YbrFull422 are an even number.
    [[nodiscard]] std::size_t words(std::size_t pixels) const {
        return model == ColourModel::YbrFull422 ? pixels * 2 : pixels * 3;
    }
};

/// Fills rgb8 of an image whose width and height are set, or rgb12 where a sample has more than 8 bits: of 12 bits the
/// upper ones. `words` holds as many as the layout needs. Sample values are not signed.
void convertColours(StoredImage& image, std::span<const std::uint16_t> words, const PixelFormat& format,
                    const ColourLayout& layout);

}  // namespace viewing
