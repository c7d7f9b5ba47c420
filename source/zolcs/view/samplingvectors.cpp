#if defined(ZOL_USE_HIGHWAY)

#include "zolcs/view/samplingvectors.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zolcs/view/samplingvectors.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "zolcs/view/fixed16.h"

#include <bit>

HWY_BEFORE_NAMESPACE();
namespace zolcs::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using U32 = hn::CappedTag<std::uint32_t, 16>;
using I32 = hn::RebindToSigned<U32>;

/// Bit i of the result is lane i of the mask.
template <typename M>
HWY_INLINE std::uint64_t maskBits(M mask) {
    std::uint8_t bytes[8] = {};
    hn::StoreMaskBits(U32(), mask, bytes);
    return bytes[0] | static_cast<std::uint64_t>(bytes[1]) << 8U;
}

/// Whole pixels of a vector of coordinates.
struct ExactPixels {
    template <typename V>
    HWY_INLINE V operator()(V coordinates) const {
        return hn::ShiftRight<16>(coordinates);
    }
};

/// The same through single precision.
struct RoundedPixels {
    template <typename V>
    HWY_INLINE V operator()(V coordinates) const {
        const U32 d;
        const I32 di;
        const hn::RebindToFloat<U32> df;
        const auto position = hn::Mul(hn::ConvertTo(df, hn::BitCast(di, coordinates)), hn::Set(df, fixed16Unit));
        return hn::BitCast(d, hn::ConvertTo(di, position));
    }
};

template <typename PixelOf>
void offsets(const SamplePositions& positions, int count, std::int32_t* out) {
    const U32 d;
    const I32 di;
    const int lanes = static_cast<int>(hn::Lanes(d));
    const auto index = hn::Iota(d, 0);
    auto u = hn::Add(hn::Set(d, positions.u), hn::Mul(index, hn::Set(d, positions.du)));
    auto v = hn::Add(hn::Set(d, positions.v), hn::Mul(index, hn::Set(d, positions.dv)));
    const auto uStep = hn::Set(d, positions.du * static_cast<std::uint32_t>(lanes));
    const auto vStep = hn::Set(d, positions.dv * static_cast<std::uint32_t>(lanes));
    const auto pitch = hn::Set(d, static_cast<std::uint32_t>(positions.pitch));
    const PixelOf pixelOf;
    const auto offset = [&] { return hn::BitCast(di, hn::Add(hn::Mul(pixelOf(v), pitch), pixelOf(u))); };
    int i = 0;
    for (; i + lanes <= count; i += lanes) {
        hn::StoreU(offset(), di, out + i);
        u = hn::Add(u, uStep);
        v = hn::Add(v, vStep);
    }
    if (i < count) {
        HWY_ALIGN std::int32_t rest[16];
        hn::Store(offset(), di, rest);
        for (int k = 0; i < count; ++i, ++k) out[i] = rest[k];
    }
}

template <typename PixelOf>
void testBits(const SamplePositions& positions, const SampledBits& bits, std::uint64_t pieces, std::uint16_t* set) {
    constexpr int columns = SampledBits::pieceColumns;
    const U32 d;
    const I32 di;
    const int lanes = static_cast<int>(hn::Lanes(d));
    const auto index = hn::Iota(d, 0);
    const auto alongU = hn::Mul(index, hn::Set(d, positions.du));
    const auto alongV = hn::Mul(index, hn::Set(d, positions.dv));
    const auto pitch = hn::Set(d, static_cast<std::uint32_t>(positions.pitch));
    const auto first = hn::Set(d, static_cast<std::uint32_t>(bits.first));
    const auto last = hn::Set(d, bits.count - 1);
    const auto one = hn::Set(d, 1);
    const auto* words = reinterpret_cast<const std::uint32_t*>(bits.words);
    const PixelOf pixelOf;
    for (std::uint64_t rest = pieces; rest != 0; rest &= rest - 1) {
        const int piece = std::countr_zero(rest);
        std::uint64_t found = 0;
        for (int i = 0; i < columns; i += lanes) {
            const auto at = static_cast<std::uint32_t>(piece * columns + i);
            const auto u = hn::Add(hn::Set(d, positions.u + at * positions.du), alongU);
            const auto v = hn::Add(hn::Set(d, positions.v + at * positions.dv), alongV);
            const auto bit = hn::Min(hn::Sub(hn::Add(hn::Mul(pixelOf(v), pitch), pixelOf(u)), first), last);
            const auto byteOfWord = hn::ShiftLeft<2>(hn::ShiftRight<5>(bit));
            const auto word = hn::GatherOffset(d, words, hn::BitCast(di, byteOfWord));
            found |= maskBits(hn::TestBit(word, hn::Shl(one, hn::And(bit, hn::Set(d, 31))))) << i;
        }
        set[piece] = static_cast<std::uint16_t>(found);
    }
}

const SamplingOperations* operations() {
    static constexpr SamplingOperations table{offsets<ExactPixels>, testBits<ExactPixels>, testBits<RoundedPixels>};
    return &table;
}

}  // namespace zolcs::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace zolcs {
namespace {
HWY_EXPORT(operations);
}

namespace samplingvectors {

const SamplingOperations& chosen() { return *HWY_DYNAMIC_DISPATCH(operations)(); }

}  // namespace samplingvectors
}  // namespace zolcs

#endif  // HWY_ONCE

#endif  // ZOL_USE_HIGHWAY
