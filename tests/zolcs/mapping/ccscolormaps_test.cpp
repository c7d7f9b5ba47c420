// The maps of colour channels.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <ostream>
#include <vector>

#include "support/map_support.h"
#include "support/report_capture.h"
#include "support/test_data.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsraster.h"
#include "zolcs/mapping/colourmap.h"

namespace {

using zoltest::errorReport;
using zoltest::Report;
using zoltest::ReportCapture;
using Bytes = std::vector<unsigned char>;

constexpr const wchar_t* module = L"source\\zolcs\\ccsmap";
constexpr RECT everything = {0, 0, 100000, 100000};

Report widthReport(int width) { return errorReport(L"Window width = negativ or zero", width, module, 702); }

unsigned char windowLevel(std::int64_t v, std::int64_t centre, std::int64_t width) {
    const std::int64_t low = centre - width / 2;
    if (v < low) return 0;
    if (v >= low + width) return 255;
    return static_cast<unsigned char>((v - low) * 256 / width);
}

/// In what the two maps differ.
struct Kind {
    MapFactory::MapType type;
    std::size_t entries;
    int sourceType;
    const wchar_t* sourceRefused;
    int line;
};
std::ostream& operator<<(std::ostream& out, const Kind& kind) { return out << kind.entries << " entries"; }

constexpr Kind rgb12 = {MapFactory::Rgb12, 4096, CCS_RGB12, L"Source type must be CCS_RGB12, is", 731};
constexpr Kind rgb8 = {MapFactory::Rgb8, 256, CCS_RGB8, L"Source type must be CCS_RGB8, is", 771};

Bytes lutOf(IMap& map, std::size_t entries) {
    const auto* lut = static_cast<const unsigned char*>(map.getLut());
    return lut == nullptr ? Bytes() : Bytes(lut, lut + entries);
}

Bytes windowTable(std::size_t entries, std::int64_t centre, std::int64_t width) {
    Bytes table(entries);
    for (std::size_t v = 0; v < entries; ++v) table[v] = windowLevel(static_cast<std::int64_t>(v), centre, width);
    return table;
}

CCsRaster scribbled(int width, int height, int type, std::uint64_t seed, int highest) {
    CCsRaster raster(width, height, type, 1.0, false, false);
    zoltest::Random random(seed);
    const std::size_t channels = static_cast<std::size_t>(raster.getPitch()) * static_cast<std::size_t>(height) * 4;
    unsigned char* origin = raster.getOrigin();
    for (std::size_t i = 0; i < channels; ++i) {
        const auto value = static_cast<std::uint16_t>(random.integer(0, highest));
        if (type == CCS_RGB12) {
            std::memcpy(origin + 2 * i, &value, 2);
        } else {
            origin[i] = static_cast<unsigned char>(value);
        }
    }
    raster.unlock();
    return raster;
}

CCsRaster display(int width, int height) {
    CCsRaster raster(width, height, CCS_RGB8, 1.0, false, false);
    std::memset(raster.getOrigin(), 0x11, static_cast<std::size_t>(raster.getPitch() * height * 4));
    raster.unlock();
    return raster;
}

unsigned channelOf(CCsRaster& raster, int x, int y, int channel) {
    const unsigned char* origin = raster.getOrigin();
    const std::size_t at =
        (static_cast<std::size_t>(y) * static_cast<std::size_t>(raster.getPitch()) + static_cast<std::size_t>(x)) * 4 +
        static_cast<std::size_t>(channel);
    std::uint16_t value = 0;
    if (raster.getType() == CCS_RGB12) {
        std::memcpy(&value, origin + 2 * at, 2);
    } else {
        value = origin[at];
    }
    raster.unlock();
    return value;
}

/// All bytes of a 32-bit image, the lines' padding included.
Bytes bytesOf(CCsRaster& raster) {
    const unsigned char* origin = raster.getOrigin();
    Bytes bytes(origin, origin + raster.getPitch() * raster.getHeight() * 4);
    raster.unlock();
    return bytes;
}

class ColourMaps : public ::testing::TestWithParam<Kind> {
protected:
    IMap& map() { return *map_; }
    Bytes lut() { return lutOf(map(), GetParam().entries); }

