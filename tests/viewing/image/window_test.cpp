#include "viewing/image/window.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace viewing;

TEST(Window, LinesOfDicomsFunctions) {
    const GreyLine counted = lineOf({{40.0, 400.0}, WindowFunction::Linear});
    EXPECT_EQ(counted.black, -160.0);
    EXPECT_EQ(counted.white, 239.0);
    const GreyLine exact = lineOf({{40.0, 400.0}, WindowFunction::LinearExact});
    EXPECT_EQ(exact.black, -160.0);
    EXPECT_EQ(exact.white, 240.0);
    const GreyLine step = lineOf({{40.0, 1.0}, WindowFunction::Linear});
    EXPECT_EQ(step.black, 39.5);
    EXPECT_EQ(step.white, 39.5);
}

TEST(Window, UsableWidths) {
    EXPECT_TRUE(isUsable({{0.0, 1.0}, WindowFunction::Linear}));
    EXPECT_FALSE(isUsable({{0.0, 0.5}, WindowFunction::Linear}));
    EXPECT_TRUE(isUsable({{0.0, 0.5}, WindowFunction::LinearExact}));
    EXPECT_FALSE(isUsable({{0.0, 0.0}, WindowFunction::LinearExact}));
    EXPECT_FALSE(isUsable({{0.0, -1.0}, WindowFunction::Sigmoid}));
    EXPECT_FALSE(isUsable({{0.0, std::numeric_limits<double>::quiet_NaN()}, WindowFunction::Sigmoid}));
    EXPECT_FALSE(isUsable({{std::numeric_limits<double>::infinity(), 1.0}, WindowFunction::Linear}));
}

}  // namespace
