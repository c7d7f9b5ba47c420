#include "zolcs/rules/pixelrules.h"

#include "support/display_rules.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using zolcs::ColumnRange;
using zolcs::DisplayRow;
using zolcs::fixed16One;
using zolcs::PixelRules;
using zolcs::PixelRun;
using zolcs::PixelRuns;
using zoltest::RuleChoice;
using zoltest::RuledRaster;
using zoltest::TableMap;

/// What a run makes of a pixel with a stored value; empty when the map decides.
std::optional<std::uint32_t> shownBy(const PixelRules& rules, const PixelRun& run, unsigned stored) {
    if (run.shows == PixelRun::Shows::Plane) return run.colour;
    if (rules.embedded().isShown() && stored > 4095)
        return rules.embedded().over(static_cast<std::uint16_t>(stored), 0);
    if (run.shows == PixelRun::Shows::Covered) return run.colour;
    return std::nullopt;
}

/// Checks that runs cover the columns in order, without gaps, and that neighbours differ.
void expectWellFormed(const PixelRuns& runs, ColumnRange columns) {
    int at = columns.begin;
    const PixelRun* before = nullptr;
    for (const PixelRun& run : runs) {
        ASSERT_EQ(run.begin, at);
        ASSERT_LT(run.begin, run.end);
        if (before != nullptr) {
            ASSERT_FALSE(before->showsTheSameAs(run));
        }
        at = run.end;
        before = &run;
    }
    ASSERT_EQ(at, columns.empty() ? columns.begin : columns.end);
}

/// A random row and those of its columns that lie on the source.
std::pair<DisplayRow, ColumnRange> randomRow(zoltest::Random& random, int width, int height) {
    const auto step = [&] {
        switch (random.integer(0, 3)) {
            case 0:
                return zolcs::Fixed16{0};
            case 1:
                return static_cast<zolcs::Fixed16>(random.real(-0.05, 0.05) * 65536);
            default:
                return static_cast<zolcs::Fixed16>(random.real(-2.0, 2.0) * 65536);
        }
    };
    DisplayRow row{static_cast<zolcs::Fixed16>(random.real(0, width) * 65536),
                   static_cast<zolcs::Fixed16>(random.real(0, height) * 65536), step(), step()};
    const int back = random.integer(0, 200);
    row.u -= back * row.du;
    row.v -= back * row.dv;
    const ColumnRange span = zolcs::spanOf(row, width * fixed16One, height * fixed16One, 400);
    return {row, span};
}

/// A stepping that prepares nothing for the rows of a test.
zolcs::Stepping obliqueStepping(int width) {
    return zolcs::makeStepping({0.5, 0.25, -0.25, 0.5, 0.0, 0.0}, 10, 10, width, width);
}

/// A stepping along the source's rows or columns.
zolcs::Stepping straightStepping(zoltest::Random& random, int width, int height) {
    const double along = random.chance(0.1) ? 0.0 : random.real(-3.0, 3.0);
    const double across = random.real(-3.0, 3.0);
    const double u = random.real(-0.5, 1.5) * width;
    const double v = random.real(-0.5, 1.5) * height;
    const bool quarter = random.chance(0.3);
    const zolcs::DisplayToImage matrix = quarter ? zolcs::DisplayToImage{0.0, across, along, 0.0, u, v}
                                                 : zolcs::DisplayToImage{along, 0.0, 0.0, across, u, v};
    return zolcs::makeStepping(matrix, width, height, random.integer(1, 400), random.integer(1, 400));
}

/// A stepping of any direction.
zolcs::Stepping turnedStepping(zoltest::Random& random, int width, int height) {
    const double a = random.real(-2.0, 2.0);
    const double b = random.real(-2.0, 2.0);
    const int displayWidth = random.integer(1, 1300);
    const int displayHeight = random.integer(1, 400);
    const double u = random.real(0.0, 1.0) * width - (a * displayWidth - b * displayHeight) / 2;
    const double v = random.real(0.0, 1.0) * height - (b * displayWidth + a * displayHeight) / 2;
    return zolcs::makeStepping({a, b, -b, a, u, v}, width, height, displayWidth, displayHeight);
}

