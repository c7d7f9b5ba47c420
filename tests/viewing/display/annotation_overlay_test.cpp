// Where annotations come to lie in a picture, and in which colours.
#include "support/folders.h"
#include "viewing/annotations/annotations.h"
#include "viewing/image/phantom.h"
#include "viewing/render.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <numeric>
#include <set>

namespace {

using namespace viewing;

StoredImage flatImage(int width, int height, std::uint16_t level) {
    StoredImage image;
    image.width = width;
    image.height = height;
    image.grey().samples.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), level);
    image.grey().maxLevel = 4095;
    image.grey().voi = VoiWindow{{2048.0, 4096.0}};
    return image;
}

Picture show(const StoredImage& image, DisplaySettings settings, const std::string& figures) {
    settings.annotations = parseAnnotations(R"({"annotations": [)" + figures + "]}");
    std::vector<std::string> notes;
    return render(image, settings, notes);
}

/// The smallest box around the pixels of a colour; empty (right < left) where there are none.
Box boxOf(const Picture& picture, std::uint32_t colour) {
    Box box{picture.width, picture.height, -1, -1};
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            if (picture.at(x, y) != colour) continue;
            box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x), std::max(box.bottom, y)};
        }
    }
    return box;
}

std::set<std::uint32_t> coloursOf(const Picture& picture) { return {picture.pixels.begin(), picture.pixels.end()}; }

constexpr std::uint32_t mid = 0x808080;
constexpr std::uint32_t red = 0xFF0000;

const std::string redRectangle =
    R"({"figure": "rectangle", "points": [[10, 20], [30, 28]], "colour": "#FF0000", "shadow": false)";

TEST(AnnotatedRender, ImageCoordinatesFollowTheView) {
    const StoredImage image = flatImage(64, 48, 2048);
    const Picture plain = show(image, {}, redRectangle + "}");
    EXPECT_EQ(boxOf(plain, red), (Box{10, 20, 30, 28}));
    EXPECT_EQ(plain.at(20, 24), mid);

    DisplaySettings moved;
    moved.pan = {5.0, -7.0};
    EXPECT_EQ(boxOf(show(image, moved, redRectangle + "}"), red), (Box{15, 13, 35, 21}));

    DisplaySettings twice;
    twice.size = Size{128, 96};
    EXPECT_EQ(boxOf(show(image, twice, redRectangle + "}"), red), (Box{20, 40, 60, 56}));

    DisplaySettings mirrored;
    mirrored.flip = Flip::Horizontal;
    EXPECT_EQ(boxOf(show(image, mirrored, redRectangle + "}"), red), (Box{34, 20, 54, 28}));
}

TEST(AnnotatedRender, DisplayAndNormalisedCoordinatesStay) {
    const StoredImage image = flatImage(64, 48, 2048);
    for (const double zoom : {1.0, 3.0}) {
        DisplaySettings settings;
        settings.zoom = zoom;
        settings.size = Size{128, 96};
        EXPECT_EQ(boxOf(show(image, settings, redRectangle + R"(, "coordinates": "display"})"), red),
                  (Box{10, 20, 30, 28}));
        const Picture normalised = show(image, settings,
                                        R"({"figure": "rectangle", "points": [[0.25, 0.25], [0.5, 0.75]],
                                            "colour": "#FF0000", "shadow": false, "coordinates": "normalised"})");
        EXPECT_EQ(boxOf(normalised, red), (Box{32, 24, 64, 72}));
    }
}

