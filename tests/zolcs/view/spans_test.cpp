#include "zolcs/view/spans.h"

#include "support/test_data.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using zolcs::ColumnRange;
using zolcs::common;
using zolcs::DisplayRow;
using zolcs::Fixed16;
using zolcs::fixed16One;
using zolcs::spanOf;

/// Walks a row pixel by pixel and asks each position by itself.
ColumnRange walkedSpan(const DisplayRow& row, Fixed16 limitU, Fixed16 limitV, int width) {
    const auto inside = [](Fixed16 position, Fixed16 step, Fixed16 limit) {
        return step >= 0 ? 0 < position && position <= limit - 1 : 0 <= position && position <= limit - 2;
    };
    ColumnRange span;
    Fixed16 u = row.u;
    Fixed16 v = row.v;
    for (int x = 0; x < width; ++x, u += row.du, v += row.dv) {
        if (!inside(u, row.du, limitU) || !inside(v, row.dv, limitV)) continue;
        if (span.empty()) span.begin = x;
        span.end = x + 1;
    }
    return span;
}

Fixed16 randomPosition(zoltest::Random& random, Fixed16 limit) {
    switch (random.integer(0, 4)) {
        case 0:
            return random.integer(-3, 3);
        case 1:
            return limit + random.integer(-3, 3);
        case 2:
            return static_cast<Fixed16>(random.real(-3.0, 4.0) * static_cast<double>(limit));
        case 3:
            return static_cast<Fixed16>(random.real(-400.0, 400.0) * static_cast<double>(limit));
        default:
            return static_cast<Fixed16>(random.real(0.0, 1.0) * static_cast<double>(limit));
    }
}

Fixed16 randomStep(zoltest::Random& random) {
    switch (random.integer(0, 5)) {
        case 0:
            return 0;
        case 1:
            return random.integer(-2, 2);
        case 2:
            return random.integer(-1, 1) * fixed16One;
        case 3:
            return static_cast<Fixed16>(random.real(-5.0e6, 5.0e6) * 65536.0);
        default:
            return static_cast<Fixed16>(random.real(-4.0, 4.0) * 65536.0);
    }
}

TEST(SpansTest, SpanEqualsTheWalkPixelByPixel) {
    zoltest::Random random(1);
    int filled = 0;
    for (int i = 0; i < 40000; ++i) {
        const Fixed16 limitU = random.integer(1, 60) * fixed16One;
        const Fixed16 limitV = random.integer(1, 60) * fixed16One;
        const int width = random.integer(0, 90);
        const DisplayRow row{randomPosition(random, limitU), randomPosition(random, limitV), randomStep(random),
                             randomStep(random)};
        const ColumnRange span = spanOf(row, limitU, limitV, width);
        const ColumnRange walked = walkedSpan(row, limitU, limitV, width);
        if (walked.empty()) {
            EXPECT_TRUE(span.empty());
        } else {
            ++filled;
            EXPECT_EQ(span, walked);
        }
        EXPECT_GE(span.begin, 0);
        EXPECT_GE(span.end, span.begin);
        EXPECT_LE(span.end, width);
        if (HasFailure()) {
            FAIL() << "row " << row.u << ' ' << row.v << ' ' << row.du << ' ' << row.dv << " limits " << limitU << ' '
                   << limitV << " width " << width << " seed " << random.seed();
        }
    }
    EXPECT_GT(filled, 4000);
}

TEST(SpansTest, NothingInASpanLiesBesideTheSource) {
    zoltest::Random random(2);
    for (int i = 0; i < 20000; ++i) {
        const Fixed16 limitU = random.integer(1, 70000) * fixed16One;
        const Fixed16 limitV = random.integer(1, 70000) * fixed16One;
        const DisplayRow row{randomPosition(random, limitU), randomPosition(random, limitV), randomStep(random),
                             randomStep(random)};
        const ColumnRange span = spanOf(row, limitU, limitV, 5000);
        if (span.empty()) continue;
        for (const int x : {span.begin, span.end - 1}) {
            EXPECT_GE(row.uAt(x), 0);
            EXPECT_LT(row.uAt(x), limitU);
            EXPECT_GE(row.vAt(x), 0);
            EXPECT_LT(row.vAt(x), limitV);
        }
    }
}

