#include "zolcs/view/stepping.h"

#include "support/test_data.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

using zolcs::ColumnRange;
using zolcs::Fixed16;
using zolcs::fixed16One;
using zolcs::makeStepping;
using zolcs::SourceLine;
using zolcs::Span;
using zolcs::spanOf;
using zolcs::Stepping;

/// Walks a line pixel by pixel and asks each position by itself.
Span walkedSpan(const SourceLine& line, Fixed16 limitU, Fixed16 limitV, int width) {
    const auto inside = [](Fixed16 position, Fixed16 step, Fixed16 limit) {
        return step >= 0 ? 0 < position && position <= limit - 1 : 0 <= position && position <= limit - 2;
    };
    Span span;
    bool found = false;
    Fixed16 u = line.u;
    Fixed16 v = line.v;
    for (int x = 0; x < width; ++x, u += line.du, v += line.dv) {
        if (!inside(u, line.du, limitU) || !inside(v, line.dv, limitV)) continue;
        if (!found) span.first = x - 1;
        span.last = x;
        found = true;
    }
    return found ? span : Span{};
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

TEST(SteppingTest, SpanEqualsTheWalkPixelByPixel) {
    zoltest::Random random(1);
    int filled = 0;
    for (int i = 0; i < 40000; ++i) {
        const Fixed16 limitU = random.integer(1, 60) * fixed16One;
        const Fixed16 limitV = random.integer(1, 60) * fixed16One;
        const int width = random.integer(0, 90);
        const SourceLine line{randomPosition(random, limitU), randomPosition(random, limitV), randomStep(random),
                              randomStep(random)};
        const Span span = spanOf(line, limitU, limitV, width);
        const Span walked = walkedSpan(line, limitU, limitV, width);
        if (walked == Span{}) {
            EXPECT_TRUE(span.empty());
        } else {
            ++filled;
            EXPECT_EQ(span.first, walked.first);
            EXPECT_EQ(span.last, walked.last);
        }
        EXPECT_GE(span.first, -1);
        EXPECT_GE(span.last, -1);
        EXPECT_LE(span.first, std::max(width - 1, -1));
        EXPECT_LE(span.last, std::max(width - 1, -1));
        if (HasFailure()) {
            FAIL() << "line " << line.u << ' ' << line.v << ' ' << line.du << ' ' << line.dv << " limits " << limitU
                   << ' ' << limitV << " width " << width << " seed " << random.seed();
        }
    }
    EXPECT_GT(filled, 4000);
}

TEST(SteppingTest, NothingInASpanLiesBesideTheSource) {
    zoltest::Random random(2);
    for (int i = 0; i < 20000; ++i) {
        const Fixed16 limitU = random.integer(1, 70000) * fixed16One;
        const Fixed16 limitV = random.integer(1, 70000) * fixed16One;
        const SourceLine line{randomPosition(random, limitU), randomPosition(random, limitV), randomStep(random),
                              randomStep(random)};
        const Span span = spanOf(line, limitU, limitV, 5000);
        if (span.empty()) continue;
        for (const int x : {span.begin(), span.last}) {
            EXPECT_GE(line.uAt(x), 0);
            EXPECT_LT(line.uAt(x), limitU);
            EXPECT_GE(line.vAt(x), 0);
            EXPECT_LT(line.vAt(x), limitV);
        }
    }
}

TEST(SteppingTest, ACoordinateOfZeroIsOutsideForRisingStepsOnly) {
    const Fixed16 limit = 4 * fixed16One;
    const SourceLine rising{0, fixed16One, fixed16One, 0};
    EXPECT_EQ(spanOf(rising, limit, limit, 8), (Span{0, 3}));
    const SourceLine falling{3 * fixed16One, fixed16One, -fixed16One, 0};
    EXPECT_EQ(spanOf(falling, limit, limit, 8), (Span{-1, 3}));
}

TEST(SteppingTest, TheLastCoordinateIsInsideForRisingStepsOnly) {
    const Fixed16 limit = 4 * fixed16One;
    EXPECT_EQ(spanOf({limit - 1, fixed16One, fixed16One, 0}, limit, limit, 8), (Span{-1, 0}));
    EXPECT_TRUE(spanOf({limit, fixed16One, fixed16One, 0}, limit, limit, 8).empty());
    EXPECT_TRUE(spanOf({limit - 1, fixed16One, -5 * fixed16One, 0}, limit, limit, 8).empty());
    EXPECT_EQ(spanOf({limit - 2, fixed16One, -5 * fixed16One, 0}, limit, limit, 8), (Span{-1, 0}));
}

TEST(SteppingTest, AConstantCoordinateAdmitsAMillionColumns) {
    const Fixed16 limit = 4 * fixed16One;
    const SourceLine constant{fixed16One, fixed16One, 0, 0};
    EXPECT_EQ(spanOf(constant, limit, limit, 700), (Span{-1, 699}));
    EXPECT_EQ(spanOf(constant, limit, limit, 1500000), (Span{-1, 1000000}));
    EXPECT_TRUE(spanOf({0, fixed16One, 0, 0}, limit, limit, 1500000).empty());
    EXPECT_TRUE(spanOf({limit, fixed16One, 0, 0}, limit, limit, 1500000).empty());
}

TEST(SteppingTest, SourcesBesideTheDisplayGiveEmptySpansWithinIt) {
    const Fixed16 limit = 4 * fixed16One;
    for (const Fixed16 start : {-1000000 * fixed16One, 1000000 * fixed16One}) {
        for (const Fixed16 step : {fixed16One, -fixed16One, Fixed16{1}, Fixed16{-1}}) {
            const Span span = spanOf({start, fixed16One, step, 0}, limit, limit, 100);
            EXPECT_TRUE(span.empty());
            EXPECT_LE(span.end(), 100);
            EXPECT_GE(span.begin(), 0);
        }
    }
}

TEST(SteppingTest, RowsStartAtTheCentreOfTheFirstPixelHalvedTowardZero) {
    const Stepping st =
        makeStepping({1.0 / 65536.0, -3.0 / 65536.0, 2.0 / 65536.0, -4.0 / 65536.0, 5.0, 7.0}, 10, 20, 3, 4);
    EXPECT_EQ(st.stepXu, 1);
    EXPECT_EQ(st.stepXv, -3);
    EXPECT_EQ(st.stepYu, 2);
    EXPECT_EQ(st.stepYv, -4);
    EXPECT_EQ(st.startU, 1 + 5 * fixed16One);   // 3 / 2
    EXPECT_EQ(st.startV, -3 + 7 * fixed16One);  // -7 / 2
    EXPECT_EQ(st.limitU, 10 * fixed16One);
    EXPECT_EQ(st.limitV, 20 * fixed16One);
    EXPECT_EQ(st.line(2).u, st.startU + 4);
    EXPECT_EQ(st.line(2).v, st.startV - 8);
    EXPECT_EQ(st.line(2).uAt(2), st.startU + 6);
}

TEST(SteppingTest, MatrixEntriesAreTruncatedTowardZero) {
    const Stepping st =
        makeStepping({1.9 / 65536.0, -1.9 / 65536.0, 0.0, 0.0, 0.9 / 65536.0, -0.9 / 65536.0}, 1, 1, 1, 1);
    EXPECT_EQ(st.stepXu, 1);
    EXPECT_EQ(st.stepXv, -1);
    EXPECT_EQ(st.startU, 0);
    EXPECT_EQ(st.startV, 0);
}

TEST(SteppingTest, StepsBeyondThirtyTwoBitsStayExact) {
    // 40000 source pixels per display pixel: the 32-bit field would have to saturate.
    const Stepping st = makeStepping({40000.0, 0.0, 0.0, 40000.0, -79990.0, -79990.0}, 4096, 4096, 4, 4);
    ASSERT_TRUE(st.hasSource());
    EXPECT_EQ(st.stepXu, 40000 * fixed16One);
    EXPECT_TRUE(st.span(1).empty());
    const Stepping centred = makeStepping({40000.0, 0.0, 0.0, 40000.0, -58000.0, -58000.0}, 4096, 4096, 4, 4);
    EXPECT_TRUE(centred.span(0).empty());
    EXPECT_EQ(centred.span(1), (Span{0, 1}));
    EXPECT_EQ(zolcs::pixelOf(centred.line(1).uAt(1)), 2000);
}

TEST(SteppingTest, NothingIsOnTheSourceForUnusableMatricesAndEmptySources) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const double huge = std::numeric_limits<double>::max();
    for (const double bad : {nan, inf, -inf, huge, -huge, 1e60, 1e15}) {
        for (std::size_t i = 0; i < 6; ++i) {
            zolcs::DisplayToImage matrix{1, 0, 0, 1, 0, 0};
            matrix[i] = bad;
            const Stepping st = makeStepping(matrix, 8, 8, 8, 8);
            EXPECT_FALSE(st.hasSource()) << bad << " at " << i;
            EXPECT_EQ(st.span(3), Span{});
            EXPECT_EQ(st.width, 8);
            EXPECT_EQ(st.height, 8);
        }
    }
    for (const int size : {0, -1, std::numeric_limits<int>::min()}) {
        EXPECT_FALSE(makeStepping({1, 0, 0, 1, 0, 0}, size, 8, 8, 8).hasSource());
        EXPECT_FALSE(makeStepping({1, 0, 0, 1, 0, 0}, 8, size, 8, 8).hasSource());
        EXPECT_EQ(makeStepping({1, 0, 0, 1, 0, 0}, 8, 8, size, size).height, 0);
    }
}

