#include "viewing/display/shutter_plane.h"

#include "support/test_data.h"
#include "viewing/image/stored_image.h"
#include "viewing/render.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <string>

namespace {

using namespace viewing;
using zoltest::Random;

/// Whether a point lies on the line between two others.
bool liesBetween(Point p, Point a, Point b) {
    const std::int64_t cross = std::int64_t{b.x - a.x} * (p.y - a.y) - std::int64_t{b.y - a.y} * (p.x - a.x);
    return cross == 0 && p.x >= std::min(a.x, b.x) && p.x <= std::max(a.x, b.x) && p.y >= std::min(a.y, b.y) &&
           p.y <= std::max(a.y, b.y);
}

/// Of a point on none of the edges: whether a ray to the right crosses an odd number of them.
bool liesWithin(Point p, const std::vector<Point>& polygon) {
    bool inside = false;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        Point a = polygon[i];
        Point b = polygon[(i + 1) % polygon.size()];
        if (a.y > b.y) std::swap(a, b);
        if (p.y < a.y || p.y >= b.y) continue;
        const std::int64_t cross = std::int64_t{b.x - a.x} * (p.y - a.y) - std::int64_t{b.y - a.y} * (p.x - a.x);
        if (cross > 0) inside = !inside;
    }
    return inside;
}

/// PS3.3, C.7.6.11, pixel by pixel.
bool isVisible(const Shutters& shutters, Point p, double ratioYx) {
    if (const auto& r = shutters.rectangle; r && (p.x < r->left || p.x > r->right || p.y < r->top || p.y > r->bottom))
        return false;
    if (const auto& c = shutters.circle) {
        const double dx = p.x - c->centre.x;
        const double dy = (p.y - c->centre.y) * ratioYx;
        if (dx * dx + dy * dy > static_cast<double>(c->radius) * c->radius) return false;
    }
    if (shutters.polygon.empty() || liesWithin(p, shutters.polygon)) return true;
    for (std::size_t i = 0; i < shutters.polygon.size(); ++i)
        if (liesBetween(p, shutters.polygon[i], shutters.polygon[(i + 1) % shutters.polygon.size()])) return true;
    return false;
}

std::string drawn(const BitPlane& hidden) {
    std::string out;
    for (int y = 0; y < hidden.height(); ++y) {
        for (int x = 0; x < hidden.width(); ++x) out += hidden.get(x, y) ? '.' : '#';
        out += '\n';
    }
    return out;
}

std::string restated(const Shutters& shutters, int width, int height, double ratioYx) {
    std::string out;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) out += isVisible(shutters, {x, y}, ratioYx) ? '#' : '.';
        out += '\n';
    }
    return out;
}

Shutters polygon(std::vector<Point> vertices) {
    Shutters shutters;
    shutters.polygon = std::move(vertices);
    return shutters;
}

TEST(ShutterPlane, APolygonInTheShapeOfARectangleIsThatRectangle) {
    Shutters rectangle;
    rectangle.rectangle = Box{2, 1, 6, 4};
    const std::string expected =
        ".........\n"
        "..#####..\n"
        "..#####..\n"
        "..#####..\n"
        "..#####..\n"
        ".........\n";
    EXPECT_EQ(drawn(hiddenPixels(rectangle, 9, 6, 1.0)), expected);
    EXPECT_EQ(drawn(hiddenPixels(polygon({{2, 1}, {6, 1}, {6, 4}, {2, 4}}), 9, 6, 1.0)), expected);
    EXPECT_EQ(drawn(hiddenPixels(polygon({{6, 4}, {6, 1}, {2, 1}, {2, 4}}), 9, 6, 1.0)), expected);
}

TEST(ShutterPlane, ACircleHasItsRim) {
    Shutters shutters;
    shutters.circle = Circle{{4, 3}, 2};
    EXPECT_EQ(drawn(hiddenPixels(shutters, 9, 7, 1.0)),
              ".........\n"
              "....#....\n"
              "...###...\n"
              "..#####..\n"
              "...###...\n"
              "....#....\n"
              ".........\n");
    EXPECT_EQ(drawn(hiddenPixels(shutters, 9, 7, 2.0)),
              ".........\n"
              ".........\n"
              "....#....\n"
              "..#####..\n"
              "....#....\n"
              ".........\n"
              ".........\n");
}

TEST(ShutterPlane, PolygonsOfLinesAndPointsAreTheirEdges) {
    EXPECT_EQ(drawn(hiddenPixels(polygon({{1, 1}, {1, 1}, {1, 1}}), 4, 3, 1.0)), "....\n.#..\n....\n");
    EXPECT_EQ(drawn(hiddenPixels(polygon({{0, 0}, {4, 2}, {0, 0}}), 5, 3, 1.0)), "#....\n..#..\n....#\n");
}

