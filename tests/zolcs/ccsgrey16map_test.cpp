// What the 16-bit grey map does differently from the 12-bit one, and that the rest is the same.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include "support/map_support.h"
#include "support/report_capture.h"
#include "support/test_data.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsmemorymanager.h"
#include "zolcs/ccsraster.h"
#include "zolcs/mapping/windowlut.h"

namespace {

using zoltest::errorReport;
using zoltest::Report;
using zoltest::ReportCapture;
using Pixels = std::vector<std::uint32_t>;
using Values = std::vector<std::uint16_t>;

constexpr const wchar_t* module = L"source\\zolcs\\ccsmap16";
constexpr int depth = 65536;
constexpr RECT everything = {0, 0, 100000, 100000};

Report widthReport(int width) { return errorReport(L"Window width = negativ or zero", width, module, 301); }
Report colourMapReport() { return errorReport(L"Memory not allocated for colorMapIndex_", 0, module, 306); }

class Grey16Map : public ::testing::Test {
protected:
    Grey16Map() { map().setColorMapIndex(&palette_.map); }

    IGreyMap& map() { return static_cast<IGreyMap&>(*map_); }
    [[nodiscard]] const auto& colours() const { return palette_.colours; }

    static Pixels lutOf(IGreyMap& map) {
        const auto* lut = static_cast<const std::uint32_t*>(map.getLut());
        return lut == nullptr ? Pixels() : Pixels(lut, lut + depth);
    }
    Pixels lut() { return lutOf(map()); }

    /// Whether the next getLut builds the table anew: only then does it see a changed palette.
    bool isStale() {
        palette_.colours.fill(++unusedColour_);
        const bool stale = lut().at(0) == unusedColour_;
        palette_.colours = zoltest::TestPalette().colours;
        return stale;
    }

    template <typename Level>
    void expectLut(Level levelOf, const char* what) {
        const Pixels table = lut();
        ASSERT_EQ(table.size(), static_cast<std::size_t>(depth)) << what;
        for (int v = 0; v < depth; ++v) {
            ASSERT_EQ(table[static_cast<std::size_t>(v)], colours()[static_cast<std::size_t>(levelOf(v))])
                << what << ", value " << v;
        }
    }

    zoltest::TestPalette palette_;
    std::uint32_t unusedColour_ = 0xFF000000U;
    const ReportCapture capture_;
    std::unique_ptr<IMap> map_{MapFactory::CreateMap(MapFactory::Grey16)};
};

/// Level of a window, straight from its definition.
int windowLevel(int v, int centre, int width) {
    const std::int64_t low = std::int64_t{centre} - width / 2;
    if (v < low) return 0;
    if (v >= low + width) return 255;
    return static_cast<int>(((v - low) * 256 / width) & 255);
}

std::array<unsigned char, 256> testRemap() {
    std::array<unsigned char, 256> remap{};
    for (unsigned i = 0; i < 256; ++i) remap[i] = static_cast<unsigned char>(i * 11 + 5);
    return remap;
}

Values ramp(int count, int step, int start = 0) {
    Values values(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) values[static_cast<std::size_t>(i)] = static_cast<std::uint16_t>(start + i * step);
    return values;
}

int set(IGreyMap& map, const Values& values, bool exact, unsigned first = 0) {
    return map.setNonLinearLut(values.data(), first, static_cast<int>(values.size()), exact);
}

int present(IGreyMap& map, const Values& values, unsigned first = 0) {
    return map.setPresentationLut(values.data(), first, static_cast<int>(values.size()));
}

// ---- the window path ----------------------------------------------------------------------------------------------

TEST_F(Grey16Map, Defaults) {
    EXPECT_TRUE(map().isEnabled());
    EXPECT_FALSE(map().hasPresentationLut());
    EXPECT_EQ(map().getMapFlags(), 0);
    EXPECT_EQ(map().getNonLinearShift(), 0);
    EXPECT_EQ(map().getOverlayColors(), (std::pair<unsigned*, unsigned*>(nullptr, nullptr)));
    expectLut([](int v) { return windowLevel(v, 1, 2); }, "centre 1, width 2");
}

TEST_F(Grey16Map, LinearWindowOverTheWholeDepth) {
    for (const auto& [centre, width] : {std::pair{32768, 65536},
                                        {32768, 65535},
                                        {100, 1},
                                        {40000, 1000},
                                        {0, 100},
                                        {65535, 4096},
                                        {100000, 7},
                                        {70000, 140000}}) {
        map().setWindow(static_cast<unsigned>(centre), width);
        expectLut([c = centre, w = width](int v) { return windowLevel(v, c, w); }, "linear");
    }
}

TEST_F(Grey16Map, LinearWindowThroughRemap) {
    const auto remap = testRemap();
    map().setIndexRemap(remap.data());
    map().setWindow(30000, 20000);
    expectLut([&](int v) { return remap[static_cast<std::size_t>(windowLevel(v, 30000, 20000))]; }, "remapped");
}

TEST_F(Grey16Map, WidthBelowOneIsRefused) {
    for (const int width : {0, -1, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(map().setWindow(100, width), 255);
        EXPECT_EQ(map().getLut(), nullptr);
        EXPECT_EQ(ReportCapture::take(), std::vector<Report>{widthReport(width)});
    }
    set(map(), ramp(10, 1), false);
    map().setWindow(5, -3);
    EXPECT_EQ(map().getLut(), nullptr);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{widthReport(-3)}) << "with a non-linear table too";
    EXPECT_EQ(map().getWindowedNonLinearLut(nullptr, nullptr, nullptr, false), 0);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{widthReport(-3)});
}

