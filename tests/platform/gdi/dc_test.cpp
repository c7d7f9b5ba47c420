// Device contexts: what they keep, what they select, how they map coordinates, and wrong handles.
#include "platform/gdi/device.h"

namespace zoltest {
namespace {

class DcTest : public GdiTest {};

TEST_F(DcTest, ANewOneIsBlackOnWhite) {
    HDC dc = CreateCompatibleDC(nullptr);
    ASSERT_NE(dc, nullptr);
    EXPECT_EQ(GetTextColor(dc), RGB(0, 0, 0));
    EXPECT_EQ(GetBkColor(dc), RGB(255, 255, 255));
    EXPECT_EQ(GetBkMode(dc), OPAQUE);
    EXPECT_EQ(GetMapMode(dc), MM_TEXT);
    EXPECT_EQ(GetGraphicsMode(dc), GM_COMPATIBLE);
    EXPECT_EQ(GetCurrentObject(dc, OBJ_PEN), GetStockObject(BLACK_PEN));
    EXPECT_EQ(GetCurrentObject(dc, OBJ_BRUSH), GetStockObject(WHITE_BRUSH));
    EXPECT_EQ(GetCurrentObject(dc, OBJ_FONT), GetStockObject(SYSTEM_FONT));
    EXPECT_EQ(GetDeviceCaps(dc, TECHNOLOGY), DT_RASDISPLAY);
    EXPECT_EQ(GetDeviceCaps(dc, ASPECTX), GetDeviceCaps(dc, ASPECTY));
    EXPECT_EQ(GetDeviceCaps(dc, BITSPIXEL), 32);
    EXPECT_EQ(GetDeviceCaps(dc, PLANES), 1);
    EXPECT_EQ(GetDeviceCaps(dc, LOGPIXELSX), 96);
    EXPECT_EQ(GetDeviceCaps(dc, LOGPIXELSY), 96);
    // Drawing on its one-pixel bitmap is nobody's failure.
    EXPECT_TRUE(PatBlt(dc, 0, 0, 5, 5, BLACKNESS));
    EXPECT_TRUE(DeleteDC(dc));
}

TEST_F(DcTest, SelectingGivesBackWhatWasSelected) {
    HDC dc = CreateCompatibleDC(nullptr);
    HPEN pen = CreatePen(PS_SOLID, 0, 0);
    HBRUSH brush = CreateSolidBrush(0);
    HGDIOBJ firstPen = SelectObject(dc, pen);
    EXPECT_EQ(firstPen, GetStockObject(BLACK_PEN));
    EXPECT_EQ(GetCurrentObject(dc, OBJ_PEN), pen);
    HGDIOBJ firstBrush = SelectObject(dc, brush);
    EXPECT_EQ(firstBrush, GetStockObject(WHITE_BRUSH));
    EXPECT_EQ(SelectObject(dc, firstPen), pen);
    EXPECT_EQ(SelectObject(dc, firstBrush), brush);
    EXPECT_TRUE(DeleteObject(pen));
    EXPECT_TRUE(DeleteObject(brush));
    EXPECT_TRUE(DeleteDC(dc));
}

TEST_F(DcTest, ABitmapIsInOneContextAtATime) {
    Device device(2, 2);
    HDC other = CreateCompatibleDC(nullptr);
    EXPECT_EQ(SelectObject(other, device.bitmap()), nullptr);
    EXPECT_EQ(GetCurrentObject(device, OBJ_BITMAP), device.bitmap());
    EXPECT_EQ(SelectObject(device, device.bitmap()), device.bitmap());
    EXPECT_TRUE(DeleteDC(other));
}

TEST_F(DcTest, DeletingTheContextFreesItsBitmap) {
    void* bits = nullptr;
    const BITMAPINFO info = dibInfo(2, 2);
    HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    HDC dc = CreateCompatibleDC(nullptr);
    SelectObject(dc, bitmap);
    EXPECT_TRUE(DeleteDC(dc));
    EXPECT_TRUE(DeleteObject(bitmap));
}

TEST_F(DcTest, StockObjectsOutliveTheirDeletion) {
    HGDIOBJ brush = GetStockObject(GRAY_BRUSH);
    ASSERT_NE(brush, nullptr);
    EXPECT_TRUE(DeleteObject(brush));
    EXPECT_EQ(GetStockObject(GRAY_BRUSH), brush);
    LOGBRUSH record{};
    EXPECT_EQ(GetObjectW(brush, sizeof(record), &record), static_cast<int>(sizeof(record)));
    EXPECT_EQ(record.lbColor, RGB(128, 128, 128));
    EXPECT_EQ(GetStockObject(-1), nullptr);
    EXPECT_EQ(GetStockObject(1000), nullptr);
}

TEST_F(DcTest, SaveAndRestoreCoverEverything) {
    Device device(8, 8);
    HPEN pen = CreatePen(PS_SOLID, 0, 0);
    SetTextColor(device, RGB(1, 2, 3));
    const int level = SaveDC(device);
    EXPECT_EQ(level, 1);
    SetTextColor(device, RGB(4, 5, 6));
    SetBkColor(device, RGB(7, 8, 9));
    SetBkMode(device, TRANSPARENT);
    SelectObject(device, pen);
    MoveToEx(device, 5, 6, nullptr);
    IntersectClipRect(device, 1, 1, 2, 2);
    SetViewportOrgEx(device, 3, 3, nullptr);
    EXPECT_EQ(SaveDC(device), 2);
    SetTextColor(device, RGB(9, 9, 9));
    EXPECT_TRUE(RestoreDC(device, -1));
    EXPECT_EQ(GetTextColor(device), RGB(4, 5, 6));
    EXPECT_TRUE(RestoreDC(device, level));
    EXPECT_EQ(GetTextColor(device), RGB(1, 2, 3));
    EXPECT_EQ(GetBkColor(device), RGB(255, 255, 255));
    EXPECT_EQ(GetBkMode(device), OPAQUE);
    EXPECT_EQ(GetCurrentObject(device, OBJ_PEN), GetStockObject(BLACK_PEN));
    POINT at{9, 9};
    EXPECT_TRUE(GetCurrentPositionEx(device, &at));
    EXPECT_EQ(at.x, 0);
    EXPECT_TRUE(GetViewportOrgEx(device, &at));
    EXPECT_EQ(at.x, 0);
    RECT box{};
    EXPECT_EQ(GetClipBox(device, &box), SIMPLEREGION);
    EXPECT_EQ(box.right, 8);
    EXPECT_FALSE(RestoreDC(device, 1));
    EXPECT_FALSE(RestoreDC(device, -1));
    EXPECT_TRUE(DeleteObject(pen));
}

TEST_F(DcTest, ModesRefuseUnknownValues) {
    Device device(1, 1);
    EXPECT_EQ(SetMapMode(device, 0), 0);
    EXPECT_EQ(SetMapMode(device, 9), 0);
    EXPECT_EQ(SetGraphicsMode(device, 3), 0);
    EXPECT_EQ(GetMapMode(device), MM_TEXT);
    EXPECT_EQ(GetGraphicsMode(device), GM_COMPATIBLE);
}

// ------------------------------------------------------------------------------------------------ coordinates

TEST_F(DcTest, OriginsMoveWhatIsDrawn) {
    Device device(8, 8);
    POINT old{7, 7};
    EXPECT_TRUE(SetViewportOrgEx(device, 3, 2, &old));
    EXPECT_EQ(old.x, 0);
    EXPECT_TRUE(SetWindowOrgEx(device, 1, 1, nullptr));
    Expected expected(device);
    EXPECT_TRUE(PatBlt(device, 1, 1, 2, 1, WHITENESS));
    HRGN region = CreateRectRgn(1, 3, 2, 4);
    EXPECT_TRUE(PaintRgn(device, region));
    EXPECT_TRUE(DeleteObject(region));
    expected.at(3, 2) = expected.at(4, 2) = 0xFFFFFFFF;
    expected.at(3, 4) = 0x00FFFFFF;
    EXPECT_TRUE(expected.holds(device));
}

TEST_F(DcTest, AWorldTransformNeedsTheAdvancedMode) {
    Device device(8, 8);
    const XFORM shift{1.0F, 0.0F, 0.0F, 1.0F, 2.0F, 1.0F};
    EXPECT_FALSE(SetWorldTransform(device, &shift));
    EXPECT_EQ(SetGraphicsMode(device, GM_ADVANCED), GM_COMPATIBLE);
    EXPECT_TRUE(SetWorldTransform(device, &shift));
    XFORM told{};
    EXPECT_TRUE(GetWorldTransform(device, &told));
    EXPECT_EQ(told.eDx, 2.0F);
    SelectObject(device, GetStockObject(WHITE_PEN));
    EXPECT_TRUE(MoveToEx(device, 0, 0, nullptr));
    EXPECT_TRUE(LineTo(device, 3, 0));
    EXPECT_EQ(device.picture()[1], "..###...");
    // The transform stays in force in the mode that cannot set one.
    EXPECT_EQ(SetGraphicsMode(device, GM_COMPATIBLE), GM_ADVANCED);
    EXPECT_TRUE(MoveToEx(device, 0, 2, nullptr));
    EXPECT_TRUE(LineTo(device, 3, 2));
    EXPECT_EQ(device.picture()[3], "..###...");
    EXPECT_TRUE(ModifyWorldTransform(device, nullptr, MWT_IDENTITY));
    EXPECT_TRUE(GetWorldTransform(device, &told));
    EXPECT_EQ(told.eDx, 0.0F);
    EXPECT_EQ(SetGraphicsMode(device, GM_ADVANCED), GM_COMPATIBLE);
    const XFORM flat{1.0F, 1.0F, 1.0F, 1.0F, 0.0F, 0.0F};
    EXPECT_FALSE(SetWorldTransform(device, &flat));
}

TEST_F(DcTest, QuarterTurnsAreExact) {
    Device device(9, 9);
    SelectObject(device, GetStockObject(WHITE_PEN));
    SetGraphicsMode(device, GM_ADVANCED);
    SetViewportOrgEx(device, 4, 4, nullptr);
    const XFORM turn{0.0F, 1.0F, -1.0F, 0.0F, 0.0F, 0.0F};
    EXPECT_TRUE(SetWorldTransform(device, &turn));
    MoveToEx(device, 0, 0, nullptr);
    EXPECT_TRUE(LineTo(device, 4, 0));
    for (int y = 0; y < 9; ++y) {
        for (int x = 0; x < 9; ++x) EXPECT_EQ(device.pixel(x, y) != 0, x == 4 && y >= 4 && y < 8) << x << ", " << y;
    }
}

TEST_F(DcTest, WorldTransformsMultiplyFromBothSides) {
    Device device(1, 1);
    SetGraphicsMode(device, GM_ADVANCED);
    const XFORM scale{2.0F, 0.0F, 0.0F, 3.0F, 0.0F, 0.0F};
    const XFORM shift{1.0F, 0.0F, 0.0F, 1.0F, 5.0F, 7.0F};
    XFORM told{};
    EXPECT_TRUE(SetWorldTransform(device, &scale));
    EXPECT_TRUE(ModifyWorldTransform(device, &shift, MWT_RIGHTMULTIPLY));
    EXPECT_TRUE(GetWorldTransform(device, &told));
    EXPECT_EQ(told.eDx, 5.0F);
    EXPECT_TRUE(SetWorldTransform(device, &scale));
    EXPECT_TRUE(ModifyWorldTransform(device, &shift, MWT_LEFTMULTIPLY));
    EXPECT_TRUE(GetWorldTransform(device, &told));
    EXPECT_EQ(told.eDx, 10.0F);
    EXPECT_EQ(told.eDy, 21.0F);
    EXPECT_FALSE(ModifyWorldTransform(device, &shift, 9));
}

TEST_F(DcTest, MetricModesCountUpward) {
    Device device(120, 120);
    EXPECT_EQ(SetMapMode(device, MM_LOENGLISH), MM_TEXT);
    SetViewportOrgEx(device, 10, 100, nullptr);
    SelectObject(device, GetStockObject(WHITE_PEN));
    MoveToEx(device, 0, 0, nullptr);
    EXPECT_TRUE(LineTo(device, 0, 90));
    EXPECT_EQ(device.pixel(10, 100), 0x00FFFFFFU);
    EXPECT_EQ(device.pixel(10, 30), 0x00FFFFFFU);  // 90 hundredths of an inch are some 86 pixels
    EXPECT_EQ(device.pixel(10, 101), 0U);
    EXPECT_EQ(device.pixel(10, 8), 0U);
}

TEST_F(DcTest, TheWorldTurnsInsideThePageAndThePageGoesToTheViewport) {
    // From (50, 40): level to the right in the page's units, and upward when the world is turned anticlockwise.
    const auto drawn = [](const XFORM& world) {
        Device device(100, 80);
        const Using pen(device, CreatePen(PS_SOLID, 0, RGB(255, 0, 0)));
        EXPECT_EQ(SetGraphicsMode(device, GM_ADVANCED), GM_COMPATIBLE);
        EXPECT_TRUE(SetViewportOrgEx(device, 50, 40, nullptr));
        EXPECT_EQ(SetMapMode(device, MM_LOENGLISH), MM_TEXT);
        EXPECT_TRUE(SetWorldTransform(device, &world));
        EXPECT_TRUE(MoveToEx(device, 0, 0, nullptr));
        EXPECT_TRUE(LineTo(device, 25, 0));
        return device.picture();
    };
    const auto level = drawn({1.0F, 0.0F, 0.0F, 1.0F, 0.0F, 0.0F});
    const auto turned = drawn({0.0F, 1.0F, -1.0F, 0.0F, 0.0F, 0.0F});
    int length = 0;
    while (length < 40 && level[40][static_cast<std::size_t>(50 + length)] == '#') ++length;
    EXPECT_GT(length, 10);
    EXPECT_LT(length, 40);
    for (int y = 0; y < 80; ++y) {
        for (int x = 0; x < 100; ++x) {
            const auto row = static_cast<std::size_t>(y);
            const auto column = static_cast<std::size_t>(x);
            ASSERT_EQ(level[row][column] == '#', y == 40 && x >= 50 && x < 50 + length) << x << ", " << y;
            if (turned[row][column] == '#') {
                ASSERT_TRUE(x == 50 && y <= 40 && y > 40 - length - 1) << x << ", " << y;
            }
        }
    }
    EXPECT_EQ(turned[static_cast<std::size_t>(40 - length + 2)][50], '#');
}

TEST_F(DcTest, FreeExtentsScale) {
    Device device(30, 30);
    EXPECT_EQ(SetMapMode(device, MM_ANISOTROPIC), MM_TEXT);
    EXPECT_TRUE(SetWindowExtEx(device, 10, 10, nullptr));
    EXPECT_TRUE(SetViewportExtEx(device, 30, 20, nullptr));
    EXPECT_TRUE(PatBlt(device, 1, 1, 2, 3, WHITENESS));
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 30; ++x) {
            EXPECT_EQ(device.pixel(x, y) != 0, x >= 3 && x < 9 && y >= 2 && y < 8) << x << ", " << y;
        }
    }
}

