// Polygons, rectangles, ellipses, curves and regions.
#include "platform/gdi/device.h"
#include "support/test_data.h"

#include <cmath>
#include <cstdlib>

namespace zoltest {
namespace {

class ShapeTest : public GdiTest {};

constexpr std::uint32_t fillPixel = 0x0000FF00;
constexpr std::uint32_t penPixel = 0x00FF0000;

/// Whether the pixel's own corner point lies inside; edges belong to it on the left and at the top only.
bool inside(const std::vector<POINT>& points, int x, int y, int fillMode) {
    int crossings = 0;
    int winding = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        POINT a = points[i];
        POINT b = points[(i + 1) % points.size()];
        const int direction = a.y < b.y ? 1 : -1;
        if (direction < 0) std::swap(a, b);
        if (y < a.y || y >= b.y) continue;
        // The edge crosses the row at a.x + (y - a.y) * (b.x - a.x) / (b.y - a.y), at or left of x?
        const std::int64_t dy = b.y - a.y;
        if ((std::int64_t{x} - a.x) * dy < (std::int64_t{y} - a.y) * (b.x - a.x)) continue;
        ++crossings;
        winding += direction;
    }
    return fillMode == WINDING ? winding != 0 : crossings % 2 != 0;
}

TEST_F(ShapeTest, PolygonsFillUpToTheirRightAndBottomEdges) {
    Device device(6, 5);
    SelectObject(device, GetStockObject(NULL_PEN));
    const POINT square[] = {{1, 1}, {4, 1}, {4, 3}, {1, 3}};
    EXPECT_TRUE(Polygon(device, square, 4));
    EXPECT_EQ(device.picture(), (std::vector<std::string>{"......", ".###..", ".###..", "......", "......"}));
}

TEST_F(ShapeTest, RandomPolygonsInBothFillModes) {
    Random random(20240905);
    for (int round = 0; round < 400; ++round) {
        Device device(random.integer(1, 25), random.integer(1, 25), layouts[random.integer(0, 3)]);
        const int reach = round % 3 == 0 ? 200 : 28;
        std::vector<POINT> points;
        for (int i = random.integer(3, 9); i > 0; --i) {
            points.push_back({random.integer(-reach, reach), random.integer(-reach, reach)});
        }
        const int mode = random.chance(0.5) ? ALTERNATE : WINDING;
        EXPECT_NE(SetPolyFillMode(device, mode), 0);
        SelectObject(device, GetStockObject(NULL_PEN));
        const Using brush(device, CreateSolidBrush(RGB(0, 255, 0)));
        Expected expected(device);
        EXPECT_TRUE(Polygon(device, points.data(), static_cast<int>(points.size())));
        for (int y = 0; y < device.height(); ++y) {
            for (int x = 0; x < device.width(); ++x) {
                if (inside(points, x, y, mode)) expected.at(x, y) = fillPixel;
            }
        }
        ASSERT_TRUE(expected.holds(device)) << "round " << round << " mode " << mode;
    }
}

TEST_F(ShapeTest, APolygonsOutlineIsClosed) {
    Device device(6, 5);
    SelectObject(device, GetStockObject(NULL_BRUSH));
    const Using pen(device, CreatePen(PS_SOLID, 0, RGB(255, 0, 0)));
    const POINT square[] = {{1, 1}, {4, 1}, {4, 3}, {1, 3}};
    EXPECT_TRUE(Polygon(device, square, 4));
    EXPECT_EQ(device.picture(), (std::vector<std::string>{"......", ".####.", ".#..#.", ".####.", "......"}));
    EXPECT_FALSE(Polygon(device, square, 1));
}

TEST_F(ShapeTest, FillModesAreKept) {
    Device device(1, 1);
    EXPECT_EQ(GetPolyFillMode(device), ALTERNATE);
    EXPECT_EQ(SetPolyFillMode(device, WINDING), ALTERNATE);
    EXPECT_EQ(SetPolyFillMode(device, 3), 0);
    EXPECT_EQ(GetPolyFillMode(device), WINDING);
}

TEST_F(ShapeTest, RectanglesExcludeTheirRightAndBottomEdges) {
    for (const bool swapped : {false, true}) {
        Device device(8, 6);
        const Using pen(device, CreatePen(PS_SOLID, 0, RGB(255, 0, 0)));
        const Using brush(device, CreateSolidBrush(RGB(0, 255, 0)));
        Expected expected(device);
        EXPECT_TRUE(swapped ? Rectangle(device, 6, 5, 1, 1) : Rectangle(device, 1, 1, 6, 5));
        for (int y = 1; y < 5; ++y) {
            for (int x = 1; x < 6; ++x) {
                expected.at(x, y) = x == 1 || x == 5 || y == 1 || y == 4 ? penPixel : fillPixel;
            }
        }
        EXPECT_TRUE(expected.holds(device));
    }
}

TEST_F(ShapeTest, ARectangleWithoutAPenIsOnePixelSmaller) {
    Device device(8, 6);
    SelectObject(device, GetStockObject(NULL_PEN));
    EXPECT_TRUE(Rectangle(device, 1, 1, 6, 5));
    EXPECT_EQ(device.picture(),
              (std::vector<std::string>{"........", ".####...", ".####...", ".####...", "........", "........"}));
}

TEST_F(ShapeTest, APenInsideTheFrameStaysInside) {
    for (const int width : {1, 2, 5, 8}) {
        for (const bool round : {false, true}) {
            Device device(50, 40);
            const Using pen(device, CreatePen(PS_INSIDEFRAME, width, RGB(255, 0, 0)));
            const Using brush(device, CreateSolidBrush(RGB(0, 255, 0)));
            EXPECT_TRUE(round ? Ellipse(device, 8, 6, 42, 34) : Rectangle(device, 8, 6, 42, 34));
            for (int y = 0; y < 40; ++y) {
                for (int x = 0; x < 50; ++x) {
                    if (x >= 8 && x < 42 && y >= 6 && y < 34) continue;
                    ASSERT_EQ(device.pixel(x, y), 0U) << width << ": " << x << ", " << y;
                }
            }
            EXPECT_EQ(device.pixel(25, 6), penPixel) << width;
            EXPECT_EQ(device.pixel(8, 20), penPixel) << width;
            EXPECT_EQ(device.pixel(25, 33), penPixel) << width;
            EXPECT_EQ(device.pixel(41, 20), penPixel) << width;
            EXPECT_EQ(device.pixel(25, 20), fillPixel) << width;
        }
    }
}

TEST_F(ShapeTest, EllipsesTouchTheirRectangle) {
    Device device(20, 13);
    const Using pen(device, CreatePen(PS_SOLID, 0, RGB(255, 0, 0)));
    EXPECT_TRUE(Ellipse(device, 2, 2, 18, 11));
    EXPECT_EQ(device.picture(),
              (std::vector<std::string>{"....................", "....................", "......########......",
                                        "....############....", "...##############...", "..################..",
                                        "..################..", "..################..", "...##############...",
                                        "....############....", "......########......", "....................",
                                        "...................."}));
    EXPECT_EQ(device.pixel(2, 6), penPixel);
    EXPECT_EQ(device.pixel(17, 6), penPixel);
    EXPECT_EQ(device.pixel(10, 2), penPixel);
    EXPECT_EQ(device.pixel(10, 10), penPixel);
    EXPECT_EQ(device.pixel(10, 6), 0x00FFFFFFU);
}

/// How far the pixel's middle is from an ellipse's outline, about, in pixels.
double fromEllipse(double x, double y, double cx, double cy, double a, double b) {
    const double u = (x - cx) / a;
    const double v = (y - cy) / b;
    const double f = u * u + v * v - 1.0;
    return std::fabs(f) / (2.0 * std::hypot(u / a, v / b) + 1e-9);
}

TEST_F(ShapeTest, HollowEllipsesAreOutlinesOnly) {
    Random random(20240906);
    for (int round = 0; round < 40; ++round) {
        Device device(60, 50);
        const int left = random.integer(0, 20);
        const int top = random.integer(0, 20);
        const int width = random.integer(8, 38);
        const int height = random.integer(8, 28);
        SelectObject(device, GetStockObject(NULL_BRUSH));
        const Using pen(device, CreatePen(PS_SOLID, 1, RGB(255, 0, 0)));
        EXPECT_TRUE(Ellipse(device, left, top, left + width, top + height));
        int drawn = 0;
        for (int y = 0; y < 50; ++y) {
            for (int x = 0; x < 60; ++x) {
                if (device.pixel(x, y) == 0) continue;
                ++drawn;
                const double distance = fromEllipse(x, y, left + (width - 1) / 2.0, top + (height - 1) / 2.0,
                                                    (width - 1) / 2.0, (height - 1) / 2.0);
                ASSERT_LE(distance, 1.6) << x << ", " << y << " of " << width << " x " << height;
            }
        }
        EXPECT_GE(drawn, width + height);
    }
}

TEST_F(ShapeTest, BezierCurvesPassThroughTheirEnds) {
    Device device(30, 30);
    const Using pen(device, CreatePen(PS_SOLID, 0, RGB(255, 0, 0)));
    const POINT curve[] = {{2, 2}, {12, 2}, {20, 12}, {20, 25}};
    EXPECT_TRUE(PolyBezier(device, curve, 4));
    EXPECT_EQ(device.pixel(2, 2), penPixel);
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 30; ++x) {
            if (device.pixel(x, y) == 0) continue;
            double nearest = 1e9;
            for (int k = 0; k <= 400; ++k) {
                const double t = k / 400.0;
                const double s = 1.0 - t;
                const double b[] = {s * s * s, 3 * s * s * t, 3 * s * t * t, t * t * t};
                double px = 0.0;
                double py = 0.0;
                for (int i = 0; i < 4; ++i) {
                    px += b[i] * curve[i].x;
                    py += b[i] * curve[i].y;
                }
                nearest = std::min(nearest, std::hypot(px - x, py - y));
            }
            ASSERT_LE(nearest, 1.5) << x << ", " << y;
        }
    }
    EXPECT_FALSE(PolyBezier(device, curve, 3));
    const POINT twice[8] = {};
    EXPECT_FALSE(PolyBezier(device, twice, 5));
    EXPECT_FALSE(PolyBezier(device, twice, 8));
    EXPECT_FALSE(PolyBezier(device, curve, 0));
}

