#include "viewing/text/plain_text.h"

#include <gtest/gtest.h>

namespace {

using viewing::plainText;

TEST(PlainText, LettersStayWhatTheyAre) {
    EXPECT_EQ(plainText(""), "");
    EXPECT_EQ(plainText(" a~"), " a~");
    const std::string scripts = "K\xC3\xB6rper \xE7\x9B\xB4\xE5\xBE\x84 \xF0\x9F\xA9\xBB \xC2\xA0 \xF4\x8F\xBF\xBF";
    EXPECT_EQ(plainText(scripts), scripts);
}

TEST(PlainText, LineEndsAndTabsBecomeBlanks) { EXPECT_EQ(plainText("a\r\nb\tc"), "a  b c"); }

TEST(PlainText, ControlCharactersBecomeQuestionMarks) {
    EXPECT_EQ(plainText("\x1B[31mred\a\b\x7F"), "?[31mred???");
    EXPECT_EQ(plainText(std::string_view("a\0b\x1F", 4)), "a?b?");
    // The same in one character each: what terminals of eight bits take for the start of a command.
    EXPECT_EQ(plainText("\xC2\x80 \xC2\x9B \xC2\x9F"), "? ? ?");
}

TEST(PlainText, WhatIsNoUtf8BecomesQuestionMarks) {
    EXPECT_EQ(plainText("K\xF6rper"), "K?rper");
    EXPECT_EQ(plainText("\x80\xBF\xC3"), "???");
    EXPECT_EQ(plainText("\xE7\x9B"), "??");
    EXPECT_EQ(plainText("\xE7\x9Bx"), "??x");
    EXPECT_EQ(plainText("\xF8\x88\x80\x80\x80"), "?????");
    EXPECT_EQ(plainText("\xFF"), "?");
    // Longer than they need be, a half of a pair, and beyond all characters.
    EXPECT_EQ(plainText("\xC1\x81"), "??");
    EXPECT_EQ(plainText("\xE0\x9F\xBF"), "???");
    EXPECT_EQ(plainText("\xF0\x8F\xBF\xBF"), "????");
    EXPECT_EQ(plainText("\xED\xA0\x80"), "???");
    EXPECT_EQ(plainText("\xF4\x90\x80\x80"), "????");
}

}  // namespace
