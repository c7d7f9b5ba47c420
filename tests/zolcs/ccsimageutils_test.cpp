#include "zolcs/ccsimageutils.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "support/test_data.h"
#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsraster.h"

namespace {

using namespace CCsImageUtils;

constexpr int most = std::numeric_limits<int>::max();
constexpr int least = std::numeric_limits<int>::min();

RECT rect(int left, int top, int right, int bottom) { return {left, top, right, bottom}; }

std::array<int, 4> edges(const RECT& r) { return {r.left, r.top, r.right, r.bottom}; }

std::array<int, 2> at(const CCsPoint& p) { return {p.x, p.y}; }

/// A transformation from a 100 x 100 image to a destination, so that its matrix is easily known.
CCs2dTrafo fit(int width, int height) {
    CCs2dTrafo trafo;
    trafo.setSizes(100, 100, width, height, 1.0, 1.0, 0, 0);
    return trafo;
}

// ------------------------------------------------------------------------------------------------ coordinates

TEST(CCsImageUtils, RoundOffRoundsHalfAwayFromZero) {
    EXPECT_EQ(roundOff(2.5), 3);
    EXPECT_EQ(roundOff(-2.5), -3);
    EXPECT_EQ(roundOff(-2.4), -2);
    EXPECT_EQ(roundOff(2.4), 2);
    EXPECT_EQ(roundOff(2.6), 3);
    EXPECT_EQ(roundOff(-2.6), -3);
    EXPECT_EQ(roundOff(0.5), 1);
    EXPECT_EQ(roundOff(-0.5), -1);
    EXPECT_EQ(roundOff(0.0), 0);
    EXPECT_EQ(roundOff(-0.0), 0);
    EXPECT_EQ(roundOff(0.49999999999999994), 0);
    EXPECT_EQ(roundOff(-0.49999999999999994), 0);
    EXPECT_EQ(roundOff(7.0), 7);
    EXPECT_EQ(roundOff(-7.0), -7);
}

TEST(CCsImageUtils, RoundOffIsDefinedForEveryDouble) {
    EXPECT_EQ(roundOff(2147483646.5), most);
    EXPECT_EQ(roundOff(2147483646.4), 2147483646);
    EXPECT_EQ(roundOff(2147483647.5), most);
    EXPECT_EQ(roundOff(1e300), most);
    EXPECT_EQ(roundOff(-2147483648.4), least);
    EXPECT_EQ(roundOff(-1e300), least);
    EXPECT_EQ(roundOff(std::numeric_limits<double>::infinity()), most);
    EXPECT_EQ(roundOff(-std::numeric_limits<double>::infinity()), least);
    EXPECT_EQ(roundOff(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(CCsImageUtils, ImageToDisplayRoundsAndDisplayToImageDeliberatelyTruncates) {
    // Scale 1.5 with the image in the middle of 300 x 150: x' = 1.5 x + 75, y' = 1.5 y.
    CCs2dTrafo trafo = fit(300, 150);
    EXPECT_EQ(at(imgToDsp(trafo, CCsPoint(0, 0))), (std::array<int, 2>{75, 0}));
    EXPECT_EQ(at(imgToDsp(trafo, CCsPoint(1, 1))), (std::array<int, 2>{77, 2}));      // 76.5 and 1.5
    EXPECT_EQ(at(imgToDsp(trafo, CCsPoint(2, 3))), (std::array<int, 2>{78, 5}));      // 78 and 4.5
    EXPECT_EQ(at(imgToDsp(trafo, CCsPoint(-51, -1))), (std::array<int, 2>{-2, -2}));  // -1.5 and -1.5

    CCs2dTrafo half = fit(50, 50);  // display to image doubles
    half.translate(0.019, -0.019);  // image moves by 0.95 display pixels
    const CCsPointDouble exact = dspToImgD(half, CCsPointDouble(3, 3));
    EXPECT_EQ(at(dspToImg(half, CCsPoint(3, 3))),
              (std::array<int, 2>{static_cast<int>(exact.x), static_cast<int>(exact.y)}));
    EXPECT_GT(exact.x, 4.0);
    EXPECT_LT(exact.x, 4.2);
    EXPECT_GT(exact.y, 7.8);
    EXPECT_LT(exact.y, 8.0);
    EXPECT_EQ(at(dspToImg(half, CCsPoint(3, 3))), (std::array<int, 2>{4, 7}));
    // Towards zero on the negative side too.
    const CCsPointDouble negative = dspToImgD(half, CCsPointDouble(0, -3));
    EXPECT_GT(negative.x, -2.0);
    EXPECT_LT(negative.x, -1.5);
    EXPECT_EQ(dspToImg(half, CCsPoint(0, -3)).x, -1);
}

TEST(CCsImageUtils, DoubleConversionsAreTheMatrices) {
    zoltest::Random random(41);
    for (int i = 0; i < 200; ++i) {
        CCs2dTrafo trafo = fit(random.integer(1, 500), random.integer(1, 500));
        trafo.rotate(random.real(0, 360));
        trafo.scale(random.real(0.1, 4));
        trafo.translate(random.real(-1, 1), random.real(-1, 1));
        double a = 0, b = 0, c = 0, d = 0, e = 0, f = 0;
        const double x = random.integer(-300, 300);
        const double y = random.integer(-300, 300);

        trafo.getImgToDsp(a, b, c, d, e, f);
        CCsPointDouble mapped = imgToDspD(trafo, CCsPointDouble(x, y));
        EXPECT_EQ(mapped.x, a * x + c * y + e);
        EXPECT_EQ(mapped.y, b * x + d * y + f);
        EXPECT_EQ(at(imgToDsp(trafo, CCsPoint(static_cast<int>(x), static_cast<int>(y)))),
                  (std::array<int, 2>{roundOff(mapped.x), roundOff(mapped.y)}));

        trafo.getTransformation(a, b, c, d, e, f);
        mapped = dspToImgD(trafo, CCsPointDouble(x, y));
        EXPECT_EQ(mapped.x, a * x + c * y + e);
        EXPECT_EQ(mapped.y, b * x + d * y + f);
        EXPECT_EQ(at(dspToImg(trafo, CCsPoint(static_cast<int>(x), static_cast<int>(y)))),
                  (std::array<int, 2>{static_cast<int>(mapped.x), static_cast<int>(mapped.y)}));
    }
}

TEST(CCsImageUtils, RectanglesAreMappedByTwoCornersAndNormalised) {
    CCs2dTrafo trafo = fit(200, 200);
    EXPECT_EQ(edges(imgToDsp(trafo, rect(1, 2, 3, 4))), (std::array<int, 4>{2, 4, 6, 8}));
    EXPECT_EQ(edges(imgToDsp(trafo, rect(3, 4, 1, 2))), (std::array<int, 4>{2, 4, 6, 8}));
    EXPECT_EQ(edges(dspToImg(trafo, rect(2, 4, 7, 9))), (std::array<int, 4>{1, 2, 3, 4}));
    EXPECT_EQ(edges(dspToImg(trafo, rect(7, 9, 2, 4))), (std::array<int, 4>{1, 2, 3, 4}));
    trafo.mirror(CCS_HORIZONTAL);
    EXPECT_EQ(edges(imgToDsp(trafo, rect(10, 20, 30, 40))), (std::array<int, 4>{140, 40, 180, 80}));
    EXPECT_EQ(edges(dspToImg(trafo, rect(140, 40, 180, 80))), (std::array<int, 4>{10, 20, 30, 40}));
}

TEST(CCsImageUtils, ConversionsAreDefinedForAnyMatrix) {
    for (const double value :
         {1e300, -1e300, 1e9, std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        CCs2dTrafo trafo(value, value, value, value, value, value);
        trafo.setSizes(100, 100, 200, 200, 1.0, 1.0, 0, 0);
        RECT out{1, 2, 3, 4};
        imgToDsp(trafo, CCsPoint(most, least));
        dspToImg(trafo, CCsPoint(most, least));
        imgToDsp(trafo, rect(least, least, most, most));
        dspToImg(trafo, rect(least, least, most, most));
        getAffineBounds(rect(0, 0, 10, 10), trafo, out, true);
    }
}

TEST(CCsImageUtils, EuclidianDistance) {
    EXPECT_EQ(getEuclidianDistance(CCsPointDouble(1, 2), CCsPointDouble(4, 6)), 5.0);
    EXPECT_EQ(getEuclidianDistance(CCsPointDouble(4, 6), CCsPointDouble(1, 2)), 5.0);
    EXPECT_EQ(getEuclidianDistance(CCsPointDouble(4, 6), CCsPointDouble(4, 6)), 0.0);
    EXPECT_EQ(getEuclidianDistance(CCsPointDouble(0, 0), CCsPointDouble(1, 1)), std::sqrt(2.0));
}

TEST(CCsImageUtils, BoundingRectangleOfVertices) {
    EXPECT_EQ(edges(getROIBoundingRect({})), (std::array<int, 4>{0, 0, 0, 0}));
    EXPECT_EQ(edges(getROIBoundingRect({CPoint(-3, 5)})), (std::array<int, 4>{-3, 5, -3, 5}));
    EXPECT_EQ(edges(getROIBoundingRect({CPoint(3, 9), CPoint(7, 1), CPoint(5, 20)})),
              (std::array<int, 4>{3, 1, 7, 20}));
    EXPECT_EQ(edges(getROIBoundingRect({CPoint(most, least), CPoint(least, most)})),
              (std::array<int, 4>{least, least, most, most}));
}

TEST(CCsImageUtils, RearrangeRectBoundsSwapsWhatIsOutOfOrder) {
    RECT out{};
    rearrangeRectBounds(out, rect(1, 2, 3, 4));
    EXPECT_EQ(edges(out), (std::array<int, 4>{1, 2, 3, 4}));
    rearrangeRectBounds(out, rect(3, 2, 1, 4));
    EXPECT_EQ(edges(out), (std::array<int, 4>{1, 2, 3, 4}));
    rearrangeRectBounds(out, rect(1, 4, 3, 2));
    EXPECT_EQ(edges(out), (std::array<int, 4>{1, 2, 3, 4}));
    rearrangeRectBounds(out, out = rect(3, 4, 1, 2));
    EXPECT_EQ(edges(out), (std::array<int, 4>{1, 2, 3, 4}));
}

// ------------------------------------------------------------------------------------------------ circle

TEST(CCsImageUtils, CircleRule) {
    const auto circle = [](const RECT& box, int width) {
        CCsCircularShutterInfo info;
        findCircShutterInfo(info, box, width);
        EXPECT_EQ(info.present, 1);
        EXPECT_EQ(edges(info.bounds), (std::array<int, 4>{0, 0, 0, 0}));
        return info;
    };
    CCsCircularShutterInfo info = circle(rect(10, 20, 30, 40), 512);
    EXPECT_EQ(info.radius, 10.0F);
    EXPECT_EQ(at(info.center), (std::array<int, 2>{20, 30}));

    info = circle(rect(10, 20, 31, 41), 512);  // 21 a side
    EXPECT_EQ(info.radius, 10.5F);
    EXPECT_EQ(at(info.center), (std::array<int, 2>{20, 30}));

    info = circle(rect(10, 20, 40, 35), 512);  // the smaller side counts
    EXPECT_EQ(info.radius, 7.5F);
    EXPECT_EQ(at(info.center), (std::array<int, 2>{17, 27}));

    info = circle(rect(30, 40, 10, 20), 512);  // corners the other way round: still right of left and below top
    EXPECT_EQ(info.radius, 10.0F);
    EXPECT_EQ(at(info.center), (std::array<int, 2>{40, 50}));

    info = circle(rect(0, 0, 0, 0), 512);  // a degenerate box is as large as the image
    EXPECT_EQ(info.radius, 511.0F);
    EXPECT_EQ(at(info.center), (std::array<int, 2>{511, 511}));

    info = circle(rect(7, 8, 50, 8), 100);  // no height
    EXPECT_EQ(info.radius, 99.0F);
    EXPECT_EQ(at(info.center), (std::array<int, 2>{106, 107}));

    info = circle(rect(least, least, most, most), 1);
    EXPECT_EQ(info.radius, 2147483648.0F);
    info = circle(rect(most, most, most, most), least);
    EXPECT_EQ(info.radius, -2147483648.0F);
}

TEST(CCsImageUtils, CircleOfARaster) {
    CCsRaster raster(512, 300, CCS_GREY12, 1.0, false, true);
    CCsCircularShutterInfo info;
    findCircShutterInfo(info, raster);
    EXPECT_EQ(info.present, 0);
    EXPECT_EQ(info.radius, 0.0F);
    raster.setCircShutter(rect(10, 20, 30, 40));
    findCircShutterInfo(info, raster);
    EXPECT_EQ(info.present, 1);
    EXPECT_EQ(edges(info.bounds), (std::array<int, 4>{10, 20, 30, 40}));
    EXPECT_EQ(info.radius, 10.0F);
    raster.setCircShutter(rect(5, 5, 5, 5));
    findCircShutterInfo(info, raster);
    EXPECT_EQ(info.radius, 511.0F);
}

// ------------------------------------------------------------------------------------------------ points inside

TEST(CCsImageUtils, WithoutShutterEveryPointIsInside) {
    const CCsDisplayShutterInfo shutter;
    EXPECT_TRUE(isPointInsideDisplayShutter(shutter, 0, 0));
    EXPECT_TRUE(isPointInsideDisplayShutter(shutter, most, least));
}

TEST(CCsImageUtils, RectangleEdgesAreInside) {
    CCsDisplayShutterInfo shutter;
    shutter.rectangular.present = 1;
    shutter.rectangular.rect = rect(10, 20, 30, 40);
    for (const int y : {19, 20, 30, 40, 41}) {
        for (const int x : {9, 10, 20, 30, 31}) {
            EXPECT_EQ(isPointInsideDisplayShutter(shutter, x, y), x >= 10 && x <= 30 && y >= 20 && y <= 40);
        }
    }
}

TEST(CCsImageUtils, PointsOnTheCircleAreInside) {
    CCsDisplayShutterInfo shutter;
    shutter.circular.present = 1;
    shutter.circular.center = CCsPoint(100, 200);
    shutter.circular.radius = 5.0F;
    EXPECT_TRUE(isPointInsideDisplayShutter(shutter, 105, 200));
    EXPECT_TRUE(isPointInsideDisplayShutter(shutter, 103, 204));
    EXPECT_TRUE(isPointInsideDisplayShutter(shutter, 97, 196));
    EXPECT_FALSE(isPointInsideDisplayShutter(shutter, 106, 200));
    EXPECT_FALSE(isPointInsideDisplayShutter(shutter, 104, 204));
    for (int y = 190; y <= 210; ++y) {
        for (int x = 90; x <= 110; ++x) {
            const int square = (x - 100) * (x - 100) + (y - 200) * (y - 200);
            EXPECT_EQ(isPointInsideDisplayShutter(shutter, x, y), square <= 25);
        }
    }
}

TEST(CCsImageUtils, CirclesFarAwayDoNotOverflow) {
    CCsDisplayShutterInfo shutter;
    shutter.circular.present = 1;
    shutter.circular.center = CCsPoint(least, least);
    shutter.circular.radius = 1000.0F;
    EXPECT_FALSE(isPointInsideDisplayShutter(shutter, most, most));
    EXPECT_FALSE(isPointInsideDisplayShutter(shutter, 0, 0));
    EXPECT_TRUE(isPointInsideDisplayShutter(shutter, least, least));
    // A sum that would wrap to a small one in 32 bits.
    shutter.circular.center = CCsPoint(0, 0);
    EXPECT_FALSE(isPointInsideDisplayShutter(shutter, 65536, 0));
    shutter.circular.radius = std::numeric_limits<float>::quiet_NaN();
    EXPECT_FALSE(isPointInsideDisplayShutter(shutter, 0, 0));
}

TEST(CCsImageUtils, APointIsInsideOnlyIfEveryKindAgrees) {
    CCsDisplayShutterInfo shutter;
    shutter.rectangular.rect = rect(0, 0, 10, 10);
    shutter.circular.center = CCsPoint(10, 5);
    shutter.circular.radius = 5.0F;
    shutter.polygon = {CPoint(0, 0), CPoint(20, 0), CPoint(20, 5), CPoint(0, 5)};
    for (int kinds = 0; kinds < 8; ++kinds) {
        shutter.rectangular.present = kinds & 1;
        shutter.circular.present = (kinds >> 1) & 1;
        shutter.polygonPresent = kinds >> 2;
        for (int y = -2; y <= 12; ++y) {
            for (int x = -2; x <= 22; ++x) {
                const bool inRect = x >= 0 && x <= 10 && y >= 0 && y <= 10;
                const bool inCircle = (x - 10) * (x - 10) + (y - 5) * (y - 5) <= 25;
                const bool inPolygon = x > 0 && x <= 20 && y > 0 && y <= 5;
                const bool expected =
                    ((kinds & 1) == 0 || inRect) && ((kinds & 2) == 0 || inCircle) && ((kinds & 4) == 0 || inPolygon);
                EXPECT_EQ(isPointInsideDisplayShutter(shutter, x, y), expected) << kinds << ' ' << x << ' ' << y;
            }
        }
    }
}

TEST(CCsImageUtils, PolygonNeedsTwoVertices) {
    EXPECT_FALSE(isPointInsidePolygon({}, 0, 0));
    EXPECT_FALSE(isPointInsidePolygon({CPoint(0, 0)}, 0, 0));
    EXPECT_FALSE(isPointInsidePolygon({CPoint(0, 0), CPoint(10, 10)}, 5, 5));
    EXPECT_FALSE(isPointInsidePolygon({CPoint(0, 0), CPoint(10, 10)}, 20, 5));  // crossed twice
}

TEST(CCsImageUtils, PolygonEdgesByTheStrictRule) {
    const std::vector<CPoint> square = {CPoint(0, 0), CPoint(10, 0), CPoint(10, 10), CPoint(0, 10)};
    EXPECT_TRUE(isPointInsidePolygon(square, 5, 5));
    EXPECT_FALSE(isPointInsidePolygon(square, 0, 5));
    EXPECT_TRUE(isPointInsidePolygon(square, 10, 5));
    EXPECT_FALSE(isPointInsidePolygon(square, 5, 0));
    EXPECT_TRUE(isPointInsidePolygon(square, 5, 10));
    EXPECT_TRUE(isPointInsidePolygon(square, 0.25, 9.75));
    EXPECT_FALSE(isPointInsidePolygon(square, 10.25, 5));
    EXPECT_FALSE(isPointInsidePolygon(square, -0.25, 5));
    EXPECT_FALSE(isPointInsidePolygon(square, 5, std::numeric_limits<double>::quiet_NaN()));
    EXPECT_FALSE(isPointInsidePolygon(square, std::numeric_limits<double>::quiet_NaN(), 5));
}

TEST(CCsImageUtils, SelfCrossingPolygonsFollowTheEvenOddRule) {
    // A square drawn twice encloses nothing.
    const std::vector<CPoint> twice = {CPoint(0, 0), CPoint(10, 0), CPoint(10, 10), CPoint(0, 10),
                                       CPoint(0, 0), CPoint(10, 0), CPoint(10, 10), CPoint(0, 10)};
    EXPECT_FALSE(isPointInsidePolygon(twice, 5, 5));
    const std::vector<CPoint> bow = {CPoint(0, 0), CPoint(10, 10), CPoint(10, 0), CPoint(0, 10)};
    EXPECT_TRUE(isPointInsidePolygon(bow, 2, 5));
    EXPECT_TRUE(isPointInsidePolygon(bow, 8, 5));
    EXPECT_FALSE(isPointInsidePolygon(bow, 5, 2));
    EXPECT_FALSE(isPointInsidePolygon(bow, 5, 8));
}

TEST(CCsImageUtils, PolygonsAgreeWithAnEdgeByEdgeCount) {
    zoltest::Random random(42);
    for (int i = 0; i < 300; ++i) {
        std::vector<CPoint> vertices;
        const int count = random.integer(2, 9);
        for (int v = 0; v < count; ++v) vertices.emplace_back(random.integer(-20, 20), random.integer(-20, 20));
        for (int p = 0; p < 40; ++p) {
            const double x = random.integer(-44, 44) / 2.0;
            const double y = random.integer(-44, 44) / 2.0;
            bool inside = false;
            for (std::size_t v = 0; v < vertices.size(); ++v) {
                const double xi = vertices[v].x;
                const double yi = vertices[v].y;
                const double xj = vertices[(v + 1) % vertices.size()].x;
                const double yj = vertices[(v + 1) % vertices.size()].y;
                if (!((y > yi && yj >= y) || (y > yj && yi >= y))) continue;
                if (x > (y - yi) / (yj - yi) * (xj - xi) + xi) inside = !inside;
            }
            EXPECT_EQ(isPointInsidePolygon(vertices, x, y), inside);
        }
    }
}

TEST(CCsImageUtils, PolygonsOfExtremeVerticesAreDefined) {
    const std::vector<CPoint> vertices = {CPoint(least, least), CPoint(most, least), CPoint(most, most),
                                          CPoint(least, most)};
    EXPECT_TRUE(isPointInsidePolygon(vertices, 0, 0));
    EXPECT_FALSE(isPointInsidePolygon(vertices, 1e300, 0));
    EXPECT_FALSE(isPointInsidePolygon(vertices, -1e300, 0));
}

// ------------------------------------------------------------------------------------------------ runs

struct LineRun {
    bool result;
    int start;
    int end;

    bool operator==(const LineRun&) const = default;
};

std::ostream& operator<<(std::ostream& out, const LineRun& run) {
    return out << run.result << ' ' << run.start << ".." << run.end;
}

LineRun rectangleRun(const RECT& r, int line, int start, int end) {
    CCsRectangularShutterInfo shutter;
    shutter.rect = r;
    const bool result = findRectangleIntersectionPoints(shutter, line, start, end);
    return {result, start, end};
}

TEST(CCsImageUtils, RectangleRuns) {
    const RECT r = rect(10, 20, 30, 40);
    EXPECT_EQ(rectangleRun(r, 25, 0, 100), (LineRun{true, 10, 30}));
    EXPECT_EQ(rectangleRun(r, 20, 0, 100), (LineRun{true, 10, 30}));
    EXPECT_EQ(rectangleRun(r, 40, 0, 100), (LineRun{true, 10, 30}));
    EXPECT_EQ(rectangleRun(r, 19, 0, 100), (LineRun{false, 0, 100}));
    EXPECT_EQ(rectangleRun(r, 41, 0, 100), (LineRun{false, 0, 100}));
    EXPECT_EQ(rectangleRun(r, 25, 15, 20), (LineRun{true, 15, 20}));
    EXPECT_EQ(rectangleRun(r, 25, 0, 11), (LineRun{true, 10, 11}));
    EXPECT_EQ(rectangleRun(r, 25, 0, 10), (LineRun{false, 0, 10}));
    EXPECT_EQ(rectangleRun(r, 25, 29, 100), (LineRun{true, 29, 30}));
    EXPECT_EQ(rectangleRun(r, 25, 30, 100), (LineRun{false, 30, 100}));
    EXPECT_EQ(rectangleRun(rect(least, least, most, most), 0, -5, 5), (LineRun{true, -5, 5}));
}

LineRun circleRun(int cx, int cy, float radius, int line, int start, int end) {
    CCsCircularShutterInfo shutter;
    shutter.center = CCsPoint(cx, cy);
    shutter.radius = radius;
    const bool result = findCircleScanLineIntersectionPoints(shutter, line, start, end);
    return {result, start, end};
}

TEST(CCsImageUtils, CircleRuns) {
    EXPECT_EQ(circleRun(50, 50, 10.0F, 50, 0, 100), (LineRun{true, 40, 60}));
    EXPECT_EQ(circleRun(50, 50, 10.0F, 44, 0, 100), (LineRun{true, 42, 58}));
    EXPECT_EQ(circleRun(50, 50, 10.0F, 56, 0, 100), (LineRun{true, 42, 58}));
    EXPECT_EQ(circleRun(50, 50, 10.0F, 40, 0, 100), (LineRun{true, 50, 50}));
    EXPECT_EQ(circleRun(50, 50, 10.0F, 60, 0, 100), (LineRun{true, 50, 50}));
    EXPECT_EQ(circleRun(50, 50, 10.0F, 39, 0, 100), (LineRun{false, 0, 100}));
    EXPECT_EQ(circleRun(50, 50, 10.0F, 61, 0, 100), (LineRun{false, 0, 100}));
    EXPECT_EQ(circleRun(50, 50, 10.0F, 50, 45, 55), (LineRun{true, 45, 55}));
    EXPECT_EQ(circleRun(50, 50, 10.0F, 50, 0, 40), (LineRun{false, 0, 40}));
    EXPECT_EQ(circleRun(50, 50, 10.0F, 50, 60, 100), (LineRun{false, 60, 100}));
    // 47.5 .. 52.5 is cut to whole columns, towards zero also left of the origin.
    EXPECT_EQ(circleRun(50, 50, 2.5F, 50, 0, 100), (LineRun{true, 47, 52}));
    EXPECT_EQ(circleRun(-50, 50, 2.5F, 50, -100, 100), (LineRun{true, -52, -47}));
    EXPECT_EQ(circleRun(50, 50, -1.0F, 50, 0, 100), (LineRun{false, 0, 100}));
    EXPECT_EQ(circleRun(50, 50, std::numeric_limits<float>::quiet_NaN(), 50, 0, 100), (LineRun{false, 0, 100}));
}

TEST(CCsImageUtils, CircleRunsAgreeWithFloatArithmetic) {
    zoltest::Random random(43);
    for (int i = 0; i < 3000; ++i) {
        const int cx = random.integer(-600, 600);
        const int cy = random.integer(-600, 600);
        const float radius = static_cast<float>(random.integer(0, 1000)) * 0.5F;
        const int line = random.integer(-700, 700);
        const int start = random.integer(-700, 700);
        const int end = start + random.integer(0, 700);
        LineRun expected{false, start, end};
        const auto distance = static_cast<float>(cy - line);
        if (static_cast<float>(line) >= static_cast<float>(cy) - radius &&
            static_cast<float>(line) <= static_cast<float>(cy) + radius) {
            const float half = std::sqrt(radius * radius - distance * distance);
            const int left = static_cast<int>(static_cast<float>(cx) - half);
            const int right = static_cast<int>(static_cast<float>(cx) + half);
            if (left < end && right > start) expected = {true, std::max(start, left), std::min(end, right)};
        }
        EXPECT_EQ(circleRun(cx, cy, radius, line, start, end), expected);
    }
}

TEST(CCsImageUtils, CircleRunsOfExtremeCirclesAreDefined) {
    EXPECT_EQ(circleRun(most, most, 3e38F, 0, 0, 100).start, 0);
    EXPECT_EQ(circleRun(least, least, std::numeric_limits<float>::infinity(), 0, 0, 100).end, 100);
    circleRun(16777217, 16777217, 1.0F, 16777216, 0, most);
    circleRun(most, least, 1.0F, least, least, most);
}

LineRun shutterRun(const CCsDisplayShutterInfo& shutter, int line, const RECT& limits, int start = 0, int end = 100) {
    int run[2] = {start, end};
    const bool result = calculateDisplayShutterBoundIntersection(run, line, shutter, limits, false);
    int same[2] = {start, end};
    EXPECT_EQ(calculateDisplayShutterBoundIntersection(same, line, shutter, limits, true), result);
    EXPECT_EQ(same[0], run[0]);
    EXPECT_EQ(same[1], run[1]);
    return {result, run[0], run[1]};
}

CCsDisplayShutterInfo rectangleShutter() {
    CCsDisplayShutterInfo shutter;
    shutter.rectangular.present = 1;
    shutter.rectangular.rect = rect(10, 20, 60, 80);
    return shutter;
}

CCsDisplayShutterInfo circleShutter() {
    CCsDisplayShutterInfo shutter;
    shutter.circular.present = 1;
    shutter.circular.center = CCsPoint(50, 50);
    shutter.circular.radius = 20.0F;
    return shutter;
}

const RECT wideLimits = rect(-1000, 0, 1000, 0);

TEST(CCsImageUtils, WithoutShutterTheRunStaysAsItIs) {
    EXPECT_EQ(shutterRun({}, 5, rect(40, 0, 50, 0)), (LineRun{true, 0, 100}));
    EXPECT_FALSE(calculateDisplayShutterBoundIntersection(nullptr, 5, {}, wideLimits, false));
}

TEST(CCsImageUtils, RunsAreNarrowedByEachKindAndClampedToTheLimits) {
    CCsDisplayShutterInfo shutter = rectangleShutter();
    EXPECT_EQ(shutterRun(shutter, 50, wideLimits), (LineRun{true, 10, 60}));
    EXPECT_EQ(shutterRun(shutter, 50, rect(20, 0, 40, 0)), (LineRun{true, 20, 40}));
    EXPECT_EQ(shutterRun(shutter, 19, rect(20, 0, 40, 0)), (LineRun{false, 0, 100}));

    EXPECT_EQ(shutterRun(circleShutter(), 50, wideLimits), (LineRun{true, 30, 70}));
    EXPECT_EQ(shutterRun(circleShutter(), 50, rect(40, 0, 60, 0)), (LineRun{true, 40, 60}));
    EXPECT_EQ(shutterRun(circleShutter(), 29, rect(40, 0, 60, 0)), (LineRun{false, 0, 100}));

    shutter = circleShutter();
    shutter.rectangular = rectangleShutter().rectangular;
    EXPECT_EQ(shutterRun(shutter, 50, wideLimits), (LineRun{true, 30, 60}));
    EXPECT_EQ(shutterRun(shutter, 75, wideLimits),
              (LineRun{false, 10, 60}));  // the rectangle narrowed, the circle failed
    // A failed rectangle keeps the circle from being tried.
    EXPECT_EQ(shutterRun(shutter, 50, wideLimits, 60, 100), (LineRun{false, 60, 100}));
}

TEST(CCsImageUtils, ThePolygonBoundsTheRunByItsBox) {
    CCsDisplayShutterInfo shutter;
    shutter.polygonPresent = 1;
    shutter.polygon = {CPoint(20, 10), CPoint(80, 50), CPoint(20, 90)};
    EXPECT_EQ(shutterRun(shutter, 10, wideLimits), (LineRun{true, 20, 80}));
    EXPECT_EQ(shutterRun(shutter, 90, rect(30, 0, 70, 0)), (LineRun{true, 30, 70}));
    // A line outside the box leaves everything as it was.
    EXPECT_EQ(shutterRun(shutter, 9, rect(30, 0, 70, 0)), (LineRun{true, 0, 100}));
    EXPECT_EQ(shutterRun(shutter, 91, rect(30, 0, 70, 0)), (LineRun{true, 0, 100}));
    // A run beside the box fails.
    EXPECT_EQ(shutterRun(shutter, 50, wideLimits, 80, 100), (LineRun{false, 80, 100}));
    EXPECT_EQ(shutterRun(shutter, 50, wideLimits, 0, 20), (LineRun{false, 0, 20}));
}

TEST(CCsImageUtils, APolygonOfTwoVerticesMakesTheResultFalse) {
    CCsDisplayShutterInfo shutter;
    shutter.polygonPresent = 1;
    for (const std::size_t count : {0U, 1U, 2U}) {
        shutter.polygon.assign(count, CPoint(0, 0));
        EXPECT_EQ(shutterRun(shutter, 0, wideLimits), (LineRun{false, 0, 100}));
    }
    shutter = rectangleShutter();
    shutter.polygonPresent = 1;
    shutter.polygon.assign(2, CPoint(0, 0));
    EXPECT_EQ(shutterRun(shutter, 50, wideLimits), (LineRun{false, 10, 60}));
}

TEST(CCsImageUtils, ALaterStepNeverMakesAFailedResultTrueAgain) {
    CCsDisplayShutterInfo shutter = rectangleShutter();
    shutter.polygonPresent = 1;
    shutter.polygon = {CPoint(20, 0), CPoint(80, 50), CPoint(20, 99)};
    EXPECT_EQ(shutterRun(shutter, 50, wideLimits), (LineRun{true, 20, 60}));
    EXPECT_FALSE(shutterRun(shutter, 10, wideLimits).result);  // above the rectangle, inside the polygon's box
    shutter.circular = circleShutter().circular;
    EXPECT_EQ(shutterRun(shutter, 50, wideLimits), (LineRun{true, 30, 60}));
    EXPECT_FALSE(shutterRun(shutter, 75, wideLimits).result);
}

TEST(CCsImageUtils, RunsNeverCutOffAVisiblePixel) {
    zoltest::Random random(44);
    for (int i = 0; i < 2000; ++i) {
        CCsDisplayShutterInfo shutter;
        const auto small = [&] { return random.integer(-5, 45); };
        if (random.chance(0.6)) {
            shutter.rectangular.present = 1;
            const int left = small();
            const int top = small();
            shutter.rectangular.rect = rect(left, top, left + random.integer(0, 30), top + random.integer(0, 30));
        }
        if (random.chance(0.6)) {
            findCircShutterInfo(shutter.circular, rect(small(), small(), small(), small()), 40);
        }
        if (random.chance(0.6)) {
            shutter.polygonPresent = 1;
            for (int v = 0; v < 4; ++v) shutter.polygon.emplace_back(small(), small());
        }
        const int line = random.integer(0, 39);
        // Wide enough that the strict comparisons at the run's own ends do not matter.
        const LineRun run = shutterRun(shutter, line, rect(-100, 0, 200, 0), -100, 200);
        const bool none =
            shutter.rectangular.present == 0 && shutter.circular.present == 0 && shutter.polygonPresent == 0;
        int visible = 0;
        for (int x = 0; x < 40 && !none; ++x) {
            if (!isPointInsideDisplayShutter(shutter, x, line)) continue;
            ++visible;
            EXPECT_TRUE(!run.result || (x >= run.start && x <= run.end)) << run << ' ' << x << ' ' << line;
        }
        // Shutters that have a single column in common count as a failure.
        EXPECT_TRUE(run.result || visible <= 1) << run << ' ' << line;
    }
}

// ------------------------------------------------------------------------------------------------ bounds

TEST(CCsImageUtils, ShutterBoundsIntersectAllKinds) {
    CCs2dTrafo trafo = fit(200, 200);
    CCsRaster raster(100, 100, CCS_GREY12, 1.0, false, true);
    RECT bounds = rect(5, 6, 90, 95);
    EXPECT_TRUE(getDisplayShutterBounds(bounds, raster, trafo, false));
    EXPECT_EQ(edges(bounds), (std::array<int, 4>{5, 6, 90, 95}));

    raster.setRectShutter(rect(70, 60, 10, 20));  // normalised first
    EXPECT_TRUE(getDisplayShutterBounds(bounds, raster, trafo, false));
    EXPECT_EQ(edges(bounds), (std::array<int, 4>{10, 20, 70, 60}));

    raster.setCircShutter(rect(50, 50, 0, 30));
    EXPECT_TRUE(getDisplayShutterBounds(bounds, raster, trafo, false));
    EXPECT_EQ(edges(bounds), (std::array<int, 4>{10, 30, 50, 50}));

    raster.setPolygonalShutter({CPoint(20, 0), CPoint(40, 99)});  // two vertices do not count
    EXPECT_TRUE(getDisplayShutterBounds(bounds, raster, trafo, false));
    EXPECT_EQ(edges(bounds), (std::array<int, 4>{10, 30, 50, 50}));

    raster.setPolygonalShutter({CPoint(20, 0), CPoint(40, 99), CPoint(25, 5)});
    EXPECT_TRUE(getDisplayShutterBounds(bounds, raster, trafo, false));
    EXPECT_EQ(edges(bounds), (std::array<int, 4>{20, 30, 40, 50}));

    EXPECT_TRUE(getDisplayShutterBounds(bounds, raster, trafo, true));
    EXPECT_EQ(edges(bounds), (std::array<int, 4>{40, 60, 80, 100}));

    trafo.mirror(CCS_VERTICAL);
    bounds = rect(0, 0, 100, 100);
    EXPECT_TRUE(getDisplayShutterBounds(bounds, raster, trafo, true));
    EXPECT_EQ(edges(bounds), (std::array<int, 4>{40, 100, 80, 140}));
}

TEST(CCsImageUtils, EmptyShutterBoundsAreFalseAndStayInImageCoordinates) {
    CCs2dTrafo trafo = fit(200, 200);
    CCsRaster raster(100, 100, CCS_GREY12, 1.0, false, true);
    raster.setRectShutter(rect(0, 0, 10, 10));
    raster.setCircShutter(rect(10, 10, 20, 20));  // touches at a corner only
    for (const bool toDisplay : {false, true}) {
        RECT bounds = rect(0, 0, 100, 100);
        EXPECT_FALSE(getDisplayShutterBounds(bounds, raster, trafo, toDisplay));
        EXPECT_EQ(edges(bounds), (std::array<int, 4>{0, 0, 0, 0}));
    }
    RECT bounds = rect(90, 90, 10, 10);  // out of order: empty
    EXPECT_FALSE(getDisplayShutterBounds(bounds, raster, trafo, false));
}

TEST(CCsImageUtils, TheBitmapShutterDoesNotBound) {
    CCs2dTrafo trafo = fit(200, 200);
    CCsRaster raster(100, 100, CCS_GREY12, 1.0, false, true);
    CCsBitmapShutterInfo info;
    info.tag = 1;
    raster.setBitmapShutterInfo(info);
    RECT bounds = rect(5, 6, 90, 95);
    EXPECT_TRUE(getDisplayShutterBounds(bounds, raster, trafo, false));
    EXPECT_EQ(edges(bounds), (std::array<int, 4>{5, 6, 90, 95}));
}

TEST(CCsImageUtils, AffineBoundsHoldTheMappedCorners) {
    CCs2dTrafo trafo = fit(200, 200);
    RECT out{};
    EXPECT_TRUE(getAffineBounds(rect(10, 20, 30, 40), trafo, out, false));
    EXPECT_EQ(edges(out), (std::array<int, 4>{20, 40, 60, 80}));
    EXPECT_TRUE(getAffineBounds(rect(-10, -10, 150, 30), trafo, out, false));
    EXPECT_EQ(edges(out), (std::array<int, 4>{-20, -20, 300, 60}));
    EXPECT_TRUE(getAffineBounds(rect(-10, -10, 150, 30), trafo, out, true));
    EXPECT_EQ(edges(out), (std::array<int, 4>{0, 0, 200, 60}));

    CCs2dTrafo half = fit(150, 150);  // 1.5: edges at halves go outwards
    EXPECT_TRUE(getAffineBounds(rect(1, 1, 3, 3), half, out, false));
    EXPECT_EQ(edges(out), (std::array<int, 4>{1, 1, 5, 5}));

    // At 45 degrees the whole image needs its diagonal.
    trafo.rotate(45);
    EXPECT_TRUE(getAffineBounds(rect(0, 0, 100, 100), trafo, out, false));
    EXPECT_EQ(edges(out), (std::array<int, 4>{-42, -42, 242, 242}));
    EXPECT_TRUE(getAffineBounds(rect(0, 0, 100, 100), trafo, out, true));
    EXPECT_EQ(edges(out), (std::array<int, 4>{0, 0, 200, 200}));
}

TEST(CCsImageUtils, EmptyAffineBoundsAreFalse) {
    CCs2dTrafo trafo = fit(200, 200);
    RECT out{1, 2, 3, 4};
    EXPECT_FALSE(getAffineBounds(rect(10, 20, 10, 40), trafo, out, false));
    EXPECT_EQ(edges(out), (std::array<int, 4>{0, 0, 0, 0}));
    out = rect(1, 2, 3, 4);
    EXPECT_FALSE(getAffineBounds(rect(-50, -50, -10, -10), trafo, out, true));
    EXPECT_EQ(edges(out), (std::array<int, 4>{0, 0, 0, 0}));
    trafo.setDspPanFactor(std::numeric_limits<double>::quiet_NaN(), 0.0);
    out = rect(1, 2, 3, 4);
    EXPECT_FALSE(getAffineBounds(rect(0, 0, 10, 10), trafo, out, false));
    EXPECT_EQ(edges(out), (std::array<int, 4>{0, 0, 0, 0}));
}

// ------------------------------------------------------------------------------------------------ shutter fill

/// A display with a pitch wider than its width, every byte 0xEE.
struct Display {
    Display(int width, int height) : image(width, height, CCS_RGB8, 1.0, false, false) {
        unsigned char* const data = image.getOrigin();
        std::fill(data - guard(), data + image.GetMemBuffer()->getSize() + guard(), static_cast<unsigned char>(0xEE));
    }
    ~Display() { image.unlock(); }
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    [[nodiscard]] std::size_t guard() const { return static_cast<std::size_t>(image.getPitch()) * 4 + 4; }
    [[nodiscard]] std::size_t pixels() const {
        return static_cast<std::size_t>(image.getPitch()) * static_cast<std::size_t>(image.getHeight());
    }
    unsigned char* data() { return image.GetMemBuffer()->lock(); }

    void fill(const CCsRaster& source, CCs2dTrafo* trafo) {
        fillDisplayedRasterWithShutterPresentationValue(source, image, data(), trafo, rect(1, 1, 2, 2));
        // Nothing beyond the lines is touched.
        EXPECT_EQ(std::count(data() - guard(), data(), 0xEE), static_cast<std::ptrdiff_t>(guard()));
        const unsigned char* const end = data() + pixels() * 4;
        EXPECT_EQ(std::count(end, end + guard(), 0xEE), static_cast<std::ptrdiff_t>(guard()));
    }

    CCsRaster image;
};

CCsRaster grey(int value) {
    CCsRaster source(100, 100, CCS_GREY12, 1.0, false, true);
    source.setRectShutter(rect(10, 10, 20, 20));
    source.setPresentationShutterValue(static_cast<unsigned short>(value));
    return source;
}

TEST(CCsImageUtils, ShutterFillOfValue0IsAllZero) {
    for (const int value : {0, 1, 255}) {  // below 256 nothing is left of a 16-bit value in 8 bits
        for (const bool withTrafo : {false, true}) {
            CCs2dTrafo trafo = fit(51, 40);
            Display display(51, 40);
            display.fill(grey(value), withTrafo ? &trafo : nullptr);
            EXPECT_EQ(std::count(display.data(), display.data() + display.pixels() * 4, 0),
                      static_cast<std::ptrdiff_t>(display.pixels() * 4));
        }
    }
}

TEST(CCsImageUtils, ShutterFillWithABitmapShutterIsAllZero) {
    CCsRaster source = grey(0x8000);
    CCsBitmapShutterInfo info;
    info.tag = 1;
    info.presentationValue = 0x7000;
    source.setBitmapShutterInfo(info);
    Display display(51, 40);
    display.fill(source, nullptr);
    EXPECT_EQ(std::count(display.data(), display.data() + display.pixels() * 4, 0),
              static_cast<std::ptrdiff_t>(display.pixels() * 4));
}

TEST(CCsImageUtils, ShutterFillWithoutTransformationKeepsTheFourthByte) {
    for (const int value : {0x0100, 0x80FF, 0xFFFF}) {
        Display display(51, 40);
        display.fill(grey(value), nullptr);
        for (std::size_t i = 0; i < display.pixels(); ++i) {
            const unsigned char* const pixel = display.data() + i * 4;
            ASSERT_EQ(pixel[0], value >> 8);
            ASSERT_EQ(pixel[1], value >> 8);
            ASSERT_EQ(pixel[2], value >> 8);
            ASSERT_EQ(pixel[3], 0xEE);
        }
    }
}

void expectFilled(Display& display, const RECT& area, unsigned char value) {
    for (int y = 0; y < display.image.getHeight(); ++y) {
        for (int x = 0; x < display.image.getPitch(); ++x) {
            const unsigned char* const pixel = display.data() + (y * display.image.getPitch() + x) * 4;
            const bool inside = x >= area.left && x < area.right && y >= area.top && y < area.bottom;
            ASSERT_EQ(pixel[0], inside ? value : 0) << x << ' ' << y;
            ASSERT_EQ(pixel[1], inside ? value : 0) << x << ' ' << y;
            ASSERT_EQ(pixel[2], inside ? value : 0) << x << ' ' << y;
            ASSERT_EQ(pixel[3], 0) << x << ' ' << y;
        }
    }
}

TEST(CCsImageUtils, ShutterFillCoversTheImageButItsLastColumnAndRow) {
    {
        // 100 x 100 at scale 0.5 in the middle of 151 x 50: columns 50.5 .. 100.5.
        CCs2dTrafo trafo = fit(151, 50);
        Display display(151, 50);
        display.fill(grey(0x8000), &trafo);
        // (0, 0) goes to 50.5, rounded 51; (99, 99) to (100, 49.5), rounded (100, 50), cut at the last row, 49.
        expectFilled(display, rect(51, 0, 100, 49), 0x80);
    }
    {
        CCs2dTrafo trafo = fit(151, 50);
        trafo.mirror(CCS_HORIZONTAL);
        Display display(151, 50);
        display.fill(grey(0x8000), &trafo);
        // (0, 0) goes to 100.5, rounded 101; column 99 to 51.
        expectFilled(display, rect(51, 0, 101, 49), 0x80);
    }
    {
        // Much larger than the display: the display's own last column and row stay black.
        CCs2dTrafo trafo = fit(60, 60);
        trafo.scale(4.0);
        Display display(60, 60);
        display.fill(grey(0x8000), &trafo);
        expectFilled(display, rect(0, 0, 59, 59), 0x80);
    }
    {
        // Beside the display.
        CCs2dTrafo trafo = fit(60, 60);
        trafo.translate(5.0, 0.0);
        Display display(60, 60);
        display.fill(grey(0x8000), &trafo);
        expectFilled(display, rect(0, 0, 0, 0), 0x80);
    }
}

TEST(CCsImageUtils, ShutterFillStaysInsideTheDisplaysMemory) {
    // The display claims more than its buffer holds: nothing behind the buffer is written.
    ZolMemMappedBuffer* const buffer = ZolMemMappedManager::getIntance()->allocateMapMemory(40, 400, false, false);
    std::fill_n(buffer->lock(), 440, static_cast<unsigned char>(0xEE));
    const CCsRaster display(buffer, 10, 10, CCS_RGB8, 1.0);
    CCs2dTrafo trafo = fit(10, 10);
    for (const int value : {0, 0x8000}) {
        for (CCs2dTrafo* const used : {static_cast<CCs2dTrafo*>(nullptr), &trafo}) {
            fillDisplayedRasterWithShutterPresentationValue(grey(value), display, buffer->lock(), used, RECT{});
            EXPECT_EQ(std::count(buffer->lock() + 40, buffer->lock() + 440, 0xEE), 400);
        }
    }
    fillDisplayedRasterWithShutterPresentationValue(grey(0x8000), display, nullptr, nullptr, RECT{});
    fillDisplayedRasterWithShutterPresentationValue(grey(0x8000), display, nullptr, &trafo, RECT{});
    fillDisplayedRasterWithShutterPresentationValue(grey(0), display, nullptr, nullptr, RECT{});
}

TEST(CCsImageUtils, ShutterFillOfAnImageWithoutGeometryDoesNothing) {
    const CCsImage display;
    unsigned char pixels[4] = {1, 2, 3, 4};
    CCs2dTrafo trafo = fit(10, 10);
    fillDisplayedRasterWithShutterPresentationValue(grey(0x8000), display, pixels, &trafo, RECT{});
    fillDisplayedRasterWithShutterPresentationValue(grey(0x8000), display, pixels, nullptr, RECT{});
    fillDisplayedRasterWithShutterPresentationValue(grey(0), display, pixels, nullptr, RECT{});
    EXPECT_EQ(pixels[0], 1);
    EXPECT_EQ(pixels[3], 4);
}

// ------------------------------------------------------------------------------------------------ bits

TEST(CCsImageUtils, BitmapShutterBitsRunLowestFirstWithoutRowPadding) {
    // 5 columns x 3 rows = 15 bits from (10, 20) on.
    std::vector<unsigned char> bits(2, 0);
    CCsBitmapShutterInfo shutter;
    shutter.originX = 11;
    shutter.originY = 21;
    shutter.rows = 3;
    shutter.columns = 5;
    shutter.data = bits.data();
    for (int k = 0; k < 15; ++k) {
        bits = {0, 0};
        bits[static_cast<std::size_t>(k / 8)] = static_cast<unsigned char>(1U << (k % 8));
        for (int y = 17; y < 27; ++y) {
            for (int x = 7; x < 19; ++x) {
                EXPECT_EQ(isBitmapShutterSet(shutter, x, y), x - 10 == k % 5 && y - 20 == k / 5) << k;
            }
        }
    }
}

TEST(CCsImageUtils, BitmapShutterBitsOutsideAreNotSet) {
    std::vector<unsigned char> bits(2, 0xFF);
    CCsBitmapShutterInfo shutter;
    shutter.originX = 1;
    shutter.originY = 1;
    shutter.rows = 3;
    shutter.columns = 5;
    EXPECT_FALSE(isBitmapShutterSet(shutter, 0, 0));
    shutter.data = bits.data();
    EXPECT_TRUE(isBitmapShutterSet(shutter, 0, 0));
    EXPECT_TRUE(isBitmapShutterSet(shutter, 4, 2));
    EXPECT_FALSE(isBitmapShutterSet(shutter, -1, 0));
    EXPECT_FALSE(isBitmapShutterSet(shutter, 0, -1));
    EXPECT_FALSE(isBitmapShutterSet(shutter, 5, 0));
    EXPECT_FALSE(isBitmapShutterSet(shutter, 0, 3));
    for (const int extreme : {least, most}) {
        EXPECT_FALSE(isBitmapShutterSet(shutter, extreme, 0));
        EXPECT_FALSE(isBitmapShutterSet(shutter, 0, extreme));
        shutter.originX = extreme;
        EXPECT_FALSE(isBitmapShutterSet(shutter, -extreme / 2, 0));
        shutter.originX = 1;
        shutter.originY = extreme;
        EXPECT_FALSE(isBitmapShutterSet(shutter, 0, -extreme / 2));
        shutter.originY = 1;
    }
    shutter.rows = 0;
    EXPECT_FALSE(isBitmapShutterSet(shutter, 0, 0));
}

TEST(CCsImageUtils, TheFirstPlaneThatHasItsBitSetIsReported) {
    std::vector<unsigned char> none(2, 0);
    std::vector<unsigned char> all(2, 0xFF);
    CCs60XXOverlay plane;
    plane.originX = 1;
    plane.originY = 1;
    plane.rows = 3;
    plane.columns = 5;
    CCs60XXOverlayInfo overlays;
    unsigned short index = 77;
    EXPECT_FALSE(is60XXOverlayBitset(overlays, index, 0, 0));
    EXPECT_EQ(index, 77);

    overlays.planes.push_back(plane);  // without data: never set, but keeps its position
    plane.data = none.data();
    overlays.planes.push_back(plane);
    EXPECT_FALSE(is60XXOverlayBitset(overlays, index, 0, 0));
    EXPECT_EQ(index, 77);
    plane.data = all.data();
    plane.originX = 3;
    overlays.planes.push_back(plane);
    plane.originX = 1;
    overlays.planes.push_back(plane);
    EXPECT_TRUE(is60XXOverlayBitset(overlays, index, 0, 0));
    EXPECT_EQ(index, 3);
    EXPECT_TRUE(is60XXOverlayBitset(overlays, index, 2, 0));
    EXPECT_EQ(index, 2);
    EXPECT_TRUE(is60XXOverlayBitset(overlays, index, 6, 2));
    EXPECT_EQ(index, 2);
    EXPECT_FALSE(is60XXOverlayBitset(overlays, index, 7, 2));
    EXPECT_EQ(index, 2);
}

TEST(CCsImageUtils, PlanesOfTheLargestSizeUse64BitPositions) {
    // 65535 x 65535 bits, of which only a few bytes are ever touched.
    constexpr std::uint64_t bits = 65535ULL * 65535ULL;
    const std::unique_ptr<ZolMemMappedBuffer> memory(
        ZolMemMappedManager::getIntance()->allocateMapMemory(static_cast<unsigned int>(bits / 8 + 1), 0, true, false));
    if (memory == nullptr) GTEST_SKIP() << "no room for a plane of 512 MiB";
    CCs60XXOverlay plane;
    plane.originX = 1;
    plane.originY = 1;
    plane.rows = 65535;
    plane.columns = 65535;
    plane.data = memory->lock();
    plane.data[(bits - 1) / 8] = static_cast<unsigned char>(1U << ((bits - 1) % 8));
    const CCs60XXOverlayInfo overlays{{plane}};
    unsigned short index = 7;
    EXPECT_TRUE(is60XXOverlayBitset(overlays, index, 65534, 65534));
    EXPECT_EQ(index, 0);
    EXPECT_FALSE(is60XXOverlayBitset(overlays, index, 65533, 65534));
    EXPECT_FALSE(is60XXOverlayBitset(overlays, index, 65535, 65534));
    EXPECT_FALSE(is60XXOverlayBitset(overlays, index, 65534, 65535));
    EXPECT_FALSE(is60XXOverlayBitset(overlays, index, 0, 0));
}

TEST(CCsImageUtils, PixelPadBits) {
    std::vector<unsigned char> bits(3, 0);
    for (int k = 0; k < 24; ++k) EXPECT_FALSE(isPixePadBitSet(bits.data(), k));
    setPixelPadBitSet(bits.data(), 12345, 8, 5);
    EXPECT_EQ(bits, (std::vector<unsigned char>{0, 0x20, 0}));
    for (int k = 0; k < 24; ++k) EXPECT_EQ(isPixePadBitSet(bits.data(), k), k == 13);
    setPixelPadBitSet(bits.data(), 0, 8, -8);
    EXPECT_EQ(bits, (std::vector<unsigned char>{1, 0x20, 0}));
    setPixelPadBitSet(bits.data(), 0, 8, -9);
    setPixelPadBitSet(nullptr, 0, 8, 5);
    EXPECT_EQ(bits, (std::vector<unsigned char>{1, 0x20, 0}));
    EXPECT_FALSE(isPixePadBitSet(nullptr, 0));
    EXPECT_FALSE(isPixePadBitSet(bits.data(), -1));
}

TEST(CCsImageUtils, ResetPixelPadBitDeliberatelySetsTheBit) {
    std::vector<unsigned char> bits(3, 0);
    resetPixelPadBitSet(bits.data(), 1, 10, 3);
    EXPECT_EQ(bits, (std::vector<unsigned char>{0, 0x20, 0}));
    resetPixelPadBitSet(bits.data(), 1, 10, 3);
    EXPECT_EQ(bits, (std::vector<unsigned char>{0, 0x20, 0}));
    std::fill(bits.begin(), bits.end(), static_cast<unsigned char>(0xFF));
    resetPixelPadBitSet(bits.data(), 0, 10, 0);
    EXPECT_EQ(bits, (std::vector<unsigned char>{0xFF, 0xFF, 0xFF}));
    resetPixelPadBitSet(nullptr, 0, 10, 0);
    resetPixelPadBitSet(bits.data(), -1, 10, 0);
    resetPixelPadBitSet(bits.data(), least, most, 0);
}

// ------------------------------------------------------------------------------------------------ numbers

TEST(CCsImageUtils, AcceleratedPathsRefuseNullEmbeddedOverlaysAndRgb24) {
    EXPECT_FALSE(isIPPCompatible(nullptr));
    for (int type = 1; type <= 7; ++type) {
        CCsRaster raster(4, 4, type, 1.0, false, true);
        EXPECT_EQ(isIPPCompatible(&raster), type != 6);
        raster.setEmbeddedOverlayStatus(true);
        EXPECT_FALSE(isIPPCompatible(&raster));
    }
}

TEST(CCsImageUtils, ASegmentIsComparedWithTheAxesDeliberatelyCrossed) {
    const RECT segment = rect(0, 0, 100, 50);
    const CCsRaster high(50, 100, CCS_GREY12, 1.0, false, true);
    EXPECT_TRUE(isEntireSegmentFilledWithImage(segment, high));
    const CCsRaster wide(100, 50, CCS_GREY12, 1.0, false, true);
    EXPECT_FALSE(isEntireSegmentFilledWithImage(segment, wide));
    EXPECT_TRUE(isEntireSegmentFilledWithImage(rect(-1, -1, 101, 51), high));
    EXPECT_FALSE(isEntireSegmentFilledWithImage(rect(1, 0, 100, 50), high));
    EXPECT_FALSE(isEntireSegmentFilledWithImage(rect(0, 1, 100, 50), high));
    EXPECT_FALSE(isEntireSegmentFilledWithImage(rect(0, 0, 99, 50), high));
    EXPECT_FALSE(isEntireSegmentFilledWithImage(rect(0, 0, 100, 49), high));
}

TEST(CCsImageUtils, BitShiftForGreyConversion) {
    const std::vector<std::pair<int, int>> expected = {{0, 0},     {1, 0},     {255, 0},   {256, 1},  {511, 1},
                                                       {512, 2},   {1023, 2},  {1024, 3},  {2047, 3}, {2048, 4},
                                                       {4095, 4},  {4096, 5},  {8191, 5},  {8192, 6}, {16383, 6},
                                                       {16384, 7}, {32767, 7}, {32768, 8}, {65535, 8}};
    for (const auto& [value, shift] : expected) {
        EXPECT_EQ(calculateBitShiftValueForGreyConversion(static_cast<unsigned short>(value)), shift) << value;
    }
    for (unsigned int value = 0; value <= 65535; ++value) {
        const int shift = calculateBitShiftValueForGreyConversion(static_cast<unsigned short>(value));
        ASSERT_LE(value >> shift, 255U);
        ASSERT_TRUE(shift == 0 || (value >> (shift - 1)) > 255U);
    }
}

TEST(CCsImageUtils, FontHeightOfARectangle) {
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 512, 512), 20, 512, false), 20);
    EXPECT_EQ(calculateFontHeight(rect(100, 200, 612, 712), 20, 512, false), 20);
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 1024, 512), 20, 512, false), 28);  // 28.28
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 1024, 1024), 20, 512, false), 40);
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 2048, 2048), 20, 512, false), 44);  // 80
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 128, 128), 20, 512, false), 11);    // 5
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 128, 128), 8, 512, false), 8);      // 2
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 0, 0), 20, 512, false), 11);
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 512, 512), 100, 512, false), 44);
}

