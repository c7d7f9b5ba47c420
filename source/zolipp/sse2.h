// SSE2, which every processor has that the library runs on; elsewhere the plain loops do. Private to the library.
#pragma once

#include "platform/cache.h"

#include <cstddef>

namespace zolipp {

using zolplatform::cacheLineBytes;
using zolplatform::prefetch;

#if defined(ZOL_SSE2)

inline __m128i loadVector(const std::byte* from) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)); }
inline void storeVector(std::byte* to, __m128i vector) { _mm_storeu_si128(reinterpret_cast<__m128i*>(to), vector); }

#endif

}  // namespace zolipp
