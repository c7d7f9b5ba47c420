// The fast filler of interpolation for views of any angle: many pixels at once where all source pixels around them
// exist, the plain loop along the edges.
#pragma once

#include "zolcs/resample/bicubic/bicubic.h"
#include "zolcs/resample/bilinear/bilinear.h"
#include "zolcs/resample/kernels.h"
#include "zolcs/resample/nearest/nearestfiller.h"
#include "zolcs/resample/oblique/obliqueoperations.h"
#include "zolcs/resample/plainfiller.h"
#include "zolcs/resample/spanfiller.h"
#include "zolcs/resample/stopflag.h"
#include "zolcs/resample/upright/uprightoperations.h"

#include <algorithm>
#include <array>
#include <type_traits>

namespace zolcs {

/// Shifted positions, in both directions inclusive, at which a kernel reads only pixels that exist.
struct Interior {
    Fixed16 lowU;
    Fixed16 lowV;
    Fixed16 highU;
    Fixed16 highV;
};

/// How the blocks of a kernel are computed.
template <typename Kernel>
struct BlockKernel;

template <>
struct BlockKernel<BilinearGrey> {
    static Interior interior(const BilinearGrey& kernel) { return bilinearInterior(kernel); }
    static void compute(const BlockOperations& operations, const BilinearGrey& kernel, const SpanPositions& positions,
                        int count, std::uint16_t* out) {
        operations.bilinearGrey(kernel.source().pixels().line(0), positions, static_cast<std::uint16_t>(kernel.mask()),
                                count, out);
    }

    template <typename Kernel>
    static Interior bilinearInterior(const Kernel& kernel) {
        return {0, 0, kernel.source().lastU() - 1, kernel.source().lastV() - 1};
    }
};

template <>
struct BlockKernel<BilinearRgb> {
    static Interior interior(const BilinearRgb& kernel) { return BlockKernel<BilinearGrey>::bilinearInterior(kernel); }
    static void compute(const BlockOperations& operations, const BilinearRgb& kernel, const SpanPositions& positions,
                        int count, std::uint32_t* out) {
        operations.bilinearRgb(kernel.source().pixels().line(0), positions, count, out);
    }
};

template <>
struct BlockKernel<CubicGrey> {
    static Interior interior(const CubicGrey& kernel) { return cubicInterior(kernel); }
    static void compute(const BlockOperations& operations, const CubicGrey& kernel, const SpanPositions& positions,
                        int count, std::uint16_t* out) {
        operations.cubicGrey(kernel.source().pixels().line(0), positions, kernel.source().weights(),
                             static_cast<std::uint16_t>(kernel.mask()), count, out);
    }

    template <typename Kernel>
    static Interior cubicInterior(const Kernel& kernel) {
        return {fixed16One, fixed16One, (kernel.source().lastColumn() - 1) * fixed16One - 1,
                (kernel.source().lastRow() - 1) * fixed16One - 1};
    }
};

template <>
struct BlockKernel<CubicRgb> {
    static Interior interior(const CubicRgb& kernel) { return BlockKernel<CubicGrey>::cubicInterior(kernel); }
    static void compute(const BlockOperations& operations, const CubicRgb& kernel, const SpanPositions& positions,
                        int count, std::uint32_t* out) {
        operations.cubicRgb(kernel.source().pixels().line(0), positions, kernel.source().weights(), count, out);
    }
};

/// Computes many pixels at once where all source pixels around them exist.
template <typename Kernel, typename Convert>
class ObliqueFiller final : public SpanFiller<DisplayPixel<Kernel, Convert>> {
public:
    using Pixel = DisplayPixel<Kernel, Convert>;

    static constexpr const char* name = "oblique";

    /// True when the processor has operations for it and the source's positions and offsets fit 31 bits.
    static bool isUsableFor(const Kernel& kernel, const Stepping& stepping) {
        return BlockOperations::chosen() != nullptr && fitsSpanPositions(stepping, kernel.source().pixels().pitch());
    }

