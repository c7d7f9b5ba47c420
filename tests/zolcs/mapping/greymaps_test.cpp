// The rules that both grey value maps share: every test runs for the 12-bit and for the 16-bit map.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <bitset>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <span>
#include <thread>
#include <vector>

#include "support/grey_maps.h"
#include "support/test_data.h"
#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsimageutils.h"
#include "zolcs/ccsmemorymanager.h"
#include "zolcs/ccsnearest.h"
#include "zolcs/ccsraster.h"
#include "zolcs/mapping/windowlut.h"

namespace {

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

INSTANTIATE_TEST_SUITE_P(Both, GreyMaps, ::testing::Values(zoltest::grey12Kind, zoltest::grey16Kind),
                         [](const auto& kind) { return kind.param.name; });

// ---- defaults and plain values ------------------------------------------------------------------------------------

TEST_P(GreyMaps, Defaults) {
    EXPECT_TRUE(map().isEnabled());
    EXPECT_FALSE(map().hasPresentationLut());
    EXPECT_EQ(map().getMapFlags(), 0);
    EXPECT_EQ(map().getNonLinearShift(), 0);
    EXPECT_EQ(map().getOverlayColors(), (std::pair<unsigned*, unsigned*>(nullptr, nullptr)));
    expectLut([](int v) { return windowLevel(v, 1, 2); }, "centre 1, width 2");
}

TEST_P(GreyMaps, KeepsOverlayColoursAndFlags) {
    unsigned plane[16] = {};
    unsigned group[16] = {};
    map().setOverlayColors(plane, group);
    EXPECT_EQ(map().getOverlayColors(), (std::pair<unsigned*, unsigned*>(plane, group)));
    map().setMapFlags(0x7F0F);
    EXPECT_EQ(map().getMapFlags(), 0x7F0F);
}

// ---- the window path ----------------------------------------------------------------------------------------------

TEST_P(GreyMaps, WidthOneShowsItsCentreBlack) {
    EXPECT_EQ(map().setWindow(100, 1), 255);
    expectLut([](int v) { return v <= 100 ? 0 : 255; }, "width 1");
}

TEST_P(GreyMaps, LinearWindow) {
    for (const auto& [centre, width] : {std::pair{2048, 4096},
                                        {2048, 4095},
                                        {100, 50},
                                        {0, 100},
                                        {4095, 4096},
                                        {10, 3},
                                        {100, 1},
                                        {32768, 65536},
                                        {32768, 65535},
                                        {40000, 1000},
                                        {65535, 4096},
                                        {100000, 7},
                                        {70000, 140000}}) {
        map().setWindow(static_cast<unsigned>(centre), width);
        expectLut([c = centre, w = width](int v) { return windowLevel(v, c, w); }, "linear");
    }
}

TEST_P(GreyMaps, LinearWindowThroughRemap) {
    const auto remap = testRemap();
    map().setIndexRemap(remap.data());
    for (const auto& [centre, width] : {std::pair{300, 200}, {30000, 20000}}) {
        map().setWindow(static_cast<unsigned>(centre), width);
        expectLut([&, c = centre, w = width](int v) { return remap[static_cast<std::size_t>(windowLevel(v, c, w))]; },
                  "remapped");
    }
}

TEST_P(GreyMaps, WidthBelowOneIsRefused) {
    for (const int width : {0, -1, -4096, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(map().setWindow(100, width), 255);
        EXPECT_EQ(map().getLut(), nullptr);
        EXPECT_EQ(ReportCapture::take(), std::vector<Report>{widthReport(width)});
        EXPECT_EQ(map().getLut(), nullptr) << "it stays stale and is refused again";
        EXPECT_EQ(ReportCapture::take().size(), 1U);
    }
    map().setWindow(100, 1);
    EXPECT_NE(map().getLut(), nullptr);
}

TEST_P(GreyMaps, WidthBelowOneIsRefusedWithANonLinearTableToo) {
    set(map(), ramp(10, 1), false);
    map().setWindow(5, -3);
    EXPECT_EQ(map().getLut(), nullptr);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{widthReport(-3)});
    EXPECT_EQ(map().getWindowedNonLinearLut(nullptr, nullptr, nullptr, false), 0);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{widthReport(-3)});
}