TEST(AnnotatedRender, CirclesAndSquaresAreEquallyWideAndHighInEverySpace) {
    StoredImage flatPixels = flatImage(64, 96, 2048);
    flatPixels.ratioYx = 0.5;
    DisplaySettings settings;
    settings.size = Size{256, 192};
    for (const char* const figure :
         {R"("figure": "circle", "points": [[32, 48]], "radius": 10)",
          R"("figure": "circle", "points": [[32, 48]], "radius": 10, "filled": true)",
          R"("figure": "ellipse", "points": [[32, 48]], "radii": [10, 10], "turn": 20)",
          R"("figure": "square", "points": [[22, 28]], "side": 20)",
          R"("figure": "square", "points": [[88, 56]], "side": 80, "coordinates": "display")",
          R"("figure": "circle", "points": [[128, 96]], "radius": 40, "coordinates": "display")",
          R"("figure": "circle", "points": [[0.5, 0.5]], "radius": 0.15625, "coordinates": "normalised")",
          R"("figure": "circle", "points": [[0.5, 0.5]], "radius": 0.15625, "coordinates": "normalised",
             "filled": true)"}) {
        const Box box = boxOf(
            show(flatPixels, settings, "{" + std::string(figure) + R"(, "colour": "#FF0000", "shadow": false})"), red);
        EXPECT_NEAR(box.left, 88, 1) << figure;
        EXPECT_NEAR(box.right, 168, 1) << figure;
        EXPECT_NEAR(box.top, 56, 1) << figure;
        EXPECT_NEAR(box.bottom, 136, 1) << figure;
    }
}

TEST(AnnotatedRender, ColoursShadowsAndDashes) {
    const StoredImage image = flatImage(64, 48, 2048);
    EXPECT_EQ(coloursOf(show(image, {}, redRectangle + "}")), (std::set<std::uint32_t>{mid, red}));
    const Picture shadow = show(image, {}, R"({"figure": "line", "points": [[10, 10], [50, 10]]})");
    EXPECT_EQ(shadow.at(20, 10), 0xFFFF00U);
    EXPECT_EQ(shadow.at(20, 11), 0U);
    EXPECT_EQ(coloursOf(show(image, {},
                             R"({"figure": "line", "points": [[10, 10], [50, 10]], "pen": "dash", "shadow": false,
                                 "colour": "#FF0000"})")),
              (std::set<std::uint32_t>{mid, red}));
    const Picture filled = show(image, {},
                                R"({"figure": "polyline", "points": [[10, 10], [50, 10], [30, 40]], "filled": true,
                                    "colour": "#FF0000"})");
    EXPECT_EQ(filled.at(30, 20), red);
}

TEST(AnnotatedRender, ArrowsPointToTheirTip) {
    const StoredImage image = flatImage(100, 60, 2048);
    const Picture picture = show(image, {},
                                 R"({"figure": "arrow", "points": [[10, 30], [80, 30]], "head": 20,
                                     "colour": "#FF0000", "shadow": false})");
    for (int x = 10; x < 80; ++x) EXPECT_EQ(picture.at(x, 30), red) << x;
    // Both sides of the head end 20 pixels from the tip, 25 degrees from the shaft.
    const Box box = boxOf(picture, red);
    EXPECT_EQ(box.left, 10);
    EXPECT_EQ(box.right, 80);
    EXPECT_NEAR(box.top, 30 - 8.45, 1.0);
    EXPECT_NEAR(box.bottom, 30 + 8.45, 1.0);
    EXPECT_EQ(picture.at(71, 26), red);
    EXPECT_EQ(picture.at(71, 34), red);
    EXPECT_EQ(picture.at(61, 26), mid);

    // Where pixels are twice as high as wide, what looks the same has half the rows.
    StoredImage tall = flatImage(100, 60, 2048);
    tall.ratioYx = 2.0;
    DisplaySettings settings;
    settings.size = Size{100, 120};
    EXPECT_EQ(boxOf(show(tall, settings,
                         R"({"figure": "arrow", "points": [[50, 50], [50, 10]], "head": 20, "colour": "#FF0000",
                             "shadow": false})"),
                    red)
                  .top,
              20);
    // Without a length of its own the head is a fifth of the arrow; an arrow without length is nothing to see.
    const Picture plain = show(image, {},
                               R"({"figure": "arrow", "points": [[10, 30], [60, 30]], "colour": "#FF0000",
                                   "shadow": false})");
    EXPECT_NEAR(boxOf(plain, red).bottom, 30 + 4.2, 1.0);
    show(image, {}, R"({"figure": "arrow", "points": [[10, 30], [10, 30]]})");
}

TEST(AnnotatedRender, CurvesMayBeClosed) {
    const StoredImage image = flatImage(100, 60, 2048);
    const std::string curve =
        R"({"figure": "curve", "points": [[20, 20], [70, 20], [70, 50], [20, 50]], "colour": "#FF0000",
            "shadow": false)";
    EXPECT_LE(boxOf(show(image, {}, curve + R"(, "closed": true})"), red).left, 16);
    EXPECT_EQ(boxOf(show(image, {}, curve + "}"), red).left, 20);
}

TEST(AnnotatedRender, LaterAnnotationsLieOnTop) {
    const Picture picture = show(flatImage(64, 48, 2048), {},
                                 R"({"figure": "rectangle", "points": [[0, 0], [40, 40]], "filled": true},
                                    {"figure": "rectangle", "points": [[5, 5], [30, 30]], "filled": true,
                                     "colour": "#FF0000"})");
    EXPECT_EQ(picture.at(2, 2), 0xFFFF00U);
    EXPECT_EQ(picture.at(15, 15), red);
}

TEST(AnnotatedRender, TextsAreAlignedAndHaloed) {
    const StoredImage image = flatImage(200, 60, 2048);
    const auto boxFor = [&image](const std::string& align) {
        return boxOf(show(image, {},
                          R"({"figure": "text", "points": [[100, 20]], "text": "EHE", "colour": "#FF0000",
                                         "align": ")" +
                              align + "\"}"),
                     red);
    };
    EXPECT_GE(boxFor("left").left, 100);
    EXPECT_LT(boxFor("right").right, 100);
    EXPECT_NEAR(boxFor("centre").left + boxFor("centre").right, 200, 4);
    EXPECT_TRUE(coloursOf(show(image, {}, R"({"figure": "text", "points": [[100, 20]], "text": "E"})")).contains(0));
    const Picture bare = show(image, {}, R"({"figure": "text", "points": [[100, 20]], "text": "E", "shadow": false})");
    EXPECT_FALSE(coloursOf(bare).contains(0));
    // A character beyond the first plane, and one of two bytes.
    EXPECT_GT(coloursOf(show(image, {}, R"({"figure": "text", "points": [[9, 9]], "text": "\uD835\uDD38 µ"})")).size(),
              1U);
}

