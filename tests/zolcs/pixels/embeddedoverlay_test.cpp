#include "zolcs/pixels/embeddedoverlay.h"

#include <gtest/gtest.h>

#include <array>
#include <numeric>
#include <vector>

namespace {

using zolcs::EmbeddedOverlay;

const std::array<std::uint32_t, 16> colours = [] {
    std::array<std::uint32_t, 16> made{};
    std::iota(made.begin(), made.end(), 100U);
    return made;
}();

TEST(EmbeddedOverlayTest, WithoutColoursNothingIsShown) {
    EXPECT_FALSE(EmbeddedOverlay().isShown());
    EXPECT_FALSE(EmbeddedOverlay(nullptr).isShown());
    EXPECT_TRUE(EmbeddedOverlay(colours.data()).isShown());
}

TEST(EmbeddedOverlayTest, TheTopFourBitsChooseTheColour) {
    const EmbeddedOverlay overlay(colours.data());
    EXPECT_EQ(overlay.over(0, 7), 7U);
    EXPECT_EQ(overlay.over(0x0FFF, 7), 7U);
    EXPECT_EQ(overlay.over(0x1000, 7), 101U);
    EXPECT_EQ(overlay.over(0x8ABC, 7), 108U);
    EXPECT_EQ(overlay.over(0xFFFF, 7), 115U);
}

TEST(EmbeddedOverlayTest, ATableShowsWhatSinglePixelsShow) {
    const EmbeddedOverlay overlay(colours.data());
    std::vector<std::uint32_t> table(0x10000);
    std::iota(table.begin(), table.end(), 5U);
    overlay.coverTable(table.data());
    for (std::size_t value = 0; value < table.size(); ++value) {
        ASSERT_EQ(table[value], overlay.over(static_cast<std::uint16_t>(value), static_cast<std::uint32_t>(value) + 5));
    }
}

}  // namespace
