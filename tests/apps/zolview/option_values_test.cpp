#include "zolview/option_values.h"

#include <gtest/gtest.h>

namespace {

using namespace viewing;
using namespace zolview;

TEST(DisplaySettings, SizeTakesTwoWholeNumbers) {
    EXPECT_EQ(parseSize("640x480"), (Size{640, 480}));
    EXPECT_EQ(parseSize("1x1"), (Size{1, 1}));
    EXPECT_EQ(parseSize("32767x2"), (Size{32767, 2}));
    EXPECT_EQ(parseSize("8192x8192"), (Size{8192, 8192}));
}

TEST(DisplaySettings, SizeRefusesWhatIsNoSize) {
    for (const char* text :
         {"",         "x",        "640",           "640x",      "x480",        "640x480x2", "640X480",
          " 640x480", "640x480 ", "6.5x4",         "0x480",     "640x0",       "-640x480",  "640x-1",
          "32768x1",  "1x32768",  "99999999999x1", "8193x8192", "32767x32767", "0x0",       "nanxnan"})
        EXPECT_EQ(parseSize(text), std::nullopt) << text;
}

TEST(DisplaySettings, WindowTakesNumbersWithAWidthOfAtLeastOne) {
    EXPECT_EQ(parseWindow("40/400"), (Window{40.0, 400.0}));
    EXPECT_EQ(parseWindow("-600.5/1"), (Window{-600.5, 1.0}));
    EXPECT_EQ(parseWindow("+1e9/1e9"), (Window{1e9, 1e9}));
    for (const char* text : {"", "40", "40/", "/400", "40/0", "40/0.999", "40/-1", "nan/400", "40/nan", "40/inf",
                             "inf/40", "1e10/40", "40/1e10", "40/400/3", "forty/400"})
        EXPECT_EQ(parseWindow(text), std::nullopt) << text;
}

TEST(DisplaySettings, PanTakesTwoNumbers) {
    EXPECT_EQ(parsePan("-10,2.5"), (Pan{-10.0, 2.5}));
    EXPECT_EQ(parsePan("1000000,-1000000"), (Pan{1e6, -1e6}));
    for (const char* text : {"", "1", "1,", ",1", "1,2,3", "1000001,0", "0,-1e7", "nan,0", "0,inf"})
        EXPECT_EQ(parsePan(text), std::nullopt) << text;
}

TEST(DisplaySettings, InterpolationsHaveTheirNames) {
    EXPECT_EQ(parseInterpolation("nearest"), Interpolation::Nearest);
    EXPECT_EQ(parseInterpolation("bilinear"), Interpolation::Bilinear);
    EXPECT_EQ(parseInterpolation("bicubic"), Interpolation::Bicubic);
    for (const char* text : {"", "Nearest", "linear", "bicubic ", "2"})
        EXPECT_EQ(parseInterpolation(text), std::nullopt) << text;
}

TEST(DisplaySettings, SharpeningTakesABoxAndAStrength) {
    EXPECT_EQ(parseSharpening("5,2"), (Sharpening{5, 2}));
    EXPECT_EQ(parseSharpening("1,1"), (Sharpening{1, 1}));
    EXPECT_EQ(parseSharpening("32767,1000"), (Sharpening{32767, 1000}));
    for (const char* text : {"", "5", "5,", ",2", "0,2", "-1,2", "5,0", "5,-1", "5,1001", "32768,1", "5,2,1", "5.5,1",
                             "5,1.5", "5;2", "5, 2", "99999999999,1"})
        EXPECT_EQ(parseSharpening(text), std::nullopt) << text;
}

TEST(DisplaySettings, MagnifierTakesAPlaceARadiusAndAFactor) {
    EXPECT_EQ(parseMagnifier("300,200,80,2.5"), (Magnifier{300, 200, 80, 2.5}));
    EXPECT_EQ(parseMagnifier("-10,-1000000,1,0.01"), (Magnifier{-10, -1000000, 1, 0.01}));
    EXPECT_EQ(parseMagnifier("0,1000000,4096,100"), (Magnifier{0, 1000000, 4096, 100.0}));
    for (const char* text :
         {"", "1", "1,2", "1,2,3", "1,2,3,", "1,2,0,2", "1,2,-3,2", "1,2,4097,2", "1,2,3,0", "1,2,3,-1", "1,2,3,101",
          "1,2,3,nan", "1,2,3,inf", "1.5,2,3,2", "1,2,3,4,5", "1000001,2,3,2", "1,-1000001,3,2", "a,2,3,2"})
        EXPECT_EQ(parseMagnifier(text), std::nullopt) << text;
}

TEST(DisplaySettings, FlipsAreLetters) {
    EXPECT_EQ(parseFlip("h"), Flip::Horizontal);
    EXPECT_EQ(parseFlip("v"), Flip::Vertical);
    for (const char* text : {"", "H", "hv", "none"}) EXPECT_EQ(parseFlip(text), std::nullopt) << text;
}

TEST(DisplaySettings, QuarterTurnsAreFour) {
    for (const int degrees : {0, 90, 180, 270}) EXPECT_EQ(parseQuarterTurn(std::to_string(degrees)), degrees);
    for (const char* text : {"", "-90", "360", "45", "90.0", "right"})
        EXPECT_EQ(parseQuarterTurn(text), std::nullopt) << text;
}

TEST(DisplaySettings, WholeNumberKeepsToItsRange) {
    EXPECT_EQ(parseWhole("72", 72, 1200), 72);
    EXPECT_EQ(parseWhole("+1200", 72, 1200), 1200);
    for (const char* text : {"", "71", "1201", "-72", "72.0", "99999999999"})
        EXPECT_EQ(parseWhole(text, 72, 1200), std::nullopt) << text;
}

TEST(DisplaySettings, NumberKeepsToItsRange) {
    EXPECT_EQ(parseNumber("0.001", minZoom, maxZoom), 0.001);
    EXPECT_EQ(parseNumber("1000", minZoom, maxZoom), 1000.0);
    for (const char* text : {"", "0", "-1", "0.0009", "1000.1", "1e300", "nan", "inf", "two", "2 "})
        EXPECT_EQ(parseNumber(text, minZoom, maxZoom), std::nullopt) << text;
}

TEST(OptionValues, PapersAreThree) {
    EXPECT_EQ(parsePaper("A4"), (Millimetres{210.0, 297.0}));
    EXPECT_EQ(parsePaper("A3"), (Millimetres{297.0, 420.0}));
    EXPECT_EQ(parsePaper("letter"), (Millimetres{215.9, 279.4}));
    for (const char* const text : {"", "a4", "A5", "A4 ", "legal"}) EXPECT_EQ(parsePaper(text), std::nullopt) << text;
}

}  // namespace
