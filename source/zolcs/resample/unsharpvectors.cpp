#if defined(ZOL_USE_HIGHWAY)

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zolcs/resample/unsharpvectors.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "zolcs/resample/unsharpvectors.h"

HWY_BEFORE_NAMESPACE();
namespace zolcs::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SCALAR

void sharpen(const SharpenedRun& run) { sharpenRest(run, 0, sumBeforeFirst(run)); }

void slide(const ColumnSlide& slide) { slideRest(slide, 0); }

#else

// One or two blocks of 128 bits: what the running sums are made for.
using Lanes = hn::CappedTag<std::uint32_t, 8>;
using Vector = hn::Vec<Lanes>;
constexpr Lanes lanesTag;
constexpr int lanes = static_cast<int>(hn::MaxLanes(lanesTag));

/// Running sums over neighbouring lanes, carried on from vector to vector.
class RunningSum {
public:
    explicit RunningSum(std::uint32_t start) : carry_(hn::Set(lanesTag, start)) {}

    HWY_INLINE Vector add(Vector differences) {
        Vector sums = hn::Add(differences, hn::ShiftLeftLanes<1>(lanesTag, differences));
        sums = hn::Add(sums, hn::ShiftLeftLanes<2>(lanesTag, sums));
        Vector total = hn::Broadcast<3>(sums);
        const Vector carry = carry_;
        if constexpr (lanes == 8) {
            sums = hn::Add(sums, hn::ConcatLowerLower(lanesTag, total, hn::Zero(lanesTag)));
            total = hn::Add(hn::ConcatLowerLower(lanesTag, total, total), hn::ConcatUpperUpper(lanesTag, total, total));
        }
        carry_ = hn::Add(carry, total);
        return hn::Add(sums, carry);
    }

    [[nodiscard]] std::uint32_t value() const { return hn::GetLane(carry_); }

private:
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

void sharpen(const SharpenedRun& run) {
    const hn::RebindToSigned<Lanes> di;
    const hn::Rebind<std::uint16_t, Lanes> d16;
    const auto mask = hn::Set(lanesTag, std::uint32_t{run.sampleMask});
    const auto limit = hn::BitCast(di, mask);
    const auto gain = hn::Set(di, run.gain);
    const auto multiplier = hn::Set(lanesTag, run.share.multiplier);
    const std::uint32_t* const leaving = run.columns - 1;
    const std::uint32_t* const entering = leaving + run.box;
    RunningSum running(sumBeforeFirst(run));
    int i = 0;
    for (; i + lanes <= run.count; i += lanes) {
        const auto sums = running.add(hn::Sub(hn::LoadU(lanesTag, entering + i), hn::LoadU(lanesTag, leaving + i)));
        const auto share = hn::BitCast(di, shareOf(sums, multiplier, run.share.shift));
        const auto samples = hn::PromoteTo(lanesTag, hn::LoadU(d16, run.samples + i));
        const auto boosted = hn::Mul(hn::BitCast(di, hn::And(samples, mask)), gain);
        const auto value = hn::Min(hn::Max(hn::Sub(boosted, share), hn::Zero(di)), limit);
        const auto kept = hn::BitCast(di, hn::AndNot(mask, samples));
        hn::StoreU(hn::DemoteTo(d16, hn::Or(value, kept)), d16, run.out + i);
    }
    sharpenRest(run, i, running.value());
}

void slide(const ColumnSlide& slide) {
    const hn::Rebind<std::uint16_t, Lanes> d16;
    const auto mask = hn::Set(lanesTag, std::uint32_t{slide.sampleMask});
    const auto columnMask = hn::Set(lanesTag, slide.columnMask);
    const auto load = [&](const std::uint16_t* samples) {
        return hn::And(hn::PromoteTo(lanesTag, hn::LoadU(d16, samples)), mask);
    };
    int x = 0;
    for (; x + lanes <= slide.count; x += lanes) {
        const auto grown = hn::Add(hn::LoadU(lanesTag, slide.columns + x), load(slide.entering + x));
        hn::StoreU(hn::And(hn::Sub(grown, load(slide.leaving + x)), columnMask), lanesTag, slide.columns + x);
    }
    slideRest(slide, x);
}

#endif

const unsharpvectors::Operations* unsharpOperations() {
    static constexpr unsharpvectors::Operations table{slide, sharpen};
    return &table;
}

}  // namespace zolcs::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace zolcs {
namespace {
HWY_EXPORT(unsharpOperations);
}

const unsharpvectors::Operations& unsharpvectors::chosen() { return *HWY_DYNAMIC_DISPATCH(unsharpOperations)(); }

}  // namespace zolcs

#endif  // HWY_ONCE

#endif  // ZOL_USE_HIGHWAY
