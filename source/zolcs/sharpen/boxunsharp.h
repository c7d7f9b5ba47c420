// Unsharp masking with a square box: the walk over an image, written once for every kind of pixel.
#pragma once

#include "zolcs/sharpen/unsharprows.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

namespace zolcs {

/// What a call needs besides its images. Everything is allocated here, so that the walk needs no memory.
template <typename Sample>
class UnsharpWorkspace {
public:
    explicit UnsharpWorkspace(int width)
        : samples_(static_cast<std::size_t>(std::max(width, 0)) * channelsOf<Sample>),
          columns_(new (std::nothrow) std::uint32_t[samples_ + channelsOf<Sample>]),
          rows_(new (std::nothrow) Sample[samples_ * rowCount]) {}

    [[nodiscard]] bool isAllocated() const { return columns_ != nullptr && rows_ != nullptr; }

    /// One sum for each sample of a row; those of the pixel at -1 are always 0.
    [[nodiscard]] std::uint32_t* columns() const { return columns_.get() + channelsOf<Sample>; }
    void clearColumns() const { std::fill_n(columns_.get(), samples_ + channelsOf<Sample>, 0U); }

    enum Row : std::size_t { Centre, Entering, Leaving, Result, rowCount };
    [[nodiscard]] Sample* row(Row which) const { return rows_.get() + which * samples_; }

private:
    std::size_t samples_;
    std::unique_ptr<std::uint32_t[]> columns_;
    std::unique_ptr<Sample[]> rows_;
};

/// Sharpens an image row by row. `image` has `width` and `height` in pixels; `row(y, room)` gives the samples of a
/// source row, in `room` or where they are; `put(y, samples)` writes a whole row of the destination.
template <typename Image, typename Sample>
void sharpenImage(const Image& image, const UnsharpSettings& settings, const UnsharpWorkspace<Sample>& workspace) {
    using Row = typename UnsharpWorkspace<Sample>::Row;
    const std::int64_t rim = settings.box / 2;
    const bool hasInterior = 2 * rim < image.width && 2 * rim < image.height;
    const int samples = image.width * channelsOf<Sample>;
    const int rimSamples = hasInterior ? static_cast<int>(rim) * channelsOf<Sample> : 0;
    const auto mask = static_cast<Sample>(settings.sampleMask());
    const auto slide = [&](std::int64_t entering, const Sample* leaving) {
        const Sample* const row = image.row(entering, workspace.row(Row::Entering));
        slideColumns<Sample>({workspace.columns(), row, leaving, samples, mask, settings.columnMask});
    };
    if (hasInterior) {
        workspace.clearColumns();
        Sample* const none = workspace.row(Row::Leaving);
        std::fill_n(none, samples, Sample{0});
        for (std::int64_t y = 0; y < settings.box; ++y) slide(y, none);
    }
    const RowSharpener sharpener(settings);
    Sample* const result = workspace.row(Row::Result);
    for (std::int64_t y = 0; y < image.height; ++y) {
        const Sample* const centre = image.row(y, workspace.row(Row::Centre));
        const auto copy = [&](int from, int to) {
            for (int i = from; i < to; ++i) result[i] = static_cast<Sample>(centre[i] & mask);
        };
        if (hasInterior && y >= rim && y < image.height - rim) {
            copy(0, rimSamples);
            sharpener.sharpen(workspace.columns(), centre + rimSamples, result + rimSamples, samples - 2 * rimSamples);
            copy(samples - rimSamples, samples);
            // Below the last interior row the sums are not needed, and the next row may not exist.
            if (y + 1 < image.height - rim) {
                slide(y - rim + settings.box, image.row(y - rim, workspace.row(Row::Leaving)));
            }
        } else {
            copy(0, samples);
        }
        image.put(y, result);
    }
}

}  // namespace zolcs
