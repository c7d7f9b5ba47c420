// What only this implementation promises: strict handles, deletion while selected, many threads, far coordinates.
#include "platform/gdi/device.h"
#include "support/test_data.h"

#include <atomic>
#include <cmath>
#include <limits>
#include <thread>

namespace zoltest {
namespace {

class HandleTest : public GdiTest {};

TEST_F(HandleTest, ASelectedBitmapCannotBeDeleted) {
    Device device(2, 2);
    EXPECT_FALSE(DeleteObject(device.bitmap()));
    EXPECT_EQ(GetCurrentObject(device, OBJ_BITMAP), device.bitmap());
    EXPECT_TRUE(PatBlt(device, 0, 0, 2, 2, WHITENESS));
    EXPECT_EQ(device.pixel(1, 1), 0xFFFFFFFFU);
}

TEST_F(HandleTest, OtherSelectedObjectsGoWhenTheyAreDeselected) {
    Device device(4, 2);
    const unsigned int before = ZolGdiObjectCount();
    HPEN pen = CreatePen(PS_SOLID, 0, RGB(255, 0, 0));
    HGDIOBJ old = SelectObject(device, pen);
    EXPECT_TRUE(DeleteObject(pen));
    EXPECT_FALSE(DeleteObject(pen));
    EXPECT_EQ(ZolGdiObjectCount(), before + 1);
    EXPECT_TRUE(LineTo(device, 4, 0));
    EXPECT_EQ(device.pixel(2, 0), 0x00FF0000U);
    EXPECT_EQ(SelectObject(device, old), pen);
    EXPECT_EQ(ZolGdiObjectCount(), before);
    EXPECT_EQ(SelectObject(device, pen), nullptr);
}

TEST_F(HandleTest, SavedStatesKeepWhatTheySelected) {
    HDC dc = CreateCompatibleDC(nullptr);
    const unsigned int before = ZolGdiObjectCount();
    HPEN pen = CreatePen(PS_SOLID, 0, 0);
    HGDIOBJ old = SelectObject(dc, pen);
    EXPECT_EQ(SaveDC(dc), 1);
    SelectObject(dc, old);
    EXPECT_TRUE(DeleteObject(pen));
    EXPECT_EQ(ZolGdiObjectCount(), before + 1);
    EXPECT_TRUE(RestoreDC(dc, 1));
    EXPECT_EQ(GetCurrentObject(dc, OBJ_PEN), pen);
    EXPECT_TRUE(DeleteDC(dc));
    EXPECT_EQ(ZolGdiObjectCount(), before - 1);
}

TEST_F(HandleTest, SavedStatesHoldNoPath) {
    Device device(8, 8);
    const auto collectLine = [&](int y) {
        EXPECT_TRUE(BeginPath(device));
        EXPECT_TRUE(MoveToEx(device, 0, y, nullptr));
        EXPECT_TRUE(LineTo(device, 8, y));
        EXPECT_TRUE(EndPath(device));
    };
    SelectObject(device, GetStockObject(WHITE_PEN));
    collectLine(2);
    EXPECT_EQ(SaveDC(device), 1);
    EXPECT_TRUE(StrokePath(device));
    EXPECT_EQ(device.pixel(3, 2), 0x00FFFFFFU);
    EXPECT_TRUE(RestoreDC(device, 1));
    EXPECT_FALSE(StrokePath(device)) << "the path was used up and does not come back";

    EXPECT_EQ(SaveDC(device), 1);
    collectLine(5);
    EXPECT_TRUE(RestoreDC(device, 1));
    EXPECT_TRUE(StrokePath(device)) << "a path that was collected since stays";
    EXPECT_EQ(device.pixel(3, 5), 0x00FFFFFFU);
}

TEST_F(HandleTest, AStaleHandleDoesNotNameItsSlotsNextObject) {
    HPEN first = CreatePen(PS_SOLID, 0, 0);
    EXPECT_TRUE(DeleteObject(first));
    std::vector<HPEN> later;
    for (int i = 0; i < 100; ++i) later.push_back(CreatePen(PS_SOLID, 0, 0));
    LOGPEN record{};
    EXPECT_EQ(GetObjectW(first, sizeof(record), &record), 0);
    EXPECT_FALSE(DeleteObject(first));
    for (HPEN pen : later) {
        EXPECT_NE(pen, first);
        EXPECT_TRUE(DeleteObject(pen));
    }
}

TEST_F(HandleTest, InventedHandlesFindNothing) {
    Device device(2, 2);
    Random random(20240910);
    for (int i = 0; i < 20000; ++i) {
        const auto value = static_cast<std::uintptr_t>(random.bits() >> (i % 60));
        auto* invented = reinterpret_cast<HGDIOBJ>(value);
        if (invented == device.bitmap() || invented == HDC{device}) continue;
        bool stock = false;
        for (int k = 0; k < 20; ++k) stock = stock || invented == GetStockObject(k);
        if (stock) continue;
        EXPECT_FALSE(DeleteDC(static_cast<HDC>(invented)));
        EXPECT_FALSE(CloseHandle(invented));
        EXPECT_EQ(GetTextColor(static_cast<HDC>(invented)), CLR_INVALID);
        EXPECT_FALSE(PaintRgn(device, static_cast<HRGN>(invented)));
    }
}

TEST_F(HandleTest, EveryKindIsToldFromEveryOther) {
    void* bits = nullptr;
    const BITMAPINFO info = dibInfo(2, 2);
    const LOGFONTW logFont{};
    const std::vector<HGDIOBJ> objects = {CreatePen(PS_SOLID, 0, 0), CreateSolidBrush(0), CreateFontIndirectW(&logFont),
                                          CreateRectRgn(0, 0, 1, 1),
                                          CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0)};
    HANDLE mapping = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 64, nullptr);
    HDC dc = CreateCompatibleDC(nullptr);
    for (HGDIOBJ object : objects) {
        EXPECT_EQ(GetDeviceCaps(static_cast<HDC>(object), LOGPIXELSX), 0);
        EXPECT_FALSE(CloseHandle(object));
        EXPECT_FALSE(IsWindow(static_cast<HWND>(object)));
        EXPECT_EQ(MapViewOfFile(object, FILE_MAP_WRITE, 0, 0, 0), nullptr);
        EXPECT_EQ(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, object, 0), nullptr);
        EXPECT_NE(SelectObject(dc, object), nullptr);
    }
    EXPECT_FALSE(DeleteObject(mapping));
    EXPECT_FALSE(DeleteObject(dc));
    EXPECT_EQ(SelectObject(dc, mapping), nullptr);
    EXPECT_EQ(SelectObject(dc, dc), nullptr);
    EXPECT_TRUE(CloseHandle(mapping));
    EXPECT_FALSE(CloseHandle(mapping));
    EXPECT_TRUE(DeleteDC(dc));
    for (HGDIOBJ object : objects) EXPECT_TRUE(DeleteObject(object));
}

