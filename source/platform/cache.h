// Prefetching, and stores that bypass the cache: the hints and sizes of all libraries. Private to them.
//
// The processors' own prefetching stops at the end of every page, and a non-temporal store that is the first to meet a
// page waits for the page's translation. Loops over whole images therefore prefetch what lies a page ahead, on both
// sides.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#if defined(__SSE2__) || defined(_M_X64)
#define ZOL_SSE2 1
#include <emmintrin.h>
#endif

namespace zolplatform {

inline constexpr std::ptrdiff_t cacheLineBytes = 64;
inline constexpr std::ptrdiff_t pageBytes = 4096;

/// So many bytes would only push everything else out of the cache before anybody reads them: they are written with
/// non-temporal stores.
constexpr bool isTooLargeForTheCache(std::int64_t bytes) { return bytes >= std::int64_t{4} << 20; }

/// Shorter pieces of a row, in pixels of 32 bits, are written through the cache even then: they are not whole pages.
inline constexpr std::int64_t shortestNonTemporalRun = 512;

/// Prefetches the cache line that lies `offset` bytes from a position; it may lie beyond the image, and where there is
/// no memory nothing happens.
inline void prefetch([[maybe_unused]] const void* position, [[maybe_unused]] std::ptrdiff_t offset) {
#if defined(ZOL_SSE2)
    // As a number: no pointer may be formed beyond the image.
    const auto address = reinterpret_cast<std::uintptr_t>(position) + static_cast<std::uintptr_t>(offset);
    _mm_prefetch(reinterpret_cast<const char*>(address), _MM_HINT_T0);
#endif
}

/// The same for what is used once, and need not stay in the cache.
inline void prefetchForOneUse([[maybe_unused]] const void* position, [[maybe_unused]] std::ptrdiff_t offset) {
#if defined(ZOL_SSE2)
    const auto address = reinterpret_cast<std::uintptr_t>(position) + static_cast<std::uintptr_t>(offset);
    _mm_prefetch(reinterpret_cast<const char*>(address), _MM_HINT_NTA);
#endif
}

/// Prefetches the beginning of a row; from its second or third cache line on the processor finds out itself.
inline void prefetchRow(const void* row) {
    for (std::ptrdiff_t line = 0; line < 4; ++line) prefetch(row, line * cacheLineBytes);
}

/// Fills pixels with non-temporal stores.
inline void fillNonTemporal(std::uint32_t* out, std::size_t count, std::uint32_t colour) {
    std::uint32_t* const end = out + count;
#if defined(ZOL_SSE2)
    const auto isAligned = [&] { return reinterpret_cast<std::uintptr_t>(out) % sizeof(__m128i) == 0; };
    while (out != end && !isAligned()) *out++ = colour;
    const __m128i four = _mm_set1_epi32(static_cast<int>(colour));
    for (; end - out >= 4; out += 4) _mm_stream_si128(reinterpret_cast<__m128i*>(out), four);
    _mm_sfence();
#endif
    std::fill(out, end, colour);
}

}  // namespace zolplatform