/// Covers, then planes over them, must show what the runs of both show. Image pixels stay as they are.
void expectPaintedAlike(const PixelRules& rules, const DisplayRow& row, ColumnRange columns, const PixelRuns& runs) {
    constexpr std::uint32_t image = 0xFEDCBA98;
    const auto size = static_cast<std::size_t>(columns.end - columns.begin);
    const auto colours = [&](const PixelRuns& drawn) {
        std::vector<std::uint32_t> pixels(size + 1, image);
        for (const PixelRun& run : drawn) {
            if (run.shows == PixelRun::Shows::Image) continue;
            std::fill(pixels.begin() + (run.begin - columns.begin), pixels.begin() + (run.end - columns.begin),
                      run.colour);
        }
        return pixels;
    };
    PixelRuns covers;
    rules.cutCovers(row, columns, covers);
    for (const PixelRun& run : covers) ASSERT_NE(run.shows, PixelRun::Shows::Plane);
    std::vector<std::uint32_t> painted = colours(covers);
    rules.paintPlanes(row, columns, painted.data());
    ASSERT_EQ(painted, colours(runs));
}

TEST(PixelRulesTest, ResamplingRunsEqualTheRulesPixelByPixel) {
    zoltest::Random random(31);
    PixelRuns runs;
    int shown = 0;
    for (int i = 0; i < 600; ++i) {
        const bool large = random.chance(0.2);
        const int width = random.integer(1, large ? 700 : 60);
        const int height = random.integer(1, large ? 300 : 60);
        RuledRaster source =
            zoltest::makeRuledRaster(random, width, height, CCS_GREY12, 1.0, RuleChoice::random(random));
        TableMap map;
        map.enabled = random.chance(0.9);
        map.hasGroupColours = random.chance(0.9);
        map.hasPlaneColours = random.chance(0.9);
        IGreyMap* given = random.chance(0.95) ? &map : nullptr;
        const bool prepared = random.chance(0.8);
        const zolcs::Stepping stepping = !prepared             ? obliqueStepping(400)
                                         : random.chance(0.75) ? straightStepping(random, width, height)
                                                               : turnedStepping(random, width, height);
        const PixelRules rules = PixelRules::forResampling(*source.raster, given, source.paddingData(), 77, stepping);
        const zolcs::Stepping upright = stepping.isQuarterTurn() ? stepping.transposed() : stepping;
        for (int k = 0; k < 12; ++k) {
            auto [row, columns] = randomRow(random, width, height);
            if (prepared) {
                const int y = random.integer(0, upright.height - 1);
                row = upright.row(y);
                columns = upright.span(y);
            }
            rules.cut(row, columns, runs);
            expectWellFormed(runs, columns);
            if (!columns.empty()) expectPaintedAlike(rules, row, columns, runs);
            for (const PixelRun& run : runs) {
                for (int x = run.begin; x < run.end; ++x) {
                    for (const unsigned stored : {0x0123U, 0x5123U}) {
                        const auto expected = zoltest::shownInstead(*source.raster, given, source.paddingData(), 77,
                                                                    stepping.width, row.uAt(x), row.vAt(x), stored);
                        ASSERT_EQ(shownBy(rules, run, stored), expected)
                            << "case " << i << " column " << x << " at " << static_cast<double>(row.uAt(x)) / 65536
                            << ", " << static_cast<double>(row.vAt(x)) / 65536 << " seed " << random.seed();
                        shown += expected.has_value() ? 1 : 0;
                    }
                }
            }
        }
    }
    EXPECT_GT(shown, 100000);
}

/// Magnified, most of a row over a solid area is known to be covered without a look at any pixel of it.
TEST(PixelRulesTest, SolidAreasInObliqueViewsEqualTheirBits) {
    zoltest::Random random(34);
    PixelRuns runs;
    int covered = 0;
    for (int i = 0; i < 60; ++i) {
        const int width = random.integer(60, 400);
        const int height = random.integer(60, 400);
        const RuledRaster source = zoltest::makeRuledRaster(random, width, height, CCS_GREY12, 1.0, {});
        // All but a few pixels somewhere.
        std::vector<unsigned char> padding(static_cast<std::size_t>((width * height + 7) / 8), 0xFF);
        for (int hole = random.integer(0, 4); hole > 0; --hole) {
            const int k = random.integer(0, width * height - 1);
            padding[static_cast<std::size_t>(k / 8)] &= static_cast<unsigned char>(~(1 << k % 8));
        }
        const double a = random.real(-0.6, 0.6);
        const double b = random.real(-0.6, 0.6);
        const int displayWidth = random.integer(1, 1300);
        const int displayHeight = random.integer(1, 40);
        const double u = width * random.real(0.2, 0.8) - (a * displayWidth - b * displayHeight) / 2;
        const double v = height * random.real(0.2, 0.8) - (b * displayWidth + a * displayHeight) / 2;
        const zolcs::Stepping stepping =
            zolcs::makeStepping({a, b, -b, a, u, v}, width, height, displayWidth, displayHeight);
        const PixelRules rules = PixelRules::forResampling(*source.raster, nullptr, padding.data(), 77, stepping);
        for (int y = 0; y < displayHeight; ++y) {
            const DisplayRow row = stepping.row(y);
            const ColumnRange columns = stepping.span(y);
            rules.cut(row, columns, runs);
            expectWellFormed(runs, columns);
            for (const PixelRun& run : runs) {
                for (int x = run.begin; x < run.end; ++x) {
                    ASSERT_EQ(shownBy(rules, run, 5), zoltest::shownInstead(*source.raster, nullptr, padding.data(), 77,
                                                                            displayWidth, row.uAt(x), row.vAt(x), 5))
                        << "case " << i << " row " << y << " column " << x;
                    covered += run.shows == PixelRun::Shows::Covered ? 1 : 0;
                }
            }
        }
    }
    EXPECT_GT(covered, 100000);
}

