#include "support/test_data.h"

#include "zolcs/ccsgeometry.h"

#include <algorithm>
#include <limits>
#include <type_traits>

namespace {

using IntRect = CCsRect<int, CCsPoint>;
using DoubleRect = CCsRect<double, CCsPointDouble>;

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

static_assert(std::has_virtual_destructor_v<CCsPoint> && std::has_virtual_destructor_v<CCsPointDouble>);
static_assert(std::has_virtual_destructor_v<IntRect> && std::has_virtual_destructor_v<DoubleRect>);
static_assert(std::has_virtual_destructor_v<CCsRegion>);
static_assert(sizeof(CCsPoint) == (sizeof(void*) == 8 ? 16 : 12));
static_assert(sizeof(CCsPointDouble) == 24);
static_assert(sizeof(IntRect) == (sizeof(void*) == 8 ? 24 : 20));
static_assert(sizeof(DoubleRect) == 40);
static_assert(sizeof(CCsRegion) == (sizeof(void*) == 8 ? 24 : 20));

void expectPoint(const CCsPoint& point, int x, int y) {
    EXPECT_EQ(point.x, x);
    EXPECT_EQ(point.y, y);
}

void expectPoint(const CCsPointDouble& point, double x, double y) {
    EXPECT_EQ(point.x, x);
    EXPECT_EQ(point.y, y);
}

void expectRegion(const CCsRegion& region, int left, int top, int width, int height) {
    EXPECT_EQ(region.left, left);
    EXPECT_EQ(region.top, top);
    EXPECT_EQ(region.width, width);
    EXPECT_EQ(region.height, height);
}

CCsRegion joined(CCsRegion a, const CCsRegion& b) {
    a.join(b);
    return a;
}

}  // namespace

TEST(CCsPointTest, StartsAtTheOriginAndTakesPositions) {
    CCsPoint point;
    expectPoint(point, 0, 0);
    point.setPosition(3, -4);
    expectPoint(point, 3, -4);
    const CCsPoint copy(point);
    expectPoint(copy, 3, -4);
    CCsPoint assigned(7, 8);
    expectPoint(assigned, 7, 8);
    assigned = copy;
    expectPoint(assigned, 3, -4);
}

TEST(CCsPointDoubleTest, StartsAtTheOriginAndTakesPositions) {
    CCsPointDouble point;
    expectPoint(point, 0.0, 0.0);
    point.setPosition(0.25, -1e300);
    expectPoint(point, 0.25, -1e300);
    const CCsPointDouble copy(point);
    CCsPointDouble assigned(7.5, 8.5);
    expectPoint(assigned, 7.5, 8.5);
    assigned = copy;
    expectPoint(assigned, 0.25, -1e300);
}

TEST(CCsRectTest, KeepsIntegerCornersUnordered) {
    const IntRect none;
    EXPECT_EQ(none.x1, 0);
    EXPECT_EQ(none.y1, 0);
    EXPECT_EQ(none.x2, 0);
    EXPECT_EQ(none.y2, 0);

    IntRect rect(8, 9, 2, 3);
    EXPECT_EQ(rect.x1, 8);
    EXPECT_EQ(rect.y1, 9);
    EXPECT_EQ(rect.x2, 2);
    EXPECT_EQ(rect.y2, 3);
    expectPoint(rect.getLeftTop(), 2, 3);
    expectPoint(rect.getBottomRight(), 8, 9);
    EXPECT_EQ(rect.getWidth(), 6);
    EXPECT_EQ(rect.getHeight(), 6);

    IntRect other;
    other = rect;
    rect.setPosition(-5, 20, 5, -10);
    expectPoint(rect.getLeftTop(), -5, -10);
    expectPoint(rect.getBottomRight(), 5, 20);
    EXPECT_EQ(rect.getWidth(), 10);
    EXPECT_EQ(rect.getHeight(), 30);
    expectPoint(other.getLeftTop(), 2, 3);
}

TEST(CCsRectTest, FillsAllEdgesOfTheSystemsRectangle) {
    tagRECT filled{-1, -1, -1, -1};
    IntRect(8, 3, 2, 9).getSize(filled);
    EXPECT_EQ(filled.left, 2);
    EXPECT_EQ(filled.top, 3);
    EXPECT_EQ(filled.right, 8);
    EXPECT_EQ(filled.bottom, 9);
}

TEST(CCsRectTest, LimitsExtentsThatDoNotFit) {
    const IntRect rect(lowest, highest, highest, lowest);
    EXPECT_EQ(rect.getWidth(), highest);
    EXPECT_EQ(rect.getHeight(), highest);
    EXPECT_EQ(IntRect(-1, 0, highest - 1, 0).getWidth(), highest);
}

