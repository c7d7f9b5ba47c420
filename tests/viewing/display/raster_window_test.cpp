#include "viewing/display/raster_window.h"

#include "viewing/image/limits.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace viewing;

/// What the grey map makes of a window, from its defining rule.
int mapGrey(const RasterWindow& window, int level) {
    const int low = window.centre - window.width / 2;
    return level < low ? 0 : level >= low + window.width ? 255 : (level - low) * 256 / window.width;
}

RasterWindow linear(const Window& window, double slope = 1.0, double first = 0.0) {
    return toRasterWindow({window, WindowFunction::Linear}, first, slope, levels12);
}

TEST(RasterWindow, WidthOneIsAThresholdAtTheCentre) {
    const RasterWindow window = linear({400.0, 1.0});
    EXPECT_EQ(mapGrey(window, 399), 0);
    EXPECT_EQ(mapGrey(window, 400), 255);
}

TEST(RasterWindow, WidthTwoIsAStepWithoutGreys) {
    const RasterWindow window = linear({400.0, 2.0});
    EXPECT_EQ(mapGrey(window, 399), 0);
    EXPECT_EQ(mapGrey(window, 400), 255);
}

TEST(RasterWindow, FullRangeGivesEachGreySixteenLevels) {
    const RasterWindow window = linear({2048.0, 4096.0});
    for (int level = 0; level < levels12; ++level) ASSERT_EQ(mapGrey(window, level), level / 16);
}

TEST(RasterWindow, SlopeAndFirstOutputAreTakenOut) {
    // Hounsfield units of a signed CT: level 0 is stored -1024, output -1024 - 1000.
    EXPECT_EQ(linear({40.0, 400.0}, 1.0, -2024.0), linear({2064.0, 400.0}));
    EXPECT_EQ(linear({40.0, 401.0}, 2.0, -2024.0), (RasterWindow{1032, 200, false}));
}

TEST(RasterWindow, ExactWindowsKeepTheirLength) {
    EXPECT_EQ(toRasterWindow({{100.0, 50.0}, WindowFunction::LinearExact}, 0.0, 1.0, levels12),
              (RasterWindow{100, 50, false}));
}

TEST(RasterWindow, WindowsBesideAllLevelsAreBlackOrWhiteAllOver) {
    for (const double far : {5000.0, 1e9, 1e300}) {
        const RasterWindow above = linear({far, 100.0});
        const RasterWindow below = linear({-far, 100.0});
        for (const int level : {0, 1, 2000, 4095}) {
            EXPECT_EQ(mapGrey(above, level), 0) << far;
            EXPECT_EQ(mapGrey(below, level), 255) << far;
        }
    }
}

TEST(RasterWindow, EndlessWindowsKeepTheGreyOfTheMiddle) {
    for (const int levels : {levels12, levels16}) {
        for (const double width : {1e8, 1e9, 1e300}) {
            const RasterWindow window =
                toRasterWindow({{levels / 2.0, width}, WindowFunction::Linear}, 0.0, 1.0, levels);
            EXPECT_LE(window.width, levels * 256);
            EXPECT_NEAR(window.centre, levels / 2, levels) << width;
        }
    }
}

TEST(RasterWindow, SteepSlopesStayWithinTheIntegers) {
    for (const double slope : {1e-9, 1e9}) {
        const RasterWindow window = linear({-1e9, 1e9}, slope, 1e9);
        EXPECT_GE(window.width, 1);
        EXPECT_LE(window.width, 1 << 20);
        EXPECT_LE(std::abs(window.centre), 1 << 21);
    }
}

TEST(RasterWindow, SigmoidTakesCentreAndWidthAsTheyAre) {
    EXPECT_EQ(toRasterWindow({{748.0, 1579.0}, WindowFunction::Sigmoid}, 0.0, 1.0, levels12),
              (RasterWindow{748, 1579, true}));
    EXPECT_EQ(toRasterWindow({{150.0, 200.0}, WindowFunction::Sigmoid}, 100.0, 0.5, levels12),
              (RasterWindow{100, 400, true}));
}

TEST(RasterWindow, StraightWindowsSpanTheirEnds) {
    const RasterWindow window = straightWindow(100, 355, levels12);
    EXPECT_EQ(mapGrey(window, 100), 0);
    EXPECT_EQ(mapGrey(window, 355), 255);
    EXPECT_EQ(mapGrey(window, 99), 0);
    EXPECT_EQ(mapGrey(window, 356), 255);
    EXPECT_EQ(mapGrey(straightWindow(100, 100, levels12), 100), 0);
    EXPECT_EQ(mapGrey(straightWindow(100, 101, levels12), 100), 0);
    EXPECT_EQ(mapGrey(straightWindow(100, 101, levels12), 101), 255);
}

}  // namespace
