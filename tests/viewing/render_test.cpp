#include "viewing/render.h"

#include "viewing/display/raster_setup.h"
#include "viewing/image/phantom.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace {

using namespace viewing;

constexpr unsigned int grey(int level) { return static_cast<unsigned int>(level) * 0x010101U; }

Picture show(const StoredImage& image, const DisplaySettings& settings) {
    std::vector<std::string> notes;
    Picture picture = render(image, settings, notes);
    EXPECT_TRUE(notes.empty());
    return picture;
}

/// Without a window, so that levels 0 to 4095 would need the full range; every pixel has a level of its own.
StoredImage makeImage(int width, int height, const std::function<int(int, int)>& level) {
    StoredImage image;
    image.width = width;
    image.height = height;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) image.grey().samples.push_back(static_cast<std::uint16_t>(level(x, y)));
    image.grey().maxLevel = 4095;
    image.grey().voi = VoiWindow{{2048.0, 4096.0}};
    return image;
}

/// Sixteen levels make one grey, so this image shows 255 different greys at most; enough to tell its pixels apart.
StoredImage makeChart(int width, int height) {
    return makeImage(width, height, [width](int x, int y) { return ((y * width + x) * 16 + 16) % 4096; });
}

unsigned int chartGrey(int width, int x, int y) { return grey((y * width + x + 1) % 256); }

TEST(Render, PhantomPixelForPixelAtItsOwnSize) {
    const StoredImage image = makePhantom();
    DisplaySettings settings;
    settings.overlays = false;
    settings.shutters = false;
    const Picture picture = show(image, settings);
    ASSERT_EQ(picture.width, image.width);
    ASSERT_EQ(picture.height, image.height);
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            const int level = image.grey().samples[static_cast<std::size_t>(y * image.width + x)] & 0xFFF;
            const unsigned int expected = image.grey().padding.get(x, y) ? 0U : grey(level / 16);
            ASSERT_EQ(picture.at(x, y), expected) << x << ',' << y;
        }
    }
}

TEST(Render, OverlaysShowInTheirColoursAndAboveTheShutters) {
    StoredImage image = makeImage(9, 3, [](int x, int) { return x == 8 ? 0x1000 : 2048; });
    image.grey().embedded.push_back({12, PlaneKind::RegionOfInterest});
    OverlayPlane graphics{{1, 1}, BitPlane(2, 1), PlaneKind::Graphics};
    graphics.bits.set(0, 0);
    OverlayPlane region{{1, 1}, BitPlane(2, 1), PlaneKind::RegionOfInterest};
    region.bits.set(0, 0);
    region.bits.set(1, 0);
    image.overlays = {graphics, region};
    image.shutters.rectangle = Box{5, 0, 8, 2};
    image.shutters.presentationValue = 0x4000;
    const Picture picture = show(image, {});
    EXPECT_EQ(picture.at(0, 1), grey(0x40));
    EXPECT_EQ(picture.at(1, 1), graphicsColour);
    EXPECT_EQ(picture.at(2, 1), regionColour);
    EXPECT_EQ(picture.at(4, 1), grey(0x40));
    EXPECT_EQ(picture.at(5, 1), grey(128));
    EXPECT_EQ(picture.at(8, 1), regionColour);

    DisplaySettings bare;
    bare.overlays = false;
    bare.shutters = false;
    const Picture plain = show(image, bare);
    for (int x = 0; x < 8; ++x) EXPECT_EQ(plain.at(x, 1), grey(128)) << x;
    EXPECT_EQ(plain.at(8, 1), grey(0));
}

TEST(Render, EmbeddedPlanesThatAreNotShownLeaveTheirPixels) {
    StoredImage image = makeImage(2, 1, [](int x, int) { return x == 0 ? 0x3000 + 3008 : 3008; });
    image.grey().embedded = {{12, PlaneKind::Graphics}, {13, PlaneKind::Graphics}};
    DisplaySettings bare;
    bare.overlays = false;
    EXPECT_EQ(show(image, bare).at(0, 0), grey(188));
    EXPECT_EQ(show(image, bare).at(1, 0), grey(188));
}

