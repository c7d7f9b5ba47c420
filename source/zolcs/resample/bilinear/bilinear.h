// Bilinear interpolation of the 2 x 2 source pixels around a position: the kernels.
#pragma once

#include "zolcs/pixels/imageview.h"
#include "zolcs/resample/bilinear/blend.h"
#include "zolcs/view/stepping.h"

#include <algorithm>
#include <cstdint>

namespace zolcs {

/// Finds the 2 x 2 pixels between whose centres a position lies.
template <typename Pixel>
class BilinearSource {
public:
    struct Square {
        const Pixel* top;      ///< upper left pixel
        const Pixel* bottom;   ///< lower left pixel
        std::ptrdiff_t right;  ///< offset of the right pixels
        std::uint32_t fractionU;
        std::uint32_t fractionV;
    };

    BilinearSource(ImageView<const Pixel> source, const Stepping& stepping)
        : source_(source), lastU_(stepping.limitU - fixed16One), lastV_(stepping.limitV - fixed16One) {}

    /// Beyond the outermost centres the outermost pixels count. There the neighbour has no weight and is not read: the
    /// upper and left pixels stand in for it.
    [[nodiscard]] Square around(Fixed16 u, Fixed16 v) const {
        const Fixed16 atU = std::clamp<Fixed16>(u - fixed16One / 2, 0, lastU_);
        const Fixed16 atV = std::clamp<Fixed16>(v - fixed16One / 2, 0, lastV_);
        const Pixel* top = source_.row(pixelOf(atV)) + pixelOf(atU);
        return {top, atV < lastV_ ? top + source_.pitch() : top, atU < lastU_ ? 1 : 0,
                static_cast<std::uint32_t>(atU & 0xFFFF), static_cast<std::uint32_t>(atV & 0xFFFF)};
    }

    [[nodiscard]] const ImageView<const Pixel>& pixels() const { return source_; }
    /// The largest coordinates, which lie on the centres of the last column and row.
    [[nodiscard]] Fixed16 lastU() const { return lastU_; }
    [[nodiscard]] Fixed16 lastV() const { return lastV_; }

private:
    ImageView<const Pixel> source_;
    Fixed16 lastU_;
    Fixed16 lastV_;
};

/// Grey values on the plain path.
class BilinearGrey {
public:
    using Pixel = std::uint16_t;

    /// `mask` holds the bits of a grey value; `keptBits` those that the result takes from the upper left pixel as
    /// stored.
    BilinearGrey(const BilinearSource<std::uint16_t>& source, std::uint16_t mask, std::uint16_t keptBits)
        : source_(source), mask_(mask), keptBits_(keptBits) {}

    std::uint16_t operator()(Fixed16 u, Fixed16 v) const {
        const auto square = source_.around(u, v);
        const std::uint32_t fractionU = square.fractionU & blendFraction;
        // Deliberately not the horizontal rule: of a 12-bit source only the low 12 bits of the fraction count.
        const std::uint32_t fractionV = square.fractionV & static_cast<std::uint32_t>(mask_);
        const std::int32_t top = blend(square.top[0] & mask_, square.top[square.right] & mask_, fractionU);
        const std::int32_t bottom = blend(square.bottom[0] & mask_, square.bottom[square.right] & mask_, fractionU);
        return static_cast<std::uint16_t>(static_cast<std::uint32_t>(blend(top, bottom, fractionV)) |
                                          (square.top[0] & keptBits_));
    }

    [[nodiscard]] const BilinearSource<std::uint16_t>& source() const { return source_; }
    [[nodiscard]] std::int32_t mask() const { return mask_; }
    [[nodiscard]] std::uint32_t keptBits() const { return keptBits_; }

private:
    BilinearSource<std::uint16_t> source_;
    std::int32_t mask_;
    std::uint32_t keptBits_;
};

/// Grey values on the packed path: stored words are signed, nothing is masked, and the weights sum to 0x7FFF, so that
/// each of the two directions loses 1 of a flat area. Pictures depend on it.
class BilinearPackedGrey {
public:
    using Pixel = std::uint16_t;

    explicit BilinearPackedGrey(const BilinearSource<std::uint16_t>& source) : source_(source) {}

    std::uint16_t operator()(Fixed16 u, Fixed16 v) const {
        const auto square = source_.around(u, v);
        const auto fractionU = static_cast<std::int32_t>(square.fractionU >> 1U);
        const auto fractionV = static_cast<std::int32_t>(square.fractionV >> 1U);
        const std::int32_t top = weigh(word(square.top[0]), word(square.top[square.right]), fractionU);
        const std::int32_t bottom = weigh(word(square.bottom[0]), word(square.bottom[square.right]), fractionU);
        return static_cast<std::uint16_t>(weigh(top, bottom, fractionV));
    }

private:
    static constexpr std::int32_t word(std::uint16_t stored) { return static_cast<std::int16_t>(stored); }

    /// Never leaves 16 signed bits, since the weights sum to less than 1: saturation has nothing to do.
    static constexpr std::int32_t weigh(std::int32_t a, std::int32_t b, std::int32_t fraction) {
        return (a * (0x7FFF - fraction) + b * fraction) >> 15;
    }

    BilinearSource<std::uint16_t> source_;
};

/// The three colour bytes of a 32-bit pixel; the fourth becomes 0.
class BilinearRgb {
public:
    using Pixel = std::uint32_t;

    explicit BilinearRgb(const BilinearSource<std::uint32_t>& source) : source_(source) {}

    std::uint32_t operator()(Fixed16 u, Fixed16 v) const {
        const auto square = source_.around(u, v);
        return channel(square, 0) | channel(square, 8) | channel(square, 16);
    }

    [[nodiscard]] const BilinearSource<std::uint32_t>& source() const { return source_; }

private:
    static std::uint32_t channel(const BilinearSource<std::uint32_t>::Square& square, unsigned shift) {
        const auto level = [shift](std::uint32_t pixel) { return static_cast<std::int32_t>(pixel >> shift & 0xFFU); };
        const std::uint32_t fractionU = square.fractionU & blendFraction;
        const std::int32_t top = blend(level(square.top[0]), level(square.top[square.right]), fractionU);
        const std::int32_t bottom = blend(level(square.bottom[0]), level(square.bottom[square.right]), fractionU);
        return static_cast<std::uint32_t>(blend(top, bottom, square.fractionV & blendFraction)) << shift;
    }

    BilinearSource<std::uint32_t> source_;
};

}  // namespace zolcs
