// The arithmetic of unsharp masking on one line, in the obvious form and in fast ones that give the same bits.
#pragma once

#include "zolcs/ccsexport.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace zolcs {

/// One call's settings.
struct UnsharpSettings {
    std::int64_t box;          ///< edge of the box, at least 1
    std::int32_t strength;     ///< any
    int fractionBits;          ///< bits below the point when the mean is scaled
    std::int32_t limit;        ///< largest result; its bits are those of a sample that count
    std::uint32_t columnMask;  ///< bits of a column sum; the others are lost

    [[nodiscard]] std::uint16_t sampleMask() const { return static_cast<std::uint16_t>(limit); }

    /// The largest sum of a box.
    [[nodiscard]] std::uint64_t largestSum() const {
        const auto edge = static_cast<std::uint64_t>(box);
        return std::min<std::uint64_t>(sampleMask() * edge, columnMask) * edge;
    }
};

/// What is taken off a pixel: ((sum * strength) << fractionBits) / (box * box) >> fractionBits, the division truncating
/// and the shift rounding down, without overflow for any settings.
class ZOLWEBCS_API ExactShare {
public:
    explicit ExactShare(const UnsharpSettings& settings);
    [[nodiscard]] std::int64_t operator()(std::uint64_t sum) const;

private:
    std::uint64_t area_;
    std::uint64_t strength_;  // without its sign
    bool negative_;
    int fractionBits_;
};

/// The same by one multiplication with a reciprocal in double precision. For strengths of at least 0 the fraction bits
/// cancel: the share is the whole part of x = sum * strength / area, a multiple of 1 / area. The product with the
/// rounded reciprocal, plus half of 1 / area, is off by less than 1.6 * 2^-52 * x, which is less than that half while
/// sum * strength < 2^49: the whole part is right.
class ZOLWEBCS_API DoubleShare {
public:
    /// Nothing where the product may be too large or the strength is negative.
    static std::optional<DoubleShare> of(const UnsharpSettings& settings);
    [[nodiscard]] std::int64_t operator()(std::uint64_t sum) const {
        return static_cast<std::int64_t>(static_cast<double>(static_cast<std::int64_t>(sum)) * factor_ + half_);
    }

private:
    double factor_ = 0.0;
    double half_ = 0.0;
};

/// The same by one integer multiplication: (sum * multiplier) >> shift, where multiplier is strength * 2^shift / area
/// rounded up, and 2^shift at least the largest sum times the area. Rounding up adds less than sum / 2^shift, at most
/// 1 / area, which never reaches the next whole number, since the true quotient is a multiple of 1 / area.
struct ZOLWEBCS_API IntegerShare {
    std::uint32_t multiplier = 0;
    int shift = 0;

    /// Nothing where sums, products or results would not fit: sum * strength and value * (strength + 1) below 2^31.
    static std::optional<IntegerShare> of(const UnsharpSettings& settings);
    [[nodiscard]] std::uint32_t operator()(std::uint32_t sum) const {
        return static_cast<std::uint32_t>((std::uint64_t{sum} * multiplier) >> static_cast<unsigned>(shift));
    }
};

/// A line of samples that enters the boxes, and one that leaves them.
struct ColumnSlide {
    std::uint32_t* columns;
    const std::uint16_t* entering;
    const std::uint16_t* leaving;
    int count;
    std::uint16_t sampleMask;
    std::uint32_t columnMask;
};

/// columns[x] += entering[x], -= leaving[x], by masked samples.
ZOLWEBCS_API void slideColumns(const ColumnSlide& slide);

/// The same from one column on, one after the other.
inline void slideRest(const ColumnSlide& slide, int first) {
    for (int x = first; x < slide.count; ++x) {
        const std::uint32_t grown = slide.columns[x] + (slide.entering[x] & slide.sampleMask);
        slide.columns[x] = (grown - (slide.leaving[x] & slide.sampleMask)) & slide.columnMask;
    }
}

/// A run of pixels whose shares are IntegerShare's. The box of pixel i covers columns[i] to columns[i + box - 1].
struct SharpenedRun {
    const std::uint32_t* columns;
    const std::uint16_t* samples;
    std::uint16_t* out;
    int count;
    int box;
    std::uint16_t sampleMask;
    std::int32_t gain;  ///< strength + 1
    IntegerShare share;
};

/// Sharpens the pixels of a run from `first` on; `sum` is the sum of the box of the pixel before the first.
inline void sharpenRest(const SharpenedRun& run, int first, std::uint32_t sum) {
    const std::int32_t limit = run.sampleMask;
    const std::uint32_t* const leaving = run.columns - 1;
    const std::uint32_t* const entering = leaving + run.box;
    for (int i = first; i < run.count; ++i) {
        sum += entering[i] - leaving[i];
        const std::int32_t sample = run.samples[i] & run.sampleMask;
        const std::int32_t value = sample * run.gain - static_cast<std::int32_t>(run.share(sum));
        const auto kept = static_cast<std::uint16_t>(run.samples[i] & ~run.sampleMask);
        run.out[i] = static_cast<std::uint16_t>(std::clamp(value, 0, limit) | kept);
    }
}

/// The sum of the box before the first one of a run, which would reach one column to the left.
inline std::uint32_t sumBeforeFirst(const SharpenedRun& run) {
    std::uint32_t sum = 0;
    for (int i = -1; i < run.box - 1; ++i) sum += run.columns[i];
    return sum;
}

/// Sharpens the interior of lines, in the fastest way that the settings and the processor allow.
class ZOLWEBCS_API LineSharpener {
public:
    explicit LineSharpener(const UnsharpSettings& settings);

    /// `count` samples from `samples` on; the box of the first covers columns[0] to columns[box - 1]. columns[-1] is
    /// readable.
    void sharpen(const std::uint32_t* columns, const std::uint16_t* samples, std::uint16_t* out, int count) const;

private:
    template <typename Share>
    void sharpenBy(const Share& share, const std::uint32_t* columns, const std::uint16_t* samples, std::uint16_t* out,
                   int count) const;

    UnsharpSettings settings_;
    ExactShare exact_;
    std::optional<DoubleShare> double_;
    std::optional<IntegerShare> integer_;
};

}  // namespace zolcs
