// Both grey maps against their plain restatements: random sequences of settings and questions, whole rasters with
// everything that a raster can carry, and the merging of rendered graphics.
#include "reference/grey12_reference.h"
#include "reference/grey16_reference.h"
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

using zoltest::GuardedImage;
using zoltest::GuardedRaster;
using zoltest::Matrix;
using zoltest::Random;
using zoltest::Rendered;
using zoltest::ReportCapture;

/// What is restated of the 12-bit map.
struct Depth12 {
    using Plain = zolref::Grey12;
    static constexpr MapFactory::MapType type = MapFactory::Grey12;
    static constexpr int imageType = CCS_GREY12;
    static constexpr int depth = 4096;
    static constexpr int mostBits = 15;
    static constexpr int sequences = 1500;
    static constexpr const wchar_t* module = L"source\\zolcs\\ccsmap";
    static constexpr const wchar_t* missing = L"Memory not allocated for origNonLinearLut12_ 0 ";
};

/// The same of the 16-bit map; its long tables take longer to restate.
struct Depth16 {
    using Plain = zolref::Grey16;
    static constexpr MapFactory::MapType type = MapFactory::Grey16;
    static constexpr int imageType = CCS_GREY16;
    static constexpr int depth = 65536;
    static constexpr int mostBits = 16;
    static constexpr int sequences = 150;
    static constexpr const wchar_t* module = L"source\\zolcs\\ccsmap16";
    static constexpr const wchar_t* missing = L"Memory not allocated for origNonLinearLut16_ 0 ";
};

template <typename Depth>
std::unique_ptr<IGreyMap> newMap() {
    return std::unique_ptr<IGreyMap>(dynamic_cast<IGreyMap*>(MapFactory::CreateMap(Depth::type)));
}

std::vector<unsigned int> anyColours(Random& random, std::size_t count) {
    std::vector<unsigned int> colours(count);
    for (unsigned int& colour : colours) colour = static_cast<unsigned int>(random.bits() >> 16);
    return colours;
}

/// Rising, falling, random or flat; never empty, though the count that goes with it may be below 1.
std::vector<unsigned short> anyTable(Random& random, int longest) {
    const int count = random.chance(0.2) ? random.integer(1, 4) : random.integer(5, longest);
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
template <typename Depth>
struct Pair {
    std::unique_ptr<IGreyMap> real = newMap<Depth>();
    typename Depth::Plain plain;
    std::vector<unsigned int> palettes[2];
    CCsColorMapT records[2];
    std::ostringstream log;

    explicit Pair(Random& random) {
        for (int i = 0; i < 2; ++i) {
            palettes[i] = anyColours(random, 256);
            records[i].entries = palettes[i].data();
        }
    }

    void usePalette(int which) {
        real->setColorMapIndex(&records[which]);
        plain.palette = palettes[which].data();
        plain.lutValid = false;
    }

    /// Back to a new table, as giving it back or cloning leaves it.
    void forgetTable() {
        plain.lutValid = false;
        plain.lut.assign(plain.lut.size(), 0);
    }
};

template <typename Depth>
void anyWindow(Random& random, unsigned& centre, int& width) {
    centre = static_cast<unsigned>(random.integer(0, Depth::depth + Depth::depth / 40));
    width = random.integer(1, Depth::depth + Depth::depth / 5);
    switch (random.integer(0, 9)) {
        case 0:
            width = random.integer(1, 4);
            break;
        case 1:
            width = random.integer(-2, 0);
            break;
        case 2:
            centre = random.chance(0.5) ? static_cast<unsigned>(random.integer(0, 70000))
                                        : static_cast<unsigned>(random.bits());
            break;
        case 3:
            width = random.integer(5000, random.chance(0.5) ? 2000000 : 2147483647);
            break;
        default:
            break;
    }
}

template <typename Depth>
void operate(Pair<Depth>& pair, Random& random) {
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
            anyWindow<Depth>(random, centre, width);
            pair.log << "setWindow " << centre << ' ' << width << '\n';
            pair.real->setWindow(centre, width);
            zolref::setWindow(pair.plain, centre, width);
            break;
        }
        case 4:
        case 5: {
            const std::vector<unsigned short> values = anyTable(random, Depth::depth + 900);
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
            const std::vector<unsigned short> values = anyTable(random, Depth::depth + 900);
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
            const int bits = random.integer(1, Depth::mostBits);
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
                pair.forgetTable();
            } else {
                // A copy starts without a colour map; setting one makes its table stale.
                pair.log << "clone, setColorMapIndex 0\n";
                std::unique_ptr<IGreyMap> copy(dynamic_cast<IGreyMap*>(pair.real->clone()));
                EXPECT_NE(copy, nullptr);
                if (copy == nullptr) break;
                pair.real = std::move(copy);
                pair.forgetTable();
                pair.usePalette(0);
            }
            break;
    }
}

