// Paths: outlines that are collected between two calls and drawn at once.
#include "platform/gdi/device.h"
#include "support/test_data.h"

#include <functional>

namespace zoltest {
namespace {

class PathTest : public GdiTest {
protected:
    /// A device of 30 by 30 pixels with a red pen and a green brush, on which `draw` has drawn.
    static std::vector<std::uint32_t> pixelsOf(const std::function<void(HDC)>& draw) {
        Device device(30, 30);
        const Using pen(device, CreatePen(PS_SOLID, 0, RGB(255, 0, 0)));
        const Using brush(device, CreateSolidBrush(RGB(0, 255, 0)));
        draw(device);
        std::vector<std::uint32_t> pixels;
        for (int y = 0; y < 30; ++y) {
            for (int x = 0; x < 30; ++x) pixels.push_back(device.pixel(x, y));
        }
        return pixels;
    }

    static void square(HDC dc, int left, int top, int right, int bottom) {
        EXPECT_TRUE(MoveToEx(dc, left, top, nullptr));
        EXPECT_TRUE(LineTo(dc, right, top));
        EXPECT_TRUE(LineTo(dc, right, bottom));
        EXPECT_TRUE(LineTo(dc, left, bottom));
    }

    const std::vector<std::uint32_t> nothing = std::vector<std::uint32_t>(900, 0);
};

TEST_F(PathTest, NothingIsDrawnBeforeThePathIs) {
    EXPECT_EQ(pixelsOf([](HDC dc) {
                  EXPECT_TRUE(BeginPath(dc));
                  const POINT points[] = {{2, 2}, {9, 3}, {20, 12}, {20, 25}};
                  square(dc, 3, 3, 12, 12);
                  EXPECT_TRUE(Polyline(dc, points, 4));
                  EXPECT_TRUE(Polygon(dc, points, 4));
                  EXPECT_TRUE(PolyBezier(dc, points, 4));
                  EXPECT_TRUE(Rectangle(dc, 1, 1, 9, 9));
                  EXPECT_TRUE(Ellipse(dc, 1, 1, 9, 9));
                  EXPECT_TRUE(CloseFigure(dc));
                  EXPECT_TRUE(EndPath(dc));
              }),
              nothing);
}

TEST_F(PathTest, AStrokedPathLooksLikeItsLines) {
    const POINT points[] = {{2, 2}, {25, 7}, {11, 28}, {4, 9}};
    EXPECT_EQ(pixelsOf([&](HDC dc) {
                  EXPECT_TRUE(BeginPath(dc));
                  EXPECT_TRUE(MoveToEx(dc, points[0].x, points[0].y, nullptr));
                  for (const POINT p : {points[1], points[2], points[3]}) EXPECT_TRUE(LineTo(dc, p.x, p.y));
                  EXPECT_TRUE(EndPath(dc));
                  EXPECT_TRUE(StrokePath(dc));
              }),
              pixelsOf([&](HDC dc) { EXPECT_TRUE(Polyline(dc, points, 4)); }));
    EXPECT_EQ(pixelsOf([&](HDC dc) {
                  EXPECT_TRUE(BeginPath(dc));
                  EXPECT_TRUE(PolyBezier(dc, points, 4));
                  EXPECT_TRUE(EndPath(dc));
                  EXPECT_TRUE(StrokePath(dc));
              }),
              pixelsOf([&](HDC dc) { EXPECT_TRUE(PolyBezier(dc, points, 4)); }));
}

TEST_F(PathTest, AFilledAndStrokedPathLooksLikeAPolygon) {
    Random random(20250301);
    for (int round = 0; round < 100; ++round) {
        std::vector<POINT> points;
        for (int i = random.integer(3, 8); i > 0; --i) {
            points.push_back({random.integer(-5, 35), random.integer(-5, 35)});
        }
        const int mode = random.chance(0.5) ? ALTERNATE : WINDING;
        const bool closes = random.chance(0.5);
        const auto begin = [&](HDC dc) {
            SetPolyFillMode(dc, mode);
            EXPECT_TRUE(BeginPath(dc));
            EXPECT_TRUE(MoveToEx(dc, points[0].x, points[0].y, nullptr));
            for (std::size_t i = 1; i < points.size(); ++i) EXPECT_TRUE(LineTo(dc, points[i].x, points[i].y));
            if (closes) CloseFigure(dc);
            EXPECT_TRUE(EndPath(dc));
        };
        const auto polygon = [&](HDC dc) {
            SetPolyFillMode(dc, mode);
            EXPECT_TRUE(Polygon(dc, points.data(), static_cast<int>(points.size())));
        };
        ASSERT_EQ(pixelsOf([&](HDC dc) {
                      begin(dc);
                      EXPECT_TRUE(StrokeAndFillPath(dc));
                  }),
                  pixelsOf(polygon))
            << round;
        ASSERT_EQ(pixelsOf([&](HDC dc) {
                      begin(dc);
                      EXPECT_TRUE(FillPath(dc));
                  }),
                  pixelsOf([&](HDC dc) {
                      const HGDIOBJ pen = SelectObject(dc, GetStockObject(NULL_PEN));
                      polygon(dc);
                      SelectObject(dc, pen);
                  }))
            << round;
    }
}

TEST_F(PathTest, FiguresFillTogether) {
    const auto filled = [](int mode, bool sameWay) {
        return pixelsOf([&](HDC dc) {
            SetPolyFillMode(dc, mode);
            EXPECT_TRUE(BeginPath(dc));
            square(dc, 2, 2, 22, 22);
            EXPECT_TRUE(CloseFigure(dc));
            sameWay ? square(dc, 8, 8, 16, 16) : square(dc, 16, 8, 8, 16);
            EXPECT_TRUE(CloseFigure(dc));
            EXPECT_TRUE(EndPath(dc));
            EXPECT_TRUE(FillPath(dc));
        });
    };
    const std::size_t middle = 12 * 30 + 12;
    const std::size_t ring = 4 * 30 + 4;
    for (const bool sameWay : {false, true}) {
        EXPECT_EQ(filled(ALTERNATE, sameWay)[middle], 0U);
        EXPECT_EQ(filled(ALTERNATE, sameWay)[ring], 0x0000FF00U);
        EXPECT_EQ(filled(WINDING, sameWay)[middle], sameWay ? 0x0000FF00U : 0U);
        EXPECT_EQ(filled(WINDING, sameWay)[ring], 0x0000FF00U);
    }
}

TEST_F(PathTest, RectanglesAndEllipsesRunCounterclockwise) {
    // Around a square the windings of two figures add up, or cancel where they run in opposite directions.
    const auto middleOf = [](bool round, bool clockwise) {
        return pixelsOf([&](HDC dc) {
            SetPolyFillMode(dc, WINDING);
            EXPECT_TRUE(BeginPath(dc));
            clockwise ? square(dc, 2, 2, 26, 26) : square(dc, 26, 2, 2, 26);
            EXPECT_TRUE(CloseFigure(dc));
            EXPECT_TRUE(round ? Ellipse(dc, 6, 6, 22, 22) : Rectangle(dc, 6, 6, 22, 22));
            EXPECT_TRUE(EndPath(dc));
            EXPECT_TRUE(FillPath(dc));
        })[14 * 30 + 14];
    };
    for (const bool round : {false, true}) {
        EXPECT_EQ(middleOf(round, true), 0U) << round;
        EXPECT_EQ(middleOf(round, false), 0x0000FF00U) << round;
    }
}

TEST_F(PathTest, APenInsideTheFrameDoesNotMoveThePath) {
    const auto stroked = [](int style) {
        return pixelsOf([&](HDC dc) {
            const HGDIOBJ before = SelectObject(dc, CreatePen(style, 6, RGB(0, 0, 255)));
            EXPECT_TRUE(BeginPath(dc));
            EXPECT_TRUE(Rectangle(dc, 6, 6, 22, 22));
            EXPECT_TRUE(EndPath(dc));
            EXPECT_TRUE(StrokePath(dc));
            DeleteObject(SelectObject(dc, before));
        });
    };
    EXPECT_EQ(stroked(PS_INSIDEFRAME), stroked(PS_SOLID));
}

TEST_F(PathTest, ABracketWithinABracketChangesNothing) {
    const POINT points[] = {{2, 2}, {25, 7}, {11, 28}};
    EXPECT_EQ(pixelsOf([&](HDC dc) {
                  EXPECT_TRUE(BeginPath(dc));
                  EXPECT_TRUE(MoveToEx(dc, 2, 2, nullptr));
                  EXPECT_TRUE(LineTo(dc, 25, 7));
                  EXPECT_TRUE(BeginPath(dc));
                  EXPECT_TRUE(LineTo(dc, 11, 28));
                  EXPECT_TRUE(EndPath(dc));
                  EXPECT_TRUE(StrokePath(dc));
              }),
              pixelsOf([&](HDC dc) { EXPECT_TRUE(Polyline(dc, points, 3)); }));
}

TEST_F(PathTest, ALineAfterAClosedFigureBeginsAnother) {
    const POINT closed[] = {{5, 5}, {20, 5}, {20, 20}, {5, 20}, {5, 5}};
    EXPECT_EQ(pixelsOf([](HDC dc) {
                  EXPECT_TRUE(BeginPath(dc));
                  square(dc, 5, 5, 20, 20);
                  EXPECT_TRUE(CloseFigure(dc));
                  EXPECT_TRUE(LineTo(dc, 12, 28));
                  EXPECT_TRUE(EndPath(dc));
                  EXPECT_TRUE(StrokePath(dc));
              }),
              pixelsOf([&](HDC dc) {
                  EXPECT_TRUE(Polyline(dc, closed, 5));
                  EXPECT_TRUE(MoveToEx(dc, 5, 20, nullptr));
                  EXPECT_TRUE(LineTo(dc, 12, 28));
              }));
}

TEST_F(PathTest, AMoveBeginsAnotherFigure) {
    EXPECT_EQ(pixelsOf([](HDC dc) {
                  MoveToEx(dc, 4, 4, nullptr);
                  EXPECT_TRUE(BeginPath(dc));
                  EXPECT_TRUE(LineTo(dc, 9, 4));
                  EXPECT_TRUE(MoveToEx(dc, 4, 8, nullptr));
                  EXPECT_TRUE(LineTo(dc, 9, 8));
                  EXPECT_TRUE(EndPath(dc));
                  EXPECT_TRUE(StrokePath(dc));
              }),
              pixelsOf([](HDC dc) {
                  MoveToEx(dc, 4, 4, nullptr);
                  LineTo(dc, 9, 4);
                  MoveToEx(dc, 4, 8, nullptr);
                  LineTo(dc, 9, 8);
              }));
}

TEST_F(PathTest, ClosingJoinsTheEndToTheBeginning) {
    const POINT square4[] = {{5, 5}, {20, 5}, {20, 20}, {5, 20}, {5, 5}};
    EXPECT_EQ(pixelsOf([](HDC dc) {
                  EXPECT_TRUE(BeginPath(dc));
                  square(dc, 5, 5, 20, 20);
                  EXPECT_TRUE(CloseFigure(dc));
                  EXPECT_TRUE(EndPath(dc));
                  EXPECT_TRUE(StrokePath(dc));
              }),
              pixelsOf([&](HDC dc) { EXPECT_TRUE(Polyline(dc, square4, 5)); }));
}

TEST_F(PathTest, PensBrushesAndModesCountWhenItIsDrawn) {
    EXPECT_EQ(pixelsOf([](HDC dc) {
                  const HGDIOBJ pen = SelectObject(dc, GetStockObject(WHITE_PEN));
                  const HGDIOBJ brush = SelectObject(dc, GetStockObject(NULL_BRUSH));
                  EXPECT_TRUE(BeginPath(dc));
                  square(dc, 5, 5, 20, 20);
                  EXPECT_TRUE(EndPath(dc));
                  SelectObject(dc, pen);
                  SelectObject(dc, brush);
                  EXPECT_TRUE(StrokeAndFillPath(dc));
              }),
              pixelsOf([](HDC dc) {
                  const POINT points[] = {{5, 5}, {20, 5}, {20, 20}, {5, 20}};
                  EXPECT_TRUE(Polygon(dc, points, 4));
              }));
}

TEST_F(PathTest, TheTransformationCountsWhenItIsCollected) {
    EXPECT_EQ(pixelsOf([](HDC dc) {
                  SetViewportOrgEx(dc, 4, 6, nullptr);
                  EXPECT_TRUE(BeginPath(dc));
                  square(dc, 1, 1, 10, 10);
                  EXPECT_TRUE(EndPath(dc));
                  SetViewportOrgEx(dc, 0, 0, nullptr);
                  EXPECT_TRUE(StrokePath(dc));
              }),
              pixelsOf([](HDC dc) { square(dc, 5, 7, 14, 16); }));
}

TEST_F(PathTest, DrawingConsumesIt) {
    Device device(4, 4);
    EXPECT_FALSE(StrokePath(device));
    EXPECT_FALSE(FillPath(device));
    EXPECT_FALSE(StrokeAndFillPath(device));
    EXPECT_FALSE(EndPath(device));
    EXPECT_FALSE(CloseFigure(device));
    for (const auto draw : {&StrokePath, &FillPath, &StrokeAndFillPath}) {
        EXPECT_TRUE(BeginPath(device));
        square(device, 0, 0, 2, 2);
        EXPECT_FALSE(draw(device));  // not complete yet
        EXPECT_TRUE(EndPath(device));
        EXPECT_TRUE(draw(device));
        EXPECT_FALSE(draw(device));
    }
}

TEST_F(PathTest, AnAbandonedPathIsGone) {
    EXPECT_EQ(pixelsOf([](HDC dc) {
                  EXPECT_TRUE(BeginPath(dc));
                  square(dc, 5, 5, 20, 20);
                  EXPECT_TRUE(AbortPath(dc));
                  EXPECT_FALSE(EndPath(dc));
                  EXPECT_TRUE(BeginPath(dc));
                  square(dc, 5, 5, 20, 20);
                  EXPECT_TRUE(EndPath(dc));
                  EXPECT_TRUE(BeginPath(dc));  // discards the complete one
                  EXPECT_TRUE(EndPath(dc));
                  StrokePath(dc);
                  EXPECT_TRUE(AbortPath(dc));
              }),
              nothing);
}

TEST_F(PathTest, AClosedCurveIsFilledUpToItsOutline) {
    // A circle of radius 10 around (15, 15) in four pieces.
    const POINT circle[] = {{25, 15}, {25, 21}, {21, 25}, {15, 25}, {9, 25}, {5, 21}, {5, 15},
                            {5, 9},   {9, 5},   {15, 5},  {21, 5},  {25, 9}, {25, 15}};
    const auto pixels = pixelsOf([&](HDC dc) {
        EXPECT_TRUE(BeginPath(dc));
        EXPECT_TRUE(PolyBezier(dc, circle, 13));
        EXPECT_TRUE(EndPath(dc));
        EXPECT_TRUE(StrokeAndFillPath(dc));
    });
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 30; ++x) {
            const int squared = (x - 15) * (x - 15) + (y - 15) * (y - 15);
            const std::uint32_t pixel = pixels[static_cast<std::size_t>(y * 30 + x)];
            if (squared > 8 * 8 && squared < 12 * 12) continue;
            EXPECT_EQ(pixel, squared < 100 ? 0x0000FF00U : 0U) << x << ", " << y;
        }
    }
    for (const auto& [x, y] : {std::pair(25, 15), {5, 15}, {15, 25}, {15, 5}}) {
        EXPECT_EQ(pixels[static_cast<std::size_t>(y * 30 + x)], 0x00FF0000U) << x << ", " << y;
    }
}

