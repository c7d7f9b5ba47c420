#include "zolcs/resample/oblique/obliqueoperations.h"

#if defined(ZOL_USE_HIGHWAY)

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zolcs/resample/oblique/obliquevectors.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "zolcs/resample/bilinear/blend-inl.h"
#include "zolcs/simd/variant.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

HWY_BEFORE_NAMESPACE();
namespace zolcs::HWY_NAMESPACE {

#if HWY_ARCH_X86 && HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

namespace hn = hwy::HWY_NAMESPACE;

using U16 = hn::CappedTag<std::uint16_t, 32>;
using U32 = hn::CappedTag<std::uint32_t, 16>;
using I16 = hn::RebindToSigned<U16>;
using I32 = hn::RebindToSigned<U32>;
using U64 = hn::Repartition<std::uint64_t, U32>;
using V16 = hn::Vec<I16>;
using V32 = hn::Vec<I32>;

constexpr int lanes32 = static_cast<int>(hn::MaxLanes(U32()));

/// Walks positions, a vector at a time.
class Positions {
public:
    explicit Positions(const SamplePositions& positions)
        : u_(hn::Add(hn::Set(U32(), positions.u), hn::Mul(hn::Iota(U32(), 0), hn::Set(U32(), positions.du)))),
          v_(hn::Add(hn::Set(U32(), positions.v), hn::Mul(hn::Iota(U32(), 0), hn::Set(U32(), positions.dv)))),
          uStep_(hn::Set(U32(), positions.du * lanes32)),
          vStep_(hn::Set(U32(), positions.dv * lanes32)),
          pitch_(hn::Set(U32(), static_cast<std::uint32_t>(positions.pitch))) {}

