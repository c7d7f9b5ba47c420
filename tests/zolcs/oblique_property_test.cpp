// Bilinear and bicubic interpolation in views of any angle: every variant against the plain loop.
#include "zolcs/resample/oblique.h"

#include "support/bicubic_members.h"
#include "support/bilinear_members.h"
#include "support/variants.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <numeric>
#include <vector>

namespace {

using zolcs::SpanOperations;
using zoltest::GuardedImage;
using zoltest::GuardedRaster;
using zoltest::Random;

/// From one pixel to beyond the longest block.
int anyExtent(Random& random) {
    if (random.chance(0.3)) return random.integer(1, 8);
    return random.integer(1, random.chance(0.1) ? 700 : 80);
}

/// Turned, mirrored, sheared by pixels that are not square, in and out of the image.
CCs2dTrafo obliqueView(Random& random, CCsImage& src, CCsImage& dst) {
    CCs2dTrafo trafo;
    trafo.setSizes(src, dst);
    trafo.rotate(random.chance(0.15) ? 90.0 * random.integer(0, 3) + random.real(-0.2, 0.2) : random.real(0.0, 360.0));
    zoltest::anyMirror(random, trafo);
    trafo.scale(std::pow(10.0, random.real(-0.7, 1.2)));
    zoltest::anyPan(random, trafo);
    if (random.chance(0.3)) zoltest::startAtBorders(random, trafo, src, dst);
    return trafo;
}

/// The pixels of an image in memory that ends with its last one, so that a sanitizer sees every read beside them.
class TightMemory {
public:
    explicit TightMemory(GuardedRaster& image)
        : bytes_(static_cast<std::size_t>((image.getHeight() - 1) * image.getPitch() + image.getWidth()) *
                 static_cast<std::size_t>(zoltest::bytesOfType(image.getType()))),
          memory_(new unsigned char[bytes_]) {
        std::memcpy(memory_.get(), image.memory.pixels(), bytes_);
        image.GetMemBuffer()->setHeapBuffer(memory_.get());
    }

private:
    std::size_t bytes_;
    std::unique_ptr<unsigned char[]> memory_;
};

/// Compares the whole memory of the destination, guards and line padding included.
template <typename Resampler>
void expectSameAsPlain(const zoltest::ResamplerMembers<Resampler>& members, std::uint64_t seed, int rounds) {
    Random random(seed);
    zoltest::forEachVariant([&](const std::string& variant) {
        if (variant == "plain") return;
        Resampler resampler;
        for (int round = 0; round < rounds; ++round) {
            const auto& member = members[static_cast<std::size_t>(round) % members.size()];
            const int srcWidth = anyExtent(random);
            const int dstWidth = anyExtent(random);
            GuardedRaster src(srcWidth, anyExtent(random), member.sourceType, srcWidth + random.integer(0, 9),
                              random.chance(0.6) ? 1.0 : random.real(0.3, 3.0));
            GuardedImage dst(dstWidth, random.integer(1, 60), member.destinationType, dstWidth + random.integer(0, 9),
                             1.0);
            src.memory.randomise(random);
            dst.memory.randomise(random);
            if (random.chance(0.3)) {  // only extremes: products and overshoots are largest
                for (unsigned char& byte : src.memory.all()) byte = random.chance(0.5) ? 255 : 0;
            }
            const TightMemory tight(src);
            CCs2dTrafo trafo = obliqueView(random, src, dst);
            const std::vector<unsigned char> before = dst.memory.all();
            SpanOperations::choose("plain");
            ASSERT_EQ(member.call(resampler, src, dst, trafo), 255);
            const std::vector<unsigned char> expected = dst.memory.all();
            dst.memory.all() = before;
            SpanOperations::choose(variant);
            ASSERT_EQ(member.call(resampler, src, dst, trafo), 255);
            ASSERT_TRUE(dst.memory.all() == expected)
                << zoltest::narrow(member.name) << " round " << round << ' ' << srcWidth << 'x' << src.getHeight()
                << " type " << member.sourceType << " to " << dstWidth << 'x' << dst.getHeight() << " type "
                << member.destinationType << ' ' << zoltest::textOf(zoltest::toImageOf(trafo, src, dst));
        }
    });
}

TEST(ObliqueProperty, BilinearEqualsThePlainLoop) { expectSameAsPlain(zoltest::bilinearMembers(), 20240601, 700); }

TEST(ObliqueProperty, BicubicEqualsThePlainLoop) { expectSameAsPlain(zoltest::bicubicMembers(), 20240602, 700); }

}  // namespace
