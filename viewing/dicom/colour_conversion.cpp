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

    /// The samples of a pixel as they are stored.
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

/// The pixels with channels of `bits` bits, each in so many bits of a pixel.
template <typename Pixels>
Pixels convertAll(std::size_t count, const Samples& samples, int bitsStored, bool isRgb, int bits,
                  unsigned int channel) {
    Pixels pixels;
    pixels.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const Triple stored = samples.at(i);
        std::uint64_t pixel = 0;
        for (const int value : isRgb ? stored : fromYbr(stored, bitsStored))
            pixel = (pixel << channel) | brought(value, bitsStored, bits);
        pixels.push_back(static_cast<typename Pixels::value_type>(pixel));
    }
    return pixels;
}

}  // namespace

ColourImage toColours(std::size_t pixels, std::span<const std::uint16_t> words, const PixelFormat& format,
                      const ColourLayout& layout) {
    const Samples samples(words, format, layout);
    const bool isRgb = layout.model == ColourModel::Rgb;
    if (format.bitsStored > 8) return {convertAll<Rgb12Pixels>(pixels, samples, format.bitsStored, isRgb, 12, 16)};
    return {convertAll<Rgb8Pixels>(pixels, samples, format.bitsStored, isRgb, 8, 8)};
}

}  // namespace viewing