TEST(Render, GraphicsLieAboveRegionsInTheSamePixel) {
    StoredImage image = makeImage(3, 1, [](int x, int) { return (x + 1) << 12; });
    image.grey().embedded = {{12, PlaneKind::Graphics}, {13, PlaneKind::RegionOfInterest}};
    const Picture picture = show(image, {});
    EXPECT_EQ(picture.at(0, 0), graphicsColour);
    EXPECT_EQ(picture.at(1, 0), regionColour);
    EXPECT_EQ(picture.at(2, 0), graphicsColour);
}

TEST(Render, RectangularShutterShowsItsOwnEdges) {
    StoredImage image = makeImage(10, 8, [](int, int) { return 4095; });
    image.shutters.rectangle = Box{2, 1, 6, 5};
    image.shutters.presentationValue = 0x8000;
    const Picture picture = show(image, {});
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 10; ++x)
            EXPECT_EQ(picture.at(x, y), x >= 2 && x <= 6 && y >= 1 && y <= 5 ? grey(255) : grey(0x80)) << x << ',' << y;
}

TEST(Render, PolygonalShutterHidesWhatLiesOutside) {
    StoredImage image = makeImage(40, 40, [](int, int) { return 4095; });
    image.shutters.polygon = {{20, 5}, {35, 35}, {5, 35}};
    const Picture picture = show(image, {});
    EXPECT_EQ(picture.at(20, 20), grey(255));
    EXPECT_EQ(picture.at(20, 4), grey(0));
    EXPECT_EQ(picture.at(8, 10), grey(0));
    EXPECT_EQ(picture.at(32, 10), grey(0));
    EXPECT_EQ(picture.at(20, 36), grey(0));
}

TEST(Render, CircularShutterIsRoundOnTheScreenForEveryPixelShape) {
    for (const double ratio : {1.0, 2.0, 0.5}) {
        StoredImage image = makeImage(100, 100, [](int, int) { return 4095; });
        image.ratioYx = ratio;
        image.shutters.circle = Circle{{50, 50}, 20};
        DisplaySettings settings;
        settings.size = Size{400, 400};
        const Picture picture = show(image, settings);
        int left = 400, right = -1, top = 400, bottom = -1;
        for (int y = 0; y < 400; ++y) {
            for (int x = 0; x < 400; ++x) {
                if (picture.at(x, y) != grey(255)) continue;
                left = std::min(left, x);
                right = std::max(right, x);
                top = std::min(top, y);
                bottom = std::max(bottom, y);
            }
        }
        const double scale = 400.0 / std::max(100.0, 100.0 * ratio);
        EXPECT_NEAR(right - left, 40.0 * scale, 2.0 * scale) << ratio;
        EXPECT_NEAR(bottom - top, 40.0 * scale, 2.0 * scale * std::max(ratio, 1.0)) << ratio;
    }
}

TEST(Render, ShuttersTogetherLeaveWhatLiesInsideAll) {
    StoredImage image = makeImage(60, 60, [](int, int) { return 4095; });
    image.ratioYx = 2.0;
    image.shutters.rectangle = Box{10, 10, 40, 40};
    image.shutters.circle = Circle{{30, 30}, 20};
    image.shutters.polygon = {{30, 0}, {59, 59}, {0, 59}};
    DisplaySettings settings;
    settings.size = Size{60, 120};
    const Picture picture = show(image, settings);
    const auto visible = [&picture](int x, int y) { return picture.at(x, 2 * y) == grey(255); };
    EXPECT_TRUE(visible(30, 30));
    EXPECT_TRUE(visible(40, 35));
    EXPECT_FALSE(visible(41, 35));
    EXPECT_TRUE(visible(30, 40));
    EXPECT_FALSE(visible(30, 41));
    EXPECT_TRUE(visible(30, 20));
    EXPECT_FALSE(visible(30, 19));
    EXPECT_TRUE(visible(20, 22));
    EXPECT_FALSE(visible(18, 22));
}

TEST(Render, FlipsMirror) {
    const StoredImage image = makeChart(7, 5);
    DisplaySettings settings;
    settings.flip = Flip::Horizontal;
    const Picture horizontal = show(image, settings);
    settings.flip = Flip::Vertical;
    const Picture vertical = show(image, settings);
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 7; ++x) {
            EXPECT_EQ(horizontal.at(x, y), chartGrey(7, 6 - x, y));
            EXPECT_EQ(vertical.at(x, y), chartGrey(7, x, 4 - y));
        }
    }
}

