#include "viewing/averaging/area_average.h"

#include "reference/area_average_reference.h"
#include "viewing/averaging/oblique_sums.h"
#include "viewing/averaging/reduction.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>

namespace {

using namespace viewing::averaging;
using area_reference::Source;

class Random {
public:
    explicit Random(unsigned seed) : engine_(seed) {}
    int whole(int low, int high) { return std::uniform_int_distribution<int>(low, high)(engine_); }
    double real(double low, double high) { return std::uniform_real_distribution<double>(low, high)(engine_); }

private:
    std::mt19937 engine_;
};

Source randomSource(Random& random, int width, int height, unsigned top, bool masked) {
    Source source{width, height, {}, {}};
    for (int i = 0; i < width * height; ++i) {
        source.values.push_back(static_cast<unsigned>(random.whole(0, static_cast<int>(top))));
        if (masked) source.takesPart.push_back(random.whole(0, 2) == 0 ? 1 : 0);
    }
    return source;
}

/// The source as one channel of pixels whose other channels hold something else, in rows with a gap between them.
template <typename Sample, std::size_t Channels>
class Pixels {
public:
    explicit Pixels(const Source& source)
        : pitch_(static_cast<std::size_t>(source.width) * Channels + 3),
          samples_(pitch_ * static_cast<std::size_t>(source.height), Sample{7}),
          width_(source.width),
          height_(source.height) {
        for (int y = 0; y < height_; ++y)
            for (int x = 0; x < width_; ++x)
                samples_[pitch_ * static_cast<std::size_t>(y) + static_cast<std::size_t>(x) * Channels + channel] =
                    static_cast<Sample>(source.values[source.index(x, y)]);
    }

    static constexpr std::size_t channel = Channels / 2;
    [[nodiscard]] Grid<Sample, Channels> grid() const {
        return {samples_.data(), static_cast<std::ptrdiff_t>(pitch_), width_, height_};
    }

private:
    std::size_t pitch_;
    std::vector<Sample> samples_;
    int width_;
    int height_;
};

/// The channel that holds the source.
template <typename Sample, std::size_t Channels>
std::vector<unsigned> averaged(const Source& source, const Coverage& coverage) {
    const Pixels<Sample, Channels> pixels(source);
    std::vector<Sample> out(static_cast<std::size_t>(widthOf(coverage)) * static_cast<std::size_t>(heightOf(coverage)) *
                            Channels);
    average(pixels.grid(), source.takesPart, coverage, out.data());
    std::vector<unsigned> values;
    for (std::size_t i = Pixels<Sample, Channels>::channel; i < out.size(); i += Channels) values.push_back(out[i]);
    return values;
}

void expectAxisMeans(const Source& source, const AxisCoverage& cells, const std::vector<unsigned>& actual) {
    const std::vector<std::int64_t>& x = cells.columns.bounds;
    const std::vector<std::int64_t>& y = cells.rows.bounds;
    auto value = actual.begin();
    for (std::size_t j = 0; j + 1 < y.size(); ++j)
        for (std::size_t i = 0; i + 1 < x.size(); ++i, ++value)
            ASSERT_EQ(*value, area_reference::mean(source, x[i], x[i + 1], y[j], y[j + 1])) << i << ',' << j;
    ASSERT_EQ(value, actual.end());
}

AxisCells randomCells(Random& random, int extent) {
    AxisCells cells;
    const int longest = random.whole(1, 6) * 1024;
    for (std::int64_t at = random.whole(0, 2000); at < extent * onePixel; at += random.whole(1, longest))
        cells.bounds.push_back(at);
    if (random.whole(0, 1) == 0 || cells.bounds.empty()) cells.bounds.push_back(extent * onePixel);
    return cells;
}

AxisCells blocks(int first, int length, int count) {
    AxisCells cells;
    for (int i = 0; i <= count; ++i) cells.bounds.push_back((first + i * length) * onePixel);
    return cells;
}

TEST(AreaAverage, OfRandomCellsIsTheSlowOne) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        const int width = random.whole(1, 40);
        const int height = random.whole(1, 25);
        const AxisCoverage cells{randomCells(random, width), randomCells(random, height)};
        if (cells.columns.count() == 0 || cells.rows.count() == 0) continue;
        const bool masked = random.whole(0, 1) == 1;
        const Source bytes = randomSource(random, width, height, 255, masked);
        expectAxisMeans(bytes, cells, averaged<std::uint8_t, 1>(bytes, cells));
        expectAxisMeans(bytes, cells, averaged<std::uint8_t, 4>(bytes, cells));
        const Source words = randomSource(random, width, height, 65535, masked);
        expectAxisMeans(words, cells, averaged<std::uint16_t, 1>(words, cells));
        expectAxisMeans(words, cells, averaged<std::uint16_t, 4>(words, cells));
    }
}

