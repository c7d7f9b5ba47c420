#include "support/drawing.h"
#include "support/overlay_views.h"
#include "support/test_data.h"

#include "zolcs/ccsellipse.h"
#include "zolcs/ccsimageutils.h"

#include <cstdio>
#include <limits>

namespace {

using zoltest::calls;
using zoltest::drawn;
using zoltest::GdiRecorder;
using zoltest::identityView;
using zoltest::mirroredView;
using zoltest::quarterTurnedView;
using zoltest::Rendering;
using zoltest::square;
using zoltest::zoomedView;

/// The calls around what an ellipse draws: its pen, and its fill, empty for none.
std::string ellipse(const std::string& drawing, const std::string& handles = "",
                    const std::string& pen = "pen solid 1 0x0000ff", const std::string& fill = "",
                    const std::string& handleBrush = "brush 0x0000ff") {
    std::string out = "create " + pen + '\n';
    if (!fill.empty()) out += "create " + fill + '\n';
    out += "create " + handleBrush + "\nselect " + pen + "\nselect " + (fill.empty() ? "hollow brush" : fill) + '\n' +
           drawing + "select " + handleBrush + '\n' + handles + "select caller's brush\nselect caller's pen\ndelete " +
           handleBrush + '\n';
    if (!fill.empty()) out += "delete " + fill + '\n';
    return out + "delete " + pen + '\n';
}

std::string turned(int x, int y, const std::string& world, int top, int right) {
    return calls({"save", "graphics advanced"}) + "viewport origin " + std::to_string(x) + ' ' + std::to_string(y) +
           "\nmap mode 4\nworld " + world + "\nellipse 0 " + std::to_string(top) + ' ' + std::to_string(right) + ' ' +
           std::to_string(-top) + "\nrestore\n";
}

class EllipseDrawing : public zoltest::DrawingTest {
protected:
    RECT unused{};
};

TEST_F(EllipseDrawing, InItsRectangleInEveryMode) {
    CCsEllipse plain(&view, CCsPoint(10, 20), CCsPoint(50, 40));
    EXPECT_EQ(drawn(plain, screen()), calls({
                                          "create pen solid 1 0x0000ff",
                                          "create brush 0x0000ff",
                                          "select pen solid 1 0x0000ff",
                                          "select hollow brush",
                                          "ellipse 10 20 50 40",
                                          "select brush 0x0000ff",
                                          "select caller's brush",
                                          "select caller's pen",
                                          "delete brush 0x0000ff",
                                          "delete pen solid 1 0x0000ff",
                                      }));
    for (const int m : {1, 3, 4}) EXPECT_EQ(drawn(plain, mode(m)), ellipse("ellipse 10 20 50 40\n")) << m;
    for (const int dotsPerInch : {96, 300, 600}) {  // unlike a line's
        EXPECT_EQ(drawn(plain, printer(dotsPerInch)), ellipse("ellipse 10 20 50 40\n", "", "pen solid 10 0x0000ff"));
    }
    plain.setDicomPrintFlag(true);  // no shadow, so nothing to change
    EXPECT_EQ(drawn(plain, mode(4)), ellipse("ellipse 10 20 50 40\n"));
}

TEST_F(EllipseDrawing, Filled) {
    CCsEllipse plain(&view, CCsPoint(10, 20), CCsPoint(50, 40));
    plain.setColorFilled(0x00FF00);
    EXPECT_EQ(drawn(plain, screen()), ellipse("ellipse 10 20 50 40\n", "", "pen solid 1 0x0000ff", "brush 0x00ff00"));
    plain.setColorFilled(0);
    EXPECT_EQ(drawn(plain, screen()), ellipse("ellipse 10 20 50 40\n", "", "pen solid 1 0x0000ff", "brush 0x0000ff"));
    plain.setFilled(false);
    EXPECT_EQ(drawn(plain, screen()), ellipse("ellipse 10 20 50 40\n"));
}

TEST_F(EllipseDrawing, HandlesInTheMiddleOfTheEdges) {
    CCsEllipse plain(&view, CCsPoint(10, 20), CCsPoint(51, 41));
    plain.select(unused);
    const std::string handles = square(7, 27) + square(48, 27) + square(27, 17) + square(27, 38);
    for (const int m : {1, 3, 4}) EXPECT_EQ(drawn(plain, mode(m)), ellipse("ellipse 10 20 51 41\n", handles));
    EXPECT_EQ(drawn(plain, mode(2)), ellipse("ellipse 10 20 51 41\n", handles, "pen solid 10 0x0000ff"));
    plain.unselect(unused);
    EXPECT_EQ(drawn(plain, screen()), ellipse("ellipse 10 20 51 41\n"));
    CCsEllipse negative(&view, CCsPoint(-11, -21), CCsPoint(10, 0));  // middles in integer division
    negative.select(unused);
    EXPECT_EQ(drawn(negative, screen()),
              ellipse("ellipse -11 -21 10 0\n", square(-14, -13) + square(7, -13) + square(-3, -24) + square(-3, -3)));
}

TEST_F(EllipseDrawing, FollowsZoomTurnAndMirror) {
    CCsEllipse plain(&view, CCsPoint(100, 200), CCsPoint(300, 400));
    CCs2dTrafo turnedView = quarterTurnedView();
    CCs2dTrafo mirrored = mirroredView();
    CCs2dTrafo half = identityView();
    half.scale(0.5);
    EXPECT_EQ(drawn(plain, {&turnedView, nullptr, 1}), ellipse("ellipse 112 100 312 300\n"));
    EXPECT_EQ(drawn(plain, {&mirrored, nullptr, 1}), ellipse("ellipse 212 200 412 400\n"));
    EXPECT_EQ(drawn(plain, {&half, nullptr, 1}), ellipse("ellipse 178 228 278 328\n"));
    CCsPoint first;
    CCsPoint second;
    plain.getEndPts(first, second);
    EXPECT_EQ((std::vector<int>{first.x, first.y, second.x, second.y}), (std::vector<int>{178, 228, 278, 328}));
    EXPECT_EQ(drawn(plain, {&turnedView, nullptr, 3}), ellipse("ellipse 112 100 312 300\n"));
    plain.getEndPts(first, second);
    EXPECT_EQ((std::vector<int>{first.x, first.y, second.x, second.y}), (std::vector<int>{178, 228, 278, 328}));
}

TEST_F(EllipseDrawing, TheScreenRoundsAndPrintersTruncate) {
    CCs2dTrafo half = identityView();
    half.scale(0.5);  // x' = x / 2 + 128
    CCsEllipse plain(&view, CCsPoint(101, 201), CCsPoint(303, 403));
    EXPECT_EQ(drawn(plain, {&half, nullptr, 1}), ellipse("ellipse 179 229 280 330\n"));
    EXPECT_EQ(drawn(plain, {&half, nullptr, 4}), ellipse("ellipse 179 229 280 330\n"));
    EXPECT_EQ(drawn(plain, {&half, nullptr, 3}), ellipse("ellipse 178 228 279 329\n"));
}

TEST_F(EllipseDrawing, AMoveThatHasNotEnded) {
    CCs2dTrafo doubled = identityView();
    doubled.scale(2.0);  // x' = 2 x - 256
    CCsEllipse plain(&view, CCsPoint(100, 200), CCsPoint(300, 400));
    plain.move(&view, 1, 2, 0, 0, nullptr);
    EXPECT_EQ(drawn(plain, {nullptr, nullptr, 1}), ellipse("ellipse 101 202 301 402\n"));
    EXPECT_EQ(drawn(plain, {nullptr, &doubled, 3}), ellipse("ellipse -54 148 346 548\n"));
    EXPECT_EQ(drawn(plain, {&view, &doubled, 4}), ellipse("ellipse 100 200 300 400\n"));
}

TEST_F(EllipseDrawing, TurnedInAWorldOfItsOwn) {
    CCsEllipse angular(&view, CCsPointDouble(100, 100), CCsPointDouble(180, 100), CCsPointDouble(140, 75),
                       CCsPointDouble(140, 125));
    EXPECT_EQ(drawn(angular, screen()), ellipse(turned(100, 100, "1 0 0 1 0 0", 25, 80)));
    angular.select(unused);
    EXPECT_EQ(drawn(angular, screen()), ellipse(turned(100, 100, "1 0 0 1 0 0", 25, 80),
                                                square(97, 97) + square(177, 97) + square(137, 72) + square(137, 122)));
    angular.unselect(unused);
    angular.setColorFilled(0x00FF00);
    EXPECT_EQ(drawn(angular, mode(2)),
              ellipse(turned(100, 100, "1 0 0 1 0 0", 25, 80), "", "pen solid 10 0x0000ff", "brush 0x00ff00"));
    // Upwards on the display: theta is 90 degrees (the cosine of it is not quite 0).
    CCsEllipse upright(&view, CCsPointDouble(100, 180), CCsPointDouble(100, 100), CCsPointDouble(80.5, 140),
                       CCsPointDouble(120.5, 140));
    EXPECT_EQ(drawn(upright, screen()), ellipse(turned(100, 180, "6.12323426e-17 1 -1 6.12323426e-17 0 0", 20, 80)));
    // Along (3, -4): cosine 0.6, sine 0.8. Lengths 100 and 45.
    CCsEllipse oblique(&view, CCsPointDouble(100.75, 200.75), CCsPointDouble(160.75, 120.75),
                       CCsPointDouble(112.75, 147.25), CCsPointDouble(148.75, 174.25));
    EXPECT_EQ(drawn(oblique, screen()),
              ellipse(turned(100, 200, "0.600000024 0.800000012 -0.800000012 0.600000024 0 0", 22, 100)));
}

TEST_F(EllipseDrawing, TurnsAndMirrorsWithTheView) {
    CCsEllipse angular(&view, CCsPointDouble(100, 100), CCsPointDouble(180, 100), CCsPointDouble(140, 75),
                       CCsPointDouble(140, 125));
    CCs2dTrafo turnedView = quarterTurnedView();  // clockwise: from the origin (412, 100) the axis runs down
    EXPECT_EQ(drawn(angular, {&turnedView, nullptr, 1}),
              ellipse(turned(412, 100, "6.12323426e-17 -1 1 6.12323426e-17 0 0", 25, 80)));
    CCs2dTrafo mirrored = mirroredView();
    EXPECT_EQ(drawn(angular, {&mirrored, nullptr, 1}),
              ellipse(turned(412, 100, "-1 1.22464685e-16 -1.22464685e-16 -1 0 0", 25, 80)));
    CCs2dTrafo doubled = zoomedView(1.0);
    EXPECT_EQ(drawn(angular, {&doubled, nullptr, 1}), ellipse(turned(200, 200, "1 0 0 1 0 0", 50, 160)));
}

TEST_F(EllipseDrawing, OnlyTheScreenAndModeFourTakeTheRectangleOfAnAngularOneAlong) {
    CCsEllipse angular(&view, CCsPointDouble(100, 100), CCsPointDouble(180, 100), CCsPointDouble(140, 75),
                       CCsPointDouble(140, 125));
    CCs2dTrafo doubled = zoomedView(1.0);
    const auto rectangleAfter = [&](int m) {
        drawn(angular, {&doubled, nullptr, m});
        CCsPoint first;
        CCsPoint second;
        angular.getEndPts(first, second);
        angular.imgToDsp(&view);
        return std::vector<int>{first.x, first.y, second.x, second.y};
    };
    for (const int m : {2, 3}) EXPECT_EQ(rectangleAfter(m), (std::vector<int>{100, 75, 180, 125})) << m;
    for (const int m : {1, 4}) EXPECT_EQ(rectangleAfter(m), (std::vector<int>{200, 150, 360, 250})) << m;
}

TEST_F(EllipseDrawing, TheWorldsAxisPointsWhereTheViewPutsTheAxis) {
    zoltest::Random random(3);
    for (int i = 0; i < 200; ++i) {
        CCs2dTrafo any = identityView();
        any.scale(random.real(0.2, 5.0));
        any.rotate(random.real(-360.0, 360.0));
        if (random.chance(0.5)) any.mirror(random.chance(0.5) ? CCS_HORIZONTAL : CCS_VERTICAL);
        any.rotate(random.real(-360.0, 360.0));
        const CCsPointDouble p0(random.real(200, 300), random.real(200, 300));
        const CCsPointDouble p1(random.real(200, 300), random.real(200, 300));
        CCsEllipse angular(&any, p0, p1, CCsPointDouble(250, 250), CCsPointDouble(251, 252));
        const std::string recorded = drawn(angular, {&any, nullptr, 1});
        double cosine = 0.0;
        double sine = 0.0;
        ASSERT_EQ(std::sscanf(recorded.c_str() + recorded.find("world"), "world %lf %lf", &cosine, &sine), 2);
        const CCsPointDouble from = CCsImageUtils::imgToDspD(any, p0);
        const CCsPointDouble to = CCsImageUtils::imgToDspD(any, p1);
        const double length = CCsImageUtils::getEuclidianDistance(from, to);
        EXPECT_NEAR(cosine, (to.x - from.x) / length, 1e-6);
        EXPECT_NEAR(sine, -(to.y - from.y) / length, 1e-6);  // its y grows upwards
    }
}

TEST_F(EllipseDrawing, AnAngularOneInEveryModeAndDuringAMove) {
    CCsEllipse angular(&view, CCsPointDouble(100, 100), CCsPointDouble(180, 100), CCsPointDouble(140, 75),
                       CCsPointDouble(140, 125));
    const std::string expected = ellipse(turned(100, 100, "1 0 0 1 0 0", 25, 80));
    for (const int m : {1, 3, 4}) EXPECT_EQ(drawn(angular, mode(m)), expected);
    for (const int m : {0, 5}) EXPECT_EQ(drawn(angular, mode(m)), "");
    for (const int m : {1, 2, 3, 4}) EXPECT_EQ(drawn(angular, {nullptr, &output, m}), "");
    angular.move(&view, 10, 20, 0, 0, nullptr);
    for (const int m : {1, 3, 4}) {
        EXPECT_EQ(drawn(angular, mode(m)), ellipse(turned(110, 120, "1 0 0 1 0 0", 25, 80))) << m;
    }
}

/// An ellipse whose protected operations can be called.
class OpenEllipse : public CCsEllipse {
public:
    using CCsEllipse::CCsEllipse;
    using CCsEllipse::renderEllipse;
    using CCsEllipse::renderSelectionHandles;
};

TEST_F(EllipseDrawing, ItsProtectedOperations) {
    OpenEllipse angular(&view, CCsPointDouble(100, 100), CCsPointDouble(180, 100), CCsPointDouble(140, 75),
                        CCsPointDouble(140, 125));
    const RECT rect{5, 6, 25, 36};
    angular.select(unused);
    const std::string handles = square(2, 18) + square(22, 18) + square(12, 3) + square(12, 33);
    EXPECT_EQ(drawn(screen(), [&](HDC dc) { angular.renderEllipse(nullptr, rect, 0x0000FF, dc, 1); }),
              ellipse("", handles));
    EXPECT_EQ(drawn(screen(), [&](HDC dc) { angular.renderSelectionHandles(rect, dc); }), handles);
    angular.setRenderFlag(false);
    EXPECT_EQ(drawn(screen(), [&](HDC dc) { angular.renderEllipse(&view, rect, 0x0000FF, dc, 1); }), "");
    // The base's renderEllipse draws nothing.
    CCsOverlay& overlay = angular;
    EXPECT_EQ(drawn(screen(), [&](HDC dc) { overlay.renderEllipse(&view, &view, 0, dc, 1, 0, 0, 0, 0, true, true); }),
              "");
}

TEST_F(EllipseDrawing, TheWorldOfTheDeviceContextComesBack) {
    CCsEllipse angular(&view, CCsPointDouble(20, 30), CCsPointDouble(40, 50), CCsPointDouble(25, 45),
                       CCsPointDouble(35, 35));
    const zoltest::Canvas canvas(64, 64);
    SetGraphicsMode(canvas.dc(), GM_ADVANCED);
    const XFORM world{0.5F, 0.25F, -0.25F, 0.5F, 3.0F, 4.0F};
    SetWorldTransform(canvas.dc(), &world);
    SetViewportOrgEx(canvas.dc(), 7, 8, nullptr);
    angular.render(&view, nullptr, 0xFF, canvas.dc(), 1, 64, 64, 0, 0);
    XFORM after{};
    POINT origin{};
    GetWorldTransform(canvas.dc(), &after);
    GetViewportOrgEx(canvas.dc(), &origin);
    EXPECT_EQ(std::vector<float>({after.eM11, after.eM12, after.eM21, after.eM22, after.eDx, after.eDy}),
              std::vector<float>({0.5F, 0.25F, -0.25F, 0.5F, 3.0F, 4.0F}));
    EXPECT_EQ(origin.x, 7);
    EXPECT_EQ(origin.y, 8);
    EXPECT_EQ(GetMapMode(canvas.dc()), MM_TEXT);
    EXPECT_EQ(GetGraphicsMode(canvas.dc()), GM_ADVANCED);
}

TEST_F(EllipseDrawing, NothingAtAll) {
    CCsEllipse plain(&view, CCsPoint(10, 20), CCsPoint(50, 40));
    for (const int m : {0, 5, -1}) EXPECT_EQ(drawn(plain, mode(m)), "") << m;
    for (const int m : {1, 2, 3, 4}) EXPECT_EQ(drawn(plain, {nullptr, &output, m}), "") << m;
    plain.setRenderFlag(false);
    EXPECT_EQ(drawn(plain, screen()), "");
    plain.setRenderFlag(true);
    const unsigned int before = zoltest::gdiObjectCount();
    plain.setColorFilled(7);
    plain.select(unused);
    CCsEllipse angular(&view, CCsPointDouble(100, 100), CCsPointDouble(180, 100), CCsPointDouble(140, 75),
                       CCsPointDouble(140, 125));
    const HDC gone = CreateCompatibleDC(nullptr);
    DeleteDC(gone);
    for (const HDC wrong : {static_cast<HDC>(nullptr), gone}) {
        plain.render(&view, &output, 0, wrong, 1, 64, 64, 0, 0);
        angular.render(&view, &output, 0, wrong, 1, 64, 64, 0, 0);
    }
    EXPECT_EQ(zoltest::gdiObjectCount(), before);
}

TEST_F(EllipseDrawing, WithoutObjects) {
    CCsEllipse plain(&view, CCsPoint(10, 20), CCsPoint(50, 40));
    plain.setColorFilled(7);
    Rendering rendering = screen();
    rendering.prepare = [](GdiRecorder& recorder) { recorder.objectsFail = true; };
    EXPECT_EQ(drawn(plain, rendering), calls({"fail to create pen solid 1 0x0000ff", "fail to create brush 0x000007",
                                              "fail to create brush 0x0000ff", "select hollow brush",
                                              "ellipse 10 20 50 40", "select caller's brush"}));
}

TEST_F(EllipseDrawing, NoWorldOfItsOwnThatCouldNotBeLeft) {
    CCsEllipse angular(&view, CCsPointDouble(100, 100), CCsPointDouble(180, 100), CCsPointDouble(140, 75),
                       CCsPointDouble(140, 125));
    angular.select(unused);
    Rendering rendering = screen();
    rendering.prepare = [](GdiRecorder& recorder) { recorder.failing = "save"; };
    EXPECT_EQ(drawn(angular, rendering),
              ellipse("fail to save\n", square(97, 97) + square(177, 97) + square(137, 72) + square(137, 122)));
}

TEST_F(EllipseDrawing, FarAwayNothing) {
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double distant :
         {1e9, -1e9, 1e12, 1e300, infinity, -infinity, std::numeric_limits<double>::quiet_NaN()}) {
        CCs2dTrafo moved = identityView();
        moved.setDspPanFactor(distant / 512, 0);
        CCsEllipse plain(&view, CCsPoint(10, 20), CCsPoint(50, 40));
        plain.select(unused);
        for (const int m : {1, 2, 3, 4}) EXPECT_EQ(drawn(plain, {&moved, nullptr, m}), "") << distant;
        CCsEllipse angular(&view, CCsPointDouble(100, 100), CCsPointDouble(180, 100), CCsPointDouble(140, 75),
                           CCsPointDouble(140, 125));
        for (const int m : {1, 2, 3, 4}) EXPECT_EQ(drawn(angular, {&moved, nullptr, m}), "") << distant;
    }
    // As distant as GDI goes, exactly.
    CCsEllipse huge(nullptr, CCsPoint(-134217727, -100000), CCsPoint(134217727, 100000));
    EXPECT_EQ(drawn(huge, {nullptr, nullptr, 1}), ellipse("ellipse -134217727 -100000 134217727 100000\n"));
    CCsEllipse tooHuge(nullptr, CCsPoint(-134217728, -100000), CCsPoint(134217727, 100000));
    EXPECT_EQ(drawn(tooHuge, {nullptr, nullptr, 1}), "");
}

}  // namespace
