// SSE2, which every processor has that the library runs on; elsewhere the plain loops do. Private to the library.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__) || defined(_M_X64)
#define ZOLIPP_SSE2 1
#include <emmintrin.h>
#endif

namespace zolipp {

inline constexpr std::ptrdiff_t cacheLine = 64;

/// Asks for the cache line that lies `offset` bytes from a position; nothing happens when there is no memory there.
inline void prefetch([[maybe_unused]] const std::byte* position, [[maybe_unused]] std::ptrdiff_t offset) {
#if defined(ZOLIPP_SSE2)
    // As numbers: no pointer may be formed there.
    const auto address = reinterpret_cast<std::uintptr_t>(position) + static_cast<std::uintptr_t>(offset);
    _mm_prefetch(reinterpret_cast<const char*>(address), _MM_HINT_T0);
#endif
}

#if defined(ZOLIPP_SSE2)

inline __m128i loadVector(const std::byte* from) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)); }
inline void storeVector(std::byte* to, __m128i vector) { _mm_storeu_si128(reinterpret_cast<__m128i*>(to), vector); }

#endif

}  // namespace zolipp
