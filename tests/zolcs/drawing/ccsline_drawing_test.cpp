#include "support/line_drawing.h"
#include "support/overlay_views.h"

#include "zolcs/ccsgroup.h"
#include "zolcs/ccsline.h"

#include <limits>
#include <memory>
#include <utility>

namespace {

using zoltest::calls;
using zoltest::drawn;
using zoltest::figure;
using zoltest::GdiRecorder;
using zoltest::identityView;
using zoltest::LineDrawing;
using zoltest::Look;
using zoltest::mirroredView;
using zoltest::printerLook;
using zoltest::quarterTurnedView;
using zoltest::Rendering;
using zoltest::square;
using zoltest::textLook;
using zoltest::zoomedView;

constexpr int solid = 0;
constexpr int dotted = 2;

using Points = std::vector<CCsPointDouble>;

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
