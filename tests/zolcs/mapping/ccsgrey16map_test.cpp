// What the 16-bit grey map does differently from the 12-bit one.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "support/grey_maps.h"
#include "zolcs/ccsraster.h"
#include "zolcs/mapping/windowlut.h"

namespace {

using zoltest::everything;
using zoltest::Pixels;
using zoltest::present;
using zoltest::ramp;
using zoltest::set;
using zoltest::testRemap;
using zoltest::Values;
using zoltest::windowLevel;

class Grey16Map : public zoltest::GreyMapTest {
protected:
    Grey16Map() : GreyMapTest(zoltest::grey16Kind) {}
};

// ---- the sigmoid --------------------------------------------------------------------------------------------------

// The sigmoid stops one entry short of the table's end, deliberately.
TEST_F(Grey16Map, SigmoidLeavesTheLastEntryOfANewTable) {
    map().enableSigmoid();
    map().setSigmoidBits(16);
    map().setWindow(30000, 20000);
    const Pixels table = lut();
    Pixels expected(65535);
    zolcs::mapping::fillSigmoid(expected, {30000, 20000}, 16, false, colours());
    EXPECT_EQ(Pixels(table.begin(), table.end() - 1), expected);
    EXPECT_EQ(table.back(), 0U);
}

TEST_F(Grey16Map, SigmoidLeavesTheLastEntryOfAnEarlierTable) {
    const auto remap = testRemap();
    for (const bool remapped : {false, true}) {
        if (remapped) map().setIndexRemap(remap.data());
        map().setWindow(100, 200);
        const std::uint32_t white = lut().back();
        EXPECT_EQ(white, colours()[remapped ? remap[255] : 255]);
        map().enableSigmoid();
        palette_.colours.fill(0x123456U);
        map().setWindow(30000, 20000);
        const Pixels table = lut();
        EXPECT_TRUE(std::all_of(table.begin(), table.end() - 1, [](std::uint32_t p) { return p == 0x123456U; }));
        EXPECT_EQ(table.back(), white);
        palette_.colours = zoltest::TestPalette().colours;
        map_.reset(MapFactory::CreateMap(MapFactory::Grey16));
        map().setColorMapIndex(&palette_.map);
    }
}

// ---- presentation tables ------------------------------------------------------------------------------------------

TEST_F(Grey16Map, StoredValuesIndexThePresentationTable) {
    Values values(65536);
    for (std::size_t v = 0; v < values.size(); ++v) values[v] = static_cast<std::uint16_t>(v * 40503U >> 3U);
    values.front() = 1000;
    values.back() = 60000;
    EXPECT_EQ(present(map(), values, 77), 255) << "the first mapped value plays no part";
    map().setWindow(20000, 10000);
    expectLut(
        [&](int v) {
            const std::size_t at = v < 15000 ? 0 : v >= 25000 ? values.size() - 1 : static_cast<std::size_t>(v);
            return values[at] >> 8;
        },
        "indexed");
}

TEST_F(Grey16Map, PresentationShiftFollowsItsMaximum) {
    present(map(), ramp(3000, 1));
    map().setWindow(1500, 3000);
    expectLut([](int v) { return std::min(v, 2999) >> 4; }, "3000 values");
}

TEST_F(Grey16Map, ShortPresentationTableEndsInItsLastValue) {
    present(map(), {10, 20, 30, 200});
    map().setWindow(50, 100);
    expectLut([](int v) { return v < 1 ? 10 : v == 1 ? 20 : v == 2 ? 30 : 200; }, "four values");
}

TEST_F(Grey16Map, FirstMatchingRuleBuildsTheTable) {
    const auto remap = testRemap();
    present(map(), ramp(65536, 1));
    map().enableSigmoid();
    map().setWindow(30000, 60000);
    // The presentation table goes before the sigmoid, which would leave the last entry 0.
    expectLut([](int v) { return v >= 60000 ? 255 : v >> 8; }, "presentation and sigmoid");
    map().setIndexRemap(remap.data());
    const Pixels table = lut();
    Pixels expected(65535);
    zolcs::mapping::fillSigmoid(expected, {30000, 60000}, 12, true,
                                zolcs::mapping::shownLevels(palette_.colours.data(), remap.data()));
    EXPECT_EQ(Pixels(table.begin(), table.end() - 1), expected) << "remap and sigmoid go before both";
}

TEST_F(Grey16Map, RemapGoesBeforeThePresentationTable) {
    const auto remap = testRemap();
    present(map(), ramp(65536, 1));
    map().setIndexRemap(remap.data());
    map().setWindow(30000, 20000);
    expectLut([&](int v) { return remap[static_cast<std::size_t>(windowLevel(v, 30000, 20000))]; }, "remapped");
}

// ---- non-linear tables --------------------------------------------------------------------------------------------

TEST_F(Grey16Map, NonLinearTableThroughTheWindow) {
    // As many values as the window is wide: entry i of the windowed table is value i.
    Values values = ramp(20000, 3);
    std::reverse(values.begin(), values.end());
    ASSERT_EQ(set(map(), values, false), 255);
    map().setWindow(40000, 20000);
    expectLut([&](int v) { return values[static_cast<std::size_t>(std::clamp(v - 30000, 0, 19999))] >> 8; }, "falling");
    EXPECT_EQ(map().getNonLinearShift(), 8);
}

// A window that the depth cuts off shows only small values: the shift follows them, not the whole table.
TEST_F(Grey16Map, TheShiftFollowsWhatTheWindowShows) {
    ASSERT_EQ(set(map(), ramp(20000, 3), false), 255);
    map().setWindow(75436, 20000);
    expectLut([](int v) { return 3 * std::max(v - 65436, 0) >> 1; }, "the first 100 values");
    EXPECT_EQ(map().getNonLinearShift(), 1);
}

TEST_F(Grey16Map, NonLinearTableIgnoresThePresentationTable) {
    const auto remap = testRemap();
    const Values values = ramp(500, 8);
    ASSERT_EQ(set(map(), values, false), 255);
    ASSERT_EQ(present(map(), {900, 20, 400, 700, 1000}), 255);
    map().setWindow(250, 500);
    const auto level = [&](int v) { return values[static_cast<std::size_t>(std::min(v, 499))] >> 4; };
    expectLut(level, "plain");
    map().setIndexRemap(remap.data());
    expectLut([&](int v) { return remap[static_cast<std::size_t>(level(v))]; }, "remapped");
}

// ---- whole rasters ------------------------------------------------------------------------------------------------

class MapRaster16 : public zoltest::GreyRasterTest {
protected:
    MapRaster16() : GreyRasterTest(zoltest::grey16Kind) { map().setWindow(32768, 65536); }

