// Fonts and text. Glyphs differ between systems: the tests hold what every system must keep.
#include "platform/gdi/device.h"

#include <algorithm>
#include <cstdlib>
#include <cwchar>
#include <string>

namespace zoltest {
namespace {

class TextTest : public GdiTest {};

LOGFONTW describe(LONG height) {
    LOGFONTW font{};
    font.lfHeight = height;
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = static_cast<BYTE>(DEFAULT_CHARSET);
    font.lfQuality = static_cast<BYTE>(NONANTIALIASED_QUALITY);
    std::wcscpy(font.lfFaceName, L"DejaVu Sans");
    return font;
}

HFONT makeFont(LONG height) {
    const LOGFONTW font = describe(height);
    return CreateFontIndirectW(&font);
}

int widthOf(HDC dc, const wchar_t* text) {
    SIZE size{};
    EXPECT_TRUE(GetTextExtentPoint32W(dc, text, static_cast<int>(std::wcslen(text)), &size));
    return size.cx;
}

TEST_F(TextTest, AFontRemembersItsDescription) {
    LOGFONTW font = describe(-20);
    font.lfItalic = 1;
    font.lfWidth = 7;
    HFONT handle = CreateFontIndirectW(&font);
    ASSERT_NE(handle, nullptr);
    LOGFONTW told{};
    EXPECT_EQ(GetObjectW(handle, sizeof(LOGFONTW), &told), static_cast<int>(sizeof(LOGFONTW)));
    EXPECT_EQ(told.lfHeight, -20);
    EXPECT_EQ(told.lfWidth, 7);
    EXPECT_EQ(told.lfWeight, FW_NORMAL);
    EXPECT_EQ(told.lfItalic, 1);
    EXPECT_STREQ(told.lfFaceName, L"DejaVu Sans");
    EXPECT_EQ(GetObjectW(handle, 0, nullptr), static_cast<int>(sizeof(LOGFONTW)));
    EXPECT_TRUE(DeleteObject(handle));
    EXPECT_EQ(CreateFontIndirectW(nullptr), nullptr);
}

TEST_F(TextTest, CreateFontDescribesTheSame) {
    HFONT handle = CreateFontW(-13, 5, 0, 0, FW_BOLD, 1, 0, 0, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                               DEFAULT_QUALITY, DEFAULT_PITCH, L"Some Face");
    LOGFONTW told{};
    EXPECT_EQ(GetObjectW(handle, sizeof(LOGFONTW), &told), static_cast<int>(sizeof(LOGFONTW)));
    EXPECT_EQ(told.lfHeight, -13);
    EXPECT_EQ(told.lfWidth, 5);
    EXPECT_EQ(told.lfWeight, FW_BOLD);
    EXPECT_NE(told.lfItalic, 0);
    EXPECT_STREQ(told.lfFaceName, L"Some Face");
    EXPECT_TRUE(DeleteObject(handle));
}

TEST_F(TextTest, APositiveHeightIsTheCells) {
    HDC dc = CreateCompatibleDC(nullptr);
    for (const LONG height : {9, 16, 40, 100}) {
        const Using font(dc, makeFont(height));
        TEXTMETRICW metrics{};
        EXPECT_TRUE(GetTextMetricsW(dc, &metrics));
        EXPECT_NEAR(metrics.tmHeight, height, 1);
        EXPECT_EQ(metrics.tmHeight, metrics.tmAscent + metrics.tmDescent);
        EXPECT_GT(metrics.tmAscent, metrics.tmDescent);
        EXPECT_EQ(metrics.tmWeight, FW_NORMAL);
        EXPECT_GT(metrics.tmAveCharWidth, 0);
        EXPECT_GE(metrics.tmMaxCharWidth, metrics.tmAveCharWidth);
    }
    EXPECT_TRUE(DeleteDC(dc));
}

TEST_F(TextTest, ANegativeHeightIsTheLetters) {
    HDC dc = CreateCompatibleDC(nullptr);
    const Using font(dc, makeFont(-40));
    TEXTMETRICW metrics{};
    EXPECT_TRUE(GetTextMetricsW(dc, &metrics));
    EXPECT_GT(metrics.tmHeight, 40);
    EXPECT_NEAR(metrics.tmHeight - metrics.tmInternalLeading, 40, 1);
    EXPECT_TRUE(DeleteDC(dc));
}

TEST_F(TextTest, ExtentsGrowWithTheText) {
    HDC dc = CreateCompatibleDC(nullptr);
    const Using font(dc, makeFont(-16));
    TEXTMETRICW metrics{};
    GetTextMetricsW(dc, &metrics);
    SIZE size{};
    EXPECT_TRUE(GetTextExtentPoint32W(dc, L"mm", 2, &size));
    EXPECT_EQ(size.cy, metrics.tmHeight);
    EXPECT_EQ(size.cx, 2 * widthOf(dc, L"m"));
    EXPECT_GT(widthOf(dc, L"m"), widthOf(dc, L"i"));
    EXPECT_EQ(widthOf(dc, L"a m"), widthOf(dc, L"a") + widthOf(dc, L" ") + widthOf(dc, L"m"));
    EXPECT_EQ(widthOf(dc, L"AV"), widthOf(dc, L"A") + widthOf(dc, L"V"));  // no kerning
    EXPECT_TRUE(GetTextExtentPoint32W(dc, L"", 0, &size));
    EXPECT_EQ(size.cx, 0);
    EXPECT_FALSE(GetTextExtentPoint32W(dc, L"a", -1, &size));
    EXPECT_TRUE(DeleteDC(dc));
}

TEST_F(TextTest, AWidthStretchesTheFont) {
    HDC dc = CreateCompatibleDC(nullptr);
    LOGFONTW narrow = describe(-20);
    narrow.lfWidth = 8;
    LOGFONTW wide = describe(-20);
    wide.lfWidth = 16;
    int widths[2] = {};
    {
        const Using font(dc, CreateFontIndirectW(&narrow));
        widths[0] = widthOf(dc, L"stretch");
    }
    {
        const Using font(dc, CreateFontIndirectW(&wide));
        widths[1] = widthOf(dc, L"stretch");
        TEXTMETRICW metrics{};
        GetTextMetricsW(dc, &metrics);
        EXPECT_NEAR(metrics.tmAveCharWidth, 16, 1);
    }
    EXPECT_NEAR(widths[1], 2 * widths[0], widths[0] / 8);
    EXPECT_TRUE(DeleteDC(dc));
}

TEST_F(TextTest, TextIsDrawnInItsColourInsideItsCell) {
    for (const Layout& layout : layouts) {
        Device device(120, 40, layout);
        const Using font(device, makeFont(-20));
        SetTextColor(device, RGB(0x10, 0x20, 0x30));
        EXPECT_EQ(SetBkMode(device, TRANSPARENT), OPAQUE);
        SIZE size{};
        GetTextExtentPoint32W(device, L"Hg1", 3, &size);
        EXPECT_TRUE(TextOutW(device, 10, 5, L"Hg1", 3));
        int drawn = 0;
        for (int y = 0; y < 40; ++y) {
            for (int x = 0; x < 120; ++x) {
                if (device.pixel(x, y) == 0) continue;
                ++drawn;
                ASSERT_EQ(device.pixel(x, y), 0x102030U);
                ASSERT_TRUE(x >= 9 && x <= 10 + size.cx && y >= 5 && y < 5 + size.cy) << x << ", " << y;
            }
        }
        EXPECT_GT(drawn, 60);
    }
}

TEST_F(TextTest, AModeThatCountsUpwardDoesNotTurnTextOver) {
    const auto ink = [](int mode) {
        Device device(60, 60);
        const Using font(device, makeFont(-24));
        SetTextColor(device, RGB(255, 255, 255));
        SetBkMode(device, TRANSPARENT);
        SetMapMode(device, mode);
        SetViewportOrgEx(device, 10, 15, nullptr);
        EXPECT_TRUE(TextOutW(device, 0, 0, L"L", 1));
        // The foot of the letter is the widest of its rows.
        const std::vector<std::string> rows = device.picture();
        const auto width = [](const std::string& row) { return std::count(row.begin(), row.end(), '#'); };
        return std::max_element(rows.begin(), rows.end(),
                                [&](const std::string& a, const std::string& b) { return width(a) < width(b); }) -
               rows.begin();
    };
    EXPECT_GT(ink(MM_TEXT), 25);
    EXPECT_GT(ink(MM_LOENGLISH), 25);
}

TEST_F(TextTest, OpaqueTextFillsItsCell) {
    Device device(100, 40);
    fillPattern(device);
    Expected expected(device);
    const Using font(device, makeFont(-20));
    SetTextColor(device, RGB(1, 1, 1));
    SetBkColor(device, RGB(2, 2, 2));
    SIZE size{};
    GetTextExtentPoint32W(device, L"H", 1, &size);
    EXPECT_TRUE(TextOutW(device, 10, 5, L"H", 1));
    int letter = 0;
    for (int y = 5; y < 5 + size.cy; ++y) {
        for (int x = 10; x < 10 + size.cx; ++x) {
            if (device.pixel(x, y) == 0x010101U) ++letter;
            expected.at(x, y) = device.pixel(x, y) == 0x010101U ? 0x010101U : 0x020202U;
        }
    }
    EXPECT_GT(letter, 20);
    EXPECT_TRUE(expected.holds(device));
}

TEST_F(TextTest, TextIsCutAtTheClipRegion) {
    Device device(60, 30);
    const Using font(device, makeFont(-24));
    SetTextColor(device, RGB(255, 255, 255));
    SetBkMode(device, TRANSPARENT);
    IntersectClipRect(device, 5, 8, 15, 20);
    EXPECT_TRUE(TextOutW(device, -3, 0, L"MMMMMM", 6));
    int drawn = 0;
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 60; ++x) {
            if (device.pixel(x, y) == 0) continue;
            ++drawn;
            EXPECT_TRUE(x >= 5 && x < 15 && y >= 8 && y < 20) << x << ", " << y;
        }
    }
    EXPECT_GT(drawn, 10);
}