    CCsRaster source(int width, int height, std::uint64_t seed) {
        return scribbled(width, height, GetParam().sourceType, seed, GetParam().sourceType == CCS_RGB12 ? 4095 : 255);
    }

    const ReportCapture capture_;
    std::unique_ptr<IMap> map_{MapFactory::CreateMap(GetParam().type)};
};

INSTANTIATE_TEST_SUITE_P(Both, ColourMaps, ::testing::Values(rgb12, rgb8),
                         [](const auto& kind) { return kind.param.type == MapFactory::Rgb12 ? "Rgb12" : "Rgb8"; });

// ---- tables -------------------------------------------------------------------------------------------------------

TEST_P(ColourMaps, IsAColourMap) {
    ASSERT_NE(map_, nullptr);
    EXPECT_NE(dynamic_cast<IColorMap*>(map_.get()), nullptr);
    EXPECT_EQ(dynamic_cast<IGreyMap*>(map_.get()), nullptr);
}

TEST_P(ColourMaps, DefaultWindow) { EXPECT_EQ(lut(), windowTable(GetParam().entries, 2048, 2048)); }

TEST_P(ColourMaps, Windows) {
    for (const auto& [centre, width] : {std::pair{128U, 256},
                                        {127U, 256},
                                        {100U, 1},
                                        {0U, 100},
                                        {2048U, 4096},
                                        {10U, 3},
                                        {100000U, 7},
                                        {0xFFFFFFFFU, 50},
                                        {0x7FFFFFFFU, 50},
                                        {70000U, std::numeric_limits<int>::max()}}) {
        map_.reset(MapFactory::CreateMap(GetParam().type));
        EXPECT_EQ(map().setWindow(centre, width), 255);
        EXPECT_EQ(lut(), windowTable(GetParam().entries, static_cast<std::int32_t>(centre), width))
            << centre << ' ' << width;
    }
}

TEST_P(ColourMaps, WidthBelowOneIsRefused) {
    for (const int width : {0, -1, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(map().setWindow(100, width), 255);
        EXPECT_EQ(map().getLut(), nullptr);
        EXPECT_EQ(ReportCapture::take(), std::vector<Report>{widthReport(width)});
        EXPECT_EQ(map().getLut(), nullptr) << "it stays stale and is refused again";
        EXPECT_EQ(ReportCapture::take().size(), 1U);
    }
    map().setWindow(100, 1);
    EXPECT_EQ(lut(), windowTable(GetParam().entries, 100, 1));
}

TEST_P(ColourMaps, ThePaletteIsIgnored) {
    zoltest::TestPalette palette;
    map().setWindow(100, 100);
    const Bytes table = lut();
    map().setColorMapIndex(&palette.map);
    EXPECT_EQ(lut(), table);
    map().setColorMapIndex(nullptr);
    EXPECT_EQ(lut(), table);
}

TEST_P(ColourMaps, ReservedOperationsDoNothing) {
    auto& colours = dynamic_cast<IColorMap&>(map());
    const Bytes table = lut();
    int any = 7;
    colours.reserved1(nullptr, nullptr);
    colours.reserved2(&any, nullptr);
    colours.reserved3(&any, &any);
    EXPECT_EQ(any, 7);
    EXPECT_EQ(lut(), table);
    EXPECT_TRUE(ReportCapture::take().empty());
}

TEST(Rgb12Map, KeepsItsTableWhenTheWindowChanges) {
    const std::unique_ptr<IMap> map(MapFactory::CreateMap(MapFactory::Rgb12));
    map->setWindow(1000, 500);
    EXPECT_EQ(lutOf(*map, 4096), windowTable(4096, 1000, 500)) << "a window before the first build counts";
    map->setWindow(100, 20);
    EXPECT_EQ(lutOf(*map, 4096), windowTable(4096, 1000, 500));
    map->setWindow(100, 0);
    EXPECT_EQ(lutOf(*map, 4096), windowTable(4096, 1000, 500)) << "nor is a width looked at";
}

TEST(Rgb12Map, AClonesTableShowsTheNewWindow) {
    const std::unique_ptr<IMap> map(MapFactory::CreateMap(MapFactory::Rgb12));
    map->getLut();
    map->setWindow(100, 20);
    const std::unique_ptr<IMap> clone(map->clone());
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(lutOf(*clone, 4096), windowTable(4096, 100, 20));
    EXPECT_EQ(lutOf(*map, 4096), windowTable(4096, 2048, 2048)) << "the source keeps its own";
    clone->setWindow(3000, 50);
    EXPECT_EQ(lutOf(*clone, 4096), windowTable(4096, 100, 20));
}

TEST(Rgb8Map, SeesANewWindowAtOnce) {
    const std::unique_ptr<IMap> map(MapFactory::CreateMap(MapFactory::Rgb8));
    EXPECT_EQ(lutOf(*map, 256), Bytes(256, 0)) << "every 8-bit value lies below the window";
    map->setWindow(100, 20);
    EXPECT_EQ(lutOf(*map, 256), windowTable(256, 100, 20));
}

TEST(Rgb8Map, CloneSharesNoTable) {
    const std::unique_ptr<IMap> map(MapFactory::CreateMap(MapFactory::Rgb8));
    map->setWindow(100, 20);
    const Bytes table = lutOf(*map, 256);
    const std::unique_ptr<IMap> clone(map->clone());
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(lutOf(*clone, 256), table);
    EXPECT_NE(clone->getLut(), map->getLut());
    clone->setWindow(50, 30);
    EXPECT_EQ(lutOf(*clone, 256), windowTable(256, 50, 30));
    EXPECT_EQ(lutOf(*map, 256), table);
}

// ---- whole rasters ------------------------------------------------------------------------------------------------

TEST_P(ColourMaps, MapsEveryChannelThroughTheTable) {
    map().setWindow(120, 150);
    const Bytes table = lut();
    for (const auto& [width, height] : {std::pair{1, 1}, {4, 4}, {5, 3}, {33, 17}}) {
        CCsRaster src = source(width, height, 901);
        CCsRaster dst = display(width, height);
        const int sourceLocks = src.GetMemBuffer()->getLockCount();
        const int displayLocks = dst.GetMemBuffer()->getLockCount();
        ASSERT_EQ(map().mapRaster(src, dst, everything, false, nullptr, nullptr), 255);
        EXPECT_EQ(src.GetMemBuffer()->getLockCount(), sourceLocks);
        EXPECT_EQ(dst.GetMemBuffer()->getLockCount(), displayLocks);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                for (int c = 0; c < 3; ++c) ASSERT_EQ(channelOf(dst, x, y, c), table[channelOf(src, x, y, c)]);
                ASSERT_EQ(channelOf(dst, x, y, 3), 0U);
            }
            for (int x = width; x < dst.getPitch(); ++x) ASSERT_EQ(channelOf(dst, x, y, 0), 0x11U) << "padding";
        }
    }
}

