#if defined(ZOL_USE_HIGHWAY)

#include "zolcs/resample/upright/uprightvectors.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zolcs/resample/upright/uprightvectors.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "platform/cache.h"
#include "zolcs/resample/bilinear/blend-inl.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>

HWY_BEFORE_NAMESPACE();
namespace zolcs::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

const UprightOperations* uprightOperations() { return &UprightOperations::portable(); }

#else

namespace {

namespace hn = hwy::HWY_NAMESPACE;

constexpr int blockSize = StopFlag::block;

// 16 samples or less, 8 sums or less: as many as make no vector shorter than 16 columns do.
using Samples = hn::CappedTag<std::int16_t, 16>;
using Sums = hn::CappedTag<std::int32_t, 8>;
// For rows that are weighed alike: as long as the processor's.
using Levels = hn::CappedTag<std::int16_t, 32>;
using Samples128 = hn::Full128<std::int16_t>;

constexpr int sampleCount = static_cast<int>(hn::MaxLanes(Samples()));
constexpr int sumCount = static_cast<int>(hn::MaxLanes(Sums()));

/// Calls block(x) for whole blocks of columns.
template <typename Block>
HWY_INLINE bool forWholeBlocks(int count, StopFlag stop, const Block& block) {
    for (int x = 0; x < count; x += blockSize) {
        if (stop.isRaised()) return false;
        block(x);
    }
    return true;
}

/// Calls block(x, outOfBlock) for blocks of columns; writes no more than `count` pixels.
template <typename Out, typename Block>
HWY_INLINE bool forBlocks(int count, Out* out, StopFlag stop, const Block& block) {
    int x = 0;
    for (; x + blockSize <= count; x += blockSize) {
        if (stop.isRaised()) return false;
        block(x, out + x);
    }
    if (x < count) {
        if (stop.isRaised()) return false;
        Out rest[blockSize];
        block(x, rest);
        std::copy_n(rest, count - x, out + x);
    }
    return true;
}

/// The pixels of neighbouring columns, 128 bits of them, one load for each column.
template <int Taps>
class SingleColumns {
public:
    HWY_INLINE SingleColumns(const std::uint16_t* row, const ColumnTaps& taps) : row_(row), offsets_(taps.offsets) {}

    HWY_INLINE auto operator()(int x) const {
        constexpr int columns = 8 / Taps;
#if HWY_ARCH_X86 && HWY_TARGET != HWY_EMU128
        const auto word = [&](int i) {
            std::conditional_t<Taps == 2, std::int32_t, std::int64_t> value = 0;
            std::memcpy(&value, row_ + offsets_[x + i], sizeof value);
            return value;
        };
        if constexpr (columns == 4) {
            return hn::Vec128<std::int16_t>{_mm_setr_epi32(word(0), word(1), word(2), word(3))};
        } else {
            return hn::Vec128<std::int16_t>{_mm_set_epi64x(word(1), word(0))};
        }
#else
        HWY_ALIGN std::int16_t words[8];
        for (int i = 0; i < columns; ++i) std::memcpy(words + i * Taps, row_ + offsets_[x + i], Taps * 2);
        return hn::Load(Samples128(), words);
#endif
    }

private:
    const std::uint16_t* row_;
    const std::int32_t* offsets_;
};

/// The same, one load for each group of columns.
template <int Taps>
class GroupedColumns {
public:
    HWY_INLINE GroupedColumns(const std::uint16_t* row, const ColumnTaps& taps)
        : row_(row), groups_(taps.groups), bytes_(taps.groupBytes) {}