TEST_P(GreyMaps, WithoutColourMapThereIsNoTable) {
    CCsColorMapT empty;
    for (CCsColorMapT* none : {static_cast<CCsColorMapT*>(nullptr), &empty}) {
        map().setColorMapIndex(none);
        EXPECT_EQ(map().getLut(), nullptr);
        EXPECT_EQ(ReportCapture::take(), std::vector<Report>{colourMapReport()});
    }
    map().setWindow(5, 0);
    EXPECT_EQ(map().getLut(), nullptr);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{widthReport(0)}) << "the width is looked at first";
}

TEST_P(GreyMaps, WithoutColourMapThereIsNoNonLinearTableEither) {
    map().setColorMapIndex(nullptr);
    set(map(), ramp(10, 1), false);
    EXPECT_EQ(map().getLut(), nullptr);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{colourMapReport()});
}

// Which of remap, sigmoid and presentation table decide, for all eight combinations.
TEST_P(GreyMaps, FirstMatchingRuleBuildsTheTable) {
    const auto remap = testRemap();
    const Values presentation = ramp(1000, 3, 7);
    zolcs::mapping::StoredTable stored;
    ASSERT_TRUE(stored.assign(presentation.data(), 0, 1000));
    const zolcs::mapping::Window window{700, 900};
    for (int n = 0; n < 8; ++n) {
        const bool remapped = (n & 1) != 0;
        const bool sigmoid = (n & 2) != 0;
        const bool presented = (n & 4) != 0;
        const std::unique_ptr<IMap> owner(MapFactory::CreateMap(GetParam().type));
        auto& fresh = static_cast<IGreyMap&>(*owner);
        fresh.setColorMapIndex(&palette_.map);
        fresh.setWindow(700, 900);
        if (remapped) fresh.setIndexRemap(remap.data());
        if (sigmoid) fresh.enableSigmoid();
        if (presented) present(fresh, presentation);

        const auto shown = zolcs::mapping::shownLevels(palette_.colours.data(), remapped ? remap.data() : nullptr);
        // What a sigmoid does not reach stays as a new chunk has it.
        Pixels expected(static_cast<std::size_t>(depth()));
        const std::span<std::uint32_t> curve(expected.data(), static_cast<std::size_t>(GetParam().sigmoidEntries));
        if (remapped && sigmoid) {
            zolcs::mapping::fillSigmoid(curve, window, 12, true, shown);
        } else if (remapped) {
            zolcs::mapping::fillShownLevels(expected, window.low(), window.width, shown);
        } else if (presented) {
            const bool spread = GetParam().type == MapFactory::Grey12;
            (spread ? zolcs::mapping::fillPresented : zolcs::mapping::fillPresentedStored)(expected, window, stored,
                                                                                           shown);
        } else if (sigmoid) {
            zolcs::mapping::fillSigmoid(curve, window, 12, false, shown);
        } else {
            zolcs::mapping::fillShownLevels(expected, window.low(), window.width, shown);
        }
        EXPECT_EQ(lutOf(fresh), expected) << n;
    }
}

TEST_P(GreyMaps, SigmoidBitsChooseItsDepth) {
    map().enableSigmoid();
    map().setSigmoidBits(9);
    map().setWindow(200, 300);
    Pixels expected(static_cast<std::size_t>(depth()));
    zolcs::mapping::fillSigmoid({expected.data(), static_cast<std::size_t>(GetParam().sigmoidEntries)}, {200, 300}, 9,
                                false, colours());
    EXPECT_EQ(lut(), expected);
}

// ---- presentation tables ------------------------------------------------------------------------------------------

