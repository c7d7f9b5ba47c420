// Interpolations, the image primitives, sharpening and the magnifier, as a picture shows them.
#include "viewing/display/raster_setup.h"
#include "viewing/display/separate_planes.h"
#include "viewing/image/phantom.h"
#include "viewing/render.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>

namespace {

using namespace viewing;

constexpr std::array<Interpolation, 3> interpolations{Interpolation::Nearest, Interpolation::Bilinear,
                                                      Interpolation::Bicubic};

constexpr unsigned int grey(int level) { return static_cast<unsigned int>(level) * 0x010101U; }

Picture show(const StoredImage& image, const DisplaySettings& settings) {
    std::vector<std::string> notes;
    Picture picture = render(image, settings, notes);
    EXPECT_TRUE(notes.empty()) << notes.front();
    return picture;
}

/// 16 levels make one grey.
StoredImage makeImage(int width, int height, const std::function<int(int, int)>& level, int levels = levels12) {
    StoredImage image;
    image.width = width;
    image.height = height;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) image.grey().samples.push_back(static_cast<std::uint16_t>(level(x, y)));
    image.grey().levels = levels;
    image.grey().maxLevel = levels - 1;
    image.grey().voi = VoiWindow{{levels / 2.0, static_cast<double>(levels)}};
    return image;
}

StoredImage makeColourImage(int width, int height, const std::function<std::uint32_t(int, int)>& colour) {
    StoredImage image;
    image.width = width;
    image.height = height;
    Rgb8Pixels pixels;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) pixels.push_back(colour(x, y));
    image.pixels = ColourImage{std::move(pixels)};
    return image;
}

/// A smooth surface without symmetry.
int surface(int x, int y) {
    return static_cast<int>(2000 + 900 * std::sin(x * 0.3 + y * 0.1) + 500 * std::sin(y * 0.35) + 6 * x - 4 * y);
}

int channel(std::uint32_t pixel, unsigned shift) { return static_cast<int>((pixel >> shift) & 0xFFU); }

struct Difference {
    double mean = 0.0;
    int largest = 0;
};

Difference differenceOf(const Picture& a, const Picture& b) {
    Difference result;
    EXPECT_EQ(a.width, b.width);
    EXPECT_EQ(a.height, b.height);
    for (std::size_t i = 0; i < a.pixels.size(); ++i) {
        for (const unsigned shift : {0U, 8U, 16U}) {
            const int difference = std::abs(channel(a.pixels[i], shift) - channel(b.pixels[i], shift));
            result.mean += difference / 3.0 / static_cast<double>(a.pixels.size());
            result.largest = std::max(result.largest, difference);
        }
    }
    return result;
}

TEST(Interpolation, OneToOneEveryInterpolationCopies) {
    const StoredImage image = makePhantom();
    const Picture nearest = show(image, {});
    for (const Interpolation interpolation : interpolations) {
        for (const bool accelerated : {false, true}) {
            DisplaySettings settings;
            settings.interpolation = interpolation;
            settings.accelerated = accelerated;
            EXPECT_EQ(show(image, settings).pixels, nearest.pixels) << static_cast<int>(interpolation) << accelerated;
        }
    }
}

TEST(Interpolation, BilinearIsInTheMiddleBetweenPixelsInBothDirections) {
    for (const bool upright : {false, true}) {
        for (const int levels : {levels12, levels16}) {
            const int scale = levels / 256;
            const StoredImage image = makeImage(
                upright ? 1 : 2, upright ? 2 : 1, [&](int x, int y) { return (x + y == 0 ? 40 : 200) * scale; },
                levels);
            DisplaySettings settings;
            settings.interpolation = Interpolation::Bilinear;
            settings.size = upright ? Size{8, 16} : Size{16, 8};
            for (const bool accelerated : {false, true}) {
                settings.accelerated = accelerated;
                const Picture picture = show(image, settings);
                std::vector<int> along;
                for (int i = 0; i < 16; ++i) along.push_back(channel(upright ? picture.at(4, i) : picture.at(i, 4), 0));
                // Flat up to the pixels' middles, a slope of 20 for each eighth of a pixel between them.
                for (int i = 0; i < 16; ++i) {
                    const double expected = 40.0 + 160.0 * std::clamp((i + 0.5) / 8.0 - 0.5, 0.0, 1.0);
                    EXPECT_NEAR(along[static_cast<std::size_t>(i)], expected, 1.6) << i << upright << levels;
                }
            }
        }
    }
}