    HWY_INLINE auto operator()(int x) const {
        const hn::Full128<std::uint16_t> d;
        const hn::Full128<std::uint8_t> d8;
        const auto pixels = hn::LoadU(d, row_ + groups_[x / (8 / Taps)]);
        const auto bytes = hn::LoadU(d8, bytes_ + 2 * Taps * x);
        return hn::BitCast(Samples128(), hn::TableLookupBytes(pixels, bytes));
    }

private:
    const std::uint16_t* row_;
    const std::int32_t* groups_;
    const std::uint8_t* bytes_;
};

/// A vector of the pixels of neighbouring columns.
template <int Taps, typename Columns>
HWY_INLINE auto pixelsOf(const Columns& columns, int x) {
#if HWY_MAX_BYTES >= 32
    return hn::Combine(Samples(), columns(x + 8 / Taps), columns(x));
#else
    return columns(x);
#endif
}

/// Calls body(columns) with the fastest way to load pixels.
template <int Taps, typename Body>
HWY_INLINE bool withColumns(const std::uint16_t* row, const ColumnTaps& taps, const Body& body) {
    return taps.isGrouped ? body(GroupedColumns<Taps>(row, taps)) : body(SingleColumns<Taps>(row, taps));
}

/// Fetches the pixels of a block of columns into the cache.
template <typename Pixel>
HWY_INLINE void prefetchBlock(const Pixel* row, const ColumnTaps& taps, int block) {
    zolplatform::prefetch(row + taps.offsets[block], 0);
    if constexpr (sizeof(Pixel) == 4) zolplatform::prefetch(row + taps.offsets[block + blockSize / 2], 0);
}

#if HWY_MAX_BYTES >= 32
/// Reorders pairs of 16-bit lanes, or 32-bit lanes.
template <typename V>
HWY_INLINE V reordered(V v, const std::int32_t (&order)[8]) {
    const hn::DFromV<V> d;
    return hn::BitCast(d, hn::TableLookupLanes(hn::BitCast(Sums(), v), hn::SetTableIndices(Sums(), order)));
}
HWY_ALIGN constexpr std::int32_t exchangeMiddle[8] = {0, 1, 4, 5, 2, 3, 6, 7};
HWY_ALIGN constexpr std::int32_t alternateHalves[8] = {0, 4, 1, 5, 2, 6, 3, 7};
#endif

/// The sums of the products of neighbouring lanes.
template <typename V>
HWY_INLINE auto pairSums(V a, V b) {
    const hn::RepartitionToWide<hn::DFromV<V>> d;
    auto odd = hn::Zero(d);
    const auto even = hn::ReorderWidenMulAccumulate(d, a, b, hn::Zero(d), odd);
    return hn::RearrangeToOddPlusEven(even, odd);
}

/// The sums of neighbouring lanes of `a`, then of `b`, within each 128 bits.
template <typename V>
HWY_INLINE V addPairs(V a, V b) {
#if HWY_MAX_BYTES >= 32
    if constexpr (sizeof(V) == 32) return V{_mm256_hadd_epi32(a.raw, b.raw)};
#endif
    const hn::DFromV<V> d;
    return hn::Add(hn::ConcatEven(d, b, a), hn::ConcatOdd(d, b, a));
}

/// Cubic sums of quarter weights and of remainders as whole numbers.
template <typename V>
HWY_INLINE V wholeOf(V quarters, V remainders) {
    return hn::ShiftRight<14>(hn::Add(quarters, hn::ShiftRight<2>(remainders)));
}

bool bilinearGrey12Across(const std::uint16_t* row, const std::uint16_t* next, ColumnTaps taps, int count,
                          std::int16_t* out, StopFlag stop) {
    const auto mask = hn::Set(Samples(), 0x0FFF);
    return withColumns<2>(row, taps, [&](const auto& columns) {
        const auto filtered = [&](int x) {
            const auto pixels = hn::And(pixelsOf<2>(columns, x), mask);
            const auto negative = pairSums(pixels, hn::LoadU(Samples(), taps.weights + 2 * x));
            return hn::ShiftRight<15>(hn::Sub(hn::Zero(Sums()), negative));
        };
        return forWholeBlocks(count, stop, [&](int block) {
            prefetchBlock(next, taps, block);
            for (int x = block; x < block + blockSize; x += sampleCount) {
                auto packed = hn::ReorderDemote2To(Samples(), filtered(x), filtered(x + sumCount));
#if HWY_MAX_BYTES >= 32
                packed = reordered(packed, exchangeMiddle);
#endif
                hn::StoreU(packed, Samples(), out + x);
            }
        });
    });
}

bool bilinearGrey16Across(const std::uint16_t* row, const std::uint16_t* next, ColumnTaps taps, int count,
                          std::int32_t* out, StopFlag stop) {
    const Sums d;
    const hn::RebindToUnsigned<Sums> du;
    const auto secondPixel = hn::Set(d, 0x10000);
    return withColumns<2>(row, taps, [&](const auto& columns) {
        return forWholeBlocks(count, stop, [&](int block) {
            prefetchBlock(next, taps, block);
            for (int x = block; x < block + blockSize; x += sumCount) {
                const auto pairs = hn::BitCast(du, pixelsOf<2>(columns, x));
                const auto first = hn::BitCast(d, hn::And(pairs, hn::Set(du, 0xFFFFU)));
                const auto second = hn::BitCast(d, hn::ShiftRight<16>(pairs));
                const auto fraction = hn::BitCast(d, hn::LoadU(Samples(), taps.weights + 2 * x));
                const auto isSecond = hn::Eq(fraction, secondPixel);
                hn::StoreU(hn::IfThenElse(isSecond, second, blend(first, second, fraction)), d, out + x);
            }
        });
    });
}

/// The bytes of a piece as 16-bit lanes from lane `from` on.
template <typename V8>
HWY_INLINE auto widened(V8 bytes, int from) {
    const hn::RebindToUnsigned<Samples> d;
    const hn::Rebind<std::uint8_t, Samples> d8;
    if constexpr (sampleCount == 16) {
        return hn::BitCast(Samples(), hn::PromoteTo(d, bytes));
    } else {
        return hn::BitCast(Samples(),
                           hn::PromoteTo(d, from == 0 ? hn::LowerHalf(d8, bytes) : hn::UpperHalf(d8, bytes)));
    }
}

bool bilinearRgbAcross(const std::uint32_t* row, const std::uint32_t* next, ColumnTaps taps, int count,
                       std::uint32_t* out, StopFlag stop) {
    const hn::Full128<std::uint32_t> d32;
    const hn::Full128<std::uint8_t> d8;
    const hn::Rebind<std::uint8_t, Samples> half;
    return forWholeBlocks(count, stop, [&](int block) {
        prefetchBlock(next, taps, block);
        for (int x = block; x < block + blockSize; x += 4) {
            const auto pairs = [&](int first) {
                const hn::Full64<std::uint32_t> d64;
                return hn::Combine(d32, hn::LoadU(d64, row + taps.offsets[x + first + 1]),
                                   hn::LoadU(d64, row + taps.offsets[x + first]));
            };
            const auto p01 = pairs(0);
            const auto p23 = pairs(2);
            const auto first = hn::BitCast(d8, hn::ConcatEven(d32, p23, p01));
            const auto second = hn::BitCast(d8, hn::ConcatOdd(d32, p23, p01));
            auto* bytes = reinterpret_cast<std::uint8_t*>(out + x);
            for (int lane = 0; lane < 16; lane += sampleCount) {
                const auto a = widened(first, lane);
                const auto twice = hn::ShiftLeft<1>(hn::Sub(a, widened(second, lane)));
                const auto weights = hn::LoadU(Samples(), taps.weights + 4 * x + lane);
                hn::StoreU(hn::DemoteTo(half, hn::Add(a, hn::MulHigh(twice, weights))), half, bytes + lane);
            }
        }
    });
}

bool bilinearGrey12Down(const std::array<const std::int16_t*, 2>& rows, std::uint32_t fraction, int count,
                        std::uint16_t* out, StopFlag stop) {
    const hn::RebindToUnsigned<Samples> du;
    const auto part = hn::Set(Samples(), static_cast<std::int16_t>(fraction));
    return forBlocks(count, out, stop, [&](int block, std::uint16_t* blockOut) {
        for (int i = 0; i < blockSize; i += sampleCount) {
            const auto top = hn::LoadU(Samples(), rows[0] + block + i);
            const auto bottom = hn::LoadU(Samples(), rows[1] + block + i);
            const auto value = hn::Add(top, hn::MulHigh(hn::Sub(bottom, top), part));
            hn::StoreU(hn::BitCast(du, value), du, blockOut + i);
        }
    });
}

bool bilinearGrey16Down(const std::array<const std::int32_t*, 2>& rows, std::uint32_t fraction, int count,
                        std::uint16_t* out, StopFlag stop) {
    const Sums d;
    const hn::Rebind<std::uint16_t, Sums> d16;
    const auto part = hn::Set(d, static_cast<std::int32_t>(fraction));
    return forBlocks(count, out, stop, [&](int block, std::uint16_t* blockOut) {
        for (int i = 0; i < blockSize; i += sumCount) {
            const auto value = blend(hn::LoadU(d, rows[0] + block + i), hn::LoadU(d, rows[1] + block + i), part);
            hn::StoreU(hn::DemoteTo(d16, hn::And(value, hn::Set(d, 0xFFFF))), d16, blockOut + i);
        }
    });
}

/// Makes display pixels of levels and stores them; the fourth byte becomes 0.
template <typename V>
HWY_INLINE void storePixels(V levels, std::uint32_t* out) {
    const hn::Rebind<std::uint8_t, Levels> d8;
    const hn::Repartition<std::uint32_t, decltype(d8)> d32;
    const auto pixels = hn::BitCast(d32, hn::DemoteTo(d8, levels));
    hn::StoreU(hn::And(pixels, hn::Set(d32, 0x00FFFFFFU)), d32, out);
}

bool bilinearRgbDown(const std::array<const std::uint32_t*, 2>& rows, std::uint32_t fraction, int count,
                     std::uint32_t* out, StopFlag stop) {
    const hn::RebindToUnsigned<Levels> du;
    const hn::Rebind<std::uint8_t, Levels> d8;
    constexpr int pixels = static_cast<int>(hn::MaxLanes(Levels())) / 4;
    const auto part = hn::Set(Levels(), static_cast<std::int16_t>(fraction / 2));
    const auto levels = [&](const std::uint32_t* row) {
        const auto bytes = hn::LoadU(d8, reinterpret_cast<const std::uint8_t*>(row));
        return hn::BitCast(Levels(), hn::PromoteTo(du, bytes));
    };
    return forBlocks(count, out, stop, [&](int block, std::uint32_t* blockOut) {
        // The processor's own prefetching ends with each page.
        zolplatform::prefetch(blockOut, zolplatform::pageBytes);
        for (int i = 0; i < blockSize; i += pixels) {
            const auto top = levels(rows[0] + block + i);
            const auto bottom = levels(rows[1] + block + i);
            storePixels(hn::Add(top, hn::MulHigh(hn::ShiftLeft<1>(hn::Sub(bottom, top)), part)), blockOut + i);
        }
    });
}

/// Cubic sums across of as many columns from `x` on as there are sums, in the order of addPairs. `prepare` makes
/// signed numbers of pixels.
template <typename Columns, typename Prepare>
HWY_INLINE auto cubicAcross(const Columns& columns, const ColumnTaps& taps, int x, const Prepare& prepare,
                            std::int32_t bias) {
    constexpr int half = sumCount / 2;
    const auto first = prepare(pixelsOf<4>(columns, x));
    const auto second = prepare(pixelsOf<4>(columns, x + half));
    const auto sums = [&](const std::int16_t* weights) {
        return addPairs(pairSums(first, hn::LoadU(Samples(), weights + 4 * x)),
                        pairSums(second, hn::LoadU(Samples(), weights + 4 * (x + half))));
    };
    return wholeOf(hn::Add(sums(taps.weights), hn::Set(Sums(), bias)), sums(taps.remainders));
}

bool cubicGrey12Across(const std::uint16_t* row, const std::uint16_t* next, ColumnTaps taps, int count,
                       std::int16_t* out, StopFlag stop) {
    const auto masked = [](auto pixels) { return hn::And(pixels, hn::Set(Samples(), 0x0FFF)); };
    return withColumns<4>(row, taps, [&](const auto& columns) {
        return forWholeBlocks(count, stop, [&](int block) {
            prefetchBlock(next, taps, block);
            for (int x = block; x < block + blockSize; x += sampleCount) {
                const auto low = cubicAcross(columns, taps, x, masked, 0);
                const auto high = cubicAcross(columns, taps, x + sumCount, masked, 0);
                auto packed = hn::ReorderDemote2To(Samples(), low, high);
#if HWY_MAX_BYTES >= 32
                packed = reordered(packed, alternateHalves);
#endif
                hn::StoreU(packed, Samples(), out + x);
            }
        });
    });
}

bool cubicGrey16Across(const std::uint16_t* row, const std::uint16_t* next, ColumnTaps taps, int count,
                       std::int32_t* out, StopFlag stop) {
    // Signed around the middle: the weights sum to 65536, so the whole result is off by 0x8000.
    const auto centred = [](auto pixels) {
        return hn::Xor(pixels, hn::Set(Samples(), std::numeric_limits<std::int16_t>::min()));
    };
    return withColumns<4>(row, taps, [&](const auto& columns) {
        return forWholeBlocks(count, stop, [&](int block) {
            prefetchBlock(next, taps, block);
            for (int x = block; x < block + blockSize; x += sumCount) {
                auto sums = cubicAcross(columns, taps, x, centred, 1 << 29);
#if HWY_MAX_BYTES >= 32
                sums = reordered(sums, exchangeMiddle);
#endif
                hn::StoreU(sums, Sums(), out + x);
            }
        });
    });
}

bool cubicRgbAcross(const std::uint32_t* row, const std::uint32_t* next, ColumnTaps taps, int count, std::int16_t* out,
                    StopFlag stop) {
    const hn::Full128<std::uint8_t> d8;
    HWY_ALIGN static constexpr std::uint8_t byChannel[16] = {0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15};
    const auto channels = hn::Load(d8, byChannel);
    const auto repeated = [](const std::int16_t* weights) {
        std::int64_t four = 0;
        std::memcpy(&four, weights, sizeof four);
        return hn::BitCast(Samples(), hn::Set(hn::Repartition<std::int64_t, Samples>(), four));
    };
    const auto fourPixels = [&](int x) {
        const auto bytes = hn::LoadU(d8, reinterpret_cast<const std::uint8_t*>(row + taps.offsets[x]));
        return hn::TableLookupBytes(bytes, channels);
    };
#if HWY_MAX_BYTES >= 32
    const auto twoPixels = [&](int x) {
        const auto a = widened(fourPixels(x), 0);
        const auto b = widened(fourPixels(x + 1), 0);
        const auto sums = [&](const std::int16_t* weights) {
            return addPairs(pairSums(a, repeated(weights + 4 * x)), pairSums(b, repeated(weights + 4 * (x + 1))));
        };
        return wholeOf(sums(taps.weights), sums(taps.remainders));
    };
    return forWholeBlocks(count, stop, [&](int block) {
        prefetchBlock(next, taps, block);
        for (int x = block; x < block + blockSize; x += 4) {
            // Blue and green of four pixels, then red and nothing of them.
            const auto packed = hn::ReorderDemote2To(Samples(), twoPixels(x), twoPixels(x + 2));
            hn::StoreU(reordered(packed, alternateHalves), Samples(), out + 4 * x);
        }
    });
#else
    const auto onePixel = [&](int x) {
        const auto pixels = fourPixels(x);
        const auto sums = [&](const std::int16_t* weights) {
            const auto same = repeated(weights + 4 * x);
            return addPairs(pairSums(widened(pixels, 0), same), pairSums(widened(pixels, 8), same));
        };
        return wholeOf(sums(taps.weights), sums(taps.remainders));
    };
    return forWholeBlocks(count, stop, [&](int block) {
        prefetchBlock(next, taps, block);
        for (int x = block; x < block + blockSize; x += 2) {
            hn::StoreU(hn::ReorderDemote2To(Samples(), onePixel(x), onePixel(x + 1)), Samples(), out + 4 * x);
        }
    });
#endif
}

/// The weights of a display row, for samples of four rows in pairs.
template <typename D>
class RowPairWeights {
public:
    explicit HWY_INLINE RowPairWeights(const CubicWeights& weights)
        : quarters01_(pair(weights[0] >> 2, weights[1] >> 2)),
          quarters23_(pair(weights[2] >> 2, weights[3] >> 2)),
          remainders01_(pair(weights[0] & 3, weights[1] & 3)),
          remainders23_(pair(weights[2] & 3, weights[3] & 3)) {}

