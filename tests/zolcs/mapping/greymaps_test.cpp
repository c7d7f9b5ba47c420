// The rules that both grey value maps share: every test runs for the 12-bit and for the 16-bit map.
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

}  // namespace
