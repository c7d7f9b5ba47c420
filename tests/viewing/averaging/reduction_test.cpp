#include "viewing/averaging/reduction.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

using namespace viewing::averaging;

const AxisCoverage& axesOf(const Reduction& reduction) { return std::get<AxisCoverage>(reduction.coverage); }

TEST(Scales, EachAxisOfTheImageHasItsOwn) {
    const Extent image{100, 100};
    const Extent display{100, 100};
    const Scales upright = scalesOf({0.5, 0.0, 0.0, 2.0, 0.0, 0.0}, image, display);
    EXPECT_EQ(upright.x, Scale::Reduced);
    EXPECT_EQ(upright.y, Scale::Magnified);
    EXPECT_TRUE(upright.upright && upright.reduce() && upright.magnify());
    const Scales quarter = scalesOf({0.0, -1.0, 0.5, 0.0, 0.0, 0.0}, image, display);
    EXPECT_EQ(quarter.x, Scale::Same);
    EXPECT_EQ(quarter.y, Scale::Reduced);
    EXPECT_TRUE(quarter.upright && quarter.reduce() && !quarter.magnify());
    const Scales oblique = scalesOf({0.6, 0.8, -0.4, 0.3, 0.0, 0.0}, image, display);
    EXPECT_EQ(oblique.x, Scale::Same);
    EXPECT_EQ(oblique.y, Scale::Reduced);
    EXPECT_FALSE(oblique.upright);
}

TEST(Scales, WhatRoundingLeavesIsUprightAndTheSame) {
    const Scales scales = scalesOf({1.0 - 1e-12, 6e-17, -6e-17, 1.0 + 1e-12, 0.0, 0.0}, {2000, 2000}, {2000, 2000});
    EXPECT_EQ(scales.x, Scale::Same);
    EXPECT_EQ(scales.y, Scale::Same);
    EXPECT_TRUE(scales.upright);
    EXPECT_EQ(scalesOf({1999.0 / 2000.0, 0.0, 0.0, 1.0, 0.0, 0.0}, {2000, 2000}, {2000, 2000}).x, Scale::Reduced);
    EXPECT_EQ(scalesOf({2001.0 / 2000.0, 0.0, 0.0, 1.0, 0.0, 0.0}, {2000, 2000}, {2001, 2000}).x, Scale::Magnified);
}

TEST(Reduction, CellsEndAtTheImagesRim) {
    // 10 pixels on 4 display pixels from 1.5 on.
    const Reduction reduction = reductionOf({0.4, 0.0, 0.0, 0.4, 1.5, 0.0}, {10, 10}, {8, 4});
    EXPECT_EQ(axesOf(reduction).columns.bounds, (std::vector<std::int64_t>{0, 1280, 3840, 6400, 8960, 10240}));
    EXPECT_EQ(axesOf(reduction).rows.bounds, (std::vector<std::int64_t>{0, 2560, 5120, 7680, 10240}));
    EXPECT_EQ(reduction.toDisplay, (Matrix{1.0, 0.0, 0.0, 1.0, 1.0, 0.0}));
}

TEST(Reduction, CoversWhatTheDisplayShowsOnly) {
    const Reduction reduction = reductionOf({-0.5, 0.0, 0.0, 0.5, 20.0, -3.0}, {100, 100}, {10, 5});
    // Mirrored: display pixel 9 shows the image's pixels 20 and 21, display pixel 0 shows 38 and 39.
    EXPECT_EQ(axesOf(reduction).columns.bounds.front(), 20 * onePixel);
    EXPECT_EQ(axesOf(reduction).columns.bounds.back(), 40 * onePixel);
    EXPECT_EQ(axesOf(reduction).rows.bounds.front(), 6 * onePixel);
    EXPECT_EQ(axesOf(reduction).rows.bounds.back(), 16 * onePixel);
    EXPECT_EQ(reduction.toDisplay, (Matrix{-1.0, 0.0, 0.0, 1.0, 10.0, 0.0}));
}

