// Bilinear and bicubic interpolation in upright views and quarter turns: every variant against the plain loop.
#include "zolcs/resample/upright/uprightfiller.h"

#include "support/bicubic_members.h"
#include "support/bilinear_members.h"
#include "support/same_as_plain.h"

#include <cstdint>
#include <vector>

namespace {

using zolcs::StopFlag;
using zoltest::GuardedImage;
using zoltest::Random;

/// Upright, turned by quarters, mirrored; sometimes so that rows begin where one rule differs from another.
CCs2dTrafo separableView(Random& random, CCsImage& src, CCsImage& dst) {
    CCs2dTrafo trafo;
    trafo.setSizes(src, dst);
    trafo.rotate(90.0 * random.integer(0, 3));
    zoltest::anyMirror(random, trafo);
    trafo.scale(std::pow(10.0, random.real(-1.0, 1.2)));
    zoltest::anyPan(random, trafo);
    if (random.chance(0.4)) zoltest::startAtBorders(random, trafo, src, dst);
    return trafo;
}

TEST(SeparableProperty, BilinearEqualsThePlainLoop) {
    zoltest::expectSameAsPlain(zoltest::bilinearMembers(), 20240501, 450, separableView);
}

TEST(SeparableProperty, BicubicEqualsThePlainLoop) {
    zoltest::expectSameAsPlain(zoltest::bicubicMembers(), 20240502, 450, separableView);
}

TEST(SeparableProperty, NothingBesideThePixelsIsRead) {
    // The raster's memory ends with its pixels; the address sanitizer watches.
    zoltest::forEachVariant([](const std::string&) {
        CCsBilinear bilinear;
        CCsBicubic bicubic;
        for (int width = 1; width <= 40; ++width) {
            for (const int type : {CCS_GREY12, CCS_GREY16, CCS_RGB8}) {
                const int height = 1 + width % 5;
                const auto bytes = static_cast<std::size_t>(width * height * zoltest::bytesOfType(type));
                CCsRaster src(zoltest::plainBuffer(bytes), width, height, type, 1.0);
                std::vector<unsigned char> exact(bytes, 7);
                src.GetMemBuffer()->setHeapBuffer(exact.data());
                GuardedImage dst(51, 41, type, 51, 1.0);
                for (const double angle : {0.0, 90.0, 180.0, 270.0}) {
                    CCs2dTrafo trafo;
                    trafo.rotate(angle);
                    if (type == CCS_RGB8) {
                        EXPECT_EQ(bilinear.bilinearRgb8Rgb8(src, dst, trafo, 0, false), 255);
                        EXPECT_EQ(bicubic.bicubicRgb8Rgb8(src, dst, trafo, 0), 255);
                    } else {
                        EXPECT_EQ(bilinear.bilinearGrey12Grey12(src, dst, trafo, 0, false), 255);
                        EXPECT_EQ(bicubic.bicubicGrey12Grey12(src, dst, trafo, 0, false, false), 255);
                    }
                    // 7, or 0x0707 and its lower 12 bits, as everywhere in the source.
                    EXPECT_EQ(dst.memory.pixels()[(20 * 51 + 25) * zoltest::bytesOfType(type)], 7);
                }
            }
        }
    });
}

TEST(SeparableProperty, StopsWithinSixteenPixels) {
    zoltest::forEachVariant([](const std::string& variant) {
        if (variant == "plain") return;
        zoltest::expectStopWithinABlock<zolcs::UprightFiller<zolcs::CubicGrey12Rows, zoltest::RaisingTable>>(
            {1, 0, 0, 1, 0, 0}, {1, 5, 16, 17, 99, 100, 101, 500, 5000});
    });
}

/// Each operation looks at the flag before its first block.
TEST(SeparableProperty, NoOperationBeginsWhenStopped) {
    zoltest::forEachVariant([](const std::string&) {
        std::int32_t flag = 1;
        const StopFlag stop(flag);
        const zolcs::UprightOperations& operations = zolcs::UprightOperations::chosen();
        const std::vector<std::int32_t> offsets(32);
        const std::vector<std::int16_t> weights(128, 100);
        const zolcs::ColumnTaps taps{offsets.data(), weights.data(), weights.data(), false, nullptr, nullptr};
        const zolcs::CubicWeights cubic{0, 65536, 0, 0};
        const auto across = [&](const auto operation, auto pixel, auto sample) {
            const std::vector<decltype(pixel)> row(4, 9);
            std::vector<decltype(sample)> out(128, 3);
            EXPECT_FALSE(operation(row.data(), row.data(), taps, 20, out.data(), stop));
            EXPECT_EQ(std::count(out.begin(), out.end(), 3), 128);
        };
        const auto down = [&](const auto operation, const auto& rowWeights, auto sample, auto pixel, auto count) {
            const std::vector<decltype(sample)> row(128, 9);
            std::array<const decltype(sample)*, count()> rows{};
            rows.fill(row.data());
            for (const int pixels : {5, 20}) {
                std::vector<decltype(pixel)> out(32, 3);
                EXPECT_FALSE(operation(rows, rowWeights, pixels, out.data(), stop));
                EXPECT_EQ(std::count(out.begin(), out.end(), 3), 32);
            }
        };
        using Two = std::integral_constant<std::size_t, 2>;
        using Four = std::integral_constant<std::size_t, 4>;
        across(operations.bilinearGrey12Across, std::uint16_t{}, std::int16_t{});
        across(operations.bilinearGrey16Across, std::uint16_t{}, std::int32_t{});
        across(operations.bilinearRgbAcross, std::uint32_t{}, std::uint32_t{});
        across(operations.cubicGrey12Across, std::uint16_t{}, std::int16_t{});
        across(operations.cubicGrey16Across, std::uint16_t{}, std::int32_t{});
        across(operations.cubicRgbAcross, std::uint32_t{}, std::int16_t{});
        down(operations.bilinearGrey12Down, 1U, std::int16_t{}, std::uint16_t{}, Two());
        down(operations.bilinearGrey16Down, 1U, std::int32_t{}, std::uint16_t{}, Two());
        down(operations.bilinearRgbDown, 1U, std::uint32_t{}, std::uint32_t{}, Two());
        down(operations.cubicGrey12Down, cubic, std::int16_t{}, std::uint16_t{}, Four());
        down(operations.cubicGrey16Down, cubic, std::int32_t{}, std::uint16_t{}, Four());
        down(operations.cubicRgbDown, cubic, std::int16_t{}, std::uint32_t{}, Four());
    });
}

}  // namespace
