#include "zolipp/zolipp.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "support/test_data.h"
#include "zolipp/lutpalette.h"

namespace {

constexpr std::byte sentinel{0xA5};

std::vector<Ipp32u> randomTable(zoltest::Random& random, std::size_t entries) {
    std::vector<Ipp32u> table(entries);
    for (auto& entry : table) entry = static_cast<Ipp32u>(random.bits());
    return table;
}

std::vector<std::byte> randomBytes(zoltest::Random& random, std::size_t count) {
    std::vector<std::byte> bytes(count);
    for (auto& b : bytes) b = static_cast<std::byte>(random.bits());
    return bytes;
}

// What the primitive is meant to do, without any of its helpers.
void expectLookedUp(const zolipp::LutPaletteJob& job) {
    for (int y = 0; y < job.size.height; ++y) {
        for (int x = 0; x < job.size.width; ++x) {
            Ipp16u sample = 0;
            Ipp32u pixel = 0;
            std::memcpy(&sample, job.source + y * job.sourceStep + x * 2, 2);
            std::memcpy(&pixel, job.destination + y * job.destinationStep + x * 4, 4);
            ASSERT_EQ(pixel, job.table[sample & job.mask]) << "pixel " << x << ", " << y;
        }
    }
}

TEST(LutPalette, LooksEveryPixelUp) {
    const Ipp16u src[2][3] = {{0, 1, 2}, {3, 65535, 4096}};
    std::vector<Ipp32u> table(65536);
    for (std::size_t i = 0; i < table.size(); ++i) table[i] = static_cast<Ipp32u>(i * 0x10001U + 7U);
    Ipp32u dst[2][3] = {};
    EXPECT_EQ(ZOLippiLUTPalette_16u32u_C1R(&src[0][0], 6, &dst[0][0], 12, {3, 2}, table.data(), 16), ippStsNoErr);
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 3; ++x) EXPECT_EQ(dst[y][x], table[src[y][x]]);
    }
}

TEST(LutPalette, UsesOnlyTheSignificantBits) {
    const Ipp16u src[4] = {0xFFFF, 0x0105, 0x0004, 0xFF03};
    for (int bits = 1; bits <= 16; ++bits) {
        // The table is exactly as long as the bits allow, so that a sanitizer sees any index beyond it.
        std::vector<Ipp32u> table(std::size_t{1} << bits);
        for (std::size_t i = 0; i < table.size(); ++i) table[i] = static_cast<Ipp32u>(i);
        Ipp32u dst[4] = {};
        EXPECT_EQ(ZOLippiLUTPalette_16u32u_C1R(src, 8, dst, 16, {4, 1}, table.data(), bits), ippStsNoErr);
        for (int x = 0; x < 4; ++x) EXPECT_EQ(dst[x], src[x] & ((1U << bits) - 1U)) << bits << " bits, pixel " << x;
    }
}

TEST(LutPalette, RefusesAndWritesNothing) {
    const Ipp16u src[4] = {1, 1, 1, 1};
    const Ipp32u table[65536] = {};
    Ipp32u dst[4] = {9, 9, 9, 9};
    const auto call = [&](const Ipp16u* s, int srcStep, Ipp32u* d, int dstStep, IppiSize size, const Ipp32u* t,
                          int bits) { return ZOLippiLUTPalette_16u32u_C1R(s, srcStep, d, dstStep, size, t, bits); };
    EXPECT_EQ(call(nullptr, 4, dst, 8, {2, 2}, table, 16), ippStsNullPtrErr);
    EXPECT_EQ(call(src, 4, nullptr, 8, {2, 2}, table, 16), ippStsNullPtrErr);
    EXPECT_EQ(call(src, 4, dst, 8, {2, 2}, nullptr, 16), ippStsNullPtrErr);
    EXPECT_EQ(call(src, 4, dst, 8, {0, 2}, table, 16), ippStsSizeErr);
    EXPECT_EQ(call(src, 4, dst, 8, {2, 0}, table, 16), ippStsSizeErr);
    EXPECT_EQ(call(src, 4, dst, 8, {-1, 2}, table, 16), ippStsSizeErr);
    EXPECT_EQ(call(src, 4, dst, 8, {2, -1}, table, 16), ippStsSizeErr);
    EXPECT_EQ(call(src, 3, dst, 8, {2, 2}, table, 16), ippStsStepErr);
    EXPECT_EQ(call(src, 0, dst, 8, {2, 2}, table, 16), ippStsStepErr);
    EXPECT_EQ(call(src, -4, dst, 8, {2, 2}, table, 16), ippStsStepErr);
    EXPECT_EQ(call(src, 4, dst, 7, {2, 2}, table, 16), ippStsStepErr);
    EXPECT_EQ(call(src, 4, dst, -8, {2, 2}, table, 16), ippStsStepErr);
    EXPECT_EQ(call(src, 4, dst, 8, {2, 2}, table, 0), ippStsBadArgErr);
    EXPECT_EQ(call(src, 4, dst, 8, {2, 2}, table, 17), ippStsBadArgErr);
    EXPECT_EQ(call(src, 4, dst, 8, {2, 2}, table, -1), ippStsBadArgErr);
    EXPECT_EQ(call(src, 0x7FFFFFFF, dst, 0x7FFFFFFF, {0x7FFFFFFF, 1}, table, 16), ippStsStepErr);
    for (const Ipp32u pixel : dst) EXPECT_EQ(pixel, 9U);
}