TEST_P(GreyMaps, ApplyPresentationLut) {
    EXPECT_EQ(map().applyPresentationLut(0xABC, 4), 0xABU);
    EXPECT_EQ(map().applyPresentationLut(0xABC, 40), 0U);
    EXPECT_EQ(map().applyPresentationLut(0xABCD, 8), 0xABU);
    present(map(), {0, 256, 512, 1023});
    EXPECT_EQ(map().applyPresentationLut(0, 4), 0U);
    EXPECT_EQ(map().applyPresentationLut(1024, 4), 64U);
    EXPECT_EQ(map().applyPresentationLut(2048, 4), 128U);
    EXPECT_EQ(map().applyPresentationLut(4095, 4), 255U);
    EXPECT_EQ(map().applyPresentationLut(9000, 4), 255U) << "beyond the table: its last";
    present(map(), {40, 256, 512, 1023}, 2);
    EXPECT_EQ(map().applyPresentationLut(2047, 4), 40U >> 2) << "below the first mapped value: the first";
    EXPECT_EQ(map().applyPresentationLut(3072, 4), 64U);
    EXPECT_EQ(map().applyPresentationLut(49152, 8), 64U);
}

TEST_P(GreyMaps, PresentationLutThatCannotBeStored) {
    present(map(), ramp(16, 1));
    {
        const zoltest::FailingTables failing(0);
        EXPECT_EQ(present(map(), ramp(16, 1)), 1);
    }
    EXPECT_EQ(ReportCapture::take(),
              std::vector<Report>{report(L"Memory allocation failed for Presentation LUT", 0, 388)});
    EXPECT_FALSE(map().hasPresentationLut());
    EXPECT_EQ(map().applyPresentationLut(0xABC, 4), 0xABU);
}

TEST_P(GreyMaps, PresentationLutWithoutValues) {
    EXPECT_EQ(map().setPresentationLut(nullptr, 0, 3), 0);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{report(L"No values for the presentation LUT", 0, 383)});
    EXPECT_FALSE(map().hasPresentationLut());
    for (const int count : {0, -1, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(map().setPresentationLut(nullptr, 0, count), 255);
        EXPECT_TRUE(map().hasPresentationLut());
        EXPECT_EQ(map().applyPresentationLut(4095, 4), 0U);
        map().setWindow(100, 50);
        expectLut([](int) { return 0; }, "a presentation table of a single 0");
    }
    EXPECT_TRUE(ReportCapture::take().empty());
}

// ---- non-linear tables --------------------------------------------------------------------------------------------

TEST_P(GreyMaps, NonLinearTableThroughTheWindow) {
    // As many values as the window is wide: entry i of the windowed table is value i.
    Values values = ramp(1000, 1);
    std::reverse(values.begin(), values.end());
    ASSERT_EQ(set(map(), values, false), 255);
    map().setWindow(1500, 1000);
    expectLut(
        [](int v) {
            const int i = std::clamp(v - 1000, 0, 999);
            return (999 - i) >> 2;
        },
        "falling table");
    EXPECT_EQ(map().getNonLinearShift(), 2);
}

TEST_P(GreyMaps, ExactNonLinearWindowIsLinear) {
    const auto remap = testRemap();
    const int centre = depth() / 2 + 1000;
    const int width = depth() / 4;
    ASSERT_EQ(set(map(), ramp(10, 100), true), 255);
    map().setWindow(1000, 200);
    expectLut([](int v) { return windowLevel(v, 1000, 200); }, "exact");
    map().setWindow(static_cast<unsigned>(centre), width);
    expectLut([&](int v) { return windowLevel(v, centre, width); }, "exact and wide");
    map().setIndexRemap(remap.data());
    expectLut([&](int v) { return remap[static_cast<std::size_t>(windowLevel(v, centre, width))]; }, "remapped");
}

// The exact window spreads the 256 steps over what the depth leaves of it, not over its full width.
TEST_P(GreyMaps, ExactNonLinearWindowAtTheEndsOfTheDepth) {
    ASSERT_EQ(set(map(), ramp(10, 100), true), 255);
    map().setWindow(0, 200);
    expectLut([](int v) { return v >= 100 ? 255 : v * 256 / 100; }, "below zero");
    map().setWindow(static_cast<unsigned>(depth()), 200);
    expectLut([low = depth() - 100](int v) { return v < low ? 0 : (v - low) * 256 / 100; }, "past the depth");
}

