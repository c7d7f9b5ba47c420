#include "support/drawing.h"
#include "support/open_line.h"
#include "support/overlay_views.h"

#include "zolcs/ccsgroup.h"
#include "zolcs/ccsline.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>
#include <utility>

namespace {

using zoltest::calls;
using zoltest::drawn;
using zoltest::GdiRecorder;
using zoltest::identityView;
using zoltest::mirroredView;
using zoltest::OpenLine;
using zoltest::quarterTurnedView;
using zoltest::Rendering;
using zoltest::square;
using zoltest::zoomedView;

constexpr int solid = 0;
constexpr int dotted = 2;

using Points = std::vector<CCsPointDouble>;

/// The pens and brushes of a figure, as names, around what it draws.
struct Look {
    std::string pen = "pen solid 0 0x0000ff";
    std::string brush = "brush 0x0000ff";
    std::string shadowPen = "pen solid 0 0x000000";
    bool shadowSelected = true;
    bool transparent = false;
};

std::string figure(const Look& look, const std::string& shadow, const std::string& outline) {
    std::string out =
        "create " + look.pen + "\ncreate " + look.brush + "\ncreate " + look.shadowPen + "\ncreate brush 0x000000\n";
    if (look.shadowSelected) out += "select " + look.shadowPen + "\nselect brush 0x000000\n";
    if (look.transparent) out += "background transparent\n";
    out += shadow + "select " + look.pen + "\nselect " + look.brush + '\n' + outline;
    if (look.transparent) out += "background opaque\n";
    out += "select caller's brush\nselect caller's pen\ndelete brush 0x000000\ndelete " + look.shadowPen + "\ndelete " +
           look.brush + "\ndelete " + look.pen + '\n';
    return out;
}

Look printerLook(int width) {
    const std::string pen = "pen solid " + std::to_string(width);
    return {pen + " 0xffffff", "brush 0xffffff", pen + " 0x000000"};
}

Look textLook(int width, const char* shadowColor = "0x000000") {
    const std::string pen = "pen solid " + std::to_string(width);
    return {pen + " 0x00ffff", "brush 0x00ffff", pen + ' ' + shadowColor};
}

class LineDrawing : public zoltest::DrawingTest {
protected:
    [[nodiscard]] Rendering text(int height) {
        Rendering out = mode(4);
        out.prepare = [height](GdiRecorder& recorder) { recorder.textHeight = height; };
        return out;
    }
};

// ---------------------------------------------------------------------------------------------------- outlines

TEST_F(LineDrawing, ShadowThenOutline) {
    CCsLine line(&view, 10, 20, 30, 40, solid);
    EXPECT_EQ(drawn(line, screen()), calls({
                                         "create pen solid 0 0x0000ff",
                                         "create brush 0x0000ff",
                                         "create pen solid 0 0x000000",
                                         "create brush 0x000000",
                                         "select pen solid 0 0x000000",
                                         "select brush 0x000000",
                                         "move to 11 21",
                                         "line to 31 41",
                                         "select pen solid 0 0x0000ff",
                                         "select brush 0x0000ff",
                                         "move to 10 20",
                                         "line to 30 40",
                                         "select caller's brush",
                                         "select caller's pen",
                                         "delete brush 0x000000",
                                         "delete pen solid 0 0x000000",
                                         "delete brush 0x0000ff",
                                         "delete pen solid 0 0x0000ff",
                                     }));
}

TEST_F(LineDrawing, APointIsALineToItself) {
    CCsLine point(&view, 5, 6, solid);
    const std::string expected =
        figure({}, calls({"move to 6 7", "line to 6 7"}), calls({"move to 5 6", "line to 5 6"}));
    EXPECT_EQ(drawn(point, screen()), expected);
    point.close();
    EXPECT_EQ(drawn(point, screen()), expected);
}

TEST_F(LineDrawing, OpenAndClosedFigures) {
    CCsLine angle(&view, 10, 10, 20, 10, 20, 30, solid);
    EXPECT_EQ(drawn(angle, screen()), figure({}, calls({"move to 11 11", "line to 21 11", "line to 21 31"}),
                                             calls({"move to 10 10", "line to 20 10", "line to 20 30"})));
    angle.close();
    EXPECT_EQ(drawn(angle, screen()),
              figure({}, calls({"move to 11 11", "line to 21 11", "line to 21 31", "line to 11 11"}),
                     calls({"move to 10 10", "line to 20 10", "line to 20 30", "line to 10 10"})));
    CCsLine two(&view, 10, 10, 20, 10, solid);
    two.close();
    EXPECT_EQ(drawn(two, screen()), figure({}, calls({"move to 11 11", "line to 21 11", "line to 11 11"}),
                                           calls({"move to 10 10", "line to 20 10", "line to 10 10"})));
}

TEST_F(LineDrawing, HandlesComeAfterTheLinesOfTheirPhase) {
    CCsLine line(&view, 10, 20, 30, 40, solid);
    line.select();
    EXPECT_EQ(drawn(line, screen()),
              figure({}, calls({"move to 11 21", "line to 31 41"}) + square(8, 18) + square(28, 38),
                     calls({"move to 10 20", "line to 30 40"}) + square(7, 17) + square(27, 37)));
    line.unselect();
    EXPECT_EQ(drawn(line, screen()),
              figure({}, calls({"move to 11 21", "line to 31 41"}), calls({"move to 10 20", "line to 30 40"})));
}

TEST_F(LineDrawing, WithoutShadow) {
    CCsLine line(&view, 10, 20, 30, 40, solid);
    line.select();
    line.setShadow(false);
    EXPECT_EQ(drawn(line, screen()),
              figure({}, "", calls({"move to 10 20", "line to 30 40"}) + square(7, 17) + square(27, 37)));
}

TEST_F(LineDrawing, GapsOfDottedLinesAreTransparent) {
    CCsLine line(&view, 10, 20, 30, 40, dotted);
    Look look{"pen dot 0 0x0000ff", "brush 0x0000ff", "pen dot 0 0x000000"};
    look.transparent = true;
    const std::string expected =
        figure(look, calls({"move to 11 21", "line to 31 41"}), calls({"move to 10 20", "line to 30 40"}));
    EXPECT_EQ(drawn(line, screen()), expected);
    line.setPenStyle(1);
    EXPECT_EQ(drawn(line, screen()),
              figure({"pen dash 0 0x0000ff", "brush 0x0000ff", "pen dash 0 0x000000"},
                     calls({"move to 11 21", "line to 31 41"}), calls({"move to 10 20", "line to 30 40"})));
}

TEST_F(LineDrawing, TheBackgroundModeComesBack) {
    CCsLine line(&view, 10, 20, 30, 40, dotted);
    const std::string all = drawn(screen(), [&](HDC dc) {
        SetBkMode(dc, TRANSPARENT);
        line.render(&view, &output, 0, dc, 1, 64, 64, 0, 0);
        EXPECT_EQ(GetBkMode(dc), TRANSPARENT);
        SetBkMode(dc, OPAQUE);
        line.render(&view, &output, 0, dc, 1, 64, 64, 0, 0);
        EXPECT_EQ(GetBkMode(dc), OPAQUE);
    });
    EXPECT_NE(all.find("background transparent\nselect caller's brush"), std::string::npos);
    EXPECT_NE(all.find("background opaque\nselect caller's brush"), std::string::npos);
}

TEST_F(LineDrawing, NothingAtAll) {
    CCsLine none;
    CCsLine line(&view, 10, 20, 30, 40, solid);
    const auto nothing = [&](CCsLine& overlay, const Rendering& rendering) {
        EXPECT_EQ(drawn(overlay, rendering), "");
    };
    for (const int m : {1, 2, 3, 4}) nothing(none, mode(m));
    for (const int m : {0, 5, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        nothing(line, mode(m));
    }
    for (const int m : {1, 2, 3, 4}) nothing(line, {nullptr, &output, m});
    line.setRenderFlag(false);
    nothing(line, screen());
    EXPECT_EQ(drawn(screen(),
                    [&](HDC dc) {
                        line.renderEllipse(&view, &output, 0, dc, 1, 64, 64, 0, 0, false, true);
                        line.renderInterpolatedLine(&view, &output, 0, dc, 1, 64, 64, 0, 0, false, true);
                    }),
              "");
    // The base's render with a font draws nothing.
    line.setRenderFlag(true);
    EXPECT_EQ(
        drawn(screen(), [&](HDC dc) { line.render(&view, &output, 0, dc, CCsImageTextFont::Bold, 1, 64, 64, 0, 0); }),
        "");
}

TEST_F(LineDrawing, ADeviceContextThatIsNoneHarmsNothing) {
    CCsLine line(&view, Points{{1, 1}, {9, 1}, {9, 9}, {1, 9}}, dotted, false, false, true);
    const unsigned int before = zoltest::gdiObjectCount();
    for (const int m : {1, 2, 3, 4}) {
        line.select();
        line.render(&view, &output, 0, nullptr, m, 64, 64, 0, 0);
        line.setColorFilled(0xFF);
        line.render(&view, &output, 0, nullptr, m, 64, 64, 0, 0);
        line.setColorFilled(0);
        line.render(&view, &output, 0, nullptr, m, 64, 64, 0, 0);
    }
    EXPECT_EQ(zoltest::gdiObjectCount(), before);
}

TEST_F(LineDrawing, WithoutObjectsTheCallersStay) {
    CCsLine line(&view, 10, 20, 30, 40, solid);
    Rendering rendering = screen();
    rendering.prepare = [](GdiRecorder& recorder) { recorder.objectsFail = true; };
    EXPECT_EQ(drawn(line, rendering), calls({"fail to create pen solid 0 0x0000ff", "fail to create brush 0x0000ff",
                                             "fail to create pen solid 0 0x000000", "fail to create brush 0x000000",
                                             "move to 11 21", "line to 31 41", "move to 10 20", "line to 30 40"}));
}

// ---------------------------------------------------------------------------------------------------- modes

TEST_F(LineDrawing, ThePrintersPenIsTenPixelsAt600DotsPerInch) {
    CCsLine line(&view, 10, 20, 30, 40, solid);
    line.select();
    const std::string shadow = calls({"move to 20 30", "line to 40 50"}) + square(8, 18) + square(28, 38);
    const std::string outline = calls({"move to 10 20", "line to 30 40"}) + square(7, 17) + square(27, 37);
    const std::pair<int, int> widths[] = {{96, 1}, {300, 5}, {600, 10}, {59, 0}, {1200, 20}, {359, 5}, {0, 0}};
    for (const auto& [dotsPerInch, width] : widths) {
        EXPECT_EQ(drawn(line, printer(dotsPerInch)), figure(printerLook(width), shadow, outline)) << dotsPerInch;
    }
    line.setDicomPrintFlag(true);  // counts in mode 4 only
    EXPECT_EQ(drawn(line, printer(600)), figure(printerLook(10), shadow, outline));
    EXPECT_EQ(drawn(line, printer(std::numeric_limits<int>::max())), figure(printerLook(35791394), shadow, outline));
}

TEST_F(LineDrawing, ModeThreeLooksLikeTheScreen) {
    CCsLine line(&view, 10, 20, 30, 40, solid);
    EXPECT_EQ(drawn(line, mode(3)),
              figure({}, calls({"move to 11 21", "line to 31 41"}), calls({"move to 10 20", "line to 30 40"})));
    line.setDicomPrintFlag(true);
    EXPECT_EQ(drawn(line, mode(3)),
              figure({}, calls({"move to 11 21", "line to 31 41"}), calls({"move to 10 20", "line to 30 40"})));
}

TEST_F(LineDrawing, ModeFoursPenGoesByTheHeightOfTheText) {
    CCsLine line(&view, 10, 20, 30, 40, solid);
    const std::string shadow = calls({"move to 11 21", "line to 31 41"});
    const std::string outline = calls({"move to 10 20", "line to 30 40"});
    const std::pair<int, int> widths[] = {{0, 1}, {4, 1}, {5, 2}, {14, 2}, {15, 3}, {16, 3}, {100, 11}};
    for (const auto& [height, width] : widths) {
        EXPECT_EQ(drawn(line, text(height)), figure(textLook(width), shadow, outline)) << height;
    }
}

TEST_F(LineDrawing, ModeFourForPrintsHasTwoShadowsInNearlyBlackAndHandlesOnce) {
    CCsLine line(&view, 10, 20, 30, 40, solid);
    line.setDicomPrintFlag(true);
    line.select();
    EXPECT_EQ(drawn(line, text(16)),
              figure(textLook(3, "0x010101"),
                     calls({"move to 11 21", "line to 31 41", "move to 12 22", "line to 32 42"}) + square(8, 18) +
                         square(28, 38),
                     calls({"move to 10 20", "line to 30 40"}) + square(7, 17) + square(27, 37)));
    line.setShadow(false);
    line.unselect();
    EXPECT_EQ(drawn(line, text(16)), figure(textLook(3, "0x010101"), "", calls({"move to 10 20", "line to 30 40"})));
}

TEST_F(LineDrawing, OnlyTheLowBytesOfAColourCount) {
    CCsLine line(&view, 10, 20, 30, 40, solid);
    Rendering rendering = screen();
    rendering.color = 0x00123456UL;
    const Look look{"pen solid 0 0x123456", "brush 0x123456", "pen solid 0 0x000000"};
    EXPECT_EQ(drawn(line, rendering),
              figure(look, calls({"move to 11 21", "line to 31 41"}), calls({"move to 10 20", "line to 30 40"})));
}

// ---------------------------------------------------------------------------------------------------- filling

TEST_F(LineDrawing, FilledFiguresOfMoreThanThreePointsAreAreas) {
    const Points corners{{10, 10}, {30, 10}, {30, 30}, {10, 30}};
    CCsLine line(&view, corners, solid, false, false, true);
    line.select();
    line.close();
    const std::string area = calls({"fill alternate", "polygon (10 10) (30 10) (30 30) (10 30)"});
    // In the outline's colour; the shadow's pen is selected all the same.
    EXPECT_EQ(drawn(line, screen()), figure({}, "", area));
    EXPECT_EQ(drawn(line, mode(3)), figure({}, "", area));
    EXPECT_EQ(drawn(line, printer(600)), figure(printerLook(10), "", area));
    EXPECT_EQ(drawn(line, text(16)), figure(textLook(3), "", area));
    line.setDicomPrintFlag(true);
    EXPECT_EQ(drawn(line, text(16)), figure(textLook(3, "0x010101"), "", area));
    // In a colour of its own: grey on the screen.
    line.setDicomPrintFlag(false);
    line.setColorFilled(0x00FF00);
    const auto own = [](Look look, const char* brush) {
        look.brush = brush;
        look.shadowSelected = false;
        return look;
    };
    EXPECT_EQ(drawn(line, screen()), figure(own({}, "brush 0x808080"), "", area));
    EXPECT_EQ(drawn(line, mode(3)), figure(own({}, "brush 0x808080"), "", area));
    EXPECT_EQ(drawn(line, printer(600)), figure(own(printerLook(10), "brush 0x00ff00"), "", area));
    EXPECT_EQ(drawn(line, text(16)), figure(own(textLook(3), "brush 0x00ff00"), "", area));
}

TEST_F(LineDrawing, FilledFiguresOfThreePointsAreOutlines) {
    CCsLine line(&view, Points{{10, 10}, {30, 10}, {30, 30}}, dotted, false, false, true);
    Look look{"pen dot 0 0x0000ff", "brush 0x0000ff", "pen dot 0 0x000000"};
    look.transparent = true;
    const std::string shadow = calls({"move to 11 11", "line to 31 11", "line to 31 31"});
    const std::string outline = calls({"move to 10 10", "line to 30 10", "line to 30 30"});
    EXPECT_EQ(drawn(line, screen()), figure(look, shadow, outline));
    // With a colour of its own the shadow is left to the caller's pen and brush.
    line.setColorFilled(0x00FF00);
    line.select();
    look.brush = "brush 0x808080";
    look.shadowSelected = false;
    EXPECT_EQ(drawn(line, screen()), figure(look, shadow + square(8, 8) + square(28, 8) + square(28, 28),
                                            outline + square(7, 7) + square(27, 7) + square(27, 27)));
    line.setColorFilled(0);
    line.unselect();
    look.brush = "brush 0x0000ff";
    look.shadowSelected = true;
    EXPECT_EQ(drawn(line, screen()), figure(look, shadow, outline));
}

TEST_F(LineDrawing, AColourFillsAlsoFiguresThatWereOutlines) {
    CCsLine line(&view, 10, 10, 30, 10, 30, 30, 10, 30, solid);
    line.setColorFilled(1);
    Look look{"pen solid 0 0x0000ff", "brush 0x808080", "pen solid 0 0x000000"};
    look.shadowSelected = false;
    EXPECT_EQ(drawn(line, screen()),
              figure(look, "", calls({"fill alternate", "polygon (10 10) (30 10) (30 30) (10 30)"})));
}

// ---------------------------------------------------------------------------------------------------- positions

TEST_F(LineDrawing, FollowsZoomTurnAndMirror) {
    CCsLine line(&view, 100, 200, 300, 400, solid);
    CCs2dTrafo turned = quarterTurnedView();
    CCs2dTrafo mirrored = mirroredView();
    CCs2dTrafo half = identityView();
    half.scale(0.5);
    EXPECT_EQ(drawn(line, {&turned, nullptr, 1}),
              figure({}, calls({"move to 313 101", "line to 113 301"}), calls({"move to 312 100", "line to 112 300"})));
    EXPECT_EQ(drawn(line, {&mirrored, nullptr, 1}),
              figure({}, calls({"move to 413 201", "line to 213 401"}), calls({"move to 412 200", "line to 212 400"})));
    EXPECT_EQ(drawn(line, {&half, nullptr, 1}),
              figure({}, calls({"move to 179 229", "line to 279 329"}), calls({"move to 178 228", "line to 278 328"})));
    int x1 = 0, y1 = 0, x2 = 0, y2 = 0;
    line.getEndPts(x1, y1, x2, y2);
    EXPECT_EQ((std::vector<int>{x1, y1, x2, y2}), (std::vector<int>{178, 228, 278, 328}));
}

TEST_F(LineDrawing, TheScreenRoundsAndPrintersTruncate) {
    CCsLine line(&view, 0, 0, 1, 1, solid);
    line.setImgPts(nullptr, 10.5, 20.25, 30.75, 40.5);
    EXPECT_EQ(drawn(line, screen()),
              figure({}, calls({"move to 12 21", "line to 32 42"}), calls({"move to 11 20", "line to 31 41"})));
    EXPECT_EQ(drawn(line, text(16)), figure(textLook(3), calls({"move to 12 21", "line to 32 42"}),
                                            calls({"move to 11 20", "line to 31 41"})));
    EXPECT_EQ(drawn(line, mode(3)),
              figure({}, calls({"move to 11 21", "line to 31 41"}), calls({"move to 10 20", "line to 30 40"})));
    EXPECT_EQ(drawn(line, printer(600)), figure(printerLook(10), calls({"move to 20 30", "line to 40 50"}),
                                                calls({"move to 10 20", "line to 30 40"})));
}

TEST_F(LineDrawing, PrintsAMoveThatHasNotEndedThroughTheOutputsTransformation) {
    CCsLine line(&view, 10, 20, 30, 40, solid);
    line.move(&view, 1, 1, 300, 300, nullptr);
    CCs2dTrafo doubled = identityView();
    doubled.scale(2.0);  // x' = 2 x - 256
    EXPECT_EQ(drawn(line, {nullptr, nullptr, 1}),
              figure({}, calls({"move to 12 22", "line to 32 42"}), calls({"move to 11 21", "line to 31 41"})));
    EXPECT_EQ(drawn(line, {nullptr, &doubled, 3}), figure({}, calls({"move to -233 -213", "line to -193 -173"}),
                                                          calls({"move to -234 -214", "line to -194 -174"})));
    // Mode 4 burns in what the image has.
    EXPECT_EQ(drawn(line, text(16)), figure(textLook(3), calls({"move to 11 21", "line to 31 41"}),
                                            calls({"move to 10 20", "line to 30 40"})));
    EXPECT_EQ(drawn(line, {&view, nullptr, 3}), "");
}

TEST_F(LineDrawing, NormalisedLinesStayOnTheOutputInEveryMode) {
    CCsLine line(&view, 0.25, 0.5, 0.75, 1.0, solid, true);
    CCs2dTrafo any = zoomedView(3.7);
    any.rotate(33.0);
    for (const int m : {1, 3, 0, 5, -7}) {
        EXPECT_EQ(drawn(line, {&any, nullptr, m}), figure({}, calls({"move to 129 257", "line to 385 513"}),
                                                          calls({"move to 128 256", "line to 384 512"})));
    }
    EXPECT_EQ(drawn(line, printer(600)), figure(printerLook(10), calls({"move to 138 266", "line to 394 522"}),
                                                calls({"move to 128 256", "line to 384 512"})));
    EXPECT_EQ(drawn(line, {nullptr, &any, 1}), "");
}

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

// ---------------------------------------------------------------------------------------------------- groups

TEST_F(LineDrawing, GroupsDrawTheirMembersInOrder) {
    CCsGroup outer;
    auto* const inner = new CCsGroup;
    auto* const first = new CCsLine(&view, 1, 2, 3, 4, solid);
    auto* const last = new CCsLine(&view, 5, 6, solid);
    inner->append(*first);
    outer.append(*inner);
    outer.append(*last);
    EXPECT_EQ(drawn(outer, screen()), drawn(*first, screen()) + drawn(*last, screen()));
    EXPECT_EQ(drawn(screen(), [&](HDC dc) { outer.renderLast(&view, &output, 0x0000FF, dc, 1, 64, 64, 0, 0); }),
              drawn(*last, screen()));
    outer.setDicomPrintFlag(true);
    EXPECT_NE(drawn(*first, text(16)).find("0x010101"), std::string::npos);
    delete first;
    delete last;
    EXPECT_EQ(drawn(outer, screen()), "");
}

}  // namespace
