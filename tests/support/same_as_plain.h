// Fast fillers against the plain loop, bit for bit.
#pragma once

#include "reference/guarded_image.h"
#include "reference/random_views.h"
#include "support/resampler_members.h"
#include "support/test_data.h"
#include "support/variants.h"
#include "zolcs/ccsbicubic.h"
#include "zolcs/resample/bicubic/bicubic.h"
#include "zolcs/resample/display.h"
#include "zolcs/resample/stopflag.h"
#include "zolcs/simd/variant.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace zoltest {

/// From one pixel to beyond the length of every vector and block.
inline int anyExtent(Random& random) {
    if (random.chance(0.3)) return random.integer(1, 8);
    return random.integer(1, random.chance(0.1) ? 2600 : 90);
}

/// The pixels of an image in memory that ends with its last one, so that a sanitizer sees every read beside them.
class TightMemory {
public:
    explicit TightMemory(GuardedRaster& image)
        : bytes_(static_cast<std::size_t>((image.getHeight() - 1) * image.getPitch() + image.getWidth()) *
                 static_cast<std::size_t>(bytesOfType(image.getType()))),
          memory_(new unsigned char[bytes_]) {
        std::memcpy(memory_.get(), image.memory.pixels(), bytes_);
        image.GetMemBuffer()->setHeapBuffer(memory_.get());
    }

private:
    std::size_t bytes_;
    std::unique_ptr<unsigned char[]> memory_;
};

/// Draws with every variant what `anyView(random, src, dst)` shows, and compares the whole memory of the destination,
/// guards and line padding included.
template <typename Resampler, typename View>
void expectSameAsPlain(const ResamplerMembers<Resampler>& members, std::uint64_t seed, int rounds,
                       const View& anyView) {
    Random random(seed);
    forEachVariant([&](const std::string& variant) {
        if (variant == "plain") return;
        Resampler resampler;
        for (int round = 0; round < rounds; ++round) {
            const auto& member = members[static_cast<std::size_t>(round) % members.size()];
            const bool wide = random.chance(0.5);
            const bool wideDisplay = random.chance(0.5);
            const auto extent = [&](bool isLong) { return isLong ? anyExtent(random) : random.integer(1, 40); };
            const int srcWidth = extent(wide);
            const int dstWidth = extent(wideDisplay);
            GuardedRaster src(srcWidth, extent(!wide), member.sourceType, srcWidth + random.integer(0, 9),
                              random.chance(0.7) ? 1.0 : random.real(0.3, 3.0));
            GuardedImage dst(dstWidth, extent(!wideDisplay), member.destinationType, dstWidth + random.integer(0, 9),
                             1.0);
            src.memory.randomise(random);
            dst.memory.randomise(random);
            if (random.chance(0.3)) {  // only extremes: products and overshoots are largest
                for (unsigned char& byte : src.memory.all()) byte = random.chance(0.5) ? 255 : 0;
            }
            const TightMemory tight(src);
            CCs2dTrafo trafo = anyView(random, src, dst);
            const std::vector<unsigned char> before = dst.memory.all();

            zolcs::simd::choose("plain");
            ASSERT_EQ(member.call(resampler, src, dst, trafo), 255);
            const std::vector<unsigned char> expected = dst.memory.all();
            dst.memory.all() = before;
            zolcs::simd::choose(variant);
            ASSERT_EQ(member.call(resampler, src, dst, trafo), 255);
            ASSERT_TRUE(dst.memory.all() == expected)
                << narrow(member.name) << " round " << round << ' ' << srcWidth << 'x' << src.getHeight() << " type "
                << member.sourceType << " to " << dstWidth << 'x' << dst.getHeight() << " type "
                << member.destinationType << ' ' << textOf(toImageOf(trafo, src, dst));
        }
    });
}

/// A conversion that raises a flag with the last one of some values.
struct RaisingTable {
    int& left;
    int& written;
    std::int32_t& flag;

    std::uint32_t operator()(std::uint16_t sample) const {
        ++written;
        if (--left == 0) zolcs::setFlag(flag, 1);
        return sample + 1U;
    }
};

/// Fills a display by bicubic interpolation of a flat source, raising the flag early and late; `Filler` is made of a
/// kernel, the conversion and the flag.
template <typename Filler>
void expectStopWithinABlock(const zolcs::DisplayToImage& matrix, const std::vector<int>& raiseAfter) {
    const CCsBicubic buildsTheWeights;
    constexpr int size = 100;
    const std::vector<std::uint16_t> pixels(static_cast<std::size_t>(size) * size, 500);
    const zolcs::Stepping stepping = zolcs::makeStepping(matrix, size, size, size, size);
    for (const int values : raiseAfter) {
        int left = values;
        int written = 0;
        std::int32_t flag = 0;
        const RaisingTable convert{left, written, flag};
        const zolcs::CubicGrey kernel({{pixels.data(), size}, stepping, zolcs::fineCubicWeights()}, 0x0FFF, 0);
        Filler filler(kernel, convert, zolcs::StopFlag(flag));
        std::vector<std::uint32_t> shown(static_cast<std::size_t>(size) * size);
        const zolcs::Display<std::uint32_t> display{{shown.data(), size}, 7};
        EXPECT_FALSE(zolcs::fillDisplay(stepping, display, filler));
        EXPECT_GE(written, values);
        EXPECT_LE(written, values + zolcs::StopFlag::block - 1);
        // What was written stays, and nothing else has been.
        EXPECT_EQ(std::count(shown.begin(), shown.end(), 501U), written);
        EXPECT_EQ(std::count(shown.begin(), shown.end(), 0U) + std::count(shown.begin(), shown.end(), 7U),
                  size * size - written);
    }
}

}  // namespace zoltest