TEST_P(GreyMaps, NegativeCentreArrivesAsItsPattern) {
    map().setWindow(static_cast<unsigned>(-50), 400);
    expectLut([](int v) { return v >= 150 ? 255 : (v + 250) * 256 / 400; }, "around -50");
    map().setWindow(static_cast<unsigned>(-5000), 100);
    expectLut([](int) { return 255; }, "below all stored values");
}

TEST_P(GreyMaps, WindowBeyondTheDepthShowsWhatIsBelowIt) {
    ASSERT_EQ(set(map(), {77, 200, 255}, false), 255);
    const auto end = static_cast<unsigned>(depth());
    for (const unsigned centre : {end + 50, 100000U, 0x7FFFFFFFU}) {
        map().setWindow(centre, 100);
        expectLut([](int) { return 77; }, "beyond");
    }
    map().setExactNonLinearWindow(true);
    map().setWindow(end + 900, 100);
    expectLut([](int) { return 0; }, "beyond, exact");
}

TEST_P(GreyMaps, SetExactNonLinearWindowSelectsTheLinearWindow) {
    ASSERT_EQ(set(map(), ramp(200, 5), false), 255);
    map().setExactNonLinearWindow(true);
    map().setWindow(1000, 200);
    expectLut([](int v) { return windowLevel(v, 1000, 200); }, "exact by its setter");
}

TEST_P(GreyMaps, ClearNonLinearLutGoesBackToTheWindow) {
    ASSERT_EQ(set(map(), ramp(200, 5), false), 255);
    map().setWindow(1000, 200);
    map().getLut();
    map().clearNonLinearLut();
    map().setWindow(1000, 200);
    expectLut([](int v) { return windowLevel(v, 1000, 200); }, "cleared");
}

TEST_P(GreyMaps, NonLinearLutWithoutValues) {
    EXPECT_EQ(map().setNonLinearLut(nullptr, 0, 3, false), 0);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{report(L"No values for the non-linear LUT", 0, 337)});
    for (const int count : {0, -1, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(map().setNonLinearLut(nullptr, 5, count, false), 255);
        map().setWindow(100, 50);
        expectLut([](int) { return 0; }, "a non-linear table of a single 0");
        unsigned short* values = nullptr;
        unsigned first = 0;
        unsigned entries = 99;
        EXPECT_EQ(map().getWindowedNonLinearLut(&values, &first, &entries, true), 255);
        ASSERT_NE(values, nullptr);
        EXPECT_EQ(values[0], 0);
        EXPECT_EQ(first, 5U);
        EXPECT_EQ(entries, 0U);
    }
    EXPECT_TRUE(ReportCapture::take().empty());
}

TEST_P(GreyMaps, NonLinearLutThatCannotBeStored) {
    set(map(), ramp(16, 1), false);
    map().setWindow(8, 16);
    map().getLut();
    {
        const zoltest::FailingTables failing(0);
        EXPECT_EQ(set(map(), ramp(16, 1), true), 1);
    }
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{report(L"Memory allocation failed", 0, 342)});
    expectLut([](int v) { return windowLevel(v, 8, 16); }, "the previous table is gone");
    EXPECT_EQ(map().getWindowedNonLinearLut(nullptr, nullptr, nullptr, true), 0);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{report(GetParam().nonLinearMissing, 0, 461)});
}

TEST_P(GreyMaps, WindowedTableThatCannotBeStored) {
    set(map(), ramp(16, 1), false);
    map().setWindow(8, 16);
    {
        const zoltest::FailingTables failing(0);
        EXPECT_EQ(map().getLut(), nullptr);
        std::vector<Report> expected = {report(L"Memory allocation failed", 0, 455)};
        if (GetParam().windowedMissing != nullptr) expected.push_back(report(GetParam().windowedMissing, 0, 484));
        EXPECT_EQ(ReportCapture::take(), expected);
        EXPECT_EQ(map().getWindowedNonLinearLut(nullptr, nullptr, nullptr, false), 0);
        EXPECT_EQ(ReportCapture::take(), std::vector<Report>{report(L"Memory allocation failed", 0, 455)});
    }
    EXPECT_NE(map().getLut(), nullptr);
}

