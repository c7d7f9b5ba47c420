#include "zolcs/resample/bitplane.h"

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

/// Lines of all directions and steps over planes that are nearly blank: a piece without a bit in the summary has none,
/// and the summary is worth having.
TEST(BitPlaneTest, ASummaryNeverMissesABit) {
    zoltest::Random random(12);
    int blank = 0;
    int told = 0;
    for (int i = 0; i < 600; ++i) {
        const bool large = random.chance(0.1);
        const int columns = random.integer(1, large ? 4000 : 300);
        const int rows = random.integer(1, large ? 60 : 300);
        const int left = random.integer(-50, 50);
        const int top = random.integer(-50, 50);
        const auto data = bytesFor(columns, rows);
        for (int b = random.integer(0, 3); b > 0; --b) {
            const int row = random.integer(0, rows - 1);
            const int first = random.integer(0, columns - 1);
            const int last = std::min(first + random.integer(0, 9), columns - 1);
            for (int x = first; x <= last; ++x) setBit(data.get(), row * columns + x);
        }
        const BitPlane plane(data.get(), left, top, columns, rows);
        const double reach = random.chance(0.2) ? 40.0 : 2.0;
        const auto step = [&] { return static_cast<zolcs::Fixed16>(random.real(-reach, reach) * 65536.0); };
        zolcs::SourceLine line{0, 0, step(), step()};
        const BitSummary summary = random.chance(0.95) ? BitSummary(plane, line.du, line.dv) : BitSummary();
        for (int q = 0; q < 10; ++q) {
            // Through a point of the plane.
            const int through = random.integer(0, 1200);
            line.u = (left + random.integer(0, columns - 1)) * zolcs::fixed16One + random.integer(0, 65535) -
                     through * line.du;
            line.v =
                (top + random.integer(0, rows - 1)) * zolcs::fixed16One + random.integer(0, 65535) - through * line.dv;
            const auto isOn = [&](int x) {
                const auto column = zolcs::pixelOf(line.uAt(x)) - left;
                const auto row = zolcs::pixelOf(line.vAt(x)) - top;
                return column >= -1 && column <= columns && row >= -1 && row <= rows;
            };
            int begin = through;
            int end = through + 1;
            while (isOn(begin - 1)) --begin;
            while (isOn(end)) ++end;
            for (; begin < end; begin += BitSummary::mostPieces * BitSummary::pieceColumns) {
                const int pieces = std::min((end - begin + BitSummary::pieceColumns - 1) / BitSummary::pieceColumns,
                                            BitSummary::mostPieces);
                const std::uint64_t maySet = summary.mayBeSet(line, begin, pieces);
                if (pieces < 64) {
                    ASSERT_EQ(maySet >> pieces, 0U);
                }
                for (int p = 0; p < pieces; ++p) {
                    bool set = false;
                    for (int k = 0; k < BitSummary::pieceColumns; ++k) {
                        const int x = begin + p * BitSummary::pieceColumns + k;
                        set = set || plane.isSet(zolcs::pixelOf(line.uAt(x)), zolcs::pixelOf(line.vAt(x))) ||
                              plane.isSet(zolcs::roundedPixel(line.uAt(x)), zolcs::roundedPixel(line.vAt(x)));
                    }
                    if (set) {
                        ASSERT_NE(maySet >> p & 1, 0U);
                    } else {
                        ++blank;
                        if ((maySet >> p & 1) == 0) ++told;
                    }
                }
            }
        }
    }
    EXPECT_GT(blank, 10000);
    EXPECT_GT(told, blank / 2);
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
