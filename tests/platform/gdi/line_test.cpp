// Lines of one pixel: which pixels, in which order, where they end, dashes and clipping.
#include "platform/gdi/device.h"
#include "support/test_data.h"

#include <cstdlib>

namespace zoltest {
namespace {

class LineTest : public GdiTest {};

constexpr std::uint32_t red = 0x00FF0000;

/// The line from a to b without b: for every column (or row, where the line is steep) the nearest pixel, of two
/// equally near ones the upper or left one.
std::vector<POINT> linePixels(POINT a, POINT b) {
    const auto nearest = [](std::int64_t from, std::int64_t rise, std::int64_t i, std::int64_t n) {
        // from + rise * i / n, halves downward
        const std::int64_t twice = 2 * rise * i - n;
        const std::int64_t quotient = twice / (2 * n);
        return static_cast<LONG>(from + quotient + (twice % (2 * n) > 0 ? 1 : 0));
    };
    std::vector<POINT> out;
    const std::int64_t dx = std::int64_t{b.x} - a.x;
    const std::int64_t dy = std::int64_t{b.y} - a.y;
    const std::int64_t n = std::max(std::abs(dx), std::abs(dy));
    for (std::int64_t i = 0; i < n; ++i) {
        if (std::abs(dx) >= std::abs(dy)) {
            out.push_back({static_cast<LONG>(a.x + (dx < 0 ? -i : i)), nearest(a.y, dy, i, n)});
        } else {
            out.push_back({nearest(a.x, dx, i, n), static_cast<LONG>(a.y + (dy < 0 ? -i : i))});
        }
    }
    return out;
}

void expectLine(Expected& expected, const Device& device, POINT a, POINT b) {
    for (const POINT p : linePixels(a, b)) {
        if (p.x >= 0 && p.x < device.width() && p.y >= 0 && p.y < device.height()) expected.at(p.x, p.y) = red;
    }
}

void drawLine(HDC dc, POINT a, POINT b) {
    EXPECT_TRUE(MoveToEx(dc, a.x, a.y, nullptr));
    EXPECT_TRUE(LineTo(dc, b.x, b.y));
}

TEST_F(LineTest, TheLastPixelIsLeftOut) {
    Device device(6, 3);
    const Using pen(device, CreatePen(PS_SOLID, 0, RGB(255, 0, 0)));
    drawLine(device, {1, 1}, {4, 1});
    EXPECT_EQ(device.picture(), (std::vector<std::string>{"......", ".###..", "......"}));
}

TEST_F(LineTest, BackwardLinesBeginAtTheOtherEnd) {
    Device device(6, 3);
    const Using pen(device, CreatePen(PS_SOLID, 0, RGB(255, 0, 0)));
    drawLine(device, {4, 1}, {1, 1});
    EXPECT_EQ(device.picture(), (std::vector<std::string>{"......", "..###.", "......"}));
}

TEST_F(LineTest, ALineToItselfDrawsNothing) {
    Device device(3, 3);
    const Using pen(device, CreatePen(PS_SOLID, 0, RGB(255, 0, 0)));
    drawLine(device, {1, 1}, {1, 1});
    EXPECT_EQ(device.picture(), (std::vector<std::string>{"...", "...", "..."}));
}

TEST_F(LineTest, TiesGoUpOrLeftInEveryDirection) {
    const struct {
        POINT a, b;
        std::vector<std::string> picture;
    } cases[] = {
        {{0, 0}, {4, 2}, {"##...", "..##.", "....."}},
        {{4, 2}, {0, 0}, {".#...", "..##.", "....#"}},
        {{0, 2}, {4, 0}, {"...#.", ".##..", "#...."}},
        {{4, 0}, {0, 2}, {"...##", ".##..", "....."}},
    };
    for (const auto& c : cases) {
        Device device(5, 3);
        const Using pen(device, CreatePen(PS_SOLID, 0, RGB(255, 0, 0)));
        drawLine(device, c.a, c.b);
        EXPECT_EQ(device.picture(), c.picture);
        // The same, mirrored at the diagonal.
        Device steep(3, 5);
        const Using steepPen(steep, CreatePen(PS_SOLID, 0, RGB(255, 0, 0)));
        drawLine(steep, {c.a.y, c.a.x}, {c.b.y, c.b.x});
        for (int y = 0; y < 5; ++y) {
            for (int x = 0; x < 3; ++x) EXPECT_EQ(steep.pixel(x, y), device.pixel(y, x));
        }
    }
}

TEST_F(LineTest, RandomLinesHitTheNearestPixels) {
    Random random(20240903);
    for (int round = 0; round < 500; ++round) {
        Device device(random.integer(1, 25), random.integer(1, 25), layouts[random.integer(0, 3)]);
        const int reach = round % 2 == 0 ? 30 : 300;
        const POINT a{random.integer(-reach, reach), random.integer(-reach, reach)};
        const POINT b{random.integer(-reach, reach), random.integer(-reach, reach)};
        std::memset(device.bits(), 0, device.size());
        Expected expected(device);
        const Using pen(device, CreatePen(PS_SOLID, round % 3 == 0 ? 1 : 0, RGB(255, 0, 0)));
        drawLine(device, a, b);
        expectLine(expected, device, a, b);
        ASSERT_TRUE(expected.holds(device)) << a.x << "," << a.y << " to " << b.x << "," << b.y;
    }
}

TEST_F(LineTest, ClippingChangesNoPixelOfALine) {
    Random random(20240904);
    for (int round = 0; round < 200; ++round) {
        Device device(20, 20);
        const POINT a{random.integer(-40, 60), random.integer(-40, 60)};
        const POINT b{random.integer(-40, 60), random.integer(-40, 60)};
        HRGN clip =
            CreateRectRgn(random.integer(0, 19), random.integer(0, 19), random.integer(0, 19), random.integer(0, 19));
        HRGN more =
            CreateRectRgn(random.integer(0, 19), random.integer(0, 19), random.integer(0, 19), random.integer(0, 19));
        CombineRgn(clip, clip, more, RGN_XOR);
        SelectClipRgn(device, clip);
        Expected expected(device);
        const Using pen(device, CreatePen(PS_SOLID, 0, RGB(255, 0, 0)));
        drawLine(device, a, b);
        for (const POINT p : linePixels(a, b)) {
            if (PtInRegion(clip, p.x, p.y)) expected.at(p.x, p.y) = red;
        }
        ASSERT_TRUE(expected.holds(device)) << "round " << round;
        DeleteObject(clip);
        DeleteObject(more);
    }
}

TEST_F(LineTest, LineToMovesThePosition) {
    Device device(4, 4);
    POINT old{};
    EXPECT_TRUE(MoveToEx(device, 1, 2, &old));
    EXPECT_EQ(old.x, 0);
    EXPECT_EQ(old.y, 0);
    EXPECT_TRUE(LineTo(device, 3, 1));
    EXPECT_TRUE(MoveToEx(device, 0, 0, &old));
    EXPECT_EQ(old.x, 3);
    EXPECT_EQ(old.y, 1);
    EXPECT_TRUE(GetCurrentPositionEx(device, &old));
    EXPECT_EQ(old.x, 0);
}

TEST_F(LineTest, PolylineJoinsItsPointsAndLeavesOutTheLast) {
    Device device(7, 7);
    const Using pen(device, CreatePen(PS_SOLID, 0, RGB(255, 0, 0)));
    const POINT points[] = {{1, 1}, {5, 1}, {5, 4}, {2, 6}};
    EXPECT_TRUE(MoveToEx(device, 3, 3, nullptr));
    Expected expected(device);
    EXPECT_TRUE(Polyline(device, points, 4));
    for (int i = 0; i < 3; ++i) expectLine(expected, device, points[i], points[i + 1]);
    EXPECT_TRUE(expected.holds(device));
    POINT position{};
    EXPECT_TRUE(GetCurrentPositionEx(device, &position));
    EXPECT_EQ(position.x, 3);
    EXPECT_FALSE(Polyline(device, points, 1));
    EXPECT_FALSE(Polyline(device, points, 0));
}

TEST_F(LineTest, TheNullPenDrawsNothing) {
    Device device(4, 4);
    SelectObject(device, GetStockObject(NULL_PEN));
    drawLine(device, {0, 0}, {4, 4});
    EXPECT_EQ(device.picture(), std::vector<std::string>(4, "...."));
}

TEST_F(LineTest, ThinPensHaveDashesAndTransparentGapsStay) {
    const struct {
        int style;
        const char* row;
    } cases[] = {{PS_SOLID, "######################################"},
                 {PS_DASH, "##################......##############"},
                 {PS_DOT, "###...###...###...###...###...###...##"},
                 {PS_DASHDOT, "#########......###......#########....."},
                 {PS_DASHDOTDOT, "#########...###...###...#########...##"}};
    for (const auto& c : cases) {
        Device device(38, 1);
        const Using pen(device, CreatePen(c.style, 0, RGB(255, 0, 0)));
        SetBkMode(device, TRANSPARENT);
        drawLine(device, {0, 0}, {38, 0});
        EXPECT_EQ(device.picture()[0], c.row);
    }
}

TEST_F(LineTest, OpaqueGapsAreDrawnInTheBackgroundColour) {
    Device device(9, 1);
    const Using pen(device, CreatePen(PS_DOT, 1, RGB(255, 0, 0)));
    EXPECT_EQ(SetBkMode(device, OPAQUE), OPAQUE);
    SetBkColor(device, RGB(0, 0, 7));
    drawLine(device, {0, 0}, {9, 0});
    for (int x = 0; x < 9; ++x) EXPECT_EQ(device.pixel(x, 0), x / 3 % 2 == 0 ? red : 7U) << x;
}

TEST_F(LineTest, DashesRunOnAlongAPolylineAndStartAnewWithEachLineTo) {
    Device device(40, 6);
    const Using pen(device, CreatePen(PS_DOT, 0, RGB(255, 0, 0)));
    SetBkMode(device, TRANSPARENT);
    const POINT points[] = {{0, 0}, {10, 0}, {10, 5}, {35, 5}};
    EXPECT_TRUE(Polyline(device, points, 4));
    EXPECT_EQ(device.picture(),
              (std::vector<std::string>{
                  "###...###...............................", "........................................",
                  "..........#.............................", "..........#.............................",
                  "..........#.............................", ".............###...###...###...###......"}));
    PatBlt(device, 0, 0, 40, 6, BLACKNESS);
    drawLine(device, {0, 0}, {10, 0});
    EXPECT_TRUE(LineTo(device, 20, 0));
    EXPECT_EQ(device.picture()[0], "###...###.###...###.....................");
}

TEST_F(LineTest, WidePensAreRoundAndCentred) {
    Device device(24, 12);
    const Using pen(device, CreatePen(PS_DOT, 5, RGB(255, 0, 0)));  // wide pens have no dashes
    drawLine(device, {5, 5}, {18, 5});
    for (int x = 5; x <= 18; ++x) {
        for (int y = 0; y < 12; ++y) {
            if (std::abs(y - 5) <= 1) {
                EXPECT_EQ(device.pixel(x, y), red) << x << ", " << y;
            }
            if (std::abs(y - 5) >= 4) {
                EXPECT_EQ(device.pixel(x, y), 0U) << x << ", " << y;
            }
        }
    }
    EXPECT_EQ(device.pixel(4, 5), red);
    EXPECT_EQ(device.pixel(1, 5), 0U);
    EXPECT_EQ(device.pixel(22, 5), 0U);
}

TEST_F(LineTest, EvenWidthsLieMoreToTheLeftAndTop) {
    for (int width = 2; width <= 9; ++width) {
        Device device(40, 30);
        const Using pen(device, CreatePen(PS_SOLID, width, RGB(255, 0, 0)));
        drawLine(device, {15, 12}, {30, 12});
        for (int y = 0; y < 30; ++y) {
            EXPECT_EQ(device.pixel(22, y) != 0, y >= 12 - width / 2 && y <= 12 + (width - 1) / 2) << width << ": " << y;
        }
        PatBlt(device, 0, 0, 40, 30, BLACKNESS);
        drawLine(device, {20, 8}, {20, 22});
        for (int x = 0; x < 40; ++x) {
            EXPECT_EQ(device.pixel(x, 15) != 0, x >= 20 - width / 2 && x <= 20 + (width - 1) / 2) << width << ": " << x;
        }
    }
}

TEST_F(LineTest, EveryByteOfAPixelIsDrawn) {
    for (const int width : {0, 5}) {
        Device device(30, 12);
        fillPattern(device, 0x12345678);
        const Using pen(device, CreatePen(PS_SOLID, width, RGB(255, 0, 0)));
        drawLine(device, {2, 6}, {28, 6});
        for (int x = 5; x < 25; ++x) EXPECT_EQ(device.pixel(x, 6), red) << width << ": " << x;
    }
}

TEST_F(LineTest, WideObliqueLinesAreCentredWhateverTheirWidth) {
    for (int width = 2; width <= 9; ++width) {
        for (const bool rising : {false, true}) {
            Device device(60, 60);
            const Using pen(device, CreatePen(PS_SOLID, width, RGB(255, 0, 0)));
            rising ? drawLine(device, {10, 50}, {50, 10}) : drawLine(device, {10, 10}, {50, 50});
            // Columns of row 30 on both sides of the middle.
            int left = 0;
            int right = 0;
            for (int x = 0; x < 60; ++x) {
                if (device.pixel(x, 30) == 0) continue;
                left += x < 30 ? 1 : 0;
                right += x > 30 ? 1 : 0;
            }
            EXPECT_NEAR(left, right, 1) << width << ", " << rising;
            EXPECT_NEAR(left + right + 1, width * 1.4142, 2.0) << width << ", " << rising;
        }
    }
}

TEST_F(LineTest, AWideLineToItselfIsADot) {
    Device device(12, 12);
    const Using pen(device, CreatePen(PS_SOLID, 5, RGB(255, 0, 0)));
    drawLine(device, {5, 5}, {5, 5});
    EXPECT_EQ(device.pixel(5, 5), red);
    EXPECT_EQ(device.pixel(5, 4), red);
    EXPECT_EQ(device.pixel(5, 1), 0U);
    EXPECT_EQ(device.pixel(9, 5), 0U);
}

TEST_F(LineTest, EveryStyleInEveryWidth) {
    const auto pixelsOf = [](int style, int width) {
        Device device(60, 60);
        SetBkMode(device, TRANSPARENT);
        const Using pen(device, CreatePen(style, width, RGB(255, 0, 0)));
        const POINT points[] = {{10, 12}, {48, 15}, {20, 45}};
        EXPECT_TRUE(Polyline(device, points, 3));
        return device.picture();
    };
    const std::vector<std::string> nothing(60, std::string(60, '.'));
    for (const int width : {0, 1, 2, 3, 5, 10, 17}) {
        const std::vector<std::string> solid = pixelsOf(PS_SOLID, width);
        EXPECT_NE(solid, nothing) << width;
        EXPECT_EQ(pixelsOf(PS_NULL, width), nothing) << width;
        EXPECT_EQ(pixelsOf(PS_INSIDEFRAME, width), solid) << width;
        for (const int style : {PS_DASH, PS_DOT, PS_DASHDOT, PS_DASHDOTDOT}) {
            EXPECT_EQ(pixelsOf(style, width) == solid, width > 1) << width << " style " << style;
        }
        if (width < 2) continue;
        // As thick as asked for, across a line that is almost level.
        int thick = 0;
        for (int y = 0; y < 30; ++y) thick += solid[static_cast<std::size_t>(y)][20] == '#' ? 1 : 0;
        EXPECT_NEAR(thick, width, 1);
    }
    // A width of 0 is one pixel, whatever the transformation; the others grow with it.
    for (const int width : {0, 4}) {
        Device device(60, 60);
        SetGraphicsMode(device, GM_ADVANCED);
        const XFORM twice{2.0F, 0.0F, 0.0F, 2.0F, 0.0F, 0.0F};
        EXPECT_TRUE(SetWorldTransform(device, &twice));
        const Using pen(device, CreatePen(PS_SOLID, width, RGB(255, 0, 0)));
        drawLine(device, {5, 15}, {25, 15});
        int thick = 0;
        for (int y = 0; y < 60; ++y) thick += device.pixel(30, y) != 0 ? 1 : 0;
        EXPECT_NEAR(thick, width == 0 ? 1 : 8, width == 0 ? 0 : 1);
    }
}

TEST_F(LineTest, UnknownStylesAreNoPens) {
    for (const int style : {-1, 9, 100}) {
        HPEN pen = CreatePen(style, 1, RGB(255, 0, 0));
        LOGPEN record{};
        // Systems may refuse the style or take a solid pen instead.
        if (pen != nullptr) {
            EXPECT_EQ(GetObjectW(pen, sizeof(record), &record), static_cast<int>(sizeof(record)));
            EXPECT_EQ(record.lopnStyle, static_cast<UINT>(PS_SOLID)) << style;
            DeleteObject(pen);
        }
    }
    const LOGPEN description{PS_DOT, {1, 0}, RGB(4, 5, 6)};
    HPEN pen = CreatePenIndirect(&description);
    LOGPEN record{};
    EXPECT_EQ(GetObjectW(pen, sizeof(record), &record), static_cast<int>(sizeof(record)));
    EXPECT_EQ(record.lopnStyle, static_cast<UINT>(PS_DOT));
    EXPECT_EQ(record.lopnWidth.x, 1);
    EXPECT_EQ(record.lopnColor, RGB(4, 5, 6));
    EXPECT_TRUE(DeleteObject(pen));
}

TEST_F(LineTest, PensRememberWhatTheyAre) {
    HPEN pen = CreatePen(PS_DASH, 1, RGB(1, 2, 3));
    LOGPEN record{};
    EXPECT_EQ(GetObjectW(pen, sizeof(record), &record), static_cast<int>(sizeof(record)));
    EXPECT_EQ(record.lopnStyle, static_cast<UINT>(PS_DASH));
    EXPECT_EQ(record.lopnWidth.x, 1);
    EXPECT_EQ(record.lopnColor, RGB(1, 2, 3));
    EXPECT_TRUE(DeleteObject(pen));
}

}  // namespace
}  // namespace zoltest
