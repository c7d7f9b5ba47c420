// Runs of columns that shutters leave visible, and bounds of shutters.
#include "zolcs/ccsimageutils.h"

#include "zolcs/ccsimageutils_fixture.h"

namespace {

using namespace zoltest::imageutils;
using namespace CCsImageUtils;

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

}  // namespace
