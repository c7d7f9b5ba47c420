#include "zolipp/lutpalette.h"

#include "zolipp/sse2.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace zolipp {
namespace {

// Addresses may be odd, so every access goes through memcpy, which compiles to one move.
template <typename T>
T load(const std::byte* from) {
    T value;
    std::memcpy(&value, from, sizeof(T));
    return value;
}

#if defined(ZOL_SSE2)

constexpr std::size_t vectorPixels = 4;
constexpr std::size_t blockPixels = 32;

// Two samples in 32 bits, twice: quicker than four in 64 bits and than four loads.
template <typename Mask>
__m128i lookUpFour(const std::byte* source, const Ipp32u* table, Mask mask) {
    const std::uint32_t low = mask.ofTwo(load<std::uint32_t>(source));
    const std::uint32_t high = mask.ofTwo(load<std::uint32_t>(source + 4));
    const auto pixel = [&](std::uint32_t sample) { return static_cast<int>(table[sample]); };
    return _mm_set_epi32(pixel(high >> 16U), pixel(high & 0xFFFFU), pixel(low >> 16U), pixel(low & 0xFFFFU));
}

// Masking costs a tenth of the time, and the common case has nothing to mask.
struct AllBits {
    static std::uint32_t ofTwo(std::uint32_t samples) { return samples; }
    static Ipp16u ofOne(Ipp16u sample) { return sample; }
};

struct SomeBits {
    Ipp16u bits;
    [[nodiscard]] std::uint32_t ofTwo(std::uint32_t samples) const { return samples & (bits * 0x10001U); }
    [[nodiscard]] Ipp16u ofOne(Ipp16u sample) const { return sample & bits; }
};

// How pixels reach the destination. Cached and non-temporal stores must not meet in one cache line, which costs more
// than either; so a row's ends go the same way as its middle.
struct CachedStores {
    static constexpr bool needAlignment = false;
    static void four(std::byte* to, __m128i pixels) { _mm_storeu_si128(reinterpret_cast<__m128i*>(to), pixels); }
    static void one(std::byte* to, Ipp32u pixel) { std::memcpy(to, &pixel, sizeof pixel); }
    static void prefetch(const std::byte* /*source*/, const std::byte* /*destination*/, std::size_t /*block*/) {}
};

struct NonTemporalStores {
    static constexpr bool needAlignment = true;
    static void four(std::byte* to, __m128i pixels) { _mm_stream_si128(reinterpret_cast<__m128i*>(to), pixels); }
    static void one(std::byte* to, Ipp32u pixel) {
        _mm_stream_si32(reinterpret_cast<int*>(to), static_cast<int>(pixel));
    }
    // Without this, a fifth of the time goes where a whole image streams by.
    static void prefetch(const std::byte* source, const std::byte* destination, std::size_t block) {
        zolplatform::prefetchForOneUse(source, zolplatform::pageBytes);
        if (block % (zolplatform::pageBytes / (4 * blockPixels)) == 0) {
            zolplatform::prefetchForOneUse(destination, zolplatform::pageBytes);
        }
    }
};

template <typename Stores, typename Mask>
void mapRow(const std::byte* source, std::byte* destination, std::size_t count, const Ipp32u* table, Mask mask) {
    const auto ones = [&](std::size_t pixels) {
        for (std::size_t i = 0; i < pixels; ++i, source += 2, destination += 4) {
            Stores::one(destination, table[mask.ofOne(load<Ipp16u>(source))]);
        }
        count -= pixels;
    };
    const auto four = [&](std::size_t i) {
        Stores::four(destination + 4 * i, lookUpFour(source + 2 * i, table, mask));
    };
    if constexpr (Stores::needAlignment) {
        const auto misaligned = reinterpret_cast<std::uintptr_t>(destination) % sizeof(__m128i);
        ones(std::min(count, (sizeof(__m128i) - misaligned) % sizeof(__m128i) / sizeof(Ipp32u)));
    }
    for (std::size_t blocks = 0; count >= blockPixels; ++blocks) {
        Stores::prefetch(source, destination, blocks);
        // Written out: left to itself the compiler keeps the loop, whose counting costs a fifth of the time.
        four(0);
        four(4);
        four(8);
        four(12);
        four(16);
        four(20);
        four(24);
        four(28);
        source += 2 * blockPixels;
        destination += 4 * blockPixels;
        count -= blockPixels;
    }
    for (; count >= vectorPixels; source += 2 * vectorPixels, destination += 4 * vectorPixels, count -= vectorPixels) {
        four(0);
    }
    ones(count);
}

// Only rows of whole pixels can reach an aligned vector.
bool canBeNonTemporal(const LutPaletteJob& job) {
    return reinterpret_cast<std::uintptr_t>(job.destination) % sizeof(Ipp32u) == 0 &&
           job.destinationStep % static_cast<std::ptrdiff_t>(sizeof(Ipp32u)) == 0;
}

#endif

template <typename Row>
void forEachRow(const LutPaletteJob& job, Row row) {
    const auto width = static_cast<std::size_t>(job.size.width);
    const auto height = static_cast<std::size_t>(job.size.height);
    if (job.sourceStep == std::ptrdiff_t{job.size.width} * 2 &&
        job.destinationStep == std::ptrdiff_t{job.size.width} * 4) {
        row(job.source, job.destination, width * height);
        return;
    }
    const std::byte* source = job.source;
    std::byte* destination = job.destination;
    for (std::size_t y = 0; y < height; ++y, source += job.sourceStep, destination += job.destinationStep) {
        row(source, destination, width);
    }
}

}  // namespace

