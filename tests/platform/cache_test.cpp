// Stores that bypass the cache, and prefetching beyond an image.
#include "platform/cache.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

TEST(Cache, NonTemporalStoresFillEveryLengthFromEveryAddress) {
    constexpr std::uint32_t sentinel = 0xDEADBEEF;
    constexpr std::uint32_t colour = 0x00123456;
    for (std::size_t first = 1; first <= 5; ++first) {
        for (std::size_t count = 0; count <= 40; ++count) {
            std::vector<std::uint32_t> pixels(50, sentinel);
            zolplatform::fillNonTemporal(pixels.data() + first, count, colour);
            for (std::size_t i = 0; i < pixels.size(); ++i) {
                ASSERT_EQ(pixels[i], i >= first && i < first + count ? colour : sentinel) << i;
            }
        }
    }
}

TEST(Cache, FourMebibytesAreTooLarge) {
    EXPECT_FALSE(zolplatform::isTooLargeForTheCache((std::int64_t{4} << 20) - 1));
    EXPECT_TRUE(zolplatform::isTooLargeForTheCache(std::int64_t{4} << 20));
}

TEST(Cache, PrefetchingReachesBeyondTheMemoryThatIsThere) {
    std::vector<std::uint32_t> pixels(4, 7);
    zolplatform::prefetch(pixels.data(), std::ptrdiff_t{1} << 30);
    zolplatform::prefetchForOneUse(pixels.data(), -(std::ptrdiff_t{1} << 30));
    zolplatform::prefetchRow(pixels.data() + 4);
    EXPECT_EQ(pixels, std::vector<std::uint32_t>(4, 7));
}

}  // namespace
