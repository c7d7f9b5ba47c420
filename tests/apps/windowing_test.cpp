#include "zolview/windowing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using namespace zolview;

/// What the grey map makes of a window, from its defining rule.
int mapGrey(const RasterWindow& window, int level) {
    const int low = window.centre - window.width / 2;
    const int grey = level < low ? 0 : level >= low + window.width ? 255 : (level - low) * 256 / window.width;
    return window.reversed ? 255 - grey : grey;
}

/// DICOM's straight lines, 0 to 255, before any rounding.
double dicomGrey(const Window& window, WindowFunction function, double value) {
    if (function == WindowFunction::LinearExact)
        return std::clamp((value - window.centre) / window.width + 0.5, 0.0, 1.0) * 255.0;
    const double low = window.centre - 0.5 - (window.width - 1.0) / 2.0;
    const double high = window.centre - 0.5 + (window.width - 1.0) / 2.0;
    if (value <= low) return 0.0;
    if (value > high) return 255.0;
    return ((value - (window.centre - 0.5)) / (window.width - 1.0) + 0.5) * 255.0;
}

StoredImage levels(double slope = 1.0, double intercept = 0.0, int lowest = 0) {
    StoredImage image;
    image.slope = slope;
    image.intercept = intercept;
    image.lowest = lowest;
    return image;
}

/// The largest difference between the map's grey and DICOM's, over all levels.
double worst(const StoredImage& image, const Window& window, WindowFunction function) {
    const RasterWindow raster = toRasterWindow(image, window, function);
    double out = 0.0;
    for (int level = 0; level < rasterLevels; ++level) {
        const double value = image.slope * (level + image.lowest) + image.intercept;
        out = std::max(out, std::abs(mapGrey(raster, level) - dicomGrey(window, function, value)));
    }
    return out;
}

TEST(Windowing, WholeLinearWindowsAgreeWithDicomWithinOneGrey) {
    // Even widths: both ends of the line are whole values.
    for (const int width : {2, 4, 10, 60, 100, 256, 400, 1000, 1600, 2000, 4096, 8000})
        for (const int centre : {0, 40, 400, 748, 2048, 4000})
            EXPECT_LE(worst(levels(), {double(centre), double(width)}, WindowFunction::Linear), 1.0)
                << centre << '/' << width;
}

TEST(Windowing, OddWidthsAreOffByHalfAValueAtMost) {
    for (const int width : {3, 5, 11, 101, 1579, 4001})
        EXPECT_LE(worst(levels(), {748.0, double(width)}, WindowFunction::Linear), 1.0 + 0.5 * 255.0 / (width - 1))
            << width;
}

TEST(Windowing, WidthOneIsAThresholdAtTheCentre) {
    const RasterWindow window = toRasterWindow(levels(), {400.0, 1.0}, WindowFunction::Linear);
    EXPECT_EQ(mapGrey(window, 399), 0);
    EXPECT_EQ(mapGrey(window, 400), 255);
}

TEST(Windowing, WidthTwoIsAStepWithoutGreys) {
    const RasterWindow window = toRasterWindow(levels(), {400.0, 2.0}, WindowFunction::Linear);
    EXPECT_EQ(mapGrey(window, 399), 0);
    EXPECT_EQ(mapGrey(window, 400), 255);
}

TEST(Windowing, FullRangeGivesEachGreySixteenLevels) {
    const RasterWindow window = toRasterWindow(levels(), {2048.0, 4096.0}, WindowFunction::Linear);
    for (int level = 0; level < rasterLevels; ++level) ASSERT_EQ(mapGrey(window, level), level / 16);
}

TEST(Windowing, SlopeInterceptAndOffsetAreTakenOut) {
    // Hounsfield units of a signed CT: level 0 is stored -1024, output -1024 - 1000.
    const StoredImage image = levels(1.0, -1000.0, -1024);
    const RasterWindow shifted = toRasterWindow(image, {40.0, 400.0}, WindowFunction::Linear);
    const RasterWindow plain = toRasterWindow(levels(), {2064.0, 400.0}, WindowFunction::Linear);
    EXPECT_EQ(shifted, plain);
    EXPECT_LE(worst(image, {40.0, 400.0}, WindowFunction::Linear), 1.0);
    EXPECT_LE(worst(levels(2.0, -100.0), {748.0, 1580.0}, WindowFunction::Linear), 1.0 + 0.5 * 255.0 / 789);
    EXPECT_LE(worst(levels(0.1, 3.0), {200.0, 300.0}, WindowFunction::Linear), 1.0 + 0.5 * 255.0 / 2990);
}

TEST(Windowing, NegativeSlopeTurnsTheWindowRound) {
    const StoredImage image = levels(-1.0, 4095.0);
    const Window window{2048.0, 4096.0};
    const RasterWindow raster = toRasterWindow(image, window, WindowFunction::Linear);
    EXPECT_TRUE(raster.reversed);
    EXPECT_EQ(mapGrey(raster, 0), 255);
    EXPECT_EQ(mapGrey(raster, 4095), 0);
    EXPECT_LE(worst(image, window, WindowFunction::Linear), 1.0);
}

