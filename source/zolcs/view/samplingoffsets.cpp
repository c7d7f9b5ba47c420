#include "zolcs/view/samplingoffsets.h"

#include "zolcs/simd/variant.h"
#include "zolcs/view/fixed16.h"
#include "zolcs/view/samplingvectors.h"

#include <algorithm>
#include <bit>

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
void visitOffsets(const SamplePositions& positions, int begin, int count, const Use& use) {
    std::uint32_t u = positions.u + static_cast<std::uint32_t>(begin) * positions.du;
    std::uint32_t v = positions.v + static_cast<std::uint32_t>(begin) * positions.dv;
    const auto pitch = static_cast<std::uint32_t>(positions.pitch);
    for (int i = 0; i < count; ++i, u += positions.du, v += positions.dv) {
        use(i, PixelOf()(v) * pitch + PixelOf()(u));
    }
}

void portableOffsets(const SamplePositions& positions, int count, std::int32_t* out) {
    visitOffsets<ExactPixel>(positions, 0, count,
                             [out](int i, std::uint32_t offset) { out[i] = static_cast<std::int32_t>(offset); });
}

template <typename PixelOf>
void portableTestBits(const SamplePositions& positions, const SampledBits& bits, std::uint64_t pieces,
                      std::uint16_t* set) {
    for (; pieces != 0; pieces &= pieces - 1) {
        const int piece = std::countr_zero(pieces);
        std::uint32_t found = 0;
        const auto test = [&](int i, std::uint32_t offset) {
            const std::uint32_t index = std::min(offset - static_cast<std::uint32_t>(bits.first), bits.count - 1);
            const std::uint32_t bit = bits.words[index >> 3U] >> (index & 7U) & 1U;
            found |= bit << i;
        };
        visitOffsets<PixelOf>(positions, piece * SampledBits::pieceColumns, SampledBits::pieceColumns, test);
        set[piece] = static_cast<std::uint16_t>(found);
    }
}

constexpr SamplingOperations portable{portableOffsets, portableTestBits<ExactPixel>, portableTestBits<RoundedPixel>};

}  // namespace

const SamplingOperations& SamplingOperations::chosen() {
#if defined(ZOL_USE_HIGHWAY)
    if (simd::usesVectors()) return samplingvectors::chosen();
#endif
    return portable;
}

}  // namespace zolcs
