#include "zolcs/resample/nearest/spanloads.h"

#include "support/test_data.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

constexpr std::uint32_t sentinel = 0xDEADBEEF;

TEST(SpanLoadsTest, LoadsOfEveryLength) {
    zoltest::Random random(22);
    std::vector<std::uint32_t> wide(500);
    std::vector<std::uint16_t> narrow(500);
    std::vector<std::uint32_t> table(65536);
    for (std::uint32_t& value : wide) value = static_cast<std::uint32_t>(random.bits());
    for (std::uint16_t& value : narrow) value = static_cast<std::uint16_t>(random.bits());
    for (std::uint32_t& value : table) value = static_cast<std::uint32_t>(random.bits());
    for (int count = 0; count <= 70; ++count) {
        for (std::size_t shift = 0; shift < 4; ++shift) {
            std::vector<std::int32_t> offsets(static_cast<std::size_t>(count));
            for (std::int32_t& offset : offsets) offset = random.integer(0, 499);
            std::vector<std::uint32_t> copied(90, sentinel);
            std::vector<std::uint32_t> lookedUp(90, sentinel);
            zolcs::copySpan(wide.data(), offsets.data(), count, copied.data() + shift);
            zolcs::lookUpSpan(narrow.data(), offsets.data(), count, table.data(), lookedUp.data() + shift);
            for (std::size_t i = 0; i < 90; ++i) {
                const bool inside = i >= shift && i < shift + offsets.size();
                const auto from = inside ? static_cast<std::size_t>(offsets[i - shift]) : 0;
                ASSERT_EQ(copied[i], inside ? wide[from] : sentinel);
                ASSERT_EQ(lookedUp[i], inside ? table[narrow[from]] : sentinel);
            }
        }
    }
}

}  // namespace
