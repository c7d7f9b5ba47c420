#include "viewing/dicom/dicom_geometry.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace {

using namespace viewing;

TEST(DicomGeometry, RowAndColumnFromOneBecomeXAndYFromZero) {
    EXPECT_EQ(fromRowColumn(1, 1), (Point{0, 0}));
    EXPECT_EQ(fromRowColumn(10, 300), (Point{299, 9}));
    EXPECT_EQ(fromRowColumn(-9, -19), (Point{-20, -10}));
    EXPECT_EQ(fromRowColumn(0, 0), (Point{-1, -1}));
}

TEST(DicomGeometry, AbsurdPositionsStayComputable) {
    EXPECT_EQ(fromRowColumn(2147483647.0, -2147483648.0), (Point{-100000, 100000}));
    EXPECT_EQ(fromRowColumn(1e300, -1e300), (Point{-100000, 100000}));
}

TEST(DicomGeometry, EdgesAreTheLastVisibleColumnsAndRows) {
    // Columns 31 to 330 and rows 41 to 320 of DICOM: 30 columns and 40 rows hidden on each side of a 360 x 360 image.
    EXPECT_EQ(fromEdges(31, 330, 41, 320), (Box{30, 40, 329, 319}));
    EXPECT_EQ(fromEdges(1, 1, 1, 1), (Box{0, 0, 0, 0}));
}

TEST(DicomGeometry, EdgesWrittenFromZeroReachBeyondTheImageAndHideOneColumnAndRowLess) {
    EXPECT_EQ(fromEdges(0, 1318, 0, 788), (Box{-1, -1, 1317, 787}));
}

TEST(DicomGeometry, EdgesTheWrongWayRoundAreNoRectangle) {
    EXPECT_EQ(fromEdges(10, 9, 1, 5), std::nullopt);
    EXPECT_EQ(fromEdges(1, 5, 10, 9), std::nullopt);
}

TEST(DicomGeometry, CircleIsGivenByRowThenColumn) {
    EXPECT_EQ(fromCentre(85, 105, 70), (Circle{{104, 84}, 70}));
    EXPECT_EQ(fromCentre(85, 105, 0), std::nullopt);
    EXPECT_EQ(fromCentre(85, 105, -3), std::nullopt);
    EXPECT_EQ(fromCentre(85, 105, 1e12)->radius, 100000);
}

TEST(DicomGeometry, VerticesArePairsOfRowAndColumn) {
    const std::array<double, 6> numbers{30, 40, 50, 330, 331, 180};
    EXPECT_EQ(fromVertices(numbers), (std::vector<Point>{{39, 29}, {329, 49}, {179, 330}}));
    EXPECT_EQ(fromVertices(std::span(numbers).first(5)), std::nullopt);
    EXPECT_EQ(fromVertices(std::span(numbers).first(4)), std::nullopt);
    EXPECT_EQ(fromVertices({}), std::nullopt);
}

// A plane of 5 columns whose rows do not start on bytes: bit k of the plane is set for these positions.
std::vector<unsigned char> packed(std::size_t bits, const std::vector<std::size_t>& set) {
    std::vector<unsigned char> bytes((bits + 7) / 8);
    for (const std::size_t bit : set) bytes[bit / 8] = static_cast<unsigned char>(bytes[bit / 8] | (1U << (bit % 8)));
    return bytes;
}

TEST(DicomGeometry, PlaneInsideTheImageIsTakenWhole) {
    const auto plane = placePlane(fromRowColumn(2, 3), 3, 5, packed(15, {0, 9, 14}), 0, 20, 10);
    ASSERT_TRUE(plane);
    EXPECT_EQ(plane->origin, (Point{2, 1}));
    EXPECT_EQ(plane->bits.width(), 5);
    EXPECT_EQ(plane->bits.height(), 3);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 5; ++x)
            EXPECT_EQ(plane->bits.get(x, y), (x == 0 && y == 0) || (x == 4 && y == 1) || (x == 4 && y == 2));
}

TEST(DicomGeometry, PlaneOverTheEdgesIsCut) {
    // Row 0, column -1: one row and two columns lie before the image; the image ends within the plane too.
    const auto plane = placePlane(fromRowColumn(0, -1), 4, 5, packed(20, {7, 14}), 0, 2, 2);
    ASSERT_TRUE(plane);
    EXPECT_EQ(plane->origin, (Point{0, 0}));
    EXPECT_EQ(plane->bits.width(), 2);
    EXPECT_EQ(plane->bits.height(), 2);
    EXPECT_TRUE(plane->bits.get(0, 0));   // bit 7 is row 1, column 2 of the plane
    EXPECT_FALSE(plane->bits.get(1, 0));  // bit 8
    EXPECT_FALSE(plane->bits.get(0, 1));  // bit 12
    EXPECT_FALSE(plane->bits.get(1, 1));  // bit 13; bit 14 lies beyond
}

TEST(DicomGeometry, PlaneBesideTheImageIsNone) {
    const auto bytes = packed(25, {0});
    EXPECT_FALSE(placePlane({-5, 0}, 5, 5, bytes, 0, 10, 10));
    EXPECT_FALSE(placePlane({0, -5}, 5, 5, bytes, 0, 10, 10));
    EXPECT_FALSE(placePlane({10, 0}, 5, 5, bytes, 0, 10, 10));
    EXPECT_FALSE(placePlane({0, 10}, 5, 5, bytes, 0, 10, 10));
    EXPECT_TRUE(placePlane({-4, -4}, 5, 5, bytes, 0, 10, 10));
    EXPECT_TRUE(placePlane({9, 9}, 5, 5, bytes, 0, 10, 10));
}

TEST(DicomGeometry, MissingBitsAreZero) {
    const std::vector<unsigned char> bytes{0xFF, 0xFF};
    const auto plane = placePlane({0, 0}, 65535, 65535, bytes, 0, 30, 30);
    ASSERT_TRUE(plane);
    int set = 0;
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 30; ++x) set += plane->bits.get(x, y) ? 1 : 0;
    EXPECT_EQ(set, 16);
    EXPECT_FALSE(placePlane({0, 0}, 3, 3, {}, 0, 30, 30)->bits.get(0, 0));
}

TEST(DicomGeometry, PlaneMayStartWithinTheBits) {
    const auto plane = placePlane({0, 0}, 1, 3, packed(16, {9, 11}), 9, 3, 1);
    ASSERT_TRUE(plane);
    EXPECT_TRUE(plane->bits.get(0, 0));
    EXPECT_FALSE(plane->bits.get(1, 0));
    EXPECT_TRUE(plane->bits.get(2, 0));
}

}  // namespace