TEST_P(GreyMaps, WindowedNonLinearLut) {
    const Values values = ramp(100, 2, 50);
    ASSERT_EQ(set(map(), values, false, 31), 255);
    map().setWindow(1000, 200);
    unsigned short* table = nullptr;
    unsigned first = 0;
    unsigned count = 0;
    ASSERT_EQ(map().getWindowedNonLinearLut(&table, &first, &count, false), 255);
    EXPECT_EQ(first, 900U);
    EXPECT_EQ(count, 200U);
    for (unsigned i = 0; i < 199; ++i) EXPECT_EQ(table[i], 50 + i) << "half steps between the values";
    EXPECT_EQ(table[199], 248) << "the last value's right neighbour repeats it";

    ASSERT_EQ(map().getWindowedNonLinearLut(&table, &first, &count, true), 255);
    EXPECT_EQ(first, 31U);
    EXPECT_EQ(count, 100U);
    EXPECT_EQ(Values(table, table + 100), values);
    EXPECT_EQ(table[100], values.back());

    map().setExactNonLinearWindow(true);
    ASSERT_EQ(map().getWindowedNonLinearLut(&table, &first, &count, false), 255);
    EXPECT_EQ(first, 31U);
    EXPECT_EQ(count, 100U);
    EXPECT_EQ(map().getWindowedNonLinearLut(nullptr, nullptr, nullptr, false), 255);
}

TEST_P(GreyMaps, WindowPastTheDepthHasTheEntriesThatAreLeft) {
    ASSERT_EQ(set(map(), ramp(100, 2), false), 255);
    map().setWindow(static_cast<unsigned>(depth() - 96), 400);
    unsigned short* table = nullptr;
    unsigned first = 0;
    unsigned count = 0;
    ASSERT_EQ(map().getWindowedNonLinearLut(&table, &first, &count, false), 255);
    EXPECT_EQ(first, static_cast<unsigned>(depth() - 296));
    EXPECT_EQ(count, 296U);
}

TEST_P(GreyMaps, WindowedNonLinearLutFollowsWindowAndTable) {
    unsigned first = 0;
    ASSERT_EQ(set(map(), ramp(100, 2), false), 255);
    map().setWindow(1000, 200);
    ASSERT_EQ(map().getWindowedNonLinearLut(nullptr, &first, nullptr, false), 255);
    EXPECT_EQ(first, 900U);
    map().setWindow(2000, 200);
    ASSERT_EQ(map().getWindowedNonLinearLut(nullptr, &first, nullptr, false), 255);
    EXPECT_EQ(first, 1900U);
    unsigned short* table = nullptr;
    ASSERT_EQ(set(map(), ramp(100, 0, 9), false), 255);
    ASSERT_EQ(map().getWindowedNonLinearLut(&table, nullptr, nullptr, false), 255);
    EXPECT_EQ(table[0], 9);
}

TEST_P(GreyMaps, WindowedNonLinearLutWithoutTable) {
    map().setWindow(100, 50);
    unsigned short* table = nullptr;
    unsigned first = 7;
    EXPECT_EQ(map().getWindowedNonLinearLut(&table, &first, nullptr, false), 0);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{report(GetParam().nonLinearMissing, 0, 461)});
    EXPECT_EQ(table, nullptr);
    EXPECT_EQ(first, 7U);
}

// A host may hand back what getWindowedNonLinearLut gave it.
TEST_P(GreyMaps, NonLinearLutMayBeItsOwnTable) {
    ASSERT_EQ(set(map(), ramp(100, 2), false), 255);
    map().setWindow(50, 100);
    unsigned short* table = nullptr;
    unsigned count = 0;
    ASSERT_EQ(map().getWindowedNonLinearLut(&table, nullptr, &count, true), 255);
    EXPECT_EQ(map().setNonLinearLut(table, 0, static_cast<int>(count), false), 255);
    ASSERT_EQ(map().getWindowedNonLinearLut(&table, nullptr, &count, true), 255);
    EXPECT_EQ(Values(table, table + count), ramp(100, 2));
}

// ---- staleness ----------------------------------------------------------------------------------------------------

