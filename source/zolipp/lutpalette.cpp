#include "zolipp/lutpalette.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__) || defined(_M_X64)
#define ZOLIPP_SSE2 1
#include <emmintrin.h>
#endif

namespace zolipp {
namespace {

// Addresses may be odd, so every access goes through memcpy, which compiles to one move.
template <typename T>
T load(const std::byte* from) {
    T value;
    std::memcpy(&value, from, sizeof(T));
    return value;
}

void mapPixels(const std::byte* source, std::byte* destination, std::size_t count, const Ipp32u* table, Ipp16u mask) {
    for (std::size_t i = 0; i < count; ++i) {
        const Ipp32u pixel = table[load<Ipp16u>(source + 2 * i) & mask];
        std::memcpy(destination + 4 * i, &pixel, sizeof pixel);
    }
}

#if defined(ZOLIPP_SSE2)

constexpr std::size_t vectorPixels = 4;
constexpr std::size_t blockPixels = 32;

// How far ahead of the look-up the source is asked for. The processors' own prefetching stops at every page, which
// costs more than an eighth of the time where a whole image streams by.
constexpr std::size_t prefetchBytes = 2048;

__m128i lookUpFour(const std::byte* source, const Ipp32u* table, std::uint64_t mask) {
    const std::uint64_t samples = load<std::uint64_t>(source) & mask;
    const auto pixel = [&](unsigned n) { return static_cast<int>(table[(samples >> (16 * n)) & 0xFFFFU]); };
    return _mm_set_epi32(pixel(3), pixel(2), pixel(1), pixel(0));
}

template <bool BypassCache>
void store(std::byte* to, __m128i pixels) {
    if constexpr (BypassCache) {
        _mm_stream_si128(reinterpret_cast<__m128i*>(to), pixels);
    } else {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), pixels);
    }
}

template <bool BypassCache>
void mapRow(const std::byte* source, std::byte* destination, std::size_t count, const Ipp32u* table, Ipp16u mask) {
    if constexpr (BypassCache) {
        // Stores that bypass the cache need whole, aligned vectors.
        const auto misaligned = reinterpret_cast<std::uintptr_t>(destination) % sizeof(__m128i);
        const std::size_t head = std::min(count, (sizeof(__m128i) - misaligned) % sizeof(__m128i) / sizeof(Ipp32u));
        mapPixels(source, destination, head, table, mask);
        source += 2 * head;
        destination += 4 * head;
        count -= head;
    }
    const std::uint64_t masks = mask * std::uint64_t{0x0001000100010001U};
    std::size_t i = 0;
    for (; i + blockPixels <= count; i += blockPixels) {
        if constexpr (BypassCache) {
            _mm_prefetch(reinterpret_cast<const char*>(source + 2 * i + prefetchBytes), _MM_HINT_NTA);
        }
        for (std::size_t j = i; j < i + blockPixels; j += vectorPixels) {
            store<BypassCache>(destination + 4 * j, lookUpFour(source + 2 * j, table, masks));
        }
    }
    for (; i + vectorPixels <= count; i += vectorPixels) {
        store<BypassCache>(destination + 4 * i, lookUpFour(source + 2 * i, table, masks));
    }
    mapPixels(source + 2 * i, destination + 4 * i, count - i, table, mask);
}

// Only rows of whole pixels can reach an aligned vector.
bool canBypassCache(const LutPaletteJob& job) {
    return reinterpret_cast<std::uintptr_t>(job.destination) % sizeof(Ipp32u) == 0 &&
           job.destinationStep % static_cast<std::ptrdiff_t>(sizeof(Ipp32u)) == 0;
}

#endif

template <typename Row>
void forEachRow(const LutPaletteJob& job, Row row) {
    const auto width = static_cast<std::size_t>(job.size.width);
    const std::byte* source = job.source;
    std::byte* destination = job.destination;
    for (int y = 0; y < job.size.height; ++y, source += job.sourceStep, destination += job.destinationStep) {
        row(source, destination, width, job.table, job.mask);
    }
}

}  // namespace

void lutPaletteScalar(const LutPaletteJob& job) { forEachRow(job, mapPixels); }

#if defined(ZOLIPP_SSE2)

void lutPaletteFast(const LutPaletteJob& job, bool bypassCache) {
    if (bypassCache && canBypassCache(job)) {
        forEachRow(job, mapRow<true>);
        _mm_sfence();
    } else {
        forEachRow(job, mapRow<false>);
    }
}

#else

void lutPaletteFast(const LutPaletteJob& job, bool) { lutPaletteScalar(job); }

#endif

}  // namespace zolipp

namespace {

// Above this the destination would only push everything else out of the cache before anybody reads it.
constexpr std::int64_t cacheableBytes = std::int64_t{4} << 20;

}  // namespace

IppStatus ZOLippiLUTPalette_16u32u_C1R(const Ipp16u* pSrc, int srcStep, Ipp32u* pDst, int dstStep, IppiSize roiSize,
                                       const Ipp32u* pTable, int nBitSize) {
    if (pSrc == nullptr || pDst == nullptr || pTable == nullptr) return ippStsNullPtrErr;
    if (roiSize.width < 1 || roiSize.height < 1) return ippStsSizeErr;
    if (srcStep / 2 < roiSize.width || dstStep / 4 < roiSize.width) return ippStsStepErr;
    if (nBitSize < 1 || nBitSize > 16) return ippStsBadArgErr;
    const zolipp::LutPaletteJob job{reinterpret_cast<const std::byte*>(pSrc),
                                    srcStep,
                                    reinterpret_cast<std::byte*>(pDst),
                                    dstStep,
                                    roiSize,
                                    pTable,
                                    static_cast<Ipp16u>((1U << nBitSize) - 1U)};
    zolipp::lutPaletteFast(job, std::int64_t{dstStep} * roiSize.height > cacheableBytes);
    return ippStsNoErr;
}
