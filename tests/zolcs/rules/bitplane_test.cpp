#include "zolcs/rules/bitplane.h"

#include "support/test_data.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace {

using zolcs::BitPlane;
using zolcs::BitSummary;

/// Exactly as many bytes as the plane needs, so that a sanitizer sees every read beyond them.
std::unique_ptr<unsigned char[]> bytesFor(int columns, int rows) {
    const auto size = static_cast<std::size_t>((columns * rows + 7) / 8);
    return std::make_unique<unsigned char[]>(size);
}

void setBit(unsigned char* data, int k) { data[k / 8] = static_cast<unsigned char>(data[k / 8] | 1 << k % 8); }

bool bitAt(const unsigned char* data, int columns, int column, int row) {
    const int k = row * columns + column;
    return (data[k / 8] >> (k % 8) & 1) != 0;
}

TEST(BitPlaneTest, BitsAreFoundLowestFirstWithoutRowPadding) {
    zoltest::Random random(11);
    for (int i = 0; i < 300; ++i) {
        const int columns = random.integer(1, 70);
        const int rows = random.integer(1, 20);
        const int left = random.integer(-30, 30);
        const int top = random.integer(-30, 30);
        const auto data = bytesFor(columns, rows);
        for (int k = 0; k < columns * rows; ++k) {
            if (random.chance(0.4)) setBit(data.get(), k);
        }
        const BitPlane plane(data.get(), left, top, columns, rows);
        for (int y = -2; y < rows + 2; ++y) {
            for (int x = -2; x < columns + 2; ++x) {
                const bool within = x >= 0 && y >= 0 && x < columns && y < rows;
                ASSERT_EQ(plane.isSet(left + x, top + y), within && bitAt(data.get(), columns, x, y));
            }
        }
    }
}

/// Of a plane: boxes and short runs of set bits, or of clear ones.
void fillAtRandom(zoltest::Random& random, unsigned char* data, int columns, int rows) {
    const bool mostlySet = random.chance(0.4);
    for (int b = random.integer(0, 3); b > 0; --b) {
        const int top = random.integer(0, rows - 1);
        const int left = random.integer(0, columns - 1);
        const int bottom = std::min(top + (random.chance(0.5) ? 0 : random.integer(0, 20)), rows - 1);
        const int right = std::min(left + random.integer(0, 9), columns - 1);
        for (int y = top; y <= bottom; ++y) {
            for (int x = left; x <= right; ++x) setBit(data, y * columns + x);
        }
    }
    if (mostlySet) {
        const int bytes = (columns * rows + 7) / 8;
        for (int k = 0; k < bytes; ++k) data[k] = static_cast<unsigned char>(~data[k]);
    }
}

/// What a summary says and what is so, for pieces that may show both.
struct Told {
    int blank = 0;  ///< pieces that show no set bit
    int blankTold = 0;
    int full = 0;  ///< pieces that show no clear bit
    int fullTold = 0;
};

/// Holds a summary to every piece of a view that has a column on the plane or a pixel beside it.
void expectTruth(const BitPlane& plane, const zolcs::Stepping& stepping, const BitSummary& summary, Told& told) {
    const auto column = [](zolcs::Fixed16 u) { return zolcs::pixelOf(u); };
    for (int y = 0; y < stepping.height; ++y) {
        const zolcs::DisplayRow row = stepping.row(y);
        const auto isOn = [&](int x) {
            return column(row.uAt(x)) >= plane.left() - 1 && column(row.uAt(x)) <= plane.right() + 1 &&
                   column(row.vAt(x)) >= plane.top() - 1 && column(row.vAt(x)) <= plane.bottom() + 1;
        };
        for (int begin = 0; begin < stepping.width; begin += BitSummary::pieceColumns) {
            bool on = false;
            bool set = false;
            bool clear = false;
            for (int x = begin; x < begin + BitSummary::pieceColumns; ++x) {
                on = on || isOn(x);
                const bool exact = plane.isSet(zolcs::pixelOf(row.uAt(x)), zolcs::pixelOf(row.vAt(x)));
                const bool rounded = plane.isSet(zolcs::roundedPixel(row.uAt(x)), zolcs::roundedPixel(row.vAt(x)));
                set = set || exact || rounded;
                clear = clear || !exact || !rounded;
            }
            if (!on) continue;
            const int block = begin / BitSummary::blockColumns;
            const int piece = begin % BitSummary::blockColumns / BitSummary::pieceColumns;
            const bool maySet = (summary.mayBeSet(row, block) >> piece & 1) != 0;
            const bool mayClear = (summary.mayBeClear(row, block) >> piece & 1) != 0;
            ASSERT_TRUE(maySet || !set) << "row " << y << ", column " << begin;
            ASSERT_TRUE(mayClear || !clear) << "row " << y << ", column " << begin;
            told.blank += set ? 0 : 1;
            told.blankTold += maySet ? 0 : 1;
            told.full += clear ? 0 : 1;
            told.fullTold += mayClear ? 0 : 1;
        }
    }
}

