#include "zolcs/resample/spanoperations.h"

#include "support/test_data.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace {

using zolcs::SpanOperations;
using zolcs::SpanPositions;
using zolcs::TileShape;

constexpr std::uint32_t sentinel = 0xDEADBEEF;

/// Runs a check with every variant that the processor has.
class SpanOperationsTest : public ::testing::Test {
protected:
    ~SpanOperationsTest() override { SpanOperations::choose(""); }

    template <typename Check>
    static void forEachVariant(Check&& check) {
        for (const std::string& variant : SpanOperations::variants()) {
            SCOPED_TRACE(variant);
            ASSERT_TRUE(SpanOperations::choose(variant));
            check();
        }
    }
};

TEST_F(SpanOperationsTest, VariantsAreChosenByName) {
    const std::vector<std::string> names = SpanOperations::variants();
    ASSERT_GE(names.size(), 2U);
    EXPECT_EQ(names[0], "plain");
    EXPECT_EQ(names[1], "portable");
    for (const std::string& name : names) {
        EXPECT_TRUE(SpanOperations::choose(name));
        EXPECT_EQ(SpanOperations::isPlain(), name == "plain");
        EXPECT_EQ(SpanOperations::variants(), names);
    }
    EXPECT_FALSE(SpanOperations::choose("no such processor"));
    EXPECT_TRUE(SpanOperations::choose(""));
    EXPECT_FALSE(SpanOperations::isPlain());
}

TEST_F(SpanOperationsTest, OffsetsOfEveryLength) {
    zoltest::Random random(21);
    forEachVariant([&] {
        for (int count = 0; count <= 70; ++count) {
            const SpanPositions positions{static_cast<std::uint32_t>(random.integer(0, 1 << 29)),
                                          static_cast<std::uint32_t>(random.integer(0, 1 << 26)),
                                          static_cast<std::uint32_t>(random.integer(-100000, 100000)),
                                          static_cast<std::uint32_t>(random.integer(-100000, 100000)),
                                          random.integer(1, 4000)};
            std::vector<std::int32_t> out(100, -1);
            SpanOperations::chosen().offsets(positions, count, out.data() + 3);
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
TEST_F(SpanOperationsTest, BitsOfPieces) {
    constexpr int columns = zolcs::SpanBits::pieceColumns;
    zoltest::Random random(24);
    std::vector<unsigned char> words(1 << 16);
    for (unsigned char& byte : words) byte = static_cast<unsigned char>(random.bits());
    const auto count = static_cast<std::uint32_t>(words.size() * 8);
    int roundedUp = 0;
    forEachVariant([&] {
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
            const SpanPositions positions{start(20000), start(300), step(), step(), pitch};
            const zolcs::SpanBits bits{words.data(), random.integer(-3000, 3000), count};
            const std::uint64_t pieces = random.bits() & random.bits();
            const bool rounded = random.chance(0.7);
            const SpanOperations& operations = SpanOperations::chosen();
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

TEST_F(SpanOperationsTest, LoadsOfEveryLength) {
    zoltest::Random random(22);
    std::vector<std::uint32_t> wide(500);
    std::vector<std::uint16_t> narrow(500);
    std::vector<std::uint32_t> table(65536);
    for (std::uint32_t& value : wide) value = static_cast<std::uint32_t>(random.bits());
    for (std::uint16_t& value : narrow) value = static_cast<std::uint16_t>(random.bits());
    for (std::uint32_t& value : table) value = static_cast<std::uint32_t>(random.bits());
    forEachVariant([&] {
        for (int count = 0; count <= 70; ++count) {
            for (std::size_t shift = 0; shift < 4; ++shift) {
                std::vector<std::int32_t> offsets(static_cast<std::size_t>(count));
                for (std::int32_t& offset : offsets) offset = random.integer(0, 499);
                std::vector<std::uint32_t> copied(90, sentinel);
                std::vector<std::uint32_t> lookedUp(90, sentinel);
                zolcs::copySpan(wide.data(), offsets.data(), count, copied.data() + shift);
                zolcs::lookUpSpan(narrow.data(), offsets.data(), count, table.data(), lookedUp.data() + shift);
                for (std::size_t i = 0; i < 90; ++i) {
                    const bool inside = i >= shift && i < shift + offsets.size();
                    const auto from = inside ? static_cast<std::size_t>(offsets[i - shift]) : 0;
                    ASSERT_EQ(copied[i], inside ? wide[from] : sentinel);
                    ASSERT_EQ(lookedUp[i], inside ? table[narrow[from]] : sentinel);
                }
            }
        }
    });
}

template <typename Pixel>
void expectTransposed(int lines, int columns, int tilePitch, int outPitch, zoltest::Random& random) {
    std::vector<Pixel> tile(static_cast<std::size_t>(lines * tilePitch));
    for (Pixel& value : tile) value = static_cast<Pixel>(random.bits());
    std::vector<Pixel> out(static_cast<std::size_t>(columns * outPitch + 1), static_cast<Pixel>(sentinel));
    std::vector<Pixel> expected = out;
    for (int y = 0; y < columns; ++y) {
        for (int x = 0; x < lines; ++x) {
            expected[static_cast<std::size_t>(y * outPitch + x)] = tile[static_cast<std::size_t>(x * tilePitch + y)];
        }
    }
    zolcs::transposeTile(tile.data(), TileShape{tilePitch, lines, columns, outPitch}, out.data());
    ASSERT_EQ(out, expected) << lines << " x " << columns;
}

TEST_F(SpanOperationsTest, TilesOfEveryShapeAreTurned) {
    zoltest::Random random(23);
    forEachVariant([&] {
        for (int lines = 0; lines <= 33; ++lines) {
            for (int columns = 0; columns <= 20; ++columns) {
                const int tilePitch = columns + random.integer(0, 3);
                const int outPitch = lines + random.integer(0, 3);
                expectTransposed<std::uint32_t>(lines, columns, tilePitch, outPitch, random);
            }
        }
        expectTransposed<std::uint8_t>(7, 9, 10, 8, random);
        expectTransposed<std::uint16_t>(9, 7, 10, 12, random);
        expectTransposed<std::uint64_t>(8, 8, 8, 8, random);
    });
}

}  // namespace
