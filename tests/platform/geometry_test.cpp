// Cutting, flattening and bounds of outlines in the plane.
#include "platform/geometry.h"

#include "support/test_data.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using zolplatform::Curve;

struct Point {
    double x = 0.0;
    double y = 0.0;

    bool operator==(const Point&) const = default;
};
using Segment = zolplatform::Segment<Point>;
using Points = std::vector<Point>;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

double cross(Point origin, Point a, Point b) {
    return (a.x - origin.x) * (b.y - origin.y) - (a.y - origin.y) * (b.x - origin.x);
}

/// Distance of a point from a segment, by definition.
double distanceFrom(Point start, Point end, Point p) {
    const double dx = end.x - start.x;
    const double dy = end.y - start.y;
    const double square = dx * dx + dy * dy;
    const double t = square > 0.0 ? ((p.x - start.x) * dx + (p.y - start.y) * dy) / square : 0.0;
    const double inside = std::clamp(t, 0.0, 1.0);
    return std::hypot(start.x + inside * dx - p.x, start.y + inside * dy - p.y);
}

double distanceFrom(const Points& chain, Point p) {
    double nearest = infinite;
    for (std::size_t i = 1; i < chain.size(); ++i) {
        nearest = std::min(nearest, distanceFrom(chain[i - 1], chain[i], p));
    }
    return nearest;
}

/// Even-odd rule: how often a ray to the right crosses the polygon's edges.
bool covers(const Points& polygon, Point p) {
    bool inside = false;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const Point a = polygon[i];
        const Point b = polygon[(i + 1) % polygon.size()];
        if ((a.y > p.y) == (b.y > p.y)) continue;
        const double x = a.x + (p.y - a.y) / (b.y - a.y) * (b.x - a.x);
        if (x > p.x) inside = !inside;
    }
    return inside;
}

TEST(Geometry, PointsOnTheLimitAreWithinAndNonNumbersAreNot) {
    EXPECT_TRUE(zolplatform::isWithin(Point{4.0, -4.0}, 4.0));
    EXPECT_FALSE(zolplatform::isWithin(Point{4.0, std::nextafter(-4.0, -5.0)}, 4.0));
    EXPECT_FALSE(zolplatform::isWithin(Point{notANumber, 0.0}, 4.0));
    EXPECT_FALSE(zolplatform::isWithin(Point{0.0, infinite}, 4.0));
    EXPECT_TRUE(zolplatform::areWithin(Points{}, 4.0));
    EXPECT_FALSE(zolplatform::areWithin(Points{{0.0, 0.0}, {5.0, 0.0}}, 4.0));
    EXPECT_EQ(zolplatform::limited(Point{9.0, -3.0}, 4.0), (Point{4.0, -3.0}));
}

TEST(Geometry, BoundsHoldEveryPoint) {
    const auto bounds = zolplatform::boundsOf(std::array{Point{1.0, 5.0}, Point{-2.0, 7.0}, Point{0.0, -1.0}});
    EXPECT_EQ(bounds.low, (Point{-2.0, -1.0}));
    EXPECT_EQ(bounds.high, (Point{1.0, 7.0}));
}

TEST(Geometry, SegmentsAreCutAtTheLimit) {
    const auto cut = [](Point start, Point end) { return zolplatform::clipped(Segment{start, end}, 4.0); };
    const auto level = cut({-10.0, 1.0}, {10.0, 1.0});
    ASSERT_TRUE(level);
    EXPECT_EQ(level->start, (Point{-4.0, 1.0}));
    EXPECT_EQ(level->end, (Point{4.0, 1.0}));
    const auto backwards = cut({0.0, 8.0}, {0.0, 0.0});
    ASSERT_TRUE(backwards);
    EXPECT_EQ(backwards->start, (Point{0.0, 4.0}));
    EXPECT_EQ(backwards->end, (Point{0.0, 0.0}));
    const auto inside = cut({0.1, 0.2}, {0.3, 0.7});
    ASSERT_TRUE(inside);
    EXPECT_EQ(inside->start, (Point{0.1, 0.2}));
    EXPECT_EQ(inside->end, (Point{0.3, 0.7}));
    const auto corner = cut({2.0, 6.0}, {6.0, 2.0});  // touches the corner
    ASSERT_TRUE(corner);
    EXPECT_EQ(corner->start, (Point{4.0, 4.0}));
    EXPECT_EQ(corner->end, (Point{4.0, 4.0}));
    EXPECT_FALSE(cut({2.5, 6.0}, {6.0, 2.5}));
    EXPECT_FALSE(cut({5.0, -1.0}, {5.0, 1.0}));
    EXPECT_FALSE(cut({5.0, 5.0}, {5.0, 5.0}));
    EXPECT_TRUE(cut({4.0, 4.0}, {4.0, 4.0}));
}

