#include "viewing/display/grey_transform.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace viewing;

GreyImage image12() {
    GreyImage image;
    image.maxLevel = 4095;
    return image;
}

TEST(GreyTransform, LinearCountsValuesAndExactMeasuresLengths) {
    GreyImage image = image12();
    image.voi = VoiWindow{{100.0, 11.0}};
    const GreyTransform counted(image, {});
    EXPECT_EQ(counted.grey(94), 0.0);
    EXPECT_DOUBLE_EQ(counted.grey(95), 255.0 * 0.05);
    EXPECT_DOUBLE_EQ(counted.grey(104), 255.0 * 0.95);
    EXPECT_EQ(counted.grey(105), 255.0);
    image.voi = VoiWindow{{100.0, 10.0}, WindowFunction::LinearExact};
    const GreyTransform exact(image, {});
    EXPECT_EQ(exact.grey(95), 0.0);
    EXPECT_DOUBLE_EQ(exact.grey(96), 255.0 * 0.1);
    EXPECT_DOUBLE_EQ(exact.grey(105), 255.0);
    EXPECT_EQ(exact.grey(106), 255.0);
}

TEST(GreyTransform, WidthOneStepsAtTheCentre) {
    GreyImage image = image12();
    image.voi = VoiWindow{{100.0, 1.0}};
    EXPECT_EQ(GreyTransform(image, {}).grey(99), 0.0);
    EXPECT_EQ(GreyTransform(image, {}).grey(100), 255.0);
}

TEST(GreyTransform, SigmoidIsHalfAtTheCentre) {
    GreyImage image = image12();
    image.voi = VoiWindow{{100.0, 40.0}, WindowFunction::Sigmoid};
    const GreyTransform transform(image, {});
    EXPECT_DOUBLE_EQ(transform.shown(100), 0.5);
    EXPECT_DOUBLE_EQ(transform.shown(110), 1.0 / (1.0 + std::exp(-1.0)));
}

TEST(GreyTransform, FullRangeIsThatOfTheOutput) {
    GreyImage image = image12();
    image.minLevel = 10;
    image.maxLevel = 20;
    EXPECT_EQ(GreyTransform(image, {}).grey(10), 0.0);
    EXPECT_DOUBLE_EQ(GreyTransform(image, {}).grey(15), 127.5);
    EXPECT_EQ(GreyTransform(image, {}).grey(20), 255.0);
    image.modality.slope = -1.0;
    EXPECT_EQ(GreyTransform(image, {}).grey(10), 255.0);
    EXPECT_EQ(GreyTransform(image, {}).grey(20), 0.0);
    image.modality.table = LookupTable{10, 8, {9, 3, 9, 5}};
    EXPECT_EQ(GreyTransform(image, {}).grey(11), 0.0);
    EXPECT_EQ(GreyTransform(image, {}).grey(12), 255.0);
    image.minLevel = image.maxLevel = 3;
    EXPECT_EQ(GreyTransform(image, {}).grey(3), 0.0);
}

TEST(GreyTransform, TablesTakeTheNearestEntry) {
    GreyImage image = image12();
    image.modality.slope = 0.5;
    image.voi = LookupTable{1, 4, {0, 15, 3}};
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
    GreyImage image = image12();
    image.voi = VoiWindow{{2048.0, 4096.0}};
    image.presentation.table = LookupTable{0, 8, {5, 80, 255}};
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
    GreyImage image = image12();
    EXPECT_TRUE(GreyTransform(image, {}).rasterWindow());
    image.modality.slope = -1.0;
    EXPECT_FALSE(GreyTransform(image, {}).rasterWindow());
    image.modality.slope = 1.0;
    image.modality.table = LookupTable{0, 8, {1}};
    EXPECT_FALSE(GreyTransform(image, {}).rasterWindow());
    image.modality.table.reset();
    image.voi = LookupTable{0, 8, {1}};
    EXPECT_FALSE(GreyTransform(image, {}).rasterWindow());
    EXPECT_TRUE(GreyTransform(image, Window{1.0, 2.0}).rasterWindow());
}

}  // namespace
