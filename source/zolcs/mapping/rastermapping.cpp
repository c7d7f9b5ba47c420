#include "zolcs/mapping/rastermapping.h"

#include "platform/cache.h"
#include "zolcs/support/parallel.h"
#include "zolipp/zolipp.h"

#include <algorithm>
#include <limits>

namespace zolcs::mapping {

namespace {

constexpr std::size_t valueCount = 0x10000;

/// The primitive counts bytes in an int; this many pixels always fit.
constexpr std::int64_t maximumRowPixels = std::int64_t{1} << 28;

/// A thread is not worth its start for fewer pixels.
constexpr std::int64_t minimumBandPixels = std::int64_t{1} << 17;

}  // namespace

TableMemory<std::uint32_t> extendedTable(std::span<const std::uint32_t> lut, const EmbeddedOverlay& overlay) {
    TableMemory<std::uint32_t> table = allocateTable<std::uint32_t>(valueCount);
    if (table == nullptr) return table;
    std::copy(lut.begin(), lut.end(), table.get());
    std::fill(table.get() + lut.size(), table.get() + valueCount, lut.back());
    if (overlay.isShown()) overlay.coverTable(table.get());
    return table;
}

RasterMapping::RasterMapping(const PixelRules& rules, const std::uint32_t* table, const CCsImage& source,
                             const unsigned char* sourceOrigin, const CCsImage& destination,
                             unsigned char* destinationOrigin)
    : rules_(rules),
      table_(table),
      source_(sourceOrigin),
      destination_(destinationOrigin),
      sourcePitch_(source.getPitch()),
      destinationPitch_(destination.getPitch()),
      width_(destination.getWidth()),
      height_(destination.getHeight()) {}

RECT RasterMapping::clipped(const RECT& segment) const {
    RECT area = {std::max<LONG>(segment.left, 0), std::max<LONG>(segment.top, 0), std::min(segment.right, width_),
                 std::min(segment.bottom, height_)};
    if (area.left >= area.right || area.top >= area.bottom) area = {0, 0, 0, 0};
    return area;
}

bool RasterMapping::coversDestination(const RECT& area) const {
    return destinationPitch_ == width_ && area.left == 0 && area.top == 0 && area.right == width_ &&
           area.bottom == height_;
}

void RasterMapping::run(const RECT& area, const Window& window, std::size_t depth) {
    if (area.left >= area.right) return;
    if (mayCompute(area)) ramp_ = findGreyRamp({table_, valueCount}, window, depth);
    const std::int64_t rowsPerBand = minimumBandPixels / (area.right - area.left) + 1;
    parallelRows(
        static_cast<int>(area.top), static_cast<int>(area.bottom),
        [&](int top, int bottom) { mapBand(area, top, bottom); }, static_cast<int>(rowsPerBand));
}

void RasterMapping::mapBand(const RECT& area, int top, int bottom) const {
    if (rules_.empty() && std::max(sourcePitch_, destinationPitch_) <= maximumRowPixels) {
        show(area.left, top, area.right - area.left, bottom - top);
        return;
    }
    PixelRuns runs;
    for (int y = top; y < bottom; ++y) {
        rules_.cut(PixelRules::wholeRasterRow(y), {static_cast<int>(area.left), static_cast<int>(area.right)}, runs);
        mapRow(y, runs);
    }
}

void RasterMapping::mapRow(int y, const PixelRuns& runs) const {
    for (const PixelRun& run : runs) {
        switch (run.shows) {
            case PixelRun::Shows::Image:
                for (std::int64_t x = run.begin; x < run.end; x += maximumRowPixels) {
                    show(x, y, std::min(run.end - x, maximumRowPixels), 1);
                }
                break;
            case PixelRun::Shows::Covered:
                cover(y, run);
                break;
            case PixelRun::Shows::Plane:
                std::fill(destinationAt(run.begin, y), destinationAt(run.end, y), run.colour);
                break;
        }
    }
}

bool RasterMapping::mayCompute(const RECT& area) const {
    const std::int64_t pixels = (std::int64_t{area.right} - area.left) * (std::int64_t{area.bottom} - area.top);
    const bool aligned = reinterpret_cast<std::uintptr_t>(source_) % sizeof(std::uint16_t) == 0 &&
                         reinterpret_cast<std::uintptr_t>(destination_) % sizeof(std::uint32_t) == 0;
    // For so many pixels it is worth finding out whether the table can be computed.
    return aligned && zolplatform::isTooLargeForTheCache(pixels * 4);
}

void RasterMapping::show(std::int64_t x, std::int64_t y, std::int64_t columns, std::int64_t rows) const {
    if (ramp_.has_value()) {
        compute(x, y, columns, rows);
    } else {
        lookUp(x, y, columns, rows);
    }
}

void RasterMapping::compute(std::int64_t x, std::int64_t y, std::int64_t columns, std::int64_t rows) const {
    if (sourcePitch_ == columns && destinationPitch_ == columns) {
        columns *= rows;
        rows = 1;
    }
    for (const std::int64_t bottom = y + rows; y < bottom; ++y) {
        fillGreyRamp(*ramp_, sourceAt(x, y), destinationAt(x, y), static_cast<std::size_t>(columns),
                     columns >= zolplatform::shortestNonTemporalRun);
    }
}

void RasterMapping::lookUp(std::int64_t x, std::int64_t y, std::int64_t columns, std::int64_t rows) const {
    // Of a single row, only the length counts.
    const auto step = [&](std::int64_t pitch, int bytes) {
        return static_cast<int>(rows > 1 ? pitch : columns) * bytes;
    };
    ZOLippiLUTPalette_16u32u_C1R(sourceAt(x, y), step(sourcePitch_, 2), destinationAt(x, y), step(destinationPitch_, 4),
                                 {static_cast<int>(columns), static_cast<int>(rows)}, table_, 16);
}

void RasterMapping::cover(int y, const PixelRun& run) const {
    const EmbeddedOverlay& overlay = rules_.embedded();
    const std::uint16_t* stored = sourceAt(run.begin, y);
    std::uint32_t* const begin = destinationAt(run.begin, y);
    std::uint32_t* const end = destinationAt(run.end, y);
    if (!overlay.isShown()) {
        if (ramp_.has_value() && end - begin >= zolplatform::shortestNonTemporalRun) {
            zolplatform::fillNonTemporal(begin, static_cast<std::size_t>(end - begin), run.colour);
        } else {
            std::fill(begin, end, run.colour);
        }
        return;
    }
    std::transform(begin, end, stored, begin,
                   [&](std::uint32_t, std::uint16_t value) { return overlay.over(value, run.colour); });
}

const std::uint16_t* RasterMapping::sourceAt(std::int64_t x, std::int64_t y) const {
    return reinterpret_cast<const std::uint16_t*>(source_) + (y * sourcePitch_ + x);
}

std::uint32_t* RasterMapping::destinationAt(std::int64_t x, std::int64_t y) const {
    return reinterpret_cast<std::uint32_t*>(destination_) + (y * destinationPitch_ + x);
}

}  // namespace zolcs::mapping
