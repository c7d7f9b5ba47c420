#include "zolcs/simd/transpose.h"

#include "support/test_data.h"
#include "support/variants.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {

using zolcs::simd::TileShape;

constexpr std::uint32_t sentinel = 0xDEADBEEF;

template <typename Pixel>
void expectTransposed(int rows, int columns, int tilePitch, int outPitch, zoltest::Random& random) {
    std::vector<Pixel> tile(static_cast<std::size_t>(rows * tilePitch));
    for (Pixel& value : tile) value = static_cast<Pixel>(random.bits());
    std::vector<Pixel> out(static_cast<std::size_t>(columns * outPitch + 1), static_cast<Pixel>(sentinel));
    std::vector<Pixel> expected = out;
    for (int y = 0; y < columns; ++y) {
        for (int x = 0; x < rows; ++x) {
            expected[static_cast<std::size_t>(y * outPitch + x)] = tile[static_cast<std::size_t>(x * tilePitch + y)];
        }
    }
    zolcs::simd::transposeTile(tile.data(), TileShape{tilePitch, rows, columns, outPitch}, out.data());
    ASSERT_EQ(out, expected) << rows << " x " << columns;
}

TEST(TransposeTest, TilesOfEveryShape) {
    zoltest::Random random(23);
    zoltest::forEachVariant([&](const std::string&) {
        for (int rows = 0; rows <= 33; ++rows) {
            for (int columns = 0; columns <= 20; ++columns) {
                const int tilePitch = columns + random.integer(0, 3);
                const int outPitch = rows + random.integer(0, 3);
                expectTransposed<std::uint32_t>(rows, columns, tilePitch, outPitch, random);
            }
        }
        expectTransposed<std::uint8_t>(7, 9, 10, 8, random);
        expectTransposed<std::uint16_t>(9, 7, 10, 12, random);
        expectTransposed<std::uint64_t>(8, 8, 8, 8, random);
    });
}

}  // namespace
