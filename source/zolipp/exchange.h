// Exchanging runs of pixels in whole vectors of the kind that every processor has. Private to the library.
#pragma once

#include "zolipp/pixels.h"
#include "zolipp/rowoperations.h"
#include "zolipp/sse2.h"

#include <cstddef>

namespace zolipp {

#if defined(ZOL_SSE2)

template <typename Format>
__m128i reversed(__m128i pixels) {
    if constexpr (pixelBytes<Format> == 2) {
        constexpr int order = _MM_SHUFFLE(0, 1, 2, 3);
        const __m128i halves = _mm_shufflehi_epi16(_mm_shufflelo_epi16(pixels, order), order);
        return _mm_shuffle_epi32(halves, _MM_SHUFFLE(1, 0, 3, 2));
    } else {
        return _mm_shuffle_epi32(pixels, _MM_SHUFFLE(0, 1, 2, 3));
    }
}

/// What a destination that holds `old` keeps, and the rest of `pixels`.
template <typename Format>
__m128i merged(__m128i pixels, __m128i old) {
    if constexpr (Format::written == Format::channels) {
        return pixels;
    } else {
        const __m128i mine = _mm_set1_epi32(0x00FFFFFF);
        return _mm_or_si128(_mm_and_si128(mine, pixels), _mm_andnot_si128(mine, old));
    }
}

/// Exchanges what fits whole vectors, and tells how many bytes that was.
template <typename Format, Order order>
std::ptrdiff_t exchangeVectors(std::byte* run, std::byte* other, std::ptrdiff_t bytes, Ahead ahead) {
    constexpr std::ptrdiff_t size = sizeof(__m128i);
    const auto ordered = [](__m128i pixels) {
        if constexpr (order == Reversed) return reversed<Format>(pixels);
        return pixels;
    };
    std::ptrdiff_t done = 0;
    const auto one = [&] {
        std::byte* there = partnerOf<order>(other, done, size);
        const __m128i a = loadVector(run + done);
        const __m128i b = loadVector(there);
        storeVector(run + done, merged<Format>(ordered(b), a));
        storeVector(there, merged<Format>(ordered(a), b));
        done += size;
    };
    while (done + 4 * size <= bytes) {
        prefetch(run + done, ahead.run);
        prefetch(partnerOf<order>(other, done, size), ahead.other);
        one();
        one();
        one();
        one();
    }
    while (done + size <= bytes) one();
    return done;
}

#else

template <typename Format, Order order>
std::ptrdiff_t exchangeVectors(std::byte* /*run*/, std::byte* /*other*/, std::ptrdiff_t /*bytes*/, Ahead /*ahead*/) {
    return 0;
}

#endif

}  // namespace zolipp
