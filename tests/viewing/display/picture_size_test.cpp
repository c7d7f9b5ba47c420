#include "viewing/display/picture_size.h"

#include <gtest/gtest.h>

namespace {

using namespace viewing;

TEST(PictureSize, DefaultSizes) {
    const auto size = [](int width, int height, double ratio, double degrees) {
        StoredImage image;
        image.width = width;
        image.height = height;
        image.ratioYx = ratio;
        return defaultSize(image, degrees);
    };
    EXPECT_EQ(size(640, 512, 1.0, 0.0), (Size{640, 512}));
    EXPECT_EQ(size(640, 512, 1.0, 90.0), (Size{512, 640}));
    EXPECT_EQ(size(640, 512, 1.0, -90.0), (Size{512, 640}));
    EXPECT_EQ(size(640, 512, 1.0, 180.0), (Size{640, 512}));
    EXPECT_EQ(size(640, 512, 1.0, 45.0), (Size{640, 512}));
    EXPECT_EQ(size(100, 100, 1.5, 0.0), (Size{100, 150}));
    EXPECT_EQ(size(100, 100, 0.5, 0.0), (Size{200, 100}));
    EXPECT_EQ(size(2394, 3062, 1.0, 0.0), (Size{1601, 2048}));
    EXPECT_EQ(size(32767, 1, 1.0, 0.0), (Size{2048, 1}));
}

}  // namespace
