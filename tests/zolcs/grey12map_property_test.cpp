// The 12-bit grey map against its plain restatement: random sequences of settings and questions, whole rasters with
// everything that a raster can carry, and the merging of rendered graphics.
#include "reference/grey12_reference.h"
#include "reference/guarded_image.h"
#include "reference/random_shutters.h"
#include "reference/random_views.h"
#include "reference/rendered_bitmap.h"
#include "support/report_capture.h"
#include "support/test_data.h"
#include "zolcs/ccsmap.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

using zolref::Grey12;
using zoltest::GuardedImage;
using zoltest::GuardedRaster;
using zoltest::Matrix;
using zoltest::Random;
using zoltest::Rendered;
using zoltest::ReportCapture;

std::unique_ptr<IGreyMap> newMap() {
    return std::unique_ptr<IGreyMap>(dynamic_cast<IGreyMap*>(MapFactory::CreateMap(MapFactory::Grey12)));
}

std::vector<unsigned int> anyColours(Random& random, std::size_t count) {
    std::vector<unsigned int> colours(count);
    for (unsigned int& colour : colours) colour = static_cast<unsigned int>(random.bits() >> 16);
    return colours;
}

/// Rising, falling, random or flat; never empty, though the count that goes with it may be below 1.
std::vector<unsigned short> anyTable(Random& random) {
    const int count = random.chance(0.2) ? random.integer(1, 4) : random.integer(5, 5000);
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

struct Pair {
    std::unique_ptr<IGreyMap> real = newMap();
    Grey12 plain;
    std::vector<unsigned int> palettes[2];
    CCsColorMapT records[2];
    std::ostringstream log;

    explicit Pair(Random& random) {
        for (int i = 0; i < 2; ++i) {
            palettes[i] = anyColours(random, 256);
            records[i].entries = palettes[i].data();
        }
    }
};

void anyWindow(Random& random, unsigned& centre, int& width) {
    centre = static_cast<unsigned>(random.integer(0, 4200));
    width = random.integer(1, 5000);
    switch (random.integer(0, 9)) {
        case 0:
            width = random.integer(1, 4);
            break;
        case 1:
            width = random.integer(-2, 0);
            break;
        case 2:
            centre = static_cast<unsigned>(random.integer(0, 70000));
            break;
        case 3:
            width = random.integer(5000, random.chance(0.5) ? 2000000 : 2147483647);
            break;
        default:
            break;
    }
}

void operate(Pair& pair, Random& random) {
    switch (random.integer(0, 13)) {
        case 0: {
            const int which = random.chance(0.1) ? 2 : random.integer(0, 1);
            pair.log << "setColorMapIndex " << which << '\n';
            pair.real->setColorMapIndex(which == 2 ? nullptr : &pair.records[which]);
            pair.plain.palette = which == 2 ? nullptr : pair.palettes[which].data();
            pair.plain.lutValid = false;
            break;
        }
        case 1:
        case 2:
        case 3: {
            unsigned centre = 0;
            int width = 0;
            anyWindow(random, centre, width);
            pair.log << "setWindow " << centre << ' ' << width << '\n';
            pair.real->setWindow(centre, width);
            zolref::setWindow(pair.plain, centre, width);
            break;
        }
        case 4:
        case 5: {
            const std::vector<unsigned short> values = anyTable(random);
            const int count = random.chance(0.05) ? random.integer(-2, 0) : static_cast<int>(values.size());
            const auto first = static_cast<unsigned>(random.integer(0, 300));
            const bool exact = random.chance(0.3);
            pair.log << "setNonLinearLut " << count << " from " << first << " exact " << exact << " ends "
                     << values.front() << ' ' << values.back() << '\n';
            EXPECT_EQ(pair.real->setNonLinearLut(values.data(), first, count, exact), 255);
            zolref::setNonLinear(pair.plain, values.data(), first, count, exact);
            break;
        }
        case 6: {
            unsigned char table[256];
            for (unsigned char& byte : table) byte = static_cast<unsigned char>(random.bits() >> 20);
            pair.log << "setIndexRemap\n";
            pair.real->setIndexRemap(table);
            zolref::setRemap(pair.plain, table);
            break;
        }
        case 7: {
            const std::vector<unsigned short> values = anyTable(random);
            const int count = random.chance(0.05) ? random.integer(-2, 0) : static_cast<int>(values.size());
            const auto first = static_cast<unsigned>(random.chance(0.7) ? 0 : random.integer(0, 300));
            pair.log << "setPresentationLut " << count << " from " << first << " ends " << values.front() << ' '
                     << values.back() << '\n';
            EXPECT_EQ(pair.real->setPresentationLut(values.data(), first, count), 255);
            zolref::setPresentation(pair.plain, values.data(), first, count);
            break;
        }
        case 8: {
            const bool on = random.chance(0.5);
            pair.log << "setEnabled " << on << '\n';
            pair.real->setEnabled(on);
            pair.plain.enabled = on;
            if (!on) pair.plain.lutValid = false;
            break;
        }
        case 9:
            pair.log << "clearNonLinearLut\n";
            pair.real->clearNonLinearLut();
            pair.plain.nonLinearSet = false;
            break;
        case 10:
            if (!random.chance(0.4)) break;
            pair.log << "enableSigmoid\n";
            pair.real->enableSigmoid();
            pair.plain.sigmoid = true;
            break;
        case 11: {
            const int bits = random.integer(1, 15);
            pair.log << "setSigmoidBits " << bits << '\n';
            pair.real->setSigmoidBits(bits);
            pair.plain.sigmoidBits = bits;
            break;
        }
        case 12: {
            const bool on = random.chance(0.5);
            pair.log << "setExactNonLinearWindow " << on << '\n';
            pair.real->setExactNonLinearWindow(on);
            pair.plain.exact = on;
            break;
        }
        default:
            if (random.chance(0.5)) {
                pair.log << "releaseLut\n";
                pair.real->releaseLut();
                pair.plain.lutValid = false;
            } else {
                // A copy starts without a colour map; setting one makes its table stale.
                pair.log << "clone, setColorMapIndex 0\n";
                std::unique_ptr<IGreyMap> copy(dynamic_cast<IGreyMap*>(pair.real->clone()));
                EXPECT_NE(copy, nullptr);
                if (copy == nullptr) break;
                pair.real = std::move(copy);
                pair.real->setColorMapIndex(&pair.records[0]);
                pair.plain.palette = pair.palettes[0].data();
                pair.plain.lutValid = false;
            }
            break;
    }
}

const std::wstring kModule = L"source\\zolcs\\ccsmap";

/// The text of the report that building the windowed table makes now; empty when it makes none.
std::wstring windowedFailure(const Grey12& map) {
    if (map.windowedValid) return {};
    if (map.width < 1) return L"Window width = negativ or zero " + std::to_wstring(map.width) + L" ";
    if (map.nonLinear.empty()) return L"Memory not allocated for origNonLinearLut12_ 0 ";
    return {};
}

/// The same for the whole table.
std::wstring lutFailure(const Grey12& map) {
    if (map.lutValid) return {};
    if (map.nonLinearSet) {
        std::wstring failure = windowedFailure(map);
        if (!failure.empty()) return failure;
    } else if (map.width < 1) {
        return L"Window width = negativ or zero " + std::to_wstring(map.width) + L" ";
    }
    if (map.palette == nullptr) return L"Memory not allocated for colorMapIndex_ 0 ";
    return {};
}

void expectReport(const std::wstring& text) {
    const std::vector<zoltest::Report> reports = ReportCapture::take();
    if (text.empty()) {
        EXPECT_TRUE(reports.empty()) << reports[0];
        return;
    }
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].text, text) << reports[0];
    EXPECT_EQ(reports[0].file, kModule);
    EXPECT_EQ(reports[0].tag, L"CS-E");
}

