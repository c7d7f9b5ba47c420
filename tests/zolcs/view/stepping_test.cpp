#include "zolcs/view/stepping.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using zolcs::ColumnRange;
using zolcs::Fixed16;
using zolcs::fixed16One;
using zolcs::makeStepping;
using zolcs::Stepping;

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
    EXPECT_EQ(st.row(2).u, st.startU + 4);
    EXPECT_EQ(st.row(2).v, st.startV - 8);
    EXPECT_EQ(st.row(2).uAt(2), st.startU + 6);
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
    EXPECT_EQ(centred.span(1), (ColumnRange{1, 2}));
    EXPECT_EQ(zolcs::pixelOf(centred.row(1).uAt(1)), 2000);
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
            EXPECT_EQ(st.span(3), ColumnRange{});
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
            EXPECT_EQ(st.row(y).uAt(x), other.row(x).uAt(y));
            EXPECT_EQ(st.row(y).vAt(x), other.row(x).vAt(y));
        }
    }
    EXPECT_EQ(other.width, 4);
    EXPECT_EQ(other.height, 3);
    EXPECT_TRUE(makeStepping({1, 0, 0, -1, 0, 0}, 1, 1, 1, 1).isUpright());
    EXPECT_TRUE(makeStepping({0, 1, -1, 0, 0, 0}, 1, 1, 1, 1).isQuarterTurn());
    EXPECT_FALSE(st.isUpright());
    EXPECT_FALSE(st.isQuarterTurn());
}

}  // namespace
