#include "zolcs/simd/variant.h"

#include "support/variants.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(VariantTest, VariantsAreChosenByName) {
    const zoltest::VariantGuard guard;
    const std::vector<std::string> names = zolcs::simd::variants();
    ASSERT_GE(names.size(), 2U);
    EXPECT_EQ(names[0], "plain");
    EXPECT_EQ(names[1], "portable");
    for (const std::string& name : names) {
        EXPECT_TRUE(zolcs::simd::choose(name));
        EXPECT_EQ(zolcs::simd::isPlain(), name == "plain");
        EXPECT_EQ(zolcs::simd::variants(), names);
    }
    EXPECT_FALSE(zolcs::simd::choose("no such processor"));
    EXPECT_TRUE(zolcs::simd::choose(""));
    EXPECT_FALSE(zolcs::simd::isPlain());
}

}  // namespace