TEST(PixelRulesTest, WholeRasterRunsEqualTheRulesPixelByPixel) {
    zoltest::Random random(32);
    PixelRuns runs;
    for (int i = 0; i < 600; ++i) {
        const int width = random.integer(1, 130);
        const int height = random.integer(1, 40);
        RuledRaster source =
            zoltest::makeRuledRaster(random, width, height, CCS_GREY12, 1.0, RuleChoice::random(random));
        TableMap map;
        map.enabled = random.chance(0.9);
        const PixelRules rules = PixelRules::forWholeRaster(*source.raster, &map, source.paddingData());
        for (int y = 0; y < height; ++y) {
            const int begin = random.integer(0, width - 1);
            const ColumnRange columns{begin, random.integer(begin, width)};
            rules.cut(PixelRules::wholeRasterRow(y), columns, runs);
            expectWellFormed(runs, columns);
            for (const PixelRun& run : runs) {
                for (int x = run.begin; x < run.end; ++x) {
                    for (const unsigned stored : {0x0123U, 0x5123U}) {
                        ASSERT_EQ(
                            shownBy(rules, run, stored),
                            zoltest::shownInsteadOnRaster(*source.raster, &map, source.paddingData(), x, y, stored))
                            << "case " << i << " at " << x << ", " << y << " seed " << random.seed();
                    }
                }
            }
        }
    }
}

TEST(PixelRulesTest, APlainRasterHasNoRules) {
    zoltest::Random random(33);
    const RuledRaster source = zoltest::makeRuledRaster(random, 20, 20, CCS_GREY12, 1.0, {});
    TableMap map;
    for (const PixelRules& rules :
         {PixelRules(), PixelRules::forResampling(*source.raster, &map, nullptr, 0, obliqueStepping(20)),
          PixelRules::forWholeRaster(*source.raster, &map, nullptr)}) {
        EXPECT_TRUE(rules.empty());
        EXPECT_FALSE(rules.embedded().isShown());
    }
}

TEST(PixelRulesTest, BlankPlanesAndPaddingCostNothing) {
    zoltest::Random random(34);
    RuledRaster source = zoltest::makeRuledRaster(random, 20, 20, CCS_GREY12, 1.0, {});
    std::vector<unsigned char> zeroes(50);
    CCs60XXOverlay plane;
    plane.originX = 1;
    plane.originY = 1;
    plane.rows = 20;
    plane.columns = 20;
    plane.data = zeroes.data();
    source.raster->add60XXOverlayInfo(plane);
    TableMap map;
    EXPECT_TRUE(PixelRules::forResampling(*source.raster, &map, zeroes.data(), 0, obliqueStepping(20)).empty());
}

TEST(PixelRulesTest, EmbeddedOverlaysNeedNoPositions) {
    zoltest::Random random(35);
    RuleChoice choice;
    choice.embedded = true;
    const RuledRaster source = zoltest::makeRuledRaster(random, 20, 20, CCS_GREY12, 1.0, choice);
    TableMap map;
    const PixelRules rules = PixelRules::forResampling(*source.raster, &map, nullptr, 0, obliqueStepping(20));
    EXPECT_TRUE(rules.empty());
    EXPECT_EQ(rules.embedded().over(0xF000, 0), map.planeColours[15]);
}