TEST_F(HandleTest, WindowsAndPrintersTakeNoBitmaps) {
    HDC screen = GetDC(nullptr);
    void* bits = nullptr;
    const BITMAPINFO info = dibInfo(2, 2);
    HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    EXPECT_EQ(SelectObject(screen, bitmap), nullptr);
    EXPECT_EQ(ReleaseDC(nullptr, screen), 1);
    EXPECT_TRUE(DeleteObject(bitmap));
}

TEST_F(HandleTest, FormatsBesideTwentyFourAndThirtyTwoBitsAreRefused) {
    for (const WORD bits : {WORD{1}, WORD{4}, WORD{8}, WORD{16}, WORD{33}}) {
        const BITMAPINFO info = dibInfo(4, 4, bits);
        EXPECT_EQ(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, nullptr, nullptr, 0), nullptr);
    }
    BITMAPINFO info = dibInfo(4, 4);
    info.bmiHeader.biCompression = BI_BITFIELDS;
    EXPECT_EQ(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, nullptr, nullptr, 0), nullptr);
    info = dibInfo(4, 4);
    EXPECT_EQ(CreateDIBSection(nullptr, &info, DIB_PAL_COLORS, nullptr, nullptr, 0), nullptr);
    HANDLE mapping = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4096, nullptr);
    EXPECT_EQ(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, nullptr, mapping, 2), nullptr);
    EXPECT_EQ(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, nullptr, mapping, 4096 - 63), nullptr);
    EXPECT_EQ(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, nullptr, mapping, 0xFFFFFFFC), nullptr);
    EXPECT_TRUE(CloseHandle(mapping));
}