TEST(SpansTest, ACoordinateOfZeroIsOutsideForRisingStepsOnly) {
    const Fixed16 limit = 4 * fixed16One;
    const DisplayRow rising{0, fixed16One, fixed16One, 0};
    EXPECT_EQ(spanOf(rising, limit, limit, 8), (ColumnRange{1, 4}));
    const DisplayRow falling{3 * fixed16One, fixed16One, -fixed16One, 0};
    EXPECT_EQ(spanOf(falling, limit, limit, 8), (ColumnRange{0, 4}));
}

TEST(SpansTest, TheLastCoordinateIsInsideForRisingStepsOnly) {
    const Fixed16 limit = 4 * fixed16One;
    EXPECT_EQ(spanOf({limit - 1, fixed16One, fixed16One, 0}, limit, limit, 8), (ColumnRange{0, 1}));
    EXPECT_TRUE(spanOf({limit, fixed16One, fixed16One, 0}, limit, limit, 8).empty());
    EXPECT_TRUE(spanOf({limit - 1, fixed16One, -5 * fixed16One, 0}, limit, limit, 8).empty());
    EXPECT_EQ(spanOf({limit - 2, fixed16One, -5 * fixed16One, 0}, limit, limit, 8), (ColumnRange{0, 1}));
}

TEST(SpansTest, AConstantCoordinateAdmitsAMillionColumns) {
    const Fixed16 limit = 4 * fixed16One;
    const DisplayRow constant{fixed16One, fixed16One, 0, 0};
    EXPECT_EQ(spanOf(constant, limit, limit, 700), (ColumnRange{0, 700}));
    EXPECT_EQ(spanOf(constant, limit, limit, 1500000), (ColumnRange{0, 1000001}));
    EXPECT_TRUE(spanOf({0, fixed16One, 0, 0}, limit, limit, 1500000).empty());
    EXPECT_TRUE(spanOf({limit, fixed16One, 0, 0}, limit, limit, 1500000).empty());
}

TEST(SpansTest, SourcesBesideTheDisplayGiveEmptySpansWithinIt) {
    const Fixed16 limit = 4 * fixed16One;
    for (const Fixed16 start : {-1000000 * fixed16One, 1000000 * fixed16One}) {
        for (const Fixed16 step : {fixed16One, -fixed16One, Fixed16{1}, Fixed16{-1}}) {
            const ColumnRange span = spanOf({start, fixed16One, step, 0}, limit, limit, 100);
            EXPECT_TRUE(span.empty());
            EXPECT_LE(span.end, 100);
            EXPECT_GE(span.begin, 0);
        }
    }
}

TEST(SpansTest, ColumnsBetweenEqualsTheWalk) {
    zoltest::Random random(3);
    for (int i = 0; i < 20000; ++i) {
        const Fixed16 start = random.integer(-300, 300);
        const Fixed16 step = random.integer(-20, 20);
        const Fixed16 low = random.integer(-300, 300);
        const Fixed16 high = random.integer(-300, 300);
        const int begin = random.integer(-10, 40);
        const ColumnRange within{begin, begin + random.integer(0, 50)};
        const ColumnRange range = zolcs::columnsBetween(start, step, low, high, within);
        for (int x = within.begin; x < within.end; ++x) {
            const Fixed16 position = start + x * step;
            EXPECT_EQ(low <= position && position <= high, range.begin <= x && x < range.end);
        }
        if (HasFailure()) FAIL() << start << ' ' << step << ' ' << low << ' ' << high << ' ' << within.begin;
    }
}

TEST(SpansTest, CommonColumns) {
    EXPECT_EQ(common({2, 9}, {5, 12}), (ColumnRange{5, 9}));
    EXPECT_EQ(common({2, 9}, {3, 4}), (ColumnRange{3, 4}));
    EXPECT_TRUE(common({2, 5}, {5, 9}).empty());
    EXPECT_TRUE(common({7, 9}, {2, 5}).empty());
    EXPECT_EQ((ColumnRange{-3, 9}).size(), 12);
}

}  // namespace