TEST_F(DcTest, TheFreestModeGoesOnWithTheExtentsOfTheOneBefore) {
    const auto pictureIn = [](std::initializer_list<int> modes) {
        Device device(60, 60);
        SelectObject(device, GetStockObject(WHITE_PEN));
        SetViewportOrgEx(device, 5, 50, nullptr);
        for (const int mode : modes) EXPECT_NE(SetMapMode(device, mode), 0);
        EXPECT_TRUE(MoveToEx(device, 0, 0, nullptr));
        EXPECT_TRUE(LineTo(device, 30, 40));
        return device.picture();
    };
    EXPECT_EQ(pictureIn({MM_LOENGLISH, MM_ANISOTROPIC}), pictureIn({MM_LOENGLISH}));
    EXPECT_NE(pictureIn({MM_LOENGLISH}), pictureIn({MM_TEXT}));
    EXPECT_EQ(pictureIn({MM_LOENGLISH, MM_TEXT, MM_ANISOTROPIC}), pictureIn({MM_TEXT}));
    EXPECT_EQ(pictureIn({MM_ISOTROPIC}), pictureIn({MM_LOMETRIC}));
}

TEST_F(DcTest, ATransformationHasTheXformsPrecision) {
    Device device(4, 10);
    SelectObject(device, GetStockObject(WHITE_PEN));
    EXPECT_EQ(SetMapMode(device, MM_ANISOTROPIC), MM_TEXT);
    EXPECT_TRUE(SetWindowExtEx(device, 1, 6, nullptr));
    SetViewportOrgEx(device, 0, 50, nullptr);
    // -261 / 6 is -43.5, but the float that is nearest to 1 / 6 is a little larger than that.
    EXPECT_TRUE(MoveToEx(device, 0, -261, nullptr));
    EXPECT_TRUE(LineTo(device, 4, -261));
    for (int y = 0; y < 10; ++y) EXPECT_EQ(device.pixel(2, y) != 0, y == 6) << y;
}