TEST_P(GreyMaps, TheTableIsBuiltOnce) {
    map().setWindow(100, 50);
    const void* first = map().getLut();
    EXPECT_FALSE(isStale());
    EXPECT_EQ(map().getLut(), first);
}

TEST_P(GreyMaps, SettersThatMakeTheTableStale) {
    const auto remap = testRemap();
    const auto expectStale = [&](const char* what, auto change) {
        map().getLut();
        change();
        EXPECT_TRUE(isStale()) << what;
    };
    map().setWindow(100, 50);
    expectStale("setColorMapIndex", [&] { map().setColorMapIndex(&palette_.map); });
    expectStale("setWindow", [&] { map().setWindow(100, 50); });
    expectStale("setIndexRemap", [&] { map().setIndexRemap(remap.data()); });
    expectStale("setEnabled(false)", [&] { map().setEnabled(false); });
    expectStale("releaseLut", [&] { map().releaseLut(); });
    expectStale("setNonLinearLut", [&] { set(map(), ramp(10, 1), false); });
}

// Hosts change the window after these.
TEST_P(GreyMaps, SettersThatDeliberatelyDoNot) {
    unsigned table[16] = {};
    const auto expectValid = [&](const char* what, auto change) {
        map().getLut();
        change();
        EXPECT_FALSE(isStale()) << what;
        map().setWindow(100, 50);
        EXPECT_TRUE(isStale()) << what << ", then the window";
    };
    set(map(), ramp(10, 1), false);
    map().setWindow(100, 50);
    expectValid("enableSigmoid", [&] { map().enableSigmoid(); });
    expectValid("setSigmoidBits", [&] { map().setSigmoidBits(10); });
    expectValid("setExactNonLinearWindow", [&] { map().setExactNonLinearWindow(true); });
    expectValid("setOverlayColors", [&] { map().setOverlayColors(table, table); });
    expectValid("clearNonLinearLut", [&] { map().clearNonLinearLut(); });
    expectValid("setEnabled(true)", [&] { map().setEnabled(true); });
    expectValid("setPresentationLut", [&] { present(map(), ramp(10, 1)); });
    expectValid("setMapFlags", [&] { map().setMapFlags(2); });
    expectValid("setIndexRemap(null)", [&] { map().setIndexRemap(nullptr); });
    expectValid("allocateLut while one is held", [&] { EXPECT_EQ(map().allocateLut(), 255); });
}

TEST_P(GreyMaps, SwitchingOffAndOn) {
    map().getLut();
    map().setEnabled(false);
    EXPECT_FALSE(map().isEnabled());
    EXPECT_TRUE(isStale());
    map().getLut();
    map().setEnabled(true);
    EXPECT_TRUE(map().isEnabled());
    EXPECT_FALSE(isStale());
}

// Set, get, change, get: what each setting shows, and that a change of it reaches the table with the next window.
TEST_P(GreyMaps, EverySettingReachesTheTable) {
    const auto remap = testRemap();
    map().setWindow(700, 900);
    Pixels before = lut();
    const auto expectChange = [&](const char* what, auto change) {
        change();
        map().setWindow(700, 900);
        Pixels after = lut();
        EXPECT_NE(after, before) << what;
        before = std::move(after);
    };
    expectChange("enableSigmoid", [&] { map().enableSigmoid(); });
    expectChange("setSigmoidBits", [&] { map().setSigmoidBits(9); });
    expectChange("setPresentationLut", [&] { present(map(), ramp(100, 3)); });
    expectChange("setPresentationLut again", [&] { present(map(), ramp(100, 1, 50)); });
    expectChange("setIndexRemap", [&] { map().setIndexRemap(remap.data()); });
    expectChange("setNonLinearLut", [&] { set(map(), ramp(300, 7), false); });
    expectChange("setExactNonLinearWindow", [&] { map().setExactNonLinearWindow(true); });
    expectChange("setNonLinearLut again", [&] { set(map(), ramp(300, 3), false); });
    expectChange("clearNonLinearLut", [&] { map().clearNonLinearLut(); });
    zoltest::TestPalette other;
    std::reverse(other.colours.begin(), other.colours.end());
    expectChange("setColorMapIndex", [&] { map().setColorMapIndex(&other.map); });
    expectChange("setWindow", [&] {
        map().setWindow(701, 900);
        before = lut();
    });
}