// Every width over several vectors, every misalignment of both sides, rows wider than the region: the two forms give
// the same bytes everywhere, and nothing beside the region is touched.
TEST(LutPalette, FormsAgreeOnEveryWidthStepAndAlignment) {
    zoltest::Random random(41);
    const auto table = randomTable(random, 65536);
    constexpr int height = 3;
    for (int width = 1; width <= 75; ++width) {
        for (const int sourceSlack : {0, 1, 6}) {
            for (const int destinationSlack : {0, 2, 4, 12}) {
                for (std::size_t offset = 0; offset < 20; offset += (width % 8 == 0 ? 1U : 3U)) {
                    const int sourceStep = width * 2 + sourceSlack;
                    const int destinationStep = width * 4 + destinationSlack;
                    const auto source = randomBytes(random, offset + static_cast<std::size_t>(sourceStep * height));
                    const auto bytes = offset + static_cast<std::size_t>(destinationStep * height) + 16;
                    std::vector<std::byte> destination[3];
                    for (auto& d : destination) d.assign(bytes, sentinel);
                    zolipp::LutPaletteJob job{source.data() + offset % 7,
                                              sourceStep,
                                              nullptr,
                                              destinationStep,
                                              {width, height},
                                              table.data(),
                                              0xFFFF};
                    job.destination = destination[0].data() + offset;
                    zolipp::lutPaletteScalar(job);
                    expectLookedUp(job);
                    job.destination = destination[1].data() + offset;
                    zolipp::lutPaletteFast(job, false);
                    job.destination = destination[2].data() + offset;
                    zolipp::lutPaletteFast(job, true);
                    ASSERT_EQ(destination[1], destination[0]) << width << " wide at " << offset;
                    ASSERT_EQ(destination[2], destination[0]) << width << " wide at " << offset << ", past the cache";
                    const auto last = offset + static_cast<std::size_t>(destinationStep * (height - 1) + width * 4);
                    for (std::size_t i = 0; i < bytes; ++i) {
                        const bool inside =
                            i >= offset && i < last &&
                            static_cast<int>((i - offset) % static_cast<std::size_t>(destinationStep)) < width * 4;
                        ASSERT_TRUE(inside || destination[0][i] == sentinel) << "byte " << i;
                    }
                }
            }
        }
    }
}

TEST(LutPalette, FormsAgreeForEveryBitCount) {
    zoltest::Random random(42);
    for (int bits = 1; bits <= 16; ++bits) {
        const auto table = randomTable(random, std::size_t{1} << bits);
        const auto source = randomBytes(random, 2 * 131);
        std::vector<std::byte> scalar(4 * 131);
        zolipp::LutPaletteJob job{source.data(),
                                  2 * 131,
                                  scalar.data(),
                                  4 * 131,
                                  {131, 1},
                                  table.data(),
                                  static_cast<Ipp16u>((1U << bits) - 1U)};
        zolipp::lutPaletteScalar(job);
        for (const bool nonTemporal : {false, true}) {
            std::vector<std::byte> fast(4 * 131);
            job.destination = fast.data();
            zolipp::lutPaletteFast(job, nonTemporal);
            EXPECT_EQ(fast, scalar) << bits << " bits";
        }
    }
}

// Large enough that the primitive itself decides to nonTemporal the cache.
TEST(LutPalette, LargeImageThroughThePrimitive) {
    zoltest::Random random(43);
    const auto table = randomTable(random, 65536);
    constexpr int width = 1111;
    constexpr int height = 1003;
    const auto source = randomBytes(random, 2 * width * height);
    std::vector<Ipp32u> pixels(static_cast<std::size_t>(width) * height);
    std::vector<std::byte> scalar(pixels.size() * 4);
    ASSERT_EQ(ZOLippiLUTPalette_16u32u_C1R(reinterpret_cast<const Ipp16u*>(source.data()), 2 * width, pixels.data(),
                                           4 * width, {width, height}, table.data(), 16),
              ippStsNoErr);
    zolipp::lutPaletteScalar(
        {source.data(), 2 * width, scalar.data(), 4 * width, {width, height}, table.data(), 0xFFFF});
    EXPECT_EQ(std::memcmp(pixels.data(), scalar.data(), scalar.size()), 0);
}

}  // namespace
