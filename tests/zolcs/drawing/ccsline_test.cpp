#include "zolcs/ccsline.h"

#include "support/open_line.h"
#include "support/overlay_views.h"
#include "support/vtable_slots.h"

#include "zolcs/ccsgroup.h"

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

}  // namespace
