#include "zolcs/sharpen/unsharprows.h"

#include "zolcs/sharpen/unsharpvectors.h"
#include "zolcs/simd/variant.h"

#include <bit>

namespace zolcs {

ExactShare::ExactShare(const UnsharpSettings& settings)
    : area_(static_cast<std::uint64_t>(settings.box) * static_cast<std::uint64_t>(settings.box)),
      strength_(static_cast<std::uint64_t>(settings.strength < 0 ? -std::int64_t{settings.strength}
                                                                 : std::int64_t{settings.strength})),
      negative_(settings.strength < 0),
      fractionBits_(settings.fractionBits) {}

std::int64_t ExactShare::operator()(std::uint64_t sum) const {
    // By parts, since sum * strength need not fit 64 bits: whole mean first, then what is left of it.
    const std::uint64_t product = sum % area_ * strength_;
    const std::uint64_t whole = sum / area_ * strength_ + product / area_;
    const auto bits = static_cast<unsigned>(fractionBits_);
    const auto scaled = static_cast<std::int64_t>((whole << bits) + ((product % area_) << bits) / area_);
    return (negative_ ? -scaled : scaled) >> bits;
}

std::optional<DoubleShare> DoubleShare::of(const UnsharpSettings& settings) {
    constexpr std::uint64_t most = std::uint64_t{1} << 49U;
    const auto strength = static_cast<std::uint64_t>(settings.strength);
    if (settings.strength < 0 || settings.largestSum() >= most / std::max<std::uint64_t>(strength, 1)) return {};
    const double area = static_cast<double>(settings.box) * static_cast<double>(settings.box);
    DoubleShare share;
    share.factor_ = settings.strength / area;
    share.half_ = 0.5 / area;
    return share;
}

std::optional<IntegerShare> IntegerShare::of(const UnsharpSettings& settings) {
    constexpr std::uint64_t most = std::uint64_t{1} << 31U;
    const auto strength = static_cast<std::uint64_t>(settings.strength);
    const std::uint64_t sum = settings.largestSum();
    if (settings.strength < 0 || settings.limit != settings.sampleMask()) return {};
    if (sum >= most / std::max<std::uint64_t>(strength, 1) || settings.sampleMask() * (strength + 1) >= most) return {};
    const auto area = static_cast<std::uint64_t>(settings.box) * static_cast<std::uint64_t>(settings.box);
    IntegerShare share;
    share.shift = static_cast<int>(std::bit_width(std::max<std::uint64_t>(sum * area, 1) - 1));
    share.multiplier = static_cast<std::uint32_t>(((strength << static_cast<unsigned>(share.shift)) + area - 1) / area);
    return share;
}

template <typename Sample>
void slideColumns(const ColumnSlide<Sample>& slide) {
#if defined(ZOL_USE_HIGHWAY)
    if (simd::usesVectors()) return unsharpvectors::chosen<Sample>().slide(slide);
#endif
    slideRest(slide, 0);
}

template void slideColumns(const ColumnSlide<std::uint8_t>& slide);
template void slideColumns(const ColumnSlide<std::uint16_t>& slide);

RowSharpener::RowSharpener(const UnsharpSettings& settings) : settings_(settings), exact_(settings) {
    if (simd::isPlain()) return;
    double_ = DoubleShare::of(settings);
    integer_ = IntegerShare::of(settings);
}

template <typename Share, typename Sample>
void RowSharpener::sharpenBy(const Share& share, const std::uint32_t* columns, const Sample* samples, Sample* out,
                             int count) const {
    constexpr int channels = channelsOf<Sample>;
    const std::int64_t gain = std::int64_t{settings_.strength} + 1;
    const std::int64_t limit = settings_.limit;
    const std::uint32_t mask = settings_.sampleMask();
    for (int channel = 0; channel < channels; ++channel) {
        const std::uint32_t* leaving = columns + channel - channels;
        const std::uint32_t* entering = leaving;
        std::uint64_t sum = 0;
        for (std::int64_t i = 0; i < settings_.box; ++i, entering += channels) sum += *entering;
        for (int i = channel; i < count; i += channels, entering += channels, leaving += channels) {
            sum += *entering;
            sum -= *leaving;
            const std::int64_t value = static_cast<std::int64_t>(samples[i] & mask) * gain - share(sum);
            out[i] = static_cast<Sample>(std::clamp<std::int64_t>(value, 0, limit) | (samples[i] & ~mask));
        }
    }
}

template <typename Sample>
void RowSharpener::sharpen(const std::uint32_t* columns, const Sample* samples, Sample* out, int count) const {
    if (!integer_) {
        if (double_) return sharpenBy(*double_, columns, samples, out, count);
        return sharpenBy(exact_, columns, samples, out, count);
    }
    const SharpenedRun<Sample> run{columns,
                                   samples,
                                   out,
                                   count,
                                   static_cast<int>(settings_.box),
                                   static_cast<Sample>(settings_.sampleMask()),
                                   settings_.strength + 1,
                                   *integer_};
#if defined(ZOL_USE_HIGHWAY)
    if (simd::usesVectors()) return unsharpvectors::chosen<Sample>().sharpen(run);
#endif
    sharpenRest(run, 0, sumsBeforeFirst(run));
}

template void RowSharpener::sharpen(const std::uint32_t* columns, const std::uint8_t* samples, std::uint8_t* out,
                                    int count) const;
template void RowSharpener::sharpen(const std::uint32_t* columns, const std::uint16_t* samples, std::uint16_t* out,
                                    int count) const;

}  // namespace zolcs
