// The arithmetic of unsharp masking on one row, in the obvious form and in fast ones that give the same bits.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
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
class ExactShare {
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
class DoubleShare {
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
struct IntegerShare {
    std::uint32_t multiplier = 0;
    int shift = 0;

    /// Nothing where sums, products or results would not fit: sum * strength and value * (strength + 1) below 2^31.
    static std::optional<IntegerShare> of(const UnsharpSettings& settings);
    [[nodiscard]] std::uint32_t operator()(std::uint32_t sum) const {
        return static_cast<std::uint32_t>((std::uint64_t{sum} * multiplier) >> static_cast<unsigned>(shift));
    }
};

/// Samples that a pixel has side by side, each of which is sharpened for itself: grey has one of 16 bits, colour four
/// of 8 bits.
template <typename Sample>
inline constexpr int channelsOf = sizeof(Sample) == 1 ? 4 : 1;

/// A row of samples that enters the boxes, and one that leaves them.
template <typename Sample>
struct ColumnSlide {
    std::uint32_t* columns;
    const Sample* entering;
    const Sample* leaving;
    int count;
    Sample sampleMask;
    std::uint32_t columnMask;
};

/// columns[x] += entering[x], -= leaving[x], by masked samples.
template <typename Sample>
void slideColumns(const ColumnSlide<Sample>& slide);

/// The same from `first` on, in the obvious form.
template <typename Sample>
void slideRest(const ColumnSlide<Sample>& slide, int first) {
    const std::uint32_t mask = slide.sampleMask;
    for (int x = first; x < slide.count; ++x) {
        const std::uint32_t grown = slide.columns[x] + (slide.entering[x] & mask);
        slide.columns[x] = (grown - (slide.leaving[x] & mask)) & slide.columnMask;
    }
}

/// The sums of the boxes of one pixel's channels.
template <typename Sample>
using BoxSums = std::array<std::uint32_t, channelsOf<Sample>>;

/// A run of samples of whole pixels whose shares are IntegerShare's. The box of sample i covers columns[i] and what
/// belongs to the same channel of the next pixels, `box` in all. The columns of the pixel before are readable.
template <typename Sample>
struct SharpenedRun {
    const std::uint32_t* columns;
    const Sample* samples;
    Sample* out;
    int count;
    int box;
    Sample sampleMask;
    std::int32_t gain;  ///< strength + 1
    IntegerShare share;
};

/// Sharpens the samples of a run from `first` on; `sums` are those of the pixel before.
template <typename Sample>
void sharpenRest(const SharpenedRun<Sample>& run, int first, BoxSums<Sample> sums) {
    constexpr int channels = channelsOf<Sample>;
    const std::int32_t limit = run.sampleMask;
    const std::uint32_t* const leaving = run.columns - channels;
    const std::uint32_t* const entering = leaving + std::ptrdiff_t{run.box} * channels;
    for (int pixel = first; pixel < run.count; pixel += channels) {
        int i = pixel;
        for (std::uint32_t& sum : sums) {
            sum += entering[i] - leaving[i];
            const std::int32_t sample = run.samples[i] & limit;
            const std::int32_t value = sample * run.gain - static_cast<std::int32_t>(run.share(sum));
            run.out[i] = static_cast<Sample>(std::clamp(value, 0, limit) | (run.samples[i] & ~limit));
            ++i;
        }
    }
}

/// The sums of the boxes before the first ones of a run, which would reach one pixel to the left.
template <typename Sample>
BoxSums<Sample> sumsBeforeFirst(const SharpenedRun<Sample>& run) {
    BoxSums<Sample> sums{};
    const std::uint32_t* column = run.columns - channelsOf<Sample>;
    for (int i = 0; i < run.box; ++i) {
        for (std::uint32_t& sum : sums) sum += *column++;
    }
    return sums;
}

/// Sharpens the interior of rows, in the fastest way that the settings and the processor allow.
class RowSharpener {
public:
    explicit RowSharpener(const UnsharpSettings& settings);

    /// `count` samples of whole pixels from `samples` on; the box of each begins with the column of the same number.
    /// The columns of the pixel before the first one are readable.
    template <typename Sample>
    void sharpen(const std::uint32_t* columns, const Sample* samples, Sample* out, int count) const;

private:
    template <typename Share, typename Sample>
    void sharpenBy(const Share& share, const std::uint32_t* columns, const Sample* samples, Sample* out,
                   int count) const;

    UnsharpSettings settings_;
    ExactShare exact_;
    std::optional<DoubleShare> double_;
    std::optional<IntegerShare> integer_;
};

}  // namespace zolcs
