#if defined(ZOL_USE_HIGHWAY)

#include "zolcs/mapping/levelrampvectors.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zolcs/mapping/levelrampvectors.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "platform/cache.h"

#include <algorithm>
#include <array>

HWY_BEFORE_NAMESPACE();
namespace zolcs::mapping::HWY_NAMESPACE {

#if HWY_MAX_BYTES >= 32 && HWY_TARGET != HWY_SCALAR

namespace hn = hwy::HWY_NAMESPACE;

constexpr std::size_t channelsOfPixel = 4;

class LevelFiller {
public:
    explicit LevelFiller(const LevelRamp& ramp) : ramp_(ramp) {}

    void fill(const std::uint16_t* from, unsigned char* to, std::size_t pixels) const {
        fillVectors(from, to, pixels, [](auto shown, unsigned char* at) HWY_ATTR { hn::StoreU(shown, Levels{}, at); });
    }

    void fillNonTemporal(const std::uint16_t* from, unsigned char* to, std::size_t pixels) const {
        const std::size_t misaligned = reinterpret_cast<std::uintptr_t>(to) % lanes();
        if (misaligned % channelsOfPixel != 0) return fill(from, to, pixels);
        const std::size_t first = std::min(pixels, (lanes() - misaligned) % lanes() / channelsOfPixel);
        fillPlainly(from, to, first);
        fillVectors(from + first * channelsOfPixel, to + first * channelsOfPixel, pixels - first,
                    [](auto shown, unsigned char* at) HWY_ATTR { hn::Stream(shown, Levels{}, at); });
        hwy::FlushStream();
    }

private:
    using Channels = hn::ScalableTag<std::uint16_t>;
    using Levels = hn::Rebind<std::uint8_t, Channels>;

    /// Also the bytes of a vector of levels.
    static std::size_t lanes() { return hn::Lanes(Channels{}); }

    template <typename Store>
    void fillVectors(const std::uint16_t* from, unsigned char* to, std::size_t pixels, Store store) const {
        const std::size_t end = pixels * channelsOfPixel;
        std::size_t i = 0;
        for (; i + lanes() <= end; i += lanes()) {
            zolplatform::prefetch(from + i, zolplatform::pageBytes);
            if (i % zolplatform::pageBytes == 0) zolplatform::prefetch(to + i, zolplatform::pageBytes);
            store(levels(from + i), to + i);
        }
        fillPlainly(from + i, to + i, (end - i) / channelsOfPixel);
    }

    void fillPlainly(const std::uint16_t* from, unsigned char* to, std::size_t pixels) const {
        for (std::size_t i = 0; i < pixels; ++i, from += channelsOfPixel, to += channelsOfPixel) {
            const std::array<unsigned char, channelsOfPixel> shown{ramp_(from[0]), ramp_(from[1]), ramp_(from[2]), 0};
            std::copy(shown.begin(), shown.end(), to);
        }
    }

    [[nodiscard]] hn::Vec<Levels> levels(const std::uint16_t* from) const {
        const Channels d;
        const hn::RebindToSigned<Channels> di;
        const auto set = [&](std::uint32_t value) HWY_ATTR { return hn::Set(d, static_cast<std::uint16_t>(value)); };
        const auto values = hn::SaturatedSub(hn::SaturatedAdd(hn::LoadU(d, from), set(ramp_.up)), set(ramp_.down));
        const auto position = hn::ShiftLeftSame(hn::Min(values, set(ramp_.last)), ramp_.shift);
        // The upper half of a product of 16 and 32 bits, from that of the multiplier's halves.
        const auto whole = set(ramp_.multiplier >> 16U);
        const auto low = hn::Mul(position, whole);
        const auto carried = hn::Add(low, hn::MulHigh(position, set(ramp_.multiplier & 0xFFFFU)));
        const auto carry = hn::VecFromMask(d, hn::Lt(carried, low));  // -1 for one
        const auto level = hn::Sub(hn::MulHigh(position, whole), carry);
        const hn::Repartition<std::uint32_t, Levels> pixels;
        const auto colours = hn::BitCast(Levels{}, hn::Set(pixels, 0x00FFFFFF));
        return hn::And(hn::DemoteTo(Levels{}, hn::BitCast(di, level)), colours);
    }

    const LevelRamp ramp_;
};

bool fillLevels(const LevelRamp& ramp, const std::uint16_t* channels, unsigned char* levels, std::size_t pixels,
                bool nonTemporal) {
    const LevelFiller filler(ramp);
    nonTemporal ? filler.fillNonTemporal(channels, levels, pixels) : filler.fill(channels, levels, pixels);
    return true;
}

#else

// Vectors of two pixels take as long as loads from a table.
bool fillLevels(const LevelRamp& /*ramp*/, const std::uint16_t* /*channels*/, unsigned char* /*levels*/,
                std::size_t /*pixels*/, bool /*nonTemporal*/) {
    return false;
}

#endif

}  // namespace zolcs::mapping::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace zolcs::mapping {
namespace {
HWY_EXPORT(fillLevels);
}

bool levelvectors::fill(const LevelRamp& ramp, const std::uint16_t* channels, unsigned char* levels, std::size_t pixels,
                        bool nonTemporal) {
    return HWY_DYNAMIC_DISPATCH(fillLevels)(ramp, channels, levels, pixels, nonTemporal);
}

}  // namespace zolcs::mapping

#endif  // HWY_ONCE

#endif  // ZOL_USE_HIGHWAY
