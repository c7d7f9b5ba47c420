// Unsharp masking with a square box: the walk over an image, written once for every kind of pixel.
#pragma once

#include "zolcs/resample/unsharplines.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

namespace zolcs {

/// What all planes of a call share. Everything is allocated here, so that the walk needs no memory.
class UnsharpWorkspace {
public:
    explicit UnsharpWorkspace(int width)
        : width_(static_cast<std::size_t>(std::max(width, 0))),
          columns_(new (std::nothrow) std::uint32_t[width_ + 1]),
          lines_(new (std::nothrow) std::uint16_t[width_ * lineCount]) {}

    [[nodiscard]] bool isAllocated() const { return columns_ != nullptr && lines_ != nullptr; }

    /// One sum for each column; the one at -1 is always 0.
    [[nodiscard]] std::uint32_t* columns() const { return columns_.get() + 1; }
    void clearColumns() const { std::fill_n(columns_.get(), width_ + 1, 0U); }

    enum Line : std::size_t { Centre, Entering, Leaving, Result, lineCount };
    [[nodiscard]] std::uint16_t* line(Line which) const { return lines_.get() + which * width_; }

private:
    std::size_t width_;
    std::unique_ptr<std::uint32_t[]> columns_;
    std::unique_ptr<std::uint16_t[]> lines_;
};

/// Sharpens one plane. A plane has `width` and `height`; `line(y, room)` gives the samples of a line, in `room` or
/// where they are; `put(y, samples)` writes a whole line.
template <typename Plane>
void sharpenPlane(const Plane& plane, const UnsharpSettings& settings, const UnsharpWorkspace& workspace) {
    const std::int64_t rim = settings.box / 2;
    const bool hasInterior = 2 * rim < plane.width && 2 * rim < plane.height;
    const auto line = [&](std::int64_t y, UnsharpWorkspace::Line which) {
        return plane.line(y, workspace.line(which));
    };
    std::uint32_t* const columns = workspace.columns();
    const auto slide = [&](const std::uint16_t* entering, const std::uint16_t* leaving) {
        slideColumns({columns, entering, leaving, plane.width, settings.sampleMask(), settings.columnMask});
    };
    if (hasInterior) {
        workspace.clearColumns();
        std::uint16_t* const none = workspace.line(UnsharpWorkspace::Leaving);
        std::fill_n(none, plane.width, std::uint16_t{0});
        for (std::int64_t y = 0; y < settings.box; ++y) slide(line(y, UnsharpWorkspace::Entering), none);
    }
    const LineSharpener sharpener(settings);
    std::uint16_t* const result = workspace.line(UnsharpWorkspace::Result);
    for (std::int64_t y = 0; y < plane.height; ++y) {
        const std::uint16_t* const centre = line(y, UnsharpWorkspace::Centre);
        const auto copy = [&](std::int64_t from, std::int64_t to) {
            const std::uint16_t mask = settings.sampleMask();
            for (std::int64_t x = from; x < to; ++x) result[x] = static_cast<std::uint16_t>(centre[x] & mask);
        };
        const bool interior = hasInterior && y >= rim && y < plane.height - rim;
        if (interior) {
            copy(0, rim);
            sharpener.sharpen(columns, centre + rim, result + rim, static_cast<int>(plane.width - 2 * rim));
            copy(plane.width - rim, plane.width);
            // Below the last interior line the sums are not needed, and the next line may not exist.
            if (y + 1 < plane.height - rim) {
                slide(line(y - rim + settings.box, UnsharpWorkspace::Entering),
                      line(y - rim, UnsharpWorkspace::Leaving));
            }
        } else {
            copy(0, plane.width);
        }
        plane.put(y, result);
    }
}

}  // namespace zolcs
