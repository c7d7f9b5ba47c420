#if defined(ZOL_USE_HIGHWAY)

#include "zolipp/rowvectors.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zolipp/rowvectors.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "zolipp/sse2.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

HWY_BEFORE_NAMESPACE();
namespace zolipp::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

const RowOperations* operations() { return &RowOperations::portable(); }

#else

namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::CappedTag<float, 16>;

template <typename Format>
void widen(const std::byte* pixels, int count, float* out) {
    using Sample = typename Format::Sample;
    const Floats df;
    const hn::Rebind<Sample, Floats> ds;
    const hn::Rebind<std::int32_t, Floats> di;
    const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(df));
    const std::ptrdiff_t samples = std::ptrdiff_t{count} * Format::channels;
    std::ptrdiff_t i = 0;
    for (; i + lanes <= samples; i += lanes) {
        const auto loaded = hn::LoadU(ds, reinterpret_cast<const Sample*>(pixels) + i);
        hn::StoreU(hn::ConvertTo(df, hn::PromoteTo(di, loaded)), df, out + i);
    }
    for (; i < samples; ++i) out[i] = static_cast<float>(loadSample<Sample>(pixels, i));
}

/// Sums term(0) to term(taps - 1) from the first one on.
template <int taps, typename Term>
HWY_INLINE auto sumOf(Term term) {
    auto sum = hn::Add(term(0), term(1));
    if constexpr (taps == 4) sum = hn::Add(hn::Add(sum, term(2)), term(3));
    return sum;
}

template <int taps>
void filterGrey(const float* row, const ColumnTable& columns, float* out) {
    const Floats df;
    const hn::Rebind<std::int32_t, Floats> di;
    const auto lanes = static_cast<int>(hn::Lanes(df));
    for (int i = 0; i < columns.count; i += lanes) {
        const std::int32_t* first = columns.first + i;
        const auto indices = hn::LoadU(di, first);
        const float* start = row + first[0];
        const auto fromStart = hn::Sub(indices, hn::Set(di, first[0]));
        const int reach = first[lanes - 1] - first[0];
        const auto weigh = [&](auto neighbours) HWY_ATTR {
            const auto sum = sumOf<taps>([&](int k) HWY_ATTR {
                return hn::Mul(hn::LoadU(df, columns.weights + k * columns.pitch + i), neighbours(k));
            });
            hn::StoreU(sum, df, out + i);
        };
        // Neighbouring columns mostly lie close together: then one load for all neighbours, or for each, and
        // permutations fetch them much faster than a gather.
        if (reach + taps <= lanes) {
            const auto window = hn::LoadU(df, start);
            weigh([&](int k) HWY_ATTR {
                return hn::TableLookupLanes(window, hn::IndicesFromVec(df, hn::Add(fromStart, hn::Set(di, k))));
            });
        } else if (reach < lanes) {
            const auto order = hn::IndicesFromVec(df, fromStart);
            weigh([&](int k) HWY_ATTR { return hn::TableLookupLanes(hn::LoadU(df, start + k), order); });
        } else {
            weigh([&](int k) HWY_ATTR { return hn::GatherIndex(df, row + k, indices); });
        }
    }
}

template <int taps>
void filterColour(const float* row, const ColumnTable& given, float* out) {
    const ColumnTable columns = given;  // which no store through `out` can change, as the compiler knows
    const hn::FixedTag<float, 4> df;
    for (std::ptrdiff_t i = 0; i < columns.count; ++i) {
        const float* pixel = row + std::ptrdiff_t{columns.first[i]} * 4;
        const auto sum = sumOf<taps>([&](int k) HWY_ATTR {
            return hn::Mul(hn::Set(df, columns.weights[k * columns.pitch + i]), hn::LoadU(df, pixel + k * 4));
        });
        hn::StoreU(sum, df, out + i * 4);
    }
}