TEST(Render, RotatesClockwise) {
    const StoredImage image = makeChart(7, 5);
    for (const double degrees : {90.0, -270.0, 450.0}) {
        DisplaySettings settings;
        settings.degrees = degrees;
        const Picture picture = show(image, settings);
        ASSERT_EQ(picture.width, 5);
        ASSERT_EQ(picture.height, 7);
        // The left column comes to lie on top, its bottom on the left.
        for (int y = 0; y < 7; ++y)
            for (int x = 0; x < 5; ++x) EXPECT_EQ(picture.at(x, y), chartGrey(7, y, 4 - x)) << degrees;
    }
    DisplaySettings half;
    half.degrees = 180.0;
    const Picture picture = show(image, half);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 7; ++x) EXPECT_EQ(picture.at(x, y), chartGrey(7, 6 - x, 4 - y));
}

TEST(Render, FlipComesBeforeRotation) {
    const StoredImage image = makeChart(7, 5);
    DisplaySettings settings;
    settings.flip = Flip::Horizontal;
    settings.degrees = 90.0;
    const Picture picture = show(image, settings);
    for (int y = 0; y < 7; ++y)
        for (int x = 0; x < 5; ++x) EXPECT_EQ(picture.at(x, y), chartGrey(7, 6 - y, 4 - x));
}

TEST(Render, ZoomOneFitsAndLeavesBackgroundBeside) {
    const StoredImage image = makeImage(10, 10, [](int, int) { return 4095; });
    DisplaySettings settings;
    settings.size = Size{40, 20};
    settings.background = 77;
    const Picture picture = show(image, settings);
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 40; ++x)
            EXPECT_EQ(picture.at(x, y), x >= 10 && x < 30 ? grey(255) : grey(77)) << x << ',' << y;
}

TEST(Render, ZoomMagnifiesAroundTheMiddle) {
    const StoredImage image = makeChart(8, 8);
    DisplaySettings settings;
    settings.zoom = 2.0;
    const Picture picture = show(image, settings);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x) EXPECT_EQ(picture.at(x, y), chartGrey(8, 2 + x / 2, 2 + y / 2));
}

TEST(Render, ZoomAfterAQuarterTurnStartsFromTheSameFit) {
    const StoredImage image = makeImage(40, 20, [](int, int) { return 4095; });
    for (const double zoom : {0.5, 1.0, 2.0}) {
        DisplaySettings settings;
        settings.degrees = 90.0;
        settings.zoom = zoom;
        settings.size = Size{400, 200};
        const Picture picture = show(image, settings);
        int across = 0;
        for (int x = 0; x < 400; ++x) across += picture.at(x, 100) == grey(255) ? 1 : 0;
        // 20 rows fit 200 pixels in 40 columns' height: 5 pixels a row, 100 across at zoom 1.
        EXPECT_NEAR(across, 100.0 * zoom, 1.0) << zoom;
    }
}

TEST(Render, PanMovesByPixelsOfThePictureWhateverTheView) {
    const StoredImage image = makeChart(16, 12);
    for (const double degrees : {0.0, 90.0, 180.0, 30.0}) {
        for (const double zoom : {1.0, 1.7}) {
            DisplaySettings settings;
            settings.size = Size{30, 25};
            settings.degrees = degrees;
            settings.zoom = zoom;
            const Picture before = show(image, settings);
            settings.pan = Pan{4.0, -3.0};
            const Picture after = show(image, settings);
            int different = 0;
            for (int y = 0; y < 22; ++y)
                for (int x = 4; x < 30; ++x) different += after.at(x, y) != before.at(x - 4, y + 3) ? 1 : 0;
            // Exactly the same but for pixels whose centre falls on the border between two image pixels.
            EXPECT_LE(different, degrees == 30.0 ? 6 : 0) << degrees << ' ' << zoom;
        }
    }
}

TEST(Render, PixelShapeIsKept) {
    for (const double ratio : {2.0, 0.5}) {
        StoredImage image = makeImage(20, 20, [](int, int) { return 4095; });
        image.ratioYx = ratio;
        const Picture picture = show(image, {});
        EXPECT_EQ(picture.width, ratio > 1.0 ? 20 : 40);
        EXPECT_EQ(picture.height, ratio > 1.0 ? 40 : 20);
        EXPECT_TRUE(std::all_of(picture.pixels.begin(), picture.pixels.end(),
                                [](unsigned int pixel) { return pixel == grey(255); }));
    }
}

