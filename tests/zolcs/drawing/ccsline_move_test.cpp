// Picking, moving and reshaping of lines.
#include "support/open_line.h"
#include "support/overlay_views.h"
#include "support/test_data.h"

#include "zolcs/ccsline.h"
#include "zolcs/drawing/reshape.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

namespace {

using zoltest::displayOf;
using zoltest::exactOf;
using zoltest::identityView;
using zoltest::imageOf;
using zoltest::Numbers;
using zoltest::OpenLine;
using zoltest::zoomedView;

constexpr int solid = 0;

Numbers of(const CCsRegion& region) {
    return {1.0 * region.left, 1.0 * region.top, 1.0 * region.width, 1.0 * region.height};
}

// ---------------------------------------------------------------------------------------------------- picking

TEST(CCsLinePick, WithinFourPixelsOfASegmentAndItsEnds) {
    CCs2dTrafo view = identityView();
    OpenLine line(&view, 0, 0, 100, 0, solid);
    EXPECT_EQ(line.pick(104, 4), &line);
    EXPECT_EQ(line.pick(105, 0), nullptr);
    EXPECT_EQ(line.pick(-4, 0), &line);
    EXPECT_EQ(line.pick(-5, 0), nullptr);
    EXPECT_EQ(line.pick(50, 5), nullptr);
    EXPECT_EQ(line.pick(50, 4), &line);
    EXPECT_EQ(line.pick(50, -4), &line);
    EXPECT_EQ(line.pick(50, -5), nullptr);
    OpenLine upright(&view, 10, 100, 10, 0, solid);
    EXPECT_EQ(upright.pick(14, -4), &upright);
    EXPECT_EQ(upright.pick(15, 50), nullptr);
    OpenLine diagonal(&view, 0, 0, 30, 40, solid);        // 50 long
    EXPECT_EQ(diagonal.pick(15 + 4, 20 - 3), nullptr);    // 5 pixels across
    EXPECT_EQ(diagonal.pick(15 + 3, 20 - 2), &diagonal);  // 3.6 pixels across
}

TEST(CCsLinePick, ClosedFiguresAreHitOnTheClosingSegment) {
    CCs2dTrafo view = identityView();
    OpenLine triangle(&view, 0, 0, 100, 0, 100, 100, solid);
    EXPECT_EQ(triangle.pick(50, 50), nullptr);
    EXPECT_EQ(triangle.pick(100, 50), &triangle);
    triangle.close();
    EXPECT_EQ(triangle.pick(50, 50), &triangle);
    EXPECT_EQ(triangle.pick(20, 60), nullptr);
}

TEST(CCsLinePick, SegmentsWithoutLengthAreNeverHit) {
    CCs2dTrafo view = identityView();
    OpenLine none(&view, 10, 10, 10, 10, solid);
    EXPECT_EQ(none.pick(10, 10), nullptr);
    OpenLine point(&view, 10, 10, solid);
    EXPECT_EQ(point.pick(10, 10), nullptr);
    point.close();
    EXPECT_EQ(point.pick(10, 10), nullptr);
    OpenLine empty;
    EXPECT_EQ(empty.pick(0, 0), nullptr);
    empty.close();
    EXPECT_EQ(empty.pick(0, 0), nullptr);
    OpenLine fractions(&view, 0.0, 0.0, 1.0, 1.0, solid, true);
    EXPECT_EQ(fractions.pick(100, 100), nullptr);
}

TEST(CCsLinePick, NotWhileThePickFlagIsOff) {
    CCs2dTrafo view = identityView();
    OpenLine line(&view, 0, 0, 100, 0, solid);
    line.setExternalStatus_(true);
    EXPECT_EQ(line.pick(50, 0), nullptr);
    line.setExternalStatus_(false);
    EXPECT_EQ(line.pick(50, 0), &line);
    line.setGroupPickFlag(0);
    EXPECT_EQ(line.pick(50, 0), nullptr);
    line.setExternalStatus_(true);
    line.setGroupPickFlag(-1);  // the flag alone counts
    EXPECT_EQ(line.pick(50, 0), &line);
}

/// Whether (x, y) is within 4 pixels of a segment and of its ends, in whole numbers: no root, no rounding.
bool isNear(CPoint start, CPoint end, int x, int y) {
    const std::int64_t dx = end.x - start.x;
    const std::int64_t dy = end.y - start.y;
    const std::int64_t square = dx * dx + dy * dy;
    const std::int64_t along = (x - start.x) * dx + (y - start.y) * dy;  // times the length, as is all of this
    const std::int64_t across = (x - start.x) * dy - (y - start.y) * dx;
    const auto within4 = [&](std::int64_t way) { return way * way <= 16 * square; };
    return square != 0 && (along >= 0 || within4(along)) && (along <= square || within4(along - square)) &&
           within4(across);
}

TEST(CCsLinePick, FourDisplayPixelsAtEveryZoomTurnAndMirror) {
    zoltest::Random random(4);
    int hits = 0;
    for (int run = 0; run < 60; ++run) {
        CCs2dTrafo view = identityView();
        view.scale(random.real(0.05, 20.0));
        view.rotate(random.chance(0.3) ? 90.0 : random.real(0.0, 360.0));
        if (random.chance(0.5)) view.mirror(CCS_VERTICAL);
        const int reach = random.integer(0, 12);
        std::vector<CCsPointDouble> points(static_cast<std::size_t>(random.integer(1, 4)));
        for (CCsPointDouble& p : points) p.setPosition(random.integer(-reach, reach), random.integer(-reach, reach));
        OpenLine line(&view, points, solid, false, false, false);
        if (random.chance(0.5)) line.closed = random.chance(0.5) ? 1.0 : -0.25;  // whatever is not 0
        // Another view, in which the line is picked where it has been painted.
        view.scale(random.real(0.2, 3.0));
        view.rotate(random.real(0.0, 360.0));
        line.render(&view, nullptr, 0, nullptr, 1, 64, 64, 0, 0);
        std::vector<CPoint> shown;
        line.getEndPts(shown);
        const CPoint middle = shown.front();
        if (line.closed != 0.0) shown.push_back(shown.front());
        for (int y = middle.y - 40; y <= middle.y + 40; ++y) {
            for (int x = middle.x - 40; x <= middle.x + 40; ++x) {
                bool expected = false;
                for (std::size_t i = 1; i < shown.size(); ++i) {
                    expected = expected || isNear(shown[i - 1], shown[i], x, y);
                }
                ASSERT_EQ(line.pick(x, y), expected ? &line : nullptr) << run << ": " << x << ' ' << y;
                hits += expected ? 1 : 0;
            }
        }
    }
    EXPECT_GT(hits, 5000);
}

TEST(CCsLinePick, CoordinatesAtTheEndsOfTheIntegers) {
    constexpr int low = std::numeric_limits<int>::min();
    constexpr int high = std::numeric_limits<int>::max();
    OpenLine line(nullptr, low, low, high, high, solid);
    EXPECT_EQ(line.pick(0, 0), &line);
    EXPECT_EQ(line.pick(low, high), nullptr);
    EXPECT_EQ(line.pick(high, high), &line);
    line.select();
    EXPECT_EQ(line.pickVertex(low, low, 0, 0), 1);  // the difference saturates at the far vertex
    EXPECT_EQ(line.pickVertex(high, high, low, low), 1);
    EXPECT_EQ(line.pickVertex(0, 0, 0, 0), 0);
    CCsRegion region;
    line.move(nullptr, high, high, 0, 0, &region);
    line.move(nullptr, high, high, 0, 0, &region);
    EXPECT_EQ(displayOf(line), (Numbers{2147483646, 2147483646, 2147483647, 2147483647}));
}

TEST(CCsLinePickVertex, InTheHandlesOfASelectedLine) {
    CCs2dTrafo view = identityView();
    OpenLine line(&view, 10, 20, 100, 200, solid);
    EXPECT_EQ(line.pickVertex(0, 0, 10, 20), 0);
    line.select();
    EXPECT_EQ(line.pickVertex(0, 0, 10, 20), 1);
    EXPECT_EQ(line.pickVertex(0, 0, 3, 13), 1);
    EXPECT_EQ(line.pickVertex(0, 0, 2, 13), 0);
    EXPECT_EQ(line.pickVertex(0, 0, 3, 12), 0);
    EXPECT_EQ(line.pickVertex(0, 0, 16, 26), 1);
    EXPECT_EQ(line.pickVertex(0, 0, 17, 26), 0);
    EXPECT_EQ(line.pickVertex(0, 0, 16, 27), 0);
    EXPECT_EQ(line.pickVertex(5, -5, 105, 195), 1);
    EXPECT_EQ(line.pickVertex(-20, 0, 80, 200), 1);
    EXPECT_EQ(line.pickVertex(0, 0, 55, 110), 0);
    OpenLine none;
    none.select();
    EXPECT_EQ(none.pickVertex(0, 0, 0, 0), 0);
    OpenLine fractions(&view, 0.0, 0.0, 1.0, 1.0, solid, true);
    fractions.select();
    EXPECT_EQ(fractions.pickVertex(0, 0, 0, 0), 0);
}

// ---------------------------------------------------------------------------------------------------- moving

TEST(CCsLineMove, MovesAllVerticesOfALineThatIsNotSelected) {
    CCs2dTrafo view = zoomedView(1.0);
    OpenLine line(&view, 10.5, 20.5, 100.0, 200.0, solid, false);
    const Numbers image = imageOf(line);
    line.move(&view, 3, -4, 13, 16, nullptr);  // from the first vertex, but without handles
    EXPECT_EQ(displayOf(line), (Numbers{13, 16, 103, 196}));
    EXPECT_EQ(exactOf(line), (Numbers{13.5, 16.5, 103, 196}));
    EXPECT_EQ(imageOf(line), image);
    EXPECT_EQ(line.displayAuthoritative, 1);
    line.dspToImg(&view);
    EXPECT_EQ(imageOf(line), (Numbers{6.75, 8.25, 51.5, 98}));
    EXPECT_EQ(line.displayAuthoritative, 0);
}

TEST(CCsLineMove, MovesAGrabbedVertexAlone) {
    CCs2dTrafo view = identityView();
    OpenLine line(&view, 10, 20, 100, 200, solid);
    line.select();
    line.move(&view, 3, -4, 106 + 3, 206 - 4, nullptr);
    EXPECT_EQ(displayOf(line), (Numbers{10, 20, 103, 196}));
    line.move(&view, 3, -4, 60, 100, nullptr);
    EXPECT_EQ(displayOf(line), (Numbers{13, 16, 106, 192}));
    line.move(&view, 1, 1, 6 + 1, 9 + 1, nullptr);
    EXPECT_EQ(displayOf(line), (Numbers{14, 17, 106, 192}));
}

TEST(CCsLineMove, OfSeveralGrabbedVerticesTheLastOneWins) {
    CCs2dTrafo view = identityView();
    OpenLine line(&view, 10, 10, 12, 10, 100, 100, solid);
    line.select();
    line.move(&view, 0, 5, 11, 15, nullptr);
    EXPECT_EQ(displayOf(line), (Numbers{10, 10, 12, 15, 100, 100}));
}

TEST(CCsLineMove, JoinsTheAreasBeforeAndAfter) {
    CCs2dTrafo view = identityView();
    OpenLine line(&view, 10, 20, 100, 200, solid);
    CCsRegion region;
    line.move(&view, 5, 10, 60, 100, &region);
    EXPECT_EQ(of(region), (Numbers{10, 20, 97, 192}));  // 2 by 2 around (10, 20) up to those at (105, 210)
    line.select();
    CCsRegion handles;
    line.move(&view, -5, -10, 60, 100, &handles);
    EXPECT_EQ(of(handles), (Numbers{7, 17, 102, 197}));  // 7 by 7 from (7, 17) up to those from (102, 207)
    CCsRegion vertex;
    line.move(&view, 20, 0, 30, 20, &vertex);
    EXPECT_EQ(displayOf(line), (Numbers{30, 20, 100, 200}));
    EXPECT_EQ(of(vertex), (Numbers{7, 17, 97, 187}));
}

TEST(CCsLineMove, NothingWhileNotMovableOrWithoutPoints) {
    CCs2dTrafo view = identityView();
    OpenLine line(&view, 10, 20, 100, 200, solid);
    line.select();
    line.setMoveStatus_(false);
    CCsRegion region;
    line.move(&view, 5, 10, 60, 100, &region);
    line.moveCircle(&view, 5, 10, 60, 100, &region);
    line.moveRectangle(&view, 5, 10, 60, 100, &region);
    line.moveSquare(&view, 5, 10, 60, 100, &region);
    EXPECT_EQ(displayOf(line), (Numbers{10, 20, 100, 200}));
    EXPECT_EQ(line.displayAuthoritative, 0);
    OpenLine none;
    OpenLine fractions(&view, 0.0, 0.0, 1.0, 1.0, solid, true);
    for (OpenLine* const other : {&none, &fractions}) {
        other->select();
        other->move(&view, 5, 10, 60, 100, &region);
        other->moveCircle(&view, 5, 10, 60, 100, &region);
        other->moveRectangle(&view, 5, 10, 60, 100, &region);
        other->moveSquare(&view, 5, 10, 60, 100, &region);
        EXPECT_EQ(other->displayAuthoritative, 0);
    }
    EXPECT_EQ(of(region), (Numbers{0, 0, 0, 0}));
}

// ---------------------------------------------------------------------------------------------------- reshaping

OpenLine rectangle(int left, int top, int right, int bottom) {
    CCs2dTrafo view = identityView();
    return OpenLine(&view, left, top, right, top, right, bottom, left, bottom, solid);
}

TEST(CCsLineReshape, ARectanglesCornersTakeTheirNeighboursAlong) {
    const Numbers expected[4] = {{15, 23, 50, 23, 50, 80, 15, 80},
                                 {10, 23, 55, 23, 55, 80, 10, 80},
                                 {10, 20, 55, 20, 55, 83, 10, 83},
                                 {15, 20, 50, 20, 50, 83, 15, 83}};
    const int corner[4][2] = {{10, 20}, {50, 20}, {50, 80}, {10, 80}};
    for (int i = 0; i < 4; ++i) {
        OpenLine line = rectangle(10, 20, 50, 80);
        line.select();
        line.moveRectangle(nullptr, 5, 3, corner[i][0] + 5, corner[i][1] + 3, nullptr);
        EXPECT_EQ(displayOf(line), expected[i]) << i;
        EXPECT_EQ(exactOf(line), expected[i]) << i;
        EXPECT_EQ(line.displayAuthoritative, 1);
    }
}

TEST(CCsLineReshape, AwayFromTheCornersTheFigureMoves) {
    for (const auto operation : {&CCsLine::moveRectangle, &CCsLine::moveSquare, &CCsLine::moveCircle}) {
        OpenLine line = rectangle(10, 20, 50, 60);
        line.select();
        (line.*operation)(nullptr, 5, 3, 35, 43, nullptr);
        EXPECT_EQ(displayOf(line), (Numbers{15, 23, 55, 23, 55, 63, 15, 63}));
        line.unselect();
        (line.*operation)(nullptr, -5, -3, 10, 20, nullptr);  // on a corner, but without handles
        EXPECT_EQ(displayOf(line), (Numbers{10, 20, 50, 20, 50, 60, 10, 60}));
    }
}

TEST(CCsLineReshape, ARectangleMayBeDraggedThroughItsOppositeCorner) {
    OpenLine line = rectangle(10, 20, 50, 80);
    line.select();
    line.moveRectangle(nullptr, -60, -70, -10, 10, nullptr);
    EXPECT_EQ(displayOf(line), (Numbers{10, 20, -10, 20, -10, 10, 10, 10}));
    line.moveRectangle(nullptr, 60, 70, 50, 80, nullptr);
    EXPECT_EQ(displayOf(line), (Numbers{10, 20, 50, 20, 50, 80, 10, 80}));
}

TEST(CCsLineReshape, ARectangleGrowsFromNothing) {
    OpenLine line = rectangle(30, 30, 30, 30);
    line.select();
    line.moveRectangle(nullptr, 20, 10, 50, 40, nullptr);  // the last corner is grabbed
    EXPECT_EQ(displayOf(line), (Numbers{50, 30, 30, 30, 30, 40, 50, 40}));
    line.moveRectangle(nullptr, 5, 5, 55, 45, nullptr);
    EXPECT_EQ(displayOf(line), (Numbers{55, 30, 30, 30, 30, 45, 55, 45}));
}

TEST(CCsLineReshape, RectanglesWhoseFirstSideIsUpright) {
    CCs2dTrafo view = identityView();
    OpenLine line(&view, 10, 20, 10, 80, 50, 80, 50, 20, solid);
    line.select();
    line.moveRectangle(nullptr, 5, 3, 55, 83, nullptr);
    EXPECT_EQ(displayOf(line), (Numbers{10, 20, 10, 83, 55, 83, 55, 20}));
}

TEST(CCsLineReshape, TurnedRectanglesKeepTheirDirection) {
    CCs2dTrafo view = identityView();
    // Sides of 100 along (3, 4) and (-4, 3), both of which the corner makes 50 longer.
    OpenLine line(&view, 100, 100, 160, 180, 80, 240, 20, 160, solid);
    line.select();
    line.moveRectangle(nullptr, -10, 70, 70, 310, nullptr);
    EXPECT_EQ(displayOf(line), (Numbers{100, 100, 190, 220, 70, 310, -20, 190}));
    // Unrounded, too, its sides stay parallel to what they were.
    const Numbers exact = exactOf(line);
    EXPECT_NEAR((exact[2] - exact[0]) * 4 - (exact[3] - exact[1]) * 3, 0.0, 1e-9);
    EXPECT_NEAR((exact[6] - exact[0]) * 3 + (exact[7] - exact[1]) * 4, 0.0, 1e-9);
    EXPECT_NEAR(exact[2] + exact[6], exact[0] + exact[4], 1e-9);
}

TEST(CCsLineReshape, SidesWithinHalfAPixelOfAnAxisAreLaidOnIt) {
    CCs2dTrafo view = identityView();
    OpenLine flat(&view, 10.0, 20.0, 50.0, 20.25, 50.0, 80.25, 10.0, 80.0, solid, false, false);
    flat.select();
    flat.moveRectangle(nullptr, 5, 3, 55, 83, nullptr);
    EXPECT_EQ(exactOf(flat), (Numbers{10, 20, 55, 20, 55, 83.25, 10, 83.25}));
    OpenLine upright(&view, 10.0, 20.0, 10.25, 80.0, 50.25, 80.0, 50.0, 20.0, solid, false, false);
    upright.select();
    upright.moveRectangle(nullptr, 5, 3, 55, 83, nullptr);
    EXPECT_EQ(exactOf(upright), (Numbers{10, 20, 10, 83, 55.25, 83, 55.25, 20}));
}

TEST(CCsLineReshape, ARectangleWithoutWidthGoesByItsOtherSides) {
    CCs2dTrafo view = identityView();
    OpenLine line(&view, 0, 0, 0, 0, 30, 40, 30, 40, solid);
    line.select();
    line.moveRectangle(nullptr, -8, 6, 22, 46, nullptr);  // of the two corners there the last one, square to the side
    EXPECT_EQ(displayOf(line), (Numbers{-8, 6, 0, 0, 30, 40, 22, 46}));
}

TEST(CCsLineReshape, ASquareGrowsFromNothing) {
    OpenLine line = rectangle(30, 30, 30, 30);
    line.select();
    line.moveSquare(nullptr, 20, 0, 50, 30, nullptr);  // no telling which way the upright sides go: down
    EXPECT_EQ(displayOf(line), (Numbers{50, 30, 30, 30, 30, 50, 50, 50}));
    line.moveSquare(nullptr, -35, -8, 15, 22, nullptr);
    EXPECT_EQ(displayOf(line), (Numbers{15, 30, 30, 30, 30, 15, 15, 15}));
}

TEST(CCsLineReshape, WhatIsNoRectangleBecomesAnUprightOne) {
    CCs2dTrafo view = identityView();
    OpenLine line(&view, 100, 100, 200, 150, 190, 300, 50, 280, solid);
    line.select();
    line.moveRectangle(nullptr, 10, 10, 200, 310, nullptr);
    EXPECT_EQ(displayOf(line), (Numbers{100, 100, 200, 100, 200, 310, 100, 310}));
}

TEST(CCsLineReshape, ASquareTakesTheLongerSide) {
    OpenLine line = rectangle(10, 10, 50, 50);
    line.select();
    line.moveSquare(nullptr, 20, 5, 70, 55, nullptr);
    EXPECT_EQ(displayOf(line), (Numbers{10, 10, 70, 10, 70, 70, 10, 70}));
    // The corner is 15 pixels below the pointer now, and the drag goes on all the same.
    line.moveSquare(nullptr, -10, -5, 60, 50, nullptr);
    EXPECT_EQ(displayOf(line), (Numbers{10, 10, 60, 10, 60, 60, 10, 60}));
    line.moveSquare(nullptr, -80, -20, -20, 30, nullptr);
    EXPECT_EQ(displayOf(line), (Numbers{10, 10, -20, 10, -20, 40, 10, 40}));
    // Where the drag has ended, a new one begins at the corners again.
    CCs2dTrafo view = identityView();
    line.dspToImg(&view);
    line.moveSquare(nullptr, 1, 1, -19, 31, nullptr);
    EXPECT_EQ(displayOf(line), (Numbers{11, 11, -19, 11, -19, 41, 11, 41}));
}

TEST(CCsLineReshape, ASideThatThePointerLeavesWithoutLengthKeepsItsDirection) {
    OpenLine line = rectangle(10, 10, 50, 50);
    line.select();
    line.moveSquare(nullptr, -20, 40, -10, 50, nullptr);  // level with the opposite corner, above which the square lies
    EXPECT_EQ(displayOf(line), (Numbers{-10, -10, 50, -10, 50, 50, -10, 50}));
}

TEST(CCsLineReshape, ADragDependsOnThePointersPositionOnly) {
    for (const auto operation : {&CCsLine::moveRectangle, &CCsLine::moveSquare, &CCsLine::moveCircle}) {
        OpenLine atOnce = rectangle(100, 100, 200, 200);
        OpenLine inSteps = rectangle(100, 100, 200, 200);
        atOnce.select();
        inSteps.select();
        zoltest::Random random(5);
        int x = 203;
        int y = 198;
        for (int i = 0; i < 200; ++i) {
            const int dx = random.integer(-30, 30);
            const int dy = random.integer(-30, 30);
            x += dx;
            y += dy;
            (inSteps.*operation)(nullptr, dx, dy, x, y, nullptr);
        }
        (atOnce.*operation)(nullptr, x - 203, y - 198, x, y, nullptr);
        EXPECT_EQ(displayOf(inSteps), displayOf(atOnce));
    }
}

TEST(CCsLineReshape, ADragElsewhereLetsGoOfTheCorner) {
    OpenLine line = rectangle(10, 10, 50, 50);
    line.select();
    line.moveSquare(nullptr, 30, 0, 80, 50, nullptr);
    EXPECT_EQ(displayOf(line), (Numbers{10, 10, 80, 10, 80, 80, 10, 80}));
    line.moveSquare(nullptr, 1, 1, 46, 46, nullptr);  // from (45, 45): the inside
    EXPECT_EQ(displayOf(line), (Numbers{11, 11, 81, 11, 81, 81, 11, 81}));
    // Also from straight above, or straight beside, where the corner was left.
    for (const CPoint from : {CPoint(80, 40), CPoint(45, 50)}) {
        OpenLine other = rectangle(10, 10, 50, 50);
        other.select();
        other.moveSquare(nullptr, 30, 0, 80, 50, nullptr);
        other.moveSquare(nullptr, 1, 1, from.x + 1, from.y + 1, nullptr);
        EXPECT_EQ(displayOf(other), (Numbers{11, 11, 81, 11, 81, 81, 11, 81})) << from.x;
    }
}

TEST(CCsLineReshape, ACirclesCornerChangesTheRadius) {
    OpenLine line = rectangle(100, 100, 200, 200);
    line.select();
    line.moveCircle(nullptr, 10, 4, 210, 204, nullptr);
    EXPECT_EQ(displayOf(line), (Numbers{90, 90, 210, 90, 210, 210, 90, 210}));
    line.moveCircle(nullptr, -100, -14, 110, 190, nullptr);  // across the centre: the corner stays with the pointer
    EXPECT_EQ(displayOf(line), (Numbers{190, 110, 110, 110, 110, 190, 190, 190}));
    OpenLine odd = rectangle(100, 100, 201, 201);
    odd.select();
    odd.moveCircle(nullptr, 1, 0, 202, 201, nullptr);
    EXPECT_EQ(exactOf(odd), (Numbers{99, 99, 202, 99, 202, 202, 99, 202}));
}

TEST(CCsLineReshape, OfACircleOfTwoPointsTheFirstIsTheCentre) {
    CCs2dTrafo view = identityView();
    OpenLine line(&view, 100, 100, 150, 100, solid);
    line.select();
    line.moveCircle(&view, 10, 5, 110, 105, nullptr);
    EXPECT_EQ(displayOf(line), (Numbers{110, 105, 160, 105}));
    line.moveCircle(&view, 10, 5, 170, 110, nullptr);
    EXPECT_EQ(displayOf(line), (Numbers{110, 105, 170, 110}));
    line.moveCircle(&view, 1, 1, 140, 140, nullptr);
    EXPECT_EQ(displayOf(line), (Numbers{111, 106, 171, 111}));
}

TEST(CCsLineReshape, NoHandleMovesWhatIsNotMovable) {
    CCs2dTrafo view = identityView();
    for (const auto operation : {&CCsLine::moveRectangle, &CCsLine::moveSquare, &CCsLine::moveCircle}) {
        OpenLine four = rectangle(10, 20, 50, 60);
        OpenLine two(&view, 10, 20, 50, 60, solid);
        for (OpenLine* const line : {&four, &two}) {
            const Numbers before = exactOf(*line);
            line->select();
            line->setMoveStatus_(false);
            CCsRegion region;
            (line->*operation)(nullptr, 5, 3, 15, 23, &region);
            (line->*operation)(nullptr, 5, 3, 55, 63, &region);
            EXPECT_EQ(exactOf(*line), before);
            EXPECT_EQ(line->displayAuthoritative, 0);
            EXPECT_EQ(of(region), (Numbers{0, 0, 0, 0}));
        }
    }
}

TEST(CCsLineReshape, OtherNumbersOfVerticesMoveAsByMove) {
    CCs2dTrafo view = identityView();
    for (const auto operation : {&CCsLine::moveRectangle, &CCsLine::moveSquare, &CCsLine::moveCircle}) {
        OpenLine line(&view, 10, 10, 60, 10, 60, 60, solid);
        line.select();
        (line.*operation)(&view, 5, 7, 65, 17, nullptr);
        EXPECT_EQ(displayOf(line), (Numbers{10, 10, 65, 17, 60, 60}));
    }
}

TEST(CCsLineReshape, JoinsTheAreasBeforeAndAfter) {
    OpenLine line = rectangle(10, 20, 50, 80);
    line.select();
    CCsRegion region;
    line.moveRectangle(nullptr, 50, 40, 100, 120, &region);
    EXPECT_EQ(of(region), (Numbers{7, 17, 97, 107}));
    CCsRegion shrinking;
    line.moveRectangle(nullptr, -50, -40, 50, 80, &shrinking);
    EXPECT_EQ(of(shrinking), (Numbers{7, 17, 97, 107}));
}

using zoltest::Random;
using Shape = void (*)(zolcs::Corners&);

/// A rectangle turned anyhow, in either order around it, with sides along u and v, and a drag on one of its corners.
struct Turned {
    explicit Turned(Random& random) {
        // Far enough from the axes: sides within half a pixel of one would be laid on it.
        const double angle = std::acos(0.0) * random.integer(0, 3) + random.real(0.1, 1.47);
        u = {std::cos(angle), std::sin(angle)};
        v = random.chance(0.5) ? zolcs::OutputPoint{-u.y, u.x} : zolcs::OutputPoint{u.y, -u.x};
        const zolcs::OutputPoint along = u * random.real(20.0, 300.0);
        const zolcs::OutputPoint across = v * random.real(20.0, 300.0);
        const zolcs::OutputPoint first{random.real(-500.0, 500.0), random.real(-500.0, 500.0)};
        corners.points = {first, first + along, first + along + across, first + across};
        corners.dragged = static_cast<std::size_t>(random.integer(0, 3));
        corners.target = {random.real(-900.0, 900.0), random.real(-900.0, 900.0)};
    }