TEST(Rgb12Map, ChannelsBeyondTheTableTakeItsLastEntry) {
    const std::unique_ptr<IMap> map(MapFactory::CreateMap(MapFactory::Rgb12));
    CCsRaster src(2, 1, CCS_RGB12, 1.0, false, false);
    const std::uint16_t channels[8] = {4095, 4096, 65535, 65535, 0, 2048, 1024, 1};
    std::memcpy(src.getOrigin(), channels, sizeof channels);
    src.unlock();
    CCsRaster dst = display(2, 1);
    ASSERT_EQ(map->mapRaster(src, dst, everything, false, nullptr, nullptr), 255);
    const Bytes bytes = bytesOf(dst);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 8), (Bytes{255, 255, 255, 0, 0, 128, 0, 0}));
}

TEST_P(ColourMaps, Segments) {
    map().setWindow(120, 150);
    const Bytes table = lut();
    CCsRaster src = source(21, 13, 902);
    for (const RECT segment :
         {RECT{0, 0, 21, 13}, RECT{3, 2, 9, 5}, RECT{-5, -7, 4, 4}, RECT{15, 10, 100, 100}, RECT{4, 4, 4, 9},
          RECT{4, 4, 9, 4}, RECT{9, 9, 4, 4}, RECT{30, 0, 40, 13}, RECT{-9, -9, -1, -1}, RECT{0, 0, 0, 0},
          RECT{std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::max(),
               std::numeric_limits<LONG>::max()}}) {
        CCsRaster dst = display(21, 13);
        ASSERT_EQ(map().mapRaster(src, dst, segment, true, nullptr, nullptr), 255);
        for (int y = 0; y < 13; ++y) {
            for (int x = 0; x < 21; ++x) {
                const bool in = x >= segment.left && x < segment.right && y >= segment.top && y < segment.bottom;
                ASSERT_EQ(channelOf(dst, x, y, 1), in ? table[channelOf(src, x, y, 1)] : 0x11U) << x << ' ' << y;
            }
        }
    }
}

