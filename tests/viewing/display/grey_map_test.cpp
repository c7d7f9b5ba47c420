#include "viewing/display/grey_map.h"

#include "support/test_data.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using namespace viewing;
using Words = std::vector<std::uint16_t>;

GreyImage imageOf(int levels) {
    GreyImage image;
    image.levels = levels;
    image.maxLevel = levels - 1;
    return image;
}

/// What the map makes of each level with a palette of greys.
std::vector<int> greysOf(const GreyImage& image, const std::optional<Window>& window = {}) {
    const std::unique_ptr<IGreyMap> map = makeGreyMap(GreyTransform(image, window));
    CCsColorMan ramp;
    CCsColorMapT greys;
    ramp.getColorMap(greys);
    map->setColorMapIndex(&greys);
    const auto* const table = static_cast<const std::uint32_t*>(map->getLut());
    std::vector<int> out;
    for (int level = 0; level < image.levels; ++level) out.push_back(static_cast<int>(table[level] & 0xFFU));
    return out;
}

void expectWithinOneGrey(const GreyImage& image, const std::vector<int>& greys) {
    const GreyTransform transform(image, {});
    for (int level = 0; level < image.levels; ++level)
        ASSERT_NEAR(greys[static_cast<std::size_t>(level)], transform.grey(level), 1.0) << level;
}

TEST(GreyMap, RandomWindowsAreWithinOneGreyAndNeverFall) {
    zoltest::Random random(41);
    for (int run = 0; run < 120; ++run) {
        GreyImage image = imageOf(run % 10 == 0 ? levels16 : levels12);
        const WindowFunction function =
            std::array{WindowFunction::Linear, WindowFunction::LinearExact,
                       WindowFunction::Sigmoid}[static_cast<std::size_t>(random.integer(0, 2))];
        image.lowest = random.integer(-40000, 1000);
        image.modality.slope = random.chance(0.5) ? 1.0 : random.real(0.01, 20.0);
        image.modality.intercept = random.real(-2000.0, 2000.0);
        const double low = image.modality.slope * image.lowest + image.modality.intercept;
        const double span = image.modality.slope * image.levels;
        double width = std::exp(random.real(std::log(1.0), std::log(4.0 * span + 2.0)));
        if (random.chance(0.5)) width = std::round(width);
        double centre = low + random.real(-0.5, 1.5) * span;
        if (random.chance(0.5)) centre = std::round(centre);
        image.voi = VoiWindow{{centre, std::max(width, 1.0)}, function};
        const std::vector<int> greys = greysOf(image);
        expectWithinOneGrey(image, greys);
        ASSERT_TRUE(std::is_sorted(greys.begin(), greys.end())) << run;
        if (HasFatalFailure()) FAIL() << run << ": " << centre << '/' << width << " of " << image.levels;
    }
}

TEST(GreyMap, SmallWindowsAreWithinOneGreyAtEveryHalfStep) {
    for (double width = 1.0; width <= 12.0; width += 0.5) {
        for (double centre = 99.5; centre <= 101.0; centre += 0.25) {
            GreyImage image = imageOf(levels12);
            image.voi = VoiWindow{{centre, width}};
            expectWithinOneGrey(image, greysOf(image));
            if (HasFatalFailure()) FAIL() << centre << '/' << width;
        }
    }
}

TEST(GreyMap, TheLastDeepLevelIsNoDarkerThanTheOneBefore) {
    // The map's own sigmoid leaves it black, which is within one grey here.
    GreyImage image = imageOf(levels16);
    image.voi = VoiWindow{{79493.6, 10000.0}, WindowFunction::Sigmoid};
    const std::vector<int> greys = greysOf(image);
    EXPECT_EQ(greys[65535], 1);
    EXPECT_TRUE(std::is_sorted(greys.begin(), greys.end()));
}

TEST(GreyMap, FallingSlopesAreDarkAtHighLevels) {
    for (const int levels : {levels12, levels16}) {
        GreyImage image = imageOf(levels);
        image.modality.slope = -1.0;
        image.voi = VoiWindow{{-levels / 2.0, levels / 4.0}};
        const std::vector<int> greys = greysOf(image);
        expectWithinOneGrey(image, greys);
        EXPECT_TRUE(std::is_sorted(greys.rbegin(), greys.rend()));
        EXPECT_EQ(greys.front(), 255);
        EXPECT_EQ(greys.back(), 0);
    }
}

TEST(GreyMap, TablesComeOutExactly) {
    zoltest::Random random(42);
    for (int run = 0; run < 24; ++run) {
        GreyImage image = imageOf(run % 3 == 0 ? levels16 : levels12);
        LookupTable table;
        table.bits = random.integer(1, 16);
        table.first = random.integer(-100, image.levels);
        table.entries.resize(static_cast<std::size_t>(random.integer(1, 5000)));
        // The largest entry may be far below what the bits allow, which must not make the picture brighter.
        const int top = random.chance(0.5) ? table.top() : table.top() / 3;
        for (std::uint16_t& entry : table.entries) entry = static_cast<std::uint16_t>(random.integer(0, top));
        if (random.chance(0.3)) image.modality.table = table;
        if (random.chance(0.7) || !image.modality.table) image.voi = table;
        if (random.chance(0.5)) image.presentation.table = table;
        const GreyTransform transform(image, {});
        const std::vector<int> greys = greysOf(image);
        for (int level = 0; level < image.levels; ++level)
            ASSERT_EQ(greys[static_cast<std::size_t>(level)], std::floor(transform.grey(level) + 0.5))
                << run << ' ' << level;
    }
}

TEST(GreyMap, PresentationTablesGoThroughTheTwelveBitMap) {
    GreyImage image = imageOf(levels12);
    image.voi = VoiWindow{{2048.0, 4096.0}};
    image.presentation.table = LookupTable{0, 8, Words(256, 7)};
    EXPECT_TRUE(makeGreyMap(GreyTransform(image, {}))->hasPresentationLut());
    image.levels = levels16;
    EXPECT_FALSE(makeGreyMap(GreyTransform(image, {}))->hasPresentationLut());
}

TEST(GreyMap, TheWindowGoesBeforeTheTable) {
    GreyImage image = imageOf(levels12);
    image.voi = LookupTable{0, 8, {255, 0}};
    EXPECT_EQ(greysOf(image)[0], 255);
    EXPECT_EQ(greysOf(image, Window{100.0, 2.0})[0], 0);
    EXPECT_EQ(greysOf(image, Window{100.0, 2.0})[100], 255);
}

TEST(GreyMap, FallsFromWhite) {
    const GreyImage image = imageOf(levels12);
    const std::unique_ptr<IGreyMap> map = makeGreyMap(GreyTransform(image, {}));
    CCsColorMan palette;
    CCsColorMapT colours;
    palette.getColorMap(colours);
    map->setColorMapIndex(&colours);
    EXPECT_FALSE(fallsFromWhite(*map, levels12));
    palette.invertPalette();
    map->setColorMapIndex(&colours);
    EXPECT_TRUE(fallsFromWhite(*map, levels12));
}

}  // namespace
