#include "zolcs/ccsellipse.h"

#include "support/overlay_views.h"
#include "support/test_data.h"
#include "support/vtable_slots.h"

#include "zolcs/ccsgroup.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>

namespace {

using zoltest::identityView;
using zoltest::mirroredView;
using zoltest::quarterTurnedView;
using zoltest::zoomedView;

/// An ellipse that shows its fields.
class OpenEllipse : public CCsEllipse {
public:
    using CCsEllipse::CCsEllipse;
    using CCsEllipse::maintainMinimumSize;
    using CCsEllipse::renderEllipse;
    using CCsEllipse::renderSelectionHandles;

    using CCsEllipse::angular;
    using CCsEllipse::axisPoints;
    using CCsEllipse::dicomPrintFlag;
    using CCsEllipse::displayAuthoritative;
    using CCsEllipse::displayRect;
    using CCsEllipse::fillColor;
    using CCsEllipse::filled;
    using CCsEllipse::grabbedHandle;
    using CCsEllipse::imageRect;
    using CCsEllipse::selected;
};

using Numbers = std::vector<double>;

Numbers displayOf(const CCsEllipse& ellipse) {
    CCsPoint first;
    CCsPoint second;
    ellipse.getEndPts(first, second);
    return {1.0 * first.x, 1.0 * first.y, 1.0 * second.x, 1.0 * second.y};
}

Numbers imageOf(const CCsEllipse& ellipse) {
    CCsPointDouble first;
    CCsPointDouble second;
    ellipse.getImagePts(first, second);
    return {first.x, first.y, second.x, second.y};
}

Numbers axesOf(const OpenEllipse& ellipse) {
    Numbers out;
    for (const CCsPointDouble& point : ellipse.axisPoints) out.insert(out.end(), {point.x, point.y});
    return out;
}

Numbers of(const CCsRegion& region) {
    return {1.0 * region.left, 1.0 * region.top, 1.0 * region.width, 1.0 * region.height};
}

OpenEllipse plain(int left, int top, int right, int bottom) {
    CCs2dTrafo view = identityView();
    return OpenEllipse(&view, CCsPoint(left, top), CCsPoint(right, bottom));
}

// ---------------------------------------------------------------------------------------------------- interface

TEST(CCsEllipseInterface, ItsOwnVirtualOperationsFollowTheBase) {
    using zoltest::tableEntry;
    const std::size_t last = tableEntry(&CCsOverlay::renderEllipse);
    EXPECT_EQ(tableEntry(&CCsEllipse::setPts), last + 1);
    EXPECT_EQ(tableEntry(&CCsEllipse::beginMove), last + 2);
    EXPECT_EQ(tableEntry(&CCsEllipse::endMove), last + 3);
    EXPECT_EQ(tableEntry(&CCsEllipse::imgToDsp), last + 4);
    EXPECT_EQ(tableEntry(static_cast<void (CCsEllipse::*)(RECT&, HDC)>(&CCsEllipse::getSize)), last + 5);
    EXPECT_EQ(tableEntry(&CCsEllipse::getEndPts), last + 6);
    EXPECT_EQ(tableEntry(&CCsEllipse::getImagePts), last + 7);
    using Render = void (OpenEllipse::*)(CCs2dTrafo*, const RECT&, unsigned long, HDC, int);
    EXPECT_EQ(tableEntry(static_cast<Render>(&OpenEllipse::renderEllipse)), last + 8);
    EXPECT_EQ(tableEntry(&OpenEllipse::renderSelectionHandles), last + 9);
    EXPECT_EQ(tableEntry(&OpenEllipse::maintainMinimumSize), last + 10);
}

TEST(CCsEllipseInterface, FieldsHaveTheirDeclaredOrder) {
    const OpenEllipse ellipse;
    const auto* const begin = reinterpret_cast<const char*>(&ellipse.displayRect);
    const auto offset = [&](const auto& field) { return reinterpret_cast<const char*>(&field) - begin; };
    const std::ptrdiff_t image = offset(ellipse.imageRect);
    EXPECT_GE(image, static_cast<std::ptrdiff_t>(sizeof ellipse.displayRect));
    EXPECT_EQ(offset(ellipse.grabbedHandle), image + static_cast<std::ptrdiff_t>(sizeof ellipse.imageRect));
    EXPECT_EQ(offset(ellipse.angular), offset(ellipse.grabbedHandle) + 4);
    EXPECT_GT(offset(ellipse.axisPoints), offset(ellipse.angular));
    EXPECT_EQ(offset(ellipse.filled),
              offset(ellipse.axisPoints) + static_cast<std::ptrdiff_t>(4 * sizeof(CCsPointDouble)));
    EXPECT_EQ(offset(ellipse.fillColor), offset(ellipse.filled) + 4);
}

// ---------------------------------------------------------------------------------------------------- construction

TEST(CCsEllipseConstruction, DefaultHasNoExtent) {
    OpenEllipse ellipse;
    EXPECT_EQ(displayOf(ellipse), (Numbers{0, 0, 0, 0}));
    EXPECT_EQ(imageOf(ellipse), (Numbers{0, 0, 0, 0}));
    EXPECT_EQ(ellipse.grabbedHandle, 4);
    EXPECT_FALSE(ellipse.isVertexPicked());
    EXPECT_FALSE(ellipse.isAngular());
    EXPECT_FALSE(ellipse.isFilled());
    EXPECT_EQ(ellipse.fillColor, 0U);
    EXPECT_FALSE(ellipse.displayAuthoritative);
    EXPECT_EQ(ellipse.pick(0, 0), nullptr);
}

TEST(CCsEllipseConstruction, PlainFromOppositeCornersInAnyOrder) {
    CCs2dTrafo view = zoomedView(1.0);  // image = display / 2
    const std::pair<CCsPoint, CCsPoint> corners[] = {{{10, 20}, {50, 90}}, {{50, 90}, {10, 20}}, {{10, 90}, {50, 20}}};
    for (const auto& [first, second] : corners) {
        const OpenEllipse ellipse(&view, first, second);
        EXPECT_EQ(displayOf(ellipse), (Numbers{10, 20, 50, 90}));
        EXPECT_EQ(imageOf(ellipse), (Numbers{5, 10, 25, 45}));
        EXPECT_FALSE(ellipse.isAngular());
        EXPECT_FALSE(ellipse.displayAuthoritative);
    }
    const OpenEllipse unknown(nullptr, CCsPoint(10, 20), CCsPoint(50, 90));
    EXPECT_EQ(displayOf(unknown), (Numbers{10, 20, 50, 90}));
    EXPECT_TRUE(unknown.displayAuthoritative);
}

TEST(CCsEllipseConstruction, AngularFromTheEndsOfItsAxes) {
    CCs2dTrafo view = zoomedView(1.0);
    const OpenEllipse ellipse(&view, CCsPointDouble(10, 50), CCsPointDouble(90, 50), CCsPointDouble(50, 30),
                              CCsPointDouble(50, 70));
    EXPECT_TRUE(ellipse.isAngular());
    EXPECT_EQ(axesOf(ellipse), (Numbers{10, 50, 90, 50, 50, 30, 50, 70}));
    EXPECT_EQ(imageOf(ellipse), (Numbers{10, 30, 90, 70}));
    EXPECT_EQ(displayOf(ellipse), (Numbers{20, 60, 180, 140}));
    // Turned: half axes (30, 40) and (-20, 15) around (100, 100) reach sqrt(1300) and sqrt(1825).
    const OpenEllipse turned(&view, CCsPointDouble(70, 60), CCsPointDouble(130, 140), CCsPointDouble(120, 85),
                             CCsPointDouble(80, 115));
    EXPECT_EQ(displayOf(turned), (Numbers{128, 115, 272, 285}));
    const OpenEllipse unknown(nullptr, CCsPointDouble(10, 50), CCsPointDouble(90, 50), CCsPointDouble(50, 30),
                              CCsPointDouble(50, 70));
    EXPECT_EQ(displayOf(unknown), (Numbers{0, 0, 0, 0}));
    EXPECT_EQ(imageOf(unknown), (Numbers{10, 30, 90, 70}));
}

TEST(CCsEllipseConstruction, ClonesHaveEveryField) {
    CCs2dTrafo view = identityView();
    CCsGroup group;
    auto* const ellipse = new OpenEllipse(&view, CCsPointDouble(10, 50), CCsPointDouble(90, 50), CCsPointDouble(50, 30),
                                          CCsPointDouble(50, 70));
    group.append(*ellipse);
    ellipse->setColorFilled(0x123456);
    ASSERT_EQ(ellipse->pick(90, 50), ellipse);
    const std::unique_ptr<CCsOverlay> clone(ellipse->NewInstance());
    auto* const plainCopy = dynamic_cast<CCsEllipse*>(clone.get());
    ASSERT_NE(plainCopy, nullptr);
    EXPECT_EQ(displayOf(*plainCopy), displayOf(*ellipse));
    const OpenEllipse copy(*ellipse);
    EXPECT_EQ(axesOf(copy), axesOf(*ellipse));
    EXPECT_EQ(imageOf(copy), imageOf(*ellipse));
    EXPECT_EQ(copy.grabbedHandle, 1);
    EXPECT_TRUE(copy.isVertexPicked());
    EXPECT_TRUE(copy.isAngular());
    EXPECT_TRUE(copy.isFilled());
    EXPECT_EQ(copy.fillColor, 0x123456U);
    EXPECT_EQ(group.getGroupSize(), 1);
}

TEST(CCsEllipseFlags, AnyFillColourFills) {
    OpenEllipse ellipse;
    ellipse.setColorFilled(0);
    EXPECT_TRUE(ellipse.isFilled());
    EXPECT_EQ(ellipse.fillColor, 0U);
    ellipse.setFilled(false);
    EXPECT_FALSE(ellipse.isFilled());
    ellipse.setFilled(true);
    EXPECT_TRUE(ellipse.isFilled());
    ellipse.setColorFilled(0xABCDEF);
    EXPECT_EQ(ellipse.fillColor, 0xABCDEFU);
}

TEST(CCsEllipseFlags, SelectionLeavesTheRectangleAndThePrintFlagIsNotKept) {
    OpenEllipse ellipse = plain(0, 0, 100, 50);
    RECT rect{1, 2, 3, 4};
    ellipse.select(rect);
    EXPECT_EQ(ellipse.isSelected(), &ellipse);
    EXPECT_EQ(ellipse.unselect(rect), 0);
    EXPECT_EQ(ellipse.isSelected(), nullptr);
    EXPECT_EQ((std::vector<LONG>{rect.left, rect.top, rect.right, rect.bottom}), (std::vector<LONG>{1, 2, 3, 4}));
    CCsOverlay& overlay = ellipse;
    overlay.getSize(rect);
    EXPECT_EQ((std::vector<LONG>{rect.left, rect.top, rect.right, rect.bottom}), (std::vector<LONG>{1, 2, 3, 4}));
    ellipse.setDicomPrintFlag(true);
    EXPECT_FALSE(ellipse.dicomPrintFlag);
}

// ---------------------------------------------------------------------------------------------------- picking

TEST(CCsEllipsePick, ARingThatGrowsWithTheEllipse) {
    OpenEllipse ellipse = plain(0, 0, 100, 50);
    EXPECT_EQ(ellipse.pick(100, 25), &ellipse);
    EXPECT_EQ(ellipse.grabbedHandle, 1);
    EXPECT_TRUE(ellipse.isVertexPicked());
    EXPECT_EQ(ellipse.pick(50, 25), nullptr);
    EXPECT_EQ(ellipse.grabbedHandle, 1);  // a miss keeps it
    EXPECT_EQ(ellipse.pick(50, 0), &ellipse);
    EXPECT_EQ(ellipse.grabbedHandle, 2);
    EXPECT_EQ(ellipse.pick(0, 25), &ellipse);
    EXPECT_EQ(ellipse.grabbedHandle, 0);
    EXPECT_EQ(ellipse.pick(50, 50), &ellipse);
    EXPECT_EQ(ellipse.grabbedHandle, 3);
    EXPECT_EQ(ellipse.pick(50 + 35, 25 + 18), &ellipse);  // 0.49 + 0.5184
    EXPECT_EQ(ellipse.grabbedHandle, 4);
    EXPECT_FALSE(ellipse.isVertexPicked());
    // 1.25 and 0.75 are in, the next pixels out: 56^2 / 2500 = 1.2544, 43^2 / 2500 = 0.7396.
    OpenEllipse large = plain(0, 0, 1000, 1000);    // half axes of 500
    EXPECT_EQ(large.pick(500 + 559, 500), &large);  // 1.24992
    EXPECT_EQ(large.pick(500 + 560, 500), nullptr);
    EXPECT_EQ(large.pick(500 + 434, 500), &large);  // 0.753
    EXPECT_EQ(large.pick(500 + 433, 500), nullptr);
    OpenEllipse exact = plain(0, 0, 4, 4);  // half axes of 2
    EXPECT_EQ(exact.pick(3, 4), &exact);    // 0.25 + 1: exactly the limit
    EXPECT_EQ(exact.pick(0, 1), &exact);    // 1 + 0.25
    EXPECT_EQ(exact.pick(4, 0), nullptr);
}

TEST(CCsEllipsePick, TheBandsEdgesBelongToIt) {
    OpenEllipse ellipse = plain(0, 0, 100, 50);          // half axes of 50 and 25
    EXPECT_EQ(ellipse.pick(50 + 55, 25 + 5), &ellipse);  // 1.21 + 0.04 is 1.25
    EXPECT_EQ(ellipse.pick(50 + 55, 25 + 6), nullptr);
    // Every point that lies on an edge exactly, in whole numbers: 4 (x^2 b^2 + y^2 a^2) is 3 or 5 a^2 b^2.
    int edges = 0;
    for (int a = 1; a <= 40; ++a) {
        for (int b = 1; b <= 40; ++b) {
            OpenEllipse each = plain(-a, -b, a, b);
            for (int x = 0; x <= a + a / 8; ++x) {
                for (int y = 0; y <= b + b / 8; ++y) {
                    const int e = 4 * (x * x * b * b + y * y * a * a);
                    const int whole = a * a * b * b;
                    if (e != 3 * whole && e != 5 * whole) continue;
                    ++edges;
                    ASSERT_EQ(each.pick(x, -y), &each) << a << ' ' << b << ": " << x << ' ' << y;
                }
            }
        }
    }
    EXPECT_GT(edges, 1000);
}

TEST(CCsEllipsePick, HalfAxesAreTruncated) {
    OpenEllipse ellipse = plain(0, 0, 101, 51);  // half axes of 50 and 25, as of 100 by 50
    EXPECT_EQ(ellipse.pick(100, 25), &ellipse);
    EXPECT_EQ(ellipse.pick(-6, 25), nullptr);  // 56 from the centre
    EXPECT_EQ(ellipse.pick(-5, 25), &ellipse);
}

TEST(CCsEllipsePick, WithoutAHalfAxisNever) {
    for (OpenEllipse ellipse :
         {plain(10, 10, 10, 50), plain(10, 10, 50, 10), plain(10, 10, 11, 50), plain(10, 10, 50, 11)}) {
        for (int x = 5; x < 55; ++x) {
            for (int y = 5; y < 55; ++y) EXPECT_EQ(ellipse.pick(x, y), nullptr);
        }
        EXPECT_EQ(ellipse.grabbedHandle, 4);
    }
}

TEST(CCsEllipsePick, TheFirstHandleOfSeveralWins) {
    OpenEllipse ellipse = plain(0, 0, 10, 10);
    EXPECT_EQ(ellipse.pick(5, 0), &ellipse);  // near the top, and within the left one's square
    EXPECT_EQ(ellipse.grabbedHandle, 0);
}

TEST(CCsEllipsePick, CoordinatesAtTheEndsOfTheIntegers) {
    constexpr int low = std::numeric_limits<int>::min();
    constexpr int high = std::numeric_limits<int>::max();
    OpenEllipse ellipse(nullptr, CCsPoint(low, low), CCsPoint(high, high));
    EXPECT_EQ(ellipse.pick(0, 0), nullptr);
    EXPECT_EQ(ellipse.pick(high, 0), &ellipse);
    EXPECT_EQ(ellipse.grabbedHandle, 1);
    ellipse.move(nullptr, 5, 5, 0, 0, nullptr);
    ellipse.grabbedHandle = 4;
    CCsRegion region;
    RECT rect{};
    ellipse.select(rect);
    ellipse.move(nullptr, high, low, 0, 0, &region);
    ellipse.beginMove(nullptr, low, low, high, high, &region);
    ellipse.getSize(rect, nullptr);
    EXPECT_EQ(rect.top, low);
}

// ---------------------------------------------------------------------------------------------------- minimum size

TEST(CCsEllipseMinimumSize, GrowsASideThatIsTooShortAndChangesHands) {
    OpenEllipse ellipse = plain(0, 0, 4, 50);
    ellipse.grabbedHandle = 0;
    ellipse.maintainMinimumSize();
    EXPECT_EQ(displayOf(ellipse), (Numbers{0, 0, 14, 50}));
    EXPECT_EQ(imageOf(ellipse), (Numbers{0, 0, 14, 50}));
    EXPECT_EQ(ellipse.grabbedHandle, 1);
    const auto afterwards = [](int left, int top, int right, int bottom, int handle) {
        CCs2dTrafo view = zoomedView(1.0);
        OpenEllipse e(&view, CCsPoint(left, top), CCsPoint(right, bottom));
        e.grabbedHandle = handle;
        e.maintainMinimumSize();
        Numbers out = displayOf(e);
        const Numbers image = imageOf(e);
        out.insert(out.end(), image.begin(), image.end());
        out.push_back(e.grabbedHandle);
        return out;
    };
    // The image's sides grow by the same number in their own unit.
    EXPECT_EQ(afterwards(20, 20, 29, 50, 1), (Numbers{20, 20, 39, 50, 10, 10, 24.5, 25, 0}));
    EXPECT_EQ(afterwards(20, 20, 29, 50, 4), (Numbers{20, 20, 39, 50, 10, 10, 24.5, 25, 0}));
    EXPECT_EQ(afterwards(20, 20, 29, 50, 0), (Numbers{20, 20, 39, 50, 10, 10, 24.5, 25, 1}));
    EXPECT_EQ(afterwards(20, 20, 30, 30, 2), (Numbers{20, 20, 30, 30, 10, 10, 15, 15, 2}));
    EXPECT_EQ(afterwards(20, 20, 30, 29, 2), (Numbers{20, 20, 30, 39, 10, 10, 15, 24.5, 3}));
    EXPECT_EQ(afterwards(20, 20, 30, 29, 3), (Numbers{20, 20, 30, 39, 10, 10, 15, 24.5, 2}));
    EXPECT_EQ(afterwards(20, 20, 30, 29, 0), (Numbers{20, 20, 30, 39, 10, 10, 15, 24.5, 3}));
    // Both too short: the width alone.
    EXPECT_EQ(afterwards(20, 20, 24, 24, 3), (Numbers{20, 20, 34, 24, 10, 10, 22, 12, 0}));
}

// ---------------------------------------------------------------------------------------------------- moving

TEST(CCsEllipseMove, TheOutlineMovesTheFigure) {
    CCs2dTrafo view = zoomedView(1.0);
    OpenEllipse ellipse(&view, CCsPoint(0, 0), CCsPoint(100, 50));
    ASSERT_EQ(ellipse.pick(85, 43), &ellipse);
    ellipse.move(&view, 7, -3, 92, 40, nullptr);
    EXPECT_EQ(displayOf(ellipse), (Numbers{7, -3, 107, 47}));
    EXPECT_EQ(imageOf(ellipse), (Numbers{0, 0, 50, 25}));
    EXPECT_TRUE(ellipse.displayAuthoritative);
    ellipse.dspToImg(nullptr);
    EXPECT_TRUE(ellipse.displayAuthoritative);
    ellipse.dspToImg(&view);
    EXPECT_EQ(imageOf(ellipse), (Numbers{3.5, -1.5, 53.5, 23.5}));
    EXPECT_FALSE(ellipse.displayAuthoritative);
}

TEST(CCsEllipseMove, AHandleMovesItsEdge) {
    const Numbers expected[4] = {{7, 0, 100, 50}, {0, 0, 107, 50}, {0, -3, 100, 50}, {0, 0, 100, 47}};
    const std::array<CCsPoint, 4> handles{CCsPoint(0, 25), CCsPoint(100, 25), CCsPoint(50, 0), CCsPoint(50, 50)};
    for (int i = 0; i < 4; ++i) {
        const CCsPoint& handle = handles[static_cast<std::size_t>(i)];
        OpenEllipse ellipse = plain(0, 0, 100, 50);
        ASSERT_EQ(ellipse.pick(handle.x, handle.y), &ellipse);
        ellipse.move(nullptr, 7, -3, handle.x + 7, handle.y - 3, nullptr);
        EXPECT_EQ(displayOf(ellipse), expected[i]);
        EXPECT_EQ(ellipse.grabbedHandle, i);
    }
}

TEST(CCsEllipseMove, AnEdgePassesTheOppositeOneAndStaysGrabbed) {
    OpenEllipse ellipse = plain(100, 100, 150, 200);
    ASSERT_EQ(ellipse.pick(100, 150), &ellipse);
    ellipse.move(nullptr, 70, 0, 170, 150, nullptr);
    EXPECT_EQ(displayOf(ellipse), (Numbers{150, 100, 170, 200}));
    EXPECT_EQ(ellipse.grabbedHandle, 1);
    ellipse.move(nullptr, 10, 0, 180, 150, nullptr);
    EXPECT_EQ(displayOf(ellipse), (Numbers{150, 100, 180, 200}));
    ellipse.move(nullptr, -60, 0, 120, 150, nullptr);
    EXPECT_EQ(displayOf(ellipse), (Numbers{120, 100, 150, 200}));
    EXPECT_EQ(ellipse.grabbedHandle, 0);
    ASSERT_EQ(ellipse.pick(135, 200), &ellipse);
    ellipse.move(nullptr, 0, -150, 135, 50, nullptr);
    EXPECT_EQ(displayOf(ellipse), (Numbers{120, 50, 150, 100}));
    EXPECT_EQ(ellipse.grabbedHandle, 2);
    ellipse.move(nullptr, 0, 80, 135, 130, nullptr);
    EXPECT_EQ(displayOf(ellipse), (Numbers{120, 100, 150, 130}));
    EXPECT_EQ(ellipse.grabbedHandle, 3);
}

TEST(CCsEllipseMove, NeverBelowTheMinimumSizeWhileReshaped) {
    OpenEllipse ellipse = plain(100, 100, 150, 200);
    ASSERT_EQ(ellipse.pick(100, 150), &ellipse);
    ellipse.move(nullptr, 41, 0, 141, 150, nullptr);  // 9 wide
    EXPECT_EQ(displayOf(ellipse), (Numbers{141, 100, 160, 200}));
    EXPECT_EQ(ellipse.grabbedHandle, 1);
    ellipse.move(nullptr, 5, 0, 146, 150, nullptr);
    EXPECT_EQ(displayOf(ellipse), (Numbers{141, 100, 165, 200}));
    zoltest::Random random(11);
    for (int i = 0; i < 5000; ++i) {
        if (i % 10 == 0) ellipse.grabbedHandle = random.integer(0, 3);
        ellipse.move(nullptr, random.integer(-40, 40), random.integer(-40, 40), 0, 0, nullptr);
        const Numbers rect = displayOf(ellipse);
        ASSERT_GE(rect[2] - rect[0], 10);
        ASSERT_GE(rect[3] - rect[1], 10);
        ASSERT_TRUE(ellipse.isVertexPicked());
    }
    // Moving as a whole leaves small figures as they are.
    OpenEllipse small = plain(0, 0, 4, 4);
    small.move(nullptr, 5, 5, 5, 5, nullptr);
    EXPECT_EQ(displayOf(small), (Numbers{5, 5, 9, 9}));
}

TEST(CCsEllipseMove, NothingWhileNotMovable) {
    CCs2dTrafo view = identityView();
    OpenEllipse ellipse = plain(0, 0, 100, 50);
    ellipse.setMoveStatus_(false);
    CCsRegion region;
    ellipse.move(&view, 7, -3, 0, 0, &region);
    ellipse.beginMove(&view, 7, -3, 0, 0, &region);
    ellipse.endMove(&view, 7, -3, 0, 0, &region);
    EXPECT_EQ(displayOf(ellipse), (Numbers{0, 0, 100, 50}));
    EXPECT_EQ(of(region), (Numbers{0, 0, 0, 0}));
}

TEST(CCsEllipseMove, JoinsTheAreasBeforeAndAfter) {
    OpenEllipse ellipse = plain(10, 20, 110, 70);
    CCsRegion region;
    ellipse.move(nullptr, 7, -3, 0, 0, &region);
    EXPECT_EQ(of(region), (Numbers{10, 17, 107, 53}));
    RECT rect{};
    ellipse.select(rect);
    CCsRegion selected;
    ellipse.move(nullptr, -7, 3, 0, 0, &selected);
    EXPECT_EQ(of(selected), (Numbers{7, 14, 112, 58}));
}

TEST(CCsEllipseMove, BeginsAndEnds) {
    CCs2dTrafo view = zoomedView(1.0);
    OpenEllipse ellipse(&view, CCsPoint(0, 0), CCsPoint(100, 50));
    ellipse.beginMove(&view, 5, 0, 105, 25, nullptr);  // from the right handle
    EXPECT_EQ(displayOf(ellipse), (Numbers{0, 0, 105, 50}));
    EXPECT_TRUE(ellipse.isVertexPicked());
    ellipse.move(&view, 5, 0, 110, 25, nullptr);
    EXPECT_TRUE(ellipse.displayAuthoritative);
    ellipse.endMove(&view, 10, 0, 120, 25, nullptr);
    EXPECT_EQ(displayOf(ellipse), (Numbers{0, 0, 120, 50}));
    EXPECT_EQ(imageOf(ellipse), (Numbers{0, 0, 60, 25}));
    EXPECT_FALSE(ellipse.isVertexPicked());
    EXPECT_FALSE(ellipse.displayAuthoritative);
    // From the inside: the handle of an earlier press does not count.
    ASSERT_EQ(ellipse.pick(0, 25), &ellipse);
    ellipse.beginMove(&view, 2, 2, 62, 27, nullptr);
    EXPECT_EQ(displayOf(ellipse), (Numbers{2, 2, 122, 52}));
    ellipse.endMove(nullptr, 2, 2, 64, 29, nullptr);
    EXPECT_EQ(displayOf(ellipse), (Numbers{4, 4, 124, 54}));
    EXPECT_TRUE(ellipse.displayAuthoritative);  // without a view the image rectangle cannot follow
}

TEST(CCsEllipseMove, AnAngularEllipseTakesItsAxesAlong) {
    CCs2dTrafo view = zoomedView(1.0);
    OpenEllipse ellipse(&view, CCsPointDouble(10, 50), CCsPointDouble(90, 50), CCsPointDouble(50, 30),
                        CCsPointDouble(50, 70));
    ellipse.move(&view, 6, -4, 0, 0, nullptr);
    EXPECT_EQ(displayOf(ellipse), (Numbers{26, 56, 186, 136}));
    EXPECT_EQ(axesOf(ellipse), (Numbers{13, 48, 93, 48, 53, 28, 53, 68}));
    EXPECT_EQ(imageOf(ellipse), (Numbers{13, 28, 93, 68}));
    ellipse.dspToImg(&view);
    EXPECT_EQ(axesOf(ellipse), (Numbers{13, 48, 93, 48, 53, 28, 53, 68}));
    ellipse.grabbedHandle = 1;  // the right edge: twice as wide
    ellipse.move(&view, 160, 9, 0, 0, nullptr);
    EXPECT_EQ(displayOf(ellipse), (Numbers{26, 56, 346, 136}));
    EXPECT_EQ(axesOf(ellipse), (Numbers{13, 48, 173, 48, 93, 28, 93, 68}));
    ellipse.move(nullptr, 5, 5, 0, 0, nullptr);  // without a view it cannot
    EXPECT_EQ(displayOf(ellipse), (Numbers{26, 56, 346, 136}));
}

TEST(CCsEllipseMove, AnAngularEllipseKeepsItsShapeUnderAnyView) {
    CCs2dTrafo view = zoomedView(0.7);
    view.rotate(30.0);
    view.mirror(CCS_VERTICAL);
    OpenEllipse ellipse(&view, CCsPointDouble(70, 60), CCsPointDouble(130, 140), CCsPointDouble(120, 85),
                        CCsPointDouble(80, 115));
    const Numbers before = axesOf(ellipse);
    ellipse.move(&view, 12, 34, 0, 0, nullptr);
    ellipse.dspToImg(&view);
    const Numbers after = axesOf(ellipse);
    for (std::size_t i = 2; i < before.size(); ++i) {
        EXPECT_NEAR(after[i] - after[i % 2], before[i] - before[i % 2], 1e-9);
    }
    ellipse.move(&view, -12, -34, 0, 0, nullptr);
    for (std::size_t i = 0; i < before.size(); ++i) EXPECT_NEAR(axesOf(ellipse)[i], before[i], 1e-9);
}

TEST(CCsEllipseSetPts, NewCornersInAnyOrder) {
    CCs2dTrafo view = zoomedView(1.0);
    OpenEllipse ellipse;
    ellipse.setPts(&view, CCsPoint(50, 20), CCsPoint(10, 90));
    EXPECT_EQ(displayOf(ellipse), (Numbers{10, 20, 50, 90}));
    EXPECT_EQ(imageOf(ellipse), (Numbers{5, 10, 25, 45}));
    EXPECT_FALSE(ellipse.displayAuthoritative);
    ellipse.setPts(nullptr, CCsPoint(0, 0), CCsPoint(8, 8));
    EXPECT_EQ(displayOf(ellipse), (Numbers{0, 0, 8, 8}));
    EXPECT_EQ(imageOf(ellipse), (Numbers{5, 10, 25, 45}));
    EXPECT_TRUE(ellipse.displayAuthoritative);
    OpenEllipse angular(&view, CCsPointDouble(10, 50), CCsPointDouble(90, 50), CCsPointDouble(50, 30),
                        CCsPointDouble(50, 70));
    angular.setPts(&view, CCsPoint(0, 0), CCsPoint(320, 80));  // from (20, 60)-(180, 140)
    EXPECT_EQ(axesOf(angular), (Numbers{0, 20, 160, 20, 80, 0, 80, 40}));
    angular.setPts(nullptr, CCsPoint(0, 0), CCsPoint(8, 8));
    EXPECT_EQ(displayOf(angular), (Numbers{0, 0, 320, 80}));
}

TEST(CCsEllipseConversions, ThereAndBackUnderZoomTurnAndMirror) {
    for (CCs2dTrafo view : {identityView(), zoomedView(4.0), quarterTurnedView(), mirroredView()}) {
        OpenEllipse ellipse(&view, CCsPoint(16, 32), CCsPoint(64, 128));
        const Numbers image = imageOf(ellipse);
        ellipse.imgToDsp(&view);
        EXPECT_EQ(displayOf(ellipse), (Numbers{16, 32, 64, 128}));
        ellipse.dspToImg(&view);
        EXPECT_EQ(imageOf(ellipse), image);
        ellipse.imgToDsp(nullptr);
        EXPECT_EQ(displayOf(ellipse), (Numbers{16, 32, 64, 128}));
    }
    CCs2dTrafo view = identityView();
    CCs2dTrafo mirrored = mirroredView();
    OpenEllipse ellipse(&view, CCsPoint(16, 32), CCsPoint(64, 128));
    ellipse.imgToDsp(&mirrored);
    EXPECT_EQ(displayOf(ellipse), (Numbers{448, 32, 496, 128}));
    CCs2dTrafo turned = quarterTurnedView();
    ellipse.imgToDsp(&turned);
    EXPECT_EQ(displayOf(ellipse), (Numbers{384, 16, 480, 64}));
    OpenEllipse angular(&view, CCsPointDouble(16, 32), CCsPointDouble(64, 32), CCsPointDouble(40, 8),
                        CCsPointDouble(40, 56));
    angular.imgToDsp(&mirrored);
    EXPECT_EQ(displayOf(angular), (Numbers{448, 8, 496, 56}));
}

TEST(CCsEllipseConversions, AZoomOutAndTheEndOfAnothersDragDoNotChangeIt) {
    CCs2dTrafo zoomedIn = zoomedView(1.0);
    CCs2dTrafo zoomedOut = zoomedView(0.0625);  // x' = x / 8 + 240
    CCsGroup group;
    auto* const ellipse = new OpenEllipse(&zoomedIn, CCsPoint(101, 202), CCsPoint(307, 411));
    group.append(*ellipse);
    const Numbers image = imageOf(*ellipse);
    ellipse->imgToDsp(&zoomedOut);
    EXPECT_EQ(displayOf(*ellipse), (Numbers{246, 253, 259, 266}));  // 246.3125, 252.625, 259.1875, 265.6875
    group.dspToImg(&zoomedOut);
    EXPECT_EQ(imageOf(*ellipse), image);
    // Dragged there and back, too, and by a handle that meets the opposite edge on its way.
    ellipse->move(&zoomedOut, 5, -7, 0, 0, nullptr);
    ellipse->dspToImg(&zoomedOut);
    EXPECT_EQ(imageOf(*ellipse), (Numbers{image[0] + 40, image[1] - 56, image[2] + 40, image[3] - 56}));
    ellipse->grabbedHandle = 0;
    ellipse->move(&zoomedOut, 33, 0, 0, 0, nullptr);
    EXPECT_EQ(displayOf(*ellipse), (Numbers{264, 246, 284, 259}));
    ellipse->dspToImg(&zoomedOut);
    EXPECT_EQ(imageOf(*ellipse), (Numbers{image[2] + 40, image[1] - 56, image[0] + 40 + 33 * 8, image[3] - 56}));
    ellipse->grabbedHandle = 3;
    const Numbers turnedOver = imageOf(*ellipse);
    ellipse->move(&zoomedOut, 0, -33, 0, 0, nullptr);
    EXPECT_EQ(displayOf(*ellipse), (Numbers{264, 226, 284, 246}));
    ellipse->dspToImg(&zoomedOut);
    EXPECT_EQ(imageOf(*ellipse), (Numbers{turnedOver[0], turnedOver[3] - 33 * 8, turnedOver[2], turnedOver[1]}));
    // New corners are whole pixels.
    ellipse->setPts(&zoomedOut, CCsPoint(240, 248), CCsPoint(256, 264));
    EXPECT_EQ(imageOf(*ellipse), (Numbers{0, 64, 128, 192}));
}

TEST(CCsEllipseSize, IsTheRectangleWithItsHandles) {
    OpenEllipse ellipse = plain(10, 20, 110, 70);
    RECT rect{};
    ellipse.getSize(rect, nullptr);
    EXPECT_EQ((std::vector<LONG>{rect.left, rect.top, rect.right, rect.bottom}), (std::vector<LONG>{10, 20, 110, 70}));
    ellipse.select(rect);
    ellipse.getSize(rect, nullptr);
    EXPECT_EQ((std::vector<LONG>{rect.left, rect.top, rect.right, rect.bottom}), (std::vector<LONG>{7, 17, 112, 72}));
}

TEST(CCsEllipseExtremes, EveryNumberIsBearable) {
    const double values[] = {
        0.0, 1e9, -1e12, 1e300, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()};
    CCs2dTrafo view = zoomedView(1e6);
    for (const double a : values) {
        for (const double b : values) {
            OpenEllipse ellipse(&view, CCsPointDouble(a, b), CCsPointDouble(b, a), CCsPointDouble(1, b),
                                CCsPointDouble(a, 2));
            for (int handle = 0; handle <= 4; ++handle) {
                ellipse.grabbedHandle = handle;
                ellipse.move(&view, 5, 5, 5, 5, nullptr);
                ellipse.endMove(&view, 5, 5, 5, 5, nullptr);
            }
            EXPECT_LE(displayOf(ellipse)[0], displayOf(ellipse)[2]);  // the sanitizers watch the rest
        }
    }
}

}  // namespace