TEST(CCsImageUtils, FontHeightRoundsAnExactHalfDown) {
    // A square of n pixels with base 256 has height n / 2.
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 41, 41), 256, 512, true), 20);
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 42, 42), 256, 512, true), 21);
    // With base 128, a quarter: 20.25, 20.5, 20.75.
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 81, 81), 128, 512, true), 20);
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 82, 82), 128, 512, true), 20);
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 83, 83), 128, 512, true), 21);
}

TEST(CCsImageUtils, ExactFontHeightIsNotLimitedAndScalesTheReferenceSize) {
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 128, 128), 20, 512, true), 5);
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 2048, 2048), 20, 512, true), 80);
    // Base 20 above size 10: the reference is 1024.
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 1024, 1024), 20, 10, true), 20);
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 1024, 1024), 20, 20, true), 40);
    // 20 / 15 * 512 = 682.67, cut to 682.
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 682, 682), 20, 15, true), 20);
    // Without exact the image size does not matter.
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 1024, 1024), 20, 10, false), 40);
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 512, 512), 20, 0, true), 0);
}

TEST(CCsImageUtils, FontHeightIsDefinedForEveryRectangle) {
    zoltest::Random random(45);
    const auto any = [&] {
        return random.chance(0.5) ? random.integer(-2000, 2000)
                                  : static_cast<int>(static_cast<std::int32_t>(random.bits()));
    };
    for (int i = 0; i < 3000; ++i) {
        const RECT r = rect(any(), any(), any(), any());
        const int base = any();
        const int height = calculateFontHeight(r, base, any(), false);
        EXPECT_LE(height, 44);
        EXPECT_GE(height, std::min({base, 11, 44}));
        calculateFontHeight(r, base, any(), true);
    }
    EXPECT_EQ(calculateFontHeight(rect(least, least, most, most), most, 1, false), 44);
}

