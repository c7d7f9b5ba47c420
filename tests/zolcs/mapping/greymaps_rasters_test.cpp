// Whole rasters through both grey value maps, and maps that several threads use.
#include "zolcs/ccsmap.h"

#include "zolcs/mapping/greymaps_fixture.h"

namespace {

using namespace zoltest::greymaps;
using zoltest::everything;
using zoltest::GreyMapKind;
using zoltest::GreyMaps;
using zoltest::Pixels;
using zoltest::present;
using zoltest::ramp;
using zoltest::Report;
using zoltest::ReportCapture;
using zoltest::set;
using zoltest::testRemap;
using zoltest::Values;
using zoltest::windowLevel;

// ---- whole rasters ------------------------------------------------------------------------------------------------

class MapRaster : public zoltest::GreyRasterTest, public ::testing::WithParamInterface<GreyMapKind> {
protected:
    MapRaster() : GreyRasterTest(GetParam()) {}
};

INSTANTIATE_TEST_SUITE_P(Both, MapRaster, ::testing::Values(zoltest::grey12Kind, zoltest::grey16Kind),
                         [](const auto& kind) { return kind.param.name; });

TEST_P(MapRaster, PlainImage) {
    for (const auto& [width, height] : {std::pair{1, 1}, {4, 4}, {5, 3}, {33, 17}, {640, 480}}) {
        CCsRaster src = source(width, height);
        scribble(src, 501, 0, 65535);
        expectMapped(src, everything, false, nullptr, nullptr, "plain");
    }
}

TEST_P(MapRaster, AcceleratedWayShowsTheSame) {
    for (const auto& [width, height] : {std::pair{1, 1}, {4, 4}, {5, 3}, {33, 17}, {640, 480}}) {
        CCsRaster src = source(width, height);
        scribble(src, 502, 0, 65534);
        expectMapped(src, everything, true, nullptr, nullptr, "accelerated");
        map().setMapFlags(2);
        expectMapped(src, everything, true, nullptr, nullptr, "forbidden");
        map().setMapFlags(0);
    }
}

// Plane, embedded bits, padding and shutter in all sixteen combinations, each on its own pixel.
TEST_P(MapRaster, Precedence) {
    constexpr int width = 16;
    std::uint16_t plane = 0;
    std::uint16_t padding = 0;
    std::uint16_t shutter = 0;
    CCsRaster src = source(width, 2);
    for (unsigned n = 0; n < 16; ++n) {
        if ((n & 8) != 0) plane = static_cast<std::uint16_t>(plane | 1U << n);
        if ((n & 2) != 0) padding = static_cast<std::uint16_t>(padding | 1U << n);
        if ((n & 1) != 0) shutter = static_cast<std::uint16_t>(shutter | 1U << n);
        stored(src)[src.getPitch() + static_cast<int>(n)] =
            static_cast<std::uint16_t>((n & 4) != 0 ? 0x3000 + n : 100 + n);
        src.unlock();
    }
    unsigned char paddingBits[4] = {0, 0, static_cast<unsigned char>(padding & 255),
                                    static_cast<unsigned char>(padding >> 8)};
    unsigned char planeBits[2] = {static_cast<unsigned char>(plane & 255), static_cast<unsigned char>(plane >> 8)};
    unsigned char shutterBits[2] = {static_cast<unsigned char>(shutter & 255),
                                    static_cast<unsigned char>(shutter >> 8)};
    CCs60XXOverlay overlay;
    overlay.originX = 1;
    overlay.originY = 2;
    overlay.rows = 1;
    overlay.columns = width;
    overlay.data = planeBits;
    src.add60XXOverlayInfo(overlay);
    src.setEmbeddedOverlayStatus(true);
    CCsBitmapShutterInfo bitmap;
    bitmap.tag = 1;
    bitmap.originX = 1;
    bitmap.originY = 2;
    bitmap.rows = 1;
    bitmap.columns = width;
    bitmap.data = shutterBits;
    bitmap.presentationValue = 0x8000;
    src.setBitmapShutterInfo(bitmap);

    CCsRaster dst = display(width, 2);
    ASSERT_EQ(map().mapRaster(src, dst, everything, true, paddingBits, nullptr), 255);
    const Pixels pixels = pixelsOf(dst);
    const auto* lut = static_cast<const std::uint32_t*>(map().getLut());
    for (unsigned n = 0; n < 16; ++n) {
        const bool embedded = (n & 4) != 0 && GetParam().hasEmbeddedOverlays;
        const std::uint32_t expected = (n & 8) != 0   ? groupColours_[0]
                                       : embedded     ? planeColours_[3]
                                       : (n & 2) != 0 ? 0U
                                       : (n & 1) != 0 ? 0x808080U
                                                      : lut[(n & 4) != 0 ? 0x3000 + n : 100 + n];
        EXPECT_EQ(pixels[width + n], expected) << std::bitset<4>(n);
    }
    expectMapped(src, everything, true, paddingBits, nullptr, "against the rules pixel by pixel");
}

TEST_P(MapRaster, TheFirstPixelIsNeverPadding) {
    CCsRaster src = source(4, 2);
    scribble(src, 503, 0, 4095);
    unsigned char padding[1] = {0xFF};
    CCsRaster dst = display(4, 2);
    ASSERT_EQ(map().mapRaster(src, dst, everything, false, padding, nullptr), 255);
    const Pixels pixels = pixelsOf(dst);
    EXPECT_EQ(pixels[0], static_cast<const std::uint32_t*>(map().getLut())[stored(src)[0]]);
    src.unlock();
    for (std::size_t i = 1; i < 8; ++i) EXPECT_EQ(pixels[i], 0U) << i;
}

TEST_P(MapRaster, OverlaysNeedAnEnabledMapAndTheirColours) {
    unsigned char bits[1] = {0x0F};
    CCs60XXOverlay overlay;
    overlay.originX = 1;
    overlay.originY = 1;
    overlay.rows = 1;
    overlay.columns = 4;
    overlay.data = bits;
    for (int n = 0; n < 16; ++n) {
        CCsRaster src = source(4, 1);
        scribble(src, 504, 0x1000, 0xFFFF);
        if ((n & 1) != 0) src.add60XXOverlayInfo(overlay);
        if ((n & 2) != 0) src.setEmbeddedOverlayStatus(true);
        map().setEnabled((n & 4) != 0);
        map().setOverlayColors((n & 8) != 0 ? planeColours_ : nullptr, (n & 8) != 0 ? groupColours_ : nullptr);
        expectMapped(src, everything, true, nullptr, nullptr, "overlays");
    }
    map().setEnabled(true);
    CCsRaster src = source(4, 1);
    scribble(src, 505, 0x1000, 0xFFFF);
    src.add60XXOverlayInfo(overlay);
    src.setEmbeddedOverlayStatus(true);
    map().setOverlayColors(planeColours_, nullptr);
    expectMapped(src, everything, true, nullptr, nullptr, "embedded bits alone");
    map().setOverlayColors(nullptr, groupColours_);
    expectMapped(src, everything, true, nullptr, nullptr, "planes alone");
}

TEST_P(MapRaster, PlanesBeyondTheColoursTakeTheLast) {
    CCsRaster src = source(20, 1);
    unsigned char bits[20];
    for (int i = 0; i < 20; ++i) {
        bits[i] = 1;
        CCs60XXOverlay overlay;
        overlay.originX = i + 1;
        overlay.originY = 1;
        overlay.rows = 1;
        overlay.columns = 1;
        overlay.data = i == 3 ? nullptr : &bits[i];
        src.add60XXOverlayInfo(overlay);
    }
    CCsRaster dst = display(20, 1);
    ASSERT_EQ(map().mapRaster(src, dst, everything, false, nullptr, nullptr), 255);
    const Pixels pixels = pixelsOf(dst);
    for (std::size_t i = 0; i < 20; ++i) {
        const std::uint32_t expected =
            i == 3 ? static_cast<std::uint32_t*>(map().getLut())[0] : groupColours_[std::min<std::size_t>(i, 15)];
        EXPECT_EQ(pixels[i], expected) << i;
    }
}

TEST_P(MapRaster, Segments) {
    CCsRaster src = source(21, 13);
    scribble(src, 506, 0, 4095);
    src.setPresentationShutterValue(0x4200);
    for (const RECT segment : {RECT{0, 0, 21, 13}, RECT{3, 2, 9, 5}, RECT{-5, -7, 4, 4}, RECT{15, 10, 100, 100},
                               RECT{4, 4, 4, 9}, RECT{4, 4, 9, 4}, RECT{9, 9, 4, 4}, RECT{30, 0, 40, 13},
                               RECT{-9, -9, -1, -1}, RECT{0, 0, 0, 0}, RECT{5, 6, 6, 7},
                               RECT{std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::min(),
                                    std::numeric_limits<LONG>::max(), std::numeric_limits<LONG>::max()}}) {
        for (const bool whole : {false, true}) expectMapped(src, segment, whole, nullptr, nullptr, "segment");
        src.setRectShutter({2, 2, 10, 10});
        expectMapped(src, segment, true, nullptr, nullptr, "segment behind a shutter");
        src.resetImage(2);
    }
}

TEST_P(MapRaster, PresentationValueAroundTheSegment) {
    CCsRaster src = source(12, 6);
    scribble(src, 507, 0, 4095);
    CCsRaster dst = display(12, 6);
    src.setRectShutter({0, 0, 100, 100});
    src.setPresentationShutterValue(0x4200);
    ASSERT_EQ(map().mapRaster(src, dst, {2, 2, 4, 4}, false, nullptr, nullptr), 255);
    EXPECT_EQ(pixelsOf(dst)[0] & 0xFFFFFFU, 0x424242U);
    src.setPresentationShutterValue(0);
    ASSERT_EQ(map().mapRaster(src, dst, {2, 2, 4, 4}, false, nullptr, nullptr), 255);
    EXPECT_EQ(pixelsOf(dst)[0], 0U);
}

TEST_P(MapRaster, PresentationValueUnderATransformation) {
    CCsRaster src = source(12, 6);
    scribble(src, 508, 0, 4095);
    src.setRectShutter({1, 1, 5, 4});
    src.setPresentationShutterValue(0x4200);
    CCsRaster dst = display(12, 6);
    CCs2dTrafo trafo;
    trafo.setSizes(src, dst);
    expectMapped(src, {2, 2, 4, 4}, false, nullptr, &trafo, "with a transformation");
    expectMapped(src, everything, true, nullptr, &trafo, "whole, with a transformation");
}

TEST_P(MapRaster, ShuttersOfEveryKind) {
    constexpr int width = 61;
    constexpr int height = 43;
    zoltest::Random random(509);
    std::vector<unsigned char> bits(width * height / 8 + 1);
    for (int n = 0; n < 60; ++n) {
        CCsRaster src = source(width, height);
        scribble(src, 600 + static_cast<std::uint64_t>(n), 0, n % 2 != 0 ? 0xFFFF : 4095);
        src.setPresentationShutterValue(static_cast<unsigned short>(random.integer(0, 0xFFFF)));
        const auto box = [&] {
            return RECT{random.integer(-10, width), random.integer(-10, height), random.integer(-10, width + 10),
                        random.integer(-10, height + 10)};
        };
        if (random.chance(0.4)) src.setRectShutter(box());
        if (random.chance(0.4)) src.setCircShutter(box());
        if (random.chance(0.4)) {
            std::vector<CPoint> vertices(static_cast<std::size_t>(random.integer(0, 7)));
            for (auto& v : vertices) v = CPoint(random.integer(-5, width + 5), random.integer(-5, height + 5));
            src.setPolygonalShutter(vertices);
        }
        for (auto& b : bits) b = static_cast<unsigned char>(random.chance(0.5) ? 0 : random.bits());
        if (random.chance(0.3)) {
            CCsBitmapShutterInfo bitmap;
            bitmap.tag = 1;
            bitmap.originX = random.integer(-5, 20);
            bitmap.originY = random.integer(-5, 20);
            bitmap.columns = static_cast<std::uint16_t>(random.integer(0, width));
            bitmap.rows = static_cast<std::uint16_t>(random.integer(0, height));
            bitmap.data = random.chance(0.9) ? bits.data() : nullptr;
            bitmap.presentationValue = static_cast<std::uint16_t>(random.integer(0, 0xFFFF));
            src.setBitmapShutterInfo(bitmap);
        }
        if (random.chance(0.3)) {
            CCs60XXOverlay overlay;
            overlay.originX = random.integer(-5, 20);
            overlay.originY = random.integer(-5, 20);
            overlay.columns = static_cast<std::uint16_t>(random.integer(0, width));
            overlay.rows = static_cast<std::uint16_t>(random.integer(0, height));
            overlay.data = bits.data();
            src.add60XXOverlayInfo(overlay);
        }
        src.setEmbeddedOverlayStatus(random.chance(0.3));
        const RECT segment = random.chance(0.5) ? everything : box();
        expectMapped(src, segment, random.chance(0.5), random.chance(0.3) ? bits.data() : nullptr, nullptr, "shutters");
    }
}

TEST_P(MapRaster, RefusedImages) {
    CCsRaster src = source(4, 4);
    CCsRaster dst = display(4, 4);
    const Pixels before = pixelsOf(dst);
    const auto expectRefused = [&](CCsRaster& s, CCsRaster& d, const Report& report) {
        EXPECT_EQ(map().mapRaster(s, d, everything, true, nullptr, nullptr), 2);
        EXPECT_EQ(ReportCapture::take(), std::vector<Report>{report});
    };
    for (const int type : {CCS_INDEX8, CCS_GREY12, CCS_GREY8, CCS_RGB12, CCS_RGB8, CCS_RGB24, CCS_GREY16}) {
        CCsRaster other(4, 4, type, 1.0, false, false);
        if (type != GetParam().imageType) expectRefused(other, dst, report(GetParam().sourceRefused, type, 602));
        if (type != CCS_RGB8) {
            expectRefused(src, other, report(L"Destination type must be CCS_RGB8, is", type, 608));
        }
    }
    for (const auto& [width, height] : {std::pair{5, 4}, {4, 5}, {3, 4}, {4, 3}}) {
        CCsRaster other = display(width, height);
        expectRefused(src, other, report(L"Destination raster must have the same size", 0, 615));
    }
    EXPECT_EQ(pixelsOf(dst), before);
}

TEST_P(MapRaster, RefusesWithoutATable) {
    CCsRaster src = source(4, 4);
    CCsRaster dst = display(4, 4);
    const Pixels before = pixelsOf(dst);
    map().setWindow(100, 0);
    EXPECT_EQ(map().mapRaster(src, dst, everything, true, nullptr, nullptr), 2);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{widthReport(0)});
    map().setWindow(100, 5);
    map().getLut();
    const std::unique_ptr<IMap> clone(map().clone());
    EXPECT_EQ(clone->mapRaster(src, dst, everything, true, nullptr, nullptr), 2);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{colourMapReport()});
    EXPECT_EQ(pixelsOf(dst), before);
    clone->setColorMapIndex(&palette_.map);
    EXPECT_EQ(clone->mapRaster(src, dst, everything, true, nullptr, nullptr), 255);
    EXPECT_NE(pixelsOf(dst), before);
}

