// Characters in UTF-8 and in wide strings.
#include "platform/unicode.h"

#include <gtest/gtest.h>

namespace {

using zolplatform::firstOfUtf8;
using zolplatform::fromUtf8;
using zolplatform::isCharacter;
using zolplatform::toUtf8;

std::string utf8Of(char32_t code) {
    std::string out;
    zolplatform::appendUtf8(out, code);
    return out;
}

TEST(Unicode, CharactersEndBeforeSurrogatesAndAtTheLastPlane) {
    EXPECT_TRUE(isCharacter(0));
    EXPECT_TRUE(isCharacter(0xD7FF));
    EXPECT_FALSE(isCharacter(0xD800));
    EXPECT_FALSE(isCharacter(0xDFFF));
    EXPECT_TRUE(isCharacter(0xE000));
    EXPECT_TRUE(isCharacter(0x10FFFF));
    EXPECT_FALSE(isCharacter(0x110000));
    EXPECT_FALSE(isCharacter(0xFFFFFFFF));
}

TEST(Unicode, EncodesAtTheBoundariesOfLengths) {
    EXPECT_EQ(utf8Of(0x00), std::string(1, '\0'));
    EXPECT_EQ(utf8Of(0x7F), "\x7F");
    EXPECT_EQ(utf8Of(0x80), "\xC2\x80");
    EXPECT_EQ(utf8Of(0x7FF), "\xDF\xBF");
    EXPECT_EQ(utf8Of(0x800), "\xE0\xA0\x80");
    EXPECT_EQ(utf8Of(0xFFFF), "\xEF\xBF\xBF");
    EXPECT_EQ(utf8Of(0x10000), "\xF0\x90\x80\x80");
    EXPECT_EQ(utf8Of(0x10FFFF), "\xF4\x8F\xBF\xBF");
}

TEST(Unicode, WhatIsNoCharacterIsEncodedAsTheReplacement) {
    EXPECT_EQ(utf8Of(0xD800), "\xEF\xBF\xBD");
    EXPECT_EQ(utf8Of(0xDFFF), "\xEF\xBF\xBD");
    EXPECT_EQ(utf8Of(0x110000), "\xEF\xBF\xBD");
    EXPECT_EQ(utf8Of(0xFFFFFFFF), "\xEF\xBF\xBD");
}

TEST(Unicode, EveryCharacterComesBack) {
    for (char32_t code = 0; code <= 0x10FFFF; ++code) {
        if (!isCharacter(code)) continue;
        const std::string bytes = utf8Of(code);
        const auto back = firstOfUtf8(bytes + "x");
        ASSERT_EQ(back.code, code);
        ASSERT_EQ(back.length, bytes.size()) << static_cast<std::uint32_t>(code);
        if (code == 0) continue;
        std::wstring wide;
        zolplatform::appendWide(wide, code);
        ASSERT_EQ(fromUtf8(bytes), wide) << static_cast<std::uint32_t>(code);
        ASSERT_EQ(toUtf8(wide.c_str()), bytes) << static_cast<std::uint32_t>(code);
        const wchar_t* text = wide.c_str();
        ASSERT_EQ(zolplatform::takeFirst(text), code);
        ASSERT_EQ(*text, L'\0');
    }
}

TEST(Unicode, WhatIsNoUtf8IsNoCharacter) {
    const std::string_view refused[] = {
        "\x80",  // begins in the middle of a character
        "\xBF",
        "\xC2",  // cut off
        "\xE0\xA0",
        "\xF0\x90\x80",
        "\xC2x",  // goes on with something else
        "\xE0\xA0\xC0",
        "\xC0\x80",  // longer than needed
        "\xC1\xBF",
        "\xE0\x9F\xBF",
        "\xF0\x8F\xBF\xBF",
        "\xED\xA0\x80",  // surrogates
        "\xED\xBF\xBF",
        "\xF4\x90\x80\x80",  // beyond Unicode
        "\xF8\x88\x80\x80\x80",
        "\xFF",
    };
    for (const std::string_view text : refused) {
        EXPECT_EQ(firstOfUtf8(text).length, 0U) << testing::PrintToString(text);
        EXPECT_EQ(fromUtf8(text), std::nullopt) << testing::PrintToString(text);
        EXPECT_EQ(fromUtf8("a" + std::string(text)), std::nullopt) << testing::PrintToString(text);
    }
    EXPECT_EQ(fromUtf8(""), L"");
}

TEST(Unicode, PairsOfSurrogatesAreOneCharacterInEveryWideString) {
    const wchar_t text[] = {0xD83D, 0xDDFB, L'x', 0xDDFB, 0xD83D, 0xD83D, 0xDDFB, 0};
    const wchar_t* at = text;
    EXPECT_EQ(zolplatform::takeFirst(at), char32_t{0x1F5FB});
    EXPECT_EQ(zolplatform::takeFirst(at), U'x');
    EXPECT_EQ(zolplatform::takeFirst(at), char32_t{0xDDFB});  // alone: as it stands
    EXPECT_EQ(zolplatform::takeFirst(at), char32_t{0xD83D});
    EXPECT_EQ(zolplatform::takeFirst(at), char32_t{0x1F5FB});
    EXPECT_EQ(*at, L'\0');
    EXPECT_EQ(toUtf8(text), "\xF0\x9F\x97\xBBx\xEF\xBF\xBD\xEF\xBF\xBD\xF0\x9F\x97\xBB");
}

TEST(Unicode, ASurrogateAtTheEndOfATextIsTakenAlone) {
    const wchar_t text[] = {0xD83D, 0};
    const wchar_t* at = text;
    EXPECT_EQ(zolplatform::takeFirst(at), char32_t{0xD83D});
    EXPECT_EQ(at, text + 1);
}

}  // namespace