TEST(PixelRulesTest, PositionsThatRoundUpReachAPlanesFirstColumnAndRow) {
    // 300 * 65536 - 1 needs 25 bits: in single precision it lies on pixel 300.
    constexpr zolcs::Fixed16 justBefore = 300 * fixed16One - 1;
    zoltest::Random random(37);
    TableMap map;
    std::vector<unsigned char> bits(20, 0xFF);
    for (const bool across : {true, false}) {
        RuledRaster source =
            zoltest::makeRuledRaster(random, across ? 400 : 12, across ? 12 : 400, CCS_GREY12, 1.0, {});
        CCs60XXOverlay plane;
        plane.originX = across ? 301 : 3;
        plane.originY = across ? 3 : 301;
        plane.rows = 8;
        plane.columns = 9;
        plane.data = bits.data();
        source.raster->add60XXOverlayInfo(plane);
        const PixelRules rules = PixelRules::forResampling(*source.raster, &map, nullptr, 0, obliqueStepping(20));
        PixelRuns runs;
        for (const zolcs::Fixed16 before : {justBefore, justBefore - 1}) {
            const zolcs::Fixed16 inside = 4 * fixed16One;
            const DisplayRow row{across ? before : inside, across ? inside : before, 3, 5};
            rules.cut(row, {0, 1}, runs);
            const bool shows = before == justBefore;
            const PixelRun expected{0, 1, shows ? PixelRun::Shows::Plane : PixelRun::Shows::Image,
                                    shows ? map.groupColours[0] : 0};
            ASSERT_EQ(runs.end() - runs.begin(), 1);
            EXPECT_TRUE(*runs.begin() == expected) << before;
        }
    }
}

TEST(PixelRulesTest, CirclesAndPolygonsOnVeryLargeSources) {
    zoltest::Random random(36);
    PixelRuns runs;
    for (int i = 0; i < 60; ++i) {
        const int width = 30000;
        RuledRaster source = zoltest::makeRuledRaster(random, width, 3, CCS_GREY12, 1.0, {});
        const int left = random.integer(0, 20000);
        const int size = random.integer(10, 9000);
        source.raster->setCircShutter({left, 1 - size / 2, left + size, 1 - size / 2 + size});
        if (random.chance(0.5)) {
            source.raster->setPolygonalShutter({CPoint(left + size / 3, -40), CPoint(left + size / 2, 60),
                                                CPoint(random.integer(0, width), random.integer(-5, 5))});
        }
        const PixelRules rules = PixelRules::forResampling(*source.raster, nullptr, nullptr, 0, obliqueStepping(500));
        for (int k = 0; k < 20; ++k) {
            // Close to the circle's edge, where the rounding of single precision decides.
            const zolcs::Fixed16 edge = (random.chance(0.5) ? left : left + size) * fixed16One;
            const DisplayRow row{edge + random.integer(-200000, 200000), random.integer(1, 3 * 65536 - 1),
                                 random.integer(-900, 900), 0};
            const ColumnRange span = zolcs::spanOf(row, width * fixed16One, 3 * fixed16One, 400);
            rules.cut(row, span, runs);
            for (const PixelRun& run : runs) {
                for (int x = run.begin; x < run.end; ++x) {
                    ASSERT_EQ(shownBy(rules, run, 0), zoltest::shownInstead(*source.raster, nullptr, nullptr, 0, 500,
                                                                            row.uAt(x), row.vAt(x), 0));
                }
            }
        }
    }
}

TEST(PixelRulesTest, ExtremeShuttersAreSafe) {
    zoltest::Random random(37);
    PixelRuns runs;
    const LONG low = std::numeric_limits<std::int32_t>::min();
    const LONG high = std::numeric_limits<std::int32_t>::max();
    for (const RECT box : {RECT{low, low, high, high}, RECT{high, high, low, low}, RECT{low, 0, low, 5},
                           RECT{high, 0, high, 5}, RECT{0, 0, 0, 0}}) {
        RuledRaster source = zoltest::makeRuledRaster(random, 30, 30, CCS_GREY12, 1.0, {});
        source.raster->setRectShutter(box);
        source.raster->setCircShutter(box);
        source.raster->setPolygonalShutter({CPoint(static_cast<int>(box.left), static_cast<int>(box.top)),
                                            CPoint(static_cast<int>(box.right), static_cast<int>(box.top)),
                                            CPoint(static_cast<int>(box.right), static_cast<int>(box.bottom))});
        CCs60XXOverlay plane;
        unsigned char bits[200] = {1};
        plane.originX = static_cast<std::int32_t>(low);
        plane.originY = static_cast<std::int32_t>(high);
        plane.rows = 30;
        plane.columns = 30;
        plane.data = bits;
        source.raster->add60XXOverlayInfo(plane);
        TableMap map;
        for (const PixelRules& rules :
             {PixelRules::forResampling(*source.raster, &map, nullptr, 0, obliqueStepping(500)),
              PixelRules::forWholeRaster(*source.raster, &map, nullptr)}) {
            for (int y = 0; y < 30; ++y) {
                rules.cut(PixelRules::wholeRasterRow(y), {1, 30}, runs);
                expectWellFormed(runs, {1, 30});
            }
        }
    }
}

}  // namespace