void expectLut(const unsigned int* got, const Grey12& want, const char* what) {
    for (std::size_t v = 0; v < 4096; ++v) {
        ASSERT_EQ(got[v], want.lut[v]) << what << ", entry " << v;
    }
}

void askLut(Pair& pair) {
    pair.log << "getLut\n";
    ReportCapture::take();
    const std::wstring failure = lutFailure(pair.plain);
    const bool built = zolref::buildLut(pair.plain);
    const auto* got = static_cast<const unsigned int*>(pair.real->getLut());
    ASSERT_EQ(got != nullptr, built);
    expectReport(failure);
    if (built) expectLut(got, pair.plain, "getLut");
}

/// A copy holds the table, and the table's first quarter again at every further 4096 entries.
void askCopy(Pair& pair) {
    pair.log << "copyLut\n";
    ReportCapture::take();
    const std::wstring failure = lutFailure(pair.plain);
    const bool built = zolref::buildLut(pair.plain);
    std::vector<unsigned int> copy(65536, 0xA5A5A5A5U);
    unsigned int* target = copy.data();
    pair.real->copyLut(&target);
    EXPECT_EQ(target, copy.data());
    expectReport(failure);
    if (!built) {
        for (std::size_t v = 0; v < 65536; ++v) ASSERT_EQ(copy[v], 0U) << "copyLut without a table, entry " << v;
        return;
    }
    expectLut(copy.data(), pair.plain, "copyLut");
    for (std::size_t k = 1; k <= 15; ++k) {
        for (std::size_t v = 0; v < 1024; ++v) {
            ASSERT_EQ(copy[4096 * k + v], pair.plain.lut[v]) << "copyLut, block " << k << ", entry " << v;
        }
    }
}

