#include "zolcs/simd/transpose.h"

#if defined(ZOL_USE_HIGHWAY)

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zolcs/simd/transpose.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "zolcs/simd/variant.h"

HWY_BEFORE_NAMESPACE();
namespace zolcs::simd::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_MAX_BYTES >= 32 && HWY_TARGET != HWY_SCALAR
constexpr int blockSize = 8;

/// Turns one 8 x 8 block.
void transposeBlock(const std::uint32_t* tile, std::ptrdiff_t tilePitch, std::uint32_t* out, std::ptrdiff_t outPitch) {
    const hn::FixedTag<std::uint32_t, 8> d;
    const hn::Repartition<std::uint64_t, decltype(d)> d64;
    const auto row = [&](int i) { return hn::LoadU(d, tile + i * tilePitch); };
    // Within each half: columns 0 to 3 and 4 to 7 of four rows at a time.
    const auto quads = [&](int first, auto&& use) {
        const auto ab = row(first);
        const auto cd = row(first + 1);
        const auto ef = row(first + 2);
        const auto gh = row(first + 3);
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
    const auto r0 = hn::LoadU(d, tile);
    const auto r1 = hn::LoadU(d, tile + tilePitch);
    const auto r2 = hn::LoadU(d, tile + 2 * tilePitch);
    const auto r3 = hn::LoadU(d, tile + 3 * tilePitch);
    const auto low01 = hn::BitCast(d64, hn::InterleaveLower(d, r0, r1));
    const auto high01 = hn::BitCast(d64, hn::InterleaveUpper(d, r0, r1));
    const auto low23 = hn::BitCast(d64, hn::InterleaveLower(d, r2, r3));
    const auto high23 = hn::BitCast(d64, hn::InterleaveUpper(d, r2, r3));
    hn::StoreU(hn::BitCast(d, hn::InterleaveLower(d64, low01, low23)), d, out);
    hn::StoreU(hn::BitCast(d, hn::InterleaveUpper(d64, low01, low23)), d, out + outPitch);
    hn::StoreU(hn::BitCast(d, hn::InterleaveLower(d64, high01, high23)), d, out + 2 * outPitch);
    hn::StoreU(hn::BitCast(d, hn::InterleaveUpper(d64, high01, high23)), d, out + 3 * outPitch);
}
#else
constexpr int blockSize = 1;

void transposeBlock(const std::uint32_t* tile, std::ptrdiff_t, std::uint32_t* out, std::ptrdiff_t) { *out = *tile; }
#endif

/// Whole blocks, then pixel by pixel what is left on the right and below.
void transpose(const std::uint32_t* tile, const TileShape& shape, std::uint32_t* out) {
    const int wholeRows = shape.rows / blockSize * blockSize;
    const int wholeColumns = shape.columns / blockSize * blockSize;
    for (int y = 0; y < wholeColumns; y += blockSize) {
        for (int x = 0; x < wholeRows; x += blockSize) {
            transposeBlock(tile + x * shape.tilePitch + y, shape.tilePitch, out + y * shape.outPitch + x,
                           shape.outPitch);
        }
    }
    transposePlainly(tile + wholeRows * shape.tilePitch,
                     {shape.tilePitch, shape.rows - wholeRows, wholeColumns, shape.outPitch}, out + wholeRows);
    transposePlainly(tile + wholeColumns, {shape.tilePitch, shape.rows, shape.columns - wholeColumns, shape.outPitch},
                     out + wholeColumns * shape.outPitch);
}

}  // namespace zolcs::simd::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace zolcs::simd {
namespace {
HWY_EXPORT(transpose);
}

void transposeWords(const std::uint32_t* tile, const TileShape& shape, std::uint32_t* out) {
    if (!usesVectors()) return transposePlainly(tile, shape, out);
    HWY_DYNAMIC_DISPATCH(transpose)(tile, shape, out);
}

}  // namespace zolcs::simd

#endif  // HWY_ONCE

#else

void zolcs::simd::transposeWords(const std::uint32_t* tile, const TileShape& shape, std::uint32_t* out) {
    transposePlainly(tile, shape, out);
}

#endif  // ZOL_USE_HIGHWAY