TEST_F(DcTest, ExtentsAreSetInTheFreeModesOnlyAndAreNeverZero) {
    Device device(4, 4);
    SIZE old{};
    EXPECT_TRUE(SetWindowExtEx(device, 7, 7, &old));
    EXPECT_EQ(old.cx, 1);
    EXPECT_EQ(SetMapMode(device, MM_ANISOTROPIC), MM_TEXT);
    EXPECT_TRUE(SetWindowExtEx(device, 2, 3, &old));
    EXPECT_EQ(old.cx, 1);
    EXPECT_EQ(old.cy, 1);
    EXPECT_FALSE(SetWindowExtEx(device, 0, 3, nullptr));
    EXPECT_FALSE(SetViewportExtEx(device, 3, 0, nullptr));
    EXPECT_TRUE(SetWindowExtEx(device, 1, 1, &old));
    EXPECT_EQ(old.cx, 2);
    EXPECT_EQ(old.cy, 3);
    EXPECT_EQ(SetMapMode(device, MM_TEXT), MM_ANISOTROPIC);
    EXPECT_TRUE(SetViewportExtEx(device, 5, 5, &old));
    EXPECT_EQ(old.cx, 1);
}

TEST_F(DcTest, UnitsOfTheIsotropicModeAreEquallyLongInBothDirections) {
    const struct {
        SIZE window, viewport;
        int width, height;  // of 8 by 8 units, in pixels
    } cases[] = {{{10, 10}, {40, 40}, 32, 32},
                 {{10, 10}, {40, 20}, 16, 16},
                 {{10, 10}, {20, 40}, 16, 16},
                 {{10, 20}, {40, 40}, 16, 16},
                 {{8, 8}, {-30, 20}, 20, 20}};
    for (const auto& c : cases) {
        Device device(64, 64);
        SelectObject(device, GetStockObject(NULL_PEN));
        EXPECT_EQ(SetMapMode(device, MM_ISOTROPIC), MM_TEXT);
        EXPECT_TRUE(SetWindowExtEx(device, c.window.cx, c.window.cy, nullptr));
        EXPECT_TRUE(SetViewportExtEx(device, c.viewport.cx, c.viewport.cy, nullptr));
        EXPECT_TRUE(SetViewportOrgEx(device, 32, 0, nullptr));
        EXPECT_TRUE(PatBlt(device, 0, 0, c.viewport.cx < 0 ? -8 : 8, 8, WHITENESS));
        int width = 0;
        int height = 0;
        for (int i = 0; i < 64; ++i) {
            width += device.pixel(i, 0) != 0 ? 1 : 0;
            height += device.pixel(33, i) != 0 ? 1 : 0;
        }
        // Systems differ by one where their pixels are not quite square.
        EXPECT_NEAR(width, c.width, 1) << c.viewport.cx << ", " << c.viewport.cy;
        EXPECT_NEAR(height, c.height, 1) << c.viewport.cx << ", " << c.viewport.cy;
    }
    // However unequal they were, nothing of an extent but its sign is left.
    for (const int sign : {1, -1}) {
        Device device(1, 1);
        SIZE told{};
        EXPECT_EQ(SetMapMode(device, MM_ISOTROPIC), MM_TEXT);
        EXPECT_TRUE(SetWindowExtEx(device, 1, 1000, nullptr));
        EXPECT_TRUE(SetViewportExtEx(device, sign, 1, nullptr));
        EXPECT_TRUE(SetViewportExtEx(device, 1, 1, &told));
        EXPECT_EQ(told.cx, sign);
        EXPECT_EQ(told.cy, 1);
    }
}

