// SSE2, which every processor has that the library runs on; elsewhere the plain loops do. Private to the library.
#pragma once

#if defined(__SSE2__) || defined(_M_X64)
#define ZOLIPP_SSE2 1
#include <emmintrin.h>

#include <cstddef>
#include <cstdint>

namespace zolipp {

inline constexpr std::ptrdiff_t cacheLine = 64;

inline __m128i loadVector(const std::byte* from) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)); }
inline void storeVector(std::byte* to, __m128i vector) { _mm_storeu_si128(reinterpret_cast<__m128i*>(to), vector); }

/// Asks for the cache line that lies `offset` bytes from a position; nothing happens when there is no memory there.
inline void prefetch(const std::byte* position, std::ptrdiff_t offset) {
    // As numbers: no pointer may be formed there.
    const auto address = reinterpret_cast<std::uintptr_t>(position) + static_cast<std::uintptr_t>(offset);
    _mm_prefetch(reinterpret_cast<const char*>(address), _MM_HINT_T0);
}

}  // namespace zolipp
#endif
