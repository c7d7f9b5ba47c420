#if defined(ZOL_USE_HIGHWAY)

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zolcs/resample/spanvectors.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "zolcs/resample/spanvectors.h"

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
        const auto position = hn::Mul(hn::ConvertTo(df, hn::BitCast(di, coordinates)), hn::Set(df, 1.5258789e-5F));
        return hn::BitCast(d, hn::ConvertTo(di, position));
    }
};

template <typename PixelOf>
void offsets(const SpanPositions& positions, int count, std::int32_t* out) {
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
void testBits(const SpanPositions& positions, const SpanBits& bits, std::uint64_t pieces, std::uint16_t* set) {
    constexpr int columns = SpanBits::pieceColumns;
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

#if HWY_MAX_BYTES >= 32 && HWY_TARGET != HWY_SCALAR
constexpr int blockSize = 8;

/// Turns one 8 x 8 block.
void transposeBlock(const std::uint32_t* tile, std::ptrdiff_t tilePitch, std::uint32_t* out, std::ptrdiff_t outPitch) {
    const hn::FixedTag<std::uint32_t, 8> d;
    const hn::Repartition<std::uint64_t, decltype(d)> d64;
    const auto line = [&](int i) { return hn::LoadU(d, tile + i * tilePitch); };
    // Within each half: columns 0 to 3 and 4 to 7 of four lines at a time.
    const auto quads = [&](int first, auto&& use) {
        const auto ab = line(first);
        const auto cd = line(first + 1);
        const auto ef = line(first + 2);
        const auto gh = line(first + 3);
        const auto low01 = hn::BitCast(d64, hn::InterleaveLower(d, ab, cd));
        const auto high01 = hn::BitCast(d64, hn::InterleaveUpper(d, ab, cd));
        const auto low23 = hn::BitCast(d64, hn::InterleaveLower(d, ef, gh));
        const auto high23 = hn::BitCast(d64, hn::InterleaveUpper(d, ef, gh));
        use(hn::BitCast(d, hn::InterleaveLower(d64, low01, low23)),
            hn::BitCast(d, hn::InterleaveUpper(d64, low01, low23)),
            hn::BitCast(d, hn::InterleaveLower(d64, high01, high23)),
            hn::BitCast(d, hn::InterleaveUpper(d64, high01, high23)));
    };
    quads(0, [&](auto a0, auto a1, auto a2, auto a3) {
        quads(4, [&](auto b0, auto b1, auto b2, auto b3) {
            const auto store = [&](int y, auto a, auto b) {
                hn::StoreU(hn::ConcatLowerLower(d, b, a), d, out + y * outPitch);
                hn::StoreU(hn::ConcatUpperUpper(d, b, a), d, out + (y + 4) * outPitch);
            };
            store(0, a0, b0);
            store(1, a1, b1);
            store(2, a2, b2);
            store(3, a3, b3);
        });
    });
}
#elif HWY_TARGET != HWY_SCALAR
constexpr int blockSize = 4;

/// Turns one 4 x 4 block.
void transposeBlock(const std::uint32_t* tile, std::ptrdiff_t tilePitch, std::uint32_t* out, std::ptrdiff_t outPitch) {
    const hn::FixedTag<std::uint32_t, 4> d;
    const hn::Repartition<std::uint64_t, decltype(d)> d64;
    const auto l0 = hn::LoadU(d, tile);
    const auto l1 = hn::LoadU(d, tile + tilePitch);
    const auto l2 = hn::LoadU(d, tile + 2 * tilePitch);
    const auto l3 = hn::LoadU(d, tile + 3 * tilePitch);
    const auto low01 = hn::BitCast(d64, hn::InterleaveLower(d, l0, l1));
    const auto high01 = hn::BitCast(d64, hn::InterleaveUpper(d, l0, l1));
    const auto low23 = hn::BitCast(d64, hn::InterleaveLower(d, l2, l3));
    const auto high23 = hn::BitCast(d64, hn::InterleaveUpper(d, l2, l3));
    hn::StoreU(hn::BitCast(d, hn::InterleaveLower(d64, low01, low23)), d, out);
    hn::StoreU(hn::BitCast(d, hn::InterleaveUpper(d64, low01, low23)), d, out + outPitch);
    hn::StoreU(hn::BitCast(d, hn::InterleaveLower(d64, high01, high23)), d, out + 2 * outPitch);
    hn::StoreU(hn::BitCast(d, hn::InterleaveUpper(d64, high01, high23)), d, out + 3 * outPitch);
}
#else
constexpr int blockSize = 1;

void transposeBlock(const std::uint32_t* tile, std::ptrdiff_t, std::uint32_t* out, std::ptrdiff_t) { *out = *tile; }
#endif

void transpose32(const std::uint32_t* tile, const TileShape& shape, std::uint32_t* out) {
    const int wholeLines = shape.lines / blockSize * blockSize;
    const int wholeColumns = shape.columns / blockSize * blockSize;
    for (int y = 0; y < wholeColumns; y += blockSize) {
        for (int x = 0; x < wholeLines; x += blockSize) {
            transposeBlock(tile + x * shape.tilePitch + y, shape.tilePitch, out + y * shape.outPitch + x,
                           shape.outPitch);
        }
    }
    const auto turnOneByOne = [&](int fromX, int fromY, int toY) {
        for (int y = fromY; y < toY; ++y) {
            for (int x = fromX; x < shape.lines; ++x) out[y * shape.outPitch + x] = tile[x * shape.tilePitch + y];
        }
    };
    turnOneByOne(wholeLines, 0, wholeColumns);
    turnOneByOne(0, wholeColumns, shape.columns);
}

const SpanOperations* operations() {
    static constexpr SpanOperations table{offsets<ExactPixels>, testBits<ExactPixels>, testBits<RoundedPixels>,
                                          transpose32};
    return &table;
}

}  // namespace zolcs::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace zolcs {
namespace {
HWY_EXPORT(operations);
}

namespace spanvectors {

const SpanOperations& chosen() { return *HWY_DYNAMIC_DISPATCH(operations)(); }

}  // namespace spanvectors
}  // namespace zolcs

#endif  // HWY_ONCE

#endif  // ZOL_USE_HIGHWAY