    /// The conversion must outlive the filler. Looks at `stop` before each block.
    ObliqueFiller(const Kernel& kernel, const Convert& convert, StopFlag stop)
        : kernel_(kernel),
          convert_(convert),
          stop_(stop),
          operations_(*BlockOperations::chosen()),
          plain_(kernel, convert, StopFlag()) {}

    void beginView(const Stepping& /*stepping*/) override {}
    void beginColumns(ColumnRange /*columns*/) override {}

    bool fill(const SourceLine& line, ColumnRange columns, Pixel* out) override {
        const ColumnRange inside = interiorColumns(line, columns);
        return fillInBlocks({columns.begin, inside.begin}, columns, out,
                            [&](ColumnRange block, Pixel* pixels) { plain_.fill(line, block, pixels); }) &&
               fillInBlocks(inside, columns, out,
                            [&](ColumnRange block, Pixel* pixels) { compute(line, block, pixels); }) &&
               fillInBlocks({inside.end, columns.end}, columns, out,
                            [&](ColumnRange block, Pixel* pixels) { plain_.fill(line, block, pixels); });
    }

private:
    using Value = typename Kernel::Pixel;
    static constexpr int mostAtOnce = 256;
    static constexpr bool isGrey = std::is_same_v<Value, std::uint16_t>;

    [[nodiscard]] ColumnRange interiorColumns(const SourceLine& line, ColumnRange columns) const {
        constexpr Fixed16 half = fixed16One / 2;
        const Interior interior = BlockKernel<Kernel>::interior(kernel_);
        columns = columnsBetween(line.u - half, line.du, interior.lowU, interior.highU, columns);
        return columnsBetween(line.v - half, line.dv, interior.lowV, interior.highV, columns);
    }

    template <typename Fill>
    bool fillInBlocks(ColumnRange part, ColumnRange columns, Pixel* out, const Fill& fill) const {
        const int most = stop_.isThere() ? StopFlag::block : mostAtOnce;
        for (int x = part.begin; x < part.end; x += most) {
            if (stop_.isRaised()) return false;
            fill(ColumnRange{x, std::min(x + most, part.end)}, out + (x - columns.begin));
        }
        return true;
    }

    void compute(const SourceLine& line, ColumnRange columns, Pixel* out) const {
        constexpr Fixed16 half = fixed16One / 2;
        const int count = columns.end - columns.begin;
        const SpanPositions positions{static_cast<std::uint32_t>(line.uAt(columns.begin) - half),
                                      static_cast<std::uint32_t>(line.vAt(columns.begin) - half),
                                      static_cast<std::uint32_t>(line.du), static_cast<std::uint32_t>(line.dv),
                                      static_cast<std::int32_t>(kernel_.source().pixels().pitch())};
        if constexpr (std::is_same_v<Convert, Copy<Value>>) {
            computeValues(positions, count, out);
        } else {
            std::array<Value, mostAtOnce> values;
            computeValues(positions, count, values.data());
            if constexpr (std::is_same_v<Convert, GreyTable>) {
                lookUpLine(values.data(), count, convert_.entries, out, StopFlag());
            } else {
                for (int i = 0; i < count; ++i) out[i] = convert_(values[static_cast<std::size_t>(i)]);
            }
        }
    }

    void computeValues(const SpanPositions& positions, int count, Value* out) const {
        BlockKernel<Kernel>::compute(operations_, kernel_, positions, count, out);
        if constexpr (isGrey) {
            if (kernel_.keptBits() != 0) keepBits(positions, count, out);
        }
    }

    void keepBits(const SpanPositions& positions, int count, Value* out) const {
        std::array<std::int32_t, mostAtOnce> offsets;
        SpanOperations::chosen().offsets(positions, count, offsets.data());
        const Value* stored = kernel_.source().pixels().line(0);
        const auto kept = static_cast<unsigned>(kernel_.keptBits());
        for (int i = 0; i < count; ++i) {
            out[i] = static_cast<Value>(out[i] | (stored[offsets[static_cast<std::size_t>(i)]] & kept));
        }
    }

    Kernel kernel_;
    const Convert& convert_;
    StopFlag stop_;
    const BlockOperations& operations_;
    PlainFiller<Kernel, Convert> plain_;
};

}  // namespace zolcs
