#include "viewing/image/grey_image.h"

#include <gtest/gtest.h>

namespace {

using namespace viewing;

TEST(GreyImage, OutputIsRescaledOrLookedUp) {
    GreyImage image;
    image.lowest = -1024;
    image.modality.slope = 2.0;
    image.modality.intercept = 5.0;
    EXPECT_EQ(image.output(0), -2043.0);
    image.modality.table = LookupTable{-1020, 12, {10, 20, 30}};
    EXPECT_EQ(image.output(0), 10.0);
    EXPECT_EQ(image.output(4), 10.0);
    EXPECT_EQ(image.output(5), 20.0);
    EXPECT_EQ(image.output(6), 30.0);
    EXPECT_EQ(image.output(4095), 30.0);
}

TEST(GreyImage, OneWindowOrOneTableIsChosen) {
    GreyImage image;
    EXPECT_EQ(image.window(), nullptr);
    EXPECT_EQ(image.voiTable(), nullptr);
    image.voi = VoiWindow{{40.0, 400.0}};
    EXPECT_EQ(image.window()->window, (Window{40.0, 400.0}));
    EXPECT_EQ(image.voiTable(), nullptr);
    image.voi = LookupTable{3, 8, {1}};
    EXPECT_EQ(image.window(), nullptr);
    EXPECT_EQ(image.voiTable()->first, 3);
}

}  // namespace