void askWindowed(Pair& pair, Random& random) {
    const bool unwindowed = random.chance(0.3);
    pair.log << "getWindowedNonLinearLut " << unwindowed << '\n';
    ReportCapture::take();
    const std::wstring failure = windowedFailure(pair.plain);
    const bool built = zolref::buildWindowed(pair.plain);
    unsigned short* values = nullptr;
    unsigned int first = 0, count = 0;
    ASSERT_EQ(pair.real->getWindowedNonLinearLut(&values, &first, &count, unwindowed), built ? 255 : 0);
    expectReport(failure);
    if (!built) return;
    const bool whole = unwindowed || pair.plain.exact;
    const std::vector<unsigned>& want = whole ? pair.plain.nonLinear : pair.plain.windowed;
    const auto wantCount = static_cast<unsigned>(whole ? want.size() - 1 : want.size());
    ASSERT_EQ(count, wantCount);
    ASSERT_EQ(first, whole ? pair.plain.nonLinearFirst : static_cast<unsigned>(pair.plain.windowedStart));
    ASSERT_NE(values, nullptr);
    for (std::size_t i = 0; i < wantCount; ++i) ASSERT_EQ(values[i], want[i]) << "windowed entry " << i;
}

void askPresentation(Pair& pair, Random& random) {
    EXPECT_EQ(pair.real->hasPresentationLut(), pair.plain.presentationSet);
    for (int i = 0; i < 20; ++i) {
        const auto value = static_cast<unsigned>(random.integer(0, 65535));
        const auto shift = static_cast<unsigned>(random.integer(0, 8));
        ASSERT_EQ(pair.real->applyPresentationLut(value, shift),
                  zolref::presentationLevel(pair.plain, value, static_cast<int>(shift)))
            << value << " shift " << shift;
    }
}

}  // namespace

TEST(Grey12MapProperty, RandomSequencesOfSettingsBuildTheRestatedTables) {
    Random random(20240501);
    for (int round = 0; round < 1500 && !HasFailure(); ++round) {
        const ReportCapture capture;
        Pair pair(random);
        if (!random.chance(0.05)) {
            pair.real->setColorMapIndex(&pair.records[1]);
            pair.plain.palette = pair.palettes[1].data();
        }
        const int operations = random.integer(1, 12);
        for (int i = 0; i < operations && !HasFailure(); ++i) {
            operate(pair, random);
            switch (random.integer(0, 9)) {
                case 0:
                case 1:
                    askLut(pair);
                    break;
                case 2:
                    askWindowed(pair, random);
                    break;
                case 3:
                    askPresentation(pair, random);
                    break;
                case 4:
                    if (random.chance(0.3)) askCopy(pair);
                    break;
                default:
                    break;
            }
        }
        EXPECT_EQ(pair.real->isEnabled(), pair.plain.enabled);
        if (!HasFailure()) askLut(pair);
        if (!HasFailure() && random.chance(0.1)) askCopy(pair);
        ASSERT_FALSE(HasFailure()) << "round " << round << " after\n" << pair.log.str();
    }
}