TEST_P(ColourMaps, CircularShutterMapsBetweenItsIntersections) {
    map().setWindow(120, 150);
    CCsRaster src = source(20, 12, 903);
    // Radius 5 around (10, 6): row 6 from 5 to 15, row 3 from 6 to 14, row 1 column 10 alone, row 0 not at all.
    src.setCircShutter({5, 1, 15, 11});
    CCsRaster dst = display(20, 12);
    ASSERT_EQ(map().mapRaster(src, dst, everything, false, nullptr, nullptr), 255);
    const auto mappedColumns = [&](int y) {
        std::vector<int> columns;
        for (int x = 0; x < 20; ++x) {
            if (channelOf(dst, x, y, 3) == 0) columns.push_back(x);
        }
        return columns;
    };
    EXPECT_TRUE(mappedColumns(0).empty());
    EXPECT_EQ(mappedColumns(1), std::vector<int>{10});
    EXPECT_EQ(mappedColumns(3), (std::vector<int>{6, 7, 8, 9, 10, 11, 12, 13, 14}));
    EXPECT_EQ(mappedColumns(6), (std::vector<int>{5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}));
    EXPECT_EQ(mappedColumns(11), std::vector<int>{10});
}

TEST_P(ColourMaps, CircleAndSegmentTogether) {
    map().setWindow(120, 150);
    CCsRaster src = source(20, 12, 904);
    src.setCircShutter({5, 1, 15, 11});
    CCsRaster whole = display(20, 12);
    ASSERT_EQ(map().mapRaster(src, whole, everything, false, nullptr, nullptr), 255);
    // In tiles of every width the picture is the same.
    for (int tile = 1; tile < 20; ++tile) {
        CCsRaster dst = display(20, 12);
        for (int x = 0; x < 20; x += tile) {
            ASSERT_EQ(map().mapRaster(src, dst, {x, 0, x + tile, 12}, false, nullptr, nullptr), 255);
        }
        ASSERT_EQ(bytesOf(dst), bytesOf(whole)) << tile;
    }
}

TEST_P(ColourMaps, OtherShuttersPlanesAndPaddingPlayNoPart) {
    map().setWindow(120, 150);
    CCsRaster src = source(8, 8, 905);
    CCsRaster plain = display(8, 8);
    ASSERT_EQ(map().mapRaster(src, plain, everything, false, nullptr, nullptr), 255);
    Bytes bits(8, 0xFF);
    CCs60XXOverlay overlay;
    overlay.originX = 1;
    overlay.originY = 1;
    overlay.rows = 8;
    overlay.columns = 8;
    overlay.data = bits.data();
    src.add60XXOverlayInfo(overlay);
    src.setRectShutter({2, 2, 3, 3});
    src.setPolygonalShutter({{1, 1}, {4, 1}, {4, 4}});
    src.setPresentationShutterValue(0x4200);
    CCsRaster dst = display(8, 8);
    ASSERT_EQ(map().mapRaster(src, dst, everything, true, bits.data(), nullptr), 255);
    EXPECT_EQ(bytesOf(dst), bytesOf(plain));
}

