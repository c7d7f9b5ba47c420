#include "viewing/dicom/sample_conversion.h"

#include <algorithm>

namespace viewing {

std::uint16_t PixelFormat::valueBits() const {
    return static_cast<std::uint16_t>(((1U << bitsStored) - 1U) << (highBit + 1 - bitsStored));
}

int PixelFormat::value(std::uint16_t word) const {
    const int value = (word & valueBits()) >> (highBit + 1 - bitsStored);
    const int sign = 1 << (bitsStored - 1);
    return isSigned ? (value ^ sign) - sign : value;
}

namespace {

bool isPadding(const std::optional<PaddingRange>& range, int value) { return range && range->contains(value); }

struct Extremes {
    int low = 0;
    int high = 0;
};

/// Of the values that are not padding; both 0 when there is none.
Extremes findExtremes(std::span<const std::uint16_t> words, const PixelFormat& format,
                      const std::optional<PaddingRange>& padding) {
    Extremes found;
    bool first = true;
    for (const std::uint16_t word : words) {
        const int value = format.value(word);
        if (isPadding(padding, value)) continue;
        found.low = first ? value : std::min(found.low, value);
        found.high = first ? value : std::max(found.high, value);
        first = false;
    }
    return found;
}

}  // namespace

void convertSamples(StoredImage& image, std::span<const std::uint16_t> words, const PixelFormat& format,
                    std::optional<PaddingRange> padding, std::uint16_t embeddedBits) {
    GreyImage& grey = image.grey();
    const Extremes extremes = findExtremes(words, format, padding);
    const int range = extremes.high - extremes.low;
    // Up to 12 bits the levels do not depend on the pixels, so that pictures of one series compare level by level.
    grey.levels = format.bitsStored > 12 && range >= levels12 ? levels16 : levels12;
    if (format.bitsStored > 12 && grey.levels == levels12) {
        grey.lowest = extremes.low;
    } else {
        grey.lowest = format.isSigned ? -(1 << (format.bitsStored - 1)) : 0;
    }
    grey.minLevel = std::max(extremes.low - grey.lowest, 0);
    grey.maxLevel = std::max(extremes.high - grey.lowest, 0);

    if (padding) grey.padding = BitPlane(image.width, image.height);
    grey.samples.resize(words.size());
    for (std::size_t i = 0; i < words.size(); ++i) {
        const int value = format.value(words[i]);
        if (isPadding(padding, value)) grey.padding.setBit(i);
        // Padding may lie outside the levels; its own are never shown.
        const int level = std::clamp(value - grey.lowest, 0, grey.levels - 1);
        grey.samples[i] = static_cast<std::uint16_t>(level | (words[i] & embeddedBits));
    }
}

}  // namespace viewing
