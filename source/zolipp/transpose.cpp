#include "zolipp/checks.h"
#include "zolipp/pixels.h"
#include "zolipp/rowoperations.h"
#include "zolipp/sse2.h"

#include <type_traits>

namespace zolipp {

namespace {

/// Pixels of a source of which the rows become the columns of a target.
struct Piece {
    SourceRows source;
    TargetRows target;
    IppiSize size;  ///< of the source

    /// The part that starts at a source pixel.
    template <typename Format>
    [[nodiscard]] Piece part(int x, int y, IppiSize partSize) const {
        return {{source.at(y) + std::ptrdiff_t{x} * pixelBytes<Format>, source.step},
                {target.at(x) + std::ptrdiff_t{y} * pixelBytes<Format>, target.step},
                partSize};
    }
};

template <typename Format>
void transposePlainly(const Piece& piece) {
    for (int x = 0; x < piece.size.width; ++x) {
        for (int y = 0; y < piece.size.height; ++y) {
            copyPixel<Format>(piece.source.at(y) + std::ptrdiff_t{x} * pixelBytes<Format>,
                              piece.target.at(x) + std::ptrdiff_t{y} * pixelBytes<Format>);
        }
    }
}

#if defined(ZOL_SSE2)

/// Turns the 8 x 8 or 4 x 4 pixels that `load` gives row by row.
template <typename Load, typename Store>
void transposeBlock(std::integral_constant<int, 2> /*bytes*/, Load load, Store store) {
    __m128i pairs[8];
    for (int i = 0; i < 4; ++i) {
        const __m128i a = load(2 * i);
        const __m128i b = load(2 * i + 1);
        pairs[i] = _mm_unpacklo_epi16(a, b);
        pairs[i + 4] = _mm_unpackhi_epi16(a, b);
    }
    for (int half = 0; half < 2; ++half) {
        const __m128i* rows = pairs + 4 * half;
        const __m128i low01 = _mm_unpacklo_epi32(rows[0], rows[1]);
        const __m128i low23 = _mm_unpacklo_epi32(rows[2], rows[3]);
        const __m128i high01 = _mm_unpackhi_epi32(rows[0], rows[1]);
        const __m128i high23 = _mm_unpackhi_epi32(rows[2], rows[3]);
        store(4 * half, _mm_unpacklo_epi64(low01, low23));
        store(4 * half + 1, _mm_unpackhi_epi64(low01, low23));
        store(4 * half + 2, _mm_unpacklo_epi64(high01, high23));
        store(4 * half + 3, _mm_unpackhi_epi64(high01, high23));
    }
}

template <typename Load, typename Store>
void transposeBlock(std::integral_constant<int, 4> /*bytes*/, Load load, Store store) {
    const __m128i low01 = _mm_unpacklo_epi32(load(0), load(1));
    const __m128i low23 = _mm_unpacklo_epi32(load(2), load(3));
    const __m128i high01 = _mm_unpackhi_epi32(load(0), load(1));
    const __m128i high23 = _mm_unpackhi_epi32(load(2), load(3));
    store(0, _mm_unpacklo_epi64(low01, low23));
    store(1, _mm_unpackhi_epi64(low01, low23));
    store(2, _mm_unpacklo_epi64(high01, high23));
    store(3, _mm_unpackhi_epi64(high01, high23));
}

/// Turns a square of as many pixels a side as fit a cache line. Rows are read, and written, a whole line at a time:
/// steps are often powers of two, and then all lines of a column share one place in the cache.
template <typename Format>
void transposeTile(const Piece& tile) {
    constexpr int bytes = pixelBytes<Format>;
    constexpr int side = static_cast<int>(cacheLineBytes) / bytes;
    constexpr int block = static_cast<int>(sizeof(__m128i)) / bytes;
    alignas(cacheLineBytes) std::byte turned[static_cast<std::size_t>(side * cacheLineBytes)];
    for (int y = 0; y < side; y += block) {
        for (int x = 0; x < side; x += block) {
            transposeBlock(
                std::integral_constant<int, bytes>{},
                [&](int i) { return loadVector(tile.source.at(y + i) + x * bytes); },
                [&](int i, __m128i pixels) { storeVector(turned + (x + i) * cacheLineBytes + y * bytes, pixels); });
        }
    }
    for (int x = 0; x < side; ++x) {
        std::byte* to = tile.target.at(x);
        const std::byte* from = turned + x * cacheLineBytes;
        for (std::ptrdiff_t i = 0; i < cacheLineBytes; i += static_cast<std::ptrdiff_t>(sizeof(__m128i)))
            storeVector(to + i, loadVector(from + i));
    }
}

template <typename Format>
void transposeFast(const Piece& piece) {
    constexpr int side = static_cast<int>(cacheLineBytes) / pixelBytes<Format>;
    const int wholeWidth = piece.size.width / side * side;
    const int wholeHeight = piece.size.height / side * side;
    for (int y = 0; y < wholeHeight; y += side) {
        for (int x = 0; x < wholeWidth; x += side) transposeTile<Format>(piece.part<Format>(x, y, {side, side}));
    }
    transposePlainly<Format>(piece.part<Format>(wholeWidth, 0, {piece.size.width - wholeWidth, piece.size.height}));
    transposePlainly<Format>(piece.part<Format>(0, wholeHeight, {wholeWidth, piece.size.height - wholeHeight}));
}

#else

template <typename Format>
void transposeFast(const Piece& piece) {
    transposePlainly<Format>(piece);
}

#endif

template <typename Format>
IppStatus transpose(const void* pSrc, int srcStep, void* pDst, int dstStep, IppiSize size) {
    if (pSrc == nullptr || pDst == nullptr) return ippStsNullPtrErr;
    if (isEmpty(size)) return ippStsSizeErr;
    if (!holdsRow(srcStep, size.width, pixelBytes<Format>)) return ippStsStepErr;
    if (!holdsRow(dstStep, size.height, pixelBytes<Format>)) return ippStsStepErr;
    const Piece whole{rowsOf(pSrc, srcStep), rowsOf(pDst, dstStep), size};
    RowOperations::isPlain() ? transposePlainly<Format>(whole) : transposeFast<Format>(whole);
    return ippStsNoErr;
}

}  // namespace

}  // namespace zolipp

IppStatus ZOLippiTranspose_16u_C1R(const Ipp16u* pSrc, int srcStep, Ipp16u* pDst, int dstStep, IppiSize roiSize) {
    return zolipp::transpose<zolipp::Grey16>(pSrc, srcStep, pDst, dstStep, roiSize);
}

IppStatus ZOLippiTranspose_8u_C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize) {
    return zolipp::transpose<zolipp::FourBytes>(pSrc, srcStep, pDst, dstStep, roiSize);
}
