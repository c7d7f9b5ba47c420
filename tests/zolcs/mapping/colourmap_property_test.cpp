// The colour maps against their plain restatement: tables after any settings, whole rasters, separate channels, and the
// merging of rendered graphics.
#include "reference/colourmap_reference.h"
#include "reference/grey12_reference.h"
#include "reference/guarded_image.h"
#include "reference/random_shutters.h"
#include "reference/rendered_bitmap.h"
#include "support/report_capture.h"
#include "support/test_data.h"
#include "zolcs/ccsmap.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <vector>

namespace {

using zoltest::GuardedImage;
using zoltest::GuardedRaster;
using zoltest::Random;
using zoltest::Rendered;

struct Pair {
    explicit Pair(int bits)
        : real(dynamic_cast<IColorMap*>(MapFactory::CreateMap(bits == 8 ? MapFactory::Rgb8 : MapFactory::Rgb12))),
          plain(bits) {}

    std::unique_ptr<IColorMap> real;
    zolref::ColourMap plain;
    std::ostringstream log;
};

void setAnyWindow(Pair& pair, Random& random) {
    const int depth = 1 << pair.plain.bits;
    auto centre = static_cast<unsigned>(random.integer(0, random.chance(0.1) ? 2147483647 : depth + depth / 4));
    int width = random.integer(1, depth + depth / 2);
    if (random.chance(0.1)) centre = static_cast<unsigned>(-random.integer(1, depth));
    if (random.chance(0.1)) width = random.integer(-2, 4);
    if (random.chance(0.1)) width = random.integer(depth, 2147483647);
    pair.log << "setWindow " << centre << ' ' << width << '\n';
    pair.real->setWindow(centre, width);
    zolref::setWindow(pair.plain, centre, width);
}

void expectTable(Pair& pair) {
    pair.log << "getLut\n";
    const bool built = zolref::buildLut(pair.plain);
    const auto* got = static_cast<const unsigned char*>(pair.real->getLut());
    ASSERT_EQ(got != nullptr, built);
    if (!built) return;
    ASSERT_EQ(std::vector<unsigned>(got, got + pair.plain.lut.size()), pair.plain.lut);
}

/// The four channels of a pixel, byte by byte.
void channelsAt(GuardedRaster& raster, int x, int y, unsigned* channels) {
    const int size = raster.getType() == CCS_RGB12 ? 2 : 1;
    const unsigned char* at =
        raster.memory.pixels() + (static_cast<std::ptrdiff_t>(y) * raster.getPitch() + x) * 4 * size;
    for (int i = 0; i < 4; ++i, at += size) channels[i] = size == 2 ? at[0] + 256U * at[1] : at[0];
}

}  // namespace

TEST(ColourMapProperty, AnySettingsBuildTheRestatedTables) {
    Random random(20240701);
    for (int round = 0; round < 3000; ++round) {
        const zoltest::ReportCapture capture;
        Pair pair(random.chance(0.5) ? 8 : 12);
        const int operations = random.integer(1, 8);
        for (int i = 0; i < operations && !::testing::Test::HasFailure(); ++i) {
            switch (random.integer(0, 4)) {
                case 0:
                case 1:
                    setAnyWindow(pair, random);
                    break;
                case 2:
                    pair.log << "clone\n";
                    pair.real.reset(dynamic_cast<IColorMap*>(pair.real->clone()));
                    ASSERT_NE(pair.real, nullptr);
                    pair.plain = zolref::cloned(pair.plain);
                    break;
                default:
                    expectTable(pair);
                    break;
            }
        }
        if (!::testing::Test::HasFailure()) expectTable(pair);
        ASSERT_FALSE(::testing::Test::HasFailure()) << "round " << round << " after\n" << pair.log.str();
    }
}

