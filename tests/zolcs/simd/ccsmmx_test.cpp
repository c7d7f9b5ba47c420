#include "zolcs/ccsmmx.h"

#include "platform/compiler.h"
#include "zolcs/simd/capability.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace {

static_assert(std::is_empty_v<CCsMmx>);
static_assert(!std::is_polymorphic_v<CCsMmx>);

class CCsMmxTest : public ::testing::Test {
protected:
    ~CCsMmxTest() override { zolcs::setProcessorCapability(before_); }

private:
    int before_ = zolcs::processorCapability();
};

TEST_F(CCsMmxTest, RecordsWhatTheProcessorOffers) {
    const int expected = zolProcessorHasMmx() ? 1 : 0;
    for (const int earlier : {0, 1, 7}) {
        zolcs::setProcessorCapability(earlier);
        const CCsMmx mmx;
        EXPECT_EQ(zolcs::processorCapability(), expected);
    }
}

TEST_F(CCsMmxTest, FlagOutlivesTheObject) {
    zolcs::setProcessorCapability(0);
    { const CCsMmx mmx; }
    EXPECT_EQ(zolcs::processorCapability(), zolProcessorHasMmx() ? 1 : 0);
}

TEST_F(CCsMmxTest, SixtyFourBitProcessorsAlwaysOfferIt) {
    if (sizeof(void*) == 4) GTEST_SKIP() << "32-bit processors may lack it";
    zolcs::setProcessorCapability(0);
    const CCsMmx mmx;
    EXPECT_EQ(zolcs::processorCapability(), 1);
}

}  // namespace
