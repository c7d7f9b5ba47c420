#include "zolcs/simd/capability.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

class CapabilityTest : public ::testing::Test {
protected:
    ~CapabilityTest() override { zolcs::setProcessorCapability(before_); }

private:
    int before_ = zolcs::processorCapability();
};

TEST_F(CapabilityTest, KeepsWhatWasSet) {
    for (const int value : {1, 0, 255, 0, -1}) {
        zolcs::setProcessorCapability(value);
        EXPECT_EQ(zolcs::processorCapability(), value);
    }
}

TEST_F(CapabilityTest, IsOneFlagForAllThreads) {
    zolcs::setProcessorCapability(0);
    std::thread([] { zolcs::setProcessorCapability(1); }).join();
    EXPECT_EQ(zolcs::processorCapability(), 1);
}

}  // namespace