// ---- the table's memory -------------------------------------------------------------------------------------------

TEST_P(GreyMaps, WithoutChunkThereIsNoTable) {
    const zoltest::LogCapture log;
    {
        const zoltest::ExhaustedChunks exhausted;
        EXPECT_EQ(map().getLut(), nullptr);
        ASSERT_EQ(log.lines().size(), 1U);
        EXPECT_EQ(log.lines()[0].first, L"zolcs - E");
        EXPECT_EQ(log.lines()[0].second, L"Exception: Out of memory");
        EXPECT_EQ(map().allocateLut(), 1);
        EXPECT_EQ(log.lines().size(), 2U);
    }
    EXPECT_TRUE(ReportCapture::take().empty()) << "logged, not reported";
    EXPECT_EQ(map().allocateLut(), 255);
    EXPECT_NE(map().getLut(), nullptr);
    EXPECT_EQ(log.lines().size(), 2U);
}

TEST_P(GreyMaps, WithoutChunkNothingIsBuilt) {
    const zoltest::LogCapture log;
    const zoltest::ExhaustedChunks exhausted;
    map().setWindow(5, 0);
    EXPECT_EQ(map().getLut(), nullptr);
    EXPECT_TRUE(ReportCapture::take().empty()) << "not even the width was looked at";
}

TEST_P(GreyMaps, ChunksGoBackToThePool) {
    map().getLut();
    const void* chunk = map().getLut();
    map().releaseLut();
    void* next = CCsMemoryManager::allocateChunk();
    EXPECT_EQ(next, chunk);
    CCsMemoryManager::releaseChunk(next);
    EXPECT_EQ(map().getLut(), chunk);
    map_.reset();
    next = CCsMemoryManager::allocateChunk();
    EXPECT_EQ(next, chunk);
    CCsMemoryManager::releaseChunk(next);
}

TEST_P(GreyMaps, ReleasingTwiceIsHarmless) {
    map().getLut();
    map().releaseLut();
    map().releaseLut();
    EXPECT_NE(map().getLut(), nullptr);
}

TEST_P(GreyMaps, CopyLut) {
    map().setWindow(static_cast<unsigned>(depth() / 2), depth());
    const Pixels table = lut();
    Pixels copy(0x10001, 0x77777777U);
    unsigned* out = copy.data();
    map().copyLut(&out);
    EXPECT_EQ(out, copy.data());
    // Byte offsets 0x4000 * k are entries 4096 * k; 0x1000 bytes are 1024 entries, also over the table's own.
    for (std::size_t i = 0; i < 0x10000; ++i) {
        const std::uint32_t own = i < table.size() ? table[i] : 0U;
        ASSERT_EQ(copy[i], i % 4096 < 1024 ? table[i % 4096] : own) << i;
    }
    EXPECT_EQ(copy.back(), 0x77777777U);
}

TEST_P(GreyMaps, CopyLutWithoutTableGivesZeroes) {
    map().getLut();
    map().setColorMapIndex(nullptr);
    Pixels copy(0x10001, 0x77777777U);
    unsigned* out = copy.data();
    map().copyLut(&out);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{colourMapReport()});
    EXPECT_TRUE(std::all_of(copy.begin(), copy.end() - 1, [](std::uint32_t p) { return p == 0; }));
    EXPECT_EQ(copy.back(), 0x77777777U);
    out = nullptr;
    map().copyLut(&out);
    map().copyLut(nullptr);
}

// ---- clones -------------------------------------------------------------------------------------------------------

TEST_P(GreyMaps, CloneTakesAllSettings) {
    const auto remap = testRemap();
    unsigned plane[16] = {};
    unsigned group[16] = {};
    set(map(), ramp(300, 7), false, 12);
    present(map(), ramp(100, 3));
    map().setIndexRemap(remap.data());
    map().setWindow(700, 900);
    map().setOverlayColors(plane, group);
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
    EXPECT_EQ(clone.getOverlayColors(), map().getOverlayColors());
    clone.setColorMapIndex(&palette_.map);
    EXPECT_EQ(lutOf(clone), table);
    EXPECT_NE(clone.getLut(), map().getLut());
}