TEST(SteppingTest, LimitsOfVeryLargeSourcesFit) {
    const Stepping st = makeStepping({1, 0, 0, 1, 0, 0}, 32768, 100000, 1, 1);
    EXPECT_EQ(st.limitU, Fixed16{32768} * 65536);
    EXPECT_EQ(st.limitV, Fixed16{100000} * 65536);
}

TEST(SteppingTest, TransposingExchangesRowsAndColumns) {
    const Stepping st = makeStepping({0.5, 0.25, -0.75, 1.5, 3.0, 4.0}, 10, 20, 3, 4);
    const Stepping other = st.transposed();
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 3; ++x) {
            EXPECT_EQ(st.line(y).uAt(x), other.line(x).uAt(y));
            EXPECT_EQ(st.line(y).vAt(x), other.line(x).vAt(y));
        }
    }
    EXPECT_EQ(other.width, 4);
    EXPECT_EQ(other.height, 3);
    EXPECT_TRUE(makeStepping({1, 0, 0, -1, 0, 0}, 1, 1, 1, 1).isUpright());
    EXPECT_TRUE(makeStepping({0, 1, -1, 0, 0, 0}, 1, 1, 1, 1).isQuarterTurn());
    EXPECT_FALSE(st.isUpright());
    EXPECT_FALSE(st.isQuarterTurn());
}

TEST(SteppingTest, ColumnsBetweenEqualsTheWalk) {
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

TEST(SteppingTest, ConversionsToThirtyTwoBitsSaturate) {
    EXPECT_EQ(zolcs::saturated32(1.9), 1);
    EXPECT_EQ(zolcs::saturated32(-1.9), -1);
    EXPECT_EQ(zolcs::saturated32(1e300), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(zolcs::saturated32(-1e300), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(zolcs::saturated32(std::numeric_limits<double>::quiet_NaN()), 0);
    EXPECT_EQ(zolcs::saturated32(Fixed16{32768} * 65536), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(zolcs::saturated32(-Fixed16{32769} * 65536), std::numeric_limits<std::int32_t>::min());
}

}  // namespace