/// Stores sums as samples, limited to their type.
template <typename Format, class V>
HWY_INLINE void storeRounded(V sums, std::byte* to) {
    using Sample = typename Format::Sample;
    const hn::DFromV<V> df;
    const hn::Rebind<std::int32_t, decltype(df)> di;
    const hn::Rebind<Sample, decltype(df)> ds;
    const auto rounded =
        hn::Sub(hn::BitCast(di, hn::Add(sums, hn::Set(df, roundingShift))), hn::Set(di, roundingShiftBits));
    auto samples = hn::DemoteTo(ds, rounded);
    auto* target = reinterpret_cast<Sample*>(to);
    if constexpr (Format::written < Format::channels) {
        const hn::Repartition<std::uint32_t, decltype(ds)> pixels;
        const auto mine = hn::BitCast(ds, hn::Set(pixels, 0x00FFFFFFU));
        samples = hn::Or(hn::And(mine, samples), hn::AndNot(mine, hn::LoadU(ds, target)));
    }
    hn::StoreU(samples, ds, target);
}

/// Stores `count` pixels whose sums `sumsAt` gives, for one vector of samples at a time.
template <typename Format, typename SumsAt>
HWY_INLINE void storePixels(int count, std::byte* pixels, SumsAt sumsAt) {
    constexpr auto size = static_cast<std::ptrdiff_t>(sizeof(typename Format::Sample));
    const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(Floats()));
    const std::ptrdiff_t samples = std::ptrdiff_t{count} * Format::channels;
    std::ptrdiff_t i = 0;
    for (; i + lanes <= samples; i += lanes) storeRounded<Format>(sumsAt(i), pixels + i * size);
    if (i == samples) return;
    std::byte rest[16 * size] = {};
    storeRounded<Format>(sumsAt(i), rest);
    for (std::ptrdiff_t k = 0; i + k < samples; k += Format::channels) {
        copyPixel<Format>(rest + k * size, pixels + (i + k) * size);
    }
}

template <typename Format, int taps>
void mixRows(const float* const* rows, const float* weights, int count, std::byte* pixels) {
    const Floats df;
    // Copies of its own, which no store of pixels can change, as the compiler knows.
    PerNeighbour<const float*, taps> row;
    Weights<taps> weight;
    std::copy_n(rows, taps, row.begin());
    std::copy_n(weights, taps, weight.begin());
    storePixels<Format>(count, pixels, [&](std::ptrdiff_t at) HWY_ATTR {
        return sumOf<taps>([&](std::size_t k)
                               HWY_ATTR { return hn::Mul(hn::Set(df, weight[k]), hn::LoadU(df, row[k] + at)); });
    });
}

/// The weights at a vector of fractions.
template <int taps, class D, class V>
HWY_INLINE void storeWeights(D d, V t, AxisSpots& spots, int at) {
    const auto store = [&](int k, V weights) HWY_ATTR { hn::StoreU(weights, d, spots.weights[k] + at); };
    const auto constant = [&](float value) HWY_ATTR { return hn::Set(d, value); };
    if constexpr (taps == 2) {
        store(0, hn::Sub(constant(1.0F), t));
        store(1, t);
    } else {
        const auto times = [&](float factor) HWY_ATTR { return hn::Mul(constant(factor), t); };
        const auto half = constant(0.5F);
        store(0, hn::Mul(hn::Sub(hn::Mul(hn::Sub(constant(1.0F), times(0.5F)), t), half), t));
        store(1, hn::Add(hn::Mul(hn::Mul(hn::Sub(times(1.5F), constant(2.5F)), t), t), constant(1.0F)));
        store(2, hn::Mul(hn::Add(hn::Mul(hn::Sub(constant(2.0F), times(1.5F)), t), half), t));
        store(3, hn::Mul(hn::Mul(hn::Sub(times(0.5F), half), t), t));
    }
}