TEST(ColourMapProperty, WholeRastersAreMappedAsRestated) {
    Random random(20240702);
    for (int round = 0; round < 2000; ++round) {
        Pair pair(random.chance(0.5) ? 8 : 12);
        const int depth = 1 << pair.plain.bits;
        const auto centre = static_cast<unsigned>(random.integer(0, depth));
        const int windowWidth = random.integer(1, depth);
        pair.real->setWindow(centre, windowWidth);
        zolref::setWindow(pair.plain, centre, windowWidth);
        zolref::buildLut(pair.plain);

        const int width = random.integer(1, 50), height = random.integer(1, 40);
        GuardedRaster src(width, height, pair.plain.bits == 8 ? CCS_RGB8 : CCS_RGB12, width + random.integer(0, 5),
                          1.0);
        src.memory.randomise(random);
        if (pair.plain.bits == 12 && random.chance(0.7)) {
            for (std::size_t i = 1; i < src.memory.bytes(); i += 2) src.memory.pixels()[i] &= 15;
        }
        const zoltest::ShutterCase made =
            random.chance(0.25) ? zoltest::ShutterCase() : zoltest::anyShutters(random, width, height);
        zoltest::applyShutters(made.shutters, src);
        GuardedImage dst(width, height, CCS_RGB8, width + random.integer(0, 5), 1.0);
        dst.memory.randomise(random);
        RECT segment = zoltest::anyRect(random, width, height, true);
        if (random.chance(0.5)) segment = zolref::rectOf({0, 0, width, height});

        std::vector<unsigned char> want = dst.memory.all();
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                if (x < segment.left || x >= segment.right || y < segment.top || y >= segment.bottom) continue;
                if (!zolref::mappedInCircle(made.shutters, width, x, y)) continue;
                unsigned channels[4];
                channelsAt(src, x, y, channels);
                const std::vector<unsigned>& table = pair.plain.lut;
                zolref::mapChannels(
                    table, table, table, channels,
                    want.data() + dst.memory.guard() + (static_cast<std::ptrdiff_t>(y) * dst.getPitch() + x) * 4);
            }
        }
        ASSERT_EQ(pair.real->mapRaster(src, dst, segment, random.chance(0.5), nullptr, nullptr), 255);
        ASSERT_EQ(src.GetMemBuffer()->getLockCount(), 0);
        ASSERT_EQ(dst.GetMemBuffer()->getLockCount(), 0);
        ASSERT_TRUE(dst.memory.all() == want)
            << "round " << round << ": " << pair.plain.bits << " bits, " << width << 'x' << height << " pitches "
            << src.getPitch() << ' ' << dst.getPitch() << " segment " << zoltest::textOf(segment) << '\n'
            << made;
    }
}

TEST(ColourMapProperty, SeparateChannelsAreMappedAsRestated) {
    Random random(20240703);
    Pair pair(8);
    std::vector<unsigned> table;
    for (int v = 0; v < 256; ++v) table.push_back(zolref::windowedLevel(v, 127, 256));
    for (int round = 0; round < 1000; ++round) {
        const int width = random.integer(1, 40), height = random.integer(1, 30);
        GuardedRaster src(width, height, CCS_RGB8, width + random.integer(0, 5), 1.0);
        src.memory.randomise(random);
        GuardedImage dst(width, height, CCS_RGB8, width + random.integer(0, 5), 1.0);
        dst.memory.randomise(random);
        std::vector<unsigned char> want = dst.memory.all();
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                unsigned channels[4];
                channelsAt(src, x, y, channels);
                zolref::mapChannels(
                    table, table, table, channels,
                    want.data() + dst.memory.guard() + (static_cast<std::ptrdiff_t>(y) * dst.getPitch() + x) * 4);
            }
        }
        ASSERT_EQ(pair.real->mapRasterSeparate(src, dst), 255);
        ASSERT_EQ(src.GetMemBuffer()->getLockCount(), 0);
        ASSERT_TRUE(dst.memory.all() == want) << "round " << round << ": " << width << 'x' << height;
    }
}

TEST(ColourMapProperty, GraphicsAreMergedAsRestated) {
    Random random(20240505);
    for (const MapFactory::MapType kind : {MapFactory::Rgb8, MapFactory::Rgb12}) {
        const std::unique_ptr<IMap> map(MapFactory::CreateMap(kind));
        for (int round = 0; round < 1000; ++round) {
            const int width = random.integer(1, 40), height = random.integer(1, 30);
            GuardedRaster raster(width, height, CCS_RGB8, width + random.integer(0, 4), 1.0);
            raster.memory.randomise(random);
            Rendered rendered(random, random.chance(0.5) ? raster.getPitch() : random.integer(1, 45),
                              random.chance(0.8) ? height : random.integer(1, 35));
            std::vector<unsigned char> want = raster.memory.all();
            zolref::mergeColourBitmap(want.data() + raster.memory.guard(), width, height, raster.getPitch(),
                                      rendered.words(), rendered.width, rendered.height);
            map->mergeDIBtoData(raster, rendered.info(), 0, 0, false);
            ASSERT_EQ(raster.GetMemBuffer()->getLockCount(), 0);
            ASSERT_TRUE(raster.memory.all() == want)
                << "round " << round << ": " << width << 'x' << height << " pitch " << raster.getPitch() << " bitmap "
                << rendered.width << 'x' << rendered.height;
        }
    }
}