TEST(CCsRectTest, KeepsDoubleCornersUnordered) {
    const DoubleRect none;
    expectPoint(none.getLeftTop(), 0.0, 0.0);
    expectPoint(none.getBottomRight(), 0.0, 0.0);

    DoubleRect rect(8.5, 3.25, 2.5, 9.75);
    EXPECT_EQ(rect.x1, 8.5);
    EXPECT_EQ(rect.y1, 3.25);
    EXPECT_EQ(rect.x2, 2.5);
    EXPECT_EQ(rect.y2, 9.75);
    expectPoint(rect.getLeftTop(), 2.5, 3.25);
    expectPoint(rect.getBottomRight(), 8.5, 9.75);
    DoubleRect other;
    other = rect;
    rect.setPosition(1.0, 2.0, -3.0, -4.0);
    expectPoint(rect.getLeftTop(), -3.0, -4.0);
    expectPoint(rect.getBottomRight(), 1.0, 2.0);
    expectPoint(other.getBottomRight(), 8.5, 9.75);
}

TEST(CCsRegionTest, IsAlwaysNormalised) {
    expectRegion(CCsRegion(), 0, 0, 0, 0);
    expectRegion(CCsRegion(10, 10, -4, 6), 6, 10, 4, 6);
    expectRegion(CCsRegion(10, 10, 4, -6), 10, 4, 4, 6);
    expectRegion(CCsRegion(10, 10, 0, 0), 10, 10, 0, 0);
    CCsRegion region(1, 2, 3, 4);
    const CCsRegion copy(region);
    region.set(0, 0, -3, -4);
    expectRegion(region, -3, -4, 3, 4);
    expectRegion(copy, 1, 2, 3, 4);
    region = copy;
    expectRegion(region, 1, 2, 3, 4);
}

TEST(CCsRegionTest, LimitsEdgesAndExtentsThatDoNotFit) {
    expectRegion(CCsRegion(lowest, highest, -1, 1), lowest, highest, 0, 1);
    expectRegion(CCsRegion(highest, lowest, lowest, highest), -1, lowest, highest, highest);
    expectRegion(joined({lowest, 0, 1, 1}, {highest - 1, 0, 1, 1}), lowest, 0, highest, 1);
}

TEST(CCsRegionTest, JoinsToTheBoundingBox) {
    expectRegion(joined({0, 0, 2, 2}, {5, -5, 2, 2}), 0, -5, 7, 7);
    expectRegion(joined({0, 0, 10, 10}, {2, 2, 3, 3}), 0, 0, 10, 10);
    expectRegion(joined({2, 2, 3, 3}, {0, 0, 10, 10}), 0, 0, 10, 10);
}

TEST(CCsRegionTest, EmptyTargetTakesTheArgumentWhole) {
    expectRegion(joined({0, 0, 0, 0}, {5, 5, 2, 2}), 5, 5, 2, 2);
    expectRegion(joined({7, 8, 0, 0}, {5, 5, 2, 2}), 5, 5, 2, 2);
    expectRegion(joined({7, 8, 0, 0}, {5, 6, 0, 0}), 5, 6, 0, 0);
    expectRegion(joined({7, 8, 0, 0}, {5, 6, 0, 3}), 5, 6, 0, 3);
}

TEST(CCsRegionTest, DeliberateAsymmetryOfEmptyArguments) {
    expectRegion(joined({5, 5, 2, 2}, {0, 0, 0, 0}), 5, 5, 2, 2);
    expectRegion(joined({5, 5, 2, 2}, {20, 0, 0, 3}), 5, 0, 15, 7);
    expectRegion(joined({5, 5, 2, 2}, {20, 0, 3, 0}), 5, 0, 18, 7);
    // A target with one extent of 0 is not empty.
    expectRegion(joined({5, 5, 0, 2}, {0, 0, 1, 1}), 0, 0, 5, 7);
}

TEST(CCsRegionTest, NegativeExtentsOfAnArgumentCountAsEmpty) {
    CCsRegion odd;
    odd.left = 100;
    odd.width = -1;
    odd.height = 0;
    expectRegion(joined({5, 5, 2, 2}, odd), 5, 5, 2, 2);
}

TEST(CCsRegionTest, JoiningCoversBothAndNothingMore) {
    zoltest::Random random(21);
    for (int round = 0; round < 10000; ++round) {
        const auto any = [&] {
            return CCsRegion(random.integer(-50, 50), random.integer(-50, 50), random.integer(1, 40),
                             random.integer(1, 40));
        };
        const CCsRegion a = any();
        const CCsRegion b = any();
        const CCsRegion both = joined(a, b);
        ASSERT_EQ(both.left, std::min(a.left, b.left));
        ASSERT_EQ(both.top, std::min(a.top, b.top));
        ASSERT_EQ(both.left + both.width, std::max(a.left + a.width, b.left + b.width));
        ASSERT_EQ(both.top + both.height, std::max(a.top + a.height, b.top + b.height));
    }
}