/// Views of all directions and steps over planes that are nearly blank or nearly full: what the summary denies is not
/// there, and the summary is worth having.
TEST(BitPlaneTest, ASummaryNeverMissesABit) {
    zoltest::Random random(12);
    Told told;
    for (int i = 0; i < 400; ++i) {
        const bool large = random.chance(0.1);
        const int columns = random.integer(1, large ? 4000 : 300);
        const int rows = random.integer(1, large ? 60 : 300);
        const auto data = bytesFor(columns, rows);
        fillAtRandom(random, data.get(), columns, rows);
        const BitPlane plane(data.get(), random.integer(-50, 50), random.integer(-50, 50), columns, rows);
        const double reach = random.chance(0.2) ? 40.0 : 2.0;
        const auto step = [&] { return static_cast<zolcs::Fixed16>(random.real(-reach, reach) * 65536.0); };
        zolcs::Stepping stepping;
        stepping.stepXu = step();
        stepping.stepXv = step();
        stepping.stepYu = step();
        stepping.stepYv = step();
        stepping.width = random.integer(1, large ? 1500 : 200);
        stepping.height = random.integer(1, 40);
        // A pixel of the plane somewhere on the display.
        const int x = random.integer(0, stepping.width - 1);
        const int y = random.integer(0, stepping.height - 1);
        const auto start = [&](std::int64_t first, int count, zolcs::Fixed16 alongX, zolcs::Fixed16 alongY) {
            return (first + random.integer(0, count - 1)) * zolcs::fixed16One + random.integer(0, 65535) - x * alongX -
                   y * alongY;
        };
        stepping.startU = start(plane.left(), columns, stepping.stepXu, stepping.stepYu);
        stepping.startV = start(plane.top(), rows, stepping.stepXv, stepping.stepYv);
        ASSERT_NO_FATAL_FAILURE(expectTruth(plane, stepping, BitSummary(plane, stepping), told));
    }
    EXPECT_GT(told.blank, 10000);
    EXPECT_GT(told.blankTold, told.blank / 2);
    EXPECT_GT(told.full, 3000);
    EXPECT_GT(told.fullTold, told.full / 2);
}

/// Of lines that are not the view's own, of planes that leave bits out of account, and without a plane, nothing is
/// told.
TEST(BitPlaneTest, ASummaryTellsNothingOfOtherLines) {
    constexpr std::uint64_t everything = ~std::uint64_t{0};
    const auto data = bytesFor(64, 64);
    zolcs::Stepping stepping;
    stepping.stepXu = 60000;
    stepping.stepXv = 20000;
    stepping.stepYu = -20000;
    stepping.stepYv = 60000;
    stepping.width = 64;
    stepping.height = 64;
    const BitSummary summary(BitPlane(data.get(), 0, 0, 64, 64), stepping);
    EXPECT_EQ(summary.mayBeSet(stepping.row(20), 0) & 0xFU, 0U);

    zolcs::DisplayRow unnumbered = stepping.row(20);
    unnumbered.y = -1;
    zolcs::DisplayRow moved = stepping.row(20);
    moved.u += 1;
    for (const zolcs::DisplayRow& row : {unnumbered, moved}) {
        EXPECT_EQ(summary.mayBeSet(row, 0), everything);
        EXPECT_EQ(summary.mayBeClear(row, 0), everything);
    }
    const BitSummary partial(BitPlane(data.get(), 0, 0, 64, 64, 1), stepping);
    EXPECT_EQ(partial.mayBeSet(stepping.row(20), 0), everything);
    EXPECT_EQ(BitSummary().mayBeSet(stepping.row(20), 0), everything);
}

TEST(BitPlaneTest, RowsAreCopiedWithoutTheBitsOfTheNext) {
    zoltest::Random random(13);
    for (int i = 0; i < 200; ++i) {
        const int columns = random.integer(1, 200);
        const int rows = random.integer(1, 6);
        const auto data = bytesFor(columns, rows);
        for (int k = 0; k < columns * rows; ++k) {
            if (random.chance(0.5)) setBit(data.get(), k);
        }
        const BitPlane plane(data.get(), 0, 0, columns, rows);
        std::vector<std::uint64_t> words(static_cast<std::size_t>((columns + 63) / 64));
        for (int y = 0; y < rows; ++y) {
            plane.copyRow(y, words.data());
            for (int x = 0; x < static_cast<int>(words.size()) * 64; ++x) {
                const bool set = (words[static_cast<std::size_t>(x / 64)] >> (x % 64) & 1) != 0;
                ASSERT_EQ(set, x < columns && bitAt(data.get(), columns, x, y));
            }
        }
    }
}

