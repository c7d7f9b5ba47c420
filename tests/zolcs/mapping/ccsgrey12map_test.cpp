// What the 12-bit grey map has of its own: presentation tables that the window is spread over, and stored values beyond
// its table.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "support/grey_maps.h"
#include "zolcs/ccsmemorymanager.h"
#include "zolcs/ccsraster.h"

namespace {

using zoltest::everything;
using zoltest::Pixels;
using zoltest::present;
using zoltest::ramp;
using zoltest::Report;
using zoltest::ReportCapture;
using zoltest::set;
using zoltest::Values;

class Grey12Map : public zoltest::GreyMapTest {
protected:
    Grey12Map() : GreyMapTest(zoltest::grey12Kind) {}
};

TEST_F(Grey12Map, PresentationTableOverTheWholeRange) {
    EXPECT_EQ(present(map(), ramp(4096, 1)), 255);
    EXPECT_TRUE(map().hasPresentationLut());
    map().setWindow(2048, 4096);
    expectLut([](int v) { return v >> 4; }, "identity presentation");
}

TEST_F(Grey12Map, NonLinearTableThroughRemapAndPresentation) {
    const auto remap = zoltest::testRemap();
    const Values values = ramp(500, 8);
    ASSERT_EQ(set(map(), values, false), 255);
    ASSERT_EQ(present(map(), {900, 20, 400, 700, 1000}), 255);
    map().setIndexRemap(remap.data());
    map().setWindow(250, 500);
    const auto table = lut();
    EXPECT_EQ(map().getNonLinearShift(), 4);
    for (int v = 0; v < 4096; ++v) {
        const unsigned value = values[static_cast<std::size_t>(std::min(v, 499))];
        EXPECT_EQ(table[static_cast<std::size_t>(v)], colours()[remap[map().applyPresentationLut(value, 4)]]) << v;
    }
}

TEST_F(Grey12Map, ChunksStartAsZeroes) {
    void* dirty = CCsMemoryManager::allocateChunk();
    std::memset(dirty, 0xEE, CCsMemoryManager::chunkSize);
    CCsMemoryManager::releaseChunk(dirty);
    const auto* table = static_cast<const std::uint32_t*>(map().getLut());
    ASSERT_EQ(table, dirty);
    for (std::size_t v = 4096; v < 65536; ++v) ASSERT_EQ(table[v], 0U) << v;
}

// ---- whole rasters ------------------------------------------------------------------------------------------------

class MapRaster12 : public zoltest::GreyRasterTest {
protected:
    MapRaster12() : GreyRasterTest(zoltest::grey12Kind) {}
};

// The accelerated way fills up entries 4096 to 65534 and no further: a stored 65535 shows entry 65535 as it is.
TEST_F(MapRaster12, AcceleratedWayLeavesTheLastEntryAlone) {
    CCsRaster src = source(4, 1);
    const std::uint16_t values[4] = {4095, 4096, 65534, 65535};
    std::memcpy(src.getOrigin(), values, sizeof values);
    src.unlock();
    const auto* lut = static_cast<const std::uint32_t*>(map().getLut());
    const std::uint32_t white = lut[4095];
    ASSERT_NE(white, 0U);

    CCsRaster dst = display(4, 1);
    ASSERT_EQ(map().mapRaster(src, dst, everything, true, nullptr, nullptr), 255);
    EXPECT_EQ(pixelsOf(dst), (Pixels{white, white, white, 0}));
    EXPECT_EQ(lut[4096], white);
    EXPECT_EQ(lut[65534], white);
    EXPECT_EQ(lut[65535], 0U);

    ASSERT_EQ(map().mapRaster(src, dst, everything, false, nullptr, nullptr), 255);
    EXPECT_EQ(pixelsOf(dst), (Pixels{white, white, white, white}));
    map().setMapFlags(0xFF & ~2);
    ASSERT_EQ(map().mapRaster(src, dst, everything, true, nullptr, nullptr), 255);
    EXPECT_EQ(pixelsOf(dst)[3], 0U) << "other flags do not matter";
    map().setMapFlags(2);
    ASSERT_EQ(map().mapRaster(src, dst, everything, true, nullptr, nullptr), 255);
    EXPECT_EQ(pixelsOf(dst)[3], white) << "the flag forbids it";
}

TEST_F(MapRaster12, AnythingThatCouldShowElseRulesTheAcceleratedWayOut) {
    const auto isAccelerated = [&](auto decorate, unsigned char* padding) {
        CCsRaster src = source(4, 1);
        stored(src)[3] = 65535;
        src.unlock();
        decorate(src);
        CCsRaster dst = display(4, 1);
        map().setEnabled(false);  // so that overlays, where present, show nothing
        EXPECT_EQ(map().mapRaster(src, dst, everything, true, padding, nullptr), 255);
        return pixelsOf(dst)[3] == 0;
    };
    unsigned char bits[1] = {0};
    EXPECT_TRUE(isAccelerated([](CCsRaster&) {}, nullptr));
    EXPECT_FALSE(isAccelerated([](CCsRaster&) {}, bits));
    EXPECT_FALSE(isAccelerated([](CCsRaster& r) { r.setEmbeddedOverlayStatus(true); }, nullptr));
    EXPECT_FALSE(isAccelerated([](CCsRaster& r) { r.add60XXOverlayInfo({}); }, nullptr));
    EXPECT_FALSE(isAccelerated([](CCsRaster& r) { r.setRectShutter({0, 0, 3, 0}); }, nullptr));
    EXPECT_FALSE(isAccelerated([](CCsRaster& r) { r.setCircShutter({-10, -10, 10, 10}); }, nullptr));
    EXPECT_FALSE(isAccelerated(
        [](CCsRaster& r) {
            r.setPolygonalShutter({{-9, -9}, {9, -9}, {9, 9}, {-9, 9}});
        },
        nullptr));
    EXPECT_FALSE(isAccelerated(
        [&](CCsRaster& r) {
            CCsBitmapShutterInfo info;
            info.tag = 1;
            info.data = bits;
            r.setBitmapShutterInfo(info);
        },
        nullptr));
}

TEST_F(MapRaster12, RefusesWhenMemoryIsExhausted) {
    CCsRaster src = source(4, 4);
    CCsRaster dst = display(4, 4);
    const Pixels before = pixelsOf(dst);
    map().getLut();
    const zoltest::FailingTables failing(0);
    EXPECT_EQ(map().mapRaster(src, dst, everything, false, nullptr, nullptr), 2);
    EXPECT_EQ(ReportCapture::take(),
              std::vector<Report>{report(L"Memory allocation failed in method mapRaster", 0, 631)});
    EXPECT_EQ(pixelsOf(dst), before);
    EXPECT_EQ(map().mapRaster(src, dst, everything, true, nullptr, nullptr), 255) << "needs none";
}

}  // namespace
