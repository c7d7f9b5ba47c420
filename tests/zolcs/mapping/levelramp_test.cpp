#include "zolcs/mapping/levelramp.h"

#include "support/test_data.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsraster.h"
#include "zolcs/simd/variant.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

namespace simd = zolcs::simd;
using zolcs::mapping::fillLevelRamp;
using zolcs::mapping::LevelRamp;
using zolcs::mapping::Window;
using zoltest::Random;

constexpr unsigned char sentinel = 0xA5;

/// The level of a value straight from the definition.
int definedLevel(const Window& window, std::int64_t value) {
    const std::int64_t position = value - window.low();
    if (position < 0) return 0;
    return position < window.width ? static_cast<int>(position * 256 / window.width) : 255;
}

Window anyWindow(Random& random) {
    Window window{random.integer(0, 4500), random.integer(1, 5000)};
    if (random.chance(0.2)) window.width = random.integer(1, 65535);
    if (random.chance(0.2)) window.centre = random.integer(-30000, 60000);
    return window;
}

class LevelRampTest : public ::testing::Test {
protected:
    ~LevelRampTest() override { simd::choose(""); }
};

// The multiplication is exact where it is hardest: at the first position of each level, and at the one before.
TEST_F(LevelRampTest, EveryWidthBeginsEachLevelWhereItIsDefined) {
    for (std::int32_t width = 1; width <= 65535; width += width < 5000 || width > 65000 ? 1 : 13) {
        const auto ramp = LevelRamp::of({width / 2, width}, 65536);
        ASSERT_TRUE(ramp.has_value()) << width;
        const auto isDefined = [&](std::int32_t position) {
            return (*ramp)(static_cast<std::uint16_t>(position)) == definedLevel({width / 2, width}, position);
        };
        bool all = isDefined(0) && isDefined(width - 1) && isDefined(width) && isDefined(65535);
        for (std::int32_t level = 1; level <= 255; ++level) {
            const std::int32_t position = (level * width + 255) / 256;
            all = all && isDefined(position) && isDefined(position - 1);
        }
        ASSERT_TRUE(all) << width;
    }
}

TEST_F(LevelRampTest, GivesEveryEntryOfTheTableAndItsLastOneBeyond) {
    Random random(71);
    for (int round = 0; round < 60; ++round) {
        const Window window = anyWindow(random);
        const int entries = random.chance(0.7) ? 4096 : random.integer(1, 65536);
        const auto ramp = LevelRamp::of(window, static_cast<std::size_t>(entries));
        ASSERT_TRUE(ramp.has_value());
        for (int v = 0; v < 65536; ++v) {
            if ((*ramp)(static_cast<std::uint16_t>(v)) != definedLevel(window, std::min(v, entries - 1))) {
                FAIL() << "value " << v << " of " << entries << ", window " << window.centre << ", " << window.width;
            }
        }
    }
}

TEST_F(LevelRampTest, WindowsBeyondSixteenBitsHaveNone) {
    EXPECT_FALSE(LevelRamp::of({0, 0}, 4096).has_value());
    EXPECT_FALSE(LevelRamp::of({0, -1}, 4096).has_value());
    EXPECT_TRUE(LevelRamp::of({0, 65535}, 4096).has_value());
    EXPECT_FALSE(LevelRamp::of({0, 65536}, 4096).has_value());
    EXPECT_FALSE(LevelRamp::of({0, 2147483647}, 4096).has_value());
    EXPECT_TRUE(LevelRamp::of({65535, 1}, 4096).has_value());
    EXPECT_FALSE(LevelRamp::of({65536, 1}, 4096).has_value());
    EXPECT_TRUE(LevelRamp::of({-65535, 1}, 4096).has_value());
    EXPECT_FALSE(LevelRamp::of({-65536, 1}, 4096).has_value());
    EXPECT_FALSE(LevelRamp::of({-2147483647 - 1, 65535}, 4096).has_value());
}

/// Pixels at an offset from an aligned address, filled in one variant: nothing beside them may change.
void expectFilled(const LevelRamp& ramp, const std::vector<std::uint16_t>& channels, std::size_t offset,
                  bool nonTemporal) {
    const std::size_t bytes = channels.size();
    std::vector<unsigned char> target(offset + bytes + 64, sentinel);
    std::vector<unsigned char> want = target;
    for (std::size_t i = 0; i < bytes; ++i) want[offset + i] = i % 4 == 3 ? 0 : ramp(channels[i]);
    if (!fillLevelRamp(ramp, channels.data(), target.data() + offset, bytes / 4, nonTemporal)) want = target;
    ASSERT_EQ(target, want) << bytes / 4 << " pixels at " << offset << (nonTemporal ? " non-temporal" : "");
}

TEST_F(LevelRampTest, VariantsGiveTheSameBytesAtEveryLengthAndAddress) {
    for (const std::string& variant : simd::variants()) {
        ASSERT_TRUE(simd::choose(variant));
        SCOPED_TRACE(variant);
        Random random(72);
        for (std::size_t pixels = 0; pixels <= 75; ++pixels) {
            for (std::size_t offset = 0; offset < 70; offset += pixels % 5 == 0 ? 1U : 4U) {
                const auto ramp = LevelRamp::of(anyWindow(random), random.chance(0.5) ? 4096 : 65536);
                ASSERT_TRUE(ramp.has_value());
                std::vector<std::uint16_t> channels(pixels * 4);
                for (auto& channel : channels) channel = static_cast<std::uint16_t>(random.bits());
                expectFilled(*ramp, channels, offset, false);
                expectFilled(*ramp, channels, offset, true);
                if (HasFatalFailure()) return;
            }
        }
    }
}

