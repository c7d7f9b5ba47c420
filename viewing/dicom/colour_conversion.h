// From the samples of colour images to red, green and blue.
#pragma once

#include "viewing/dicom/sample_conversion.h"
#include "viewing/image/colour_image.h"

#include <cstddef>
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

/// The first so many pixels of a frame as red, green and blue: of 8 bits a channel, or of 12 where a sample has more
/// than 8 bits; of more than 12 bits the upper ones are taken. YBR is converted by the inverse of DICOM PS3.3
/// C.7.6.3.1.2. `words` holds as many as the layout needs. Sample values are not signed.
ColourImage toColours(std::size_t pixels, std::span<const std::uint16_t> words, const PixelFormat& format,
                      const ColourLayout& layout);

}  // namespace viewing
