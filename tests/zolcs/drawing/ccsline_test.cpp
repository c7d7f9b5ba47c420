#include "zolcs/ccsline.h"

#include "support/gdi_canvas.h"
#include "support/open_line.h"
#include "support/overlay_views.h"
#include "support/test_data.h"
#include "support/vtable_slots.h"

#include "zolcs/ccsgroup.h"
#include "zolcs/drawing/reshape.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <type_traits>

namespace {

using zoltest::displayOf;
using zoltest::exactOf;
using zoltest::identityView;
using zoltest::imageOf;
using zoltest::mirroredView;
using zoltest::normalisedOf;
using zoltest::Numbers;
using zoltest::OpenLine;
using zoltest::quarterTurnedView;
using zoltest::zoomedView;

constexpr int solid = 0;
constexpr int dotted = 2;

static_assert(!std::is_copy_assignable_v<CCsLine>);

Numbers of(const CCsRegion& region) {
    return {1.0 * region.left, 1.0 * region.top, 1.0 * region.width, 1.0 * region.height};
}

// ---------------------------------------------------------------------------------------------------- interface

TEST(CCsLineInterface, ItsOwnVirtualOperationsFollowTheBase) {
    using Move = void (CCsLine::*)(CCs2dTrafo*, CCs2dTrafo*, unsigned long, HDC, int, int, int, int, int, bool, bool);
    const std::size_t last = zoltest::tableEntry(static_cast<Move>(&CCsLine::renderEllipse));
    EXPECT_EQ(last, zoltest::tableEntry(&CCsOverlay::renderEllipse));
    EXPECT_EQ(zoltest::tableEntry(static_cast<Move>(&CCsLine::renderInterpolatedLine)), last + 1);
    EXPECT_EQ(zoltest::tableEntry(static_cast<void (CCsLine::*)()>(&CCsLine::select)), last + 2);
    EXPECT_EQ(zoltest::tableEntry(static_cast<int (CCsLine::*)()>(&CCsLine::unselect)), last + 3);
    EXPECT_EQ(zoltest::tableEntry(&CCsLine::pickVertex), last + 4);
}

TEST(CCsLineInterface, FieldsHaveTheirDeclaredOrderAndWidth) {
    const OpenLine line;
    const auto* const begin = reinterpret_cast<const char*>(&line.maxPointCount);
    const auto offset = [&](const auto& field) { return reinterpret_cast<const char*>(&field) - begin; };
    constexpr std::ptrdiff_t pointer = sizeof(void*);
    constexpr std::ptrdiff_t number = alignof(double);
    EXPECT_EQ(offset(line.pointCount), 4);
    // Pointers after the counts, wherever the base left off.
    const std::ptrdiff_t points = offset(line.displayPoints);
    EXPECT_TRUE(points == 8 || points == 8 + pointer - 4) << points;
    EXPECT_EQ(offset(line.displayPointsDouble), points + pointer);
    EXPECT_EQ(offset(line.normalisedPoints), points + 2 * pointer);
    EXPECT_EQ(offset(line.imagePoints), points + 3 * pointer);
    const std::ptrdiff_t closed = offset(line.closed);
    EXPECT_TRUE(closed >= points + 4 * pointer && closed < points + 4 * pointer + number) << closed;
    EXPECT_EQ(offset(line.displayAuthoritative), closed + 8);
    EXPECT_EQ(offset(line.penStyle), closed + 12);
    EXPECT_EQ(offset(line.ellipse), closed + 16);
    EXPECT_EQ(offset(line.interpolated), closed + 20);
    EXPECT_EQ(offset(line.normalised), closed + 24);
    EXPECT_EQ(offset(line.filled), closed + 25);
    EXPECT_EQ(offset(line.fillColor), closed + 28);
    static_assert(sizeof line.closed == 8 && sizeof line.interpolated == 4 && sizeof line.displayAuthoritative == 4 &&
                  sizeof line.penStyle == 4 && sizeof line.fillColor == 4);
}

// ---------------------------------------------------------------------------------------------------- construction

TEST(CCsLineConstruction, DefaultHasNoPointsAndNoArrays) {
    const OpenLine line;
    EXPECT_EQ(line.maxPointCount, 0);
    EXPECT_EQ(line.pointCount, 0);
    EXPECT_EQ(line.displayPoints, nullptr);
    EXPECT_EQ(line.displayPointsDouble, nullptr);
    EXPECT_EQ(line.normalisedPoints, nullptr);
    EXPECT_EQ(line.imagePoints, nullptr);
    EXPECT_EQ(line.closed, 0.0);
    EXPECT_EQ(line.displayAuthoritative, 0);
    EXPECT_EQ(line.penStyle, 0);
    EXPECT_FALSE(line.ellipse);
    EXPECT_EQ(line.interpolated, 0);
    EXPECT_FALSE(line.normalised);
    EXPECT_FALSE(line.filled);
    EXPECT_EQ(line.fillColor, 0U);
    EXPECT_EQ(line.shadow, 1);
    EXPECT_EQ(line.groupPickFlag, 1);
    EXPECT_EQ(line.selected, 0);
}

TEST(CCsLineConstruction, IntegersAreDisplayPixelsAndGiveImagePixels) {
    CCs2dTrafo view = zoomedView(1.0);  // image = display / 2
    const OpenLine one(&view, 10, 20, dotted);
    EXPECT_EQ(one.maxPointCount, 4);
    EXPECT_EQ(one.pointCount, 1);
    EXPECT_EQ(one.penStyle, dotted);
    EXPECT_EQ(displayOf(one), (Numbers{10, 20}));
    EXPECT_EQ(exactOf(one), (Numbers{10, 20}));
    EXPECT_EQ(imageOf(one), (Numbers{5, 10}));
    EXPECT_EQ(one.displayAuthoritative, 0);
    EXPECT_EQ(one.normalisedPoints, nullptr);

    const OpenLine two(&view, 1, 2, 3, 4, solid);
    EXPECT_EQ(two.maxPointCount, 4);
    EXPECT_EQ(two.pointCount, 2);
    EXPECT_EQ(imageOf(two), (Numbers{0.5, 1, 1.5, 2}));
    const OpenLine three(&view, 1, 2, 3, 4, 5, 6, solid);
    EXPECT_EQ(three.maxPointCount, 4);
    EXPECT_EQ(displayOf(three), (Numbers{1, 2, 3, 4, 5, 6}));
    const OpenLine four(&view, 1, 2, 3, 4, 5, 6, 7, 8, solid);
    EXPECT_EQ(four.maxPointCount, 4);
    EXPECT_EQ(four.pointCount, 4);
    EXPECT_EQ(displayOf(four), (Numbers{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(imageOf(four), (Numbers{0.5, 1, 1.5, 2, 2.5, 3, 3.5, 4}));
    EXPECT_FALSE(four.ellipse);
}

TEST(CCsLineConstruction, DoublesStayUnroundedBesideTruncatedIntegers) {
    CCs2dTrafo view = zoomedView(1.0);
    const OpenLine points(&view, CCsPointDouble(1.75, -2.75), CCsPointDouble(3.5, 4.25), dotted);
    EXPECT_EQ(points.maxPointCount, 4);
    EXPECT_EQ(points.penStyle, dotted);
    EXPECT_EQ(displayOf(points), (Numbers{1, -2, 3, 4}));
    EXPECT_EQ(exactOf(points), (Numbers{1.75, -2.75, 3.5, 4.25}));
    EXPECT_EQ(imageOf(points), (Numbers{0.875, -1.375, 1.75, 2.125}));

    const OpenLine numbers(&view, 1.75, -2.75, 3.5, 4.25, dotted, false);
    EXPECT_EQ(numbers.maxPointCount, 4);
    EXPECT_EQ(imageOf(numbers), imageOf(points));
    EXPECT_FALSE(numbers.normalised);

    const OpenLine ellipse(&view, 0.5, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.5, solid, true, false);
    EXPECT_TRUE(ellipse.ellipse);
    EXPECT_EQ(exactOf(ellipse), (Numbers{0.5, 1, 2, 3, 4, 5, 6, 7.5}));
    EXPECT_EQ(displayOf(ellipse), (Numbers{0, 1, 2, 3, 4, 5, 6, 7}));
}

TEST(CCsLineConstruction, NormalisedLinesHaveNormalisedPointsOnly) {
    CCs2dTrafo view = identityView();
    const OpenLine two(&view, 0.25, 0.5, 0.75, 1.0, solid, true);
    EXPECT_TRUE(two.normalised);
    EXPECT_EQ(normalisedOf(two), (Numbers{0.25, 0.5, 0.75, 1.0}));
    EXPECT_EQ(two.displayPoints, nullptr);
    EXPECT_EQ(two.displayPointsDouble, nullptr);
    EXPECT_EQ(two.imagePoints, nullptr);
    const OpenLine four(&view, 0.0, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, solid, true, true);
    EXPECT_TRUE(four.ellipse);
    EXPECT_EQ(normalisedOf(four), (Numbers{0.0, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7}));
    const OpenLine many(&view, {{0.5, 0.25}}, solid, true, true, true);
    EXPECT_EQ(normalisedOf(many), (Numbers{0.5, 0.25}));
}

TEST(CCsLineConstruction, VectorsTakeAnyNumberOfPointsAndTheirFlags) {
    CCs2dTrafo view = zoomedView(1.0);
    const std::vector<CCsPointDouble> points{{0, 0}, {2, 0}, {4, 2}, {4, 4}, {2.5, 6}};
    const OpenLine plain(&view, points, dotted, false, false, false);
    EXPECT_EQ(plain.maxPointCount, 5);
    EXPECT_EQ(plain.pointCount, 5);
    EXPECT_EQ(plain.penStyle, dotted);
    EXPECT_EQ(plain.interpolated, 0);
    EXPECT_FALSE(plain.filled);
    EXPECT_EQ(displayOf(plain), (Numbers{0, 0, 2, 0, 4, 2, 4, 4, 2, 6}));
    EXPECT_EQ(imageOf(plain), (Numbers{0, 0, 1, 0, 2, 1, 2, 2, 1.25, 3}));
    const OpenLine flagged(&view, points, solid, true, false, true);
    EXPECT_EQ(flagged.interpolated, 1);
    EXPECT_TRUE(flagged.filled);
    EXPECT_EQ(flagged.fillColor, 0U);

    const OpenLine none(&view, std::vector<CCsPointDouble>(), solid, false, false, false);
    EXPECT_EQ(none.maxPointCount, 0);
    EXPECT_EQ(none.pointCount, 0);
    EXPECT_EQ(none.displayPoints, nullptr);
}

TEST(CCsLineConstruction, EveryConstructorTakesAPenStyle) {
    CCs2dTrafo view = identityView();
    const CCsPointDouble point(1, 2);
    for (const int style : {PS_DASHDOTDOT, PS_NULL, -1, std::numeric_limits<int>::max()}) {
        const std::vector<OpenLine> lines{OpenLine(&view, 1, 2, style),
                                          OpenLine(&view, 1, 2, 3, 4, style),
                                          OpenLine(&view, 1, 2, 3, 4, 5, 6, style),
                                          OpenLine(&view, 1, 2, 3, 4, 5, 6, 7, 8, style),
                                          OpenLine(&view, point, point, style),
                                          OpenLine(&view, 1.0, 2.0, 3.0, 4.0, style, false),
                                          OpenLine(&view, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, style, false, false),
                                          OpenLine(&view, {point, point}, style, false, false, false)};
        for (const OpenLine& line : lines) EXPECT_EQ(line.penStyle, style) << line.pointCount;
    }
}

TEST(CCsLineConstruction, WithoutATransformationTheDisplayCoordinatesCount) {
    OpenLine line(nullptr, 10, 20, 30, 40, solid);
    EXPECT_EQ(line.displayAuthoritative, 1);
    EXPECT_EQ(displayOf(line), (Numbers{10, 20, 30, 40}));
    CCs2dTrafo view = zoomedView(1.0);
    line.dspToImg(&view);
    EXPECT_EQ(line.displayAuthoritative, 0);
    EXPECT_EQ(imageOf(line), (Numbers{5, 10, 15, 20}));
}

TEST(CCsLineConstruction, CopiesAreDeepAndFree) {
    CCs2dTrafo view = identityView();
    CCsGroup group;
    auto* const line = new OpenLine(&view, {{0, 0}, {2, 0}, {4, 2}, {4, 4}}, dotted, true, false, true);
    group.append(*line);
    line->close();
    line->setColorFilled(0x123456);
    line->setShadow(false);
    line->setOverlayID(7);
    line->select();
    line->move(&view, 1, 1, 300, 300, nullptr);

    const std::unique_ptr<CCsOverlay> clone(line->NewInstance());
    auto* const plain = dynamic_cast<CCsLine*>(clone.get());
    ASSERT_NE(plain, nullptr);
    OpenLine copy(*line);
    EXPECT_EQ(displayOf(*plain), displayOf(*line));
    EXPECT_EQ(exactOf(copy), exactOf(*line));
    EXPECT_EQ(imageOf(copy), imageOf(*line));
    EXPECT_NE(copy.displayPoints, line->displayPoints);
    EXPECT_EQ(copy.maxPointCount, 4);
    EXPECT_EQ(copy.closed, 1.0);
    EXPECT_EQ(copy.displayAuthoritative, 1);
    EXPECT_EQ(copy.penStyle, dotted);
    EXPECT_EQ(copy.interpolated, 1);
    EXPECT_TRUE(copy.filled);
    EXPECT_EQ(copy.fillColor, 0x123456U);
    EXPECT_EQ(copy.shadow, 0);
    EXPECT_EQ(copy.selected, 1);
    EXPECT_EQ(group.getGroupSize(), 1);

    line->move(&view, 5, 5, 300, 300, nullptr);
    EXPECT_EQ(displayOf(copy), (Numbers{1, 1, 3, 1, 5, 3, 5, 5}));

    const OpenLine fractions(&view, 0.25, 0.5, 0.75, 1.0, solid, true);
    const OpenLine same(fractions);
    EXPECT_EQ(normalisedOf(same), normalisedOf(fractions));
    EXPECT_TRUE(same.normalised);
    const OpenLine empty;
    const OpenLine alsoEmpty(empty);
    EXPECT_EQ(alsoEmpty.displayPoints, nullptr);
}

// ---------------------------------------------------------------------------------------------------- accessors

TEST(CCsLineAccessors, GiveAsManyPointsAsAsked) {
    CCs2dTrafo view = zoomedView(1.0);
    const OpenLine line(&view, 1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5, 8.5, solid, false, false);
    int i[8] = {};
    line.getEndPts(i[0], i[1], i[2], i[3]);
    EXPECT_EQ((std::vector<int>(i, i + 5)), (std::vector<int>{1, 2, 3, 4, 0}));
    line.getEndPts(i[0], i[1], i[2], i[3], i[4], i[5]);
    EXPECT_EQ((std::vector<int>(i, i + 7)), (std::vector<int>{1, 2, 3, 4, 5, 6, 0}));
    line.getEndPts(i[0], i[1], i[2], i[3], i[4], i[5], i[6], i[7]);
    EXPECT_EQ((std::vector<int>(i, i + 8)), (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8}));
    double d[8] = {};
    line.getEndPts(d[0], d[1], d[2], d[3]);
    EXPECT_EQ(Numbers(d, d + 5), (Numbers{1.5, 2.5, 3.5, 4.5, 0}));
    std::vector<CPoint> points(9);
    line.getEndPts(points);
    ASSERT_EQ(points.size(), 4U);
    EXPECT_TRUE(points[3] == CPoint(7, 8));

    double m[8] = {};
    line.getImagePts(m[0], m[1], m[2], m[3]);
    EXPECT_EQ(Numbers(m, m + 5), (Numbers{0.75, 1.25, 1.75, 2.25, 0}));
    line.getImagePts(m[0], m[1], m[2], m[3], m[4], m[5]);
    EXPECT_EQ(Numbers(m, m + 7), (Numbers{0.75, 1.25, 1.75, 2.25, 2.75, 3.25, 0}));
    line.getImagePts(m[0], m[1], m[2], m[3], m[4], m[5], m[6], m[7]);
    EXPECT_EQ(Numbers(m, m + 8), (Numbers{0.75, 1.25, 1.75, 2.25, 2.75, 3.25, 3.75, 4.25}));

    const OpenLine fractions(&view, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, solid, false, true);
    double n[8] = {};
    fractions.getNormEndPts(n[0], n[1], n[2], n[3]);
    EXPECT_EQ(Numbers(n, n + 5), (Numbers{0.1, 0.2, 0.3, 0.4, 0}));
    fractions.getNormEndPts(n[0], n[1], n[2], n[3], n[4], n[5]);
    EXPECT_EQ(Numbers(n, n + 7), (Numbers{0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0}));
    fractions.getNormEndPts(n[0], n[1], n[2], n[3], n[4], n[5], n[6], n[7]);
    EXPECT_EQ(Numbers(n, n + 8), (Numbers{0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8}));
}

TEST(CCsLineAccessors, LeaveUnchangedWhatTheLineDoesNotHave) {
    CCs2dTrafo view = identityView();
    const OpenLine point(&view, 3, 4, solid);
    int a = -1, b = -1, c = -1, d = -1;
    point.getEndPts(a, b, c, d);
    EXPECT_EQ((std::vector<int>{a, b, c, d}), (std::vector<int>{3, 4, -1, -1}));
    double w = -1, x = -1, y = -1, z = -1;
    point.getNormEndPts(w, x, y, z);
    OpenLine().getImagePts(w, x, y, z);
    OpenLine().getEndPts(w, x, y, z);
    EXPECT_EQ((Numbers{w, x, y, z}), (Numbers{-1, -1, -1, -1}));
    std::vector<CPoint> points(2);
    OpenLine().getEndPts(points);
    EXPECT_TRUE(points.empty());
}

TEST(CCsLineAccessors, ImagePointsThroughAViewEndAMoveFirst) {
    CCs2dTrafo view = zoomedView(1.0);
    OpenLine line(&view, 0, 0, 10, 0, 10, 10, 0, 10, solid);
    line.move(&view, 4, 2, 100, 100, nullptr);
    double m[8] = {};
    line.getImagePts(m[0], m[1], m[2], m[3]);
    EXPECT_EQ(Numbers(m, m + 4), (Numbers{0, 0, 5, 0}));
    line.getImagePts(nullptr, m[0], m[1], m[2], m[3]);
    EXPECT_EQ(Numbers(m, m + 4), (Numbers{0, 0, 5, 0}));
    EXPECT_EQ(line.displayAuthoritative, 1);
    line.getImagePts(&view, m[0], m[1], m[2], m[3]);
    EXPECT_EQ(Numbers(m, m + 4), (Numbers{2, 1, 7, 1}));
    EXPECT_EQ(line.displayAuthoritative, 0);
    line.getImagePts(&view, m[0], m[1], m[2], m[3], m[4], m[5]);
    EXPECT_EQ(Numbers(m, m + 6), (Numbers{2, 1, 7, 1, 7, 6}));
    CCs2dTrafo other = identityView();
    line.getImagePts(&other, m[0], m[1], m[2], m[3], m[4], m[5], m[6], m[7]);  // nothing to end: the view is not used
    EXPECT_EQ(Numbers(m, m + 8), (Numbers{2, 1, 7, 1, 7, 6, 2, 6}));
}

TEST(CCsLineSetters, NewDisplayPointsForTheirNumberOfVertices) {
    CCs2dTrafo view = zoomedView(1.0);
    OpenLine two(&view, 0, 0, 1, 1, solid);
    OpenLine three(&view, 0, 0, 1, 1, 2, 2, solid);
    OpenLine four(&view, 0, 0, 1, 1, 2, 2, 3, 3, solid);
    for (OpenLine* const line : {&two, &three, &four}) {
        line->setPts(&view, 2, 4, 6, 8);
        line->setPts(&view, 10, 12, 14, 16, 18, 20);
        line->setPts(&view, 22, 24, 26, 28, 30, 32, 34, 36);
    }
    EXPECT_EQ(displayOf(two), (Numbers{2, 4, 6, 8}));
    EXPECT_EQ(imageOf(two), (Numbers{1, 2, 3, 4}));
    EXPECT_EQ(displayOf(three), (Numbers{10, 12, 14, 16, 18, 20}));
    EXPECT_EQ(imageOf(three), (Numbers{5, 6, 7, 8, 9, 10}));
    EXPECT_EQ(displayOf(four), (Numbers{22, 24, 26, 28, 30, 32, 34, 36}));
    EXPECT_EQ(exactOf(four), (Numbers{22, 24, 26, 28, 30, 32, 34, 36}));
    EXPECT_EQ(imageOf(four), (Numbers{11, 12, 13, 14, 15, 16, 17, 18}));

    two.setPts(nullptr, 100, 100, 200, 200);
    EXPECT_EQ(imageOf(two), (Numbers{1, 2, 3, 4}));
    EXPECT_EQ(two.displayAuthoritative, 1);
}

TEST(CCsLineSetters, SetDspPointsTruncatesIntegersAndKeepsDoubles) {
    CCs2dTrafo view = zoomedView(1.0);
    OpenLine line(&view, 0, 0, 1, 1, solid);
    line.setDspPoints(&view, 1.75, -2.75, 3.5, 4.25);
    EXPECT_EQ(displayOf(line), (Numbers{1, -2, 3, 4}));
    EXPECT_EQ(exactOf(line), (Numbers{1.75, -2.75, 3.5, 4.25}));
    EXPECT_EQ(imageOf(line), (Numbers{0.875, -1.375, 1.75, 2.125}));
    line.setDspPoints(nullptr, 8, 8, 9, 9);
    EXPECT_EQ(displayOf(line), (Numbers{8, 8, 9, 9}));
    EXPECT_EQ(imageOf(line), (Numbers{0.875, -1.375, 1.75, 2.125}));
}

TEST(CCsLineSetters, SetDspPointsIgnoresEveryOtherCount) {
    CCs2dTrafo view = identityView();
    OpenLine one(&view, 5, 5, solid);
    OpenLine three(&view, 0, 0, 1, 1, 2, 2, solid);
    OpenLine none;
    for (OpenLine* const line : {&one, &three, &none}) line->setDspPoints(&view, 7, 7, 9, 9);
    EXPECT_EQ(displayOf(one), (Numbers{5, 5}));
    EXPECT_EQ(displayOf(three), (Numbers{0, 0, 1, 1, 2, 2}));
    OpenLine fractions(&view, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, solid, false, true);
    fractions.setDspPoints(&view, 0, 0, 0, 0);
    EXPECT_EQ(normalisedOf(fractions), (Numbers{0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8}));
}

/// Sees whether dspToImg has been called through the table.
class CountingLine : public OpenLine {
public:
    using OpenLine::OpenLine;
    void dspToImg(CCs2dTrafo* trafo) override {
        ++calls;
        OpenLine::dspToImg(trafo);
    }
    int calls = 0;
};

TEST(CCsLineSetters, SetDspPointsCallsDspToImgThroughTheTable) {
    CCs2dTrafo view = identityView();
    CountingLine line(&view, 0, 0, 1, 1, solid);
    line.setDspPoints(&view, 2, 2, 3, 3);
    EXPECT_EQ(line.calls, 1);
    line.setDspPoints(nullptr, 2, 2, 3, 3);
    EXPECT_EQ(line.calls, 1);
    CountingLine fractions(&view, 0.0, 0.0, 1.0, 1.0, solid, true);
    fractions.setDspPoints(&view, 0.25, 0.25, 0.5, 0.5);
    EXPECT_EQ(fractions.calls, 1);
    EXPECT_EQ(normalisedOf(fractions), (Numbers{0.25, 0.25, 0.5, 0.5}));
    EXPECT_EQ(fractions.displayPoints, nullptr);
    fractions.setDspPoints(nullptr, 0.5, 0.25, 0.5, 0.5);
    EXPECT_EQ(fractions.calls, 1);
    EXPECT_EQ(normalisedOf(fractions), (Numbers{0.5, 0.25, 0.5, 0.5}));
}

TEST(CCsLineSetters, NewImagePointsOfALineOfTwo) {
    CCs2dTrafo view = zoomedView(1.0);
    OpenLine line(&view, 0, 0, 1, 1, solid);
    line.move(&view, 5, 5, 100, 100, nullptr);
    line.setImgPts(&view, 1.25, 2.5, -1.25, 4);
    EXPECT_EQ(imageOf(line), (Numbers{1.25, 2.5, -1.25, 4}));
    EXPECT_EQ(exactOf(line), (Numbers{2.5, 5, -2.5, 8}));
    EXPECT_EQ(displayOf(line), (Numbers{3, 5, -3, 8}));
    EXPECT_EQ(line.displayAuthoritative, 0);
    line.setImgPts(nullptr, 0, 0, 0, 0);
    EXPECT_EQ(imageOf(line), (Numbers{0, 0, 0, 0}));
    EXPECT_EQ(displayOf(line), (Numbers{3, 5, -3, 8}));
    OpenLine three(&view, 0, 0, 2, 2, 4, 4, solid);
    three.setImgPts(&view, 9, 9, 9, 9);
    EXPECT_EQ(imageOf(three), (Numbers{0, 0, 1, 1, 2, 2}));
}

TEST(CCsLineSetters, NewNormalisedPointsOfANormalisedLineOfFour) {
    CCs2dTrafo view = identityView();
    OpenLine line(&view, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, solid, false, true);
    line.setNormPts(&view, 0.9, 0.8, 0.7, 0.6, 0.5, 0.4, 0.3, 0.2);
    EXPECT_EQ(normalisedOf(line), (Numbers{0.9, 0.8, 0.7, 0.6, 0.5, 0.4, 0.3, 0.2}));
    line.setNormPts(nullptr, 0, 0, 1, 0, 1, 1, 0, 1);
    EXPECT_EQ(normalisedOf(line), (Numbers{0, 0, 1, 0, 1, 1, 0, 1}));
    line.setPts(&view, 1, 2, 3, 4, 5, 6, 7, 8);
    EXPECT_EQ(line.displayPoints, nullptr);
    OpenLine two(&view, 0.0, 0.0, 1.0, 1.0, solid, true);
    two.setNormPts(&view, 0.9, 0.8, 0.7, 0.6, 0.5, 0.4, 0.3, 0.2);
    EXPECT_EQ(normalisedOf(two), (Numbers{0, 0, 1, 1}));
    OpenLine display(&view, 1, 2, 3, 4, 5, 6, 7, 8, solid);
    display.setNormPts(&view, 0.9, 0.8, 0.7, 0.6, 0.5, 0.4, 0.3, 0.2);
    EXPECT_EQ(displayOf(display), (Numbers{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_FALSE(display.normalised);
}

TEST(CCsLineSetters, StoreTheirValues) {
    OpenLine line;
    line.setShadow(false);
    EXPECT_EQ(line.shadow, 0);
    line.setShadow(true);
    EXPECT_EQ(line.shadow, 1);
    line.setPenStyle(3);
    EXPECT_EQ(line.penStyle, 3);
    line.setColorFilled(0x00FF7F);
    EXPECT_TRUE(line.filled);
    EXPECT_EQ(line.fillColor, 0x00FF7FU);
    line.setColorFilled(0);
    EXPECT_FALSE(line.filled);
    EXPECT_EQ(line.fillColor, 0U);
    line.close();
    EXPECT_EQ(line.closed, 1.0);
    line.setDicomPrintFlag(true);
    EXPECT_TRUE(line.dicomPrintFlag);
    line.select();
    EXPECT_EQ(line.isSelected(), &line);
    EXPECT_EQ(line.unselect(), 0);
    EXPECT_EQ(line.isSelected(), nullptr);
    RECT rect{1, 2, 3, 4};
    line.select(rect);
    EXPECT_EQ(line.selected, 1);
    EXPECT_EQ(line.unselect(rect), 0);
    EXPECT_EQ(line.selected, 0);
    EXPECT_STREQ(line.getClassName(), L"CCsOverlay");
}

// ---------------------------------------------------------------------------------------------------- conversions

TEST(CCsLineConversions, ThereAndBackUnderZoomTurnAndMirror) {
    for (CCs2dTrafo view : {identityView(), zoomedView(0.5), quarterTurnedView(), mirroredView()}) {
        OpenLine line(&view, 16, 32, 64, 128, solid);
        const Numbers image = imageOf(line);
        line.imgToDsp(&view);
        EXPECT_EQ(displayOf(line), (Numbers{16, 32, 64, 128}));
        line.dspToImg(&view);
        EXPECT_EQ(imageOf(line), image);
    }
    CCs2dTrafo turned = quarterTurnedView();
    EXPECT_EQ(imageOf(OpenLine(&turned, 16, 32, solid)), (Numbers{32, 496}));
    CCs2dTrafo mirrored = mirroredView();
    EXPECT_EQ(imageOf(OpenLine(&mirrored, 16, 32, solid)), (Numbers{496, 32}));
}

TEST(CCsLineConversions, ImgToDspRoundsHalfAwayFromZeroAndKeepsTheUnrounded) {
    CCs2dTrafo view = zoomedView(1.0);
    OpenLine line(&view, 0, 0, 0, 0, solid);
    line.setImgPts(&view, 1.25, -1.25, 1.2, -1.2);
    EXPECT_EQ(displayOf(line), (Numbers{3, -3, 2, -2}));
    EXPECT_EQ(exactOf(line)[0], 2.5);
    EXPECT_EQ(exactOf(line)[1], -2.5);
}

TEST(CCsLineConversions, ClearDisplayAuthoritativeAlsoWithoutPoints) {
    CCs2dTrafo view = identityView();
    OpenLine none;
    none.displayAuthoritative = 1;
    none.dspToImg(&view);
    EXPECT_EQ(none.displayAuthoritative, 0);
    none.displayAuthoritative = 1;
    none.dspToImg(nullptr);
    EXPECT_EQ(none.displayAuthoritative, 0);
    none.imgToDsp(&view);
    OpenLine fractions(&view, 0.25, 0.5, 0.75, 1.0, solid, true);
    fractions.displayAuthoritative = 1;
    fractions.dspToImg(&view);
    EXPECT_EQ(fractions.displayAuthoritative, 0);
    fractions.imgToDsp(&view);
    OpenLine line(&view, 1, 2, 3, 4, solid);
    line.displayAuthoritative = 1;
    line.dspToImg(nullptr);
    line.imgToDsp(nullptr);
    EXPECT_EQ(line.displayAuthoritative, 1);
    EXPECT_EQ(displayOf(line), (Numbers{1, 2, 3, 4}));
}

TEST(CCsLineConversions, NothingIsConvertedWithoutAllArrays) {
    CCs2dTrafo view = zoomedView(1.0);
    OpenLine withoutImage(&view, 2, 4, 6, 8, solid);
    withoutImage.imagePoints.reset();
    withoutImage.imgToDsp(&view);
    withoutImage.displayAuthoritative = 1;
    withoutImage.dspToImg(&view);
    EXPECT_EQ(displayOf(withoutImage), (Numbers{2, 4, 6, 8}));
    EXPECT_EQ(withoutImage.displayAuthoritative, 0);
    OpenLine withoutExact(&view, 2, 4, 6, 8, solid);
    withoutExact.displayPointsDouble.reset();
    withoutExact.imagePoints[0].setPosition(50, 50);
    withoutExact.imgToDsp(&view);
    withoutExact.dspToImg(&view);
    EXPECT_EQ(displayOf(withoutExact), (Numbers{2, 4, 6, 8}));
    EXPECT_EQ(imageOf(withoutExact), (Numbers{50, 50, 3, 4}));
}

// ---------------------------------------------------------------------------------------------------- output positions

struct Position {
    bool known;
    double x;
    double y;
    bool operator==(const Position&) const = default;
};

Position positionOf(OpenLine& line, int index, CCs2dTrafo* image, CCs2dTrafo* output, int mode) {
    Position out{false, -7.0, -7.0};
    out.known = line.transformToOutput(index, image, output, out.x, out.y, mode);
    return out;
}

constexpr Position nowhere{false, -7.0, -7.0};

TEST(CCsLineOutput, NormalisedPointsAreFractionsOfTheOutputInEveryMode) {
    CCs2dTrafo image = zoomedView(3.0);
    image.setDestSizes(400, 300, 1.0, 50, 60);
    OpenLine line(&image, 0.25, 0.5, 0.75, 1.0, solid, true);
    for (const int mode : {0, 1, 2, 3, 4, 5, -1}) {
        EXPECT_EQ(positionOf(line, 0, &image, nullptr, mode), (Position{true, 100, 150})) << mode;
        EXPECT_EQ(positionOf(line, 1, &image, nullptr, mode), (Position{true, 300, 300})) << mode;
        EXPECT_EQ(positionOf(line, 0, nullptr, &image, mode), nowhere) << mode;
    }
}

TEST(CCsLineOutput, ScreenRoundsAndStoresImagePoints) {
    CCs2dTrafo view = zoomedView(1.0);
    for (const int mode : {1, 4}) {
        OpenLine line(&view, 0, 0, 0, 0, solid);
        line.setImgPts(nullptr, 1.25, -1.25, 10, 20);
        EXPECT_EQ(positionOf(line, 0, &view, nullptr, mode), (Position{true, 3, -3}));
        EXPECT_EQ(positionOf(line, 1, &view, nullptr, mode), (Position{true, 20, 40}));
        EXPECT_EQ(displayOf(line), (Numbers{3, -3, 20, 40}));
        EXPECT_EQ(exactOf(line), (Numbers{2.5, -2.5, 20, 40}));
        EXPECT_EQ(positionOf(line, 0, nullptr, &view, mode), nowhere);
    }
}

TEST(CCsLineOutput, ScreenTakesAuthoritativeDisplayPointsAsTheyAre) {
    CCs2dTrafo view = zoomedView(1.0);
    OpenLine line(&view, 10, 20, 30, 40, solid);
    line.move(&view, 1, 1, 200, 200, nullptr);
    EXPECT_EQ(positionOf(line, 0, nullptr, nullptr, 1), (Position{true, 11, 21}));
    CCs2dTrafo other = zoomedView(4.0);
    EXPECT_EQ(positionOf(line, 1, &other, nullptr, 1), (Position{true, 31, 41}));
    EXPECT_EQ(displayOf(line), (Numbers{11, 21, 31, 41}));
    // Mode 4 goes by the image points all the same.
    EXPECT_EQ(positionOf(line, 0, &view, nullptr, 4), (Position{true, 10, 20}));
}

TEST(CCsLineOutput, PrintersNeitherRoundNorStore) {
    CCs2dTrafo view = zoomedView(1.0);
    CCs2dTrafo print = zoomedView(1.125);  // x' = 2.25 x - 32
    for (const int mode : {2, 3}) {
        OpenLine line(&view, 11, 20, 30, 40, solid);
        EXPECT_EQ(positionOf(line, 0, &print, nullptr, mode), (Position{true, 2.25 * 5.5 - 32, 2.25 * 10 - 32}));
        EXPECT_EQ(displayOf(line), (Numbers{11, 20, 30, 40}));
        EXPECT_EQ(positionOf(line, 0, nullptr, &print, mode), nowhere);
        line.move(&view, 1, 0, 200, 200, nullptr);
        EXPECT_EQ(positionOf(line, 0, &view, &print, mode), (Position{true, 2.25 * 12 - 32, 2.25 * 20 - 32}));
        EXPECT_EQ(positionOf(line, 0, &print, nullptr, mode), nowhere);
        EXPECT_EQ(displayOf(line), (Numbers{12, 20, 31, 40}));
    }
}

TEST(CCsLineOutput, OtherModesAndVerticesHaveNoPosition) {
    CCs2dTrafo view = identityView();
    OpenLine line(&view, 10, 20, 30, 40, solid);
    for (const int mode : {0, 5, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        EXPECT_EQ(positionOf(line, 0, &view, &view, mode), nowhere);
        line.displayAuthoritative = 1;
        EXPECT_EQ(positionOf(line, 0, &view, &view, mode), nowhere);
        line.displayAuthoritative = 0;
    }
    EXPECT_EQ(positionOf(line, 2, &view, &view, 1), nowhere);
    EXPECT_EQ(positionOf(line, -1, &view, &view, 1), nowhere);
    OpenLine none;
    EXPECT_EQ(positionOf(none, 0, &view, &view, 1), nowhere);
}

TEST(CCsLineOutput, PositionsBeyondTheIntegersStayTrueAndSaturateInStore) {
    CCs2dTrafo view = zoomedView(0x1p40);
    OpenLine distant(&view, 0, 0, 0, 0, solid);
    distant.setImgPts(nullptr, 129.0, 127.0, 128.0, 128.0);
    EXPECT_EQ(positionOf(distant, 0, &view, nullptr, 1), (Position{true, 0x1p41 + 256, -0x1p41 + 256}));
    EXPECT_EQ(positionOf(distant, 1, &view, nullptr, 1), (Position{true, 256, 256}));
    EXPECT_EQ(displayOf(distant), (Numbers{2147483647.0, -2147483648.0, 256, 256}));
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

// ---------------------------------------------------------------------------------------------------- size

TEST(CCsLineSize, GrowsARectangleThatHoldsSomething) {
    CCs2dTrafo view = identityView();
    const auto sizeOf = [](CCsLine& line, RECT rect) {
        line.getSize(rect);
        return std::vector<LONG>{rect.left, rect.top, rect.right, rect.bottom};
    };
    using Edges = std::vector<LONG>;
    OpenLine line(&view, 30, 5, 10, 5, 20, 9, solid);
    EXPECT_EQ(sizeOf(line, {0, 0, 0, 0}), (Edges{10, 5, 30, 9}));
    EXPECT_EQ(sizeOf(line, {15, 6, 40, 7}), (Edges{10, 5, 40, 9}));
    EXPECT_EQ(sizeOf(line, {-5, 6, 20, 60}), (Edges{-5, 5, 30, 60}));
    EXPECT_EQ(sizeOf(line, {50, 5, 0, 0}), (Edges{10, 5, 30, 9}));  // as a text leaves it
    EXPECT_EQ(sizeOf(line, {5, 50, 60, 7}), (Edges{10, 5, 30, 9}));
    EXPECT_EQ(sizeOf(line, {50, 7, 60, 7}), (Edges{10, 5, 60, 9}));  // a horizontal line's
    OpenLine none;
    EXPECT_EQ(sizeOf(none, {1, 2, 3, 4}), (Edges{1, 2, 3, 4}));
    OpenLine fractions(&view, 0.0, 0.0, 1.0, 1.0, solid, true);
    EXPECT_EQ(sizeOf(fractions, {1, 2, 3, 4}), (Edges{1, 2, 3, 4}));
    CCsGroup group;
    group.append(*new OpenLine(&view, 1, 2, 3, 4, solid));
    group.append(*new OpenLine(&view, 10, -2, 3, 1, solid));
    RECT all{};
    group.getSize(all);
    EXPECT_EQ((Edges{all.left, all.top, all.right, all.bottom}), (Edges{1, -2, 10, 4}));
}

// ---------------------------------------------------------------------------------------------------- pictures

constexpr std::uint32_t background = 0x00808080;
constexpr std::uint32_t red = 0x00FF0000;  // as a pixel
constexpr std::uint32_t black = 0x00000000;

class CCsLinePicture : public testing::Test {
protected:
    void draw(CCsLine& line, int mode = 1) { line.render(&view, &view, 0x0000FF, canvas.dc(), mode, 64, 64, 0, 0); }

    /// The pixels that are not background, each as its colour.
    [[nodiscard]] std::vector<std::vector<std::uint32_t>> drawnPixels() const {
        std::vector<std::vector<std::uint32_t>> out;
        for (int y = 0; y < 64; ++y) {
            for (int x = 0; x < 64; ++x) {
                const std::uint32_t pixel = canvas.pixel(x, y) & 0xFFFFFFU;
                if (pixel != background) out.push_back({static_cast<unsigned>(x), static_cast<unsigned>(y), pixel});
            }
        }
        return out;
    }

    CCs2dTrafo view = identityView();
    zoltest::Canvas canvas{64, 64, background};
};

TEST_F(CCsLinePicture, AHorizontalLineAndItsShadowToThePixel) {
    CCsLine line(&view, 10, 20, 13, 20, solid);
    draw(line);
    // The last pixel of a line is left out.
    EXPECT_EQ(drawnPixels(),
              (std::vector<std::vector<std::uint32_t>>{
                  {10, 20, red}, {11, 20, red}, {12, 20, red}, {11, 21, black}, {12, 21, black}, {13, 21, black}}));
}

TEST_F(CCsLinePicture, AHandleIsFiveByFiveWithItsShadowDownAndRight) {
    CCsLine line(&view, 10, 20, solid);
    line.select();
    draw(line);
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            const auto within = [&](int left, int top) { return x >= left && x < left + 5 && y >= top && y < top + 5; };
            const std::uint32_t expected = within(7, 17) ? red : within(8, 18) ? black : background;
            ASSERT_EQ(canvas.pixel(x, y) & 0xFFFFFFU, expected) << x << ' ' << y;
        }
    }
}

TEST_F(CCsLinePicture, AnAreaHasNoShadow) {
    CCsLine line(&view, 10, 20, 40, 20, 40, 50, 10, 50, solid);
    line.setColorFilled(0x00FF00);
    draw(line);
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            const bool inside = x > 10 && x < 40 && y > 20 && y < 50;
            const bool outside = x < 10 || x > 40 || y < 20 || y > 50;
            const std::uint32_t expected = inside ? 0x808080U : outside ? background : red;
            ASSERT_EQ(canvas.pixel(x, y) & 0xFFFFFFU, expected) << x << ' ' << y;
        }
    }
}

TEST_F(CCsLinePicture, FarEndsDoNotMoveWhatIsVisible) {
    CCsLine line(&view, 0, 0, 1, 1, solid);
    line.setShadow(false);
    for (const double end : {100.0, 1e5, 1e7, 1e8, 1e10, 1e13}) {
        line.setImgPts(nullptr, -end, 20, end, 20);
        draw(line);
        line.setImgPts(nullptr, 30, -end, 30, end);
        draw(line);
        for (int i = 0; i < 64; ++i) {
            ASSERT_EQ(canvas.pixel(i, 20) & 0xFFFFFFU, red) << end;
            ASSERT_EQ(canvas.pixel(30, i) & 0xFFFFFFU, red) << end;
        }
        EXPECT_EQ(drawnPixels().size(), 127U) << end;
    }
}

TEST_F(CCsLinePicture, WhatHasNoPlaceLeavesNoPixelAndNoObject) {
    const unsigned int before = zoltest::gdiObjectCount();
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double nowhere : {infinity, -infinity, nan, 1e300, -1e300, 1e17}) {
        for (const bool flag : {false, true}) {
            CCsLine line(&view, {{nowhere, 5}, {5, nowhere}, {nowhere, nowhere}, {nowhere, 30}, {30, nowhere}}, dotted,
                         flag, false, false);
            line.close();
            line.select();
            CCsLine area(&view, {{10, 10}, {40, 10}, {nowhere, 40}, {10, nowhere}}, solid, flag, false, true);
            CCsLine ellipse(&view, nowhere, 10, 40, 10, 40, nowhere, 10, 40, solid, true, false);
            area.setShadow(flag);
            for (const int mode : {1, 2, 3, 4}) {
                draw(line, mode);
                draw(area, mode);
                draw(ellipse, mode);
            }
        }
    }
    CCsLine none;
    for (const int mode : {1, 2, 3, 4}) draw(none, mode);
    CCsLine shapeless(&view, 10, 10, 40, 40, solid);
    for (const int mode : {0, 5, -1}) draw(shapeless, mode);
    EXPECT_TRUE(drawnPixels().empty());
    EXPECT_EQ(zoltest::gdiObjectCount(), before);
}

}  // namespace
