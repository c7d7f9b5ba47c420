// Lines drawn as ellipses and curves, and lines whose ends are far away.
#include "support/line_drawing.h"
#include "support/open_line.h"

#include "zolcs/ccsline.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

namespace {

using zoltest::calls;
using zoltest::drawn;
using zoltest::figure;
using zoltest::LineDrawing;
using zoltest::Look;
using zoltest::OpenLine;
using zoltest::printerLook;
using zoltest::Rendering;
using zoltest::square;
using zoltest::textLook;

constexpr int solid = 0;
constexpr int dotted = 2;

using Points = std::vector<CCsPointDouble>;

// ---------------------------------------------------------------------------------------------------- ellipses

TEST_F(LineDrawing, AnEllipseTouchesItsRectangleInFourCurves) {
    // Half axes 100 and 50 around (200, 100); 0.5523 of them is 55.228 and 27.614.
    CCsLine line(&view, 100.0, 50.0, 300.0, 50.0, 300.0, 150.0, 100.0, 150.0, solid, true, false);
    line.select();
    EXPECT_EQ(drawn(line, screen()),
              figure({},
                     "bezier (301 101) (301 128) (256 151) (201 151) (145 151) (101 128) (101 101) (101 73) (145 51) "
                     "(201 51) (256 51) (301 73) (301 101)\n" +
                         square(98, 48) + square(298, 48) + square(298, 148) + square(98, 148),
                     "bezier (300 100) (300 127) (255 150) (200 150) (144 150) (100 127) (100 100) (100 72) (144 50) "
                     "(200 50) (255 50) (300 72) (300 100)\n" +
                         square(97, 47) + square(297, 47) + square(297, 147) + square(97, 147)));
    line.setDicomPrintFlag(true);
    line.unselect();
    EXPECT_EQ(drawn(line, text(16)),
              figure(textLook(3, "0x010101"),
                     "bezier (301 101) (301 128) (256 151) (201 151) (145 151) (101 128) (101 101) (101 73) (145 51) "
                     "(201 51) (256 51) (301 73) (301 101)\n"
                     "bezier (302 102) (302 129) (257 152) (202 152) (146 152) (102 129) (102 102) (102 74) (146 52) "
                     "(202 52) (257 52) (302 74) (302 102)\n",
                     "bezier (300 100) (300 127) (255 150) (200 150) (144 150) (100 127) (100 100) (100 72) (144 50) "
                     "(200 50) (255 50) (300 72) (300 100)\n"));
    line.setShadow(false);
    EXPECT_EQ(drawn(line, printer(300)),
              figure(printerLook(5), "",
                     "bezier (300 100) (300 127) (255 150) (200 150) (144 150) (100 127) (100 100) (100 72) (144 50) "
                     "(200 50) (255 50) (300 72) (300 100)\n"));
}

TEST_F(LineDrawing, AnEllipseTurnsWithItsRectangle) {
    // A square on its corner: half axes (50, 50) and (-50, 50) around (100, 150), a circle of radius 70.7.
    CCsLine line(&view, 100.0, 50.0, 200.0, 150.0, 100.0, 250.0, 0.0, 150.0, solid, true, false);
    line.setShadow(false);
    EXPECT_EQ(drawn(line, screen()),
              figure({}, "",
                     "bezier (150 200) (122 227) (77 227) (50 200) (22 172) (22 127) (50 100) (77 72) (122 72) "
                     "(150 100) (177 127) (177 172) (150 200)\n"));
    CCsLine flat(&view, 100.0, 100.0, 200.0, 100.0, 200.0, 100.0, 100.0, 100.0, solid, true, false);
    flat.setShadow(false);
    EXPECT_EQ(drawn(flat, screen()),
              figure({}, "",
                     "bezier (200 100) (200 100) (177 100) (150 100) (122 100) (100 100) (100 100) (100 100) "
                     "(122 100) (150 100) (177 100) (200 100) (200 100)\n"));
}

TEST_F(LineDrawing, OtherNumbersOfPointsAreNoEllipse) {
    CCsLine two(&view, 10, 20, 30, 40, solid);
    CCsLine five(&view, Points(5, CCsPointDouble(1, 1)), solid, false, false, true);
    for (CCsLine* const line : {&two, &five}) {
        EXPECT_EQ(
            drawn(screen(), [&](HDC dc) { line->renderEllipse(&view, &output, 0, dc, 1, 64, 64, 0, 0, false, true); }),
            "");
    }
}

TEST_F(LineDrawing, TheFlagsOfTheOtherWaysToDrawHaveNoEffect) {
    CCsLine line(&view, 100.0, 50.0, 300.0, 50.0, 300.0, 150.0, 100.0, 150.0, solid, true, false);
    const std::string expected = drawn(line, screen());
    for (const bool flag1 : {false, true}) {
        for (const bool flag2 : {false, true}) {
            EXPECT_EQ(drawn(screen(),
                            [&](HDC dc) {
                                CCsOverlay& overlay = line;
                                overlay.renderEllipse(&view, &output, 0x0000FF, dc, 1, 9, 9, 7, 7, flag1, flag2);
                            }),
                      expected);
        }
    }
}

/// The points in a recorded text, each of which follows these words.
std::vector<POINT> pointsAfter(const std::string& words, const std::string& recorded) {
    std::vector<POINT> points;
    for (std::size_t at = 0; (at = recorded.find(words, at)) != std::string::npos; ++at) {
        int x = 0;
        int y = 0;
        if (std::sscanf(recorded.c_str() + at + words.size(), "%d %d", &x, &y) == 2) points.push_back({x, y});
    }
    return points;
}

/// Of a polygon, where no curve is drawn.
std::vector<POINT> polygonOf(const std::string& recorded) { return pointsAfter("(", recorded); }

/// The ends of straight lines.
std::vector<POINT> endsOf(const std::string& recorded) { return pointsAfter(" to ", recorded); }

TEST_F(LineDrawing, AFilledEllipseIsAPath) {
    CCsLine line(&view, 100.0, 50.0, 300.0, 50.0, 300.0, 150.0, 100.0, 150.0, solid, true, false);
    line.setColorFilled(0x00FF00);
    line.select();
    Look look{"pen solid 0 0x0000ff", "brush 0x808080", "pen solid 0 0x000000"};
    look.shadowSelected = false;
    EXPECT_EQ(drawn(line, screen()),
              figure(look, "",
                     calls({"fill alternate", "begin path",
                            "bezier (300 100) (300 127) (255 150) (200 150) (144 150) (100 127) (100 100) (100 72) "
                            "(144 50) (200 50) (255 50) (300 72) (300 100)",
                            "end path", "stroke and fill path"})));
}

// ---------------------------------------------------------------------------------------------------- curves

TEST_F(LineDrawing, ACurveGoesThroughItsPoints) {
    const Points points{{10, 10}, {40, 10}, {40, 70}};
    CCsLine line(&view, points, solid, true, false, false);
    line.setShadow(false);
    // Catmull-Rom: the tangent in the middle is half of (30, 60); a third of it is (5, 10).
    EXPECT_EQ(drawn(line, screen()), figure({}, "", "bezier (10 10) (15 10) (35 0) (40 10) (45 20) (40 60) (40 70)\n"));
    line.close();
    EXPECT_EQ(drawn(line, screen()),
              figure({}, "", "bezier (10 10) (10 0) (35 0) (40 10) (45 20) (45 70) (40 70) (35 70) (10 20) (10 10)\n"));
}

TEST_F(LineDrawing, CurvesOfFewPointsAreStraight) {
    CCsLine one(&view, Points{{10, 10}}, solid, true, false, false);
    CCsLine two(&view, Points{{10, 10}, {40, 70}}, solid, true, false, false);
    CCsLine none(&view, Points(), solid, true, false, false);
    EXPECT_EQ(drawn(one, screen()),
              figure({}, calls({"move to 11 11", "line to 11 11"}), calls({"move to 10 10", "line to 10 10"})));
    EXPECT_EQ(drawn(two, screen()),
              figure({}, "bezier (11 11) (16 21) (36 61) (41 71)\n", "bezier (10 10) (15 20) (35 60) (40 70)\n"));
    EXPECT_EQ(drawn(none, screen()), "");
}

TEST_F(LineDrawing, CurvesHaveTheShadowsAndHandlesOfLines) {
    CCsLine line(&view, Points{{10, 10}, {40, 70}}, dotted, true, false, false);
    line.select();
    line.setDicomPrintFlag(true);
    Look look{"pen dot 3 0x00ffff", "brush 0x00ffff", "pen dot 3 0x010101"};
    look.transparent = true;
    EXPECT_EQ(drawn(line, text(16)),
              figure(look,
                     calls({"bezier (11 11) (16 21) (36 61) (41 71)", "bezier (12 12) (17 22) (37 62) (42 72)"}) +
                         square(8, 8) + square(38, 68),
                     calls({"bezier (10 10) (15 20) (35 60) (40 70)"}) + square(7, 7) + square(37, 67)));
    line.unselect();
    line.setPenStyle(solid);
    EXPECT_EQ(drawn(line, printer(600)), figure(printerLook(10), "bezier (20 20) (25 30) (45 70) (50 80)\n",
                                                "bezier (10 10) (15 20) (35 60) (40 70)\n"));
}

TEST_F(LineDrawing, AFilledCurveIsAClosedArea) {
    CCsLine line(&view, Points{{10, 10}, {50, 10}, {50, 50}, {10, 50}}, solid, true, false, true);
    line.select();
    EXPECT_EQ(drawn(line, screen()),
              figure({}, "",
                     calls({"fill alternate", "begin path",
                            "bezier (10 10) (16 3) (43 3) (50 10) (56 16) (56 43) (50 50) (43 56) (16 56) (10 50) "
                            "(3 43) (3 16) (10 10)",
                            "end path", "stroke and fill path"})));
    CCsLine three(&view, Points{{10, 10}, {40, 10}, {40, 70}}, solid, true, false, true);
    three.setShadow(false);
    EXPECT_EQ(drawn(three, screen()),
              figure({}, "", "bezier (10 10) (15 10) (35 0) (40 10) (45 20) (40 60) (40 70)\n"));
}

TEST_F(LineDrawing, TheCurveComesBeforeTheEllipse) {
    OpenLine line(&view, 10.0, 10.0, 40.0, 10.0, 40.0, 40.0, 10.0, 40.0, solid, true, false);
    line.interpolated = 1;
    CCsLine curve(&view, Points{{10, 10}, {40, 10}, {40, 40}, {10, 40}}, solid, true, false, false);
    EXPECT_EQ(drawn(line, screen()), drawn(curve, screen()));
}

/// Writes down how it is asked to draw.
class AskedLine : public OpenLine {
public:
    using OpenLine::OpenLine;
    void renderEllipse(CCs2dTrafo* i, CCs2dTrafo* o, unsigned long color, HDC, int mode, int width, int height,
                       int offsetX, int offsetY, bool flag1, bool flag2) override {
        note("ellipse", i, o, color, {mode, width, height, offsetX, offsetY}, flag1, flag2);
    }
    void renderInterpolatedLine(CCs2dTrafo* i, CCs2dTrafo* o, unsigned long color, HDC, int mode, int width, int height,
                                int offsetX, int offsetY, bool flag1, bool flag2) override {
        note("curve", i, o, color, {mode, width, height, offsetX, offsetY}, flag1, flag2);
    }
    std::string asked;

private:
    void note(const char* what, CCs2dTrafo* i, CCs2dTrafo* o, unsigned long color, const std::vector<int>& numbers,
              bool flag1, bool flag2) {
        asked = what;
        asked += i != nullptr && o != nullptr && i != o ? " views " : " ? ";
        asked += std::to_string(color);
        for (const int number : numbers) asked += ' ' + std::to_string(number);
        asked += flag1 ? " true" : " false";
        asked += flag2 ? " true" : " false";
    }
};

TEST_F(LineDrawing, RenderHandsItsArgumentsOn) {
    AskedLine line(&view, 10.0, 10.0, 40.0, 10.0, 40.0, 40.0, 10.0, 40.0, solid, true, false);
    line.render(&view, &output, 77, nullptr, 3, 640, 480, 11, 22);
    EXPECT_EQ(line.asked, "ellipse views 77 3 640 480 11 22 false true");
    line.interpolated = 1;
    line.render(&view, &output, 78, nullptr, 4, 641, 481, 12, 23);
    EXPECT_EQ(line.asked, "curve views 78 4 641 481 12 23 false true");
    line.asked.clear();
    line.setRenderFlag(false);
    line.render(&view, &output, 78, nullptr, 4, 641, 481, 12, 23);
    EXPECT_EQ(line.asked, "");
}

// ---------------------------------------------------------------------------------------------------- far away

TEST_F(LineDrawing, FarEndsAreCutOffAndTheLineKeepsItsDirection) {
    CCsLine line(&view, 0, 0, 1, 1, solid);
    line.setShadow(false);
    const auto outlineOf = [&](double x1, double y1, double x2, double y2) {
        line.setImgPts(nullptr, x1, y1, x2, y2);
        const std::string all = drawn(line, screen());
        const std::size_t begin = all.find("select brush 0x0000ff\n", all.find("select pen solid 0 0x0000ff")) + 22;
        return all.substr(begin, all.find("select caller's brush") - begin);
    };
    // Up to 27 bits nothing is cut, not even to 16.
    EXPECT_EQ(outlineOf(-134217727, 40000, 134217727, -70000),
              calls({"move to -134217727 40000", "line to 134217727 -70000"}));
    // A cut end is truncated like all others, and so may be a pixel short.
    EXPECT_EQ(outlineOf(10, 10, 1e12 + 10, 10), calls({"move to 10 10", "line to 134217726 10"}));
    EXPECT_EQ(outlineOf(-1e12, 0, 1e12, 0), calls({"move to -134217727 0", "line to 134217727 0"}));
    EXPECT_EQ(outlineOf(0, 0, 1e10, 5e9), calls({"move to 0 0", "line to 134217726 67108863"}));
    EXPECT_EQ(outlineOf(0, 0, -5e9, -1e10), calls({"move to 0 0", "line to -67108863 -134217726"}));
    EXPECT_EQ(outlineOf(3e9, 1e12, 3e9, -1e12), "");
    EXPECT_EQ(outlineOf(2e9, 0, 0, 2e9), "");
    EXPECT_EQ(outlineOf(1e12, 5, 0, 5), calls({"move to 134217727 5", "line to 0 5"}));
    // Where there is no telling, nothing is drawn.
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double none : {infinity, -infinity, std::numeric_limits<double>::quiet_NaN(), 1e300, -1e300, 1e17}) {
        EXPECT_EQ(outlineOf(10, 10, none, 10), "") << none;
        EXPECT_EQ(outlineOf(10, none, 20, 20), "") << none;
        EXPECT_EQ(outlineOf(none, none, none, none), "") << none;
    }
}