/// The text of the report that building the windowed table makes now; empty when it makes none.
std::wstring windowedFailure(const zolref::Grey12& map, const wchar_t* missing) {
    if (map.windowedValid) return {};
    if (map.width < 1) return L"Window width = negativ or zero " + std::to_wstring(map.width) + L" ";
    if (map.nonLinear.empty()) return missing;
    return {};
}

/// The same for the whole table.
std::wstring lutFailure(const zolref::Grey12& map, const wchar_t* missing) {
    if (map.lutValid) return {};
    if (map.nonLinearSet) {
        std::wstring failure = windowedFailure(map, missing);
        if (!failure.empty()) return failure;
    } else if (map.width < 1) {
        return L"Window width = negativ or zero " + std::to_wstring(map.width) + L" ";
    }
    if (map.palette == nullptr) return L"Memory not allocated for colorMapIndex_ 0 ";
    return {};
}

void expectReport(const std::wstring& text, const wchar_t* module) {
    const std::vector<zoltest::Report> reports = ReportCapture::take();
    if (text.empty()) {
        EXPECT_TRUE(reports.empty()) << reports[0];
        return;
    }
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].text, text) << reports[0];
    EXPECT_EQ(reports[0].file, module);
    EXPECT_EQ(reports[0].tag, L"CS-E");
}

void expectLut(const unsigned int* got, const zolref::Grey12& want, const char* what) {
    for (std::size_t v = 0; v < want.lut.size(); ++v) {
        ASSERT_EQ(got[v], want.lut[v]) << what << ", entry " << v;
    }
}

template <typename Depth>
void askLut(Pair<Depth>& pair) {
    pair.log << "getLut\n";
    ReportCapture::take();
    const std::wstring failure = lutFailure(pair.plain, Depth::missing);
    const bool built = zolref::buildLut(pair.plain);
    const auto* got = static_cast<const unsigned int*>(pair.real->getLut());
    ASSERT_EQ(got != nullptr, built);
    expectReport(failure, Depth::module);
    if (built) expectLut(got, pair.plain, "getLut");
}

/// A copy holds the table, and its first 1024 entries again at every further 4096.
template <typename Depth>
void askCopy(Pair<Depth>& pair) {
    pair.log << "copyLut\n";
    ReportCapture::take();
    const std::wstring failure = lutFailure(pair.plain, Depth::missing);
    const bool built = zolref::buildLut(pair.plain);
    std::vector<unsigned int> copy(65536, 0xA5A5A5A5U);
    unsigned int* target = copy.data();
    pair.real->copyLut(&target);
    EXPECT_EQ(target, copy.data());
    expectReport(failure, Depth::module);
    if (!built) {
        for (std::size_t v = 0; v < 65536; ++v) ASSERT_EQ(copy[v], 0U) << "copyLut without a table, entry " << v;
        return;
    }
    const std::vector<std::uint32_t>& lut = pair.plain.lut;
    for (std::size_t v = 0; v < copy.size(); ++v) {
        if (v % 4096 < 1024) {
            ASSERT_EQ(copy[v], lut[v % 4096]) << "copyLut, entry " << v;
        } else if (v < lut.size()) {
            ASSERT_EQ(copy[v], lut[v]) << "copyLut, entry " << v;
        }
    }
}