    CCsRaster rowOf(const Values& values) const {
        CCsRaster raster = source(static_cast<int>(values.size()), 1);
        std::memcpy(raster.getOrigin(), values.data(), values.size() * 2);
        raster.unlock();
        return raster;
    }
    Pixels mapped(CCsRaster& src, bool whole, unsigned char* padding = nullptr) {
        CCsRaster dst = display(src.getWidth(), src.getHeight());
        EXPECT_EQ(map().mapRaster(src, dst, everything, whole, padding, nullptr), 255);
        Pixels pixels = pixelsOf(dst);
        pixels.resize(static_cast<std::size_t>(src.getWidth()));
        return pixels;
    }
};

TEST_F(MapRaster16, EveryValueHasItsOwnEntryBothWays) {
    CCsRaster src = rowOf({0, 4095, 4096, 65534, 65535});
    map().enableSigmoid();
    map().setWindow(32768, 65536);
    const Pixels table = lut();
    for (const bool whole : {false, true}) {
        for (const int flags : {0, 2}) {
            map().setMapFlags(flags);
            EXPECT_EQ(mapped(src, whole), (Pixels{table[0], table[4095], table[4096], table[65534], table[65535]}));
        }
    }
    EXPECT_EQ(lut(), table) << "the accelerated way fills nothing up";
}

// All sixteen bits are grey, whatever the raster says about embedded overlays.
TEST_F(MapRaster16, TheTopBitsAreNoOverlay) {
    CCsRaster src = rowOf({0x1000, 0xF000, 0xFFFF, 0x0FFF});
    const Pixels plain = mapped(src, false);
    src.setEmbeddedOverlayStatus(true);
    for (const bool whole : {false, true}) EXPECT_EQ(mapped(src, whole), plain);
    src.setRectShutter({1, 0, 2, 0});
    src.setPresentationShutterValue(0x4200);
    EXPECT_EQ(mapped(src, true), (Pixels{0x424242U, plain[1], plain[2], 0x424242U})) << "nor behind a shutter";
}

TEST_F(MapRaster16, PlanePaddingShutterTable) {
    CCsRaster src = rowOf({0x1000, 0x2000, 0x3000, 0x4000, 0x5000});
    unsigned char plane[1] = {0x01};
    unsigned char padding[1] = {0x03};
    CCs60XXOverlay overlay;
    overlay.originX = 2;
    overlay.originY = 1;
    overlay.rows = 1;
    overlay.columns = 1;
    overlay.data = plane;
    src.add60XXOverlayInfo(overlay);
    src.setRectShutter({3, 0, 3, 0});
    src.setPresentationShutterValue(0x4200);
    const Pixels table = lut();
    EXPECT_EQ(mapped(src, true, padding), (Pixels{0x424242U, groupColours_[0], 0x424242U, table[0x4000], 0x424242U}));
    padding[0] = 0x0D;
    EXPECT_EQ(mapped(src, true, padding), (Pixels{0x424242U, groupColours_[0], 0U, 0U, 0x424242U}));
}

// The table has an entry for every value, so that mapping needs no memory of its own.
TEST_F(MapRaster16, MapsWhenMemoryIsExhausted) {
    CCsRaster src = rowOf({0, 40000});
    const Pixels table = lut();
    const zoltest::FailingTables failing(0);
    for (const bool whole : {false, true}) EXPECT_EQ(mapped(src, whole), (Pixels{table[0], table[40000]}));
}

}  // namespace