TEST(Reduction, OfAnImageBesideTheDisplayIsEmpty) {
    EXPECT_TRUE(reductionOf({0.5, 0.0, 0.0, 0.5, 50.0, 0.0}, {10, 10}, {20, 20}).empty());
    EXPECT_TRUE(reductionOf({0.3, 0.1, -0.1, 0.3, 0.0, -1e9}, {10, 10}, {20, 20}).empty());
    EXPECT_TRUE(reductionOf({0.5, 0.0, 0.0, 0.5, -1e300, 0.0}, {10, 10}, {20, 20}).empty());
}

TEST(Reduction, AnAxisOfScaleOneKeepsThePixelsUnderTheMiddles) {
    for (const double offset : {0.0, 0.25, 0.5, 0.75, -0.5, 3.5}) {
        for (const double sign : {1.0, -1.0}) {
            const double at = sign > 0.0 ? offset : offset + 6.0;
            const Reduction reduction = reductionOf({sign, 0.0, 0.0, 0.5, at, 0.0}, {6, 20}, {12, 10});
            EXPECT_TRUE(axesOf(reduction).columns.arePixels());
            for (int i = 0; i < axesOf(reduction).columns.count(); ++i) {
                const double pixel =
                    static_cast<double>(axesOf(reduction).columns.bounds[static_cast<std::size_t>(i)]) /
                    static_cast<double>(onePixel);
                const double middle = reduction.toDisplay[0] * (i + 0.5) + reduction.toDisplay[4];
                const double onSource = (middle - at) / sign;
                EXPECT_TRUE(onSource >= pixel && onSource <= pixel + 1.0) << offset << ' ' << i;
            }
        }
    }
}

TEST(Reduction, AMagnifiedAxisIsLeftToInterpolation) {
    const Reduction reduction = reductionOf({0.0, 0.25, -3.0, 0.0, 30.0, 1.0}, {40, 10}, {30, 12});
    EXPECT_TRUE(reduction.interpolates);
    EXPECT_EQ(axesOf(reduction).columns.count(), 10);
    EXPECT_EQ(axesOf(reduction).rows, wholePixels(10));
    EXPECT_EQ(reduction.toDisplay, (Matrix{0.0, 1.0, -3.0, 0.0, 30.0, 1.0}));
}

TEST(Reduction, TurnedAndMagnifiedAlongOneAxisItAveragesAlongTheOtherOne) {
    const double k = std::sqrt(0.5);
    const Reduction reduction = reductionOf({0.4 * k, 0.4 * k, -2.0 * k, 2.0 * k, 5.0, 6.0}, {9, 4}, {30, 30});
    EXPECT_TRUE(reduction.interpolates);
    EXPECT_EQ(axesOf(reduction).columns.bounds, (std::vector<std::int64_t>{0, 2560, 5120, 7680, 9216}));
    EXPECT_EQ(axesOf(reduction).rows, wholePixels(4));
    const auto& [a, b, c, d, e, f] = reduction.toDisplay;
    EXPECT_NEAR(a, k, 1e-15);
    EXPECT_NEAR(b, k, 1e-15);
    EXPECT_DOUBLE_EQ(c, -2.0 * k);
    EXPECT_DOUBLE_EQ(d, 2.0 * k);
    EXPECT_DOUBLE_EQ(e, 5.0);
    EXPECT_DOUBLE_EQ(f, 6.0);
}

TEST(Reduction, TurnedItCoversTheDisplaysPixelsAroundTheImage) {
    const double k = std::sqrt(0.5) / 2.0;
    const Reduction reduction = reductionOf({k, k, -k, k, 10.0, 2.0}, {8, 8}, {100, 6});
    const auto& coverage = std::get<ObliqueCoverage>(reduction.coverage);
    EXPECT_FALSE(reduction.interpolates);
    EXPECT_EQ(coverage.left, 7);
    EXPECT_EQ(coverage.width, 6);
    EXPECT_EQ(coverage.top, 2);
    EXPECT_EQ(coverage.height, 4);
    EXPECT_EQ(reduction.toDisplay, (Matrix{1.0, 0.0, 0.0, 1.0, 7.0, 2.0}));
}

}  // namespace