void lutPaletteScalar(const LutPaletteJob& job) {
    forEachRow(job, [&](const std::byte* source, std::byte* destination, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const Ipp32u pixel = job.table[load<Ipp16u>(source + 2 * i) & job.mask];
            std::memcpy(destination + 4 * i, &pixel, sizeof pixel);
        }
    });
}

#if defined(ZOL_SSE2)

void lutPaletteFast(const LutPaletteJob& job, bool nonTemporal) {
    const auto run = [&](auto stores, auto mask) {
        forEachRow(job, [&](const std::byte* source, std::byte* destination, std::size_t count) {
            mapRow<decltype(stores)>(source, destination, count, job.table, mask);
        });
    };
    const auto runMasked = [&](auto stores) {
        job.mask == 0xFFFF ? run(stores, AllBits{}) : run(stores, SomeBits{job.mask});
    };
    if (nonTemporal && canBeNonTemporal(job)) {
        runMasked(NonTemporalStores{});
        _mm_sfence();
    } else {
        runMasked(CachedStores{});
    }
}

#else

void lutPaletteFast(const LutPaletteJob& job, bool /*nonTemporal*/) { lutPaletteScalar(job); }

#endif

}  // namespace zolipp

IppStatus ZOLippiLUTPalette_16u32u_C1R(const Ipp16u* pSrc, int srcStep, Ipp32u* pDst, int dstStep, IppiSize roiSize,
                                       const Ipp32u* pTable, int nBitSize) {
    if (pSrc == nullptr || pDst == nullptr || pTable == nullptr) return ippStsNullPtrErr;
    if (roiSize.width < 1 || roiSize.height < 1) return ippStsSizeErr;
    if (srcStep / 2 < roiSize.width || dstStep / 4 < roiSize.width) return ippStsStepErr;
    if (nBitSize < 1 || nBitSize > 16) return ippStsBadArgErr;
    const void* source = pSrc;
    void* destination = pDst;
    const zolipp::LutPaletteJob job{.source = static_cast<const std::byte*>(source),
                                    .sourceStep = srcStep,
                                    .destination = static_cast<std::byte*>(destination),
                                    .destinationStep = dstStep,
                                    .size = roiSize,
                                    .table = pTable,
                                    .mask = static_cast<Ipp16u>((1U << nBitSize) - 1U)};
    zolipp::lutPaletteFast(job, zolplatform::isTooLargeForTheCache(std::int64_t{dstStep} * roiSize.height));
    return ippStsNoErr;
}