TEST_F(HandleTest, CallsFailAsDocumentedWhereOtherSystemsAreLenient) {
    const RECT rect{0, 0, 1, 1};
    EXPECT_EQ(GetTextColor(nullptr), CLR_INVALID);
    EXPECT_EQ(FillRect(nullptr, &rect, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH))), 0);
    Device device(2, 2);
    EXPECT_EQ(FillRect(device, nullptr, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH))), 0);
    EXPECT_EQ(FillRect(device, &rect, nullptr), 0);
    const XFORM shift{1.0F, 0.0F, 0.0F, 1.0F, 2.0F, 1.0F};
    EXPECT_FALSE(ModifyWorldTransform(device, &shift, MWT_LEFTMULTIPLY));
}

TEST_F(HandleTest, TurnedEllipsesKeepTheirSize) {
    Device device(80, 80);
    SelectObject(device, GetStockObject(NULL_BRUSH));
    SelectObject(device, GetStockObject(WHITE_PEN));
    SetGraphicsMode(device, GM_ADVANCED);
    SetViewportOrgEx(device, 40, 40, nullptr);
    const double angle = 0.6;
    const auto c = static_cast<FLOAT>(std::cos(angle));
    const auto s = static_cast<FLOAT>(std::sin(angle));
    const XFORM turn{c, s, -s, c, 0.0F, 0.0F};
    EXPECT_TRUE(SetWorldTransform(device, &turn));
    EXPECT_TRUE(Ellipse(device, -30, -10, 30, 10));
    int drawn = 0;
    for (int y = 0; y < 80; ++y) {
        for (int x = 0; x < 80; ++x) {
            if (device.pixel(x, y) == 0) continue;
            ++drawn;
            const double u = ((x - 40) * std::cos(angle) + (y - 40) * std::sin(angle)) / 30.0;
            const double v = ((y - 40) * std::cos(angle) - (x - 40) * std::sin(angle)) / 10.0;
            const double slope = 2.0 * std::hypot(u / 30.0, v / 10.0);
            ASSERT_LE(std::fabs(u * u + v * v - 1.0) / slope, 2.0) << x << ", " << y;
        }
    }
    EXPECT_GT(drawn, 100);
}

TEST_F(HandleTest, ThousandsOfMappingsNeedNoFileDescriptors) {
    std::vector<HANDLE> mappings;
    for (int i = 0; i < 3000; ++i) {
        mappings.push_back(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4096, nullptr));
        ASSERT_NE(mappings.back(), nullptr);
    }
    for (HANDLE mapping : mappings) EXPECT_TRUE(CloseHandle(mapping));
}

TEST_F(HandleTest, MappingsTakeNoFilesAndNoNames) {
    EXPECT_EQ(CreateFileMappingW(nullptr, nullptr, PAGE_READWRITE, 0, 64, nullptr), nullptr);
    EXPECT_EQ(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 64, L"name"), nullptr);
    EXPECT_EQ(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READONLY, 0, 64, nullptr), nullptr);
    EXPECT_EQ(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0xFFFFFFFF, 64, nullptr), nullptr);
}