TEST_P(GreyMaps, CloneTakesSigmoidAndExactWindow) {
    map().enableSigmoid();
    map().setSigmoidBits(9);
    map().setWindow(700, 900);
    std::unique_ptr<IMap> owner(map().clone());
    owner->setColorMapIndex(&palette_.map);
    EXPECT_EQ(lutOf(static_cast<IGreyMap&>(*owner)), lut());
    set(map(), ramp(300, 7), true);
    owner.reset(map().clone());
    owner->setColorMapIndex(&palette_.map);
    EXPECT_EQ(lutOf(static_cast<IGreyMap&>(*owner)), lut());
}

TEST_P(GreyMaps, CloneSharesNoTable) {
    set(map(), ramp(300, 7), false);
    map().setWindow(700, 900);
    map().getLut();
    const std::unique_ptr<IMap> owner(map().clone());
    auto& clone = static_cast<IGreyMap&>(*owner);
    unsigned short* mine = nullptr;
    unsigned short* its = nullptr;
    for (const bool whole : {false, true}) {
        ASSERT_EQ(map().getWindowedNonLinearLut(&mine, nullptr, nullptr, whole), 255);
        ASSERT_EQ(clone.getWindowedNonLinearLut(&its, nullptr, nullptr, whole), 255);
        EXPECT_NE(mine, its);
        EXPECT_EQ(std::memcmp(mine, its, 300 * 2), 0);
    }
    const Pixels before = lut();
    clone.setColorMapIndex(&palette_.map);
    clone.setWindow(100, 10);
    EXPECT_NE(lutOf(clone), before);
    EXPECT_EQ(lut(), before) << "the source's window has not changed";
    map_.reset();
    EXPECT_EQ(clone.getWindowedNonLinearLut(&its, nullptr, nullptr, true), 255);
    EXPECT_EQ(Values(its, its + 300), ramp(300, 7));
}

// The clone of a map with a valid table counts as valid but has no table, until it gets a colour map.
TEST_P(GreyMaps, CloneOfABuiltMapGivesNullUntilItHasAColourMap) {
    map().getLut();
    const std::unique_ptr<IMap> owner(map().clone());
    EXPECT_EQ(owner->getLut(), nullptr);
    EXPECT_TRUE(ReportCapture::take().empty());
    Pixels copy(0x10000, 0x77777777U);
    unsigned* out = copy.data();
    static_cast<IGreyMap&>(*owner).copyLut(&out);
    EXPECT_TRUE(std::all_of(copy.begin(), copy.end(), [](std::uint32_t p) { return p == 0; }));
    owner->setColorMapIndex(&palette_.map);
    EXPECT_NE(owner->getLut(), nullptr);
}

TEST_P(GreyMaps, CloneOfABuiltMapNeverShowsAnUnbuiltTable) {
    map().getLut();
    const std::unique_ptr<IMap> owner(map().clone());
    EXPECT_EQ(static_cast<IGreyMap&>(*owner).allocateLut(), 255);
    EXPECT_EQ(owner->getLut(), nullptr);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{colourMapReport()});
}

TEST_P(GreyMaps, CloneOfAStaleMapIsStale) {
    const std::unique_ptr<IMap> owner(map().clone());
    EXPECT_EQ(owner->getLut(), nullptr);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{colourMapReport()});
}

TEST_P(GreyMaps, CloneWithoutMemoryIsNull) {
    set(map(), ramp(300, 7), false);
    present(map(), ramp(100, 3));
    map().setWindow(700, 900);
    map().getLut();
    for (const int left : {0, 1, 2}) {
        const zoltest::FailingTables failing(left);
        EXPECT_EQ(map().clone(), nullptr) << left;
    }
    const zoltest::FailingTables enough(3);
    EXPECT_NE(std::unique_ptr<IMap>(map().clone()), nullptr);
}

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