// A pool without chunks, as when the system has no memory left: logged each time, never reported, and nothing is
// touched but the copy, which becomes zeroes.
TEST_P(MapRaster, WithoutChunksNothingIsMappedAndCopiesAreZero) {
    const zoltest::LogCapture log;
    CCsRaster src = source(4, 4);
    CCsRaster dst = display(4, 4);
    const Pixels before = pixelsOf(dst);
    Pixels copy(0x10001, 0x77777777U);
    unsigned* out = copy.data();
    {
        const zoltest::ExhaustedChunks exhausted;
        for (const bool whole : {false, true}) {
            EXPECT_EQ(map().mapRaster(src, dst, everything, whole, nullptr, nullptr), 2);
        }
        EXPECT_EQ(pixelsOf(dst), before);
        map().copyLut(&out);
        EXPECT_TRUE(std::all_of(copy.begin(), copy.end() - 1, [](std::uint32_t p) { return p == 0; }));
        EXPECT_EQ(copy.back(), 0x77777777U);
        const std::unique_ptr<IMap> clone(map().clone());
        ASSERT_NE(clone, nullptr) << "a clone starts without a chunk";
        clone->setColorMapIndex(&palette_.map);
        EXPECT_EQ(clone->getLut(), nullptr);
    }
    const std::pair<std::wstring, std::wstring> line(L"zolcs - E", L"Exception: Out of memory");
    EXPECT_EQ(log.lines(), (std::vector<std::pair<std::wstring, std::wstring>>(4, line)));
    EXPECT_TRUE(ReportCapture::take().empty());
    EXPECT_EQ(map().mapRaster(src, dst, everything, true, nullptr, nullptr), 255);
    map().copyLut(&out);
    const Pixels table = lut();
    EXPECT_TRUE(std::equal(copy.begin(), copy.begin() + 1024, table.begin()));
    EXPECT_EQ(log.lines().size(), 4U);
}