// ------------------------------------------------------------------------------------------------ regions

TEST_F(ShapeTest, RegionsArePaintedWithoutTheirRightAndBottomEdges) {
    for (const Layout& layout : layouts) {
        Device device(10, 8, layout);
        fillPattern(device);
        Expected expected(device);
        const Using brush(device, CreateSolidBrush(RGB(0, 255, 0)));
        const RECT rect{2, 3, 7, 6};
        HRGN region = CreateRectRgnIndirect(&rect);
        EXPECT_TRUE(PaintRgn(device, region));
        HBRUSH other = CreateSolidBrush(RGB(255, 0, 0));
        HRGN second = CreateRectRgn(8, 7, 6, 6);  // corners in any order
        EXPECT_TRUE(FillRgn(device, second, other));
        for (int y = 3; y < 6; ++y) {
            for (int x = 2; x < 7; ++x) expected.at(x, y) = fillPixel;
        }
        for (int x = 6; x < 8; ++x) expected.at(x, 6) = penPixel;
        EXPECT_TRUE(expected.holds(device));
        DeleteObject(region);
        DeleteObject(second);
        DeleteObject(other);
    }
}

TEST_F(ShapeTest, RegionsAreCutAtTheDevice) {
    Device device(4, 4);
    SelectObject(device, GetStockObject(WHITE_BRUSH));
    HRGN region = CreateRectRgn(-100, -100, 2, 2);
    EXPECT_TRUE(PaintRgn(device, region));
    EXPECT_EQ(device.picture(), (std::vector<std::string>{"##..", "##..", "....", "...."}));
    DeleteObject(region);
    region = CreateRectRgn(3, 3, 100, 100);
    EXPECT_TRUE(PaintRgn(device, region));
    EXPECT_EQ(device.picture(), (std::vector<std::string>{"##..", "##..", "....", "...#"}));
    DeleteObject(region);
}

