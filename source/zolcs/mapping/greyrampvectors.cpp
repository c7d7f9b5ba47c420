#if defined(ZOL_USE_HIGHWAY)

#include "zolcs/mapping/greyrampvectors.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zolcs/mapping/greyrampvectors.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "platform/cache.h"

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace zolcs::mapping::HWY_NAMESPACE {

#if HWY_MAX_BYTES >= 32 && HWY_TARGET != HWY_SCALAR

namespace hn = hwy::HWY_NAMESPACE;

/// A cache line of values.
constexpr std::size_t blockPixels = 32;
/// Pixels of a page, on the side where they are written.
constexpr std::size_t pagePixels = zolplatform::pageBytes / sizeof(std::uint32_t);

class Ramp {
public:
    explicit Ramp(const GreyRamp& ramp) : ramp_(ramp) {}

    /// Values that make two vectors of pixels.
    static std::size_t lanes() { return hn::Lanes(D16{}); }

    /// Calls store(index of its first pixel, vector) for the pixels of the next lanes() values.
    template <typename Store>
    void pixels(const std::uint16_t* values, Store store) const {
        const D16 d16;
        const auto value = hn::LoadU(d16, values);
        const auto shifted =
            hn::SaturatedSub(hn::SaturatedAdd(value, hn::Set(d16, ramp_.up)), hn::Set(d16, ramp_.down));
        const auto isHighest = hn::Eq(value, hn::Set(d16, 0xFFFF));
        const auto position =
            hn::IfThenElse(isHighest, hn::Set(d16, ramp_.highest), hn::Min(shifted, hn::Set(d16, ramp_.last)));
        const Half half;
        store(0, pixelsAt(hn::LowerHalf(half, position)));
        store(hn::Lanes(half), pixelsAt(hn::UpperHalf(half, position)));
    }

    void fill(const std::uint16_t* values, std::uint32_t* out, std::size_t count) const {
        const std::size_t whole = count - count % lanes();
        for (std::size_t i = 0; i < whole; i += lanes()) {
            pixels(values + i, [&](std::size_t k, auto v) { hn::StoreU(v, D32{}, out + i + k); });
        }
        std::transform(values + whole, values + count, out + whole, ramp_);
    }

    void fillNonTemporal(const std::uint16_t* values, std::uint32_t* out, std::size_t count) const {
        constexpr std::size_t alignment = HWY_MAX_BYTES;
        const std::size_t misaligned = reinterpret_cast<std::uintptr_t>(out) % alignment;
        const std::size_t first = std::min(count, (alignment - misaligned) % alignment / sizeof(std::uint32_t));
        fill(values, out, first);
        std::size_t i = first;
        for (; i + blockPixels <= count; i += blockPixels) {
            zolplatform::prefetch(values + i, zolplatform::pageBytes);
            if ((i - first) % pagePixels == 0) zolplatform::prefetch(out + i, zolplatform::pageBytes);
            for (std::size_t k = i; k < i + blockPixels; k += lanes()) {
                pixels(values + k, [&](std::size_t n, auto v) { hn::Stream(v, D32{}, out + k + n); });
            }
        }
        hwy::FlushStream();
        fill(values + i, out + i, count - i);
    }

private:
    using D16 = hn::ScalableTag<std::uint16_t>;
    using D32 = hn::ScalableTag<std::uint32_t>;
    using Half = hn::Half<D16>;

    [[nodiscard]] hn::Vec<D32> pixelsAt(hn::Vec<Half> positions) const {
        const D32 d;
        const hn::RebindToSigned<D32> di;
        const hn::RebindToFloat<D32> df;
        const hn::Repartition<std::uint8_t, D32> d8;
        alignas(16) static constexpr std::uint8_t lowByteThrice[16] = {0, 0, 0, 3,  4,  4,  4,  7,
                                                                       8, 8, 8, 11, 12, 12, 12, 15};
        const auto position = hn::ConvertTo(df, hn::PromoteTo(di, positions));
        const auto level = hn::ConvertTo(di, hn::Mul(position, hn::Set(df, ramp_.scale)));
        const auto grey = hn::TableLookupBytes(hn::BitCast(d8, level), hn::LoadDup128(d8, lowByteThrice));
        return hn::Xor(hn::BitCast(d, grey), hn::Set(d, ramp_.flip));
    }

    const GreyRamp ramp_;
};

void fillRamp(const GreyRamp& ramp, const std::uint16_t* values, std::uint32_t* pixels, std::size_t count,
              bool nonTemporal) {
    if (nonTemporal) {
        Ramp(ramp).fillNonTemporal(values, pixels, count);
    } else {
        Ramp(ramp).fill(values, pixels, count);
    }
}

GreyRampFill rampFill() { return &fillRamp; }

#else

// Four pixels at a time take as long as four loads from a table.
GreyRampFill rampFill() { return nullptr; }

#endif

}  // namespace zolcs::mapping::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace zolcs::mapping {
namespace {
HWY_EXPORT(rampFill);
}

GreyRampFill vectorGreyRampFill() { return HWY_DYNAMIC_DISPATCH(rampFill)(); }

}  // namespace zolcs::mapping

#endif  // HWY_ONCE

#endif  // ZOL_USE_HIGHWAY
