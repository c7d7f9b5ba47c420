#include "zolwebmlang/zolwebmlang.h"

#include "support/gdi_canvas.h"

#include "zolwebmlang/charset.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#if !defined(_WIN32)
#include <fontconfig/fontconfig.h>
#endif

namespace {

struct Script {
    const wchar_t* text;
    DWORD charset;
};

const std::vector<Script> scripts = {
    {L"Thorax 120 kV", ANSI_CHARSET},
    {L"Röntgen \u00B5", ANSI_CHARSET},
    {L"", ANSI_CHARSET},
    {L"K\u0159ivka \u017Beber", EASTEUROPE_CHARSET},
    {L"\u03B1\u03BE\u03BF\u03BD\u03B9\u03BA\u03AE", GREEK_CHARSET},
    {L"\u0441\u043D\u0438\u043C\u043E\u043A", RUSSIAN_CHARSET},
    {L"\u05E6\u05D9\u05DC\u05D5\u05DD", HEBREW_CHARSET},
    {L"\u0635\u0648\u0631\u0629", ARABIC_CHARSET},
    {L"\u0E20\u0E32\u0E1E", THAI_CHARSET},
    {L"\u7530\u4E2D \u305F\u308D\u3046", SHIFTJIS_CHARSET},
    {L"\uFF94\uFF8F\uFF80\uFF9E", SHIFTJIS_CHARSET},
    {L"\uAE40\uD76C\uC911 \u91D1", HANGUL_CHARSET},
    {L"\u738B\u5C0F\u4E1C", GB2312_CHARSET},
    {L"Nguy\u1EC5n", 163},
};

BYTE charsetOf(const wchar_t* text, int type) {
    return zolwebmlang::charsetOf(zolwebmlang::visibleCharacters(text), type);
}

LOGFONTW made(const wchar_t* text, const wchar_t* face, int width, int type = ZOL_CHARSET_UNDEFINED) {
    ZolCharsetSupport support;
    CFont font;
    LOGFONTW description{};
    EXPECT_TRUE(support.CreateFontForStr(text, font, type, face, width));
    EXPECT_NE(font.GetSafeHandle(), nullptr);
    EXPECT_EQ(font.GetLogFont(&description), static_cast<int>(sizeof description));
    return description;
}

}  // namespace

TEST(CharsetTest, StringDecidesByTheScriptOfMostCharacters) {
    for (const Script& script : scripts) {
        EXPECT_EQ(charsetOf(script.text, ZOL_CHARSET_UNDEFINED), script.charset) << testing::PrintToString(script.text);
    }
    EXPECT_EQ(charsetOf(L"\u03B1 \u0441\u043D", ZOL_CHARSET_UNDEFINED), RUSSIAN_CHARSET);
    EXPECT_EQ(charsetOf(L"\u03B1\u03BE\u03BF \u0441\u043D", ZOL_CHARSET_UNDEFINED), GREEK_CHARSET);
    EXPECT_EQ(charsetOf(L"Latin letters in plenty \u05E6", ZOL_CHARSET_UNDEFINED), HEBREW_CHARSET);
}

TEST(CharsetTest, TermSettlesWhatTheStringLeavesOpen) {
    const std::vector<DWORD> ofLatin = {
        ANSI_CHARSET,   SHIFTJIS_CHARSET,   SHIFTJIS_CHARSET, ANSI_CHARSET,   EASTEUROPE_CHARSET, TURKISH_CHARSET,
        BALTIC_CHARSET, RUSSIAN_CHARSET,    ARABIC_CHARSET,   GREEK_CHARSET,  HEBREW_CHARSET,     TURKISH_CHARSET,
        THAI_CHARSET,   GB2312_CHARSET,     ANSI_CHARSET,     ANSI_CHARSET,   SHIFTJIS_CHARSET,   SHIFTJIS_CHARSET,
        ANSI_CHARSET,   EASTEUROPE_CHARSET, TURKISH_CHARSET,  BALTIC_CHARSET, RUSSIAN_CHARSET,    ARABIC_CHARSET,
        GREEK_CHARSET,  HEBREW_CHARSET,     TURKISH_CHARSET,  THAI_CHARSET,   SHIFTJIS_CHARSET,   SHIFTJIS_CHARSET,
        HANGUL_CHARSET, GB2312_CHARSET,     ANSI_CHARSET,
    };
    ASSERT_EQ(ofLatin.size(), 33U);
    for (int type = 0; type <= 32; ++type) {
        EXPECT_EQ(charsetOf(L"DOE^JOHN", type), ofLatin.at(static_cast<std::size_t>(type))) << type;
    }
    EXPECT_EQ(charsetOf(L"DOE^JOHN", -1), ANSI_CHARSET);
    EXPECT_EQ(charsetOf(L"DOE^JOHN", 33), ANSI_CHARSET);
    // Ideographs alone are Japanese, Korean or Chinese by their term.
    EXPECT_EQ(charsetOf(L"\u738B\u5C0F", 28), SHIFTJIS_CHARSET);
    EXPECT_EQ(charsetOf(L"\u738B\u5C0F", 30), HANGUL_CHARSET);
    EXPECT_EQ(charsetOf(L"\u738B\u5C0F", 0), GB2312_CHARSET);
    // A string of another script than its term stays readable.
    EXPECT_EQ(charsetOf(L"\u0441\u043D\u0438", 8), RUSSIAN_CHARSET);
    EXPECT_EQ(charsetOf(L"\u305F\u308D", 30), SHIFTJIS_CHARSET);
}