TEST_F(ShapeTest, RegionsCombine) {
    Random random(20240907);
    for (int round = 0; round < 200; ++round) {
        const auto rect = [&] {
            return CreateRectRgn(random.integer(0, 9), random.integer(0, 9), random.integer(0, 9),
                                 random.integer(0, 9));
        };
        HRGN a = rect();
        HRGN b = rect();
        HRGN c = rect();
        const int firstMode = random.integer(RGN_AND, RGN_DIFF);
        const int mode = random.integer(RGN_AND, RGN_COPY);
        HRGN ab = CreateRectRgn(0, 0, 0, 0);
        HRGN out = CreateRectRgn(0, 0, 0, 0);
        EXPECT_NE(CombineRgn(ab, a, b, firstMode), ERROR);
        const int complexity = CombineRgn(out, ab, c, mode);
        bool any = false;
        RECT box{99, 99, -1, -1};
        for (int y = 0; y < 10; ++y) {
            for (int x = 0; x < 10; ++x) {
                const auto operate = [](int operation, bool first, bool second) {
                    switch (operation) {
                        case RGN_AND:
                            return first && second;
                        case RGN_OR:
                            return first || second;
                        case RGN_XOR:
                            return first != second;
                        case RGN_DIFF:
                            return first && !second;
                        default:
                            return first;
                    }
                };
                const bool first = operate(firstMode, PtInRegion(a, x, y) != 0, PtInRegion(b, x, y) != 0);
                const bool expected = operate(mode, first, PtInRegion(c, x, y) != 0);
                ASSERT_EQ(PtInRegion(out, x, y) != 0, expected) << "round " << round;
                if (!expected) continue;
                any = true;
                box = {std::min<LONG>(box.left, x), std::min<LONG>(box.top, y), std::max<LONG>(box.right, x + 1),
                       std::max<LONG>(box.bottom, y + 1)};
            }
        }
        RECT told{};
        EXPECT_EQ(GetRgnBox(out, &told), complexity);
        EXPECT_EQ(complexity == NULLREGION, !any);
        if (any) {
            EXPECT_EQ(told.left, box.left);
            EXPECT_EQ(told.top, box.top);
            EXPECT_EQ(told.right, box.right);
            EXPECT_EQ(told.bottom, box.bottom);
        }
        HRGN moved = CreateRectRgn(0, 0, 0, 0);
        EXPECT_EQ(CombineRgn(moved, out, nullptr, RGN_COPY), complexity);
        EXPECT_TRUE(EqualRgn(out, moved));
        EXPECT_EQ(OffsetRgn(moved, 3, -2), complexity);
        EXPECT_EQ(EqualRgn(out, moved) != 0, !any);
        for (HRGN region : {a, b, c, ab, out, moved}) EXPECT_TRUE(DeleteObject(region));
    }
}

