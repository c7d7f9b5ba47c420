// A quarter turn moves pixels and changes none, and four of them give the image back, whatever the interpolation.
#include "reference/guarded_image.h"
#include "support/capability_guard.h"
#include "support/test_data.h"
#include "support/variants.h"
#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsbicubic.h"
#include "zolcs/ccsbilinear.h"
#include "zolcs/ccsnearest.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace {

using zoltest::GuardedRaster;

struct Member {
    const char* name;
    int type;
    std::function<int(CCsRaster&, CCsImage&, CCs2dTrafo&)> draw;
};

const std::vector<Member>& members() {
    static const std::vector<Member> list{
        {"nearestGrey12Grey12", CCS_GREY12,
         [](CCsRaster& s, CCsImage& d, CCs2dTrafo& t) { return CCsNearest().nearestGrey12Grey12(s, d, t, 7, false); }},
        {"nearestRgb8Rgb8", CCS_RGB8,
         [](CCsRaster& s, CCsImage& d, CCs2dTrafo& t) { return CCsNearest().nearestRgb8Rgb8(s, d, t, 7); }},
        {"bilinearGrey12Grey12", CCS_GREY12,
         [](CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
             return CCsBilinear().bilinearGrey12Grey12(s, d, t, 7, false);
         }},
        {"bilinearGrey12Grey12", CCS_GREY16,
         [](CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
             return CCsBilinear().bilinearGrey12Grey12(s, d, t, 7, false);
         }},
        {"bilinearRgb8Rgb8", CCS_RGB8,
         [](CCsRaster& s, CCsImage& d, CCs2dTrafo& t) { return CCsBilinear().bilinearRgb8Rgb8(s, d, t, 7, false); }},
        {"bicubicGrey12Grey12", CCS_GREY12,
         [](CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
             return CCsBicubic().bicubicGrey12Grey12(s, d, t, 7, false, false);
         }},
        {"bicubicGrey12Grey12", CCS_GREY16,
         [](CCsRaster& s, CCsImage& d, CCs2dTrafo& t) {
             return CCsBicubic().bicubicGrey12Grey12(s, d, t, 7, false, false);
         }},
        {"bicubicRgb8Rgb8", CCS_RGB8,
         [](CCsRaster& s, CCsImage& d, CCs2dTrafo& t) { return CCsBicubic().bicubicRgb8Rgb8(s, d, t, 7); }},
    };
    return list;
}

/// The pixels without line padding: grey as it is, colours without the fourth byte.
std::vector<std::uint32_t> pixelsOf(GuardedRaster& image) {
    std::vector<std::uint32_t> pixels;
    const int bytes = image.getType() == CCS_RGB8 ? 4 : 2;
    for (int y = 0; y < image.getHeight(); ++y) {
        for (int x = 0; x < image.getWidth(); ++x) {
            const unsigned char* at =
                image.memory.pixels() + (static_cast<std::ptrdiff_t>(y) * image.getPitch() + x) * bytes;
            std::uint32_t pixel = 0;
            for (int i = 0; i < (bytes == 4 ? 3 : 2); ++i) pixel |= static_cast<std::uint32_t>(at[i]) << (8 * i);
            pixels.push_back(pixel & (image.getType() == CCS_GREY12 ? 0x0FFFU : 0xFFFFFFU));
        }
    }
    return pixels;
}

std::vector<std::uint32_t> turned(const std::vector<std::uint32_t>& pixels, int size) {
    std::vector<std::uint32_t> result;
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            result.push_back(pixels[static_cast<std::size_t>(size - 1 - x) * static_cast<std::size_t>(size) +
                                    static_cast<std::size_t>(y)]);
        }
    }
    return result;
}

TEST(QuarterTurns, MovePixelsAndReturnAfterFour) {
    const zoltest::CapabilityGuard plain(0);
    zoltest::Random random(20261121);
    zoltest::forEachVariant([&](const std::string& variant) {
        for (const Member& member : members()) {
            for (const int size : {1, 2, 7, 40, 133}) {
                SCOPED_TRACE(std::string(member.name) + " " + variant + " " + std::to_string(size));
                GuardedRaster image(size, size, member.type, size + 3, 1.0);
                image.memory.randomise(random);
                if (member.type == CCS_GREY12) {
                    for (std::size_t i = 1; i < image.memory.bytes(); i += 2) image.memory.pixels()[i] &= 0x0F;
                }
                GuardedRaster other(size, size, member.type, size + 1, 1.0);
                const std::vector<std::uint32_t> first = pixelsOf(image);
                std::vector<std::uint32_t> expected = first;
                for (int turn = 0; turn < 4; ++turn) {
                    GuardedRaster& from = turn % 2 == 0 ? image : other;
                    GuardedRaster& to = turn % 2 == 0 ? other : image;
                    CCs2dTrafo trafo(0.0, -1.0, 0.0, 1.0, 0.0, 0.0);  // exact, unlike sine and cosine
                    ASSERT_EQ(member.draw(from, to, trafo), 255);
                    expected = turned(expected, size);
                    ASSERT_EQ(pixelsOf(to), expected) << "turn " << turn;
                }
                EXPECT_EQ(pixelsOf(image), first);
            }
        }
    });
}

// Strips of a turned display are cut where they are long; every piece must land in its place.
TEST(QuarterTurns, MovePixelsOfTallDisplays) {
    const zoltest::CapabilityGuard plain(0);
    zoltest::Random random(20261122);
    constexpr int size = 1250;
    for (const Member& member : members()) {
        SCOPED_TRACE(member.name);
        GuardedRaster image(size, size, member.type, size + 3, 1.0);
        image.memory.randomise(random);
        if (member.type == CCS_GREY12) {
            for (std::size_t i = 1; i < image.memory.bytes(); i += 2) image.memory.pixels()[i] &= 0x0F;
        }
        GuardedRaster display(size, size, member.type, size + 1, 1.0);
        CCs2dTrafo trafo(0.0, -1.0, 0.0, 1.0, 0.0, 0.0);
        ASSERT_EQ(member.draw(image, display, trafo), 255);
        EXPECT_TRUE(pixelsOf(display) == turned(pixelsOf(image), size));
    }
}

// So far zoomed in that whole strips show one row of the source: what is kept of a row is kept for one piece.
TEST(QuarterTurns, PiecesOfTallDisplaysAreFilledAnew) {
    const zoltest::CapabilityGuard plain(0);
    zoltest::Random random(20261123);
    const std::uint64_t seed = random.bits();
    for (const Member& member : members()) {
        std::vector<std::uint32_t> expected;
        zoltest::forEachVariant([&](const std::string& variant) {
            SCOPED_TRACE(std::string(member.name) + " " + variant);
            zoltest::Random pixels(seed);
            GuardedRaster image(33, 2, member.type, 35, 1.0);
            image.memory.randomise(pixels);
            GuardedRaster display(80, 1320, member.type, 81, 1.0);
            CCs2dTrafo trafo(0.0, -1.0, 0.0, 1.0, 0.0, 0.0);
            ASSERT_EQ(member.draw(image, display, trafo), 255);
            if (variant == "plain") expected = pixelsOf(display);
            EXPECT_TRUE(pixelsOf(display) == expected);
        });
    }
}

}  // namespace
