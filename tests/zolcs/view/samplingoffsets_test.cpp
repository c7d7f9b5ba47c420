#include "zolcs/view/samplingoffsets.h"

#include "support/test_data.h"
#include "support/variants.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace {

using zolcs::SamplePositions;
using zolcs::SamplingOperations;

TEST(SamplingOperationsTest, OffsetsOfEveryLength) {
    zoltest::Random random(21);
    zoltest::forEachVariant([&](const std::string&) {
        for (int count = 0; count <= 70; ++count) {
            const SamplePositions positions{static_cast<std::uint32_t>(random.integer(0, 1 << 29)),
                                            static_cast<std::uint32_t>(random.integer(0, 1 << 26)),
                                            static_cast<std::uint32_t>(random.integer(-100000, 100000)),
                                            static_cast<std::uint32_t>(random.integer(-100000, 100000)),
                                            random.integer(1, 4000)};
            std::vector<std::int32_t> out(100, -1);
            SamplingOperations::chosen().offsets(positions, count, out.data() + 3);
            for (int i = 0; i < 100; ++i) {
                const auto k = static_cast<std::uint32_t>(i - 3);
                const std::uint32_t row = (positions.v + k * positions.dv) >> 16U;
                const std::uint32_t column = (positions.u + k * positions.du) >> 16U;
                const auto expected =
                    static_cast<std::int32_t>(row * static_cast<std::uint32_t>(positions.pitch) + column);
                ASSERT_EQ(out[static_cast<std::size_t>(i)], i >= 3 && i < 3 + count ? expected : -1) << i;
            }
        }
    });
}

/// Bits of every second row of a plane, at random places in it.
TEST(SamplingOperationsTest, BitsOfPieces) {
    constexpr int columns = zolcs::SampledBits::pieceColumns;
    zoltest::Random random(24);
    std::vector<unsigned char> words(1 << 16);
    for (unsigned char& byte : words) byte = static_cast<unsigned char>(random.bits());
    const auto count = static_cast<std::uint32_t>(words.size() * 8);
    int roundedUp = 0;
    zoltest::forEachVariant([&](const std::string&) {
        for (int i = 0; i < 300; ++i) {
            // Steps of a few 65536ths close to a pixel's end: single precision rounds some of them up.
            const bool slow = random.chance(0.5);
            const auto start = [&](int most) {
                return static_cast<std::uint32_t>(random.integer(1, most)) * 65536U -
                       static_cast<std::uint32_t>(random.integer(0, 400));
            };
            const auto step = [&] {
                return static_cast<std::uint32_t>(slow ? random.integer(0, 3) : random.integer(0, 40000));
            };
            const int pitch = random.integer(1, 1500);
            const SamplePositions positions{start(20000), start(300), step(), step(), pitch};
            const zolcs::SampledBits bits{words.data(), random.integer(-3000, 3000), count};
            const std::uint64_t pieces = random.bits() & random.bits();
            const bool rounded = random.chance(0.7);
            const SamplingOperations& operations = SamplingOperations::chosen();
            std::array<std::uint16_t, 64> set;
            set.fill(0xABCD);
            (rounded ? operations.testRoundedBits : operations.testBits)(positions, bits, pieces, set.data());
            for (std::size_t piece = 0; piece < 64; ++piece) {
                if ((pieces >> piece & 1) == 0) {
                    ASSERT_EQ(set[piece], 0xABCD);
                    continue;
                }
                for (std::size_t k = 0; k < columns; ++k) {
                    const auto at = static_cast<std::uint32_t>(piece * columns + k);
                    const std::uint32_t u = positions.u + at * positions.du;
                    const std::uint32_t v = positions.v + at * positions.dv;
                    const auto pixel = [&](std::uint32_t coordinate) {
                        return rounded ? static_cast<std::int64_t>(static_cast<float>(coordinate) * 1.5258789e-5F)
                                       : static_cast<std::int64_t>(coordinate >> 16U);
                    };
                    const std::int64_t index = pixel(v) * pitch + pixel(u) - bits.first;
                    if (rounded && pixel(u) != u >> 16U) ++roundedUp;
                    if (index < 0 || index >= count) continue;  // asked for, but undefined
                    const auto byte = words[static_cast<std::size_t>(index / 8)];
                    ASSERT_EQ(set[piece] >> k & 1, byte >> (index % 8) & 1);
                }
            }
        }
    });
    EXPECT_GT(roundedUp, 1000);
}

/// Random rows and columns, against the positions in 64 bits.
TEST(SamplingOperationsTest, PositionsOfARow) {
    zoltest::Random random(25);
    for (int i = 0; i < 2000; ++i) {
        const auto anyPosition = [&] { return static_cast<zolcs::Fixed16>(random.integer(0, 1 << 30)) * 2; };
        const int column = random.integer(0, 5000);
        zolcs::DisplayRow row{0, 0, random.integer(-200000, 200000), random.integer(-200000, 200000)};
        const zolcs::Fixed16 u = anyPosition();
        const zolcs::Fixed16 v = anyPosition();
        row.u = u - column * row.du;
        row.v = v - column * row.dv;
        const SamplePositions positions = zolcs::samplePositions(row, column, 700);
        EXPECT_EQ(positions.u, u);
        EXPECT_EQ(positions.v, v);
        EXPECT_EQ(positions.u + positions.du, static_cast<std::uint32_t>(row.uAt(column + 1)));
        EXPECT_EQ(positions.v + positions.dv, static_cast<std::uint32_t>(row.vAt(column + 1)));
        EXPECT_EQ(positions.pitch, 700);
    }
}

TEST(SamplingOperationsTest, PositionsFitUpToThirtyOneBits) {
    const zolcs::Fixed16 one = zolcs::fixed16One;
    EXPECT_TRUE(zolcs::fitsSamplePositions(32768 * one, 32768 * one, 65536));
    EXPECT_FALSE(zolcs::fitsSamplePositions(32769 * one, one, 65536));
    EXPECT_FALSE(zolcs::fitsSamplePositions(one, 32769 * one, 1));
    EXPECT_FALSE(zolcs::fitsSamplePositions(one, 32768 * one, 65537));
}

}  // namespace