TEST(ShutterPlane, EveryShapeHidesWhatIsRestated) {
    Random random(20261122);
    for (int round = 0; round < 1500; ++round) {
        const int width = random.integer(1, 30);
        const int height = random.integer(1, 30);
        const auto point = [&] { return Point{random.integer(-10, width + 9), random.integer(-10, height + 9)}; };
        Shutters shutters;
        if (random.chance(0.3))
            shutters.rectangle = Box{random.integer(-5, width / 2), random.integer(-5, height / 2),
                                     random.integer(width / 2, width + 5), random.integer(height / 2, height + 5)};
        if (random.chance(0.4)) shutters.circle = Circle{point(), random.integer(1, 30)};
        if (random.chance(0.7))
            for (int i = random.integer(3, 9); i > 0; --i) shutters.polygon.push_back(point());
        const double ratio = random.chance(0.5) ? 1.0 : random.real(0.3, 3.0);
        ASSERT_EQ(drawn(hiddenPixels(shutters, width, height, ratio)), restated(shutters, width, height, ratio))
            << round;
    }
}

TEST(ShutterPlane, FarAwayVerticesAreNoHarm) {
    const std::vector<Point> far{{-100000, -99999}, {100000, -7}, {99998, 100000}, {-5, 99999}};
    EXPECT_EQ(drawn(hiddenPixels(polygon(far), 40, 30, 1.0)), restated(polygon(far), 40, 30, 1.0));
}

TEST(ShutterPlane, AThousandVerticesTakeNoMoreThanAMoment) {
    std::vector<Point> zigzag;
    for (int i = 0; i < 1000; ++i) zigzag.push_back({i * 2, i % 2 == 0 ? 0 : 1999});
    const std::clock_t start = std::clock();
    const BitPlane hidden = hiddenPixels(polygon(zigzag), 2000, 2000, 1.0);
    EXPECT_FALSE(hidden.get(0, 0));
    // Of the processor, whatever else it does. Asked pixel by pixel and edge by edge, this takes ten seconds.
    EXPECT_LT(std::clock() - start, 2 * CLOCKS_PER_SEC);
}

/// A black image of 12 or 16 bits or of colours, 24 x 18.
StoredImage blackImage(const std::string& kind) {
    StoredImage image;
    image.width = 24;
    image.height = 18;
    if (kind == "colour") {
        image.pixels = ColourImage{Rgb8Pixels(24 * 18, 0)};
    } else {
        image.grey().samples.assign(24 * 18, 0);
        image.grey().levels = kind == "16 bits" ? levels16 : levels12;
        image.grey().maxLevel = image.grey().levels - 1;
    }
    return image;
}

/// White where the shutters hide it.
StoredImage whiteWhereHidden(const std::string& kind, const Shutters& shutters) {
    StoredImage image = blackImage(kind);
    Rgb8Pixels colours(24 * 18, 0);
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            if (isVisible(shutters, {x, y}, 1.0)) continue;
            const auto i = static_cast<std::size_t>(y * image.width + x);
            colours[i] = 0xFFFFFF;
            if (!image.isColour()) image.grey().samples[i] = static_cast<std::uint16_t>(image.grey().levels - 1);
        }
    }
    if (image.isColour()) image.pixels = ColourImage{colours};
    return image;
}

class ShutterKindsTest : public testing::TestWithParam<std::string> {};

TEST_P(ShutterKindsTest, HideTheSamePixelsOfEveryKindOfImageAtEveryAngleAndZoom) {
    std::vector<Shutters> all(4);
    all[0].circle = Circle{{11, 8}, 6};
    all[1].polygon = {{3, 2}, {20, 4}, {15, 15}, {9, 9}, {4, 14}};
    all[2].rectangle = Box{3, 2, 17, 13};
    all[3] = all[0];
    all[3].polygon = all[1].polygon;
    all[3].rectangle = all[2].rectangle;
    for (Shutters& shutters : all) {
        shutters.presentationValue = 0xFFFF;
        StoredImage shuttered = blackImage(GetParam());
        shuttered.shutters = shutters;
        const StoredImage expected = whiteWhereHidden(GetParam(), shutters);
        for (const double degrees : {0.0, 90.0, 180.0, 270.0, 17.0, 45.0, 211.5}) {
            for (const double zoom : {0.4, 1.0, 2.5, 8.0}) {
                for (const Flip flip : {Flip::None, Flip::Horizontal}) {
                    DisplaySettings settings;
                    settings.size = Size{90, 70};
                    settings.degrees = degrees;
                    settings.zoom = zoom;
                    settings.flip = flip;
                    std::vector<std::string> notes;
                    ASSERT_EQ(render(shuttered, settings, notes).pixels, render(expected, settings, notes).pixels)
                        << degrees << ' ' << zoom;
                }
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Images, ShutterKindsTest, testing::Values("12 bits", "16 bits", "colour"));

TEST(ShutterPlane, EveryInterpolationHidesTheSamePixelsOfTwelveBits) {
    StoredImage image = blackImage("12 bits");
    image.shutters.circle = Circle{{11, 8}, 6};
    image.shutters.presentationValue = 0xFFFF;
    for (const double degrees : {0.0, 90.0, 33.0}) {
        DisplaySettings settings;
        settings.size = Size{90, 70};
        settings.degrees = degrees;
        std::vector<std::string> notes;
        const Picture nearest = render(image, settings, notes);
        for (const Interpolation interpolation : {Interpolation::Bilinear, Interpolation::Bicubic}) {
            settings.interpolation = interpolation;
            EXPECT_EQ(render(image, settings, notes).pixels, nearest.pixels) << degrees;
        }
    }
}

}  // namespace
