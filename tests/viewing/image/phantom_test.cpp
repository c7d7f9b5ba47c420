#include "viewing/image/phantom.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace viewing;

int level(const StoredImage& image, int x, int y) {
    return image.grey().samples[static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
                                static_cast<std::size_t>(x)] &
           0xFFF;
}

TEST(Phantom, IsTheSameEachTime) {
    const StoredImage first = makePhantom();
    EXPECT_EQ(first.grey().samples, makePhantom().grey().samples);
    EXPECT_EQ(first.grey().samples.size(), 640U * 512U);

    // FNV-1a over the samples: made of integers, so the same on every platform.
    std::uint32_t digest = 2166136261U;
    for (const std::uint16_t sample : first.grey().samples)
        for (const unsigned int byte : {sample & 0xFFU, static_cast<unsigned int>(sample) >> 8U})
            digest = (digest ^ byte) * 16777619U;
    EXPECT_EQ(digest, 750959291U);
}

TEST(Phantom, UsesAllLevelsUpToTwelveBits) {
    const StoredImage image = makePhantom();
    EXPECT_EQ(level(image, 40, 100), 0);
    EXPECT_EQ(level(image, 599, 100), 4095);
    for (int x = 41; x < 600; ++x) EXPECT_GE(level(image, x, 100), level(image, x - 1, 100));
    EXPECT_EQ(image.grey().minLevel, 0);
    EXPECT_EQ(image.grey().maxLevel, 4095);
}

TEST(Phantom, HasLinesOnItsOutermostPixels) {
    const StoredImage image = makePhantom();
    for (int x = 0; x < image.width; ++x) {
        EXPECT_EQ(level(image, x, 0), 4095);
        EXPECT_EQ(level(image, x, image.height - 1), 4095);
    }
    for (int y = 0; y < image.height; ++y) {
        EXPECT_EQ(level(image, 0, y), 4095);
        EXPECT_EQ(level(image, image.width - 1, y), 4095);
    }
}

TEST(Phantom, CarriesEverythingAnImageCanCarry) {
    StoredImage image = makePhantom();
    EXPECT_TRUE(image.shutters.rectangle);
    EXPECT_TRUE(image.shutters.circle);
    EXPECT_FALSE(image.grey().padding.empty());
    ASSERT_EQ(image.overlays.size(), 2U);
    ASSERT_EQ(image.grey().embedded.size(), 1U);
    EXPECT_TRUE(std::any_of(image.grey().samples.begin(), image.grey().samples.end(), [&image](std::uint16_t sample) {
        return ((sample >> image.grey().embedded.front().bit) & 1) != 0;
    }));
    for (OverlayPlane& plane : image.overlays) {
        EXPECT_GE(plane.origin.x, 0);
        EXPECT_GE(plane.origin.y, 0);
        EXPECT_LE(plane.origin.x + plane.bits.width(), image.width);
        EXPECT_LE(plane.origin.y + plane.bits.height(), image.height);
    }
}

TEST(Phantom, IsNoMirrorImageOfItself) {
    const StoredImage image = makePhantom();
    int horizontal = 0;
    int vertical = 0;
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            horizontal += level(image, x, y) != level(image, image.width - 1 - x, y) ? 1 : 0;
            vertical += level(image, x, y) != level(image, x, image.height - 1 - y) ? 1 : 0;
        }
    }
    EXPECT_GT(horizontal, 10000);
    EXPECT_GT(vertical, 10000);
}

}  // namespace
