#include "viewing/image/bit_plane.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

using namespace viewing;

TEST(BitPlane, PacksItsRowsWithoutPaddingTheLowestBitFirst) {
    BitPlane plane(3, 4);
    plane.set(1, 0);
    plane.set(2, 2);
    plane.setBit(11);
    EXPECT_EQ(plane.data()[0], 0x02);
    EXPECT_EQ(plane.data()[1], 0x09);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 3; ++x)
            EXPECT_EQ(plane.get(x, y), (x == 1 && y == 0) || (x == 2 && y >= 2)) << x << ',' << y;
}

TEST(BitPlane, BitsBeyondTheBytesAreClear) {
    const std::vector<unsigned char> bytes{0xFF, 0x81};
    EXPECT_TRUE(packedBit(bytes, 7));
    EXPECT_TRUE(packedBit(bytes, 8));
    EXPECT_FALSE(packedBit(bytes, 9));
    EXPECT_TRUE(packedBit(bytes, 15));
    EXPECT_FALSE(packedBit(bytes, 16));
    EXPECT_FALSE(packedBit({}, 0));
}

TEST(BitPlane, AnyBitOfWordsBecomesAPlane) {
    const std::vector<std::uint16_t> words{0x0100, 0x0001, 0x0300, 0xFEFF};
    BitPlane plane = planeOfBit(words, 8, 2, 2);
    EXPECT_TRUE(plane.get(0, 0));
    EXPECT_FALSE(plane.get(1, 0));
    EXPECT_TRUE(plane.get(0, 1));
    EXPECT_FALSE(plane.get(1, 1));
    plane = planeOfBit(words, 15, 2, 2);
    EXPECT_FALSE(plane.get(0, 1));
    EXPECT_TRUE(plane.get(1, 1));
}

}  // namespace
