#include "zolcs/mapping/windowlut.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "support/map_support.h"
#include "support/test_data.h"

namespace {

using zolcs::mapping::AutoWindow;
using zolcs::mapping::PresentationLevel;
using zolcs::mapping::ShownLevels;
using zolcs::mapping::StoredTable;
using zolcs::mapping::Window;
using zolcs::mapping::WindowedExtent;

constexpr std::int32_t maximumCentre = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t maximumWidth = std::numeric_limits<std::int32_t>::max();

/// 256 colours of which no two are equal, in no order.
ShownLevels testColours() {
    ShownLevels colours{};
    for (std::uint32_t i = 0; i < 256; ++i) colours[i] = i * 0x9E3779B1U ^ 0x5A5A5AU;
    return colours;
}

Window randomWindow(zoltest::Random& random) {
    switch (random.integer(0, 3)) {
        case 0:
            return {random.integer(-200, 5000), random.integer(1, 20)};
        case 1:
            return {random.integer(-2000, 70000), random.integer(1, 70000)};
        case 2:
            return {static_cast<std::int32_t>(random.bits()), random.integer(1, maximumWidth)};
        default:
            return {random.integer(0, 4095), random.integer(1, 4096)};
    }
}

StoredTable tableOf(const std::vector<std::uint16_t>& values, std::uint32_t first = 0) {
    StoredTable table;
    EXPECT_TRUE(table.assign(values.data(), first, static_cast<std::int32_t>(values.size())));
    return table;
}

std::vector<std::uint16_t> randomValues(zoltest::Random& random, int count, int low, int high) {
    std::vector<std::uint16_t> values(static_cast<std::size_t>(count));
    for (auto& v : values) v = static_cast<std::uint16_t>(random.integer(low, high));
    return values;
}

// ---- windows ------------------------------------------------------------------------------------------------------

TEST(WindowLut, WindowBoundsTruncateAndNeverOverflow) {
    EXPECT_EQ((Window{100, 1}.low()), 100);
    EXPECT_EQ((Window{100, 1}.high()), 101);
    EXPECT_EQ((Window{100, 5}.low()), 98);
    EXPECT_EQ((Window{100, 5}.high()), 103);
    EXPECT_EQ((Window{1, 2}.low()), 0);
    EXPECT_EQ((Window{0, 5}.low()), -2);
    EXPECT_EQ((Window{0, maximumWidth}.low()), -1073741823);
    EXPECT_EQ((Window{maximumCentre, maximumWidth}.high()), 2147483647LL + 1073741824LL);
    EXPECT_EQ((Window{100, -5}.low()), 102) << "halving truncates toward zero";
    EXPECT_EQ((Window{0, std::numeric_limits<std::int32_t>::min()}.low()), 1073741824);
}

TEST(WindowLut, WidthOneHasASingleStep) {
    std::vector<unsigned char> levels(4096);
    zolcs::mapping::fillLevels(levels, {100, 1});
    for (std::size_t v = 0; v < levels.size(); ++v) EXPECT_EQ(levels[v], v <= 100 ? 0 : 255) << v;
}

// The bytes of a colour map: what ((v - lo) * 256 / width) gives for each entry, straight from the definition.
TEST(WindowLut, LevelsAgreeWithADivisionPerEntry) {
    zoltest::Random random(401);
    for (const std::size_t entries : {std::size_t{256}, std::size_t{4096}, std::size_t{65536}}) {
        for (int n = 0; n < 60; ++n) {
            const Window window = randomWindow(random);
            std::vector<unsigned char> levels(entries, 77);
            zolcs::mapping::fillLevels(levels, window);
            const std::int64_t low = std::int64_t{window.centre} - window.width / 2;
            for (std::size_t i = 0; i < entries; ++i) {
                const auto v = static_cast<std::int64_t>(i);
                std::int64_t expected = 0;
                if (v >= low) expected = ((v - low) * 256 / window.width) & 255;
                if (v >= low + window.width) expected = 255;
                ASSERT_EQ(levels[i], expected) << "value " << v << " of " << window.centre << '/' << window.width;
            }
        }
    }
}

TEST(WindowLut, LevelsAtTheEndsOfTheRange) {
    std::vector<unsigned char> levels(256, 9);
    zolcs::mapping::fillLevels(levels, {maximumCentre, maximumWidth});
    EXPECT_EQ(levels.front(), 0);
    EXPECT_EQ(levels.back(), 0);
    zolcs::mapping::fillLevels(levels, {0, maximumWidth});
    EXPECT_EQ(levels.front(), 127) << "0 lies just below the middle of an odd window around it";
    zolcs::mapping::fillLevels(levels, {0, 1});
    EXPECT_EQ(levels.front(), 0);
    EXPECT_EQ(levels[1], 255);
}

// An ordinary channel window of 8-bit values.
TEST(WindowLut, LevelsOfTheDefaultChannelWindow) {
    std::vector<unsigned char> levels(256);
    zolcs::mapping::fillLevels(levels, {127, 256});
    for (std::size_t v = 0; v < 256; ++v) EXPECT_EQ(levels[v], v < 255 ? v + 1 : 255) << v;
}

TEST(WindowLut, ShownLevelsGoThroughTheRemap) {
    const ShownLevels palette = testColours();
    EXPECT_EQ(zolcs::mapping::shownLevels(palette.data(), nullptr), palette);
    unsigned char remap[256];
    for (unsigned i = 0; i < 256; ++i) remap[i] = static_cast<unsigned char>(i * 7 + 3);
    const ShownLevels shown = zolcs::mapping::shownLevels(palette.data(), remap);
    for (unsigned i = 0; i < 256; ++i) EXPECT_EQ(shown[i], palette[(i * 7 + 3) & 255U]);
}

TEST(WindowLut, ShownLevelsOfAWindow) {
    const ShownLevels colours = testColours();
    std::vector<std::uint32_t> lut(4096);
    zolcs::mapping::fillShownLevels(lut, 90, 20, colours);
    for (std::int64_t v = 0; v < 4096; ++v) {
        const std::uint32_t expected = v < 90    ? colours[0]
                                       : v < 110 ? colours[static_cast<std::size_t>((v - 90) * 256 / 20)]
                                                 : colours[255];
        EXPECT_EQ(lut[static_cast<std::size_t>(v)], expected) << v;
    }
}

// ---- sigmoid ------------------------------------------------------------------------------------------------------

std::uint64_t sigmoidByDefinition(double numerator, double value, const Window& window) {
    return static_cast<std::uint64_t>(
        std::trunc(numerator / (zolcs::portable::exp(-4.0 * (value - window.centre) / window.width) + 1.0)));
}

unsigned shiftByDefinition(std::uint64_t maximum) {
    unsigned shift = 0;
    while (shift < 8 && (static_cast<std::uint16_t>(maximum) >> shift) >= 256) ++shift;
    return shift;
}

TEST(WindowLut, SigmoidWithoutRemap) {
    const ShownLevels colours = testColours();
    zoltest::Random random(402);
    for (const int bits : {8, 10, 12, 14, 16}) {
        for (int n = 0; n < 4; ++n) {
            const Window window{random.integer(0, 4095), random.integer(1, 4096)};
            std::vector<std::uint32_t> lut(4096);
            zolcs::mapping::fillSigmoid(lut, window, bits, false, colours);
            const double top = std::pow(2.0, bits) - 1.0;
            const unsigned shift = shiftByDefinition(sigmoidByDefinition(top, top, window));
            for (std::size_t v = 0; v < lut.size(); ++v) {
                const auto level = sigmoidByDefinition(top, static_cast<double>(v), window) >> shift;
                ASSERT_EQ(lut[v], colours[static_cast<std::size_t>(std::min<std::uint64_t>(level, 255))])
                    << bits << " bits, value " << v;
            }
        }
    }
}

TEST(WindowLut, SigmoidBehindARemapUsesTheFullPowerOfTwo) {
    const ShownLevels colours = testColours();
    zoltest::Random random(403);
    for (const int bits : {8, 10, 12, 14, 16}) {
        for (int n = 0; n < 4; ++n) {
            const Window window{random.integer(0, 4095), random.integer(1, 4096)};
            std::vector<std::uint32_t> lut(4096);
            zolcs::mapping::fillSigmoid(lut, window, bits, true, colours);
            const double full = std::pow(2.0, bits);
            const unsigned shift = shiftByDefinition(sigmoidByDefinition(full, full - 1.0, window));
            for (std::size_t v = 0; v < lut.size(); ++v) {
                const auto level = (sigmoidByDefinition(full, static_cast<double>(v), window) & 0xFFFF) >> shift;
                ASSERT_EQ(lut[v], colours[static_cast<std::size_t>(std::min<std::uint64_t>(level, 255))])
                    << bits << " bits, value " << v;
            }
        }
    }
}

// A steep sigmoid of 12 bits reaches exactly 4096 behind a remap, which needs one more bit of shift than 4095: the
// white end comes out at half level there, and at full level without a remap.
TEST(WindowLut, TheTwoSigmoidsDifferWhereTheySaturate) {
    const ShownLevels colours = testColours();
    std::vector<std::uint32_t> lut(4096);
    zolcs::mapping::fillSigmoid(lut, {100, 100}, 12, true, colours);
    EXPECT_EQ(lut.back(), colours[4096 >> 5]);
    zolcs::mapping::fillSigmoid(lut, {100, 100}, 12, false, colours);
    EXPECT_EQ(lut.back(), colours[4095 >> 4]);
}

TEST(WindowLut, SigmoidTakesAnyBitsAndAnyWindow) {
    const ShownLevels colours = testColours();
    std::vector<std::uint32_t> lut(4096);
    for (const int bits : {std::numeric_limits<int>::min(), -1, 0, 1, 16, 17, 30, 31, 32, 1000, maximumWidth}) {
        for (const bool remapped : {false, true}) {
            for (const Window window : {Window{0, 1}, Window{maximumCentre, 1}, Window{maximumCentre, maximumWidth}}) {
                lut.assign(lut.size(), 0);
                zolcs::mapping::fillSigmoid(lut, window, bits, remapped, colours);
                for (const std::uint32_t entry : lut) {
                    ASSERT_NE(std::find(colours.begin(), colours.end(), entry), colours.end());
                }
            }
        }
    }
}

// ---- presentation tables ------------------------------------------------------------------------------------------

TEST(WindowLut, WithoutPresentationTableTheUpperBitsAreTheLevel) {
    EXPECT_EQ(PresentationLevel(nullptr, 4)(0x0ABC), 0xABU);
    EXPECT_EQ(PresentationLevel(nullptr, 0)(0x1FF), 0xFFU);
    EXPECT_EQ(PresentationLevel(nullptr, 31)(0x80000000U), 1U);
    EXPECT_EQ(PresentationLevel(nullptr, 32)(0xFFFFFFFFU), 0U);
    EXPECT_EQ(PresentationLevel(nullptr, 0xFFFFFFFFU)(0xFFFFFFFFU), 0U);
}

TEST(WindowLut, MissingPresentationTableGivesOne) {
    const StoredTable missing;
    EXPECT_TRUE(PresentationLevel(&missing, 4).tableMissing());
    EXPECT_EQ(PresentationLevel(&missing, 4)(123), 1U);
    EXPECT_FALSE(PresentationLevel(nullptr, 4).tableMissing());
}

TEST(WindowLut, PresentationLevelByDefinition) {
    zoltest::Random random(404);
    for (int n = 0; n < 200; ++n) {
        const auto values = randomValues(random, random.integer(1, 5000), 0, random.integer(1, 65535));
        const auto first = static_cast<std::uint32_t>(random.chance(0.5) ? 0 : random.integer(0, 3000));
        const StoredTable table = tableOf(values, first);
        const auto shift = static_cast<std::uint32_t>(random.integer(0, 8));
        const PresentationLevel level(&table, shift);
        std::uint16_t maximum = 0;
        for (const auto v : values) maximum = std::max(maximum, v);
        const unsigned down = shiftByDefinition(maximum);
        for (int k = 0; k < 50; ++k) {
            const auto value = static_cast<std::uint32_t>(random.integer(0, 0xFFFF));
            const double position = static_cast<double>(values.size()) / std::pow(2.0, shift + 8.0) * value;
            const std::int64_t i = static_cast<std::int64_t>(position) & 0xFFFF;
            std::uint16_t entry = values.back();
            if (i < first) {
                entry = values.front();
            } else if (i <= static_cast<std::int64_t>(values.size()) - 1 + first) {
                entry = values[static_cast<std::size_t>(i - first)];
            }
            ASSERT_EQ(level(value), static_cast<unsigned>(entry >> down) & 255U) << value << " shift " << shift;
        }
    }
}

TEST(WindowLut, PresentationLevelTakesAnyNumbers) {
    const StoredTable table = tableOf({10, 20, 30}, 0xFFFFFFFFU);
    EXPECT_EQ(PresentationLevel(&table, 0)(0xFFFFFFFFU), 10U);
    EXPECT_EQ(PresentationLevel(&table, 0xFFFFFFFFU)(0xFFFFFFFFU), 10U);
    const StoredTable plain = tableOf({10, 20, 30});
    EXPECT_EQ(PresentationLevel(&plain, 0)(255), 30U);
    EXPECT_EQ(PresentationLevel(&plain, 0)(256), 30U);
    EXPECT_EQ(PresentationLevel(&plain, 0xFFFFFFFFU)(0xFFFFFFFFU), 10U) << "a vanishing factor chooses the first";
}

TEST(WindowLut, PresentedWindowByDefinition) {
    zoltest::Random random(405);
    const ShownLevels colours = testColours();
    for (int n = 0; n < 40; ++n) {
        const Window window = randomWindow(random);
        const StoredTable table = tableOf(randomValues(random, random.integer(1, 4096), 0, random.integer(0, 65535)),
                                          static_cast<std::uint32_t>(random.integer(0, 20)));
        const unsigned down = shiftByDefinition(table.maximum());
        std::vector<std::uint32_t> lut(4096);
        zolcs::mapping::fillPresented(lut, window, table, colours);
        for (std::int64_t v = 0; v < 4096; ++v) {
            unsigned level = unsigned{table.data()[0]} >> down;
            if (v >= window.low()) {
                const std::int64_t q = (v - window.low()) * 4096 / window.width;
                level = PresentationLevel(&table, 4)(static_cast<std::uint32_t>(q & 0xFFFF));
            }
            if (v >= window.high()) level = unsigned{table.data()[table.count() - 1]} >> down;
            ASSERT_EQ(lut[static_cast<std::size_t>(v)], colours[level]) << v;
        }
    }
}

// ---- windowed non-linear tables -----------------------------------------------------------------------------------

TEST(WindowLut, WindowedExtentInsideTheDepth) {
    const WindowedExtent extent = zolcs::mapping::windowedExtent({100, 50}, 25, 4096);
    EXPECT_EQ(extent.start, 75U);
    EXPECT_EQ(extent.count, 50U);
    EXPECT_EQ(extent.position, 0.0);
    EXPECT_EQ(extent.step, 0.5);
}

TEST(WindowLut, WindowedExtentBelowZeroStartsInsideTheTable) {
    const WindowedExtent extent = zolcs::mapping::windowedExtent({10, 100}, 200, 4096);
    EXPECT_EQ(extent.start, 0U);
    EXPECT_EQ(extent.count, 60U);
    EXPECT_EQ(extent.position, 80.0);
    EXPECT_EQ(extent.step, 2.0);
}

TEST(WindowLut, WindowedExtentEndsWithTheDepth) {
    for (const std::int64_t depth : {4096, 65536}) {
        const auto centre = static_cast<std::int32_t>(depth - 10);
        const WindowedExtent extent = zolcs::mapping::windowedExtent({centre, 100}, 100, depth);
        EXPECT_EQ(extent.start, centre - 50);
        EXPECT_EQ(extent.count, depth - extent.start);
    }
}

TEST(WindowLut, WindowedExtentBeyondTheDepthKeepsOneEntry) {
    for (const std::int32_t centre : {4096 + 50, 5000, maximumCentre}) {
        const WindowedExtent extent = zolcs::mapping::windowedExtent({centre, 100}, 7, 4096);
        EXPECT_EQ(extent.start, centre - 50);
        EXPECT_EQ(extent.count, 1U);
        EXPECT_EQ(extent.position, 0.0);
    }
}

TEST(WindowLut, WindowedEntriesInterpolateAndRound) {
    const StoredTable table = tableOf({0, 10, 11, 1000});
    std::vector<std::uint16_t> windowed(8);
    zolcs::mapping::fillWindowed(windowed, {0, 8, 0.0, 0.5}, table);
    EXPECT_EQ(windowed, (std::vector<std::uint16_t>{0, 5, 10, 11, 11, 506, 1000, 1000}));
}

TEST(WindowLut, WindowedEntriesAccumulateTheirPosition) {
    zoltest::Random random(406);
    for (int n = 0; n < 100; ++n) {
        const auto values = randomValues(random, random.integer(1, 4096), 0, 65535);
        const StoredTable table = tableOf(values);
        const Window window = randomWindow(random);
        const WindowedExtent extent = zolcs::mapping::windowedExtent(window, table.count(), 4096);
        std::vector<std::uint16_t> windowed(extent.count);
        zolcs::mapping::fillWindowed(windowed, extent, table);
        const auto entryAt = [&](std::uint64_t k) {
            return values[static_cast<std::size_t>(std::min<std::uint64_t>(k, values.size() - 1))];
        };
        const double step = static_cast<double>(values.size()) / window.width;
        // A window that lies below all stored values starts at the table's begin.
        const bool cutBelow = window.low() < 0 && window.high() > 0;
        double position = cutBelow ? static_cast<double>(-window.low()) * step : 0.0;
        for (const std::uint16_t entry : windowed) {
            const double whole = std::trunc(position);
            const double f = position - whole;
            const auto k = static_cast<std::uint64_t>(whole);
            ASSERT_EQ(entry, static_cast<std::uint16_t>((1.0 - f) * entryAt(k) + f * entryAt(k + 1) + 0.5));
            position += step;
        }
    }
}

// Rounding can carry the last position onto the table's end, where the repeated entry is the only neighbour left.
TEST(WindowLut, WindowedEntriesNeverPassTheTable) {
    const StoredTable table = tableOf({5, 6, 7});
    std::vector<std::uint16_t> windowed(3);
    zolcs::mapping::fillWindowed(windowed, {0, 3, 2.75, 1000.0}, table);
    EXPECT_EQ(windowed, (std::vector<std::uint16_t>{7, 7, 7}));
}

TEST(WindowLut, AutoWindowOfARisingCurve) {
    std::vector<std::uint16_t> rising(101);
    for (std::size_t i = 0; i < rising.size(); ++i) rising[i] = static_cast<std::uint16_t>(i * 10);
    const AutoWindow window = zolcs::mapping::autoWindow(rising);
    EXPECT_EQ(window.width, 95 - 5);
    EXPECT_EQ(window.centre, 45 + 5);
}

TEST(WindowLut, AutoWindowOfAFallingCurveComesFromItsFirstEntry) {
    // 0.95 * 1000 = 950: entry 5 is the lowest index at or below it; entries 100 and up are 0.
    std::vector<std::uint16_t> falling(120, 0);
    for (std::size_t i = 0; i < 100; ++i) falling[i] = static_cast<std::uint16_t>(1000 - i * 10);
    const AutoWindow window = zolcs::mapping::autoWindow(falling);
    EXPECT_EQ(window.width, 99 - 5);
    EXPECT_EQ(window.centre, 47 + 5);
}

TEST(WindowLut, AutoWindowOfAnUnevenFallingCurve) {
    // The highest index above 0 and the lowest index at or below 95: zeroes and peaks between do not matter.
    const std::vector<std::uint16_t> falling = {100, 99, 0, 98, 120, 0, 1, 0};
    const AutoWindow window = zolcs::mapping::autoWindow(falling);
    EXPECT_EQ(window.width, 6 - 2);
    EXPECT_EQ(window.centre, 2 + 2);
}

TEST(WindowLut, AutoWindowOfAFallingCurveThatStaysHigh) {
    const std::vector<std::uint16_t> falling = {1000, 999, 998};
    const AutoWindow window = zolcs::mapping::autoWindow(falling);
    EXPECT_EQ(window.width, 2);
    EXPECT_EQ(window.centre, 1);
}

TEST(WindowLut, AutoWindowWithoutAnEntryBelowTheUpperBoundKeepsTheEnd) {
    // trunc(0.95 * 5) = 4, and nothing is at or below it.
    const std::vector<std::uint16_t> flat = {5, 5, 5, 5};
    const AutoWindow window = zolcs::mapping::autoWindow(flat);
    EXPECT_EQ(window.width, 3);
    EXPECT_EQ(window.centre, 1);
}

TEST(WindowLut, AutoWindowOfASingleEntry) {
    const std::vector<std::uint16_t> single = {0};
    const AutoWindow window = zolcs::mapping::autoWindow(single);
    EXPECT_EQ(window.width, 0);
    EXPECT_EQ(window.centre, 0);
}

TEST(WindowLut, NonLinearLevelsContinueOutsideTheWindow) {
    const ShownLevels colours = testColours();
    const std::vector<std::uint16_t> windowed = {3, 7, 300};
    std::vector<std::uint32_t> lut(16);
    const auto same = [](std::uint16_t value) { return unsigned{value}; };
    zolcs::mapping::fillNonLinear(lut, 5, windowed, same, colours);
    for (std::size_t v = 0; v < lut.size(); ++v) {
        EXPECT_EQ(lut[v], v < 6 ? colours[3] : v == 6 ? colours[7] : colours[255]) << v;
    }
    zolcs::mapping::fillNonLinear(lut, 100, windowed, same, colours);
    for (const std::uint32_t entry : lut) EXPECT_EQ(entry, colours[3]) << "a window beyond the table shows its start";
}

// ---- stored tables ------------------------------------------------------------------------------------------------

TEST(StoredTable, RepeatsTheLastValue) {
    const StoredTable table = tableOf({4, 9, 2}, 17);
    EXPECT_FALSE(table.missing());
    EXPECT_EQ(table.count(), 3U);
    EXPECT_EQ(table.firstMapped(), 17U);
    EXPECT_EQ(table.maximum(), 9);
    EXPECT_EQ(table.first(), 4);
    EXPECT_EQ(table.last(), 2);
    EXPECT_EQ(table.data()[3], 2);
    EXPECT_EQ(table.at(1), 9);
    EXPECT_EQ(table.at(3), 2);
    EXPECT_EQ(table.at(~std::uint64_t{0}), 2);
}

TEST(StoredTable, WithoutValuesHoldsASingleZeroAndReadsNothing) {
    // Volatile, or an optimiser that cannot see that nothing is read warns of the null pointer.
    const std::uint16_t* volatile nothing = nullptr;
    for (const std::int32_t count : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
        StoredTable table = tableOf({5});
        EXPECT_TRUE(table.assign(nothing, 3, count));
        EXPECT_FALSE(table.missing());
        EXPECT_EQ(table.count(), 0U);
        EXPECT_EQ(table.maximum(), 0);
        EXPECT_EQ(table.first(), 0);
        EXPECT_EQ(table.last(), 0);
        EXPECT_EQ(table.firstMapped(), 3U);
    }
}

TEST(StoredTable, IsEmptyAfterAFailedAllocation) {
    StoredTable table = tableOf({5, 6});
    const std::uint16_t values[2] = {1, 2};
    {
        const zoltest::FailingTables failing(0);
        EXPECT_FALSE(table.assign(values, 0, 2));
    }
    EXPECT_TRUE(table.missing());
    EXPECT_EQ(table.count(), 0U);
    EXPECT_EQ(table.data(), nullptr);
}

TEST(StoredTable, MayBeGivenItsOwnValues) {
    StoredTable table = tableOf({4, 9, 2});
    EXPECT_TRUE(table.assign(table.data() + 1, 0, 2));
    EXPECT_EQ(table.count(), 2U);
    EXPECT_EQ(table.first(), 9);
    EXPECT_EQ(table.last(), 2);
}

TEST(StoredTable, RefusesSizesThatDoNotFitTheAddressSpace) {
    EXPECT_EQ(zolcs::mapping::allocateTable<std::uint32_t>(std::numeric_limits<std::size_t>::max() / 4 + 1), nullptr);
}

TEST(StoredTable, CopiesDeeply) {
    const StoredTable table = tableOf({4, 9, 2}, 17);
    StoredTable copy;
    ASSERT_TRUE(copy.copy(table));
    EXPECT_NE(copy.data(), table.data());
    EXPECT_EQ(copy.count(), 3U);
    EXPECT_EQ(copy.at(2), 2);
    EXPECT_EQ(copy.maximum(), 9);
    EXPECT_EQ(copy.firstMapped(), 17U);
    ASSERT_TRUE(copy.copy(StoredTable()));
    EXPECT_TRUE(copy.missing());
    const zoltest::FailingTables failing(0);
    EXPECT_FALSE(copy.copy(table));
    EXPECT_TRUE(copy.missing());
}

}  // namespace
