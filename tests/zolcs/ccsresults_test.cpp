// The numbers behind the names of results and render modes: hosts have them compiled in.
#include "zolcs/ccsresults.h"
#include "zolcs/ccsrendermodes.h"

#include <gtest/gtest.h>

namespace {

TEST(CCsResults, HaveTheNumbersThatHostsKnow) {
    EXPECT_EQ(CCS_DONE, 255);
    EXPECT_EQ(CCS_FAILED, 0);
    EXPECT_EQ(CCS_MISSING, 1);
    EXPECT_EQ(CCS_INVALID, 2);
}

TEST(CCsRenderModes, HaveTheNumbersThatHostsKnow) {
    EXPECT_EQ(CCS_MODE_SCREEN, 1);
    EXPECT_EQ(CCS_MODE_PRINTER, 2);
    EXPECT_EQ(CCS_MODE_BITMAP_PRINTER, 3);
    EXPECT_EQ(CCS_MODE_BURN_IN, 4);
}

}  // namespace
