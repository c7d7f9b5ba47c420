// The 16-bit grey map against its plain restatement: random sequences of settings, and whole rasters with everything
// that a raster can carry.
#include "reference/grey16_reference.h"
#include "reference/guarded_image.h"
#include "reference/random_shutters.h"
#include "support/report_capture.h"
#include "support/test_data.h"
#include "zolcs/ccscolorman.h"
#include "zolcs/ccsmap.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

using zolref::Grey16;
using zoltest::GuardedImage;
using zoltest::GuardedRaster;
using zoltest::Random;
using zoltest::ReportCapture;

std::vector<unsigned int> anyColours(Random& random, std::size_t count) {
    std::vector<unsigned int> colours(count);
    for (unsigned int& colour : colours) colour = static_cast<unsigned int>(random.bits() >> 16);
    return colours;
}

std::vector<unsigned short> anyTable(Random& random) {
    const int count = random.chance(0.2) ? random.integer(1, 4) : random.integer(5, 70000);
    const int most = random.chance(0.3) ? random.integer(0, 255) : random.integer(256, 65535);
    const int kind = random.integer(0, 3);
    std::vector<unsigned short> values;
    for (int i = 0; i < count; ++i) {
        long long value = most;
        if (kind == 0) value = static_cast<long long>(most) * i / count;
        if (kind == 1) value = static_cast<long long>(most) * (count - i) / count;
        if (kind == 2) value = random.integer(0, most);
        values.push_back(static_cast<unsigned short>(value));
    }
    return values;
}

/// A map, what it should do, and how it came there.
struct Pair {
    std::unique_ptr<IGreyMap> real{dynamic_cast<IGreyMap*>(MapFactory::CreateMap(MapFactory::Grey16))};
    Grey16 plain;
    std::vector<unsigned int> palette;
    CCsColorMapT record;
    std::ostringstream log;

    explicit Pair(Random& random) : palette(anyColours(random, 256)) {
        record.entries = palette.data();
        setColourMap();
    }

    void setColourMap() {
        real->setColorMapIndex(&record);
        plain.palette = palette.data();
        plain.lutValid = false;
    }

    /// Back to a new table, as giving it back or cloning leaves it.
    void forgetTable() {
        plain.lutValid = false;
        plain.lut.assign(plain.lut.size(), 0);
    }
};

void setAnyWindow(Pair& pair, Random& random) {
    auto centre = static_cast<unsigned>(random.integer(0, 66000));
    int width = random.integer(1, 70000);
    switch (random.integer(0, 9)) {
        case 0:
            width = random.integer(1, 4);
            break;
        case 1:
            width = random.integer(-2, 0);
            break;
        case 2:
            centre = static_cast<unsigned>(random.bits());
            break;
        case 3:
            width = random.integer(70000, 2147483647);
            break;
        default:
            break;
    }
    pair.log << "setWindow " << centre << ' ' << width << '\n';
    pair.real->setWindow(centre, width);
    zolref::setWindow(pair.plain, centre, width);
}

void operate(Pair& pair, Random& random) {
    switch (random.integer(0, 10)) {
        case 0:
        case 1: {
            const std::vector<unsigned short> values = anyTable(random);
            const int count = random.chance(0.05) ? random.integer(-2, 0) : static_cast<int>(values.size());
            const bool exact = random.chance(0.3);
            pair.log << "setNonLinearLut " << count << " exact " << exact << '\n';
            EXPECT_EQ(pair.real->setNonLinearLut(values.data(), 7, count, exact), 255);
            zolref::setNonLinear(pair.plain, values.data(), 7, count, exact);
            break;
        }
        case 2:
        case 3: {
            const std::vector<unsigned short> values = anyTable(random);
            const int count = random.chance(0.05) ? random.integer(-2, 0) : static_cast<int>(values.size());
            pair.log << "setPresentationLut " << count << '\n';
            EXPECT_EQ(pair.real->setPresentationLut(values.data(), 3, count), 255);
            zolref::setPresentation(pair.plain, values.data(), 3, count);
            break;
        }
        case 4: {
            if (!random.chance(0.4)) break;
            unsigned char table[256];
            for (unsigned char& byte : table) byte = static_cast<unsigned char>(random.bits() >> 20);
            pair.log << "setIndexRemap\n";
            pair.real->setIndexRemap(table);
            zolref::setRemap(pair.plain, table);
            break;
        }
        case 5:
            pair.log << "clearNonLinearLut\n";
            pair.real->clearNonLinearLut();
            pair.plain.nonLinearSet = false;
            break;
        case 6: {
            const int bits = random.integer(1, 16);
            pair.log << "sigmoid with " << bits << " bits\n";
            if (random.chance(0.4)) {
                pair.real->enableSigmoid();
                pair.plain.sigmoid = true;
            }
            pair.real->setSigmoidBits(bits);
            pair.plain.sigmoidBits = bits;
            break;
        }
        case 7: {
            const bool on = random.chance(0.5);
            pair.log << "setExactNonLinearWindow " << on << '\n';
            pair.real->setExactNonLinearWindow(on);
            pair.plain.exact = on;
            break;
        }
        case 8:
            pair.log << "releaseLut\n";
            pair.real->releaseLut();
            pair.forgetTable();
            break;
        case 9: {
            pair.log << "clone\n";
            std::unique_ptr<IGreyMap> copy(dynamic_cast<IGreyMap*>(pair.real->clone()));
            ASSERT_NE(copy, nullptr);
            pair.real = std::move(copy);
            pair.forgetTable();
            pair.setColourMap();
            break;
        }
        default:
            setAnyWindow(pair, random);
            break;
    }
}