    HWY_INLINE hn::Vec<U32> u() const { return u_; }
    HWY_INLINE hn::Vec<U32> v() const { return v_; }
    HWY_INLINE hn::Vec<U32> offset() const {
        return hn::Add(hn::Mul(hn::ShiftRight<16>(v_), pitch_), hn::ShiftRight<16>(u_));
    }
    HWY_INLINE void advance() {
        u_ = hn::Add(u_, uStep_);
        v_ = hn::Add(v_, vStep_);
    }

private:
    hn::Vec<U32> u_;
    hn::Vec<U32> v_;
    hn::Vec<U32> uStep_;
    hn::Vec<U32> vStep_;
    hn::Vec<U32> pitch_;
};

/// Pixels that are fetched before the arithmetic begins: so no vector waits for what was stored just before. The
/// fetching is done by scalar loads, here and for the cubic kernels: on the processors at hand they beat gathering.
constexpr int blockPixels = 64;

/// The 2 x 2 pixels at a block's positions: left and right in one word.
template <typename Pixel, typename Pair>
HWY_INLINE void fetchPairs(const Pixel* source, const SamplePositions& block, int count, Pair* tops, Pair* bottoms) {
    static_assert(sizeof(Pair) == 2 * sizeof(Pixel));
    HWY_ALIGN std::uint32_t offsets[blockPixels];
    Positions positions(block);
    for (int i = 0; i < count; i += lanes32) {
        hn::Store(positions.offset(), U32(), offsets + i);
        positions.advance();
    }
    for (int i = 0; i < count; ++i) {
        const Pixel* top = source + offsets[i];
        std::memcpy(tops + i, top, sizeof tops[i]);
        std::memcpy(bottoms + i, top + block.pitch, sizeof bottoms[i]);
    }
}

/// Stores the first `count` lanes.
template <typename D, typename Pixel>
HWY_INLINE void storeFirst(hn::Vec<D> pixels, D d, int count, Pixel* out) {
    if (count >= lanes32) {
        hn::StoreU(pixels, d, out);
        return;
    }
    HWY_ALIGN Pixel rest[lanes32];
    hn::Store(pixels, d, rest);
    std::copy_n(rest, count, out);
}

/// Calls block(positions, at, count) for blocks of pixels.
template <int Pixels, typename Block>
HWY_INLINE void visitBlocks(SamplePositions positions, int count, const Block& block) {
    for (int at = 0; at < count; at += Pixels) {
        block(positions, at, std::min(count - at, Pixels));
        positions.u += positions.du * static_cast<std::uint32_t>(Pixels);
        positions.v += positions.dv * static_cast<std::uint32_t>(Pixels);
    }
}

void bilinearGrey(const std::uint16_t* source, const SamplePositions& all, std::uint16_t mask, int count,
                  std::uint16_t* out) {
    const I32 d;
    const hn::Rebind<std::uint16_t, I32> d16;
    const auto bits = hn::Set(d, mask);
    const auto fractionU = hn::Set(d, 0xFFFE);
    const auto fractionV = hn::Set(d, mask & 0xFFFF);
    visitBlocks<blockPixels>(all, count, [&](const SamplePositions& first, int at, int pixels) {
        HWY_ALIGN std::int32_t tops[blockPixels];  // left and right pixel in one word
        HWY_ALIGN std::int32_t bottoms[blockPixels];
        Positions positions(first);
        fetchPairs(source, first, pixels, tops, bottoms);
        for (int i = 0; i < pixels; i += lanes32) {
            const auto fu = hn::And(hn::BitCast(d, positions.u()), fractionU);
            const auto fv = hn::And(hn::BitCast(d, positions.v()), fractionV);
            const auto across = [&](const std::int32_t* pairs) {
                const auto pair = hn::Load(d, pairs + i);
                const auto right = hn::BitCast(d, hn::ShiftRight<16>(hn::BitCast(U32(), pair)));
                return blend(hn::And(pair, bits), hn::And(right, bits), fu);
            };
            const auto value = hn::And(blend(across(tops), across(bottoms), fv), hn::Set(d, 0xFFFF));
            storeFirst(hn::DemoteTo(d16, value), d16, pixels - i, out + at + i);
            positions.advance();
        }
    });
}

/// Two colour bytes in the 16-bit halves of each pixel: ((2 d) * (f / 2)) >> 16 is exact for an even fraction f.
HWY_INLINE V16 blendBytes(V16 a, V16 b, V16 halfFraction) {
    return hn::Add(a, hn::MulHigh(hn::ShiftLeft<1>(hn::Sub(b, a)), halfFraction));
}

void bilinearRgb(const std::uint32_t* source, const SamplePositions& all, int count, std::uint32_t* out) {
    const U32 d;
    const I16 d16;
    const U64 d64;
    const auto low = hn::Set(d, 0x00FF00FF);
    const auto lowest = hn::Set(d, 0x000000FF);
    const auto half = hn::Set(d, 0x7FFF);
    visitBlocks<blockPixels>(all, count, [&](const SamplePositions& first, int at, int pixels) {
        HWY_ALIGN std::uint64_t tops[blockPixels];  // left and right pixel in one word
        HWY_ALIGN std::uint64_t bottoms[blockPixels];
        Positions positions(first);
        fetchPairs(source, first, pixels, tops, bottoms);
        for (int i = 0; i < pixels; i += lanes32) {
            // Half the fraction in both halves of a pixel.
            const auto fraction = [&](hn::Vec<U32> coordinate) {
                const auto bits = hn::And(hn::ShiftRight<1>(coordinate), half);
                return hn::BitCast(d16, hn::Or(bits, hn::ShiftLeft<16>(bits)));
            };
            const auto fu = fraction(positions.u());
            const auto fv = fraction(positions.v());
            const auto load = [&](const std::uint64_t* pairs, auto&& use) {
                const auto a = hn::BitCast(d, hn::Load(d64, pairs + i));
                const auto b = hn::BitCast(d, hn::Load(d64, pairs + i + lanes32 / 2));
                return use(hn::ConcatEven(d, b, a), hn::ConcatOdd(d, b, a));
            };
            // Blue and red; green alone, since the fourth byte becomes 0.
            const auto across = [&](auto left, auto right) {
                struct Channels {
                    V16 blueRed;
                    V16 green;
                };
                const auto part = [&](auto pixel) { return hn::BitCast(d16, hn::And(pixel, low)); };
                const auto green = [&](auto pixel) {
                    return hn::BitCast(d16, hn::And(hn::ShiftRight<8>(pixel), lowest));
                };
                return Channels{blendBytes(part(left), part(right), fu), blendBytes(green(left), green(right), fu)};
            };
            const auto top = load(tops, across);
            const auto bottom = load(bottoms, across);
            const auto blueRed = hn::BitCast(d, blendBytes(top.blueRed, bottom.blueRed, fv));
            const auto green = hn::BitCast(d, blendBytes(top.green, bottom.green, fv));
            storeFirst(hn::Or(blueRed, hn::ShiftLeft<8>(green)), d, pixels - i, out + at + i);
            positions.advance();
        }
    });
}

// The cubic kernels give each pixel a 128-bit block. A vector holds the blocks of every fourth pixel, so that four
// vectors of sums end as one vector of neighbouring pixels.

constexpr int blocks = lanes32 / 4;
constexpr int cubicPixels = 4 * blocks;

/// A vector of which block(b) gives the parts.
template <typename D, typename BlockOf>
HWY_INLINE hn::Vec<D> gatherBlocks(D d, const BlockOf& block) {
    if constexpr (blocks == 1) {
        return block(0);
    } else if constexpr (blocks == 2) {
        return hn::Combine(d, block(1), block(0));
    } else {
        const hn::Half<D> half;
        return hn::Combine(d, hn::Combine(half, block(3), block(2)), hn::Combine(half, block(1), block(0)));
    }
}

/// Where the pixels of a cubic block lie: the offset of the upper left one of each 4 x 4, and those of their weights in
/// bytes.
template <int FractionShift, int Entries>
struct CubicBlock {
    HWY_INLINE CubicBlock(const SamplePositions& first, int pixels) {
        const Positions positions(first);
        const auto weights = [](hn::Vec<U32> coordinate) {
            const auto entry = hn::And(hn::ShiftRight<FractionShift>(coordinate), hn::Set(U32(), Entries - 1));
            return hn::Mul(entry, hn::Set(U32(), sizeof(CubicWeights)));
        };
        const auto corner = hn::Sub(positions.offset(), hn::Set(U32(), static_cast<std::uint32_t>(first.pitch) + 1));
        hn::Store(corner, U32(), offsets);
        hn::Store(weights(positions.u()), U32(), across);
        hn::Store(weights(positions.v()), U32(), down);
        // Beyond the last pixel it is repeated: all blocks can be fetched.
        for (int i = pixels; i < cubicPixels; ++i) {
            offsets[i] = offsets[pixels - 1];
            across[i] = across[pixels - 1];
            down[i] = down[pixels - 1];
        }
    }