TEST(Grey12MapProperty, EveryWayToATableOnItsOwn) {
    Random random(20240502);
    for (int round = 0; round < 700 && !HasFailure(); ++round) {
        const ReportCapture capture;
        Pair pair(random);
        pair.real->setColorMapIndex(&pair.records[0]);
        pair.plain.palette = pair.palettes[0].data();
        const int ways = random.integer(0, 31);
        if ((ways & 1) != 0) {
            unsigned char table[256];
            for (unsigned char& byte : table) byte = static_cast<unsigned char>(random.bits() >> 20);
            pair.real->setIndexRemap(table);
            zolref::setRemap(pair.plain, table);
        }
        if ((ways & 2) != 0) {
            pair.plain.sigmoid = true;
            pair.plain.sigmoidBits = random.integer(6, 15);
            pair.real->enableSigmoid();
            pair.real->setSigmoidBits(pair.plain.sigmoidBits);
        }
        if ((ways & 4) != 0) {
            const std::vector<unsigned short> values = anyTable(random);
            const auto first = static_cast<unsigned>(random.chance(0.6) ? 0 : random.integer(0, 2000));
            pair.real->setPresentationLut(values.data(), first, static_cast<int>(values.size()));
            zolref::setPresentation(pair.plain, values.data(), first, static_cast<int>(values.size()));
        }
        if ((ways & 8) != 0) {
            const std::vector<unsigned short> values = anyTable(random);
            const bool exact = (ways & 16) != 0;
            pair.real->setNonLinearLut(values.data(), 3, static_cast<int>(values.size()), exact);
            zolref::setNonLinear(pair.plain, values.data(), 3, static_cast<int>(values.size()), exact);
        }
        unsigned centre = 0;
        int width = 0;
        anyWindow(random, centre, width);
        pair.real->setWindow(centre, width);
        zolref::setWindow(pair.plain, centre, width);
        pair.log << "ways " << ways << " window " << centre << ' ' << width << " bits " << pair.plain.sigmoidBits
                 << '\n';
        askLut(pair);
        if (!HasFailure() && pair.plain.nonLinearSet && width > 0) {
            EXPECT_EQ(pair.real->getNonLinearShift(), pair.plain.nonLinearShift);
            askWindowed(pair, random);
        }
        ASSERT_FALSE(HasFailure()) << "round " << round << ' ' << pair.log.str();
    }
}

namespace {

std::string firstDifference(GuardedImage& dst, const std::vector<unsigned char>& want) {
    const std::vector<unsigned char>& got = dst.memory.all();
    if (got == want) return {};
    std::size_t at = 0;
    while (got[at] == want[at]) ++at;
    const auto offset = static_cast<std::ptrdiff_t>(at) - static_cast<std::ptrdiff_t>(dst.memory.guard());
    std::ostringstream out;
    out << "byte " << offset << " = column " << offset / 4 % dst.getPitch() << ", row " << offset / 4 / dst.getPitch()
        << ": " << int{got[at]} << ", restated " << int{want[at]};
    return out.str();
}

}  // namespace