void expectTables(Pair& pair) {
    pair.log << "getLut\n";
    const bool built = zolref::buildLut(pair.plain);
    const auto* got = static_cast<const unsigned int*>(pair.real->getLut());
    ASSERT_EQ(got != nullptr, built);
    if (!built) return;
    ASSERT_EQ(std::vector<unsigned int>(got, got + 65536), pair.plain.lut);
    if (!pair.plain.nonLinearSet) return;
    EXPECT_EQ(pair.real->getNonLinearShift(), pair.plain.nonLinearShift);
    unsigned short* values = nullptr;
    unsigned int first = 0, count = 0;
    ASSERT_EQ(pair.real->getWindowedNonLinearLut(&values, &first, &count, false), 255);
    if (pair.plain.exact) return;
    ASSERT_EQ(first, static_cast<unsigned>(pair.plain.windowedStart));
    ASSERT_EQ(std::vector<unsigned>(values, values + count), pair.plain.windowed);
}

}  // namespace

TEST(Grey16MapProperty, RandomSequencesOfSettingsBuildTheRestatedTables) {
    Random random(20240601);
    for (int round = 0; round < 250; ++round) {
        const ReportCapture capture;
        Pair pair(random);
        const int builds = random.integer(1, 4);
        for (int i = 0; i < builds && !::testing::Test::HasFailure(); ++i) {
            const int operations = random.integer(0, 4);
            for (int n = 0; n < operations; ++n) operate(pair, random);
            setAnyWindow(pair, random);
            expectTables(pair);
        }
        ASSERT_FALSE(::testing::Test::HasFailure()) << "round " << round << " after\n" << pair.log.str();
    }
}

TEST(Grey16MapProperty, WholeRastersAreMappedAsRestated) {
    Random random(20240602);
    const ReportCapture capture;
    Pair pair(random);
    pair.real->setWindow(30000, 50000);
    zolref::setWindow(pair.plain, 30000, 50000);
    zolref::buildLut(pair.plain);
    for (int round = 0; round < 2000; ++round) {
        const int width = random.integer(1, 70), height = random.integer(1, 50);
        GuardedRaster src(width, height, CCS_GREY16, width + random.integer(0, 5), 1.0);
        src.memory.randomise(random);
        const zoltest::ShutterCase made =
            random.chance(0.25) ? zoltest::ShutterCase() : zoltest::anyShutters(random, width, height);
        zoltest::applyShutters(made.shutters, src);

        zolref::MappedView view;
        view.shutters = made.shutters;
        std::vector<unsigned int> planeColours = anyColours(random, 16), groupColours = anyColours(random, 16);
        if (!random.chance(0.15)) view.groupColours = groupColours.data();
        pair.real->setOverlayColors(planeColours.data(), view.groupColours != nullptr ? groupColours.data() : nullptr);
        view.enabled = !random.chance(0.15);
        pair.real->setEnabled(view.enabled);
        std::vector<unsigned char> padding;
        if (random.chance(0.3)) {
            padding = zoltest::anyBits(random, static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
            view.padding = padding.data();
        }
        pair.real->setMapFlags(random.chance(0.3) ? 2 : 0);
        GuardedImage dst(width, height, CCS_RGB8, width, 1.0);
        dst.memory.randomise(random);
        RECT segment = zoltest::anyRect(random, width, height, true);
        if (random.chance(0.5)) segment = zolref::rectOf({0, 0, width, height});

        std::vector<unsigned char> want = dst.memory.all();
        unsigned char* first = want.data() + dst.memory.guard();
        zolref::shutterFill(made.shutters, first, width, height, dst.getPitch(), nullptr, width, height);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                if (x < segment.left || x >= segment.right || y < segment.top || y >= segment.bottom) continue;
                const unsigned char* in =
                    src.memory.pixels() + (static_cast<std::ptrdiff_t>(y) * src.getPitch() + x) * 2;
                const std::uint32_t value =
                    zolref::mappedPixel(pair.plain, view, in[0] + 256U * in[1], x, y, width, height);
                std::memcpy(first + (static_cast<std::ptrdiff_t>(y) * dst.getPitch() + x) * 4, &value, 4);
            }
        }
        ASSERT_EQ(pair.real->mapRaster(src, dst, segment, random.chance(0.6),
                                       padding.empty() ? nullptr : padding.data(), nullptr),
                  255);
        ASSERT_EQ(src.GetMemBuffer()->getLockCount(), 0);
        ASSERT_EQ(dst.GetMemBuffer()->getLockCount(), 0);
        ASSERT_TRUE(dst.memory.all() == want)
            << "round " << round << ": " << width << 'x' << height << " pitch " << src.getPitch() << " segment "
            << zoltest::textOf(segment) << " padding " << !padding.empty() << " enabled " << view.enabled << '\n'
            << made;
    }
}
