// The fast filler of interpolation for views of any angle: many pixels at once where all source pixels around them
// exist, the plain loop along the edges.
#pragma once

#include "zolcs/resample/bicubic/bicubic.h"
#include "zolcs/resample/bilinear/bilinear.h"
#include "zolcs/resample/conversions.h"
#include "zolcs/resample/oblique/obliqueoperations.h"
#include "zolcs/resample/plainfiller.h"
#include "zolcs/resample/spanfiller.h"
#include "zolcs/resample/stopflag.h"
#include "zolcs/resample/upright/uprightoperations.h"
#include "zolcs/view/samplingoffsets.h"
#include "zolcs/view/stepping.h"

#include <algorithm>
#include <array>
#include <cstdint>
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
struct ObliqueKernel;

template <>
struct ObliqueKernel<BilinearGrey> {
    static Interior interior(const BilinearGrey& kernel) { return bilinearInterior(kernel); }
    static void compute(const ObliqueOperations& operations, const BilinearGrey& kernel,
                        const SamplePositions& positions, int count, std::uint16_t* out) {
        operations.bilinearGrey(kernel.source().pixels().row(0), positions, static_cast<std::uint16_t>(kernel.mask()),
                                count, out);
    }

    template <typename Kernel>
    static Interior bilinearInterior(const Kernel& kernel) {
        return {0, 0, kernel.source().lastU() - 1, kernel.source().lastV() - 1};
    }
};

template <>
struct ObliqueKernel<BilinearRgb> {
    static Interior interior(const BilinearRgb& kernel) {
        return ObliqueKernel<BilinearGrey>::bilinearInterior(kernel);
    }
    static void compute(const ObliqueOperations& operations, const BilinearRgb& kernel,
                        const SamplePositions& positions, int count, std::uint32_t* out) {
        operations.bilinearRgb(kernel.source().pixels().row(0), positions, count, out);
    }
};

template <>
struct ObliqueKernel<CubicGrey> {
    static Interior interior(const CubicGrey& kernel) { return cubicInterior(kernel); }
    static void compute(const ObliqueOperations& operations, const CubicGrey& kernel, const SamplePositions& positions,
                        int count, std::uint16_t* out) {
        operations.cubicGrey(kernel.source().pixels().row(0), positions, kernel.source().weights(),
                             static_cast<std::uint16_t>(kernel.mask()), count, out);
    }

    template <typename Kernel>
    static Interior cubicInterior(const Kernel& kernel) {
        return {fixed16One, fixed16One, (kernel.source().lastColumn() - 1) * fixed16One - 1,
                (kernel.source().lastRow() - 1) * fixed16One - 1};
    }
};

template <>
struct ObliqueKernel<CubicRgb> {
    static Interior interior(const CubicRgb& kernel) { return ObliqueKernel<CubicGrey>::cubicInterior(kernel); }
    static void compute(const ObliqueOperations& operations, const CubicRgb& kernel, const SamplePositions& positions,
                        int count, std::uint32_t* out) {
        operations.cubicRgb(kernel.source().pixels().row(0), positions, kernel.source().weights(), count, out);
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
        return ObliqueOperations::chosen() != nullptr &&
               fitsSamplePositions(stepping.limitU, stepping.limitV, kernel.source().pixels().pitch());
    }

    /// The conversion must outlive the filler. Looks at `stop` before each block.
    ObliqueFiller(const Kernel& kernel, const Convert& convert, StopFlag stop)
        : kernel_(kernel),
          convert_(convert),
          stop_(stop),
          operations_(*ObliqueOperations::chosen()),
          plain_(kernel, convert, StopFlag()) {}

    void beginView(const Stepping& /*stepping*/) override {}
    void beginColumns(ColumnRange /*columns*/) override {}

    bool fill(const DisplayRow& row, ColumnRange columns, Pixel* out) override {
        const ColumnRange inside = interiorColumns(row, columns);
        return fillInBlocks({columns.begin, inside.begin}, columns, out,
                            [&](ColumnRange block, Pixel* pixels) { plain_.fill(row, block, pixels); }) &&
               fillInBlocks(inside, columns, out,
                            [&](ColumnRange block, Pixel* pixels) { compute(row, block, pixels); }) &&
               fillInBlocks({inside.end, columns.end}, columns, out,
                            [&](ColumnRange block, Pixel* pixels) { plain_.fill(row, block, pixels); });
    }

private:
    using Value = typename Kernel::Pixel;
    static constexpr int mostAtOnce = 256;
    static constexpr bool isGrey = std::is_same_v<Value, std::uint16_t>;

    [[nodiscard]] ColumnRange interiorColumns(const DisplayRow& row, ColumnRange columns) const {
        constexpr Fixed16 half = fixed16One / 2;
        const Interior interior = ObliqueKernel<Kernel>::interior(kernel_);
        columns = columnsBetween(row.u - half, row.du, interior.lowU, interior.highU, columns);
        return columnsBetween(row.v - half, row.dv, interior.lowV, interior.highV, columns);
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

    void compute(const DisplayRow& row, ColumnRange columns, Pixel* out) const {
        constexpr Fixed16 half = fixed16One / 2;
        const int count = columns.size();
        const DisplayRow shifted{row.u - half, row.v - half, row.du, row.dv};
        const SamplePositions positions = samplePositions(shifted, columns.begin, kernel_.source().pixels().pitch());
        if constexpr (std::is_same_v<Convert, Copy<Value>>) {
            computeValues(positions, count, out);
        } else {
            std::array<Value, mostAtOnce> values;
            computeValues(positions, count, values.data());
            if constexpr (std::is_same_v<Convert, GreyTable>) {
                lookUpRow(values.data(), count, convert_.entries, out, StopFlag());
            } else {
                for (int i = 0; i < count; ++i) out[i] = convert_(values[static_cast<std::size_t>(i)]);
            }
        }
    }

    void computeValues(const SamplePositions& positions, int count, Value* out) const {
        ObliqueKernel<Kernel>::compute(operations_, kernel_, positions, count, out);
        if constexpr (isGrey) {
            if (kernel_.keptBits() != 0) keepBits(positions, count, out);
        }
    }

    void keepBits(const SamplePositions& positions, int count, Value* out) const {
        std::array<std::int32_t, mostAtOnce> offsets;
        SamplingOperations::chosen().offsets(positions, count, offsets.data());
        const Value* stored = kernel_.source().pixels().row(0);
        const auto kept = static_cast<unsigned>(kernel_.keptBits());
        for (int i = 0; i < count; ++i) {
            out[i] = static_cast<Value>(out[i] | (stored[offsets[static_cast<std::size_t>(i)]] & kept));
        }
    }

    Kernel kernel_;
    const Convert& convert_;
    StopFlag stop_;
    const ObliqueOperations& operations_;
    PlainFiller<Kernel, Convert> plain_;
};

}  // namespace zolcs