TEST_F(HandleTest, ThreadsMayDrawAndDeleteAtOnce) {
    std::atomic<HPEN> shared{nullptr};
    std::atomic<bool> stop{false};
    const auto draw = [&] {
        Device device(40, 40);
        while (!stop) {
            HGDIOBJ old = SelectObject(device, shared.load());
            MoveToEx(device, 0, 0, nullptr);
            LineTo(device, 39, 20);
            if (old != nullptr) SelectObject(device, old);
        }
    };
    std::thread first(draw);
    std::thread second(draw);
    for (int i = 0; i < 2000; ++i) {
        HPEN pen = CreatePen(PS_SOLID, i % 3, RGB(i, i, i));
        shared = pen;
        DeleteObject(pen);
    }
    stop = true;
    first.join();
    second.join();
}

TEST_F(HandleTest, CopiesBetweenTwoContextsFromBothSides) {
    Device a(30, 30);
    Device b(30, 30);
    std::thread other([&] {
        for (int i = 0; i < 2000; ++i) BitBlt(a, 0, 0, 10, 10, b, 0, 0, SRCCOPY);
    });
    for (int i = 0; i < 2000; ++i) BitBlt(b, 0, 0, 10, 10, a, 0, 0, SRCCOPY);
    other.join();
}

TEST_F(HandleTest, FarCoordinatesNeitherCrashNorLast) {
    constexpr int far = std::numeric_limits<int>::max();
    constexpr int near = std::numeric_limits<int>::min();
    for (const Layout& layout : layouts) {
        Device device(16, 16, layout);
        for (const int style : {PS_SOLID, PS_DOT}) {
            for (const int width : {0, 7, far}) {
                const Using pen(device, CreatePen(style, width, RGB(255, 0, 0)));
                MoveToEx(device, near, near, nullptr);
                EXPECT_TRUE(LineTo(device, far, far));
                EXPECT_TRUE(LineTo(device, near, 8));
                EXPECT_TRUE(LineTo(device, 8, far));
                const POINT points[] = {{near, 0}, {far, near}, {0, far}, {far, far}};
                EXPECT_TRUE(Polygon(device, points, 4));
                EXPECT_TRUE(PolyBezier(device, points, 4));
                EXPECT_TRUE(BeginPath(device));
                EXPECT_TRUE(PolyBezier(device, points, 4));
                EXPECT_TRUE(LineTo(device, near, far));
                EXPECT_TRUE(EndPath(device));
                EXPECT_TRUE(StrokeAndFillPath(device));
                EXPECT_TRUE(Ellipse(device, near, near, far, far));
                EXPECT_TRUE(Rectangle(device, near, near, far, far));
            }
        }
        PatBlt(device, near, near, far, far, WHITENESS);
        PatBlt(device, far, far, far, far, WHITENESS);
        BitBlt(device, near, near, far, far, device, near, far, SRCCOPY);
        StretchBlt(device, near, near, far, near, device, near, far, far, far, SRCCOPY);
        const BITMAPINFO info = device.info();
        std::vector<unsigned char> pixels(device.size());
        StretchDIBits(device, near, far, far, near, near, near, far, far, pixels.data(), &info, DIB_RGB_COLORS,
                      SRCCOPY);
        StretchDIBits(device, 0, 0, 16, 16, far, near, far, near, pixels.data(), &info, DIB_RGB_COLORS, SRCCOPY);
        const RECT rect{near, near, far, far};
        EXPECT_NE(FillRect(device, &rect, static_cast<HBRUSH>(GetStockObject(GRAY_BRUSH))), 0);
        EXPECT_EQ(device.pixel(15, 0), 0x808080U);
        HRGN region = CreateRectRgn(near, near, far, far);
        EXPECT_TRUE(PaintRgn(device, region));
        EXPECT_NE(OffsetRgn(region, far, near), ERROR);
        SetViewportOrgEx(device, far, near, nullptr);
        SetWindowOrgEx(device, near, far, nullptr);
        EXPECT_TRUE(PaintRgn(device, region));
        EXPECT_TRUE(LineTo(device, 3, 3));
        EXPECT_TRUE(TextOutW(device, far, near, L"far", 3));
        EXPECT_TRUE(DeleteObject(region));
    }
}