template <typename Depth>
void askWindowed(Pair<Depth>& pair, Random& random) {
    const bool unwindowed = random.chance(0.3);
    pair.log << "getWindowedNonLinearLut " << unwindowed << '\n';
    ReportCapture::take();
    const std::wstring failure = windowedFailure(pair.plain, Depth::missing);
    const bool built = zolref::buildWindowed(pair.plain, Depth::depth);
    unsigned short* values = nullptr;
    unsigned int first = 0, count = 0;
    ASSERT_EQ(pair.real->getWindowedNonLinearLut(&values, &first, &count, unwindowed), built ? 255 : 0);
    expectReport(failure, Depth::module);
    if (!built) return;
    const bool whole = unwindowed || pair.plain.exact;
    const std::vector<unsigned>& want = whole ? pair.plain.nonLinear : pair.plain.windowed;
    const auto wantCount = static_cast<unsigned>(whole ? want.size() - 1 : want.size());
    ASSERT_EQ(count, wantCount);
    ASSERT_EQ(first, whole ? pair.plain.nonLinearFirst : static_cast<unsigned>(pair.plain.windowedStart));
    ASSERT_NE(values, nullptr);
    for (std::size_t i = 0; i < wantCount; ++i) ASSERT_EQ(values[i], want[i]) << "windowed entry " << i;
}

template <typename Depth>
void askPresentation(Pair<Depth>& pair, Random& random) {
    EXPECT_EQ(pair.real->hasPresentationLut(), pair.plain.presentationSet);
    for (int i = 0; i < 20; ++i) {
        const auto value = static_cast<unsigned>(random.integer(0, 65535));
        const auto shift = static_cast<unsigned>(random.integer(0, 8));
        ASSERT_EQ(pair.real->applyPresentationLut(value, shift),
                  zolref::presentationLevel(pair.plain, value, static_cast<int>(shift)))
            << value << " shift " << shift;
    }
}

template <typename Depth>
class GreyMapProperty : public ::testing::Test {};

struct DepthName {
    template <typename Depth>
    static std::string GetName(int /*index*/) {
        return std::to_string(Depth::depth);
    }
};

using Depths = ::testing::Types<Depth12, Depth16>;
TYPED_TEST_SUITE(GreyMapProperty, Depths, DepthName);

}  // namespace