TEST(CharsetTest, OnlyVisibleCharactersCount) {
    using zolwebmlang::visibleCharacters;
    EXPECT_EQ(visibleCharacters(L"a\tb\r\n\u200Bc\u202Ed\uFEFF"), U"abcd");
    EXPECT_EQ(visibleCharacters(L"\U0001F5FB\U00020000"), U"\U0001F5FB\U00020000");
    EXPECT_EQ(visibleCharacters(L"\u2764\uFE0F\uFE0Ex\u2028\u2060"), U"\u2764x");
    EXPECT_EQ(visibleCharacters(L""), U"");
    const wchar_t lone[] = {0xD800, L'x', 0xDC00, 0xFFFF, 0};
    EXPECT_EQ(visibleCharacters(lone), U"x");
    EXPECT_EQ(charsetOf(L"\U00020000", ZOL_CHARSET_UNDEFINED), GB2312_CHARSET);
}

TEST(ZolCharsetSupportTest, RefusesBadArgumentsAndLeavesTheFontEmpty) {
    const unsigned int objects = zoltest::gdiObjectCount();
    {
        ZolCharsetSupport support;
        CFont font;
        ASSERT_TRUE(support.CreateFontForStr(L"x", font, 32, L"DejaVu Sans", 8));
        EXPECT_FALSE(support.CreateFontForStr(nullptr, font, 32, L"DejaVu Sans", 8));
        EXPECT_EQ(font.GetSafeHandle(), nullptr);
        for (const int width : {0, -1, -2147483647 - 1}) {
            ASSERT_TRUE(support.CreateFontForStr(L"x", font, 32, L"DejaVu Sans", 8));
            EXPECT_FALSE(support.CreateFontForStr(L"x", font, 32, L"DejaVu Sans", width));
            EXPECT_EQ(font.GetSafeHandle(), nullptr);
        }
        EXPECT_FALSE(support.CreateFontForStr(L"x", font, 32, nullptr, 8));
        EXPECT_EQ(font.GetSafeHandle(), nullptr);
    }
    EXPECT_EQ(zoltest::gdiObjectCount(), objects);
}

TEST(ZolCharsetSupportTest, ReplacesTheFontWithoutALeak) {
    const bool counts = zoltest::canCountGdiObjects();
    const unsigned int objects = zoltest::gdiObjectCount();
    {
        ZolCharsetSupport support;
        CFont font;
        for (const Script& script : scripts) {
            EXPECT_TRUE(support.CreateFontForStr(script.text, font, 32, L"DejaVu Sans", 9));
            if (counts) {
                EXPECT_EQ(zoltest::gdiObjectCount(), objects + 1);
            }
        }
    }
    EXPECT_EQ(zoltest::gdiObjectCount(), objects);
}

TEST(ZolCharsetSupportTest, WidthIsTheAverageCharacterWidth) {
    const zoltest::Canvas canvas(1, 1);
    ZolCharsetSupport support;
    for (const int width : {1, 2, 5, 8, 13, 40, 200}) {
        CFont font;
        ASSERT_TRUE(support.CreateFontForStr(L"Thorax", font, 32, L"DejaVu Sans", width));
        LOGFONTW description{};
        font.GetLogFont(&description);
        EXPECT_EQ(description.lfWidth, width);
        EXPECT_LT(description.lfHeight, 0);
        EXPECT_EQ(description.lfWeight, FW_NORMAL);
        HGDIOBJ before = SelectObject(canvas.dc(), font.GetSafeHandle());
        TEXTMETRICW metrics{};
        EXPECT_TRUE(GetTextMetricsW(canvas.dc(), &metrics));
        EXPECT_EQ(metrics.tmAveCharWidth, width);
        SelectObject(canvas.dc(), before);

        // Letters keep the face's own shape: without a width of its own the font is as wide, within a rounded em.
        description.lfWidth = 0;
        HFONT unstretched = CreateFontIndirectW(&description);
        before = SelectObject(canvas.dc(), unstretched);
        EXPECT_TRUE(GetTextMetricsW(canvas.dc(), &metrics));
        EXPECT_NEAR(metrics.tmAveCharWidth, width, 1);
        SelectObject(canvas.dc(), before);
        DeleteObject(unstretched);
    }
}

