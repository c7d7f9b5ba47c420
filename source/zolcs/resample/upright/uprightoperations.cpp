#include "zolcs/resample/upright/uprightoperations.h"

#include "platform/cache.h"
#include "zolcs/resample/bilinear/blend.h"
#include "zolcs/resample/upright/uprightvectors.h"
#include "zolcs/simd/variant.h"

#include <algorithm>

namespace zolcs {

namespace {

constexpr std::int32_t twelveBits = 0x0FFF;

/// Calls pixel(x) for all columns, as all operations have to.
template <typename PerPixel>
bool forEachPixel(int count, StopFlag stop, const PerPixel& pixel) {
    for (int begin = 0; begin < count; begin += StopFlag::block) {
        if (stop.isRaised()) return false;
        const int end = std::min(begin + StopFlag::block, count);
        for (int x = begin; x < end; ++x) pixel(x);
    }
    return true;
}

constexpr std::int32_t level(std::uint32_t pixel, int channel) {
    return static_cast<std::int32_t>(pixel >> (8 * channel) & 0xFFU);
}

bool bilinearGrey12Across(const std::uint16_t* row, const std::uint16_t* /*next*/, ColumnTaps taps, int count,
                          std::int16_t* out, StopFlag stop) {
    return forEachPixel(count, stop, [&](int x) {
        const std::uint16_t* pair = row + taps.offsets[x];
        const std::int16_t* weights = taps.weights + 2 * x;
        const std::int32_t sum = (pair[0] & twelveBits) * weights[0] + (pair[1] & twelveBits) * weights[1];
        out[x] = static_cast<std::int16_t>(-sum >> 15);
    });
}

bool bilinearGrey16Across(const std::uint16_t* row, const std::uint16_t* /*next*/, ColumnTaps taps, int count,
                          std::int32_t* out, StopFlag stop) {
    return forEachPixel(count, stop, [&](int x) {
        const std::uint16_t* pair = row + taps.offsets[x];
        const std::int16_t* weights = taps.weights + 2 * x;
        const bool second = weights[1] != 0;
        out[x] = second ? pair[1] : blend(pair[0], pair[1], static_cast<std::uint16_t>(weights[0]));
    });
}

bool bilinearRgbAcross(const std::uint32_t* row, const std::uint32_t* /*next*/, ColumnTaps taps, int count,
                       std::uint32_t* out, StopFlag stop) {
    return forEachPixel(count, stop, [&](int x) {
        const std::uint32_t* pair = row + taps.offsets[x];
        const std::int32_t negative = taps.weights[4 * x];
        std::uint32_t pixel = 0;
        for (int channel = 0; channel < 3; ++channel) {
            const std::int32_t a = level(pair[0], channel);
            const std::int32_t b = level(pair[1], channel);
            pixel |= static_cast<std::uint32_t>(a + ((a - b) * negative >> 15)) << (8 * channel);
        }
        out[x] = pixel;
    });
}

bool bilinearGrey12Down(const std::array<const std::int16_t*, 2>& rows, std::uint32_t fraction, int count,
                        std::uint16_t* out, StopFlag stop) {
    return forEachPixel(count, stop,
                        [&](int x) { out[x] = static_cast<std::uint16_t>(blend(rows[0][x], rows[1][x], fraction)); });
}

bool bilinearGrey16Down(const std::array<const std::int32_t*, 2>& rows, std::uint32_t fraction, int count,
                        std::uint16_t* out, StopFlag stop) {
    return forEachPixel(count, stop,
                        [&](int x) { out[x] = static_cast<std::uint16_t>(blend(rows[0][x], rows[1][x], fraction)); });
}

bool bilinearRgbDown(const std::array<const std::uint32_t*, 2>& rows, std::uint32_t fraction, int count,
                     std::uint32_t* out, StopFlag stop) {
    return forEachPixel(count, stop, [&](int x) {
        std::uint32_t pixel = 0;
        for (int channel = 0; channel < 3; ++channel) {
            const std::int32_t value = blend(level(rows[0][x], channel), level(rows[1][x], channel), fraction);
            pixel |= static_cast<std::uint32_t>(value) << (8 * channel);
        }
        out[x] = pixel;
    });
}

/// Four values by a column's 16.16 weights, 16.16.
template <typename Value>
std::int64_t weighAcross(const ColumnTaps& taps, int x, const Value& value) {
    const std::int16_t* weights = taps.weights + 4 * x;
    const std::int16_t* remainders = taps.remainders + 4 * x;
    std::int64_t sum = 0;
    for (int i = 0; i < 4; ++i) sum += std::int64_t{value(i)} * (4 * weights[i] + remainders[i]);
    return sum;
}

template <std::int32_t Mask, typename Sample>
bool cubicGreyAcross(const std::uint16_t* row, const std::uint16_t* /*next*/, ColumnTaps taps, int count, Sample* out,
                     StopFlag stop) {
    return forEachPixel(count, stop, [&](int x) {
        const std::uint16_t* pixels = row + taps.offsets[x];
        const std::int64_t sum = weighAcross(taps, x, [&](int i) { return pixels[i] & Mask; });
        out[x] = static_cast<Sample>(sum >> 16);
    });
}

bool cubicRgbAcross(const std::uint32_t* row, const std::uint32_t* /*next*/, ColumnTaps taps, int count,
                    std::int16_t* out, StopFlag stop) {
    return forEachPixel(count, stop, [&](int x) {
        const std::uint32_t* pixels = row + taps.offsets[x];
        for (int channel = 0; channel < 3; ++channel) {
            const std::int64_t sum = weighAcross(taps, x, [&](int i) { return level(pixels[i], channel); });
            out[4 * x + channel] = static_cast<std::int16_t>(sum >> 16);
        }
    });
}

/// Four filtered samples by a display row's weights, as a whole number from 0 to `Most`.
template <std::int32_t Most, typename Sample>
std::int32_t weighDown(const std::array<const Sample*, 4>& rows, const CubicWeights& weights, int sample) {
    std::int64_t sum = 0;
    for (std::size_t j = 0; j < 4; ++j) sum += std::int64_t{rows[j][sample]} * weights[j];
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(sum >> 16, 0, Most));
}

template <std::int32_t Most, typename Sample>
bool cubicGreyDown(const std::array<const Sample*, 4>& rows, const CubicWeights& weights, int count, std::uint16_t* out,
                   StopFlag stop) {
    return forEachPixel(count, stop,
                        [&](int x) { out[x] = static_cast<std::uint16_t>(weighDown<Most>(rows, weights, x)); });
}

bool cubicRgbDown(const std::array<const std::int16_t*, 4>& rows, const CubicWeights& weights, int count,
                  std::uint32_t* out, StopFlag stop) {
    return forEachPixel(count, stop, [&](int x) {
        std::uint32_t pixel = 0;
        for (int channel = 0; channel < 3; ++channel) {
            const std::int32_t value = weighDown<0xFF>(rows, weights, 4 * x + channel);
            pixel |= static_cast<std::uint32_t>(value) << (8 * channel);
        }
        out[x] = pixel;
    });
}

constexpr UprightOperations portableOperations{bilinearGrey12Across,        bilinearGrey16Across,    bilinearRgbAcross,
                                               bilinearGrey12Down,          bilinearGrey16Down,      bilinearRgbDown,
                                               cubicGreyAcross<twelveBits>, cubicGreyAcross<0xFFFF>, cubicRgbAcross,
                                               cubicGreyDown<twelveBits>,   cubicGreyDown<0xFFFF>,   cubicRgbDown};

}  // namespace