TEST_F(HandleTest, RegionsAreCutWhereCoordinatesEnd) {
    constexpr int far = std::numeric_limits<int>::max();
    HRGN region = CreateRectRgn(0, 0, 20, 10);
    EXPECT_EQ(OffsetRgn(region, far - 15, 0), SIMPLEREGION);
    RECT box{};
    EXPECT_EQ(GetRgnBox(region, &box), SIMPLEREGION);
    EXPECT_EQ(box.left, far - 15);
    EXPECT_EQ(box.right, far);
    EXPECT_EQ(OffsetRgn(region, 15, 0), NULLREGION);
    EXPECT_EQ(OffsetRgn(region, -15, 0), NULLREGION);
    EXPECT_TRUE(DeleteObject(region));
}

TEST_F(HandleTest, CopiesFailWhereAContextTurns) {
    Device device(8, 8);
    Device other(8, 8);
    fillPattern(other);
    Expected expected(device);
    SetGraphicsMode(device, GM_ADVANCED);
    const XFORM turned{0.8F, 0.6F, -0.6F, 0.8F, 0.0F, 0.0F};
    EXPECT_TRUE(SetWorldTransform(device, &turned));
    EXPECT_FALSE(PatBlt(device, 0, 0, 4, 4, WHITENESS));
    EXPECT_FALSE(BitBlt(device, 0, 0, 4, 4, other, 0, 0, SRCCOPY));
    EXPECT_FALSE(BitBlt(other, 0, 0, 4, 4, device, 0, 0, SRCCOPY));
    EXPECT_EQ(StretchDIBits(device, 0, 0, 4, 4, 0, 0, 4, 4, other.bits(), &other.info(), DIB_RGB_COLORS, SRCCOPY), 0);
    EXPECT_TRUE(expected.holds(device));
}

TEST_F(HandleTest, WideCirclesAreRound) {
    Device device(60, 60);
    const Using pen(device, CreatePen(PS_SOLID, 6, RGB(255, 255, 255)));
    SelectObject(device, GetStockObject(NULL_BRUSH));
    EXPECT_TRUE(Ellipse(device, 8, 8, 53, 53));
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 60; ++x) {
            const double distance = std::fabs(std::hypot(x - 30, y - 30) - 22.0);
            if (distance > 2.8 && distance < 3.2) continue;
            EXPECT_EQ(device.pixel(x, y) != 0, distance < 3.0) << x << ", " << y;
        }
    }
}

TEST_F(HandleTest, ALineThatBeginsFarAwayKeepsItsDirection) {
    Device device(16, 16);
    const Using pen(device, CreatePen(PS_SOLID, 0, RGB(255, 255, 255)));
    MoveToEx(device, -1000000000, -1000000000, nullptr);
    EXPECT_TRUE(LineTo(device, 1000000000, 1000000000));
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 16; ++x) EXPECT_EQ(device.pixel(x, y) != 0, x == y) << x << ", " << y;
    }
    // A wide one, half as steep.
    const Using wide(device, CreatePen(PS_SOLID, 5, RGB(255, 255, 255)));
    PatBlt(device, 0, 0, 16, 16, BLACKNESS);
    MoveToEx(device, 8 - 246913578, 8 - 123456789, nullptr);
    EXPECT_TRUE(LineTo(device, 8 + 246913578, 8 + 123456789));
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 16; ++x) {
            const int distance = std::abs(2 * (y - 8) - (x - 8));
            if (distance >= 5 && distance <= 6) continue;
            EXPECT_EQ(device.pixel(x, y) != 0, distance < 5) << x << ", " << y;
        }
    }
}