    /// Whole weighed samples from `sample` on, saturated to 16 bits.
    HWY_INLINE auto weigh(const std::array<const std::int16_t*, 4>& rows, int sample) const {
        const D d;
        const auto r0 = hn::LoadU(d, rows[0] + sample);
        const auto r1 = hn::LoadU(d, rows[1] + sample);
        const auto r2 = hn::LoadU(d, rows[2] + sample);
        const auto r3 = hn::LoadU(d, rows[3] + sample);
        const auto low = whole(hn::InterleaveLower(d, r0, r1), hn::InterleaveLower(d, r2, r3));
        const auto high = whole(hn::InterleaveUpper(d, r0, r1), hn::InterleaveUpper(d, r2, r3));
        return hn::ReorderDemote2To(d, low, high);
    }

private:
    using V = hn::VFromD<D>;

    static HWY_INLINE V pair(std::int32_t first, std::int32_t second) {
        const hn::Repartition<std::int32_t, D> d;
        return hn::BitCast(
            D(), hn::Set(d, (first & 0xFFFF) | static_cast<std::int32_t>(static_cast<std::uint32_t>(second) << 16U)));
    }

    HWY_INLINE auto whole(V samples01, V samples23) const {
        return wholeOf(hn::Add(pairSums(samples01, quarters01_), pairSums(samples23, quarters23_)),
                       hn::Add(pairSums(samples01, remainders01_), pairSums(samples23, remainders23_)));
    }

