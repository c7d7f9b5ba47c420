#include "zolipp/checks.h"
#include "zolipp/pixels.h"
#include "zolipp/rowoperations.h"
#include "zolipp/sse2.h"

#include <algorithm>
#include <type_traits>

namespace zolipp {

namespace {

/// How far the runs are that will be exchanged after these two. A row is often a whole page, at whose end the
/// processors' own prefetching stops: asking for the next row takes half the time.
struct Ahead {
    std::ptrdiff_t run;
    std::ptrdiff_t other;
};

/// How a run of pixels is exchanged with another one: `Straight` pairs them from both starts on, `Reversed` the first
/// pixel with the last one. The other run is named by its start or, when reversed, by its end.
struct Straight {
    static std::ptrdiff_t startOf(std::ptrdiff_t done, std::ptrdiff_t /*bytes*/) { return done; }
};
struct Reversed {
    static std::ptrdiff_t startOf(std::ptrdiff_t done, std::ptrdiff_t bytes) { return -done - bytes; }
};

#if defined(ZOLIPP_SSE2)

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
template <typename Format, typename Order>
std::ptrdiff_t exchangeVectors(std::byte* run, std::byte* other, std::ptrdiff_t bytes, Ahead ahead) {
    constexpr std::ptrdiff_t size = sizeof(__m128i);
    const auto ordered = [](__m128i pixels) {
        if constexpr (std::is_same_v<Order, Reversed>) return reversed<Format>(pixels);
        return pixels;
    };
    std::ptrdiff_t done = 0;
    const auto one = [&] {
        std::byte* there = other + Order::startOf(done, size);
        const __m128i a = loadVector(run + done);
        const __m128i b = loadVector(there);
        storeVector(run + done, merged<Format>(ordered(b), a));
        storeVector(there, merged<Format>(ordered(a), b));
        done += size;
    };
    while (done + 4 * size <= bytes) {
        prefetch(run + done, ahead.run);
        prefetch(other + Order::startOf(done, size), ahead.other);
        one();
        one();
        one();
        one();
    }
    while (done + size <= bytes) one();
    return done;
}

#else

template <typename Format, typename Order>
std::ptrdiff_t exchangeVectors(std::byte* /*run*/, std::byte* /*other*/, std::ptrdiff_t /*bytes*/, Ahead /*ahead*/) {
    return 0;
}

#endif

template <typename Format, typename Order>
void exchange(std::byte* run, std::byte* other, int count, Ahead ahead) {
    constexpr std::ptrdiff_t size = pixelBytes<Format>;
    const std::ptrdiff_t bytes = count * size;
    std::ptrdiff_t done = RowOperations::isPlain() ? 0 : exchangeVectors<Format, Order>(run, other, bytes, ahead);
    for (; done < bytes; done += size) {
        std::byte* pixel = run + done;
        std::swap_ranges(pixel, pixel + Format::written * sizeof(typename Format::Sample),
                         other + Order::startOf(done, size));
    }
}

template <typename Format>
IppStatus mirror(void* pSrcDst, int step, IppiSize size, IppiAxis flip) {
    if (pSrcDst == nullptr) return ippStsNullPtrErr;
    if (isEmpty(size)) return ippStsSizeErr;
    if (!holdsRow(step, size.width, pixelBytes<Format>)) return ippStsStepErr;
    if (flip != ippAxsHorizontal && flip != ippAxsVertical && flip != ippAxsBoth) return ippStsMirrorFlipErr;
    const TargetRows rows = rowsOf(pSrcDst, step);
    const std::ptrdiff_t rowBytes = std::ptrdiff_t{size.width} * pixelBytes<Format>;
    const auto reverse = [&](std::byte* row) {
        exchange<Format, Reversed>(row, row + rowBytes, size.width / 2, Ahead{step, step});
    };
    if (flip == ippAxsVertical) {
        for (int y = 0; y < size.height; ++y) reverse(rows.at(y));
        return ippStsNoErr;
    }
    int top = 0;
    int bottom = size.height - 1;
    for (; top < bottom; ++top, --bottom) {
        if (flip == ippAxsBoth) {
            exchange<Format, Reversed>(rows.at(top), rows.at(bottom) + rowBytes, size.width, Ahead{step, -step});
        } else {
            exchange<Format, Straight>(rows.at(top), rows.at(bottom), size.width, Ahead{step, -step});
        }
    }
    if (flip == ippAxsBoth && top == bottom) reverse(rows.at(top));
    return ippStsNoErr;
}

}  // namespace

}  // namespace zolipp

IppStatus ZOLippiMirror_16u_C1IR(Ipp16u* pSrcDst, int srcDstStep, IppiSize roiSize, IppiAxis flip) {
    return zolipp::mirror<zolipp::Grey16>(pSrcDst, srcDstStep, roiSize, flip);
}

IppStatus ZOLippiMirror_8u_C4IR(Ipp8u* pSrcDst, int srcDstStep, IppiSize roiSize, IppiAxis flip) {
    return zolipp::mirror<zolipp::FourBytes>(pSrcDst, srcDstStep, roiSize, flip);
}

IppStatus ZOLippiMirror_8u_AC4IR(Ipp8u* pSrcDst, int srcDstStep, IppiSize roiSize, IppiAxis flip) {
    return zolipp::mirror<zolipp::ThreeOfFourBytes>(pSrcDst, srcDstStep, roiSize, flip);
}