TEST(Interpolation, BicubicIsSteeperThanBilinear) {
    const StoredImage image = makeImage(8, 8, [](int x, int) { return x < 4 ? 1000 : 3000; });
    DisplaySettings settings;
    settings.size = Size{80, 80};
    settings.interpolation = Interpolation::Bilinear;
    const Picture bilinear = show(image, settings);
    settings.interpolation = Interpolation::Bicubic;
    const Picture bicubic = show(image, settings);
    EXPECT_GT(channel(bilinear.at(37, 40), 0), channel(bicubic.at(37, 40), 0));
    EXPECT_LT(channel(bilinear.at(42, 40), 0), channel(bicubic.at(42, 40), 0));
    EXPECT_LT(channel(bicubic.at(33, 40), 0), 1000 / 16);  // undershoots
    EXPECT_GT(channel(bicubic.at(47, 40), 0), 3000 / 16);
}

TEST(Interpolation, AcceleratedPicturesAreThePlainOnes) {
    const std::vector<StoredImage> images{makeImage(50, 40, surface),
                                          makeImage(
                                              50, 40, [](int x, int y) { return 16 * surface(x, y); }, levels16),
                                          makeColourImage(50, 40, [](int x, int y) {
                                              return static_cast<std::uint32_t>(surface(x, y) / 16) |
                                                     static_cast<std::uint32_t>(surface(y, x) / 16) << 8U |
                                                     static_cast<std::uint32_t>(surface(x + 9, y) / 16) << 16U;
                                          })};
    for (const StoredImage& image : images) {
        for (const Interpolation interpolation : interpolations) {
            for (const double degrees : {0.0, 90.0, 180.0, 270.0, 30.0}) {
                for (const Flip flip : {Flip::None, Flip::Horizontal}) {
                    DisplaySettings settings;
                    settings.size = Size{91, 80};
                    settings.interpolation = interpolation;
                    settings.degrees = degrees;
                    settings.flip = flip;
                    settings.zoom = 1.3;
                    settings.pan = {7.0, -5.0};
                    settings.background = 77;
                    const Picture plain = show(image, settings);
                    settings.accelerated = true;
                    const Difference difference = differenceOf(show(image, settings), plain);
                    EXPECT_LE(difference.mean, 1.6) << degrees << static_cast<int>(interpolation);
                    DisplaySettings shifted = settings;
                    shifted.accelerated = false;
                    shifted.pan.x += 1.0;
                    EXPECT_GT(differenceOf(show(image, shifted), plain).mean, 2.0);
                }
            }
        }
    }
}

TEST(Interpolation, AcceleratedPicturesHaveTheWholePhantom) {
    // Shutters, planes, padding and an embedded plane: resampled as display colours.
    DisplaySettings settings;
    settings.zoom = 1.7;
    settings.degrees = 25.0;
    settings.background = 90;
    const Picture plain = show(makePhantom(), settings);
    settings.accelerated = true;
    EXPECT_LE(differenceOf(show(makePhantom(), settings), plain).mean, 0.5);
}