TEST_F(PathTest, TextsAreTheOutlinesOfTheirLetters) {
    constexpr int width = 900;
    const auto ink = [](bool asPath) {
        Device device(width, 60);
        const Using font(device, CreateFontW(-40, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0,
                                             NONANTIALIASED_QUALITY, 0, L"DejaVu Sans"));
        SetTextColor(device, RGB(255, 255, 255));
        SetBkMode(device, TRANSPARENT);
        if (asPath) BeginPath(device);
        EXPECT_TRUE(TextOutW(device, 10, 5, L"Of forty letters, none is left out: OHe", 39));
        if (!asPath) return device.picture();
        EXPECT_EQ(device.picture(), std::vector<std::string>(60, std::string(width, '.')));
        EXPECT_TRUE(EndPath(device));
        EXPECT_TRUE(FillPath(device));  // with the white brush that a new context has
        return device.picture();
    };
    const auto text = ink(false);
    const auto path = ink(true);
    int both = 0;
    int one = 0;
    for (std::size_t y = 0; y < 60; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            both += text[y][x] == '#' && path[y][x] == '#' ? 1 : 0;
            one += text[y][x] != path[y][x] ? 1 : 0;
        }
    }
    EXPECT_GT(both, 4000);
    EXPECT_LT(one, both / 2);  // along the edges
}

}  // namespace
}  // namespace zoltest