TEST(Geometry, CutSegmentsAreAllThatLiesWithinTheLimit) {
    zoltest::Random random(20261122);
    const auto coordinate = [&random] { return random.real(-12.0, 12.0); };
    constexpr double limit = 4.0;
    for (int round = 0; round < 5000; ++round) {
        const Point start{coordinate(), coordinate()};
        const Point end{coordinate(), coordinate()};
        const auto part = zolplatform::clipped(Segment{start, end}, limit);
        for (int i = 0; i <= 50; ++i) {
            const Point p = zolplatform::between(start, end, i / 50.0);
            const bool within = zolplatform::isWithin(p, limit);
            const double off = part ? distanceFrom(part->start, part->end, p) : infinite;
            if (within) {
                ASSERT_LT(off, 1e-9) << "round " << round;
            } else {
                ASSERT_GT(off, 0.0) << "round " << round;
            }
        }
        if (!part) continue;
        EXPECT_TRUE(zolplatform::isWithin(part->start, limit) && zolplatform::isWithin(part->end, limit));
        EXPECT_LT(distanceFrom(start, end, part->start), 1e-9) << "round " << round;
        EXPECT_LT(distanceFrom(start, end, part->end), 1e-9) << "round " << round;
    }
}

TEST(Geometry, PolygonsAreCutAtTheLimit) {
    const Points inside{{0.0, 0.0}, {1.0, 0.0}, {0.0, 1.0}};
    EXPECT_EQ(zolplatform::clippedPolygon(inside, 4.0), inside);
    EXPECT_TRUE(zolplatform::clippedPolygon(Points{{5.0, 5.0}, {6.0, 5.0}, {5.0, 6.0}}, 4.0).empty());
    EXPECT_TRUE(zolplatform::clippedPolygon(Points{}, 4.0).empty());
    const Points square = zolplatform::clippedPolygon(Points{{-9.0, -9.0}, {9.0, -9.0}, {9.0, 9.0}, {-9.0, 9.0}}, 4.0);
    ASSERT_EQ(square.size(), 4U);
    for (const Point corner : {Point{-4.0, -4.0}, Point{4.0, -4.0}, Point{4.0, 4.0}, Point{-4.0, 4.0}}) {
        EXPECT_EQ(std::count(square.begin(), square.end(), corner), 1);
    }
}

TEST(Geometry, CutPolygonsCoverTheSameWithinTheLimit) {
    zoltest::Random random(7);
    const auto coordinate = [&random] { return random.real(-10.0, 10.0); };
    constexpr double limit = 4.0;
    for (int round = 0; round < 300; ++round) {
        Points polygon(static_cast<std::size_t>(random.integer(3, 7)));
        for (Point& p : polygon) p = {coordinate(), coordinate()};
        const Points part = zolplatform::clippedPolygon(polygon, limit);
        EXPECT_TRUE(zolplatform::areWithin(part, limit));
        for (double y = -3.95; y < limit; y += 0.37) {
            for (double x = -3.95; x < limit; x += 0.37) {
                ASSERT_EQ(covers(part, {x, y}), covers(polygon, {x, y}))
                    << "round " << round << " at " << x << ", " << y;
            }
        }
    }
}

constexpr Curve<Point> bow{Point{0.0, 0.0}, Point{10.0, 30.0}, Point{50.0, 30.0}, Point{60.0, 0.0}};

TEST(Geometry, HalvesOfACurveAreTheCurve) {
    const auto [first, second] = zolplatform::halvesOf(bow);
    EXPECT_EQ(first[0], bow[0]);
    EXPECT_EQ(first[3], second[0]);
    EXPECT_EQ(second[3], bow[3]);
    for (int i = 0; i <= 8; ++i) {
        const double t = i / 8.0;
        const Point ofFirst = zolplatform::pointOf(first, t);
        const Point ofSecond = zolplatform::pointOf(second, t);
        EXPECT_LT(zolplatform::distance(ofFirst, zolplatform::pointOf(bow, t / 2.0)), 1e-12);
        EXPECT_LT(zolplatform::distance(ofSecond, zolplatform::pointOf(bow, 0.5 + t / 2.0)), 1e-12);
    }
}

