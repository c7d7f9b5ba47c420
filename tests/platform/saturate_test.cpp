// Conversions to 32 bits.
#include "platform/saturate.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using zolplatform::saturated;
using zolplatform::truncated;

constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();

TEST(Saturate, IntegersStopAtTheEndsOfTheRange) {
    EXPECT_EQ(saturated(0), 0);
    EXPECT_EQ(saturated(-5), -5);
    EXPECT_EQ(saturated(std::int64_t{highest}), highest);
    EXPECT_EQ(saturated(std::int64_t{highest} + 1), highest);
    EXPECT_EQ(saturated(std::int64_t{lowest}), lowest);
    EXPECT_EQ(saturated(std::int64_t{lowest} - 1), lowest);
    EXPECT_EQ(saturated(std::numeric_limits<std::int64_t>::max()), highest);
    EXPECT_EQ(saturated(std::numeric_limits<std::int64_t>::min()), lowest);
}

TEST(Saturate, DoublesLoseTheirFractionTowardsZero) {
    EXPECT_EQ(truncated(2.9), 2);
    EXPECT_EQ(truncated(-2.9), -2);
    EXPECT_EQ(truncated(-0.5), 0);
    EXPECT_EQ(truncated(2147483646.9), highest - 1);
    EXPECT_EQ(truncated(-2147483647.9), lowest + 1);
}

TEST(Saturate, DoublesStopAtTheEndsOfTheRangeAndNonNumbersAreZero) {
    EXPECT_EQ(truncated(2147483647.0), highest);
    EXPECT_EQ(truncated(2147483648.0), highest);
    EXPECT_EQ(truncated(-2147483648.0), lowest);
    EXPECT_EQ(truncated(-1e300), lowest);
    EXPECT_EQ(truncated(std::numeric_limits<double>::infinity()), highest);
    EXPECT_EQ(truncated(-std::numeric_limits<double>::infinity()), lowest);
    EXPECT_EQ(truncated(std::numeric_limits<double>::quiet_NaN()), 0);
}

}  // namespace