const UprightOperations& UprightOperations::chosen() {
#if defined(ZOL_USE_HIGHWAY)
    if (simd::usesVectors()) return uprightvectors::chosen();
#endif
    return portable();
}

const UprightOperations& UprightOperations::portable() { return portableOperations; }

bool lookUpRow(const std::uint16_t* values, int count, const std::uint32_t* table, std::uint32_t* out, StopFlag stop) {
    int begin = 0;
    for (; begin + StopFlag::block <= count; begin += StopFlag::block) {
        if (stop.isRaised()) return false;
#if defined(ZOL_SSE2)
        zolplatform::prefetch(out + begin, zolplatform::pageBytes);
        const auto entries = [&](int i) {
            const auto entry = [&](int at) { return _mm_cvtsi32_si128(static_cast<int>(table[values[at]])); };
            return _mm_unpacklo_epi32(entry(i), entry(i + 1));
        };
        for (int i = begin; i < begin + StopFlag::block; i += 4) {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), _mm_unpacklo_epi64(entries(i), entries(i + 2)));
        }
#else
        for (int i = begin; i < begin + StopFlag::block; ++i) out[i] = table[values[i]];
#endif
    }
    if (begin < count && stop.isRaised()) return false;
    for (; begin < count; ++begin) out[begin] = table[values[begin]];
    return true;
}

}  // namespace zolcs
