#if defined(ZOL_USE_HIGHWAY)

#include "zolcs/sharpen/unsharpvectors.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zolcs/sharpen/unsharpvectors.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace zolcs::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SCALAR

template <typename Sample>
void sharpen(const SharpenedRun<Sample>& run) {
    sharpenRest(run, 0, sumsBeforeFirst(run));
}

template <typename Sample>
void slide(const ColumnSlide<Sample>& slide) {
    slideRest(slide, 0);
}

#else

// One or two blocks of 128 bits: what the running sums are made for.
using Lanes = hn::CappedTag<std::uint32_t, 8>;
using Vector = hn::Vec<Lanes>;
constexpr Lanes lanesTag;
constexpr int lanes = static_cast<int>(hn::MaxLanes(lanesTag));

/// Running sums over neighbouring pixels, each channel for itself, carried on from vector to vector.
template <typename Sample>
class RunningSums {
public:
    explicit RunningSums(const BoxSums<Sample>& start)
        : carry_(channels == 1 ? hn::Set(lanesTag, start.front()) : hn::LoadDup128(lanesTag, start.data())) {}

    HWY_INLINE Vector add(Vector differences) {
        Vector sums = differences;
        Vector total = sums;
        if constexpr (channels == 1) {
            sums = hn::Add(sums, hn::ShiftLeftLanes<1>(lanesTag, sums));
            sums = hn::Add(sums, hn::ShiftLeftLanes<2>(lanesTag, sums));
            total = hn::Broadcast<3>(sums);
        }
        const Vector carry = carry_;
        if constexpr (lanes == 8) {
            sums = hn::Add(sums, hn::ConcatLowerLower(lanesTag, total, hn::Zero(lanesTag)));
            total = hn::Add(hn::ConcatLowerLower(lanesTag, total, total), hn::ConcatUpperUpper(lanesTag, total, total));
        }
        carry_ = hn::Add(carry, total);
        return hn::Add(sums, carry);
    }

    [[nodiscard]] BoxSums<Sample> values() const {
        std::uint32_t all[lanes];
        hn::StoreU(carry_, lanesTag, all);
        BoxSums<Sample> sums;
        std::copy_n(all, channels, sums.begin());
        return sums;
    }

private:
    static constexpr int channels = channelsOf<Sample>;

    Vector carry_;
};

HWY_INLINE Vector shareOf(Vector sums, Vector multiplier, int shift) {
    const hn::Repartition<std::uint64_t, Lanes> d64;
    const auto even = hn::MulEven(sums, multiplier);
    const auto odd = hn::MulEven(hn::BitCast(lanesTag, hn::ShiftRight<32>(hn::BitCast(d64, sums))), multiplier);
    const auto low = hn::ShiftRightSame(even, shift);
    const auto high = hn::ShiftLeft<32>(hn::ShiftRightSame(odd, shift));
    return hn::BitCast(lanesTag, hn::Or(low, high));
}

template <typename Sample>
void sharpen(const SharpenedRun<Sample>& given) {
    const SharpenedRun<Sample> run = given;  // samples could overlay the one that is given, for all the compiler knows
    constexpr int channels = channelsOf<Sample>;
    const hn::RebindToSigned<Lanes> di;
    const hn::Rebind<Sample, Lanes> ds;
    const auto mask = hn::Set(lanesTag, std::uint32_t{run.sampleMask});
    const auto limit = hn::BitCast(di, mask);
    const auto gain = hn::Set(di, run.gain);
    const auto multiplier = hn::Set(lanesTag, run.share.multiplier);
    const std::uint32_t* const leaving = run.columns - channels;
    const std::uint32_t* const entering = leaving + std::ptrdiff_t{run.box} * channels;
    RunningSums<Sample> running(sumsBeforeFirst(run));
    int i = 0;
    for (; i + lanes <= run.count; i += lanes) {
        const auto sums = running.add(hn::Sub(hn::LoadU(lanesTag, entering + i), hn::LoadU(lanesTag, leaving + i)));
        const auto share = hn::BitCast(di, shareOf(sums, multiplier, run.share.shift));
        const auto samples = hn::PromoteTo(lanesTag, hn::LoadU(ds, run.samples + i));
        const auto boosted = hn::Mul(hn::BitCast(di, hn::And(samples, mask)), gain);
        const auto value = hn::Min(hn::Max(hn::Sub(boosted, share), hn::Zero(di)), limit);
        const auto kept = hn::BitCast(di, hn::AndNot(mask, samples));
        hn::StoreU(hn::DemoteTo(ds, hn::Or(value, kept)), ds, run.out + i);
    }
    sharpenRest(run, i, running.values());
}

template <typename Sample>
void slide(const ColumnSlide<Sample>& given) {
    const ColumnSlide<Sample> slide = given;
    const hn::Rebind<Sample, Lanes> ds;
    const auto mask = hn::Set(lanesTag, std::uint32_t{slide.sampleMask});
    const auto columnMask = hn::Set(lanesTag, slide.columnMask);
    const auto load = [&](const Sample* samples)
                          HWY_ATTR { return hn::And(hn::PromoteTo(lanesTag, hn::LoadU(ds, samples)), mask); };
    int x = 0;
    for (; x + lanes <= slide.count; x += lanes) {
        const auto grown = hn::Add(hn::LoadU(lanesTag, slide.columns + x), load(slide.entering + x));
        hn::StoreU(hn::And(hn::Sub(grown, load(slide.leaving + x)), columnMask), lanesTag, slide.columns + x);
    }
    slideRest(slide, x);
}

#endif

const unsharpvectors::UnsharpOperations<std::uint8_t>* colourOperations() {
    static constexpr unsharpvectors::UnsharpOperations<std::uint8_t> table{slide, sharpen};
    return &table;
}

const unsharpvectors::UnsharpOperations<std::uint16_t>* greyOperations() {
    static constexpr unsharpvectors::UnsharpOperations<std::uint16_t> table{slide, sharpen};
    return &table;
}

}  // namespace zolcs::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace zolcs {
namespace {
HWY_EXPORT(colourOperations);
HWY_EXPORT(greyOperations);
}  // namespace

namespace unsharpvectors {

template <>
const UnsharpOperations<std::uint8_t>& chosen() {
    return *HWY_DYNAMIC_DISPATCH(colourOperations)();
}

template <>
const UnsharpOperations<std::uint16_t>& chosen() {
    return *HWY_DYNAMIC_DISPATCH(greyOperations)();
}

}  // namespace unsharpvectors
}  // namespace zolcs

#endif  // HWY_ONCE

#endif  // ZOL_USE_HIGHWAY