TEST_F(TextTest, TheSamePositionGivesTheSamePixels) {
    Device first(80, 30);
    Device second(90, 40);
    const Using font(first, makeFont(-18));
    const Using other(second, makeFont(-18));
    for (HDC dc : {HDC{first}, HDC{second}}) {
        SetTextColor(dc, RGB(255, 255, 255));
        SetBkMode(dc, TRANSPARENT);
    }
    TextOutW(first, 3, 2, L"Halo", 4);
    TextOutW(second, 10, 9, L"Halo", 4);
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 80; ++x) ASSERT_EQ(first.pixel(x, y), second.pixel(x + 7, y + 7));
    }
}

/// The shapes of a text from left to right, however far apart they stand: runs of columns with ink, each column a line.
/// The text's parts are drawn side by side.
std::vector<std::string> shapesOf(const std::vector<std::wstring>& parts) {
    Device device(200, 40);
    const Using font(device, makeFont(-22));
    SetTextColor(device, RGB(255, 255, 255));
    SetBkMode(device, TRANSPARENT);
    int left = 5;
    for (const std::wstring& part : parts) {
        EXPECT_TRUE(TextOutW(device, left, 4, part.c_str(), static_cast<int>(part.size())));
        left += widthOf(device, part.c_str());
    }
    const std::vector<std::string> picture = device.picture();
    std::vector<std::string> shapes;
    bool within = false;
    for (std::size_t x = 0; x < 200; ++x) {
        std::string column;
        for (const std::string& row : picture) column += row[x];
        const bool ink = column.find('#') != std::string::npos;
        if (ink && !within) shapes.emplace_back();
        if (ink) shapes.back() += column + '\n';
        within = ink;
    }
    return shapes;
}

