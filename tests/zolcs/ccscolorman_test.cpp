#include "zolcs/ccscolorman.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>
#include <vector>

namespace {

static_assert(offsetof(CCsColorMapT, entries) == 0, "maps read the palette through the record's first member");
static_assert(std::has_virtual_destructor_v<CCsColorMan>);
static_assert(sizeof(unsigned int) == 4);

std::vector<unsigned int> paletteOf(CCsColorMan& manager) {
    CCsColorMapT map;
    EXPECT_EQ(manager.getColorMap(map), 255);
    return {map.entries, map.entries + 256};
}

TEST(CCsColorMan, StartsAsTheGreyRamp) {
    CCsColorMan manager;
    const auto palette = paletteOf(manager);
    EXPECT_EQ(palette[0], 0x000000U);
    EXPECT_EQ(palette[128], 0x808080U);
    EXPECT_EQ(palette[255], 0xFFFFFFU);
    for (unsigned int i = 0; i < 256; ++i) EXPECT_EQ(palette[i], i * 0x010101U);
}

TEST(CCsColorMan, InvertPaletteReversesTheEntries) {
    CCsColorMan manager;
    EXPECT_EQ(manager.invertPalette(), 255);
    const auto palette = paletteOf(manager);
    EXPECT_EQ(palette[0], 0xFFFFFFU);
    for (unsigned int i = 0; i < 256; ++i) EXPECT_EQ(palette[i], (255 - i) * 0x010101U);
}

TEST(CCsColorMan, InvertingTwiceRestoresThePalette) {
    CCsColorMan manager;
    RGBQUAD quads[256] = {};
    for (int i = 0; i < 256; ++i) quads[i].rgbRed = static_cast<BYTE>(i * 37);
    manager.convertToColor(quads);
    const auto before = paletteOf(manager);
    manager.invertPalette();
    EXPECT_NE(paletteOf(manager), before);
    manager.invertPalette();
    EXPECT_EQ(paletteOf(manager), before);
}

TEST(CCsColorMan, ConvertToColorDropsTheReservedByte) {
    CCsColorMan manager;
    RGBQUAD quads[256] = {};
    for (int i = 0; i < 256; ++i) {
        quads[i].rgbRed = static_cast<BYTE>(i);
        quads[i].rgbGreen = static_cast<BYTE>(i * 3);
        quads[i].rgbBlue = static_cast<BYTE>(255 - i);
        quads[i].rgbReserved = 0xEE;
    }
    EXPECT_EQ(manager.convertToColor(quads), 255);
    const auto palette = paletteOf(manager);
    for (unsigned int i = 0; i < 256; ++i) {
        EXPECT_EQ(palette[i], i << 16 | ((i * 3) & 255U) << 8 | (255U - i)) << i;
    }
}

TEST(CCsColorMan, ConvertToColorRefusesNull) {
    CCsColorMan manager;
    const auto before = paletteOf(manager);
    EXPECT_EQ(manager.convertToColor(nullptr), 0);
    EXPECT_EQ(paletteOf(manager), before);
}

// The record is a view: what happens to the palette afterwards is seen through it.
TEST(CCsColorMan, TheViewFollowsThePalette) {
    CCsColorMan manager;
    CCsColorMapT map;
    manager.getColorMap(map);
    manager.invertPalette();
    EXPECT_EQ(map.entries[0], 0xFFFFFFU);
}

}  // namespace