template <int taps>
void locate(const LinePosition& position, int column, int count, AxisSpots& spots) {
    const hn::CappedTag<double, 8> dd;
    const hn::Rebind<float, decltype(dd)> df;
    const hn::Rebind<std::int32_t, decltype(dd)> di;
    const auto lanes = static_cast<int>(hn::Lanes(dd));
    const auto step = hn::Set(dd, position.step);
    const auto start = hn::Set(dd, position.start);
    const auto index = hn::Iota(dd, 0.0);
    for (int i = 0; i < count; i += lanes) {
        const auto centre = hn::Add(hn::Add(hn::Set(dd, column + i), index), hn::Set(dd, 0.5));
        const auto at = hn::Add(hn::Mul(step, centre), start);
        if constexpr (taps == 1) {
            hn::StoreU(hn::DemoteTo(di, hn::Floor(at)), di, spots.first + i);
        } else {
            const auto fromSample = hn::Sub(at, hn::Set(dd, 0.5));
            const auto whole = hn::Floor(fromSample);
            hn::StoreU(hn::Sub(hn::DemoteTo(di, whole), hn::Set(di, taps / 2 - 1)), di, spots.first + i);
            storeWeights<taps>(df, hn::DemoteTo(df, hn::Sub(fromSample, whole)), spots, i);
        }
    }
}

template <int taps>
void mixGreySpots(const SourceImage& source, Spots& spots, int count, std::byte* pixels) {
    // Loading neighbours apart from weighting them: a vector is not stored in parts shortly before it is loaded.
    auto& neighbours = spots.neighbours;
    for (int i = 0; i < count; ++i) {
        const std::byte* from = source.rows.at(spots.y.first[i]) + std::ptrdiff_t{spots.x.first[i]} * 2;
        for (int k = 0; k < taps; ++k, from += source.rows.step) {
            std::memcpy(neighbours[k] + i * (taps / 2), from, 2 * taps);
        }
    }
    const Floats df;
    const hn::Rebind<std::uint32_t, Floats> du;
    const hn::Rebind<std::int32_t, Floats> di;
    const auto asFloats = [&](auto samples) HWY_ATTR { return hn::ConvertTo(df, hn::BitCast(di, samples)); };
    storePixels<Grey16>(count, pixels, [&](std::ptrdiff_t at) HWY_ATTR {
        const auto weighted = [&](int k, auto samples) HWY_ATTR {
            return hn::Mul(hn::LoadU(df, spots.x.weights[k] + at), asFloats(samples));
        };
        const auto low = [&](auto pairs) HWY_ATTR { return hn::And(pairs, hn::Set(du, 0xFFFF)); };
        const auto high = [&](auto pairs) HWY_ATTR { return hn::ShiftRight<16>(pairs); };
        return sumOf<taps>([&](int k) HWY_ATTR {
            const auto rowWeights = hn::LoadU(df, spots.y.weights[k] + at);
            if constexpr (taps == 2) {
                const auto pairs = hn::LoadU(du, neighbours[k] + at);
                return hn::Mul(rowWeights, hn::Add(weighted(0, low(pairs)), weighted(1, high(pairs))));
            } else {
                hn::Vec<decltype(du)> first;
                hn::Vec<decltype(du)> second;
                hn::LoadInterleaved2(du, neighbours[k] + 2 * at, first, second);
                const auto sum =
                    hn::Add(hn::Add(weighted(0, low(first)), weighted(1, high(first))), weighted(2, low(second)));
                return hn::Mul(rowWeights, hn::Add(sum, weighted(3, high(second))));
            }
        });
    });
}