TEST_F(HandleTest, StrangeFontsAndTextsAreDrawnSomehow) {
    Device device(64, 32);
    LOGFONTW font{};
    for (wchar_t& c : font.lfFaceName) c = L'x';  // no terminator
    constexpr LONG least = std::numeric_limits<LONG>::min();
    for (const LONG height : {0, 1, -1, 100000, -100000, least}) {
        font.lfHeight = height;
        font.lfWidth = height == 1 ? least : 0;
        font.lfWeight = height;
        font.lfEscapement = height;
        const Using selected(device, CreateFontIndirectW(&font));
        const wchar_t text[] = {L'a', static_cast<wchar_t>(0xD800), static_cast<wchar_t>(0x7FFFFFFF), L'\n', L'\0',
                                L'b'};
        EXPECT_TRUE(TextOutW(device, 0, 0, text, 6));
        SIZE size{};
        EXPECT_TRUE(GetTextExtentPoint32W(device, text, 6, &size));
        TEXTMETRICW metrics{};
        EXPECT_TRUE(GetTextMetricsW(device, &metrics));
        EXPECT_GT(metrics.tmHeight, 0);
    }
    EXPECT_FALSE(TextOutW(device, 0, 0, nullptr, 1));
    EXPECT_FALSE(TextOutW(device, 0, 0, L"a", -1));
    EXPECT_TRUE(TextOutW(device, 0, 0, nullptr, 0));
    const std::wstring longText(8193, L'a');
    EXPECT_FALSE(TextOutW(device, 0, 0, longText.c_str(), 8193));
}

TEST_F(HandleTest, ControlCharactersAreBlanks) {
    Device device(1, 1);
    const auto sizeOf = [&](const wchar_t* text) {
        SIZE size{};
        EXPECT_TRUE(GetTextExtentPoint32W(device, text, 3, &size));
        return std::pair(size.cx, size.cy);
    };
    for (const wchar_t* text : {L"a\nb", L"a\tb", L"a\rb",
                                L"a\x7F"
                                "b"})
        EXPECT_EQ(sizeOf(text), sizeOf(L"a b"));
}

TEST_F(HandleTest, SmoothTextIsForFontsThatAskForIt) {
    const auto shades = [](DWORD quality) {
        Device device(120, 40);
        const Using font(
            device, CreateFontW(-24, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, quality, 0, L"DejaVu Sans"));
        SetTextColor(device, RGB(255, 255, 255));
        SetBkMode(device, TRANSPARENT);
        TextOutW(device, 2, 2, L"Shades", 6);
        int count = 0;
        for (int y = 0; y < 40; ++y) {
            for (int x = 0; x < 120; ++x) {
                const std::uint32_t value = device.pixel(x, y);
                count += value != 0 && value != 0x00FFFFFFU ? 1 : 0;
            }
        }
        return count;
    };
    EXPECT_EQ(shades(DEFAULT_QUALITY), 0);
    EXPECT_EQ(shades(PROOF_QUALITY), 0);
    EXPECT_EQ(shades(NONANTIALIASED_QUALITY), 0);
    EXPECT_GT(shades(ANTIALIASED_QUALITY), 20);
    EXPECT_GT(shades(CLEARTYPE_QUALITY), 20);
}

TEST_F(HandleTest, TextTurnsByItsEscapement) {
    Device device(80, 80);
    const Using font(device,
                     CreateFontW(-16, 0, 900, 900, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, L"DejaVu Sans"));
    SetTextColor(device, RGB(255, 255, 255));
    SetBkMode(device, TRANSPARENT);
    TextOutW(device, 30, 70, L"upward", 6);
    int drawn = 0;
    for (int y = 0; y < 80; ++y) {
        for (int x = 0; x < 80; ++x) {
            if (device.pixel(x, y) == 0) continue;
            ++drawn;
            EXPECT_TRUE(x >= 29 && x < 52 && y <= 71) << x << ", " << y;
        }
    }
    EXPECT_GT(drawn, 40);
}

}  // namespace
}  // namespace zoltest
