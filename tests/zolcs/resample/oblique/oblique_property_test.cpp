// Bilinear and bicubic interpolation in views of any angle: every variant against the plain loop.
#include "zolcs/resample/oblique/obliquefiller.h"

#include "support/bicubic_members.h"
#include "support/bilinear_members.h"
#include "support/same_as_plain.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace {

using zolcs::fixed16One;
using zolcs::ObliqueOperations;
using zolcs::SamplingOperations;
using zolcs::StopFlag;
using zoltest::Random;

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

TEST(ObliqueProperty, BilinearEqualsThePlainLoop) {
    zoltest::expectSameAsPlain(zoltest::bilinearMembers(), 20240601, 500, obliqueView);
}

TEST(ObliqueProperty, BicubicEqualsThePlainLoop) {
    zoltest::expectSameAsPlain(zoltest::bicubicMembers(), 20240602, 500, obliqueView);
}

/// A source of one row of random pixels, repeated without memory for it: the pitch is 0.
template <typename Kernel>
void expectSameAtTheFarEnd(const Kernel& kernel, const zolcs::Stepping& stepping) {
    const zolcs::Copy<typename Kernel::Pixel> copy;
    zoltest::forEachVariant([&](const std::string& variant) {
        using Fast = zolcs::ObliqueFiller<Kernel, zolcs::Copy<typename Kernel::Pixel>>;
        const bool hasVectors = variant != "plain" && ObliqueOperations::chosen() != nullptr;
        EXPECT_EQ(Fast::isUsableFor(kernel, stepping), hasVectors && stepping.limitU <= 32768 * fixed16One);
        if (!Fast::isUsableFor(kernel, stepping)) return;
        Fast fast(kernel, copy, StopFlag());
        zolcs::PlainFiller plain(kernel, copy, StopFlag());
        for (int y = 0; y < stepping.height; ++y) {
            const zolcs::ColumnRange columns = stepping.span(y);
            const auto count = static_cast<std::size_t>(columns.size());
            std::vector<typename Kernel::Pixel> expected(count);
            std::vector<typename Kernel::Pixel> shown(count);
            EXPECT_TRUE(plain.fill(stepping.row(y), columns, expected.data()));
            EXPECT_TRUE(fast.fill(stepping.row(y), columns, shown.data()));
            ASSERT_EQ(shown, expected) << y;
        }
    });
}

TEST(ObliqueProperty, PositionsUpToThirtyOneBits) {
    const CCsBicubic buildsTheWeights;
    Random random(20240603);
    for (const int size : {32767, 32768, 32769}) {
        std::vector<std::uint16_t> grey(static_cast<std::size_t>(size));
        std::vector<std::uint32_t> colour(grey.size());
        for (auto& pixel : grey) pixel = static_cast<std::uint16_t>(random.bits());
        for (auto& pixel : colour) pixel = static_cast<std::uint32_t>(random.bits());
        // The lower right corner of the source lies within the display.
        const zolcs::Stepping stepping =
            zolcs::makeStepping({0.7, 0.4, -0.4, 0.7, size - 50.0, size - 100.0}, size, size, 150, 120);
        const zolcs::ImageView<const std::uint16_t> greyView(grey.data(), 0);
        const zolcs::ImageView<const std::uint32_t> colourView(colour.data(), 0);
        expectSameAtTheFarEnd(zolcs::BilinearGrey({greyView, stepping}, 0xFFFF, 0), stepping);
        expectSameAtTheFarEnd(zolcs::BilinearRgb({colourView, stepping}), stepping);
        expectSameAtTheFarEnd(zolcs::CubicGrey({greyView, stepping, zolcs::fineCubicWeights()}, 0x0FFF, 0xF000),
                              stepping);
        expectSameAtTheFarEnd(zolcs::CubicRgb({colourView, stepping, zolcs::coarseCubicWeights()}), stepping);
    }
}

/// All pairs of weights: each position is a step of both tables further.
TEST(ObliqueProperty, EveryEntryOfTheWeights) {
    const CCsBicubic buildsTheWeights;
    Random random(20240604);
    constexpr int size = 8;
    std::array<std::uint16_t, size * size> pixels{};
    zoltest::forEachVariant([&](const std::string& variant) {
        const ObliqueOperations* operations = ObliqueOperations::chosen();
        if (variant == "plain" || operations == nullptr) return;
        for (const auto mask : {std::uint16_t{0x0FFF}, std::uint16_t{0xFFFF}}) {
            for (int round = 0; round < 20; ++round) {
                for (auto& pixel : pixels) {
                    pixel = random.chance(0.5) ? static_cast<std::uint16_t>(random.bits())
                                               : static_cast<std::uint16_t>(random.chance(0.5) ? 0xFFFF : 0);
                }
                const zolcs::Stepping stepping = zolcs::makeStepping({1, 0, 0, 1, 0, 0}, size, size, size, size);
                const zolcs::CubicGrey kernel({{pixels.data(), size}, stepping, zolcs::fineCubicWeights()}, mask, 0);
                const auto v = static_cast<std::uint32_t>(2 * fixed16One + random.integer(0, 65535));
                std::vector<std::uint16_t> shown(zolcs::fineCubicSteps);
                operations->cubicGrey(pixels.data(), {2U << 16U, v, 16, 0, size}, zolcs::fineCubicWeights(), mask,
                                      zolcs::fineCubicSteps, shown.data());
                for (int i = 0; i < zolcs::fineCubicSteps; ++i) {
                    const zolcs::Fixed16 u = 2 * fixed16One + i * 16;
                    ASSERT_EQ(shown[static_cast<std::size_t>(i)], kernel(u + 32768, v + 32768)) << i;
                }
            }
        }
    });
}

TEST(ObliqueProperty, StopsWithinSixteenPixels) {
    zoltest::forEachVariant([](const std::string& variant) {
        if (variant == "plain" || ObliqueOperations::chosen() == nullptr) return;
        zoltest::expectStopWithinABlock<zolcs::ObliqueFiller<zolcs::CubicGrey, zoltest::RaisingTable>>(
            {0.8, 0.6, -0.6, 0.8, 40, -30}, {1, 5, 16, 17, 99, 100, 101, 500, 3000});
    });
}

}  // namespace