TEST_F(LineDrawing, FiguresThatLeaveAndComeBack) {
    CCsLine line(&view, Points{{0, 0}, {10, 0}, {1e9, 0}, {1e9, 20}, {10, 20}, {0, 20}}, solid, false, false, false);
    line.setShadow(false);
    line.select();
    EXPECT_EQ(drawn(line, screen()), figure({}, "",
                                            calls({"move to 0 0", "line to 10 0", "line to 134217727 0",
                                                   "move to 134217727 20", "line to 10 20", "line to 0 20"}) +
                                                square(-3, -3) + square(7, -3) + square(7, 17) + square(-3, 17)));
}

TEST_F(LineDrawing, ALineToAFarVertexComesBackFromWhereItEnters) {
    CCsLine line(&view, Points{{0, 0}, {0x1p28, 100}, {0, 400}}, solid, false, false, false);
    line.setShadow(false);
    EXPECT_EQ(drawn(line, screen()),
              figure({}, "", calls({"move to 0 0", "line to 134217727 49", "move to 134217727 250", "line to 0 400"})));
}

TEST_F(LineDrawing, FarAreasKeepTheDirectionsOfTheirSides) {
    // A spike far beyond one limit, and then beyond each of the others.
    const double spike[4][2] = {{0, 0}, {100, 0}, {60, -0x1p33}, {40, -0x1p33}};
    const int cut[4][2] = {{0, 0}, {100, 0}, {99, -134217727}, {0, -134217727}};
    int cosine = 1;
    int sine = 0;
    for (int quarter = 0; quarter < 4; ++quarter) {
        Points points;
        std::string expected = "polygon";
        for (int i = 0; i < 4; ++i) {
            points.emplace_back(spike[i][0] * cosine - spike[i][1] * sine, spike[i][0] * sine + spike[i][1] * cosine);
            expected += " (" + std::to_string(cut[i][0] * cosine - cut[i][1] * sine) + ' ' +
                        std::to_string(cut[i][0] * sine + cut[i][1] * cosine) + ')';
        }
        CCsLine area(&view, points, solid, false, false, true);
        EXPECT_EQ(drawn(area, screen()), figure({}, "", "fill alternate\n" + expected + '\n')) << quarter;
        cosine = std::exchange(sine, cosine);
        cosine = -cosine;
    }
}

