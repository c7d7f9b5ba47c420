// Every row of the table of fillers against its plain twin, span by span.
#include "zolcs/resample/fillers.h"

#include "support/test_data.h"
#include "support/variants.h"
#include "zolcs/ccsbicubic.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <string>
#include <vector>

namespace {

using zolcs::ColumnRange;
using zolcs::Stepping;
using zolcs::StopFlag;
using zoltest::Random;

/// Upright, turned by a quarter or turned by any angle; mirrored or not, and with other zooms both ways.
Stepping anyStepping(Random& random, int sourceWidth, int sourceHeight) {
    const int kind = random.integer(0, 2);
    const double angle = kind == 2 ? random.real(0.0, 2.0 * std::numbers::pi) : 0.0;
    const auto zoom = [&] { return std::pow(2.0, random.real(-3.0, 2.0)) * (random.chance(0.3) ? -1.0 : 1.0); };
    const double alongX = zoom();
    const double alongY = zoom();
    zolcs::DisplayToImage m{alongX * std::cos(angle),
                            alongX * std::sin(angle),
                            -alongY * std::sin(angle),
                            alongY * std::cos(angle),
                            0.0,
                            0.0};
    if (kind == 1) m = {0.0, alongX, alongY, 0.0, 0.0, 0.0};
    const int width = random.integer(1, 90);
    const int height = random.integer(1, 12);
    // Some display pixel shows some source pixel.
    m[4] = random.real(0.0, sourceWidth) - m[0] * random.integer(0, width) - m[2] * random.integer(0, height);
    m[5] = random.real(0.0, sourceHeight) - m[1] * random.integer(0, width) - m[3] * random.integer(0, height);
    return zolcs::makeStepping(m, sourceWidth, sourceHeight, width, height);
}

/// The spans of a view as a filler shows them, in pieces that follow from `seed`.
template <typename Pixel>
std::vector<Pixel> shownBy(zolcs::SpanFiller<Pixel>& filler, const Stepping& stepping, std::uint64_t seed) {
    Random cut(seed);
    std::vector<Pixel> shown;
    filler.beginView(stepping);
    for (int y = 0; y < stepping.height; ++y) {
        const ColumnRange columns = stepping.span(y);
        if (columns.empty()) continue;
        filler.beginColumns(columns);
        for (int begin = columns.begin; begin < columns.end;) {
            const int end = cut.chance(0.5) ? columns.end : cut.integer(begin + 1, columns.end);
            std::vector<Pixel> piece(static_cast<std::size_t>(end - begin));
            EXPECT_TRUE(filler.fill(stepping.row(y), {begin, end}, piece.data()));
            shown.insert(shown.end(), piece.begin(), piece.end());
            begin = end;
        }
    }
    return shown;
}

/// Random sources and views, with every variant. `makeKernel(source, stepping)` gives the kernel of a view. `names` are
/// those of the rows, all of which must have been used.
template <typename Sample, typename Convert, typename MakeKernel>
void expectAllRowsEqualThePlainOne(const std::vector<std::string>& names, std::uint64_t seed, const Convert& convert,
                                   const MakeKernel& makeKernel) {
    using Kernel = std::invoke_result_t<MakeKernel, zolcs::ImageView<const Sample>, const Stepping&>;
    const auto& rows = zolcs::Fillers<Kernel, Convert>::rows;
    ASSERT_EQ(rows.size(), names.size());
    std::vector<int> used(rows.size());
    Random random(seed);
    zoltest::forEachVariant([&](const std::string& variant) {
        for (int round = 0; round < 120; ++round) {
            const int width = random.integer(1, 70);
            const int height = random.integer(1, 50);
            const int pitch = width + random.integer(0, 5);
            std::vector<Sample> pixels(static_cast<std::size_t>(pitch * height));
            const bool extremes = random.chance(0.3);
            for (Sample& pixel : pixels) {
                pixel = static_cast<Sample>(extremes && random.chance(0.5) ? 0 : random.bits());
            }
            const Stepping stepping = anyStepping(random, width, height);
            const Kernel kernel = makeKernel(zolcs::ImageView<const Sample>(pixels.data(), pitch), stepping);
            // As the display is walked.
            const bool turned = stepping.isQuarterTurn() && !stepping.isUpright() && variant != "plain";
            const Stepping walked = turned ? stepping.transposed() : stepping;
            const std::uint64_t cuts = random.bits();
            const auto expected = shownBy(*rows.back().make(kernel, convert, StopFlag()), walked, cuts);
            for (std::size_t i = 0; i < rows.size(); ++i) {
                EXPECT_EQ(rows[i].name, names[i]);
                if (!rows[i].isUsableFor(kernel, stepping)) continue;
                EXPECT_TRUE(variant != "plain" || i + 1 == rows.size());
                ++used[i];
                const auto shown = shownBy(*rows[i].make(kernel, convert, StopFlag()), walked, cuts);
                ASSERT_TRUE(shown == expected) << names[i] << " round " << round << " seed " << random.seed();
            }
        }
    });
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const bool isMissing = names[i] == "oblique" && zolcs::ObliqueOperations::chosen() == nullptr;
        EXPECT_TRUE(isMissing ? used[i] == 0 : used[i] > 20) << names[i];
    }
}

