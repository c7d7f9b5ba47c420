// Unsharp masking with a square box: the walk over an image, written once for every kind of pixel.
#pragma once

#include "zolcs/resample/unsharplines.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

namespace zolcs {

/// What all planes of a call share. Everything is allocated here, so that the walk needs no memory.
class UnsharpWorkspace {
public:
    UnsharpWorkspace(int width, int planes)
        : width_(static_cast<std::size_t>(std::max(width, 0))),
          planes_(static_cast<std::size_t>(planes)),
          columns_(new (std::nothrow) std::uint32_t[(width_ + 1) * planes_]),
          lines_(new (std::nothrow) std::uint16_t[width_ * lineCount]) {}

    [[nodiscard]] bool isAllocated() const { return columns_ != nullptr && lines_ != nullptr; }

    /// One sum for each column of a plane; the one at -1 is always 0.
    [[nodiscard]] std::uint32_t* columns(std::size_t plane) const { return columns_.get() + plane * (width_ + 1) + 1; }
    void clearColumns() const { std::fill_n(columns_.get(), (width_ + 1) * planes_, 0U); }

    enum Line : std::size_t { Centre, Entering, Leaving, Result, lineCount };
    [[nodiscard]] std::uint16_t* line(Line which) const { return lines_.get() + which * width_; }

private:
    std::size_t width_;
    std::size_t planes_;
    std::unique_ptr<std::uint32_t[]> columns_;
    std::unique_ptr<std::uint16_t[]> lines_;
};

/// Sharpens the planes of an image, line by line. A plane has `width` and `height`, the same for all; `line(y, room)`
/// gives the samples of a line, in `room` or where they are; `put(y, samples)` writes a whole line.
template <typename Plane, std::size_t count>
void sharpenPlanes(const std::array<Plane, count>& planes, const UnsharpSettings& settings,
                   const UnsharpWorkspace& workspace) {
    const std::int64_t width = planes[0].width;
    const std::int64_t height = planes[0].height;
    const std::int64_t rim = settings.box / 2;
    const bool hasInterior = 2 * rim < width && 2 * rim < height;
    const std::uint16_t mask = settings.sampleMask();
    const auto slide = [&](std::size_t i, std::int64_t entering, const std::uint16_t* leaving) {
        const std::uint16_t* const samples = planes[i].line(entering, workspace.line(UnsharpWorkspace::Entering));
        slideColumns({workspace.columns(i), samples, leaving, static_cast<int>(width), mask, settings.columnMask});
    };
    if (hasInterior) {
        workspace.clearColumns();
        std::uint16_t* const none = workspace.line(UnsharpWorkspace::Leaving);
        std::fill_n(none, width, std::uint16_t{0});
        for (std::int64_t y = 0; y < settings.box; ++y) {
            for (std::size_t i = 0; i < count; ++i) slide(i, y, none);
        }
    }
    const LineSharpener sharpener(settings);
    std::uint16_t* const result = workspace.line(UnsharpWorkspace::Result);
    const auto sharpenLine = [&](std::size_t i, std::int64_t y) {
        const std::uint16_t* const centre = planes[i].line(y, workspace.line(UnsharpWorkspace::Centre));
        const auto copy = [&](std::int64_t from, std::int64_t to) {
            for (std::int64_t x = from; x < to; ++x) result[x] = static_cast<std::uint16_t>(centre[x] & mask);
        };
        const bool interior = hasInterior && y >= rim && y < height - rim;
        if (interior) {
            copy(0, rim);
            sharpener.sharpen(workspace.columns(i), centre + rim, result + rim, static_cast<int>(width - 2 * rim));
            copy(width - rim, width);
            // Below the last interior line the sums are not needed, and the next line may not exist.
            if (y + 1 < height - rim) {
                slide(i, y - rim + settings.box, planes[i].line(y - rim, workspace.line(UnsharpWorkspace::Leaving)));
            }
        } else {
            copy(0, width);
        }
        planes[i].put(y, result);
    };
    for (std::int64_t y = 0; y < height; ++y) {
        for (std::size_t i = 0; i < count; ++i) sharpenLine(i, y);
    }
}

}  // namespace zolcs
