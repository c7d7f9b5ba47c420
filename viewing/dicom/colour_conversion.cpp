#include "viewing/dicom/colour_conversion.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace viewing {

namespace {

using Triple = std::array<int, 3>;

/// The samples of one pixel.
class Samples {
public:
    Samples(std::span<const std::uint16_t> words, const PixelFormat& format, const ColourLayout& layout)
        : words_(words), format_(format), layout_(layout) {}

    [[nodiscard]] Triple at(std::size_t pixel) const {
        if (layout_.model == ColourModel::YbrFull422) {
            const std::size_t pair = pixel / 2 * 4;
            return {value(pair + pixel % 2), value(pair + 2), value(pair + 3)};
        }
        const std::size_t step = layout_.planar ? words_.size() / 3 : 1;
        const std::size_t first = layout_.planar ? pixel : pixel * 3;
        return {value(first), value(first + step), value(first + 2 * step)};
    }

private:
    [[nodiscard]] int value(std::size_t word) const { return format_.value(words_[word]); }

    std::span<const std::uint16_t> words_;
    const PixelFormat& format_;
    ColourLayout layout_;
};

/// DICOM's full-range luminance and colour differences, the inverse of its definition from red, green and blue.
Triple fromYbr(const Triple& ybr, int bits) {
    const double luminance = ybr[0];
    const double zero = 1 << (bits - 1);
    const double blue = ybr[1] - zero;
    const double red = ybr[2] - zero;
    const int top = (1 << bits) - 1;
    const auto level = [top](double value) { return std::clamp(static_cast<int>(std::floor(value + 0.5)), 0, top); };
    return {level(luminance + 1.402 * red), level(luminance - 0.344136 * blue - 0.714136 * red),
            level(luminance + 1.772 * blue)};
}

/// Brought to so many bits: from more by leaving the low ones out, from fewer in proportion.
std::uint64_t brought(int value, int from, int to) {
    if (from >= to) return static_cast<std::uint64_t>(value >> (from - to));
    return static_cast<std::uint64_t>(value * ((1 << to) - 1) / ((1 << from) - 1));
}

}  // namespace

void convertColours(StoredImage& image, std::span<const std::uint16_t> words, const PixelFormat& format,
                    const ColourLayout& layout) {
    const std::size_t pixels = static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height);
    const Samples samples(words, format, layout);
    const int bits = format.bitsStored > 8 ? 12 : 8;
    const unsigned int channel = bits == 8 ? 8 : 16;
    bits == 8 ? image.rgb8.reserve(pixels) : image.rgb12.reserve(pixels);
    for (std::size_t i = 0; i < pixels; ++i) {
        Triple rgb = samples.at(i);
        if (layout.model != ColourModel::Rgb) rgb = fromYbr(rgb, format.bitsStored);
        std::uint64_t pixel = 0;
        for (const int value : rgb) pixel = (pixel << channel) | brought(value, format.bitsStored, bits);
        if (bits == 8) {
            image.rgb8.push_back(static_cast<std::uint32_t>(pixel));
        } else {
            image.rgb12.push_back(pixel);
        }
    }
}

}  // namespace viewing