template <typename Sample, typename Convert>
void expectNearestRowsEqual(std::uint64_t seed, const Convert& convert) {
    expectAllRowsEqualThePlainOne<Sample>({"nearest", "plain"}, seed, convert,
                                          [](const zolcs::ImageView<const Sample>& source, const Stepping&) {
                                              return zolcs::NearestKernel<Sample>{source};
                                          });
}

std::vector<unsigned char> bytes(std::size_t count) {
    Random random(count);
    std::vector<unsigned char> table(count);
    for (unsigned char& entry : table) entry = static_cast<unsigned char>(random.bits());
    return table;
}

std::vector<std::uint32_t> greyTableEntries() {
    Random random(1);
    std::vector<std::uint32_t> table(65536);
    for (std::uint32_t& entry : table) entry = static_cast<std::uint32_t>(random.bits());
    return table;
}

TEST(Fillers, NearestEqualsThePlainLoop) {
    const std::vector<std::uint32_t> grey = greyTableEntries();
    const std::vector<unsigned char> byte = bytes(256);
    const std::vector<unsigned char> channel = bytes(4096);
    expectNearestRowsEqual<std::uint8_t>(1, zolcs::Copy<std::uint8_t>());
    expectNearestRowsEqual<std::uint16_t>(2, zolcs::Copy<std::uint16_t>());
    expectNearestRowsEqual<std::uint32_t>(3, zolcs::Copy<std::uint32_t>());
    expectNearestRowsEqual<std::uint64_t>(4, zolcs::Copy<std::uint64_t>());
    expectNearestRowsEqual<std::uint8_t>(5, zolcs::ByteTable{byte.data()});
    expectNearestRowsEqual<std::uint16_t>(6, zolcs::GreyTable{grey.data()});
    expectNearestRowsEqual<std::uint32_t>(7, zolcs::ColourTables(byte.data(), channel.data(), channel.data() + 256));
    expectNearestRowsEqual<std::uint32_t>(8, zolcs::ReversedRgb24());
    expectNearestRowsEqual<std::uint64_t>(9, zolcs::Colour12Table{channel.data()});
}

/// Both ways that grey goes.
template <typename MakeKernel>
void expectGreyRowsEqual(const std::vector<std::string>& names, std::uint64_t seed, const MakeKernel& makeKernel) {
    const std::vector<std::uint32_t> grey = greyTableEntries();
    expectAllRowsEqualThePlainOne<std::uint16_t>(names, seed, zolcs::Copy<std::uint16_t>(), makeKernel);
    expectAllRowsEqualThePlainOne<std::uint16_t>(names, seed + 1, zolcs::GreyTable{grey.data()}, makeKernel);
}

template <typename MakeKernel>
void expectColourRowsEqual(const std::vector<std::string>& names, std::uint64_t seed, const MakeKernel& makeKernel) {
    const std::vector<unsigned char> table = bytes(256);
    expectAllRowsEqualThePlainOne<std::uint32_t>(names, seed, zolcs::Copy<std::uint32_t>(), makeKernel);
    expectAllRowsEqualThePlainOne<std::uint32_t>(
        names, seed + 1, zolcs::ColourTables(table.data(), table.data(), table.data()), makeKernel);
}