TEST(AreaAverage, OfWholeBlocksIsTheSlowOne) {
    for (int across = 1; across <= 5; ++across) {
        for (int down = 1; down <= 5; ++down) {
            SCOPED_TRACE(testing::Message() << across << 'x' << down);
            Random random(static_cast<unsigned>(across * 10 + down));
            const AxisCoverage cells{blocks(2, across, 9), blocks(1, down, 4)};
            for (const bool masked : {false, true}) {
                const Source bytes = randomSource(random, 2 + 9 * across, 1 + 4 * down + 1, 255, masked);
                expectAxisMeans(bytes, cells, averaged<std::uint8_t, 4>(bytes, cells));
                const Source words = randomSource(random, 2 + 9 * across, 1 + 4 * down + 1, 65535, masked);
                expectAxisMeans(words, cells, averaged<std::uint16_t, 1>(words, cells));
            }
        }
    }
}

TEST(AreaAverage, BrightestPixelsStayBrightestInBlocksAndCellsOfEverySize) {
    for (const int side : {1, 2, 7, 16, 17, 60, 181, 182, 256, 257, 300}) {
        for (const std::int64_t start : {std::int64_t{0}, std::int64_t{300}}) {
            const AxisCells one{{start, side * onePixel}};
            const AxisCoverage all{one, one};
            Source white{side, side, std::vector<unsigned>(static_cast<std::size_t>(side * side), 65535), {}};
            EXPECT_EQ((averaged<std::uint16_t, 1>(white, all)), std::vector<unsigned>{65535}) << side;
            white.values.assign(white.values.size(), 255);
            EXPECT_EQ((averaged<std::uint8_t, 4>(white, all)), std::vector<unsigned>{255}) << side;
        }
    }
}

TEST(AreaAverage, LargeCellsAreTheSlowOnesToTheLastBit) {
    Random random(7);
    for (const int side : {130, 260, 520}) {
        const Source source = randomSource(random, side, side, 65535, false);
        const AxisCells halves{{0, side * onePixel / 2 + 5, side * onePixel}};
        const AxisCoverage cells{halves, halves};
        expectAxisMeans(source, cells, averaged<std::uint16_t, 1>(source, cells));
    }
}

TEST(AreaAverage, HalvesAreRoundedUp) {
    const Source source{2, 2, {0, 1, 0, 1}, {}};
    EXPECT_EQ((averaged<std::uint16_t, 1>(source, AxisCoverage{blocks(0, 2, 1), blocks(0, 2, 1)})),
              std::vector<unsigned>{1});
    const AxisCoverage halfOfEach{{{512, 1536}}, {{0, 2048}}};
    EXPECT_EQ((averaged<std::uint16_t, 1>(source, halfOfEach)), std::vector<unsigned>{1});
    const AxisCoverage lessOfTheSecond{{{511, 1534}}, {{0, 2048}}};
    EXPECT_EQ((averaged<std::uint16_t, 1>(source, lessOfTheSecond)), std::vector<unsigned>{0});
}

TEST(AreaAverage, WhatTakesNoPartDoesNotCount) {
    const Source source{3, 1, {100, 9000, 200}, {1, 0, 1}};
    const AxisCells row = wholePixels(1);
    EXPECT_EQ((averaged<std::uint16_t, 1>(source, AxisCoverage{blocks(0, 3, 1), row})), std::vector<unsigned>{150});
    EXPECT_EQ((averaged<std::uint16_t, 1>(source, AxisCoverage{{{0, 1024, 2048, 3072}}, row})),
              (std::vector<unsigned>{100, 0, 200}));
}

/// The eight ways in which an image lies upright on a display: (a, b, c, d) of its matrix at scale 1.
constexpr std::array<std::array<int, 4>, 8> orientations{{{1, 0, 0, 1},
                                                          {0, 1, -1, 0},
                                                          {-1, 0, 0, -1},
                                                          {0, -1, 1, 0},
                                                          {-1, 0, 0, 1},
                                                          {1, 0, 0, -1},
                                                          {0, 1, 1, 0},
                                                          {0, -1, -1, 0}}};

