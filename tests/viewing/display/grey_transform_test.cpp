#include "viewing/display/grey_transform.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace viewing;

StoredImage image12() {
    StoredImage image;
    image.maxLevel = 4095;
    return image;
}

TEST(GreyTransform, OutputIsRescaledOrLookedUp) {
    StoredImage image = image12();
    image.lowest = -1024;
    image.slope = 2.0;
    image.intercept = 5.0;
    EXPECT_EQ(GreyTransform(image, {}).output(0), -2043.0);
    image.modality = LookupTable{-1020, 12, {10, 20, 30}};
    const GreyTransform looked(image, {});
    EXPECT_EQ(looked.output(0), 10.0);
    EXPECT_EQ(looked.output(4), 10.0);
    EXPECT_EQ(looked.output(5), 20.0);
    EXPECT_EQ(looked.output(6), 30.0);
    EXPECT_EQ(looked.output(4095), 30.0);
}

TEST(GreyTransform, LinearCountsValuesAndExactMeasuresLengths) {
    StoredImage image = image12();
    image.window = Window{100.0, 11.0};
    const GreyTransform counted(image, {});
    EXPECT_EQ(counted.grey(94), 0.0);
    EXPECT_DOUBLE_EQ(counted.grey(95), 255.0 * 0.05);
    EXPECT_DOUBLE_EQ(counted.grey(104), 255.0 * 0.95);
    EXPECT_EQ(counted.grey(105), 255.0);
    image.function = WindowFunction::LinearExact;
    image.window = Window{100.0, 10.0};
    const GreyTransform exact(image, {});
    EXPECT_EQ(exact.grey(95), 0.0);
    EXPECT_DOUBLE_EQ(exact.grey(96), 255.0 * 0.1);
    EXPECT_DOUBLE_EQ(exact.grey(105), 255.0);
    EXPECT_EQ(exact.grey(106), 255.0);
}

TEST(GreyTransform, WidthOneStepsAtTheCentre) {
    StoredImage image = image12();
    image.window = Window{100.0, 1.0};
    EXPECT_EQ(GreyTransform(image, {}).grey(99), 0.0);
    EXPECT_EQ(GreyTransform(image, {}).grey(100), 255.0);
}

TEST(GreyTransform, SigmoidIsHalfAtTheCentre) {
    StoredImage image = image12();
    image.function = WindowFunction::Sigmoid;
    image.window = Window{100.0, 40.0};
    const GreyTransform transform(image, {});
    EXPECT_DOUBLE_EQ(transform.shown(100), 0.5);
    EXPECT_DOUBLE_EQ(transform.shown(110), 1.0 / (1.0 + std::exp(-1.0)));
}

TEST(GreyTransform, FullRangeIsThatOfTheOutput) {
    StoredImage image = image12();
    image.minLevel = 10;
    image.maxLevel = 20;
    EXPECT_EQ(GreyTransform(image, {}).grey(10), 0.0);
    EXPECT_DOUBLE_EQ(GreyTransform(image, {}).grey(15), 127.5);
    EXPECT_EQ(GreyTransform(image, {}).grey(20), 255.0);
    image.slope = -1.0;
    EXPECT_EQ(GreyTransform(image, {}).grey(10), 255.0);
    EXPECT_EQ(GreyTransform(image, {}).grey(20), 0.0);
    image.modality = LookupTable{10, 8, {9, 3, 9, 5}};
    EXPECT_EQ(GreyTransform(image, {}).grey(11), 0.0);
    EXPECT_EQ(GreyTransform(image, {}).grey(12), 255.0);
    image.minLevel = image.maxLevel = 3;
    EXPECT_EQ(GreyTransform(image, {}).grey(3), 0.0);
}

TEST(GreyTransform, TablesTakeTheNearestEntry) {
    StoredImage image = image12();
    image.slope = 0.5;
    image.voiTable = LookupTable{1, 4, {0, 15, 3}};
    const GreyTransform transform(image, {});
    EXPECT_DOUBLE_EQ(transform.shown(0), 0.0);
    EXPECT_DOUBLE_EQ(transform.shown(2), 0.0);
    EXPECT_DOUBLE_EQ(transform.shown(3), 1.0);
    EXPECT_DOUBLE_EQ(transform.shown(4), 1.0);
    EXPECT_DOUBLE_EQ(transform.shown(5), 0.2);
    EXPECT_DOUBLE_EQ(transform.shown(4000), 0.2);
    EXPECT_FALSE(transform.rasterWindow());
}

TEST(GreyTransform, PresentationSpreadsOverAllEntries) {
    StoredImage image = image12();
    image.window = Window{2048.0, 4096.0};
    image.presentation = LookupTable{0, 8, {5, 80, 255}};
    const GreyTransform transform(image, {});
    EXPECT_EQ(transform.presentationEntry(0.0), 0);
    EXPECT_EQ(transform.presentationEntry(0.24), 0);
    EXPECT_EQ(transform.presentationEntry(0.26), 1);
    EXPECT_EQ(transform.presentationEntry(1.0), 2);
    EXPECT_EQ(transform.grey(0), 5.0);
    EXPECT_EQ(transform.grey(2048), 80.0);
    EXPECT_EQ(transform.grey(4095), 255.0);
}

TEST(GreyTransform, OnlyRisingLinesHaveAWindowOfTheMap) {
    StoredImage image = image12();
    EXPECT_TRUE(GreyTransform(image, {}).rasterWindow());
    image.slope = -1.0;
    EXPECT_FALSE(GreyTransform(image, {}).rasterWindow());
    image.slope = 1.0;
    image.modality = LookupTable{0, 8, {1}};
    EXPECT_FALSE(GreyTransform(image, {}).rasterWindow());
    image.modality.reset();
    image.voiTable = LookupTable{0, 8, {1}};
    EXPECT_FALSE(GreyTransform(image, {}).rasterWindow());
    EXPECT_TRUE(GreyTransform(image, Window{1.0, 2.0}).rasterWindow());
}

}  // namespace