// ------------------------------------------------------------------------------------------------ wrong handles

TEST_F(DcTest, NullHandlesFail) {
    std::uint32_t pixels[16] = {};
    const BITMAPINFO info = dibInfo(4, 4);
    const POINT points[] = {{0, 0}, {1, 1}, {2, 2}, {3, 3}};
    HRGN region = CreateRectRgn(0, 0, 1, 1);
    HBRUSH brush = CreateSolidBrush(0);
    POINT point{};
    SIZE size{};
    RECT box{};
    XFORM world{1.0F, 0.0F, 0.0F, 1.0F, 0.0F, 0.0F};
    TEXTMETRICW metrics{};
    HDC none = nullptr;
    EXPECT_FALSE(DeleteDC(none));
    EXPECT_EQ(GetDeviceCaps(none, ASPECTX), 0);
    EXPECT_EQ(SelectObject(none, brush), nullptr);
    EXPECT_EQ(GetCurrentObject(none, OBJ_PEN), nullptr);
    EXPECT_EQ(SaveDC(none), 0);
    EXPECT_FALSE(RestoreDC(none, -1));
    EXPECT_EQ(SetTextColor(none, 0), CLR_INVALID);
    EXPECT_EQ(SetBkColor(none, 0), CLR_INVALID);
    EXPECT_EQ(GetBkColor(none), CLR_INVALID);
    EXPECT_EQ(SetBkMode(none, OPAQUE), 0);
    EXPECT_EQ(GetBkMode(none), 0);
    EXPECT_EQ(SetPolyFillMode(none, ALTERNATE), 0);
    EXPECT_EQ(GetPolyFillMode(none), 0);
    EXPECT_EQ(SetStretchBltMode(none, COLORONCOLOR), 0);
    EXPECT_EQ(GetStretchBltMode(none), 0);
    EXPECT_EQ(SetGraphicsMode(none, GM_ADVANCED), 0);
    EXPECT_EQ(GetGraphicsMode(none), 0);
    EXPECT_FALSE(SetWorldTransform(none, &world));
    EXPECT_FALSE(GetWorldTransform(none, &world));
    EXPECT_FALSE(ModifyWorldTransform(none, &world, MWT_LEFTMULTIPLY));
    EXPECT_EQ(SetMapMode(none, MM_TEXT), 0);
    EXPECT_EQ(GetMapMode(none), 0);
    EXPECT_FALSE(SetViewportOrgEx(none, 0, 0, nullptr));
    EXPECT_FALSE(GetViewportOrgEx(none, &point));
    EXPECT_FALSE(SetWindowOrgEx(none, 0, 0, nullptr));
    EXPECT_FALSE(GetWindowOrgEx(none, &point));
    EXPECT_FALSE(SetViewportExtEx(none, 1, 1, nullptr));
    EXPECT_FALSE(SetWindowExtEx(none, 1, 1, nullptr));
    EXPECT_EQ(SelectClipRgn(none, region), ERROR);
    EXPECT_EQ(IntersectClipRect(none, 0, 0, 1, 1), ERROR);
    EXPECT_EQ(GetClipBox(none, &box), ERROR);
    EXPECT_FALSE(PatBlt(none, 0, 0, 1, 1, BLACKNESS));
    EXPECT_FALSE(BitBlt(none, 0, 0, 1, 1, none, 0, 0, SRCCOPY));
    EXPECT_FALSE(StretchBlt(none, 0, 0, 1, 1, none, 0, 0, 1, 1, SRCCOPY));
    EXPECT_EQ(StretchDIBits(none, 0, 0, 4, 4, 0, 0, 4, 4, pixels, &info, DIB_RGB_COLORS, SRCCOPY), 0);
    EXPECT_FALSE(MoveToEx(none, 0, 0, nullptr));
    EXPECT_FALSE(GetCurrentPositionEx(none, &point));
    EXPECT_FALSE(LineTo(none, 1, 1));
    EXPECT_FALSE(Polyline(none, points, 4));
    EXPECT_FALSE(Polygon(none, points, 4));
    EXPECT_FALSE(PolyBezier(none, points, 4));
    EXPECT_FALSE(Rectangle(none, 0, 0, 1, 1));
    EXPECT_FALSE(Ellipse(none, 0, 0, 1, 1));
    EXPECT_FALSE(BeginPath(none));
    EXPECT_FALSE(EndPath(none));
    EXPECT_FALSE(AbortPath(none));
    EXPECT_FALSE(CloseFigure(none));
    EXPECT_FALSE(StrokePath(none));
    EXPECT_FALSE(FillPath(none));
    EXPECT_FALSE(StrokeAndFillPath(none));
    EXPECT_FALSE(PaintRgn(none, region));
    EXPECT_FALSE(FillRgn(none, region, brush));
    EXPECT_FALSE(TextOutW(none, 0, 0, L"a", 1));
    EXPECT_FALSE(GetTextExtentPoint32W(none, L"a", 1, &size));
    EXPECT_FALSE(GetTextMetricsW(none, &metrics));
    EXPECT_FALSE(DeleteObject(nullptr));
    EXPECT_EQ(GetObjectW(nullptr, sizeof(metrics), &metrics), 0);
    EXPECT_TRUE(DeleteObject(region));
    EXPECT_TRUE(DeleteObject(brush));
}