    V quarters01_;
    V quarters23_;
    V remainders01_;
    V remainders23_;
};

bool cubicGrey12Down(const std::array<const std::int16_t*, 4>& rows, const CubicWeights& weights, int count,
                     std::uint16_t* out, StopFlag stop) {
    const Samples d;
    const hn::RebindToUnsigned<Samples> du;
    const RowPairWeights<Samples> pairs(weights);
    return forBlocks(count, out, stop, [&](int block, std::uint16_t* blockOut) {
        for (int i = 0; i < blockSize; i += sampleCount) {
            const auto value = hn::Clamp(pairs.weigh(rows, block + i), hn::Zero(d), hn::Set(d, 0x0FFF));
            hn::StoreU(hn::BitCast(du, value), du, blockOut + i);
        }
    });
}

bool cubicGrey16Down(const std::array<const std::int32_t*, 4>& rows, const CubicWeights& weights, int count,
                     std::uint16_t* out, StopFlag stop) {
    const Sums d;
    const hn::Rebind<std::uint16_t, Sums> d16;
    return forBlocks(count, out, stop, [&](int block, std::uint16_t* blockOut) {
        for (int i = 0; i < blockSize; i += sumCount) {
            // By the weights' upper parts and their lower eight bits, so that sums of 18-bit samples fit 32 bits.
            auto upper = hn::Zero(d);
            auto lower = hn::Zero(d);
            for (std::size_t j = 0; j < 4; ++j) {
                const auto samples = hn::LoadU(d, rows[j] + block + i);
                upper = hn::Add(upper, hn::Mul(samples, hn::Set(d, weights[j] >> 8)));
                lower = hn::Add(lower, hn::Mul(samples, hn::Set(d, weights[j] & 0xFF)));
            }
            const auto value = hn::ShiftRight<8>(hn::Add(upper, hn::ShiftRight<8>(lower)));
            hn::StoreU(hn::DemoteTo(d16, value), d16, blockOut + i);
        }
    });
}

bool cubicRgbDown(const std::array<const std::int16_t*, 4>& rows, const CubicWeights& weights, int count,
                  std::uint32_t* out, StopFlag stop) {
    constexpr int pixels = static_cast<int>(hn::MaxLanes(Levels())) / 4;
    const RowPairWeights<Levels> pairs(weights);
    return forBlocks(count, out, stop, [&](int block, std::uint32_t* blockOut) {
        zolplatform::prefetch(blockOut, zolplatform::pageBytes);
        for (int i = 0; i < blockSize; i += pixels) storePixels(pairs.weigh(rows, 4 * (block + i)), blockOut + i);
    });
}

}  // namespace

const UprightOperations* uprightOperations() {
    static constexpr UprightOperations table{bilinearGrey12Across, bilinearGrey16Across, bilinearRgbAcross,
                                             bilinearGrey12Down,   bilinearGrey16Down,   bilinearRgbDown,
                                             cubicGrey12Across,    cubicGrey16Across,    cubicRgbAcross,
                                             cubicGrey12Down,      cubicGrey16Down,      cubicRgbDown};
    return &table;
}

#endif  // HWY_TARGET == HWY_SCALAR

}  // namespace zolcs::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace zolcs {
namespace {
HWY_EXPORT(uprightOperations);
}

namespace uprightvectors {

const UprightOperations& chosen() { return *HWY_DYNAMIC_DISPATCH(uprightOperations)(); }

}  // namespace uprightvectors
}  // namespace zolcs

#endif  // HWY_ONCE

#endif  // ZOL_USE_HIGHWAY