TEST(Interpolation, AcceleratedLevelsNearBlackAreNotBackground) {
    const StoredImage image = makeImage(8, 8, [](int x, int) { return x < 4 ? 0 : 4095; });
    DisplaySettings settings;
    settings.size = Size{80, 40};
    settings.background = 200;
    settings.accelerated = true;
    for (const Interpolation interpolation : interpolations) {
        settings.interpolation = interpolation;
        const Picture picture = show(image, settings);
        EXPECT_EQ(picture.at(10, 20), grey(200));
        EXPECT_EQ(picture.at(22, 20), grey(0));
        EXPECT_EQ(picture.at(36, 20), grey(0));  // where the cubic undershoots
        EXPECT_EQ(picture.at(44, 20), grey(255));
        EXPECT_EQ(picture.at(57, 20), grey(255));
        EXPECT_EQ(picture.at(70, 20), grey(200));
    }
}

TEST(Interpolation, AViewThatThePrimitivesRefuseIsDrawnWithoutThemAndSaid) {
    for (const bool colour : {false, true}) {
        const StoredImage image =
            colour ? makeColourImage(20, 20, [](int, int) { return 0x808080U; }) : makeImage(20, 20, surface);
        DisplaySettings settings;
        settings.size = Size{40, 40};
        settings.degrees = 30.0;
        settings.pan = {5000.0, 0.0};
        settings.background = 50;
        settings.accelerated = true;
        std::vector<std::string> notes;
        const Picture picture = render(image, settings, notes);
        EXPECT_EQ(notes,
                  std::vector<std::string>{"cannot be drawn by the image primitives in this view; drawn without them"});
        EXPECT_EQ(picture.pixels, std::vector<std::uint32_t>(1600, grey(50)));
    }
}

TEST(Interpolation, OverlaysKeepTheirEdgesAndColours) {
    StoredImage image = makeImage(6, 4, [](int x, int y) { return surface(x, y) | (x == 4 ? 0x2000 : 0); });
    image.grey().embedded.push_back({13, PlaneKind::RegionOfInterest});
    OverlayPlane plane{{1, 1}, BitPlane(1, 1), PlaneKind::Graphics};
    plane.bits.set(0, 0);
    image.overlays = {plane};
    image.shutters.rectangle = Box{0, 0, 5, 2};
    image.shutters.presentationValue = 0x6000;
    for (const Interpolation interpolation : interpolations) {
        DisplaySettings settings;
        settings.interpolation = interpolation;
        settings.size = Size{60, 40};
        const Picture picture = show(image, settings);
        for (int y = 0; y < 40; ++y) {
            for (int x = 0; x < 60; ++x) {
                const std::uint32_t pixel = picture.at(x, y);
                const bool onPlane = x / 10 == 1 && y / 10 == 1;
                const bool onRegion = x / 10 == 4;
                if (x % 10 == 0 || y % 10 == 0) continue;
                EXPECT_EQ(pixel == graphicsColour, onPlane) << x << ' ' << y;
                EXPECT_EQ(pixel == regionColour, onRegion) << x << ' ' << y;
                if (y > 30 && !onRegion) {
                    EXPECT_EQ(pixel, grey(0x60)) << x << ' ' << y;
                }
            }
        }
        settings.overlays = false;
        for (const std::uint32_t pixel : show(image, settings).pixels)
            EXPECT_TRUE(pixel != graphicsColour && pixel != regionColour);
    }
}

TEST(SeparatePlanes, EmbeddedPlanesGoBehindTheSeparateOnesGraphicsFirst) {
    StoredImage image = makeImage(3, 2, [](int x, int y) { return (y * 3 + x) | (x == 0 ? 0x1000 : 0x4000); });
    image.grey().embedded = {{12, PlaneKind::RegionOfInterest}, {14, PlaneKind::Graphics}};
    image.overlays = {OverlayPlane{{2, 1}, BitPlane(1, 1), PlaneKind::RegionOfInterest}};
    const StoredImage separate = withSeparatePlanes(image);
    EXPECT_TRUE(separate.grey().embedded.empty());
    EXPECT_EQ(separate.grey().samples, (std::vector<std::uint16_t>{0, 1, 2, 3, 4, 5}));
    ASSERT_EQ(separate.overlays.size(), 3U);
    EXPECT_EQ(separate.overlays[0].origin, (Point{2, 1}));
    EXPECT_EQ(separate.overlays[1].kind, PlaneKind::Graphics);
    EXPECT_EQ(separate.overlays[2].kind, PlaneKind::RegionOfInterest);
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(separate.overlays[1].bits.get(i % 3, i / 3), i % 3 != 0);
        EXPECT_EQ(separate.overlays[2].bits.get(i % 3, i / 3), i % 3 == 0);
    }
}