TEST_P(ColourMaps, RefusedImages) {
    CCsRaster src = source(4, 4, 906);
    CCsRaster dst = display(4, 4);
    const Bytes before = bytesOf(dst);
    const auto expectRefused = [&](CCsRaster& s, CCsRaster& d, const Report& report) {
        EXPECT_EQ(map().mapRaster(s, d, everything, true, nullptr, nullptr), 0);
        EXPECT_EQ(ReportCapture::take(), std::vector<Report>{report});
    };
    const int line = GetParam().line;
    for (const int type : {CCS_INDEX8, CCS_GREY12, CCS_GREY8, CCS_RGB12, CCS_RGB8, CCS_RGB24, CCS_GREY16}) {
        CCsRaster other(4, 4, type, 1.0, false, false);
        if (type != GetParam().sourceType) {
            expectRefused(other, dst, errorReport(GetParam().sourceRefused, type, module, line));
        }
        if (type != CCS_RGB8) {
            expectRefused(src, other, errorReport(L"Destination type must be CCS_RGB8, is", type, module, line + 6));
        }
    }
    for (const auto& [width, height] : {std::pair{5, 4}, {4, 5}, {3, 4}, {4, 3}}) {
        CCsRaster other = display(width, height);
        expectRefused(src, other, errorReport(L"Destination raster must have the same size", 0, module, line + 13));
    }
    map().setWindow(1, 0);
    expectRefused(src, dst, widthReport(0));
    EXPECT_EQ(bytesOf(dst), before);
}

TEST_P(ColourMaps, RefusesImagesWithoutMemory) {
    CCsRaster src = source(4, 4, 907);
    CCsRaster dst = display(4, 4);
    CCsRaster emptySource(nullptr, 4, 4, GetParam().sourceType, 1.0);
    CCsRaster emptyDisplay(nullptr, 4, 4, CCS_RGB8, 1.0);
    const int line = GetParam().line;
    ZolMemMappedManager::getIntance()->setLimit(0);
    EXPECT_EQ(map().mapRaster(emptySource, dst, everything, true, nullptr, nullptr), 0);
    EXPECT_EQ(ReportCapture::take().back(),
              errorReport(L"get origin for source raster returned NULL in method mapRaster", 0, module, line + 21));
    EXPECT_EQ(map().mapRaster(src, emptyDisplay, everything, true, nullptr, nullptr), 0);
    EXPECT_EQ(ReportCapture::take().back(),
              errorReport(L"get origin for dst raster returned NULL in method mapRaster", 0, module, line + 24));
    ZolMemMappedManager::getIntance()->setLimit(static_cast<std::size_t>(-1));
}

// ---- separate channels --------------------------------------------------------------------------------------------

TEST(Rgb12Map, SeparateMappingDoesNothing) {
    const ReportCapture capture;
    const std::unique_ptr<IMap> map(MapFactory::CreateMap(MapFactory::Rgb12));
    CCsRaster src = scribbled(4, 4, CCS_RGB12, 908, 4095);
    CCsRaster dst = display(3, 2);
    const Bytes before = bytesOf(dst);
    EXPECT_EQ(dynamic_cast<IColorMap&>(*map).mapRasterSeparate(src, dst), 255);
    EXPECT_EQ(bytesOf(dst), before);
    EXPECT_TRUE(ReportCapture::take().empty());
}

class SeparateChannels : public ::testing::Test {
protected:
    /// Sees the channels' windows, which no operation sets.
    struct Opened : CCsRgb8Map {
        void setChannel(std::size_t channel, int centre, int width) {
            channels_[channel].window = {centre, width};
            channels_[channel].valid = false;
        }
    };

    const ReportCapture capture_;
    Opened map_;
};

TEST_F(SeparateChannels, DefaultTablesRaiseEveryLevelByOne) {
    CCsRaster src(64, 1, CCS_RGB8, 1.0, false, false);
    unsigned char* origin = src.getOrigin();
    for (int i = 0; i < 256; ++i) origin[i] = static_cast<unsigned char>(i);
    src.unlock();
    CCsRaster dst = display(64, 1);
    map_.setWindow(5, 0);  // the common window plays no part
    ASSERT_EQ(map_.mapRasterSeparate(src, dst), 255);
    const Bytes bytes = bytesOf(dst);
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(bytes[static_cast<std::size_t>(i)], i % 4 == 3 ? 0 : std::min(i + 1, 255)) << i;
    }
    EXPECT_TRUE(ReportCapture::take().empty());
}

