// The value of a source image between its pixels. Private to the library.
#pragma once

#include "zolipp/interpolation.h"
#include "zolipp/pixels.h"

#include <algorithm>
#include <cstddef>

namespace zolipp {

struct SourceImage {
    SourceRows rows;
    IppiSize size;
};

/// Writes the destination pixel for given neighbours: rows are weighted first along, then across. The obvious form, of
/// which the fast ones keep every bit.
template <typename Format, int taps>
void samplePixel(const SourceImage& image, const Neighbours<taps>& columns, const Neighbours<taps>& rows,
                 std::byte* target) {
    using Sample = typename Format::Sample;
    const auto clamped = [](std::int64_t index, int length) {
        return static_cast<std::ptrdiff_t>(std::clamp<std::int64_t>(index, 0, length - 1));
    };
    float sums[Format::written] = {};
    std::int64_t y = rows.first;
    for (const float rowWeight : rows.weights) {
        const std::byte* row = image.rows.at(clamped(y++, image.size.height));
        float inRow[Format::written] = {};
        std::int64_t x = columns.first;
        for (const float weight : columns.weights) {
            const std::ptrdiff_t index = clamped(x++, image.size.width) * Format::channels;
            for (int channel = 0; channel < Format::written; ++channel) {
                inRow[channel] += weight * static_cast<float>(loadSample<Sample>(row, index + channel));
            }
        }
        for (int channel = 0; channel < Format::written; ++channel) sums[channel] += rowWeight * inRow[channel];
    }
    for (int channel = 0; channel < Format::written; ++channel) {
        storeSample<Sample>(target, channel, roundedSample<Sample>(sums[channel]));
    }
}

}  // namespace zolipp