    /// The corners after a reshape by `shape`, which must be a rectangle with its sides still along u and v.
    [[nodiscard]] std::array<zolcs::OutputPoint, 4> reshaped(Shape shape) const {
        zolcs::Corners after = corners;
        shape(after);
        const auto& p = after.points;
        expectSame(p[0] + p[2], p[1] + p[3]);
        EXPECT_NEAR(dot(p[1] - p[0], v), 0.0, 1e-9);
        EXPECT_NEAR(dot(p[3] - p[0], u), 0.0, 1e-9);
        return p;
    }

    /// The longer side from a point to the target.
    [[nodiscard]] double longerSideFrom(zolcs::OutputPoint from) const {
        const zolcs::OutputPoint way = corners.target - from;
        return std::max(std::fabs(dot(way, u)), std::fabs(dot(way, v)));
    }

    static void expectSame(zolcs::OutputPoint a, zolcs::OutputPoint b) {
        EXPECT_NEAR(a.x, b.x, 1e-9);
        EXPECT_NEAR(a.y, b.y, 1e-9);
    }

    zolcs::OutputPoint u;
    zolcs::OutputPoint v;
    zolcs::Corners corners;
};

TEST(CCsLineReshape, TurnedFiguresKeepWhatTheirRulesKeep) {
    Random random(90);
    for (int run = 0; run < 300; ++run) {
        SCOPED_TRACE(run);
        const Turned figure(random);
        const std::size_t dragged = figure.corners.dragged;
        const std::size_t opposite = (dragged + 2) % 4;
        const zolcs::OutputPoint fixed = figure.corners.points[opposite];
        const zolcs::OutputPoint centre = (figure.corners.points[0] + figure.corners.points[2]) * 0.5;

        const auto rectangle = figure.reshaped(zolcs::reshapeRectangle);
        Turned::expectSame(rectangle[opposite], fixed);
        Turned::expectSame(rectangle[dragged], figure.corners.target);

        const auto square = figure.reshaped(zolcs::reshapeSquare);
        Turned::expectSame(square[opposite], fixed);
        EXPECT_NEAR(std::fabs(dot(square[1] - square[0], figure.u)), figure.longerSideFrom(fixed), 1e-9);
        EXPECT_NEAR(std::fabs(dot(square[3] - square[0], figure.v)), figure.longerSideFrom(fixed), 1e-9);
        EXPECT_GE(dot(square[dragged] - fixed, figure.corners.target - fixed), 0.0);  // on the pointer's side

        const auto circle = figure.reshaped(zolcs::reshapeCircle);
        Turned::expectSame((circle[0] + circle[2]) * 0.5, centre);
        EXPECT_NEAR(std::fabs(dot(circle[1] - circle[0], figure.u)), 2.0 * figure.longerSideFrom(centre), 1e-9);
        EXPECT_NEAR(std::fabs(dot(circle[3] - circle[0], figure.v)), 2.0 * figure.longerSideFrom(centre), 1e-9);
        EXPECT_GE(dot(circle[dragged] - centre, figure.corners.target - centre), 0.0);
    }
}

TEST(CCsLineReshape, RulesCopeWithEveryNumber) {
    const double values[] = {0.0,
                             1.0,
                             1e9,
                             -1e300,
                             1e308,
                             std::numeric_limits<double>::infinity(),
                             std::numeric_limits<double>::quiet_NaN()};
    for (const double value : values) {
        for (std::size_t dragged = 0; dragged < 4; ++dragged) {
            for (const Shape shape : {zolcs::reshapeRectangle, zolcs::reshapeSquare, zolcs::reshapeCircle}) {
                zolcs::Corners anything{{{{value, 0}, {1, value}, {value, value}, {0, 0}}}, dragged, {value, -value}};
                shape(anything);  // the sanitizers watch
                zolcs::Corners figure{{{{0, 0}, {10, 0}, {10, 10}, {0, 10}}}, dragged, {value, -value}};
                const zolcs::OutputPoint fixed = figure.points[(dragged + 2) % 4];
                shape(figure);
                const zolcs::OutputPoint after = figure.points[(dragged + 2) % 4];
                // However far the pointer is, the corner that stays does so exactly.
                if (shape != zolcs::reshapeCircle) {
                    EXPECT_TRUE(after.x == fixed.x && after.y == fixed.y) << value;
                }
            }
        }
    }
}

}  // namespace