TEST_F(SeparateChannels, BytesAreBlueGreenRed) {
    map_.setChannel(0, 50, 40);
    map_.setChannel(1, 100, 150);
    map_.setChannel(2, 200, 100);
    CCsRaster src = scribbled(5, 3, CCS_RGB8, 909, 255);
    CCsRaster dst = display(5, 3);
    const int locks = src.GetMemBuffer()->getLockCount();
    ASSERT_EQ(map_.mapRasterSeparate(src, dst), 255);
    EXPECT_EQ(src.GetMemBuffer()->getLockCount(), locks);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 5; ++x) {
            EXPECT_EQ(channelOf(dst, x, y, 0), windowLevel(channelOf(src, x, y, 0), 200, 100));
            EXPECT_EQ(channelOf(dst, x, y, 1), windowLevel(channelOf(src, x, y, 1), 100, 150));
            EXPECT_EQ(channelOf(dst, x, y, 2), windowLevel(channelOf(src, x, y, 2), 50, 40));
            EXPECT_EQ(channelOf(dst, x, y, 3), 0U);
        }
        EXPECT_EQ(channelOf(dst, 5, y, 0), 0x11U) << "padding";
    }
    const std::unique_ptr<IMap> clone(map_.clone());
    CCsRaster again = display(5, 3);
    ASSERT_EQ(dynamic_cast<IColorMap&>(*clone).mapRasterSeparate(src, again), 255);
    EXPECT_EQ(bytesOf(again), bytesOf(dst)) << "a clone has the same channels";
}

TEST_F(SeparateChannels, MapsAnImageOntoItself) {
    CCsRaster src = scribbled(5, 3, CCS_RGB8, 910, 255);
    CCsRaster dst = display(5, 3);
    ASSERT_EQ(map_.mapRasterSeparate(src, dst), 255);
    ASSERT_EQ(map_.mapRasterSeparate(src, src), 255);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 5; ++x) {
            for (int c = 0; c < 4; ++c) EXPECT_EQ(channelOf(src, x, y, c), channelOf(dst, x, y, c));
        }
    }
}

TEST_F(SeparateChannels, WidthBelowOneIsRefused) {
    CCsRaster src = scribbled(4, 4, CCS_RGB8, 911, 255);
    CCsRaster dst = display(4, 4);
    const Bytes before = bytesOf(dst);
    const auto expectRefused = [&](std::size_t channel, int width, const Report& report) {
        map_.setChannel(channel, 127, width);
        EXPECT_EQ(map_.mapRasterSeparate(src, dst), 0);
        EXPECT_EQ(ReportCapture::take(), std::vector<Report>{report});
        EXPECT_EQ(bytesOf(dst), before);
        map_.setChannel(channel, 127, 256);
    };
    expectRefused(0, 0, errorReport(L"Window width (Red) = negativ or zero", 0, module, 851));
    // Deliberate: the words are those of the first channel.
    expectRefused(1, -5, errorReport(L"Window width (Red) = negativ or zero", -5, module, 867));
    expectRefused(2, std::numeric_limits<int>::min(),
                  errorReport(L"Window width (Blue) = negativ or zero", std::numeric_limits<int>::min(), module, 883));
    EXPECT_EQ(map_.mapRasterSeparate(src, dst), 255);
}

TEST_F(SeparateChannels, RefusedImages) {
    CCsRaster src = scribbled(4, 4, CCS_RGB8, 912, 255);
    CCsRaster dst = display(4, 4);
    const Bytes before = bytesOf(dst);
    const auto expectRefused = [&](CCsRaster& s, CCsRaster& d, const Report& report) {
        EXPECT_EQ(map_.mapRasterSeparate(s, d), 0);
        EXPECT_EQ(ReportCapture::take(), std::vector<Report>{report});
    };
    for (const int type : {CCS_INDEX8, CCS_GREY12, CCS_GREY8, CCS_RGB12, CCS_RGB24, CCS_GREY16}) {
        CCsRaster other(4, 4, type, 1.0, false, false);
        expectRefused(other, dst, errorReport(L"Source type must be CCS_RGB8, is", type, module, 811));
        expectRefused(src, other, errorReport(L"Destination type must be CCS_RGB8, is", type, module, 817));
    }
    for (const auto& [width, height] : {std::pair{5, 4}, {4, 5}}) {
        CCsRaster other = display(width, height);
        expectRefused(src, other, errorReport(L"Destination raster must have the same size", 0, module, 824));
    }
    EXPECT_EQ(bytesOf(dst), before);
}