TEST(ZolCharsetSupportTest, HugeWidthsAreLimited) {
    const LOGFONTW font = made(L"x", L"DejaVu Sans", 2147483647);
    EXPECT_EQ(font.lfWidth, 4096);
    EXPECT_LT(font.lfHeight, -4096);
}

TEST(ZolCharsetSupportTest, LongFaceNamesAreCut) {
    const std::wstring face(200, L'q');
    const LOGFONTW font = made(L"x", face.c_str(), 8);
    EXPECT_EQ(font.lfFaceName[LF_FACESIZE - 1], L'\0');
}

TEST(ZolCharsetSupportTest, FontCarriesTheCharacterSet) {
    EXPECT_EQ(made(L"\u0441\u043D", L"DejaVu Sans", 8).lfCharSet, RUSSIAN_CHARSET);
    EXPECT_EQ(made(L"DOE", L"DejaVu Sans", 8, 9).lfCharSet, GREEK_CHARSET);
}

#if !defined(_WIN32)
namespace {

/// Whether some font (of the family, where one is named) has all characters of the text.
bool isCovered(const std::wstring& face, const wchar_t* text) {
    const std::string family(face.begin(), face.end());  // the names of fonts here are ASCII
    FcPattern* pattern = FcPatternCreate();
    if (!family.empty()) FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(family.c_str()));
    FcObjectSet* wanted = FcObjectSetBuild(FC_CHARSET, nullptr);
    FcFontSet* fonts = FcFontList(nullptr, pattern, wanted);
    bool covered = false;
    for (int i = 0; i < fonts->nfont && !covered; ++i) {
        FcCharSet* characters = nullptr;
        if (FcPatternGetCharSet(fonts->fonts[i], FC_CHARSET, 0, &characters) != FcResultMatch) continue;
        covered = true;
        for (const char32_t c : zolwebmlang::visibleCharacters(text))
            covered = covered && FcCharSetHasChar(characters, c);
    }
    FcFontSetDestroy(fonts);
    FcObjectSetDestroy(wanted);
    FcPatternDestroy(pattern);
    return covered;
}

}  // namespace

TEST(ZolCharsetSupportTest, FaceCoversTheString) {
    for (const wchar_t* asked : {L"DejaVu Sans", L"Liberation Mono", L"No Such Face"}) {
        for (const Script& script : scripts) {
            EXPECT_TRUE(isCovered({}, script.text)) << "no font for " << testing::PrintToString(script.text);
            const LOGFONTW font = made(script.text, asked, 8);
            EXPECT_TRUE(isCovered(font.lfFaceName, script.text))
                << testing::PrintToString(script.text) << " in " << testing::PrintToString(font.lfFaceName);
        }
    }
}

TEST(ZolCharsetSupportTest, IdeographsHaveTheShapesOfTheirLanguage) {
    const std::wstring faces[] = {made(L"\u76F4\u5F84\u304B", L"DejaVu Sans", 8).lfFaceName,
                                  made(L"\u76F4\u5F84 \uC9C0\uB984", L"DejaVu Sans", 8).lfFaceName,
                                  made(L"\u76F4\u5F84\uFF0C\u6BEB\u7C73", L"DejaVu Sans", 8).lfFaceName};
    EXPECT_NE(faces[0], faces[1]);
    EXPECT_NE(faces[0], faces[2]);
    EXPECT_NE(faces[1], faces[2]);
}

TEST(ZolCharsetSupportTest, AskedFaceStandsWhereItCovers) {
    int checked = 0;
    for (const wchar_t* asked : {L"DejaVu Sans", L"DejaVu Serif", L"Liberation Mono", L"Liberation Sans"}) {
        for (const Script& script : scripts) {
            if (!isCovered(asked, script.text)) continue;
            EXPECT_STREQ(made(script.text, asked, 8).lfFaceName, asked) << testing::PrintToString(script.text);
            ++checked;
        }
    }
    if (checked == 0) GTEST_SKIP() << "none of the faces is installed";
}
#endif