#if defined(_WIN32)

/// A window of a size, never shown.
class TestWindow {
public:
    TestWindow(int width, int height)
        : handle_(CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 10, 20, width, height, nullptr, nullptr, nullptr,
                                  nullptr)) {}
    ~TestWindow() { DestroyWindow(handle_); }
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    [[nodiscard]] HWND handle() const { return handle_; }

private:
    HWND handle_;
};

#else

/// A window of a size, never drawn on.
class TestWindow : private ZolHostWindow {
public:
    TestWindow(int width, int height) : width_(width), height_(height), handle_(ZolCreateHostWindow(this)) {}
    ~TestWindow() override { ZolDestroyHostWindow(handle_); }
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    [[nodiscard]] HWND handle() const { return handle_; }

private:
    SIZE clientSize() override { return {width_, height_}; }
    ZolPixelSurface surface() override { return {}; }
    void present() override {}
    void invalidate(const RECT& /*area*/) override {}
    RECT windowRect() override { return {10, 20, 10 + width_, 20 + height_}; }

    int width_;
    int height_;
    HWND handle_;
};

#endif

TEST(CCsImageUtils, FontHeightOfAWindow) {
    EXPECT_EQ(calculateFontHeight(nullptr, 20), 11);
    EXPECT_EQ(calculateFontHeight(nullptr, -3), 0);
    if (TestWindow(512, 512).handle() == nullptr) GTEST_SKIP() << "no window can be made here";
    const auto height = [](int windowWidth, int windowHeight, int base) {
        const TestWindow window(windowWidth, windowHeight);
        return calculateFontHeight(window.handle(), base);
    };
    EXPECT_EQ(height(512, 512, 20), 20);
    EXPECT_EQ(height(1024, 512, 20), 28);
    EXPECT_EQ(height(512, 1024, 20), 28);
    EXPECT_EQ(height(1024, 1024, 20), 40);
    EXPECT_EQ(height(1024, 1024, 40), 44);
    EXPECT_EQ(height(128, 128, 20), 11);
    EXPECT_EQ(height(128, 128, 8), 8);
}

}  // namespace
