// The fast filler of nearest-neighbour resampling: source offsets of many pixels at once, then one load for each.
#pragma once

#include "zolcs/resample/kernels.h"
#include "zolcs/resample/plainfiller.h"
#include "zolcs/resample/spanfiller.h"
#include "zolcs/resample/spanoperations.h"
#include "zolcs/resample/stopflag.h"
#include "zolcs/view/stepping.h"

#include <algorithm>
#include <array>
#include <cstdlib>
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

/// True when a source's positions and offsets fit 31 bits.
inline bool fitsSpanPositions(const Stepping& stepping, std::int64_t sourcePitch) {
    constexpr Fixed16 limit = Fixed16{1} << 31;
    return stepping.limitU <= limit && stepping.limitV <= limit && sourcePitch <= limit &&
           pixelOf(stepping.limitV) * sourcePitch <= limit;
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
        return !SpanOperations::isPlain() && fitsSpanPositions(stepping, kernel.source.pitch());
    }

    /// The conversion must outlive the filler. No member that takes the nearest pixels can be stopped.
    NearestFiller(const Kernel& kernel, const Convert& convert, StopFlag /*stop*/)
        : source_(kernel.source), convert_(convert) {}

    /// In an upright view all lines take the same source columns.
    void beginView(const Stepping& stepping) override {
        columnOffsets_.clear();
        line_.clear();
        expected_ = {};
        // Of a step that leaves every source at once, anything may be asked for.
        const auto pixelsAhead = [](Fixed16 step) {
            constexpr Fixed16 farthest = Fixed16{1} << 40;
            return pixelOf(std::clamp(step, -farthest, farthest) * linesAhead);
        };
        ahead_ = pixelsAhead(stepping.stepYv) * source_.pitch() + pixelsAhead(stepping.stepYu);
        if (!stepping.isUpright()) return;
        columnOffsets_.resize(static_cast<std::size_t>(stepping.width));
        Fixed16 u = stepping.startU;
        for (std::int32_t& offset : columnOffsets_) {
            // Columns beside the source are never asked for; what stands there need only be defined.
            offset = static_cast<std::int32_t>(pixelOf(std::clamp<Fixed16>(u, 0, stepping.limitU)));
            u += stepping.stepXu;
        }
        line_.resize(columnOffsets_.size());
        lineStep_ = stepping.stepYv;
        sourceLines_ = pixelOf(stepping.limitV);
    }

    void beginColumns(ColumnRange columns) override {
        if (columns == expected_) return;
        expected_ = columns;
        keptLine_ = -1;
    }

    bool fill(const SourceLine& line, ColumnRange columns, Pixel* out) override {
        if (columnOffsets_.empty()) {
            fillOblique(line, columns, out);
        } else {
            fillUpright(line.v, columns, out);
        }
        return true;
    }

private:
    /// Oblique lines meet new pixels at every source row that they cross, which no processor foresees: they are fetched
    /// as many lines ahead.
    static constexpr Fixed16 linesAhead = 8;

    /// Zoomed in, neighbouring lines show one source line: it is kept when the next line shows it again.
    void fillUpright(Fixed16 v, ColumnRange columns, Pixel* out) {
        const std::int64_t sourceLine = pixelOf(v);
        if (sourceLine != keptLine_) {
            const std::int64_t nextLine = pixelOf(v + lineStep_);
            if (sourceLine != nextLine) {
                if (nextLine >= 0 && nextLine < sourceLines_) {
                    prefetchStart(source_.line(nextLine) + columnOffsets_[static_cast<std::size_t>(columns.begin)]);
                }
                moveColumns(sourceLine, columns, out);
                return;
            }
            moveColumns(sourceLine, expected_, line_.data() + expected_.begin);
            keptLine_ = sourceLine;
        }
        std::copy_n(line_.data() + columns.begin, columns.end - columns.begin, out);
    }

    void moveColumns(std::int64_t sourceLine, ColumnRange columns, Pixel* out) const {
        moveSpan(source_.line(sourceLine), columnOffsets_.data() + columns.begin, columns.end - columns.begin, convert_,
                 out);
    }

    void fillOblique(const SourceLine& line, ColumnRange columns, Pixel* out) {
        alignas(64) std::array<std::int32_t, 256> offsets;
        for (int x = columns.begin; x < columns.end;) {
            const int count = std::min(columns.end - x, static_cast<int>(offsets.size()));
            // Modulo 2^32 the sums are exact wherever the position itself fits.
            const SpanPositions positions{static_cast<std::uint32_t>(line.uAt(x)),
                                          static_cast<std::uint32_t>(line.vAt(x)), static_cast<std::uint32_t>(line.du),
                                          static_cast<std::uint32_t>(line.dv),
                                          static_cast<std::int32_t>(source_.pitch())};
            SpanOperations::chosen().offsets(positions, count, offsets.data());
            prefetchSpan(source_.line(0), sizeof(SourcePixel), offsets.data(), count, ahead_);
            moveSpan(source_.line(0), offsets.data(), count, convert_, out);
            x += count;
            out += count;
        }
    }

    ImageView<const SourcePixel> source_;
    const Convert& convert_;
    std::vector<std::int32_t> columnOffsets_;
    std::int64_t ahead_ = 0;  ///< from a pixel of a line to that of the line so far ahead
    Fixed16 lineStep_ = 0;
    std::int64_t sourceLines_ = 0;
    std::vector<Pixel> line_;  ///< the expected columns of the source line that is kept
    std::int64_t keptLine_ = -1;
    ColumnRange expected_;
};

}  // namespace zolcs