TEST_F(LevelRampTest, VariantsGiveTheSameLevelForEveryValue) {
    std::vector<std::uint16_t> channels(4 * 65536);
    for (std::size_t i = 0; i < channels.size(); ++i) channels[i] = static_cast<std::uint16_t>(i / 4);
    for (const std::string& variant : simd::variants()) {
        ASSERT_TRUE(simd::choose(variant));
        SCOPED_TRACE(variant);
        Random random(73);
        for (int round = 0; round < 5; ++round) {
            expectFilled(*LevelRamp::of(anyWindow(random), 4096), channels, 0, false);
            if (HasFatalFailure()) return;
        }
        for (const Window& window : {Window{100, 1}, {0, 65535}, {-65535, 1}, {65535, 1}, {40000, 65535}, {128, 256}}) {
            expectFilled(*LevelRamp::of(window, 65536), channels, 0, true);
            if (HasFatalFailure()) return;
        }
    }
}

TEST_F(LevelRampTest, PlainAndPortableLoopsLookUp) {
    const std::vector<std::uint16_t> channels(4 * 64);
    std::vector<unsigned char> levels(channels.size(), sentinel);
    const auto ramp = LevelRamp::of({2048, 4096}, 4096);
    for (const char* variant : {"plain", "portable"}) {
        ASSERT_TRUE(simd::choose(variant));
        EXPECT_FALSE(fillLevelRamp(*ramp, channels.data(), levels.data(), 64, true)) << variant;
    }
    EXPECT_EQ(levels, std::vector<unsigned char>(levels.size(), sentinel));
}

// Through the map, with an image so large that it bypasses the cache, a window too wide to compute, and a window that
// was changed after the table was built and so does not show.
TEST_F(LevelRampTest, MapsShowTheSameInEveryVariant) {
    constexpr int width = 1027;
    constexpr int height = 1025;
    CCsRaster source(width, height, CCS_RGB12, 1.0, false, false);
    const auto* const stored = reinterpret_cast<const std::uint16_t*>(source.getOrigin());
    const std::int64_t sourceStep = std::int64_t{source.getPitch()} * 4;
    std::uint32_t noise = 74;
    for (std::int64_t i = 0; i < sourceStep * height; ++i) {
        noise = noise * 1664525U + 1013904223U;
        const auto value = static_cast<std::uint16_t>(noise >> (noise % 64 == 0 ? 16U : 20U));
        std::memcpy(source.getOrigin() + 2 * i, &value, sizeof value);
    }
    for (const Window& window : {Window{1000, 1800}, {2048, 70000}}) {
        std::vector<int> levels(4096);
        for (std::size_t v = 0; v < levels.size(); ++v) levels[v] = definedLevel(window, static_cast<int>(v));
        for (const std::string& variant : simd::variants()) {
            ASSERT_TRUE(simd::choose(variant));
            const std::unique_ptr<IMap> map(MapFactory::CreateMap(MapFactory::Rgb12));
            map->setWindow(static_cast<unsigned>(window.centre), window.width);
            ASSERT_NE(map->getLut(), nullptr);
            map->setWindow(7, 11);
            CCsRaster frame(width, height, CCS_RGB8, 1.0, false, false);
            ASSERT_EQ(map->mapRaster(source, frame, {0, 0, width, height}, true, nullptr, nullptr), 255);
            for (int y = 0; y < height; ++y) {
                const std::uint16_t* const channels = stored + y * sourceStep;
                const unsigned char* const shown = frame.getOrigin() + std::int64_t{y} * frame.getPitch() * 4;
                for (int i = 0; i < width * 4; ++i) {
                    const int want = i % 4 == 3 ? 0 : levels[std::min<std::size_t>(channels[i], 4095)];
                    if (shown[i] != want) FAIL() << variant << ", window " << window.centre << ", " << window.width;
                }
            }
        }
    }
}

// The window that reached the clone shows in its pictures, too, not the one that the original's table has.
TEST_F(LevelRampTest, ClonesComputeTheirOwnWindow) {
    const std::unique_ptr<IMap> map(MapFactory::CreateMap(MapFactory::Rgb12));
    map->setWindow(1000, 600);
    ASSERT_NE(map->getLut(), nullptr);
    map->setWindow(2000, 900);
    const std::unique_ptr<IMap> clone(map->clone());
    CCsRaster source(64, 1, CCS_RGB12, 1.0, false, false);
    for (std::uint16_t i = 0; i < 4 * 64; ++i) {
        const auto value = static_cast<std::uint16_t>(i * 16);
        std::memcpy(source.getOrigin() + 2 * i, &value, sizeof value);
    }
    CCsRaster frame(64, 1, CCS_RGB8, 1.0, false, false);
    ASSERT_EQ(clone->mapRaster(source, frame, {0, 0, 64, 1}, true, nullptr, nullptr), 255);
    for (int i = 0; i < 4 * 64; ++i) {
        ASSERT_EQ(frame.getOrigin()[i], i % 4 == 3 ? 0 : definedLevel({2000, 900}, i * 16)) << i;
    }
}

}  // namespace