TEST_F(Grey16Map, WithoutColourMapThereIsNoTable) {
    map().setColorMapIndex(nullptr);
    EXPECT_EQ(map().getLut(), nullptr);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{colourMapReport()});
    set(map(), ramp(10, 1), false);
    EXPECT_EQ(map().getLut(), nullptr);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{colourMapReport()});
}

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

TEST_F(Grey16Map, SigmoidThroughRemap) {
    const auto remap = testRemap();
    map().enableSigmoid();
    map().setIndexRemap(remap.data());
    map().setWindow(2000, 3000);
    const Pixels table = lut();
    Pixels expected(65535);
    zolcs::mapping::fillSigmoid(expected, {2000, 3000}, 12, true,
                                zolcs::mapping::shownLevels(palette_.colours.data(), remap.data()));
    EXPECT_EQ(Pixels(table.begin(), table.end() - 1), expected);
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

TEST_F(Grey16Map, ApplyPresentationLut) {
    EXPECT_EQ(map().applyPresentationLut(0xABCD, 8), 0xABU);
    present(map(), {40, 256, 512, 1023}, 2);
    EXPECT_EQ(map().applyPresentationLut(2047, 4), 40U >> 2);
    EXPECT_EQ(map().applyPresentationLut(3072, 4), 64U);
    EXPECT_EQ(map().applyPresentationLut(49152, 8), 64U);
}

TEST_F(Grey16Map, RefusedPresentationTables) {
    EXPECT_EQ(map().setPresentationLut(nullptr, 0, 3), 0);
    EXPECT_EQ(ReportCapture::take(),
              std::vector<Report>{errorReport(L"No values for the presentation LUT", 0, module, 383)});
    present(map(), ramp(16, 1));
    EXPECT_TRUE(map().hasPresentationLut());
    const zoltest::FailingTables failing(0);
    EXPECT_EQ(present(map(), ramp(16, 1)), 1);
    EXPECT_EQ(ReportCapture::take(),
              std::vector<Report>{errorReport(L"Memory allocation failed for Presentation LUT", 0, module, 388)});
    EXPECT_FALSE(map().hasPresentationLut());
}

TEST_F(Grey16Map, PresentationTableWithoutValuesShowsZero) {
    EXPECT_EQ(map().setPresentationLut(nullptr, 0, 0), 255);
    map().setWindow(100, 50);
    expectLut([](int) { return 0; }, "a single 0");
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

TEST_F(Grey16Map, ExactNonLinearWindowIsLinear) {
    const auto remap = testRemap();
    ASSERT_EQ(set(map(), ramp(10, 100), true), 255);
    map().setWindow(40000, 20000);
    expectLut([](int v) { return windowLevel(v, 40000, 20000); }, "exact");
    map().setIndexRemap(remap.data());
    expectLut([&](int v) { return remap[static_cast<std::size_t>(windowLevel(v, 40000, 20000))]; }, "exact, remapped");
}

TEST_F(Grey16Map, ExactNonLinearWindowAtTheEndsOfTheDepth) {
    ASSERT_EQ(set(map(), ramp(10, 100), true), 255);
    map().setWindow(0, 200);
    expectLut([](int v) { return v >= 100 ? 255 : v * 256 / 100; }, "below zero");
    map().setWindow(65536, 200);
    expectLut([](int v) { return v < 65436 ? 0 : (v - 65436) * 256 / 100; }, "past the depth");
}

TEST_F(Grey16Map, NegativeCentreArrivesAsItsPattern) {
    map().setWindow(static_cast<unsigned>(-50), 400);
    expectLut([](int v) { return v >= 150 ? 255 : (v + 250) * 256 / 400; }, "around -50");
}

TEST_F(Grey16Map, WindowBeyondTheDepthShowsWhatIsBelowIt) {
    ASSERT_EQ(set(map(), {77, 200, 255}, false), 255);
    for (const unsigned centre : {65586U, 100000U, 0x7FFFFFFFU}) {
        map().setWindow(centre, 100);
        expectLut([](int) { return 77; }, "beyond");
    }
}

TEST_F(Grey16Map, WindowPastTheDepthHasTheEntriesThatAreLeft) {
    ASSERT_EQ(set(map(), ramp(100, 2), false), 255);
    map().setWindow(65000, 4000);
    unsigned short* table = nullptr;
    unsigned first = 0;
    unsigned count = 0;
    ASSERT_EQ(map().getWindowedNonLinearLut(&table, &first, &count, false), 255);
    EXPECT_EQ(first, 63000U);
    EXPECT_EQ(count, 65536U - 63000U);
}

TEST_F(Grey16Map, WindowedNonLinearLut) {
    const Values values = ramp(100, 2, 50);
    ASSERT_EQ(set(map(), values, false, 31), 255);
    map().setWindow(50000, 200);
    unsigned short* table = nullptr;
    unsigned first = 0;
    unsigned count = 0;
    ASSERT_EQ(map().getWindowedNonLinearLut(&table, &first, &count, false), 255);
    EXPECT_EQ(first, 49900U);
    ASSERT_EQ(count, 200U);
    for (unsigned i = 0; i < 199; ++i) EXPECT_EQ(table[i], 50 + i) << "half steps between the values";
    EXPECT_EQ(table[199], 248);
    ASSERT_EQ(map().getWindowedNonLinearLut(&table, &first, &count, true), 255);
    EXPECT_EQ(first, 31U);
    ASSERT_EQ(count, 100U);
    EXPECT_EQ(Values(table, table + 100), values);
}

TEST_F(Grey16Map, RefusedNonLinearTables) {
    EXPECT_EQ(map().setNonLinearLut(nullptr, 0, 3, false), 0);
    EXPECT_EQ(ReportCapture::take(),
              std::vector<Report>{errorReport(L"No values for the non-linear LUT", 0, module, 337)});
    EXPECT_EQ(map().getWindowedNonLinearLut(nullptr, nullptr, nullptr, false), 0);
    EXPECT_EQ(ReportCapture::take(),
              std::vector<Report>{errorReport(L"Memory not allocated for origNonLinearLut16_", 0, module, 461)});
    const zoltest::FailingTables failing(0);
    EXPECT_EQ(set(map(), ramp(16, 1), true), 1);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{errorReport(L"Memory allocation failed", 0, module, 342)});
}

TEST_F(Grey16Map, WindowedTableThatCannotBeStored) {
    set(map(), ramp(16, 1), false);
    map().setWindow(8, 16);
    {
        const zoltest::FailingTables failing(0);
        EXPECT_EQ(map().getLut(), nullptr);
        EXPECT_EQ(
            ReportCapture::take(),
            (std::vector<Report>{errorReport(L"Memory allocation failed", 0, module, 455),
                                 errorReport(L"Memory not allocated for windowedNonLinearLut16_", 0, module, 484)}));
        EXPECT_EQ(map().getWindowedNonLinearLut(nullptr, nullptr, nullptr, false), 0);
        EXPECT_EQ(ReportCapture::take(), std::vector<Report>{errorReport(L"Memory allocation failed", 0, module, 455)});
    }
    EXPECT_NE(map().getLut(), nullptr);
}

// ---- staleness ----------------------------------------------------------------------------------------------------

TEST_F(Grey16Map, SettersThatMakeTheTableStale) {
    const auto remap = testRemap();
    const auto expectStale = [&](const char* what, auto change) {
        map().getLut();
        EXPECT_FALSE(isStale()) << what;
        change();
        EXPECT_TRUE(isStale()) << what;
    };
    expectStale("setColorMapIndex", [&] { map().setColorMapIndex(&palette_.map); });
    expectStale("setWindow", [&] { map().setWindow(100, 50); });
    expectStale("setIndexRemap", [&] { map().setIndexRemap(remap.data()); });
    expectStale("setEnabled(false)", [&] { map().setEnabled(false); });
    expectStale("releaseLut", [&] { map().releaseLut(); });
    expectStale("setNonLinearLut", [&] { set(map(), ramp(10, 1), false); });
}

TEST_F(Grey16Map, SettersThatDeliberatelyDoNot) {
    unsigned table[16] = {};
    const auto expectValid = [&](const char* what, auto change) {
        map().getLut();
        change();
        EXPECT_FALSE(isStale()) << what;
        map().setWindow(100, 50);
        EXPECT_TRUE(isStale()) << what << ", then the window";
    };
    set(map(), ramp(10, 1), false);
    expectValid("enableSigmoid", [&] { map().enableSigmoid(); });
    expectValid("setSigmoidBits", [&] { map().setSigmoidBits(10); });
    expectValid("setExactNonLinearWindow", [&] { map().setExactNonLinearWindow(true); });
    expectValid("setOverlayColors", [&] { map().setOverlayColors(table, table); });
    expectValid("clearNonLinearLut", [&] { map().clearNonLinearLut(); });
    expectValid("setEnabled(true)", [&] { map().setEnabled(true); });
    expectValid("setPresentationLut", [&] { present(map(), ramp(10, 1)); });
    expectValid("setMapFlags", [&] { map().setMapFlags(2); });
}

// ---- the table's memory -------------------------------------------------------------------------------------------

TEST_F(Grey16Map, WithoutChunkThereIsNoTable) {
    const zoltest::LogCapture log;
    const zoltest::ExhaustedChunks exhausted;
    map().setWindow(5, 0);
    EXPECT_EQ(map().getLut(), nullptr);
    EXPECT_EQ(log.lines(),
              (std::vector<std::pair<std::wstring, std::wstring>>{{L"zolcs - E", L"Exception: Out of memory"}}));
    EXPECT_TRUE(ReportCapture::take().empty()) << "not even the width was looked at";
}

// The copies of the first 1024 entries go over the table's own, deliberately.
TEST_F(Grey16Map, CopyLut) {
    map().setWindow(32768, 65536);
    const Pixels table = lut();
    Pixels copy(0x10001, 0x77777777U);
    unsigned* out = copy.data();
    map().copyLut(&out);
    for (std::size_t i = 0; i < 0x10000; ++i) ASSERT_EQ(copy[i], table[i % 4096 < 1024 ? i % 4096 : i]) << i;
    EXPECT_EQ(copy.back(), 0x77777777U);
    map().setColorMapIndex(nullptr);
    map().copyLut(&out);
    EXPECT_TRUE(std::all_of(copy.begin(), copy.end() - 1, [](std::uint32_t p) { return p == 0; }));
}

// ---- clones -------------------------------------------------------------------------------------------------------

TEST_F(Grey16Map, CloneTakesAllSettingsAndSharesNoTable) {
    const auto remap = testRemap();
    set(map(), ramp(300, 7), false, 12);
    present(map(), ramp(100, 3));
    map().setIndexRemap(remap.data());
    map().setWindow(700, 900);
    map().setMapFlags(6);
    map().setEnabled(false);
    const Pixels table = lut();

    const std::unique_ptr<IMap> owner(map().clone());
    ASSERT_NE(owner, nullptr);
    auto& clone = static_cast<IGreyMap&>(*owner);
    EXPECT_EQ(clone.getMapFlags(), 6);
    EXPECT_FALSE(clone.isEnabled());
    EXPECT_TRUE(clone.hasPresentationLut());
    EXPECT_EQ(clone.getNonLinearShift(), map().getNonLinearShift());
    EXPECT_EQ(clone.getLut(), nullptr) << "valid as its source is, but without a table";
    clone.setColorMapIndex(&palette_.map);
    EXPECT_EQ(lutOf(clone), table);
    clone.setWindow(100, 10);
    EXPECT_NE(lutOf(clone), table);
    EXPECT_EQ(lut(), table) << "the source's window has not changed";
}

TEST_F(Grey16Map, CloneIsA16BitMap) {
    const std::unique_ptr<IMap> clone(map().clone());
    clone->setColorMapIndex(&palette_.map);
    CCsRaster src(2, 2, CCS_GREY16, 1.0, false, false);
    CCsRaster dst(2, 2, CCS_RGB8, 1.0, false, false);
    EXPECT_EQ(clone->mapRaster(src, dst, everything, true, nullptr, nullptr), 255);
}

TEST_F(Grey16Map, CloneWithoutMemoryIsNull) {
    set(map(), ramp(300, 7), false);
    const zoltest::FailingTables failing(0);
    EXPECT_EQ(map().clone(), nullptr);
}

// ---- whole rasters ------------------------------------------------------------------------------------------------

class MapRaster16 : public Grey16Map {
protected:
    MapRaster16() {
        for (unsigned i = 0; i < 16; ++i) {
            planeColours_[i] = 0x0100A000U + i;
            groupColours_[i] = 0x0200B000U + i;
        }
        map().setOverlayColors(planeColours_, groupColours_);
        map().setWindow(32768, 65536);
    }

    static CCsRaster source(const Values& values) {
        CCsRaster raster(static_cast<int>(values.size()), 1, CCS_GREY16, 1.0, false, false);
        std::memcpy(raster.getOrigin(), values.data(), values.size() * 2);
        raster.unlock();
        return raster;
    }
    Pixels mapped(CCsRaster& src, bool whole, unsigned char* padding = nullptr) {
        CCsRaster dst(src.getWidth(), src.getHeight(), CCS_RGB8, 1.0, false, false);
        EXPECT_EQ(map().mapRaster(src, dst, everything, whole, padding, nullptr), 255);
        const auto* origin = reinterpret_cast<const std::uint32_t*>(dst.getOrigin());
        Pixels pixels(origin, origin + src.getWidth());
        dst.unlock();
        return pixels;
    }

    unsigned planeColours_[16];
    unsigned groupColours_[16];
};

TEST_F(MapRaster16, EveryValueHasItsOwnEntryBothWays) {
    CCsRaster src = source({0, 4095, 4096, 65534, 65535});
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
    CCsRaster src = source({0x1000, 0xF000, 0xFFFF, 0x0FFF});
    const Pixels plain = mapped(src, false);
    src.setEmbeddedOverlayStatus(true);
    for (const bool whole : {false, true}) EXPECT_EQ(mapped(src, whole), plain);
    src.setRectShutter({1, 0, 2, 0});
    src.setPresentationShutterValue(0x4200);
    EXPECT_EQ(mapped(src, true), (Pixels{0x424242U, plain[1], plain[2], 0x424242U})) << "nor behind a shutter";
}

TEST_F(MapRaster16, PlanePaddingShutterTable) {
    CCsRaster src = source({0x1000, 0x2000, 0x3000, 0x4000, 0x5000});
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

TEST_F(MapRaster16, RefusedImages) {
    CCsRaster src = source({1, 2, 3, 4});
    CCsRaster dst(4, 1, CCS_RGB8, 1.0, false, false);
    const auto expectRefused = [&](CCsRaster& s, CCsRaster& d, const Report& report) {
        EXPECT_EQ(map().mapRaster(s, d, everything, true, nullptr, nullptr), 2);
        EXPECT_EQ(ReportCapture::take(), std::vector<Report>{report});
    };
    for (const int type : {CCS_INDEX8, CCS_GREY8, CCS_RGB12, CCS_RGB8, CCS_RGB24, CCS_GREY12}) {
        CCsRaster other(4, 1, type, 1.0, false, false);
        expectRefused(other, dst, errorReport(L"Source type must be CCS_GREY16, is", type, module, 602));
        if (type == CCS_RGB8) continue;
        expectRefused(src, other, errorReport(L"Destination type must be CCS_RGB8, is", type, module, 608));
    }
    for (const auto& [width, height] : {std::pair{5, 1}, {4, 2}}) {
        CCsRaster other(width, height, CCS_RGB8, 1.0, false, false);
        expectRefused(src, other, errorReport(L"Destination raster must have the same size", 0, module, 615));
    }
    map().setWindow(100, 0);
    expectRefused(src, dst, widthReport(0));
    map().setWindow(100, 1);
    map().getLut();
    const std::unique_ptr<IMap> clone(map().clone());
    EXPECT_EQ(clone->mapRaster(src, dst, everything, true, nullptr, nullptr), 2);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{colourMapReport()});
}

TEST_F(MapRaster16, RefusesImagesWithoutMemory) {
    CCsRaster src = source({1, 2, 3, 4});
    CCsRaster dst(4, 1, CCS_RGB8, 1.0, false, false);
    CCsRaster emptySource(nullptr, 4, 1, CCS_GREY16, 1.0);
    CCsRaster emptyDisplay(nullptr, 4, 1, CCS_RGB8, 1.0);
    map().getLut();
    ZolMemMappedManager::getIntance()->setLimit(0);
    EXPECT_EQ(map().mapRaster(emptySource, dst, everything, true, nullptr, nullptr), 2);
    EXPECT_EQ(ReportCapture::take().back(),
              errorReport(L"get origin for source raster returned NULL in method mapRaster", 0, module, 623));
    EXPECT_EQ(map().mapRaster(src, emptyDisplay, everything, true, nullptr, nullptr), 2);
    EXPECT_EQ(ReportCapture::take().back(),
              errorReport(L"get origin for dst raster returned NULL in method mapRaster", 0, module, 626));
    ZolMemMappedManager::getIntance()->setLimit(static_cast<std::size_t>(-1));
}

}  // namespace