template <typename Format, int taps>
void mixColourSpots(const SourceImage& source, Spots& spots, int count, std::byte* pixels) {
    const hn::FixedTag<float, 4> df;
    const hn::Rebind<std::int32_t, decltype(df)> di;
    const hn::Rebind<std::uint8_t, decltype(df)> ds;
    for (int i = 0; i < count; ++i, pixels += 4) {
        const std::byte* from = source.rows.at(spots.y.first[i]) + std::ptrdiff_t{spots.x.first[i]} * 4;
        const auto sum = sumOf<taps>([&](int j) HWY_ATTR {
            const auto inRow = sumOf<taps>([&](int k) HWY_ATTR {
                const auto bytes =
                    hn::LoadU(ds, reinterpret_cast<const std::uint8_t*>(from + j * source.rows.step) + 4 * k);
                return hn::Mul(hn::Set(df, spots.x.weights[k][i]), hn::ConvertTo(df, hn::PromoteTo(di, bytes)));
            });
            return hn::Mul(hn::Set(df, spots.y.weights[j][i]), inRow);
        });
        storeRounded<Format>(sum, pixels);
    }
}

template <typename Format, Order order>
std::ptrdiff_t exchange(std::byte* run, std::byte* other, std::ptrdiff_t bytes, Ahead ahead) {
    using Pixel = std::conditional_t<pixelBytes<Format> == 2, std::uint16_t, std::uint32_t>;
    const hn::ScalableTag<Pixel> d;
    constexpr auto size = static_cast<std::ptrdiff_t>(hn::MaxLanes(d) * sizeof(Pixel));
    const auto load = [&](std::byte* at) HWY_ATTR { return hn::LoadU(d, reinterpret_cast<Pixel*>(at)); };
    const auto store = [&](std::byte* at, auto pixels, [[maybe_unused]] auto old) HWY_ATTR {
        if constexpr (order == Reversed) pixels = hn::Reverse(d, pixels);
        if constexpr (Format::written < Format::channels) {
            const auto mine = hn::Set(d, Pixel{0x00FFFFFF});
            pixels = hn::Or(hn::And(mine, pixels), hn::AndNot(mine, old));
        }
        hn::StoreU(pixels, d, reinterpret_cast<Pixel*>(at));
    };
    std::ptrdiff_t done = 0;
    const auto one = [&]() HWY_ATTR {
        std::byte* const there = partnerOf<order>(other, done, size);
        const auto a = load(run + done);
        const auto b = load(there);
        store(run + done, b, a);
        store(there, a, b);
        done += size;
    };
    while (done + cacheLineBytes <= bytes) {
        prefetch(run + done, ahead.run);
        prefetch(partnerOf<order>(other, done, cacheLineBytes), ahead.other);
        for (std::ptrdiff_t i = 0; i < cacheLineBytes; i += size) one();
    }
    while (done + size <= bytes) one();
    return done;
}

template <typename Format>
constexpr FormatOperations operationsFor() {
    if constexpr (Format::channels == 1) {
        return {widen<Format>,
                {filterGrey<2>, filterGrey<4>},
                {mixRows<Format, 2>, mixRows<Format, 4>},
                {mixGreySpots<2>, mixGreySpots<4>},
                {exchange<Format, Straight>, exchange<Format, Reversed>}};
    } else {
        return {widen<Format>,
                {filterColour<2>, filterColour<4>},
                {mixRows<Format, 2>, mixRows<Format, 4>},
                {mixColourSpots<Format, 2>, mixColourSpots<Format, 4>},
                {exchange<Format, Straight>, exchange<Format, Reversed>}};
    }
}

const RowOperations* operations() {
    static constexpr RowOperations table{{locate<1>, locate<2>, locate<4>},
                                         operationsFor<Grey16>(),
                                         operationsFor<FourBytes>(),
                                         operationsFor<ThreeOfFourBytes>()};
    return &table;
}

#endif

}  // namespace zolipp::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace zolipp {
namespace {
HWY_EXPORT(operations);
}

namespace rowvectors {

const RowOperations& chosen() { return *HWY_DYNAMIC_DISPATCH(operations)(); }

}  // namespace rowvectors
}  // namespace zolipp

#endif  // HWY_ONCE

#endif  // ZOL_USE_HIGHWAY
