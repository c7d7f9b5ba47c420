#include "zolcs/resample/spanoperations.h"

#include "platform/vectorchoice.h"
#include "zolcs/resample/spanvectors.h"
#include "zolcs/view/stepping.h"

#include <algorithm>
#include <bit>
#include <cstring>

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#endif

namespace zolcs {

namespace {

struct ExactPixel {
    std::uint32_t operator()(std::uint32_t coordinate) const { return coordinate >> 16U; }
};

struct RoundedPixel {
    std::uint32_t operator()(std::uint32_t coordinate) const {
        return static_cast<std::uint32_t>(roundedPixel(coordinate));
    }
};

/// Calls use(i, offset) for the positions from `begin` on.
template <typename PixelOf, typename Use>
void visitOffsets(const SpanPositions& positions, int begin, int count, const Use& use) {
    std::uint32_t u = positions.u + static_cast<std::uint32_t>(begin) * positions.du;
    std::uint32_t v = positions.v + static_cast<std::uint32_t>(begin) * positions.dv;
    const auto pitch = static_cast<std::uint32_t>(positions.pitch);
    for (int i = 0; i < count; ++i, u += positions.du, v += positions.dv) {
        use(i, PixelOf()(v) * pitch + PixelOf()(u));
    }
}

void portableOffsets(const SpanPositions& positions, int count, std::int32_t* out) {
    visitOffsets<ExactPixel>(positions, 0, count,
                             [out](int i, std::uint32_t offset) { out[i] = static_cast<std::int32_t>(offset); });
}

template <typename PixelOf>
void portableTestBits(const SpanPositions& positions, const SpanBits& bits, std::uint64_t pieces, std::uint16_t* set) {
    for (; pieces != 0; pieces &= pieces - 1) {
        const int piece = std::countr_zero(pieces);
        std::uint32_t found = 0;
        const auto test = [&](int i, std::uint32_t offset) {
            const std::uint32_t index = std::min(offset - static_cast<std::uint32_t>(bits.first), bits.count - 1);
            const std::uint32_t bit = bits.words[index >> 3U] >> (index & 7U) & 1U;
            found |= bit << i;
        };
        visitOffsets<PixelOf>(positions, piece * SpanBits::pieceColumns, SpanBits::pieceColumns, test);
        set[piece] = static_cast<std::uint16_t>(found);
    }
}

void portableTranspose32(const std::uint32_t* tile, const TileShape& shape, std::uint32_t* out) {
    for (int y = 0; y < shape.columns; ++y) {
        for (int x = 0; x < shape.lines; ++x) out[y * shape.outPitch + x] = tile[x * shape.tilePitch + y];
    }
}

constexpr SpanOperations portable{portableOffsets, portableTestBits<ExactPixel>, portableTestBits<RoundedPixel>,
                                  portableTranspose32};

constinit zolplatform::VectorChoice choice;

}  // namespace

const SpanOperations& SpanOperations::chosen() {
#if defined(ZOL_USE_HIGHWAY)
    if (usesVectors()) return spanvectors::chosen();
#endif
    return portable;
}

bool SpanOperations::isPlain() { return choice.wantsPlainLoops(); }

bool SpanOperations::usesVectors() { return choice.wantsVectors(); }

std::vector<std::string> SpanOperations::variants() { return zolplatform::VectorChoice::names(); }

bool SpanOperations::choose(const std::string& variant) { return choice.choose(variant); }

namespace {

constexpr std::uintptr_t cacheLine = 64;

/// An address as a number, since it may lie beyond the image.
void prefetchAt([[maybe_unused]] std::uintptr_t address) {
#if defined(__SSE2__) || defined(_M_X64)
    _mm_prefetch(reinterpret_cast<const char*>(address), _MM_HINT_T0);
#endif
}

}  // namespace

void prefetchStart(const void* data) {
    const auto start = reinterpret_cast<std::uintptr_t>(data);
    for (std::uintptr_t i = 0; i < 4; ++i) prefetchAt(start + i * cacheLine);
}

void prefetchSpan(const void* source, std::size_t pixelBytes, const std::int32_t* offsets, int count,
                  std::int64_t ahead) {
    // The next lines ask beside these pixels, and so reach what lies between them.
    constexpr int step = 8;
    const auto start = reinterpret_cast<std::uintptr_t>(source);
    for (int i = 0; i < count; i += step) {
        prefetchAt(start + static_cast<std::uintptr_t>(offsets[i] + ahead) * pixelBytes);
    }
}

namespace {

/// out[i] = entry(offsets[i]). Loads decide the speed: offsets come in pairs, results leave in fours. On the processors
/// at hand this is faster than gathering.
template <typename Entry>
void fetchSpan(const std::int32_t* offsets, int count, std::uint32_t* out, const Entry& entry) {
    int i = 0;
#if defined(__SSE2__) || defined(_M_X64)
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

void fillPastCache(std::uint32_t* out, std::size_t count, std::uint32_t colour) {
    std::uint32_t* const end = out + count;
#if defined(__SSE2__) || defined(_M_X64)
    const auto isAligned = [&] { return reinterpret_cast<std::uintptr_t>(out) % sizeof(__m128i) == 0; };
    while (out != end && !isAligned()) *out++ = colour;
    const __m128i four = _mm_set1_epi32(static_cast<int>(colour));
    for (; end - out >= 4; out += 4) _mm_stream_si128(reinterpret_cast<__m128i*>(out), four);
    _mm_sfence();
#endif
    std::fill(out, end, colour);
}

}  // namespace zolcs