TEST(Grey12MapProperty, WholeRastersAreMappedAsRestated) {
    Random random(20240503);
    for (int round = 0; round < 2500; ++round) {
        const ReportCapture capture;
        Pair pair(random);
        pair.real->setColorMapIndex(&pair.records[0]);
        pair.plain.palette = pair.palettes[0].data();
        const auto centre = static_cast<unsigned>(random.integer(0, 4095));
        const int windowWidth = random.integer(1, 5000);
        pair.real->setWindow(centre, windowWidth);
        zolref::setWindow(pair.plain, centre, windowWidth);
        zolref::buildLut(pair.plain);

        const int width = random.integer(1, 70), height = random.integer(1, 50);
        GuardedRaster src(width, height, CCS_GREY12, width + random.integer(0, 5), 1.0);
        src.memory.randomise(random);
        unsigned char* bytes = src.memory.pixels();
        const bool clean = random.chance(0.4);
        // The very highest value is left out: the accelerated way deliberately has no colour of its own for it.
        for (std::size_t i = 1; i < src.memory.bytes(); i += 2) {
            bytes[i] = static_cast<unsigned char>(clean ? bytes[i] & 15 : (bytes[i] == 255 ? 254 : bytes[i]));
        }
        const zoltest::ShutterCase made =
            random.chance(0.25) ? zoltest::ShutterCase() : zoltest::anyShutters(random, width, height);
        zoltest::applyShutters(made.shutters, src);

        zolref::MappedView view;
        view.shutters = made.shutters;
        std::vector<unsigned int> planeColours = anyColours(random, 16), groupColours = anyColours(random, 16);
        if (!random.chance(0.15)) view.planeColours = planeColours.data();
        if (!random.chance(0.15)) view.groupColours = groupColours.data();
        pair.real->setOverlayColors(view.planeColours != nullptr ? planeColours.data() : nullptr,
                                    view.groupColours != nullptr ? groupColours.data() : nullptr);
        view.enabled = !random.chance(0.15);
        pair.real->setEnabled(view.enabled);
        std::vector<unsigned char> padding;
        if (random.chance(0.3)) {
            padding = zoltest::anyBits(random, static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
            view.padding = padding.data();
        }
        const bool wholeImageAllowed = random.chance(0.6);
        const int flags = random.chance(0.3) ? 2 : random.integer(0, 1);
        pair.real->setMapFlags(flags);

        const bool withTrafo = random.chance(0.3);
        // Without a transformation the fill may or may not reach the padding of the lines: no padding there.
        const int dstPadding = withTrafo ? random.integer(0, 5) : 0;
        GuardedImage dst(width, height, CCS_RGB8, width + dstPadding, 1.0);
        dst.memory.randomise(random);
        CCs2dTrafo trafo;
        trafo.setSizes(src, dst);
        trafo.scale(random.real(0.5, 2.0));
        const Matrix forth = zoltest::toDisplayOf(trafo);
        RECT segment = zoltest::anyRect(random, width, height, true);
        if (random.chance(0.5)) segment = zolref::rectOf({0, 0, width, height});

        std::vector<unsigned char> want = dst.memory.all();
        unsigned char* first = want.data() + dst.memory.guard();
        zolref::shutterFill(made.shutters, first, width, height, dst.getPitch(), withTrafo ? forth.m : nullptr, width,
                            height);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                if (x < segment.left || x >= segment.right || y < segment.top || y >= segment.bottom) continue;
                const unsigned char* in = bytes + (static_cast<std::ptrdiff_t>(y) * src.getPitch() + x) * 2;
                const std::uint32_t value =
                    zolref::mappedPixel(pair.plain, view, in[0] + 256U * in[1], x, y, width, height);
                std::memcpy(first + (static_cast<std::ptrdiff_t>(y) * dst.getPitch() + x) * 4, &value, 4);
            }
        }
        const int result =
            pair.real->mapRaster(src, dst, segment, wholeImageAllowed, padding.empty() ? nullptr : padding.data(),
                                 withTrafo ? &trafo : nullptr);
        ASSERT_EQ(result, 255);
        ASSERT_EQ(src.GetMemBuffer()->getLockCount(), 0);
        ASSERT_EQ(dst.GetMemBuffer()->getLockCount(), 0);
        ASSERT_EQ(firstDifference(dst, want), "")
            << "round " << round << ": " << width << 'x' << height << " pitches " << src.getPitch() << ' '
            << dst.getPitch() << " segment " << zoltest::textOf(segment) << " whole " << wholeImageAllowed << " flags "
            << flags << " transformation " << withTrafo << " padding " << !padding.empty() << " enabled "
            << view.enabled << " colours " << (view.planeColours != nullptr) << (view.groupColours != nullptr) << '\n'
            << made;
    }
}

TEST(Grey12MapProperty, RenderedGraphicsAreMergedAsRestated) {
    Random random(20240504);
    const std::unique_ptr<IGreyMap> map = newMap();
    for (int round = 0; round < 3000; ++round) {
        const int width = random.integer(1, 40), height = random.integer(1, 30);
        GuardedRaster raster(width, height, random.chance(0.7) ? CCS_GREY12 : CCS_GREY16, width + random.integer(0, 4),
                             1.0);
        raster.memory.randomise(random);
        Rendered rendered(random, random.chance(0.5) ? raster.getPitch() : random.integer(1, 45),
                          random.chance(0.8) ? height : random.integer(1, 35));
        const unsigned depth = random.chance(0.3) ? 8 : static_cast<unsigned>(random.integer(0, 16));
        const int bits = random.chance(0.2) ? 0 : random.integer(1, 20);
        const bool blankToMax = random.chance(0.5);
        std::vector<unsigned char> want = raster.memory.all();
        zolref::mergeBitmap(want.data() + raster.memory.guard(), width, height, raster.getPitch(), rendered.words(),
                            rendered.width, rendered.height, depth, bits, blankToMax);
        map->mergeDIBtoData(raster, rendered.info(), depth, bits, blankToMax);
        ASSERT_EQ(raster.GetMemBuffer()->getLockCount(), 0);
        ASSERT_TRUE(raster.memory.all() == want)
            << "round " << round << ": " << width << 'x' << height << " pitch " << raster.getPitch() << " bitmap "
            << rendered.width << 'x' << rendered.height << " depth " << depth << " bits " << bits << " blankToMax "
            << blankToMax;
    }
}