/// Where the pixel that covers [from, to) of a source axis under a view begins and ends there.
std::pair<std::int64_t, std::int64_t> covered(double scale, double offset, int pixel, int extent) {
    const auto position = [&](int edge) {
        const double exact = (edge - offset) / scale;
        return std::clamp<std::int64_t>(static_cast<std::int64_t>(std::floor(exact * 1024.0 + 0.5)), 0,
                                        std::int64_t{extent} * 1024);
    };
    return std::minmax(position(pixel), position(pixel + 1));
}

TEST(AreaAverage, EightOrientationsShowTheSlowMeanInEveryDisplayPixel) {
    for (unsigned seed = 0; seed < 80; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        const auto& [a, b, c, d] = orientations[seed % 8];
        const Extent extent{random.whole(5, 40), random.whole(5, 40)};
        const Extent display{random.whole(1, 24), random.whole(1, 24)};
        const double scaleX = random.real(0.1, 0.95);
        const double scaleY = random.real(0.1, 0.95);
        const double panX = random.real(-10.0, 30.0);
        const double panY = random.real(-10.0, 30.0);
        const Matrix view{a * scaleX, b * scaleX, c * scaleY, d * scaleY, panX, panY};
        const Source source = randomSource(random, extent.width, extent.height, 65535, seed % 3 == 0);
        const Reduction reduction = reductionOf(view, extent, display);
        EXPECT_FALSE(reduction.interpolates);
        const std::vector<unsigned> values = averaged<std::uint16_t, 1>(source, reduction.coverage);

        std::vector<int> shown(static_cast<std::size_t>(display.width * display.height), -1);
        for (int y = 0; y < heightOf(reduction.coverage); ++y) {
            for (int x = 0; x < widthOf(reduction.coverage); ++x) {
                const auto& [ra, rb, rc, rd, re, rf] = reduction.toDisplay;
                const int atX = static_cast<int>(std::floor(ra * (x + 0.5) + rc * (y + 0.5) + re));
                const int atY = static_cast<int>(std::floor(rb * (x + 0.5) + rd * (y + 0.5) + rf));
                ASSERT_TRUE(atX >= 0 && atX < display.width && atY >= 0 && atY < display.height);
                int& pixel = shown[static_cast<std::size_t>(atY * display.width + atX)];
                ASSERT_EQ(pixel, -1);
                pixel = static_cast<int>(values[static_cast<std::size_t>(y * widthOf(reduction.coverage) + x)]);
            }
        }
        for (int y = 0; y < display.height; ++y) {
            for (int x = 0; x < display.width; ++x) {
                const bool exchanged = a == 0;
                const auto [left, right] =
                    exchanged ? covered(view[1], panY, y, extent.width) : covered(view[0], panX, x, extent.width);
                const auto [top, bottom] =
                    exchanged ? covered(view[2], panX, x, extent.height) : covered(view[3], panY, y, extent.height);
                const int expected = left == right || top == bottom
                                         ? -1
                                         : static_cast<int>(area_reference::mean(source, left, right, top, bottom));
                ASSERT_EQ(shown[static_cast<std::size_t>(y * display.width + x)], expected) << x << ',' << y;
            }
        }
    }
}

Matrix turned(double degrees, double scaleX, double scaleY, bool mirrored, double panX, double panY) {
    const double angle = degrees * std::numbers::pi / 180.0;
    const double flip = mirrored ? -1.0 : 1.0;
    return {flip * scaleX * std::cos(angle),
            flip * scaleX * std::sin(angle),
            -scaleY * std::sin(angle),
            scaleY * std::cos(angle),
            panX,
            panY};
}

struct Oblique {
    Source source;
    Extent display;
    Reduction reduction;
};

