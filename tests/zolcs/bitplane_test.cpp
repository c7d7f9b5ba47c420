#include "zolcs/resample/bitplane.h"

#include "support/test_data.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace {

using zolcs::BitPlane;

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

TEST(BitPlaneTest, ContentOfABoxIsNeverWrong) {
    zoltest::Random random(12);
    int none = 0;
    int all = 0;
    for (int i = 0; i < 400; ++i) {
        const int columns = random.integer(1, 300);
        const int rows = random.integer(1, 200);
        const int left = random.integer(-5, 5);
        const int top = random.integer(-5, 5);
        const auto data = bytesFor(columns, rows);
        const bool invert = random.chance(0.5);
        const int boxes = random.integer(0, 2);
        for (int b = 0; b < boxes; ++b) {
            const int x0 = random.integer(0, columns - 1);
            const int x1 = random.integer(x0, columns - 1);
            const int y0 = random.integer(0, rows - 1);
            const int y1 = random.integer(y0, rows - 1);
            for (int y = y0; y <= y1; ++y) {
                for (int x = x0; x <= x1; ++x) {
                    setBit(data.get(), y * columns + x);
                }
            }
        }
        if (invert) {
            std::for_each_n(data.get(), (columns * rows + 7) / 8, [](unsigned char& byte) { byte ^= 0xFF; });
        }
        const int firstIndex = random.integer(0, 3);
        BitPlane plane(data.get(), left, top, columns, rows, firstIndex);
        if (i % 4 != 0) plane.summarise();
        for (int q = 0; q < 30; ++q) {
            const int x0 = random.integer(-10, columns + 10);
            const int x1 = random.integer(x0, columns + 10);
            const int y0 = random.integer(-10, rows + 10);
            const int y1 = random.integer(y0, rows + 10);
            bool some = false;
            bool every = true;
            for (int y = y0; y <= y1; ++y) {
                for (int x = x0; x <= x1; ++x) {
                    const bool set = plane.isSet(x, y);
                    some = some || set;
                    every = every && set;
                }
            }
            const BitPlane::Content content = plane.contentOf(x0, y0, x1, y1);
            if (content == BitPlane::Content::None) {
                ++none;
                ASSERT_FALSE(some);
            } else if (content == BitPlane::Content::All) {
                ++all;
                ASSERT_TRUE(every);
            }
        }
    }
    EXPECT_GT(none, 500);
    EXPECT_GT(all, 100);
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
    BitPlane plane(data, 0, 0, 4, 4, 1);
    plane.summarise();
    EXPECT_FALSE(plane.isSet(0, 0));
    EXPECT_TRUE(plane.isSet(1, 0));
    EXPECT_EQ(plane.contentOf(0, 0, 3, 3), BitPlane::Content::Mixed);
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
    EXPECT_EQ(plane.contentOf(0, 0, 100, 100), BitPlane::Content::None);
}

}  // namespace