TEST(Render, InversionTogglesAndPaddingStaysBlack) {
    StoredImage image = makeImage(3, 1, [](int x, int) { return x == 0 ? 0 : 4095; });
    image.grey().padding = BitPlane(3, 1);
    image.grey().padding.set(2, 0);
    for (const bool inverted : {false, true}) {
        for (const bool invert : {false, true}) {
            image.grey().presentation.inverse = inverted;
            DisplaySettings settings;
            settings.invert = invert;
            const Picture picture = show(image, settings);
            EXPECT_EQ(picture.at(0, 0), grey(inverted != invert ? 255 : 0));
            EXPECT_EQ(picture.at(1, 0), grey(inverted != invert ? 0 : 255));
            EXPECT_EQ(picture.at(2, 0), grey(0));
        }
    }
}

TEST(Render, BackgroundIsForOutsideOnly) {
    StoredImage image = makeImage(2, 2, [](int, int) { return 0; });
    image.grey().padding = BitPlane(2, 2);
    image.grey().padding.set(1, 1);
    image.grey().presentation.inverse = true;
    DisplaySettings settings;
    settings.size = Size{4, 2};
    settings.background = 200;
    const Picture picture = show(image, settings);
    EXPECT_EQ(picture.at(0, 0), grey(200));
    EXPECT_EQ(picture.at(3, 1), grey(200));
    EXPECT_EQ(picture.at(1, 0), grey(255));
    EXPECT_EQ(picture.at(2, 1), grey(0));
}

TEST(Render, NoColourOfAPaletteIsTakenForBackground) {
    const StoredImage image = makeImage(2, 2, [](int, int) { return 2048; });
    DisplaySettings settings;
    settings.size = Size{4, 2};
    settings.background = 200;
    settings.palette.emplace();
    for (const std::uint32_t colour : {0x000001U, 0x000000U, 0xC8C8C8U}) {
        settings.palette->fill(colour);
        const Picture picture = show(image, settings);
        EXPECT_EQ(picture.at(0, 0), grey(200));
        EXPECT_EQ(picture.at(1, 0), colour);
        EXPECT_EQ(picture.at(2, 1), colour);
        EXPECT_EQ(picture.at(3, 1), grey(200));
    }
}

TEST(Render, NegativeSlopesShowHighLevelsDark) {
    StoredImage image = makeImage(2, 1, [](int x, int) { return x * 4095; });
    image.grey().modality.slope = -1.0;
    image.grey().modality.intercept = 4095.0;
    EXPECT_EQ(show(image, {}).at(0, 0), grey(255));
    EXPECT_EQ(show(image, {}).at(1, 0), grey(0));
}

TEST(Render, ExtremeViewsStayWithinThePicture) {
    const StoredImage phantom = makePhantom();
    for (const double zoom : {minZoom, 1.0, maxZoom}) {
        for (const double pan : {-maxPan, 0.0, maxPan}) {
            for (const double degrees : {0.0, 33.0, 1e6, -1e6}) {
                DisplaySettings settings;
                settings.size = Size{33, 17};
                settings.zoom = zoom;
                settings.pan = Pan{pan, -pan};
                settings.degrees = degrees;
                settings.background = 9;
                const Picture picture = show(phantom, settings);
                EXPECT_EQ(picture.pixels.size(), 33U * 17U);
            }
        }
    }
}

TEST(Render, SmallestAndLongestImagesAndPictures) {
    const StoredImage dot = makeImage(1, 1, [](int, int) { return 4095; });
    const StoredImage line = makeImage(maxSide, 1, [](int x, int) { return x % 4096; });
    const StoredImage column = makeImage(1, maxSide, [](int, int) { return 4095; });
    for (const StoredImage* const image : {&dot, &line, &column}) {
        for (const Size size : {Size{1, 1}, Size{maxSide, 1}, Size{1, maxSide}, Size{5, 3}}) {
            DisplaySettings settings;
            settings.size = size;
            const Picture picture = show(*image, settings);
            EXPECT_EQ(picture.width, size.width);
            EXPECT_EQ(picture.height, size.height);
        }
    }
    EXPECT_EQ(show(dot, {}).at(0, 0), grey(255));
    DisplaySettings full;
    full.size = Size{maxSide, 1};
    const Picture picture = show(line, full);
    for (int x = 0; x < maxSide; ++x) ASSERT_EQ(picture.at(x, 0), grey(x % 4096 / 16)) << x;
}

}  // namespace