const std::vector<std::string> greyRows{"upright, 12 bits", "upright, 16 bits", "oblique", "plain"};
const std::vector<std::string> colourRows{"upright", "oblique", "plain"};

TEST(Fillers, BilinearEqualsThePlainLoop) {
    using Grey = zolcs::ImageView<const std::uint16_t>;
    expectGreyRowsEqual(greyRows, 10, [](const Grey& source, const Stepping& stepping) {
        // Either depth, by a bit of the view that nothing else depends on.
        const bool twelveBits = stepping.width % 2 == 0;
        return zolcs::BilinearGrey({source, stepping}, twelveBits ? 0x0FFF : 0xFFFF,
                                   twelveBits && stepping.height % 2 == 0 ? 0xF000 : 0);
    });
    expectGreyRowsEqual({"plain"}, 20, [](const Grey& source, const Stepping& stepping) {
        return zolcs::BilinearPackedGrey({source, stepping});
    });
    expectColourRowsEqual(colourRows, 30,
                          [](const zolcs::ImageView<const std::uint32_t>& source, const Stepping& stepping) {
                              return zolcs::BilinearRgb({source, stepping});
                          });
}

TEST(Fillers, BicubicEqualsThePlainLoop) {
    const CCsBicubic buildsTheWeights;
    expectGreyRowsEqual(
        greyRows, 40, [](const zolcs::ImageView<const std::uint16_t>& source, const Stepping& stepping) {
            const bool twelveBits = stepping.width % 2 == 0;
            return zolcs::CubicGrey({source, stepping, zolcs::fineCubicWeights()}, twelveBits ? 0x0FFF : 0xFFFF,
                                    twelveBits && stepping.height % 2 == 0 ? 0xF000 : 0);
        });
    expectColourRowsEqual(colourRows, 50,
                          [](const zolcs::ImageView<const std::uint32_t>& source, const Stepping& stepping) {
                              return zolcs::CubicRgb({source, stepping, zolcs::coarseCubicWeights()});
                          });
}

/// What the rows say about themselves where it matters most.
TEST(Fillers, RowsTellWhenTheyAreUsable) {
    const std::vector<std::uint16_t> pixels(40000);
    const zolcs::ImageView<const std::uint16_t> source(pixels.data(), 0);
    const auto isUsable = [&](std::size_t row, int width, const zolcs::DisplayToImage& matrix) {
        const Stepping stepping = zolcs::makeStepping(matrix, width, 8, 20, 20);
        const zolcs::BilinearGrey kernel({source, stepping}, 0x0FFF, 0);
        return zolcs::Fillers<zolcs::BilinearGrey, zolcs::Copy<std::uint16_t>>::rows[row].isUsableFor(kernel, stepping);
    };
    const zolcs::DisplayToImage upright{1, 0, 0, 1, 0, 0};
    const zolcs::DisplayToImage quarterTurn{0, 1, 1, 0, 0, 0};
    const zolcs::DisplayToImage oblique{0.8, 0.6, -0.6, 0.8, 0, 0};
    zoltest::forEachVariant([&](const std::string& variant) {
        const bool isPlain = variant == "plain";
        EXPECT_EQ(isUsable(0, 4, upright), !isPlain);
        EXPECT_EQ(isUsable(0, 4, quarterTurn), !isPlain);
        EXPECT_FALSE(isUsable(0, 3, upright));
        EXPECT_FALSE(isUsable(0, 4, oblique));
        EXPECT_FALSE(isUsable(1, 4, upright));
        const bool hasOblique = zolcs::ObliqueOperations::chosen() != nullptr;
        EXPECT_FALSE(isPlain && hasOblique);
        EXPECT_EQ(isUsable(2, 32768, oblique), hasOblique);
        EXPECT_FALSE(isUsable(2, 32769, oblique));
        EXPECT_TRUE(isUsable(3, 32769, oblique));
    });
}

}  // namespace