    HWY_ALIGN std::uint32_t offsets[cubicPixels];
    HWY_ALIGN std::uint32_t across[cubicPixels];
    HWY_ALIGN std::uint32_t down[cubicPixels];
};

/// The weights of every fourth pixel.
HWY_INLINE V32 weightsOf(const CubicWeights* weights, const std::uint32_t* offsets, int first) {
    const hn::FixedTag<std::int32_t, 4> block;
    const auto* bytes = reinterpret_cast<const char*>(weights);
    return gatherBlocks(I32(), [&](int b) {
        return hn::LoadU(block, reinterpret_cast<const std::int32_t*>(bytes + offsets[first + 4 * b]));
    });
}

/// Weights need 17 bits and a sign: 4 h + l lets 16-bit multiplications add exactly. Twice in each block.
struct SplitWeights {
    explicit HWY_INLINE SplitWeights(V32 weights)
        : high(twice(hn::ShiftRight<2>(weights))), low(twice(hn::And(weights, hn::Set(I32(), 3)))) {}

    static HWY_INLINE V16 twice(V32 part) { return hn::ReorderDemote2To(I16(), part, part); }

    V16 high;
    V16 low;
};

/// Sums of neighbouring products.
HWY_INLINE V32 multiplyPairs(V16 a, V16 b, V32 sum) {
    V32 unused = hn::Zero(I32());
    return hn::ReorderWidenMulAccumulate(I32(), a, b, sum, unused);
}

/// (4 high + low) >> 16 without leaving 32 bits.
HWY_INLINE V32 joined(V32 high, V32 low) { return hn::ShiftRight<14>(hn::Add(high, hn::ShiftRight<2>(low))); }

/// Lane k of each block: the sum of the block of vector k.
HWY_INLINE V32 sumsOfBlocks(V32 p0, V32 p1, V32 p2, V32 p3) {
    const I32 d;
    const auto inPairs = [&](V32 a, V32 b) {
        return hn::BitCast(U64(), hn::Add(hn::InterleaveLower(d, a, b), hn::InterleaveUpper(d, a, b)));
    };
    const auto a = inPairs(p0, p1);
    const auto b = inPairs(p2, p3);
    return hn::Add(hn::BitCast(d, hn::InterleaveLower(U64(), a, b)), hn::BitCast(d, hn::InterleaveUpper(U64(), a, b)));
}

/// Four pixels from each of two places.
HWY_INLINE hn::Vec128<std::int16_t> rowPair(const std::uint16_t* low, const std::uint16_t* high) {
    const __m128i lower = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(low));
    return hn::Vec128<std::int16_t>{
        _mm_castpd_si128(_mm_loadh_pd(_mm_castsi128_pd(lower), reinterpret_cast<const double*>(high)))};
}

