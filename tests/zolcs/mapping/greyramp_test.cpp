#include "zolcs/mapping/greyramp.h"

#include "support/map_support.h"
#include "support/test_data.h"
#include "zolcs/ccscolorman.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsraster.h"
#include "zolcs/simd/variant.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace {

namespace simd = zolcs::simd;
using zolcs::mapping::fillGreyRamp;
using zolcs::mapping::GreyRamp;
using zolcs::mapping::Window;
using zoltest::Random;

using Table = std::vector<std::uint32_t>;

constexpr std::uint32_t sentinel = 0xDEADBEEF;

/// The table of a linear window on a grey palette, straight from its definition; `depth` values, then the last entry.
Table linearTable(const Window& window, bool inverted = false, std::int64_t depth = 65536) {
    Table table(65536);
    for (std::int64_t v = 0; v < 65536; ++v) {
        const std::int64_t position = std::min(v, depth - 1) - window.low();
        std::int64_t level = position * 256 / window.width;
        if (position < 0) level = 0;
        if (position >= window.width) level = 255;
        if (inverted) level = 255 - level;
        table[static_cast<std::size_t>(v)] = static_cast<std::uint32_t>(level) * 0x010101U;
    }
    return table;
}

std::optional<GreyRamp> find(const Table& table, const Window& window, std::size_t depth = 65536) {
    return zolcs::mapping::findGreyRamp(table, window, depth);
}

/// Runs a check with every variant that the processor has.
class GreyRampTest : public ::testing::Test {
protected:
    ~GreyRampTest() override { simd::choose(""); }

    /// `check` is told whether ramps are found at all.
    static void forEachVariant(const std::function<void(bool found)>& check) {
        for (const std::string& variant : simd::variants()) {
            SCOPED_TRACE(variant);
            ASSERT_TRUE(simd::choose(variant));
            const Window window{2048, 4096};
            check(find(linearTable(window), window).has_value());
        }
    }
};

TEST_F(GreyRampTest, PlainAndPortableLoopsLookUp) {
    const Window window{2048, 4096};
    for (const char* variant : {"plain", "portable"}) {
        ASSERT_TRUE(simd::choose(variant));
        EXPECT_FALSE(find(linearTable(window), window).has_value()) << variant;
    }
}

TEST_F(GreyRampTest, GivesTheTableItWasFoundFor) {
    forEachVariant([](bool found) {
        Random random(31);
        for (int round = 0; round < 100; ++round) {
            Window window{random.integer(0, 6000), random.integer(256, 25000)};
            if (round % 3 == 0) window = {random.integer(-3000, 70000), random.integer(256, 65536)};
            if (round % 5 == 0) window.width = 1 << random.integer(8, 16);
            const int depth = random.chance(0.5) ? 4096 : 65536;
            Table table = linearTable(window, random.chance(0.5), depth);
            if (random.chance(0.3)) table.back() = random.chance(0.5) ? 0 : 0x00FFFFFF;
            const std::optional<GreyRamp> ramp = find(table, window, static_cast<std::size_t>(depth));
            // Of wide windows some cannot be told in single precision; of those beside the table there is nothing to
            // see whether they fall.
            const bool sure = window.width < 25000 && window.low() < 4000 && window.high() > 1000;
            if (sure) {
                ASSERT_EQ(ramp.has_value(), found) << window.centre << ' ' << window.width;
            }
            if (!ramp) continue;
            Table given(table.size());
            for (std::size_t v = 0; v < given.size(); ++v) given[v] = (*ramp)(static_cast<std::uint16_t>(v));
            ASSERT_TRUE(given == table) << window.centre << ' ' << window.width;
        }
    });
}

TEST_F(GreyRampTest, NothingElseIsARamp) {
    const Window window{1000, 1800};
    const Table table = linearTable(window);
    const auto isRamp = [](const Table& tried, const Window& guess) { return find(tried, guess).has_value(); };
    EXPECT_FALSE(isRamp(table, {1001, 1800})) << "another centre";
    EXPECT_FALSE(isRamp(table, {1000, 1802})) << "another width";
    EXPECT_FALSE(isRamp(Table(table.begin(), table.end() - 1), window)) << "too short";
    Random random(32);
    for (int round = 0; round < 200; ++round) {
        Table changed = table;
        changed[static_cast<std::size_t>(random.integer(0, 65535))] ^= 1U << random.integer(0, 31);
        EXPECT_FALSE(isRamp(changed, window)) << round;
    }
    for (const int width : {-1, 0, 1, 2, 100, 255, 65537, 2147483647}) {
        // The table itself may be anything here: the width alone decides.
        EXPECT_FALSE(isRamp(table, {1000, width})) << width;
    }
    for (const int centre : {-70000, 200000, 2147483647, -2147483647 - 1}) {
        EXPECT_FALSE(isRamp(linearTable({centre, 1800}), {centre, 1800})) << centre;
    }
    Table coloured = table;
    for (std::uint32_t& pixel : coloured) pixel &= 0x00FFFF00U;
    EXPECT_FALSE(isRamp(coloured, window));
}