// A table that is built needs no chunk.
TEST_P(MapRaster, AMapThatHasItsChunkGoesOnWithoutThePool) {
    const zoltest::LogCapture log;
    CCsRaster src = source(4, 4);
    CCsRaster dst = display(4, 4);
    map().getLut();
    const zoltest::ExhaustedChunks exhausted;
    map().setWindow(100, 50);
    EXPECT_EQ(map().mapRaster(src, dst, everything, true, nullptr, nullptr), 255);
    expectLut([](int v) { return windowLevel(v, 100, 50); }, "rebuilt");
    map().releaseLut();
    EXPECT_EQ(map().getLut(), nullptr);
    EXPECT_EQ(log.lines().size(), 1U);
}

TEST_P(MapRaster, RefusesImagesWithoutMemory) {
    CCsRaster src = source(4, 4);
    CCsRaster dst = display(4, 4);
    CCsRaster emptySource(nullptr, 4, 4, GetParam().imageType, 1.0);
    CCsRaster emptyDisplay(nullptr, 4, 4, CCS_RGB8, 1.0);
    map().getLut();
    ZolMemMappedManager::getIntance()->setLimit(0);
    EXPECT_EQ(map().mapRaster(emptySource, dst, everything, true, nullptr, nullptr), 2);
    auto reports = ReportCapture::take();
    ASSERT_FALSE(reports.empty());
    EXPECT_EQ(reports.back(), report(L"get origin for source raster returned NULL in method mapRaster", 0, 623));
    EXPECT_EQ(map().mapRaster(src, emptyDisplay, everything, true, nullptr, nullptr), 2);
    reports = ReportCapture::take();
    ASSERT_FALSE(reports.empty());
    EXPECT_EQ(reports.back(), report(L"get origin for dst raster returned NULL in method mapRaster", 0, 626));
    ZolMemMappedManager::getIntance()->setLimit(static_cast<std::size_t>(-1));
}