TEST(Sharpening, RaisesEdgesOfGreyAndColourAndLeavesFlatAreas) {
    const auto step = [](int x, int) { return x < 10 ? 1600 : 2400; };
    const StoredImage greyImage = makeImage(20, 12, step);
    const StoredImage deepImage = makeImage(
        20, 12, [&](int x, int y) { return 16 * step(x, y); }, levels16);
    const StoredImage colourImage =
        makeColourImage(20, 12, [&](int x, int y) { return static_cast<std::uint32_t>(step(x, y) / 16) * 0x010101U; });
    for (const StoredImage* image : {&greyImage, &deepImage, &colourImage}) {
        DisplaySettings settings;
        settings.sharpening = Sharpening{3, 1};
        const Picture picture = show(*image, settings);
        EXPECT_EQ(picture.at(5, 6), grey(100));
        EXPECT_EQ(picture.at(15, 6), grey(150));
        // A third of the box lies beyond the step: 2 * 100 - (100 + 50 / 3), cut.
        EXPECT_NEAR(channel(picture.at(9, 6), 0), 83, 1);
        EXPECT_NEAR(channel(picture.at(10, 6), 0), 167, 1);
        EXPECT_EQ(picture.at(9, 0), grey(100));  // the border is copied
    }
}

TEST(Sharpening, KeepsEmbeddedPlanesEverywhere) {
    StoredImage image = makeImage(9, 7, [](int x, int y) { return surface(x, y) | ((x + y) % 2 == 0 ? 0x1000 : 0); });
    image.grey().embedded.push_back({12, PlaneKind::Graphics});
    DisplaySettings settings;
    settings.sharpening = Sharpening{5, 3};
    const Picture picture = show(image, settings);
    for (int i = 0; i < 63; ++i) EXPECT_EQ(picture.at(i % 9, i / 9) == graphicsColour, (i % 9 + i / 9) % 2 == 0) << i;
}

TEST(Sharpening, ABoxLargerThanTheImageIsSaid) {
    const StoredImage image = makeImage(9, 7, surface);
    for (const int box : {7, 8, 1000}) {
        DisplaySettings settings;
        settings.sharpening = Sharpening{box, 3};
        std::vector<std::string> notes;
        const Picture picture = render(image, settings, notes);
        EXPECT_EQ(notes.size(), box == 7 ? 0U : 1U) << box;
        if (box != 7) {
            EXPECT_EQ(picture.pixels, show(image, {}).pixels);
        }
    }
}

TEST(Magnifier, ShowsTheMiddleLargerInACircleAndLeavesTheRest) {
    const auto pattern = [](int x, int y) { return x == 30 && y == 20 ? 4080 : 1600; };
    const StoredImage greyImage = makeImage(60, 40, pattern);
    const StoredImage deepImage = makeImage(
        60, 40, [&](int x, int y) { return 16 * pattern(x, y); }, levels16);
    const StoredImage colourImage = makeColourImage(
        60, 40, [&](int x, int y) { return static_cast<std::uint32_t>(pattern(x, y) / 16) * 0x010101U; });
    for (const StoredImage* image : {&greyImage, &deepImage, &colourImage}) {
        for (const double degrees : {0.0, 90.0, 180.0, 270.0, 33.0}) {
            DisplaySettings settings;
            settings.size = Size{60, 60};
            settings.degrees = degrees;
            const Picture plain = show(*image, settings);
            // The bright pixel's place in the picture.
            const auto brightest =
                static_cast<int>(std::max_element(plain.pixels.begin(), plain.pixels.end()) - plain.pixels.begin());
            const int x = brightest % 60;
            const int y = brightest / 60;
            settings.magnifier = Magnifier{x, y, 9, 5.0};
            const Picture picture = show(*image, settings);
            int bright = 0;
            for (int i = 0; i < 3600; ++i) {
                const double distance = std::hypot(i % 60 - x, i / 60 - y);
                const std::uint32_t pixel = picture.pixels[static_cast<std::size_t>(i)];
                if (distance >= 9.5) {
                    EXPECT_EQ(pixel, plain.pixels[static_cast<std::size_t>(i)]) << i;
                }
                if (channel(pixel, 0) > 110) {
                    ++bright;
                    EXPECT_LE(distance, 9.0) << i;  // about the middle
                }
            }
            EXPECT_GT(bright, 20) << degrees;
            EXPECT_GT(channel(picture.at(x, y), 0), 170)
                << degrees;  // under the middle of a display pixel, not its own
        }
    }
}

