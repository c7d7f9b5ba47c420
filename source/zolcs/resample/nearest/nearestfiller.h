// The fast filler of nearest-neighbour resampling: source offsets of many pixels at once, then one load for each.
#pragma once

#include "platform/cache.h"
#include "zolcs/resample/conversions.h"
#include "zolcs/resample/nearest/nearestkernel.h"
#include "zolcs/resample/nearest/spanloads.h"
#include "zolcs/resample/plainfiller.h"
#include "zolcs/resample/spanfiller.h"
#include "zolcs/resample/stopflag.h"
#include "zolcs/simd/variant.h"
#include "zolcs/view/samplingoffsets.h"
#include "zolcs/view/stepping.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace zolcs {

/// out[i] = convert(source[offsets[i]]).
template <typename SourcePixel, typename Convert, typename Pixel>
void moveSpan(const SourcePixel* source, const std::int32_t* offsets, int count, const Convert& convert, Pixel* out) {
    if constexpr (std::is_same_v<Convert, GreyTable>) {
        lookUpSpan(source, offsets, count, convert.entries, out);
    } else if constexpr (std::is_same_v<Convert, Copy<std::uint32_t>>) {
        copySpan(source, offsets, count, out);
    } else {
        for (int i = 0; i < count; ++i) out[i] = convert(source[offsets[i]]);
    }
}

/// Loads the source pixels of many display pixels at once.
template <typename SourcePixel, typename Convert>
class NearestFiller final : public SpanFiller<DisplayPixel<NearestKernel<SourcePixel>, Convert>> {
public:
    using Kernel = NearestKernel<SourcePixel>;
    using Pixel = DisplayPixel<Kernel, Convert>;

    static constexpr const char* name = "nearest";

    /// True when the source's positions and offsets fit 31 bits.
    static bool isUsableFor(const Kernel& kernel, const Stepping& stepping) {
        return !simd::isPlain() && fitsSamplePositions(stepping.limitU, stepping.limitV, kernel.source.pitch());
    }

    /// The conversion must outlive the filler. No member that takes the nearest pixels can be stopped.
    NearestFiller(const Kernel& kernel, const Convert& convert, StopFlag /*stop*/)
        : source_(kernel.source), convert_(convert) {}

    void beginView(const Stepping& stepping) override {
        columnOffsets_.clear();
        keptPixels_.clear();
        columns_ = {};
        // A step this large leaves any source after one pixel: its offsets are never used.
        const auto pixelsAhead = [](Fixed16 step) {
            constexpr Fixed16 farthest = Fixed16{1} << 40;
            return pixelOf(std::clamp(step, -farthest, farthest) * rowsAhead);
        };
        ahead_ = pixelsAhead(stepping.stepYv) * source_.pitch() + pixelsAhead(stepping.stepYu);
        if (!stepping.isUpright()) return;
        // All rows of an upright view take the same source columns.
        columnOffsets_.resize(static_cast<std::size_t>(stepping.width));
        Fixed16 u = stepping.startU;
        for (std::int32_t& offset : columnOffsets_) {
            // Columns beside the source are never asked for; what stands there need only be defined.
            offset = static_cast<std::int32_t>(pixelOf(std::clamp<Fixed16>(u, 0, stepping.limitU)));
            u += stepping.stepXu;
        }
        keptPixels_.resize(columnOffsets_.size());
        rowStep_ = stepping.stepYv;
        sourceRows_ = pixelOf(stepping.limitV);
    }

    void beginColumns(ColumnRange columns) override {
        if (columns == columns_) return;
        columns_ = columns;
        keptRow_ = -1;
    }

    bool fill(const DisplayRow& row, ColumnRange columns, Pixel* out) override {
        if (columnOffsets_.empty()) {
            fillOblique(row, columns, out);
        } else {
            fillUpright(row.v, columns, out);
        }
        return true;
    }

private:
    /// Oblique rows meet new pixels at every source row that they cross, which no processor foresees: the pixels of the
    /// row this far below are prefetched.
    static constexpr Fixed16 rowsAhead = 8;

    /// Zoomed in, neighbouring display rows show one source row: its pixels are kept when the next row shows it again.
    void fillUpright(Fixed16 v, ColumnRange columns, Pixel* out) {
        const std::int64_t sourceRow = pixelOf(v);
        if (sourceRow != keptRow_) {
            const std::int64_t nextRow = pixelOf(v + rowStep_);
            if (sourceRow != nextRow) {
                if (nextRow >= 0 && nextRow < sourceRows_) {
                    const std::int32_t first = columnOffsets_[static_cast<std::size_t>(columns.begin)];
                    zolplatform::prefetchRow(source_.row(nextRow) + first);
                }
                moveColumns(sourceRow, columns, out);
                return;
            }
            moveColumns(sourceRow, columns_, keptPixels_.data() + columns_.begin);
            keptRow_ = sourceRow;
        }
        std::copy_n(keptPixels_.data() + columns.begin, columns.size(), out);
    }

    void moveColumns(std::int64_t sourceRow, ColumnRange columns, Pixel* out) const {
        moveSpan(source_.row(sourceRow), columnOffsets_.data() + columns.begin, columns.size(), convert_, out);
    }

    void fillOblique(const DisplayRow& row, ColumnRange columns, Pixel* out) {
        alignas(64) std::array<std::int32_t, 256> offsets;
        for (int x = columns.begin; x < columns.end;) {
            const int count = std::min(columns.end - x, static_cast<int>(offsets.size()));
            SamplingOperations::chosen().offsets(samplePositions(row, x, source_.pitch()), count, offsets.data());
            prefetchSpan(source_.row(0), sizeof(SourcePixel), offsets.data(), count, ahead_);
            moveSpan(source_.row(0), offsets.data(), count, convert_, out);
            x += count;
            out += count;
        }
    }

    ImageView<const SourcePixel> source_;
    const Convert& convert_;
    std::vector<std::int32_t> columnOffsets_;  ///< of an upright view; empty in others
    std::int64_t ahead_ = 0;                   ///< from a pixel of a row to that of the row so far below
    Fixed16 rowStep_ = 0;
    std::int64_t sourceRows_ = 0;
    std::vector<Pixel> keptPixels_;  ///< what columns_ show of the source row that is kept
    std::int64_t keptRow_ = -1;
    ColumnRange columns_;
};

}  // namespace zolcs