// One map, two threads: each call has the map for itself, and the rows of both run in parallel.
TEST_P(MapRaster, TwoThreadsThroughOneMap) {
    CCsRaster plain = source(600, 500);
    scribble(plain, 510, 0, 65534);
    CCsRaster shuttered = source(600, 500);
    scribble(shuttered, 511, 0, 65534);
    shuttered.setCircShutter({10, 10, 400, 400});
    shuttered.setPresentationShutterValue(0x2000);
    CCsRaster expected[2] = {display(600, 500), display(600, 500)};
    map().mapRaster(plain, expected[0], everything, true, nullptr, nullptr);
    map().mapRaster(shuttered, expected[1], everything, true, nullptr, nullptr);
    map().setWindow(2048, 4000);  // stale: whichever thread comes first builds the table

    CCsRaster mapped[2] = {display(600, 500), display(600, 500)};
    std::atomic<int> succeeded{0};
    std::thread threads[2];
    for (int t = 0; t < 2; ++t) {
        threads[t] = std::thread([&, t] {
            for (int n = 0; n < 5; ++n) {
                if (map().mapRaster(t == 0 ? plain : shuttered, mapped[t], everything, true, nullptr, nullptr) == 255) {
                    ++succeeded;
                }
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(succeeded.load(), 10);
    for (int t = 0; t < 2; ++t) EXPECT_EQ(pixelsOf(mapped[t]), pixelsOf(expected[t])) << t;
}

// A table that is built may be read by as many threads as like. (An image serves one thread at a time.)
TEST_P(MapRaster, TwoThreadsResampleThroughOneMap) {
    CCsRaster sources[2] = {source(200, 150), source(200, 150)};
    for (CCsRaster& src : sources) {
        scribble(src, 512, 0, 4095);
        src.setPresentationShutterValue(0x2000);
        src.setCircShutter({10, 10, 140, 140});
    }
    map().getLut();
    const auto draw = [&](CCsRaster& src, CCsRaster& frame, double angle) {
        CCs2dTrafo trafo;
        trafo.rotate(angle);
        CCsNearest().nearestGrey12IndexMap(src, frame, trafo, map_.get(), nullptr, 7);
    };
    constexpr double angles[2] = {0.0, 30.0};
    CCsRaster expected[2] = {display(300, 200), display(300, 200)};
    CCsRaster drawn[2] = {display(300, 200), display(300, 200)};
    for (int t = 0; t < 2; ++t) draw(sources[t], expected[t], angles[t]);
    std::thread threads[2];
    for (int t = 0; t < 2; ++t) {
        threads[t] = std::thread([&, t] {
            for (int n = 0; n < 5; ++n) draw(sources[t], drawn[t], angles[t]);
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (int t = 0; t < 2; ++t) EXPECT_EQ(pixelsOf(drawn[t]), pixelsOf(expected[t])) << t;
}

// Tables may be taken and given back from any thread. (The pool traces every chunk on the thread that asks, so that no
// handler is installed here.)
class GreyMapThreads : public ::testing::TestWithParam<GreyMapKind> {};

INSTANTIATE_TEST_SUITE_P(Both, GreyMapThreads, ::testing::Values(zoltest::grey12Kind, zoltest::grey16Kind),
                         [](const auto& kind) { return kind.param.name; });

TEST_P(GreyMapThreads, AllocateAndReleaseFromMany) {
    zoltest::TestPalette palette;
    const std::unique_ptr<IMap> owner(MapFactory::CreateMap(GetParam().type));
    auto& map = static_cast<IGreyMap&>(*owner);
    map.setColorMapIndex(&palette.map);
    std::vector<std::thread> threads;
    std::atomic<int> allocated{0};
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int n = 0; n < 50; ++n) {
                if (map.allocateLut() == 255) ++allocated;
                if (n % 3 == 0) map.releaseLut();
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(allocated.load(), 200);
    EXPECT_NE(map.getLut(), nullptr);
}

}  // namespace