TEST(BitPlaneTest, BitsFromAnywhere) {
    zoltest::Random random(14);
    const auto data = bytesFor(31, 7);
    for (int k = 0; k < 31 * 7; ++k) {
        if (random.chance(0.5)) setBit(data.get(), k);
    }
    const BitPlane plane(data.get(), 0, 0, 31, 7);
    for (int index = 0; index < 31 * 7; ++index) {
        for (int i = 0; i < 64; ++i) {
            const int k = index + i;
            const bool expected = k < 31 * 7 && bitAt(data.get(), 31, k % 31, k / 31);
            ASSERT_EQ((plane.bitsFrom(index) >> i & 1) != 0, expected) << index << ' ' << i;
        }
    }
}

TEST(BitPlaneTest, RowsThatLieInWholeWords) {
    const auto data = bytesFor(10, 20);
    EXPECT_EQ(BitPlane(data.get(), 0, 3, 10, 20).lastRowInWords(), 3 + 18);  // 25 bytes: 6 words, 19 rows
    EXPECT_EQ(BitPlane(data.get(), 0, 3, 8, 4).lastRowInWords(), 3 + 3);     // a word
    EXPECT_EQ(BitPlane(data.get(), 0, 3, 8, 3).lastRowInWords(), 3 - 1);     // 3 bytes
    EXPECT_EQ(BitPlane(data.get(), 0, 3, 8, 4, 1).lastRowInWords(), 3 - 1);  // bits that do not count
    EXPECT_EQ(BitPlane().lastRowInWords(), -1);
}

TEST(BitPlaneTest, RunsOfARowAreThoseOfItsBits) {
    zoltest::Random random(13);
    for (int i = 0; i < 2000; ++i) {
        const int columns = random.integer(1, 300);
        const int rows = random.integer(1, 4);
        const int left = random.integer(-5, 5);
        const int firstIndex = random.chance(0.8) ? 0 : random.integer(0, 200);
        const auto data = bytesFor(columns, rows);
        const double density = random.chance(0.5) ? random.real(0.0, 0.1) : random.real(0.9, 1.0);
        for (int k = 0; k < columns * rows; ++k) {
            if (random.chance(density)) setBit(data.get(), k);
        }
        const BitPlane plane(data.get(), left, 7, columns, rows, firstIndex);
        const int y = random.integer(6, 7 + rows);
        const int from = random.integer(-10, columns + 10);
        const int to = random.integer(-10, columns + 10);
        std::vector<std::pair<std::int64_t, std::int64_t>> expected;
        for (int x = from; x <= to; ++x) {
            if (!plane.isSet(x, y)) continue;
            if (!expected.empty() && expected.back().second == x - 1) {
                expected.back().second = x;
            } else {
                expected.emplace_back(x, x);
            }
        }
        std::vector<std::pair<std::int64_t, std::int64_t>> runs;
        plane.visitRuns(y, from, to, [&](std::int64_t first, std::int64_t last) { runs.emplace_back(first, last); });
        ASSERT_EQ(runs, expected) << columns << " x " << rows << " from " << from << " to " << to;
    }
}

TEST(BitPlaneTest, BlankPlanesOfEverySize) {
    for (int columns = 1; columns < 150; ++columns) {
        for (const int rows : {1, 2, 37}) {
            const auto data = bytesFor(columns, rows);
            EXPECT_TRUE(BitPlane(data.get(), 0, 0, columns, rows).isBlank());
            setBit(data.get(), columns * rows - 1);
            EXPECT_FALSE(BitPlane(data.get(), 0, 0, columns, rows).isBlank());
        }
    }
}

TEST(BitPlaneTest, BitsBelowTheFirstIndexCountAsNotSet) {
    unsigned char data[] = {0xFF, 0xFF};
    const BitPlane plane(data, 0, 0, 4, 4, 1);
    EXPECT_FALSE(plane.isSet(0, 0));
    EXPECT_TRUE(plane.isSet(1, 0));
    std::vector<std::pair<std::int64_t, std::int64_t>> runs;
    plane.visitRuns(0, 0, 3, [&](std::int64_t first, std::int64_t last) { runs.emplace_back(first, last); });
    EXPECT_EQ(runs, (std::vector<std::pair<std::int64_t, std::int64_t>>{{1, 3}}));
}

TEST(BitPlaneTest, APlaneWithoutDataIsBlank) {
    const BitPlane plane(nullptr, 0, 0, 100, 100);
    EXPECT_TRUE(plane.isBlank());
    EXPECT_FALSE(plane.isSet(3, 3));
    unsigned char data[] = {0xFF};
    EXPECT_TRUE(BitPlane(data, 0, 0, 0, 8).isBlank());
    EXPECT_TRUE(BitPlane(data, 0, 0, 8, 0).isBlank());
    EXPECT_FALSE(BitPlane(data, 0, 0, 8, 1).isBlank());
    EXPECT_TRUE(BitPlane().isBlank());
}

TEST(BitPlaneTest, PositionsFarAwayAreNotSet) {
    unsigned char data[] = {0xFF};
    const BitPlane plane(data, -2147483649LL, -2147483649LL, 8, 1);
    EXPECT_TRUE(plane.isSet(-2147483649LL, -2147483649LL));
    EXPECT_FALSE(plane.isSet(0, 0));
}

}  // namespace