TYPED_TEST(GreyMapProperty, RandomSequencesOfSettingsBuildTheRestatedTables) {
    Random random(20240501);
    for (int round = 0; round < TypeParam::sequences && !this->HasFailure(); ++round) {
        const ReportCapture capture;
        Pair<TypeParam> pair(random);
        if (!random.chance(0.05)) pair.usePalette(1);
        const int operations = random.integer(1, 12);
        for (int i = 0; i < operations && !this->HasFailure(); ++i) {
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
        if (!this->HasFailure()) askLut(pair);
        if (!this->HasFailure() && random.chance(0.1)) askCopy(pair);
        ASSERT_FALSE(this->HasFailure()) << "round " << round << " after\n" << pair.log.str();
    }
}

// Thousands of maps; of each table the entries around the window's ends and the table's, and some between.
TYPED_TEST(GreyMapProperty, EveryWayToATableOnItsOwn) {
    constexpr int depth = TypeParam::depth;
    Random random(20240502);
    for (int round = 0; round < 1600 && !this->HasFailure(); ++round) {
        const ReportCapture capture;
        Pair<TypeParam> pair(random);
        typename TypeParam::Plain& plain = pair.plain;
        pair.usePalette(0);
        const int ways = random.integer(0, 31);
        if ((ways & 1) != 0) {
            unsigned char table[256];
            for (unsigned char& byte : table) byte = static_cast<unsigned char>(random.bits() >> 20);
            pair.real->setIndexRemap(table);
            zolref::setRemap(plain, table);
        }
        if ((ways & 2) != 0) {
            plain.sigmoid = true;
            plain.sigmoidBits = random.integer(6, TypeParam::mostBits);
            pair.real->enableSigmoid();
            pair.real->setSigmoidBits(plain.sigmoidBits);
        }
        if ((ways & 4) != 0) {
            const std::vector<unsigned short> values = anyTable(random, 5000);
            const auto first = static_cast<unsigned>(random.chance(0.6) ? 0 : random.integer(0, 2000));
            pair.real->setPresentationLut(values.data(), first, static_cast<int>(values.size()));
            zolref::setPresentation(plain, values.data(), first, static_cast<int>(values.size()));
        }
        if ((ways & 8) != 0) {
            const std::vector<unsigned short> values = anyTable(random, 5000);
            const bool exact = (ways & 16) != 0;
            pair.real->setNonLinearLut(values.data(), 3, static_cast<int>(values.size()), exact);
            zolref::setNonLinear(plain, values.data(), 3, static_cast<int>(values.size()), exact);
        }
        unsigned centre = 0;
        int width = 0;
        anyWindow<TypeParam>(random, centre, width);
        pair.real->setWindow(centre, width);
        zolref::setWindow(plain, centre, width);
        pair.log << "ways " << ways << " window " << centre << ' ' << width << " bits " << plain.sigmoidBits << '\n';

        const auto* lut = static_cast<const unsigned int*>(pair.real->getLut());
        ASSERT_EQ(lut != nullptr, width > 0) << pair.log.str();
        if (lut == nullptr) continue;
        ASSERT_TRUE(zolref::prepareEntries(plain));
        const auto expectEntry = [&](std::int64_t v) {
            if (v < 0 || v >= depth) return;
            ASSERT_EQ(lut[v], zolref::entryOf(plain, v)) << "entry " << v << " after " << pair.log.str();
        };
        const std::int64_t low = plain.centre - plain.width / 2;
        for (std::int64_t i = -6; i <= 6; ++i) {
            for (const std::int64_t edge : {std::int64_t{0}, low, low + plain.width, std::int64_t{depth}}) {
                expectEntry(edge + i);
            }
        }
        for (int i = 0; i < 200; ++i) expectEntry(random.integer(0, depth - 1));
        if (plain.nonLinearSet && !this->HasFailure()) {
            EXPECT_EQ(pair.real->getNonLinearShift(), plain.nonLinearShift);
            if (round % 8 == 0) askWindowed(pair, random);
        }
        ASSERT_FALSE(this->HasFailure()) << "round " << round << ' ' << pair.log.str();
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

TYPED_TEST(GreyMapProperty, WholeRastersAreMappedAsRestated) {
    Random random(20240503);
    const ReportCapture capture;
    Pair<TypeParam> pair(random);
    pair.usePalette(0);
    for (int round = 0; round < 2000; ++round) {
        // The tables have their own tests; a new one now and then is enough here.
        if (round % 20 == 0) {
            const auto centre = static_cast<unsigned>(random.integer(0, TypeParam::depth - 1));
            const int windowWidth = random.integer(1, TypeParam::depth + TypeParam::depth / 4);
            pair.real->setWindow(centre, windowWidth);
            zolref::setWindow(pair.plain, centre, windowWidth);
            zolref::buildLut(pair.plain);
        }

        const int width = random.integer(1, 70), height = random.integer(1, 50);
        GuardedRaster src(width, height, TypeParam::imageType, width + random.integer(0, 5), 1.0);
        src.memory.randomise(random);
        unsigned char* bytes = src.memory.pixels();
        const bool clean = random.chance(0.4);
        // The very highest value is left out: the 12-bit map's accelerated way deliberately has no colour of its own
        // for it.
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

TYPED_TEST(GreyMapProperty, RenderedGraphicsAreMergedAsRestated) {
    Random random(20240504);
    const std::unique_ptr<IGreyMap> map = newMap<TypeParam>();
    for (int round = 0; round < 1500; ++round) {
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