TEST(BurnIn, WritesWhiteLinesWithDarkShadowsAndTouchesNothingElse) {
    const StoredImage image = flatImage(64, 48, 2048);
    DisplaySettings settings;
    settings.burnIn = true;
    const Picture picture = show(image, settings, R"({"figure": "line", "points": [[10, 20], [50, 20]]})");
    EXPECT_EQ(coloursOf(picture), (std::set<std::uint32_t>{0, mid, 0xFFFFFF}));
    EXPECT_EQ(picture.at(30, 20), 0xFFFFFFU);
    const Box line = boxOf(picture, 0xFFFFFF);
    EXPECT_NEAR(line.left, 10, 2);
    EXPECT_NEAR(line.right, 50, 2);
}

TEST(BurnIn, IsMagnifiedWithTheImage) {
    DisplaySettings settings;
    settings.burnIn = true;
    settings.size = Size{256, 192};
    const std::string line = R"({"figure": "line", "points": [[10, 20], [50, 20]]})";
    const Picture picture = show(flatImage(64, 48, 2048), settings, line);
    settings.size = Size{64, 48};
    const Picture small = show(flatImage(64, 48, 2048), settings, line);
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x) ASSERT_EQ(picture.at(x * 4 + 2, y * 4 + 2), small.at(x, y));
}

TEST(BurnIn, IsWhiteOnInvertedImagesToo) {
    StoredImage image = flatImage(64, 48, 1024);
    image.grey().presentation.inverse = true;
    DisplaySettings settings;
    settings.burnIn = true;
    const std::string line = R"({"figure": "line", "points": [[10, 20], [50, 20]]})";
    EXPECT_EQ(show(image, settings, line).at(30, 20), 0xFFFFFFU);
    settings.invert = true;
    EXPECT_EQ(show(image, settings, line).at(30, 20), 0U);
}

TEST(BurnIn, KeepsOverlayPlanesPaddingAndShutters) {
    const StoredImage phantom = makePhantom();
    DisplaySettings settings;
    std::vector<std::string> notes;
    const Picture before = render(phantom, settings, notes);
    settings.burnIn = true;
    const Picture nothing = show(phantom, settings, "");
    EXPECT_EQ(nothing.pixels, before.pixels);

    const Picture covered =
        show(phantom, settings, R"({"figure": "rectangle", "points": [[-5, -5], [700, 600]], "filled": true})");
    for (int y = 0; y < before.height; ++y) {
        for (int x = 0; x < before.width; ++x) {
            const std::uint32_t was = before.at(x, y);
            const bool isColoured = (was >> 16U) != (was & 0xFFU);
            if (!isColoured) continue;
            ASSERT_EQ(covered.at(x, y), was) << x << ',' << y;
        }
    }
    EXPECT_EQ(covered.at(0, 0), before.at(0, 0));
    EXPECT_EQ(covered.at(65, 480), 0U);
    EXPECT_EQ(covered.at(320, 290), 0xFFFFFFU);
}

TEST(BurnIn, CutsNoTextOfTheExample) {
    const StoredImage phantom = makePhantom();
    const auto burnt = [&](const std::vector<Annotation>& annotations, bool shutters) {
        DisplaySettings settings;
        settings.burnIn = true;
        settings.shutters = shutters;
        settings.annotations = annotations;
        std::vector<std::string> notes;
        return render(phantom, settings, notes).pixels;
    };
    const auto differences = [](const auto& a, const auto& b) {
        return std::inner_product(a.begin(), a.end(), b.begin(), 0, std::plus<>(), std::not_equal_to<>());
    };
    const auto plain = burnt({}, true);
    const auto plainWithoutShutters = burnt({}, false);
    for (const Annotation& annotation :
         readAnnotations((zoltest::sourceFolder() / "examples/annotations/all-figures.json").string())) {
        if (annotation.kind != FigureKind::Text) continue;
        const int shown = differences(burnt({annotation}, true), plain);
        EXPECT_GT(shown, 100) << annotation.text;
        EXPECT_EQ(shown, differences(burnt({annotation}, false), plainWithoutShutters)) << annotation.text;
    }
}

TEST(BurnIn, TakesAllSpaces) {
    DisplaySettings settings;
    settings.burnIn = true;
    settings.zoom = 2.0;
    const StoredImage image = flatImage(64, 48, 2048);
    // Pixels of the picture: zoomed about the centre, column 32 + (x - 32) / 2 of the image.
    const Picture display =
        show(image, settings, R"({"figure": "line", "points": [[0, 24], [64, 24]], "coordinates": "display"})");
    EXPECT_EQ(display.at(32, 24), 0xFFFFFFU);
    // Fractions of the image.
    const Picture normalised =
        show(image, settings, R"({"figure": "line", "points": [[0.5, 0.1], [0.5, 0.9]], "coordinates": "normalised"})");
    EXPECT_EQ(normalised.at(32, 24), 0xFFFFFFU);
}

}  // namespace