TEST_F(TextTest, LeftToRightScriptsStandInTheirOrder) {
    const auto shapes = shapesOf({L"a\u0416\u03A9z"});
    EXPECT_EQ(shapes.size(), 4U);
    EXPECT_EQ(shapes, shapesOf({L"a", L"\u0416", L"\u03A9", L"z"}));
}

TEST_F(TextTest, RightToLeftRunsAreTurnedRoundAndTheLineIsNot) {
    const std::wstring alef = L"\u05D0";
    const std::wstring bet = L"\u05D1";
    const std::wstring shin = L"\u05E9";
    EXPECT_NE(shapesOf({alef}), shapesOf({bet}));
    EXPECT_EQ(shapesOf({alef + bet + shin}), shapesOf({shin, bet, alef}));
    EXPECT_EQ(shapesOf({L"a" + alef + bet + L"z"}), shapesOf({L"a", bet, alef, L"z"}));
    // Numbers keep their order, inside a run too; what follows the run stands at its right.
    EXPECT_EQ(shapesOf({alef + bet + L" 12"}), shapesOf({L"12", L" ", bet, alef}));
    EXPECT_EQ(shapesOf({alef + bet + L" mm"}), shapesOf({bet, alef, L" ", L"mm"}));
}

TEST_F(TextTest, ExtentsOfEveryScriptAreSane) {
    HDC dc = CreateCompatibleDC(nullptr);
    const Using font(dc, makeFont(-20));
    const std::wstring texts[] = {L"Thorax",
                                  L"Gr\u00F6\u00DFe",
                                  L"\u0394\u03B9\u03BF\u03BD\u03C5\u03C3\u03B9\u03BF\u03C2",
                                  L"\u041B\u044Ek\u0441",
                                  L"\u0642\u0628\u0627\u0646\u064A",
                                  L"\u05E9\u05E8\u05D5\u05DF",
                                  L"\u5C71\u7530\u592A\u90CE",
                                  L"\u3084\u307E\u3060",
                                  L"\uAE40\uD76C\uC911",
                                  L"\u738B\u5C0F\u4E1C"};
    for (const std::wstring& text : texts) {
        SIZE size{};
        EXPECT_TRUE(GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size));
        // From a fifth of an em for each character up to two.
        EXPECT_GT(size.cx, static_cast<LONG>(text.size()) * 4);
        EXPECT_LT(size.cx, static_cast<LONG>(text.size()) * 40);
        TEXTMETRICW metrics{};
        EXPECT_TRUE(GetTextMetricsW(dc, &metrics));
        EXPECT_EQ(size.cy, metrics.tmHeight);
    }
    EXPECT_TRUE(DeleteDC(dc));
}

TEST_F(TextTest, BoldIsHeavier) {
    const auto ink = [](LONG weight) {
        Device device(200, 40);
        LOGFONTW font = describe(-24);
        font.lfWeight = weight;
        const Using selected(device, CreateFontIndirectW(&font));
        SetTextColor(device, RGB(255, 255, 255));
        SetBkMode(device, TRANSPARENT);
        TextOutW(device, 2, 2, L"Weight", 6);
        int drawn = 0;
        for (int y = 0; y < 40; ++y) {
            for (int x = 0; x < 200; ++x) drawn += device.pixel(x, y) != 0 ? 1 : 0;
        }
        return drawn;
    };
    EXPECT_GT(ink(FW_BOLD), ink(FW_NORMAL) * 5 / 4);
}

}  // namespace
}  // namespace zoltest