TEST_F(DcTest, NullRegionsAndObjectsFail) {
    Device device(2, 2);
    HRGN region = CreateRectRgn(0, 0, 1, 1);
    RECT box{};
    EXPECT_EQ(SelectObject(device, nullptr), nullptr);
    EXPECT_FALSE(PaintRgn(device, nullptr));
    EXPECT_EQ(CombineRgn(nullptr, region, region, RGN_OR), ERROR);
    EXPECT_EQ(CombineRgn(region, nullptr, region, RGN_OR), ERROR);
    EXPECT_EQ(CombineRgn(region, region, nullptr, RGN_OR), ERROR);
    EXPECT_EQ(OffsetRgn(nullptr, 1, 1), ERROR);
    EXPECT_EQ(GetRgnBox(nullptr, &box), ERROR);
    EXPECT_FALSE(PtInRegion(nullptr, 0, 0));
    EXPECT_FALSE(EqualRgn(nullptr, region));
    EXPECT_FALSE(EqualRgn(region, nullptr));
    EXPECT_TRUE(DeleteObject(region));
}

TEST_F(DcTest, DeletedHandlesFail) {
    HPEN pen = CreatePen(PS_SOLID, 0, 0);
    EXPECT_TRUE(DeleteObject(pen));
    EXPECT_FALSE(DeleteObject(pen));
    LOGPEN record{};
    EXPECT_EQ(GetObjectW(pen, sizeof(record), &record), 0);
    HDC dc = CreateCompatibleDC(nullptr);
    EXPECT_EQ(SelectObject(dc, pen), nullptr);
    EXPECT_EQ(GetCurrentObject(dc, OBJ_PEN), GetStockObject(BLACK_PEN));
    EXPECT_TRUE(DeleteDC(dc));
    EXPECT_FALSE(DeleteDC(dc));
    EXPECT_FALSE(PatBlt(dc, 0, 0, 1, 1, BLACKNESS));
    EXPECT_FALSE(LineTo(dc, 1, 1));
    EXPECT_EQ(SetTextColor(dc, 0), CLR_INVALID);
    EXPECT_EQ(CreateCompatibleDC(dc), nullptr);
    HRGN region = CreateRectRgn(0, 0, 1, 1);
    EXPECT_TRUE(DeleteObject(region));
    RECT box{};
    EXPECT_EQ(GetRgnBox(region, &box), ERROR);
}

TEST_F(DcTest, HandlesOfAnotherKindFail) {
    Device device(2, 2);
    HPEN pen = CreatePen(PS_SOLID, 0, 0);
    HBRUSH brush = CreateSolidBrush(0);
    HGDIOBJ anything = pen;
    EXPECT_FALSE(PaintRgn(device, static_cast<HRGN>(anything)));
    EXPECT_FALSE(FillRgn(device, static_cast<HRGN>(anything), brush));
    EXPECT_FALSE(PatBlt(static_cast<HDC>(anything), 0, 0, 1, 1, BLACKNESS));
    EXPECT_FALSE(DeleteDC(static_cast<HDC>(anything)));
    EXPECT_EQ(SetTextColor(static_cast<HDC>(anything), 0), CLR_INVALID);
    EXPECT_TRUE(DeleteObject(pen));
    EXPECT_TRUE(DeleteObject(brush));
}

}  // namespace
}  // namespace zoltest
