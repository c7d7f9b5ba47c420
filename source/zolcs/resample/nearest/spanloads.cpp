#include "zolcs/resample/nearest/spanloads.h"

#include "platform/cache.h"

#include <cstring>

namespace zolcs {

namespace {

/// out[i] = entry(offsets[i]). Loads decide the speed: offsets come in pairs, results leave in fours. On the processors
/// at hand this is faster than gathering.
template <typename Entry>
void fetchSpan(const std::int32_t* offsets, int count, std::uint32_t* out, const Entry& entry) {
    int i = 0;
#if defined(ZOL_SSE2)
    const auto two = [&](const std::int32_t* from) {
        std::uint64_t pair = 0;
        std::memcpy(&pair, from, sizeof pair);
        const auto fetched = [&](std::uint64_t offset) {
            return _mm_cvtsi32_si128(static_cast<int>(entry(static_cast<std::uint32_t>(offset))));
        };
        return _mm_unpacklo_epi32(fetched(pair), fetched(pair >> 32U));
    };
    const auto storeFour = [&](int at) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + at),
                         _mm_unpacklo_epi64(two(offsets + at), two(offsets + at + 2)));
    };
    for (; i + 8 <= count; i += 8) {
        storeFour(i);
        storeFour(i + 4);
    }
    for (; i + 4 <= count; i += 4) storeFour(i);
#endif
    for (; i < count; ++i) out[i] = entry(static_cast<std::uint32_t>(offsets[i]));
}

}  // namespace

void lookUpSpan(const std::uint16_t* source, const std::int32_t* offsets, int count, const std::uint32_t* table,
                std::uint32_t* out) {
    fetchSpan(offsets, count, out, [=](std::uint32_t offset) { return table[source[offset]]; });
}

void copySpan(const std::uint32_t* source, const std::int32_t* offsets, int count, std::uint32_t* out) {
    fetchSpan(offsets, count, out, [=](std::uint32_t offset) { return source[offset]; });
}

void prefetchSpan(const void* source, std::size_t pixelBytes, const std::int32_t* offsets, int count,
                  std::int64_t ahead) {
    // Every eighth pixel: the next rows ask between them, so that no cache line of an oblique view is left out.
    constexpr int step = 8;
    for (int i = 0; i < count; i += step) {
        zolplatform::prefetch(
            source, static_cast<std::ptrdiff_t>((offsets[i] + ahead) * static_cast<std::int64_t>(pixelBytes)));
    }
}

}  // namespace zolcs