/// The four sums along the rows of a 4 x 4 for every fourth pixel, shifted right by 16.
template <bool SixteenBits>
HWY_INLINE V32 rowsOf(const std::uint16_t* source, std::ptrdiff_t pitch, const std::uint32_t* offsets, int first,
                      V32 across) {
    const I16 d;
    const I32 d32;
    const U64 d64;
    // Two rows at a time, with the bits that count. Values of 16 bits are made signed; the sum of all weights is 65536,
    // so that the result is less by 32768.
    const auto rows = [&](std::ptrdiff_t upper) {
        const auto stored = gatherBlocks(d, [&](int b) {
            const std::uint16_t* from = source + offsets[first + 4 * b] + upper * pitch;
            return rowPair(from, from + 2 * pitch);
        });
        return SixteenBits ? hn::Xor(stored, hn::Set(d, static_cast<std::int16_t>(-0x8000)))
                           : hn::And(stored, hn::Set(d, 0x0FFF));
    };
    const auto even = rows(0);  // 0 and 2
    const auto odd = rows(1);   // 1 and 3
    const SplitWeights weights(across);
    // Neighbouring lanes still have to be added: into the even ones, into the odd ones, and both together.
    const auto added = [&](V16 split) {
        const auto zero = hn::Zero(d32);
        const auto a = multiplyPairs(even, split, zero);
        const auto b = multiplyPairs(odd, split, zero);
        const auto intoEven = hn::Add(a, hn::BitCast(d32, hn::ShiftRight<32>(hn::BitCast(d64, a))));
        const auto intoOdd = hn::Add(b, hn::BitCast(d32, hn::ShiftLeft<32>(hn::BitCast(d64, b))));
        return hn::OddEven(intoOdd, intoEven);
    };
    return joined(added(weights.high), added(weights.low));
}

template <bool SixteenBits>
HWY_INLINE void cubicGreyBlock(const std::uint16_t* source, const SamplePositions& first, const CubicWeights* weights,
                               int pixels, std::uint16_t* out) {
    const I32 d;
    const hn::Rebind<std::uint16_t, I32> d16;
    const CubicBlock<4, fineCubicSteps> block(first, pixels);
    const auto rows = [&](int k) {
        return rowsOf<SixteenBits>(source, first.pitch, block.offsets, k, weightsOf(weights, block.across, k));
    };
    const auto down = [&](int k) { return weightsOf(weights, block.down, k); };
    V32 values;
    if constexpr (SixteenBits) {
        const auto high = [&](V32 row, int k) { return hn::Mul(row, hn::ShiftRight<2>(down(k))); };
        const auto low = [&](V32 row, int k) { return hn::Mul(row, hn::And(down(k), hn::Set(d, 3))); };
        const V32 r0 = rows(0);
        const V32 r1 = rows(1);
        const V32 r2 = rows(2);
        const V32 r3 = rows(3);
        values = joined(sumsOfBlocks(high(r0, 0), high(r1, 1), high(r2, 2), high(r3, 3)),
                        sumsOfBlocks(low(r0, 0), low(r1, 1), low(r2, 2), low(r3, 3)));
        values = hn::Add(values, hn::Set(d, 0x8000));  // saturates on its way to 16 bits
    } else {
        // These sums fit 32 bits as they are.
        const auto product = [&](int k) { return hn::Mul(rows(k), down(k)); };
        values = hn::ShiftRight<16>(sumsOfBlocks(product(0), product(1), product(2), product(3)));
        values = hn::Min(hn::Max(values, hn::Zero(d)), hn::Set(d, 0x0FFF));
    }
    storeFirst(hn::DemoteTo(d16, values), d16, pixels, out);
}

void cubicGrey(const std::uint16_t* source, const SamplePositions& all, const CubicWeights* weights, std::uint16_t mask,
               int count, std::uint16_t* out) {
    const bool sixteenBits = mask == 0xFFFF;
    visitBlocks<cubicPixels>(all, count, [&](const SamplePositions& first, int at, int pixels) {
        (sixteenBits ? cubicGreyBlock<true> : cubicGreyBlock<false>)(source, first, weights, pixels, out + at);
    });
}

