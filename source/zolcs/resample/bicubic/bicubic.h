// Cubic convolution over the 4 x 4 source pixels around a position: the kernels.
#pragma once

#include "zolcs/pixels/imageview.h"
#include "zolcs/resample/bicubic/cubicweights.h"
#include "zolcs/view/stepping.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace zolcs {

/// The 4 x 4 pixels around a position; beyond the image's edge its outermost pixels are repeated.
template <typename Pixel>
struct CubicSquare {
    std::array<const Pixel*, 4> rows;
    std::array<std::ptrdiff_t, 4> columns;

    /// The pixel on which the position falls.
    [[nodiscard]] Pixel centre() const { return rows[1][columns[1]]; }
};

/// Weights both ways; `value` makes a number of a pixel. 16.16, neither rounded nor limited.
template <typename Pixel, typename Value>
std::int64_t convolve(const CubicSquare<Pixel>& square, const CubicWeights& across, const CubicWeights& down,
                      const Value& value) {
    std::int64_t total = 0;
    for (std::size_t j = 0; j < 4; ++j) {
        std::int64_t row = 0;
        for (std::size_t k = 0; k < 4; ++k) {
            row += static_cast<std::int64_t>(value(square.rows[j][square.columns[k]])) * across[k];
        }
        total += (row >> fixed16Bits) * down[j];
    }
    return total;
}

/// Finds the pixels around a position and the weights for it in a table of `Steps` entries.
template <typename Pixel, int Steps>
class CubicSource {
public:
    CubicSource(ImageView<const Pixel> source, const Stepping& stepping, const CubicWeights* weights)
        : source_(source),
          lastColumn_(pixelOf(stepping.limitU) - 1),
          lastRow_(pixelOf(stepping.limitV) - 1),
          weights_(weights) {}

    /// `u` and `v` have been shifted by half a pixel, so that whole numbers are pixel centres.
    [[nodiscard]] CubicSquare<Pixel> around(Fixed16 u, Fixed16 v) const {
        CubicSquare<Pixel> square;
        for (std::size_t i = 0; i < 4; ++i) {
            const std::int64_t offset = static_cast<std::int64_t>(i) - 1;
            square.columns[i] =
                static_cast<std::ptrdiff_t>(std::clamp<std::int64_t>(pixelOf(u) + offset, 0, lastColumn_));
            square.rows[i] = source_.row(std::clamp<std::int64_t>(pixelOf(v) + offset, 0, lastRow_));
        }
        return square;
    }

    [[nodiscard]] const CubicWeights& weightsFor(Fixed16 coordinate) const {
        return weights_[(coordinate & (fixed16One - 1)) / (fixed16One / Steps)];
    }

    [[nodiscard]] const ImageView<const Pixel>& pixels() const { return source_; }
    [[nodiscard]] const CubicWeights* weights() const { return weights_; }
    [[nodiscard]] std::int64_t lastColumn() const { return lastColumn_; }
    [[nodiscard]] std::int64_t lastRow() const { return lastRow_; }

private:
    ImageView<const Pixel> source_;
    std::int64_t lastColumn_;
    std::int64_t lastRow_;
    const CubicWeights* weights_;
};

/// Grey values.
class CubicGrey {
public:
    using Pixel = std::uint16_t;
    using Source = CubicSource<std::uint16_t, fineCubicSteps>;

    /// `mask` holds the bits of a grey value, and is the highest one; `keptBits` those that the result takes from the
    /// pixel on which the position falls, as stored.
    CubicGrey(const Source& source, std::uint16_t mask, std::uint16_t keptBits)
        : source_(source), mask_(mask), keptBits_(keptBits) {}

    std::uint16_t operator()(Fixed16 u, Fixed16 v) const {
        const Fixed16 atU = u - fixed16One / 2;
        const Fixed16 atV = v - fixed16One / 2;
        const auto square = source_.around(atU, atV);
        const std::int64_t total = convolve(square, source_.weightsFor(atU), source_.weightsFor(atV),
                                            [this](std::uint16_t stored) { return stored & mask_; });
        const std::int64_t value = std::clamp<std::int64_t>(total >> fixed16Bits, 0, mask_);
        return static_cast<std::uint16_t>(value | (square.centre() & keptBits_));
    }

    [[nodiscard]] const Source& source() const { return source_; }
    [[nodiscard]] std::int32_t mask() const { return mask_; }
    [[nodiscard]] std::int32_t keptBits() const { return keptBits_; }

private:
    Source source_;
    std::int32_t mask_;
    std::int32_t keptBits_;
};

/// The three colour bytes of a 32-bit pixel; the fourth becomes 0.
class CubicRgb {
public:
    using Pixel = std::uint32_t;
    using Source = CubicSource<std::uint32_t, coarseCubicSteps>;

    explicit CubicRgb(const Source& source) : source_(source) {}

    std::uint32_t operator()(Fixed16 u, Fixed16 v) const {
        const Fixed16 atU = u - fixed16One / 2;
        const Fixed16 atV = v - fixed16One / 2;
        const auto square = source_.around(atU, atV);
        const CubicWeights& across = source_.weightsFor(atU);
        const CubicWeights& down = source_.weightsFor(atV);
        const auto channel = [&](unsigned shift) {
            const std::int64_t total =
                convolve(square, across, down, [shift](std::uint32_t pixel) { return pixel >> shift & 0xFFU; });
            return static_cast<std::uint32_t>(std::clamp<std::int64_t>(total >> fixed16Bits, 0, 255)) << shift;
        };
        return channel(0) | channel(8) | channel(16);
    }

    [[nodiscard]] const Source& source() const { return source_; }

private:
    Source source_;
};

}  // namespace zolcs