TEST(Geometry, EvenLinesAreFourUnitsLong) {
    const auto piecesOf = [](const Curve<Point>& curve) {
        Points out;
        zolplatform::appendEvenLines(curve, out);
        EXPECT_EQ(out.back(), curve[3]);
        return out.size();
    };
    const double hull = std::hypot(10.0, 30.0) * 2.0 + 40.0;
    EXPECT_EQ(piecesOf(bow), static_cast<std::size_t>(hull / 4.0));
    EXPECT_EQ(piecesOf({Point{0.0, 0.0}, Point{1.0, 1.0}, Point{2.0, 1.0}, Point{3.0, 0.0}}), 4U);
    EXPECT_EQ(piecesOf({Point{0.0, 0.0}, Point{1e6, 0.0}, Point{0.0, 1e6}, Point{1e6, 1e6}}), 512U);
    EXPECT_EQ(piecesOf({Point{0.0, 0.0}, Point{0.0, 0.0}, Point{900.0, 0.0}, Point{900.0, 0.0}}), 1U);
    Points out;
    zolplatform::appendEvenLines(bow, out);
    EXPECT_EQ(out[0], zolplatform::pointOf(bow, 1.0 / static_cast<double>(out.size())));
}

TEST(Geometry, ExactLinesKeepTheTolerance) {
    constexpr double tolerance = 0.25;
    const auto never = [](const Curve<Point>&) { return false; };
    Points chain{bow[0]};
    zolplatform::appendExactLines(bow, tolerance, 40, never, chain);
    EXPECT_GT(chain.size(), 4U);
    EXPECT_LT(chain.size(), 40U);
    for (int i = 0; i <= 500; ++i) {
        ASSERT_LE(distanceFrom(chain, zolplatform::pointOf(bow, i / 500.0)), tolerance) << i;
    }
    const Curve<Point> straight{Point{0.0, 0.0}, Point{10.0, 10.0}, Point{20.0, 20.0}, Point{30.0, 30.0}};
    Points line;
    zolplatform::appendExactLines(straight, tolerance, 40, never, line);
    EXPECT_EQ(line, (Points{{30.0, 30.0}}));
}

TEST(Geometry, ExactLinesEndWithTheHalvingsAndWhereTheyMayBeCoarse) {
    Points out;
    zolplatform::appendExactLines(
        bow, 1e-9, 3, [](const Curve<Point>&) { return false; }, out);
    EXPECT_EQ(out.size(), 8U);
    Points rightHalf;
    const auto isLeft = [](const Curve<Point>& curve) { return curve[3].x <= 30.0; };
    zolplatform::appendExactLines(bow, 1e-9, 3, isLeft, rightHalf);
    EXPECT_EQ(rightHalf.size(), 5U);
    EXPECT_EQ(rightHalf[0], zolplatform::pointOf(bow, 0.5));
}

TEST(Geometry, EllipsesTouchTheMiddlesOfTheSides) {
    const std::array corners{Point{0.0, 0.0}, Point{8.0, 0.0}, Point{8.0, 4.0}, Point{0.0, 4.0}};
    const Points curves = zolplatform::ellipseCurves(corners);
    ASSERT_EQ(curves.size(), 13U);
    EXPECT_EQ(curves[0], (Point{8.0, 2.0}));
    EXPECT_EQ(curves[3], (Point{4.0, 4.0}));
    EXPECT_EQ(curves[6], (Point{0.0, 2.0}));
    EXPECT_EQ(curves[9], (Point{4.0, 0.0}));
    EXPECT_EQ(curves[12], curves[0]);
    for (std::size_t i = 0; i < 12; i += 3) {
        const Curve<Point> quarter{curves[i], curves[i + 1], curves[i + 2], curves[i + 3]};
        for (int k = 0; k <= 20; ++k) {
            const Point p = zolplatform::pointOf(quarter, k / 20.0);
            EXPECT_NEAR(std::hypot((p.x - 4.0) / 4.0, (p.y - 2.0) / 2.0), 1.0, 3e-4);
        }
    }
}

TEST(Geometry, EllipsesInParallelogramsTouchTheirSides) {
    const std::array corners{Point{0.0, 0.0}, Point{8.0, 2.0}, Point{10.0, 8.0}, Point{2.0, 6.0}};
    const Points curves = zolplatform::ellipseCurves(corners);
    for (std::size_t i = 0; i < 4; ++i) {
        const Point a = corners[(i + 1) % 4];
        const Point b = corners[(i + 2) % 4];
        EXPECT_EQ(curves[3 * i], zolplatform::between(a, b, 0.5)) << i;
        EXPECT_NEAR(cross(a, b, curves[3 * i + 1]), 0.0, 1e-12) << i;  // the tangent is the side
    }
}

}  // namespace
