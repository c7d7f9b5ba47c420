#include "viewing/text/numbers.h"

#include <gtest/gtest.h>

namespace {

using viewing::parseAs;

TEST(Numbers, AreAllOfTheText) {
    EXPECT_EQ(parseAs<int>("12"), 12);
    EXPECT_EQ(parseAs<int>("-12"), -12);
    EXPECT_EQ(parseAs<int>("+12"), 12);
    EXPECT_EQ(parseAs<double>("-1.5e3"), -1500.0);
    EXPECT_EQ(parseAs<double>("+.5"), 0.5);
    for (const char* text : {"", "+", "-", "+-1", "++1", "--1", " 1", "1 ", "1x", "0x10", "one", "1,5"}) {
        EXPECT_EQ(parseAs<int>(text), std::nullopt) << text;
        EXPECT_EQ(parseAs<double>(text), std::nullopt) << text;
    }
    EXPECT_EQ(parseAs<int>("1.5"), std::nullopt);
}

TEST(Numbers, FitAndAreFinite) {
    EXPECT_EQ(parseAs<int>("2147483647"), 2147483647);
    EXPECT_EQ(parseAs<int>("2147483648"), std::nullopt);
    for (const char* text : {"nan", "inf", "-inf", "infinity", "1e999"})
        EXPECT_EQ(parseAs<double>(text), std::nullopt) << text;
}

}  // namespace