TEST_F(GreyRampTest, TheHighestValueMayStandApart) {
    const Window window{1000, 1800};
    forEachVariant([&](bool found) {
        for (const bool inverted : {false, true}) {
            for (const std::uint32_t highest : {0x00000000U, 0x00FFFFFFU, 0x00808080U}) {
                Table table = linearTable(window, inverted);
                table.back() = highest;
                const auto ramp = find(table, window);
                ASSERT_EQ(ramp.has_value(), found && highest != 0x00808080U);
                if (ramp) {
                    EXPECT_EQ((*ramp)(65535), highest);
                }
            }
        }
    });
}

TEST_F(GreyRampTest, EveryLengthAndAlignment) {
    const Window window{30000, 20000};
    Table table = linearTable(window);
    table.back() = 0;
    forEachVariant([&](bool found) {
        if (!found) return;
        const auto ramp = find(table, window);
        ASSERT_TRUE(ramp.has_value());
        Random random(33);
        for (std::size_t count = 0; count <= 200; ++count) {
            for (const bool nonTemporal : {false, true}) {
                const auto shift = static_cast<std::size_t>(random.integer(0, 33));
                std::vector<std::uint16_t> values(count + 40);
                for (auto& value : values) value = static_cast<std::uint16_t>(random.integer(0, 65535));
                values[shift] = 65535;
                std::vector<std::uint32_t> pixels(count + 80, sentinel);
                fillGreyRamp(*ramp, values.data() + shift, pixels.data() + shift, count, nonTemporal);
                for (std::size_t i = 0; i < pixels.size(); ++i) {
                    const bool inside = i >= shift && i < shift + count;
                    ASSERT_EQ(pixels[i], inside ? table[values[i]] : sentinel) << i << " of " << count;
                }
            }
        }
    });
}

// ---- whole rasters ------------------------------------------------------------------------------------------------

constexpr int width = 1211;
constexpr int height = 901;

/// A map on a grey palette, and an image large enough to be computed.
class ComputedRaster : public GreyRampTest {
protected:
    void use(MapFactory::MapType type) {
        map_.reset(dynamic_cast<IGreyMap*>(MapFactory::CreateMap(type)));
        palette_.getColorMap(colours_);
        map_->setColorMapIndex(&colours_);
        source_ = std::make_unique<CCsRaster>(width, height, type == MapFactory::Grey12 ? CCS_GREY12 : CCS_GREY16, 1.0,
                                              false, false);
        Random random(34);
        auto* stored = reinterpret_cast<std::uint16_t*>(source_->getOrigin());
        const int values = source_->getPitch() * height;
        for (int i = 0; i < values; ++i) stored[i] = static_cast<std::uint16_t>(random.bits() >> 20);
        source_->unlock();
    }

    std::vector<std::uint32_t> mapped(const char* variant, bool whole) {
        EXPECT_TRUE(simd::choose(variant));
        CCsRaster display(width, height, CCS_RGB8, 1.0, false, false);
        EXPECT_EQ(map_->mapRaster(*source_, display, {0, 0, width, height}, whole, nullptr, nullptr), 255);
        const auto* pixels = reinterpret_cast<const std::uint32_t*>(display.getOrigin());
        std::vector<std::uint32_t> all(pixels, pixels + display.getPitch() * height);
        display.unlock();
        return all;
    }

    void expectTheSameBothWays(const char* what) {
        for (const bool whole : {false, true}) EXPECT_TRUE(mapped("", whole) == mapped("plain", whole)) << what;
    }

    CCsColorMan palette_;
    CCsColorMapT colours_;
    std::unique_ptr<IGreyMap> map_;
    std::unique_ptr<CCsRaster> source_;
};

TEST_F(ComputedRaster, ShowsWhatTheTableShows) {
    for (const MapFactory::MapType type : {MapFactory::Grey12, MapFactory::Grey16}) {
        use(type);
        for (const auto& [centre, windowWidth] :
             {std::pair{1000U, 1800}, {2048U, 4096}, {32768U, 65536}, {40000U, 60001}, {0U, 5000}, {100U, 50}}) {
            map_->setWindow(centre, windowWidth);
            expectTheSameBothWays("linear");
        }
        palette_.invertPalette();
        map_->setWindow(1000, 1800);
        expectTheSameBothWays("inverted");
        palette_.invertPalette();

        source_->setCircShutter({100, 50, 1000, 850});
        source_->setPresentationShutterValue(0x4200);
        map_->setWindow(1000, 1800);
        expectTheSameBothWays("behind a shutter");
        source_->resetImage(2);
    }
}

TEST_F(ComputedRaster, OtherTablesAreLookedUp) {
    for (const MapFactory::MapType type : {MapFactory::Grey12, MapFactory::Grey16}) {
        use(type);
        map_->setWindow(1000, 1800);
        map_->getLut();
        map_->enableSigmoid();
        expectTheSameBothWays("a linear table with a sigmoid to come");
        map_->setWindow(1000, 1800);
        expectTheSameBothWays("sigmoid");
        const std::vector<std::uint16_t> values = {10, 900, 400, 1000};
        map_->setNonLinearLut(values.data(), 0, 4, false);
        expectTheSameBothWays("non-linear");
        map_->setExactNonLinearWindow(true);
        for (const unsigned centre : {1000U, 100U, 4000U, 65000U, 70000U}) {
            map_->setWindow(centre, 1800);
            expectTheSameBothWays("exact window");
        }
    }
}

}  // namespace