TEST(Windowing, ExactWindowsKeepTheirLength) {
    EXPECT_LE(worst(levels(), {748.5, 100.25}, WindowFunction::LinearExact), 1.0 + 0.625 * 255.0 / 100);
    const RasterWindow window = toRasterWindow(levels(), {100.0, 50.0}, WindowFunction::LinearExact);
    EXPECT_EQ(window, (RasterWindow{100, 50, false, false, false}));
}

TEST(Windowing, WindowsBesideAllLevelsAreBlackOrWhiteAllOver) {
    for (const double far : {5000.0, 1e9, 1e300}) {
        const RasterWindow above = toRasterWindow(levels(), {far, 100.0}, WindowFunction::Linear);
        const RasterWindow below = toRasterWindow(levels(), {-far, 100.0}, WindowFunction::Linear);
        for (const int level : {0, 1, 2000, 4095}) {
            EXPECT_EQ(mapGrey(above, level), 0) << far;
            EXPECT_EQ(mapGrey(below, level), 255) << far;
        }
    }
}

TEST(Windowing, EndlessWindowsKeepTheGreyOfTheMiddle) {
    for (const double width : {1e7, 1e9, 1e300}) {
        const RasterWindow window = toRasterWindow(levels(), {2048.0, width}, WindowFunction::Linear);
        EXPECT_LE(window.width, 1 << 20);
        EXPECT_NEAR(mapGrey(window, 2048), 128, 1);
    }
}

TEST(Windowing, SteepSlopesStayWithinTheIntegers) {
    for (const double slope : {1e-9, 1e9, -1e-9}) {
        const RasterWindow window = toRasterWindow(levels(slope, 1e9, -32768), {-1e9, 1e9}, WindowFunction::Linear);
        EXPECT_GE(window.width, 1);
        EXPECT_LE(window.width, 1 << 20);
        EXPECT_LE(std::abs(window.centre), 1 << 21);
    }
}

TEST(Windowing, SigmoidTakesCentreAndWidthAsTheyAre) {
    EXPECT_EQ(toRasterWindow(levels(), {748.0, 1579.0}, WindowFunction::Sigmoid),
              (RasterWindow{748, 1579, true, false, false}));
    EXPECT_EQ(toRasterWindow(levels(-0.5, 100.0, -10), {150.0, 200.0}, WindowFunction::Sigmoid),
              (RasterWindow{-90, 400, true, true, false}));
}

TEST(Windowing, SigmoidThatTheMapWouldBrightenBecomesALine) {
    const RasterWindow window = toRasterWindow(levels(), {5000.0, 1000.0}, WindowFunction::Sigmoid);
    EXPECT_FALSE(window.sigmoid);
    EXPECT_TRUE(window.sigmoidReplaced);
    EXPECT_EQ(mapGrey(window, 4096), 0);
    EXPECT_FALSE(toRasterWindow(levels(), {4000.0, 100.0}, WindowFunction::Sigmoid).sigmoidReplaced);
}

TEST(Windowing, FullRangeSpansTheLevelsInUse) {
    StoredImage image = levels();
    image.minLevel = 100;
    image.maxLevel = 355;
    const RasterWindow window = fullRange(image);
    EXPECT_EQ(mapGrey(window, 100), 0);
    EXPECT_EQ(mapGrey(window, 355), 255);
    EXPECT_EQ(mapGrey(window, 99), 0);
    EXPECT_EQ(mapGrey(window, 356), 255);

    image.maxLevel = 100;
    EXPECT_EQ(mapGrey(fullRange(image), 100), 0);
    image.maxLevel = 101;
    EXPECT_EQ(mapGrey(fullRange(image), 100), 0);
    EXPECT_EQ(mapGrey(fullRange(image), 101), 255);
}

TEST(Windowing, UsableWidths) {
    EXPECT_TRUE(isUsable({0.0, 1.0}, WindowFunction::Linear));
    EXPECT_FALSE(isUsable({0.0, 0.5}, WindowFunction::Linear));
    EXPECT_TRUE(isUsable({0.0, 0.5}, WindowFunction::LinearExact));
    EXPECT_FALSE(isUsable({0.0, 0.0}, WindowFunction::LinearExact));
    EXPECT_FALSE(isUsable({0.0, -1.0}, WindowFunction::Sigmoid));
    EXPECT_FALSE(isUsable({0.0, std::numeric_limits<double>::quiet_NaN()}, WindowFunction::Sigmoid));
    EXPECT_FALSE(isUsable({std::numeric_limits<double>::infinity(), 1.0}, WindowFunction::Linear));
}

}  // namespace