TEST_F(ShapeTest, TheClipBoxIsWhatCanBeDrawnOn) {
    Device device(10, 8);
    RECT box{};
    EXPECT_EQ(GetClipBox(device, &box), SIMPLEREGION);
    EXPECT_EQ(box.right, 10);
    EXPECT_EQ(box.bottom, 8);
    EXPECT_EQ(IntersectClipRect(device, 2, 3, 99, 5), SIMPLEREGION);
    EXPECT_EQ(GetClipBox(device, &box), SIMPLEREGION);
    EXPECT_EQ(box.left, 2);
    EXPECT_EQ(box.top, 3);
    EXPECT_EQ(box.right, 10);
    EXPECT_EQ(box.bottom, 5);
    EXPECT_EQ(IntersectClipRect(device, 50, 50, 60, 60), NULLREGION);
    EXPECT_TRUE(PatBlt(device, 0, 0, 10, 8, WHITENESS));
    EXPECT_EQ(device.picture(), std::vector<std::string>(8, ".........."));
}

TEST_F(ShapeTest, TheClipBoxIsLogical) {
    const auto boxOf = [](HDC dc) {
        RECT box{};
        EXPECT_EQ(GetClipBox(dc, &box), SIMPLEREGION);
        return std::vector<LONG>{box.left, box.top, box.right, box.bottom};
    };
    Device device(12, 10);
    SetViewportOrgEx(device, 3, 2, nullptr);
    SetWindowOrgEx(device, 1, -1, nullptr);
    EXPECT_EQ(boxOf(device), (std::vector<LONG>{-2, -3, 10, 7}));
    EXPECT_EQ(IntersectClipRect(device, 0, 0, 4, 4), SIMPLEREGION);
    EXPECT_EQ(boxOf(device), (std::vector<LONG>{0, 0, 4, 4}));
    SetWindowOrgEx(device, 0, 0, nullptr);
    SetGraphicsMode(device, GM_ADVANCED);
    const XFORM upward{2.0F, 0.0F, 0.0F, -1.0F, 0.0F, 0.0F};
    EXPECT_TRUE(SetWorldTransform(device, &upward));
    EXPECT_EQ(SelectClipRgn(device, nullptr), SIMPLEREGION);
    EXPECT_EQ(boxOf(device), (std::vector<LONG>{-1, 2, 5, -8}));
}

TEST_F(ShapeTest, RectangleHelpers) {
    RECT a{};
    EXPECT_TRUE(SetRect(&a, 1, 2, 5, 6));
    const RECT b{4, 0, 9, 3};
    RECT out{};
    EXPECT_TRUE(IntersectRect(&out, &a, &b));
    EXPECT_EQ(out.left, 4);
    EXPECT_EQ(out.top, 2);
    EXPECT_EQ(out.right, 5);
    EXPECT_EQ(out.bottom, 3);
    const RECT apart{5, 2, 9, 6};
    EXPECT_FALSE(IntersectRect(&out, &a, &apart));
    EXPECT_EQ(out.right, 0);
    EXPECT_TRUE(PtInRect(&a, POINT{1, 2}));
    EXPECT_FALSE(PtInRect(&a, POINT{5, 2}));
    EXPECT_FALSE(IsRectEmpty(&a));
    EXPECT_TRUE(SetRectEmpty(&a));
    EXPECT_TRUE(IsRectEmpty(&a));
}

}  // namespace
}  // namespace zoltest