/// A source that lies anywhere on the display, or with `inside` wholly within it.
Oblique randomOblique(unsigned seed, unsigned top, bool masked, bool inside) {
    Random random(seed);
    const int width = random.whole(1, 30);
    const int height = random.whole(1, 30);
    const double degrees = random.whole(0, 7) == 0 ? 45.0 : random.real(1.0, 359.0);
    const double pan = inside ? 45.0 : random.real(-5.0, 25.0);
    const Matrix view =
        turned(degrees, random.real(0.08, 0.99), random.real(0.08, 0.99), random.whole(0, 1) == 1, pan, pan);
    const Extent display = inside ? Extent{90, 90} : Extent{random.whole(1, 30), random.whole(1, 30)};
    return {randomSource(random, width, height, top, masked), display, reductionOf(view, {width, height}, display)};
}

TEST(AreaAverage, AtObliqueAnglesEveryPixelIsTheMeanOfItsParallelogram) {
    int seen = 0;
    for (unsigned seed = 0; seed < 90; ++seed) {
        SCOPED_TRACE(seed);
        const Oblique scene = randomOblique(seed, 1000, seed % 3 == 0, false);
        const auto& coverage = std::get<ObliqueCoverage>(scene.reduction.coverage);
        const std::vector<unsigned> values = averaged<std::uint16_t, 1>(scene.source, coverage);
        const auto& [a, b, c, d, e, f] = coverage.toSource;
        const auto corner = [&, a = a, b = b, c = c, d = d, e = e, f = f](int x, int y) {
            const double column = coverage.left + x;
            const double row = coverage.top + y;
            return area_reference::Corner{a * column + c * row + e, b * column + d * row + f};
        };
        // Corners are rounded to 1/1024, which matters the more the less is covered.
        const double rim = 4.0 * (std::hypot(a, b) + std::hypot(c, d)) / 1024.0;
        for (int y = 0; y < coverage.height; ++y) {
            for (int x = 0; x < coverage.width; ++x) {
                const auto [expected, weight] = area_reference::mean(
                    scene.source, {corner(x, y), corner(x + 1, y), corner(x + 1, y + 1), corner(x, y + 1)});
                if (weight < rim) continue;
                ++seen;
                ASSERT_NEAR(values[static_cast<std::size_t>(y * coverage.width + x)], expected,
                            1.0 + 1000.0 * rim / weight)
                    << x << ',' << y;
            }
        }
    }
    EXPECT_GT(seen, 1000);
}

TEST(AreaAverage, AtObliqueAnglesNothingOfAnImageInsideTheDisplayIsLostOrCountedTwice) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        const Oblique scene = randomOblique(seed, 65535, false, true);
        const auto& coverage = std::get<ObliqueCoverage>(scene.reduction.coverage);
        const Pixels<std::uint16_t, 1> pixels(scene.source);
        ObliqueSums<std::uint16_t, 1> sums(pixels.grid(), coverage);
        std::uint64_t sum = 0;
        std::uint64_t area = 0;
        for (int y = 0; y < coverage.height; ++y) {
            for (const std::uint64_t part : sums.next()) sum += part;
            for (const std::uint64_t part : sums.areas()) area += part;
        }
        std::uint64_t all = 0;
        for (const unsigned value : scene.source.values) all += value;
        EXPECT_EQ(sum, all << 21U);
        EXPECT_EQ(area, std::uint64_t{scene.source.values.size()} << 21U);
    }
}

TEST(AreaAverage, AtObliqueAnglesDotsKeepTheirEnergy) {
    for (unsigned seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        const double scale = random.real(0.1, 0.99);
        const Matrix view = turned(random.real(0.5, 359.5), scale, scale, seed % 2 == 1, 60.0, 60.0);
        Source source{60, 60, std::vector<unsigned>(3600), {}};
        double energy = 0.0;
        // Away from the rim, where a display pixel shows the mean of the little that it covers.
        for (int dot = 0; dot < 5; ++dot) {
            unsigned& pixel = source.values[source.index(random.whole(15, 44), random.whole(15, 44))];
            energy += 60000.0 - pixel;
            pixel = 60000;
        }
        const Reduction reduction = reductionOf(view, {60, 60}, {120, 120});
        double shown = 0.0;
        int lit = 0;
        for (const unsigned value : averaged<std::uint16_t, 1>(source, reduction.coverage)) {
            shown += value;
            lit += value != 0 ? 1 : 0;
        }
        EXPECT_GT(lit, 0);
        // Half a level for each pixel, and the rounding of the pixels' sizes to 1/1024 of an image pixel.
        EXPECT_NEAR(shown, energy * scale * scale, lit * (0.5 + 60000.0 * 4.0 / 1024.0 * scale * scale));
    }
}