/// Blue, green, red and 0 of every fourth pixel, 16.16 and not limited.
HWY_INLINE V32 colourOf(const std::uint32_t* source, std::ptrdiff_t pitch, const std::uint32_t* offsets, int first,
                        V32 across, V32 down) {
    const I16 d;
    const I32 d32;
    const hn::Repartition<std::uint8_t, I16> bytes;
    const hn::FixedTag<std::uint8_t, 16> block;
    // Channels of two neighbouring pixels side by side, widened to 16 bits.
    HWY_ALIGN static constexpr std::uint8_t pairs[2][16] = {
        {0, 0x80, 4, 0x80, 1, 0x80, 5, 0x80, 2, 0x80, 6, 0x80, 0x80, 0x80, 0x80, 0x80},
        {8, 0x80, 12, 0x80, 9, 0x80, 13, 0x80, 10, 0x80, 14, 0x80, 0x80, 0x80, 0x80, 0x80}};
    const auto leftPair = hn::LoadDup128(bytes, pairs[0]);
    const auto rightPair = hn::LoadDup128(bytes, pairs[1]);
    const SplitWeights weights(across);
    const auto high = hn::BitCast(d32, weights.high);
    const auto low = hn::BitCast(d32, weights.low);
    const auto sums = [&](V16 left, V16 right, V32 split) {
        return multiplyPairs(left, hn::BitCast(d, hn::Broadcast<0>(split)),
                             multiplyPairs(right, hn::BitCast(d, hn::Broadcast<1>(split)), hn::Zero(d32)));
    };
    const auto row = [&](std::ptrdiff_t j) {
        const auto stored = gatherBlocks(bytes, [&](int b) {
            const std::uint32_t* from = source + offsets[first + 4 * b] + j * pitch;
            return hn::LoadU(block, reinterpret_cast<const std::uint8_t*>(from));
        });
        const auto left = hn::BitCast(d, hn::TableLookupBytesOr0(stored, leftPair));
        const auto right = hn::BitCast(d, hn::TableLookupBytesOr0(stored, rightPair));
        return joined(sums(left, right, high), sums(left, right, low));
    };
    return hn::Add(hn::Add(hn::Mul(row(0), hn::Broadcast<0>(down)), hn::Mul(row(1), hn::Broadcast<1>(down))),
                   hn::Add(hn::Mul(row(2), hn::Broadcast<2>(down)), hn::Mul(row(3), hn::Broadcast<3>(down))));
}

void cubicRgb(const std::uint32_t* source, const SamplePositions& all, const CubicWeights* weights, int count,
              std::uint32_t* out) {
    const U32 d;
    const I32 d32;
    const hn::Repartition<std::uint8_t, U32> bytes;
    // The lowest byte of each lane as the lowest four bytes of a block.
    HWY_ALIGN static constexpr std::uint8_t lowest[16] = {0,    4,    8,    12,   0x80, 0x80, 0x80, 0x80,
                                                          0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80};
    const auto narrow = hn::LoadDup128(bytes, lowest);
    visitBlocks<cubicPixels>(all, count, [&](const SamplePositions& first, int at, int pixels) {
        const CubicBlock<8, coarseCubicSteps> block(first, pixels);
        const auto colour = [&](int k) {
            const V32 sums = colourOf(source, first.pitch, block.offsets, k, weightsOf(weights, block.across, k),
                                      weightsOf(weights, block.down, k));
            const V32 levels = hn::Min(hn::Max(hn::ShiftRight<16>(sums), hn::Zero(d32)), hn::Set(d32, 255));
            return hn::BitCast(d, hn::TableLookupBytesOr0(hn::BitCast(bytes, levels), narrow));
        };
        const auto two = [&](int k) { return hn::BitCast(U64(), hn::InterleaveLower(d, colour(k), colour(k + 1))); };
        const auto even = two(0);
        storeFirst(hn::BitCast(d, hn::InterleaveLower(U64(), even, two(2))), d, pixels, out + at);
    });
}

const ObliqueOperations* obliqueOperations() {
    static constexpr ObliqueOperations table{bilinearGrey, bilinearRgb, cubicGrey, cubicRgb};
    return &table;
}

#else

/// The sums above rely on the order in which x86 adds pairs of products.
const ObliqueOperations* obliqueOperations() { return nullptr; }

#endif

}  // namespace zolcs::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace zolcs {
namespace {
HWY_EXPORT(obliqueOperations);
}

const ObliqueOperations* ObliqueOperations::chosen() {
    return simd::usesVectors() ? HWY_DYNAMIC_DISPATCH(obliqueOperations)() : nullptr;
}

}  // namespace zolcs

#endif  // HWY_ONCE

#else

const zolcs::ObliqueOperations* zolcs::ObliqueOperations::chosen() { return nullptr; }

#endif  // ZOL_USE_HIGHWAY