TEST_F(LineDrawing, FarAreasAreCutToWhatGdiCanHold) {
    CCsLine line(&view, Points{{-1e12, -1e12}, {1e12, -1e12}, {1e12, 100}, {-1e12, 100}}, solid, false, false, true);
    const std::vector<POINT> points = polygonOf(drawn(line, screen()));
    ASSERT_EQ(points.size(), 4U);
    for (const POINT& point : points) {
        EXPECT_TRUE(point.x == 134217727 || point.x == -134217727) << point.x;
        EXPECT_TRUE(point.y == 100 || point.y == -134217727) << point.y;
    }
    CCsLine outside(&view, Points{{1e9, 0}, {2e9, 0}, {2e9, 100}, {1e9, 100}}, solid, false, false, true);
    EXPECT_EQ(drawn(outside, screen()), figure({}, "", "fill alternate\n"));
    CCsLine lost(&view, Points{{1e9, 0}, {2e9, 0}, {std::numeric_limits<double>::quiet_NaN(), 100}, {1e9, 100}}, solid,
                 false, false, true);
    EXPECT_EQ(drawn(lost, screen()), figure({}, "", "fill alternate\n"));
}

TEST_F(LineDrawing, FarCurvesAreDrawnWhereTheyAreVisible) {
    // A circle of radius 1e9 whose rightmost point is at (100, 0), and the x of its Bezier piece at a height.
    constexpr double radius = 1e9;
    const auto onCurve = [](double y) {
        double low = 0.0;
        double high = 1.0;
        const auto bezier = [](double a, double b, double c, double d, double t) {
            const double u = 1.0 - t;
            return u * u * u * a + 3 * u * u * t * b + 3 * u * t * t * c + t * t * t * d;
        };
        constexpr double kappa = 0.5522847498307936;
        for (int i = 0; i < 60; ++i) {
            const double t = 0.5 * (low + high);
            (bezier(0, kappa * radius, radius, radius, t) < std::fabs(y) ? low : high) = t;
        }
        return bezier(100, 100, 100 - radius + kappa * radius, 100 - radius, low);
    };
    CCsLine line(&view, -2e9 + 100, -1e9, 100.0, -1e9, 100.0, 1e9, -2e9 + 100, 1e9, solid, true, false);
    line.setShadow(false);
    const std::string all = drawn(line, screen());
    EXPECT_EQ(all.find("bezier"), std::string::npos);
    EXPECT_NE(all.find(" 100 0\n"), std::string::npos);
    const std::vector<POINT> ends = endsOf(all);
    EXPECT_GT(ends.size(), 100U);
    for (const POINT& point : ends) {
        EXPECT_LE(std::max(std::abs(point.x), std::abs(point.y)), 134217727);
        EXPECT_NEAR(point.x, onCurve(point.y), 1.5) << point.y;
    }
    // Its surface is a polygon then.
    line.setColorFilled(0x00FF00);
    int onOutline = 0;
    for (const POINT& point : polygonOf(drawn(line, screen()))) {
        EXPECT_LE(std::max(std::abs(point.x), std::abs(point.y)), 134217727);
        if (std::max(std::abs(point.x), std::abs(point.y)) == 134217727) continue;
        EXPECT_NEAR(point.x, onCurve(point.y), 1.5) << point.y;
        ++onOutline;
    }
    EXPECT_GT(onOutline, 100);
    CCsLine lost(&view, 0.0, 0.0, 1.0, 0.0, 1.0, std::numeric_limits<double>::quiet_NaN(), 0.0, 1.0, solid, true,
                 false);
    lost.setShadow(false);
    EXPECT_EQ(drawn(lost, screen()), figure({}, "", ""));
}

TEST_F(LineDrawing, HugeCirclesCostNoMoreThanTheirVisiblePart) {
    // Circles that come from far beyond one limit, and then from beyond each of the others, to 100 pixels past the
    // origin; within GDI's coordinates they are straight but for 8 pixels.
    constexpr double radius = 0x1p50;
    const int directions[4][2] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};
    for (const auto& [dx, dy] : directions) {
        const double x = dx * (100 - radius);
        const double y = dy * (100 - radius);
        CCsLine line(&view, x - radius, y - radius, x + radius, y - radius, x + radius, y + radius, x - radius,
                     y + radius, solid, true, false);
        line.setShadow(false);
        const std::vector<POINT> points = endsOf(drawn(line, screen()));
        EXPECT_GT(points.size(), 2U);
        EXPECT_LT(points.size(), 1000U);
        int farthest = 0;
        for (const POINT& point : points) {
            const int ahead = point.x * dx + point.y * dy;
            EXPECT_GE(ahead, 90);
            farthest = std::max(farthest, ahead);
        }
        EXPECT_NEAR(farthest, 100, 1);
    }
}

}  // namespace