TEST(Magnifier, FactorOneShowsWhatIsThereAlready) {
    const StoredImage image = makeColourImage(
        50, 40, [](int x, int y) { return static_cast<std::uint32_t>(surface(x, y) / 16) * 0x010101U; });
    for (const double degrees : {0.0, 90.0, 180.0, 45.0}) {
        for (const double zoom : {1.0, 2.3}) {
            for (const Flip flip : {Flip::None, Flip::Vertical}) {
                DisplaySettings settings;
                settings.size = Size{90, 91};
                settings.interpolation = Interpolation::Bilinear;
                settings.degrees = degrees;
                settings.zoom = zoom;
                settings.flip = flip;
                settings.pan = {3.0, -4.0};
                settings.background = 30;
                const Picture plain = show(image, settings);
                for (const Magnifier& glass :
                     {Magnifier{45, 40, 20, 1.0}, Magnifier{0, 0, 30, 1.0}, Magnifier{85, 90, 12, 1.0}}) {
                    settings.magnifier = glass;
                    // The same view but for the last bits of the positions; where it ends, a pixel may fall aside.
                    const Difference difference = differenceOf(show(image, settings), plain);
                    EXPECT_LE(difference.mean, 0.12) << degrees << ' ' << zoom << ' ' << glass.x;
                }
            }
        }
    }
}

TEST(Magnifier, ItsRimIsSmoothAndReachesThePicturesEdges) {
    const StoredImage image = makeColourImage(60, 40, [](int, int) { return 0U; });
    // So small that the black image is a dot in the middle of the glass, with white background around it.
    for (const Magnifier& glass : {Magnifier{30, 20, 9, 0.02}, Magnifier{57, 38, 9, 0.02}, Magnifier{1, 0, 9, 0.02}}) {
        DisplaySettings settings;
        settings.background = 255;
        settings.magnifier = glass;
        const Picture picture = show(image, settings);
        ASSERT_EQ(picture.width, 60);
        for (int y = 0; y < 40; ++y) {
            for (int x = 0; x < 60; ++x) {
                const double distance = std::hypot(x - glass.x, y - glass.y);
                if (distance < 4.0) continue;
                const double share = std::clamp(9.5 - distance, 0.0, 1.0);
                EXPECT_EQ(channel(picture.at(x, y), 0), std::lround(255.0 * share)) << x << ',' << y;
            }
        }
    }
}

TEST(Magnifier, MayLieBesideThePicture) {
    const StoredImage image = makeImage(20, 20, surface);
    const Picture plain = show(image, {});
    for (const Magnifier& glass :
         {Magnifier{-50, 10, 20, 2.0}, Magnifier{10, 1000000, 4, 2.0}, Magnifier{-1000000, -1000000, 1, 100.0}}) {
        DisplaySettings settings;
        settings.magnifier = glass;
        EXPECT_EQ(show(image, settings).pixels, plain.pixels);
    }
}

}  // namespace