TEST(AreaAverage, AtObliqueAnglesAFlatImageStaysFlatUpToItsRim) {
    for (unsigned seed = 0; seed < 30; ++seed) {
        SCOPED_TRACE(seed);
        Oblique scene = randomOblique(seed, 1, seed % 2 == 0, seed % 4 < 2);
        scene.source.values.assign(scene.source.values.size(), 54321);
        const auto& coverage = scene.reduction.coverage;
        const Marks covers = onSource(scene.source.width, scene.source.height, coverage);
        const std::vector<unsigned> values = averaged<std::uint16_t, 1>(scene.source, coverage);
        Marks counts = covers;
        if (!scene.source.takesPart.empty()) {
            Source parts = scene.source;
            parts.values.assign(parts.takesPart.begin(), parts.takesPart.end());
            counts = touched(Pixels<std::uint8_t, 1>(parts).grid(), coverage);
        }
        for (std::size_t i = 0; i < values.size(); ++i) {
            EXPECT_LE(counts[i], covers[i]);
            ASSERT_EQ(values[i], counts[i] != 0 ? 54321U : 0U) << i;
        }
    }
}

TEST(AreaAverage, AllChannelsAreAveragedAlike) {
    const Oblique scene = randomOblique(3, 255, true, false);
    EXPECT_EQ((averaged<std::uint8_t, 4>(scene.source, scene.reduction.coverage)),
              (averaged<std::uint16_t, 1>(scene.source, scene.reduction.coverage)));
    EXPECT_EQ((averaged<std::uint16_t, 4>(scene.source, scene.reduction.coverage)),
              (averaged<std::uint8_t, 1>(scene.source, scene.reduction.coverage)));
}

TEST(AreaAverage, EveryMarkTouchesAPixelAtEveryAngle) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        Oblique scene = randomOblique(seed, 1, false, true);
        scene.source.values.assign(scene.source.values.size(), 0);
        Random random(seed);
        const int x = random.whole(0, scene.source.width - 1);
        const int y = random.whole(0, scene.source.height - 1);
        scene.source.values[scene.source.index(x, y)] = 1;
        const auto& coverage = std::get<ObliqueCoverage>(scene.reduction.coverage);
        const Marks marks = touched(Pixels<std::uint8_t, 1>(scene.source).grid(), coverage);
        int count = 0;
        const auto& [a, b, c, d, e, f] = coverage.toSource;
        const double reach = (std::hypot(a, b) + std::hypot(c, d)) / 2.0 + 0.8;
        for (int row = 0; row < coverage.height; ++row) {
            for (int column = 0; column < coverage.width; ++column) {
                if (marks[static_cast<std::size_t>(row * coverage.width + column)] == 0) continue;
                ++count;
                const double middleX = coverage.left + column + 0.5;
                const double middleY = coverage.top + row + 0.5;
                EXPECT_NEAR(a * middleX + c * middleY + e, x + 0.5, reach);
                EXPECT_NEAR(b * middleX + d * middleY + f, y + 0.5, reach);
            }
        }
        EXPECT_GE(count, 1);
        EXPECT_LE(count, 9);
    }
}

TEST(AreaAverage, MarksInUprightCellsTouchThoseThatCoverAPartOfThem) {
    Source marks{4, 1, {0, 1, 0, 0}, {}};
    const AxisCoverage cells{{{0, 1025, 2047, 2048, 4096}}, wholePixels(1)};
    EXPECT_EQ(touched(Pixels<std::uint8_t, 1>(marks).grid(), cells), (Marks{1, 1, 1, 0}));
}

TEST(AreaAverage, OneDisplayPixelMayCoverALargeImageAtAnyAngle) {
    Source source{400, 300, std::vector<unsigned>(120000, 65535), {}};
    for (const double degrees : {0.0, 30.0, 90.0, 200.0}) {
        const Reduction reduction = reductionOf(turned(degrees, 0.001, 0.001, false, 2.5, 2.5), {400, 300}, {5, 5});
        const std::vector<unsigned> values = averaged<std::uint16_t, 1>(source, reduction.coverage);
        EXPECT_FALSE(values.empty());
        for (const unsigned value : values) EXPECT_TRUE(value == 65535U || value == 0U) << value;
        EXPECT_NE(std::count(values.begin(), values.end(), 65535U), 0);
    }
}

}  // namespace