TEST_F(SeparateChannels, RefusesImagesWithoutMemory) {
    CCsRaster image = display(4, 4);
    CCsRaster empty(nullptr, 4, 4, CCS_RGB8, 1.0);
    ZolMemMappedManager::getIntance()->setLimit(0);
    EXPECT_EQ(map_.mapRasterSeparate(empty, image), 0);
    EXPECT_EQ(ReportCapture::take().back(),
              errorReport(L"get origin for source raster returned NULL in method mapRasterSeparate", 0, module, 832));
    EXPECT_EQ(map_.mapRasterSeparate(image, empty), 0);
    EXPECT_EQ(ReportCapture::take().back(),
              errorReport(L"get origin for dst raster returned NULL in method mapRasterSeparate", 0, module, 835));
    ZolMemMappedManager::getIntance()->setLimit(static_cast<std::size_t>(-1));
}

// ---- burning bitmaps in -------------------------------------------------------------------------------------------

/// A 32-bit bitmap as the raster renders it: a 40-byte header and the pixels.
std::vector<std::uint32_t> bitmapOf(int width, int height, const std::vector<std::uint32_t>& pixels) {
    std::vector<std::uint32_t> words(10 + pixels.size());
    BITMAPINFOHEADER header{};
    header.biSize = 40;
    header.biWidth = width;
    header.biHeight = height;
    std::memcpy(words.data(), &header, sizeof header);
    std::copy(pixels.begin(), pixels.end(), words.begin() + 10);
    return words;
}

TEST_P(ColourMaps, MergingClearsOrAdds) {
    CCsRaster raster(4, 2, CCS_RGB8, 1.0, false, false);
    const std::uint32_t stored[8] = {0x12345678, 0x00FF0000, 0x01020304, 5, 6, 7, 8, 9};
    std::memcpy(raster.getOrigin(), stored, sizeof stored);
    raster.unlock();
    const int locks = raster.GetMemBuffer()->getLockCount();
    auto bitmap = bitmapOf(4, -1, {0x00010101, 0x0000FF01, 0, 0x80000000});
    EXPECT_EQ(map().mergeDIBtoData(raster, reinterpret_cast<BITMAPINFO*>(bitmap.data()), 8, 3, true), 255);
    EXPECT_EQ(raster.GetMemBuffer()->getLockCount(), locks);
    std::uint32_t after[8];
    std::memcpy(after, raster.getOrigin(), sizeof after);
    raster.unlock();
    EXPECT_EQ(std::vector<std::uint32_t>(after, after + 8),
              (std::vector<std::uint32_t>{0, 0x00FFFF01, 0x01020304, 0x80000005, 6, 7, 8, 9}));
}

TEST_P(ColourMaps, MergingRefusesOtherPixelSizes) {
    auto bitmap = bitmapOf(2, -1, {0x00FFFFFF, 0x00FFFFFF});
    for (const int type : {CCS_INDEX8, CCS_GREY12, CCS_GREY8, CCS_RGB12, CCS_RGB24, CCS_GREY16}) {
        CCsRaster raster(2, 1, type, 1.0, false, false);
        EXPECT_EQ(map().mergeDIBtoData(raster, reinterpret_cast<BITMAPINFO*>(bitmap.data()), 0, 0, false), 0);
        EXPECT_EQ(ReportCapture::take(),
                  std::vector<Report>{errorReport(L"Raster type must be CCS_RGB8, is", type, module, 152)});
        EXPECT_EQ(raster.getOrigin()[0], 0);
        raster.unlock();
    }
    CCsRaster raster = display(2, 1);
    EXPECT_EQ(map().mergeDIBtoData(raster, nullptr, 0, 0, false), 0);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{errorReport(L"No bitmap to merge", 0, module, 157)});
    CCsRaster empty(nullptr, 2, 1, CCS_RGB8, 1.0);
    ZolMemMappedManager::getIntance()->setLimit(0);
    EXPECT_EQ(map().mergeDIBtoData(empty, reinterpret_cast<BITMAPINFO*>(bitmap.data()), 0, 0, false), 0);
    ZolMemMappedManager::getIntance()->setLimit(static_cast<std::size_t>(-1));
    EXPECT_EQ(ReportCapture::take().back(), errorReport(L"Raster to merge into has no memory", 0, module, 162));
}

}  // namespace
