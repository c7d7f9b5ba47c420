// Conversions of coordinates, circles, and points inside shutters.
#include "zolcs/ccsimageutils.h"

#include "zolcs/ccsimageutils_fixture.h"

namespace {

using namespace zoltest::imageutils;
using namespace CCsImageUtils;

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

}  // namespace
