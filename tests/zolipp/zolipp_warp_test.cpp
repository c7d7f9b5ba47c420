#include <array>
#include <cmath>
#include <limits>

#include "zolipp/zolipp_images.h"

namespace {

using zoltest::Random;
using zoltest::randomImage;
using zoltest::Shown;

/// As the primitives take it: rows of three.
struct Coefficients {
    double rows[2][3];
};

constexpr Coefficients identity{{{1, 0, 0}, {0, 1, 0}}};

struct View {
    IppiRect region;
    IppiRect target;
    Coefficients coefficients;
    int interpolation;
};

template <typename Primitives, typename Image>
IppStatus warp(const Image& source, Image& target, const View& view) {
    return Primitives::warpAffine(source.data(), source.size(), source.step(), view.region, target.data(),
                                  target.step(), view.target, view.coefficients.rows, view.interpolation);
}

/// A turn by an angle about the middles of both images, scaled.
Coefficients turned(double degrees, double factor, IppiSize source, IppiSize target) {
    const double angle = degrees * 3.14159265358979323846 / 180.0;
    const double c = std::cos(angle) * factor;
    const double s = std::sin(angle) * factor;
    const double x = source.width / 2.0;
    const double y = source.height / 2.0;
    return {{{c, -s, target.width / 2.0 - c * x + s * y}, {s, c, target.height / 2.0 - s * x - c * y}}};
}

/// The source point that comes to a destination point.
std::array<double, 2> sourcePoint(const Coefficients& coefficients, double x, double y) {
    const auto& [cx, cy] = coefficients.rows;
    const double determinant = cx[0] * cy[1] - cx[1] * cy[0];
    const double dx = x - cx[2];
    const double dy = y - cy[2];
    return {(cy[1] * dx - cx[1] * dy) / determinant, (cx[0] * dy - cy[0] * dx) / determinant};
}

bool isNearWhole(double number) { return std::fabs(number - std::round(number)) < 1e-9; }

/// Where a point falls within rounding of an edge between pixels, nearest neighbour and the region's end may take
/// either side.
Shown shownAt(const View& view, int x, int y) {
    if (!zolref::isInside(view.target, x + 0.5, y + 0.5)) return {Shown::Kind::Nothing, 0.0, 0.0};
    const auto [u, v] = sourcePoint(view.coefficients, x + 0.5, y + 0.5);
    if (isNearWhole(u) || isNearWhole(v)) return {Shown::Kind::WithinRounding, u, v};
    return {zolref::isInside(view.region, u, v) ? Shown::Kind::Point : Shown::Kind::Nothing, u, v};
}

template <typename Primitives>
class WarpAffine : public ::testing::Test {
protected:
    using Image = typename Primitives::Image;

    /// Draws in every variant over the same bytes.
    static Image draw(const Image& source, const Image& before, const View& view, IppStatus& status) {
        return zoltest::sameInEveryVariant([&] {
            Image target = before;
            status = warp<Primitives>(source, target, view);
            return target;
        });
    }

    static Image draw(const Image& source, const Image& before, const View& view) {
        IppStatus status = ippStsNoErr;
        Image drawn = draw(source, before, view, status);
        EXPECT_EQ(status, ippStsNoErr);
        return drawn;
    }
};
TYPED_TEST_SUITE(WarpAffine, zoltest::AllFormats);

TYPED_TEST(WarpAffine, CopiesWithTheIdentity) {
    Random random(501);
    for (const auto& [width, height] : {std::pair{2, 2}, {2, 9}, {7, 5}, {75, 33}, {600, 3}}) {
        const auto source = randomImage<TypeParam>(random, width, height);
        for (const int interpolation : zoltest::allInterpolations) {
            const auto before = randomImage<TypeParam>(random, width, height);
            const auto drawn = this->draw(source, before, {source.whole(), before.whole(), identity, interpolation});
            zoltest::expectCopied<TypeParam>(source, before, drawn);
        }
    }
}

TYPED_TEST(WarpAffine, ShowsWhatTheDefinitionSays) {
    Random random(502);
    for (int round = 0; round < 120; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const auto source =
            randomImage<TypeParam>(random, random.integer(2, 40), random.integer(2, 24), random.integer(0, 9),
                                   static_cast<std::size_t>(random.integer(0, 5)));
        const auto before =
            randomImage<TypeParam>(random, random.integer(1, 90), random.integer(1, 30), random.integer(0, 9),
                                   static_cast<std::size_t>(random.integer(0, 5)));
        Coefficients coefficients =
            turned(random.real(-180.0, 180.0), random.real(0.2, 4.0), source.size(), before.size());
        if (random.chance(0.3)) {
            for (double& c : coefficients.rows[0]) c = -c;
            coefficients.rows[0][2] += before.width();
        }
        if (random.chance(0.3)) coefficients.rows[1][1] *= random.real(0.3, 3.0);
        View view{source.whole(), before.whole(), coefficients, zoltest::allInterpolations[random.integer(0, 2)]};
        if (random.chance(0.4)) {
            view.region.x = random.integer(0, source.width() - 2);
            view.region.y = random.integer(0, source.height() - 2);
            view.region.width = random.integer(2, source.width() - view.region.x);
            view.region.height = random.integer(2, source.height() - view.region.y);
        }
        if (random.chance(0.4)) {
            view.target.x = random.integer(0, before.width() - 1);
            view.target.y = random.integer(0, before.height() - 1);
            view.target.width = random.integer(1, before.width() - view.target.x);
            view.target.height = random.integer(1, before.height() - view.target.y);
        }
        IppStatus status = ippStsNoErr;
        const auto drawn = this->draw(source, before, view, status);
        ASSERT_TRUE(status == ippStsNoErr || status == ippStsWrongIntersectQuad) << status;
        if (status == ippStsWrongIntersectQuad) {
            ASSERT_TRUE(drawn == before);
        }
        zoltest::expectDefined<TypeParam>(source, before, drawn, view.interpolation,
                                          [&](int x, int y) { return shownAt(view, x, y); });
        if (this->HasFatalFailure() || this->HasNonfatalFailure()) return;
    }
}

// Long rows, so that whole blocks of positions are met, and every remainder.
TYPED_TEST(WarpAffine, VariantsAgreeOnEveryWidth) {
    Random random(503);
    const auto source = randomImage<TypeParam>(random, 300, 40);
    for (int width = 1; width <= 600; width += width < 40 ? 1 : 47) {
        for (const int interpolation : zoltest::allInterpolations) {
            const auto before = randomImage<TypeParam>(random, width, 3, width % 3);
            this->draw(source, before,
                       {source.whole(), before.whole(), turned(4.0, 1.3, source.size(), before.size()), interpolation});
        }
    }
}

// Coordinates that are exact make a warp and the other primitives agree to the bit.
TYPED_TEST(WarpAffine, AgreesWithMirrorAndResize) {
    Random random(504);
    const auto source = randomImage<TypeParam>(random, 22, 15);
    auto mirrored = source;
    ASSERT_EQ(TypeParam::mirror(mirrored.data(), mirrored.step(), mirrored.size(), ippAxsBoth), ippStsNoErr);
    for (const int interpolation : zoltest::allInterpolations) {
        const Coefficients halfTurn{{{-1, 0, 22}, {0, -1, 15}}};
        EXPECT_TRUE(this->draw(source, source, {source.whole(), source.whole(), halfTurn, interpolation}) == mirrored);
        const auto before = randomImage<TypeParam>(random, 50, 40);
        auto resized = before;
        ASSERT_EQ(TypeParam::resizeCenter(source.data(), source.size(), source.step(), source.whole(), resized.data(),
                                          resized.step(), resized.size(), 2.0, 4.0, 9.25, 7.5, interpolation),
                  ippStsNoErr);
        const Coefficients scale{{{2, 0, 25 - 2 * 9.25}, {0, 4, 20 - 4 * 7.5}}};
        EXPECT_TRUE(this->draw(source, before, {source.whole(), before.whole(), scale, interpolation}) == resized);
    }
}

TEST(WarpAffineGeometry, AnExchangeOfTheAxesTransposes) {
    Random random(505);
    zoltest::GreyImage source(22, 15, 1);
    source.fillRandom(random);
    zoltest::GreyImage transposed(15, 22, 1);
    ASSERT_EQ(
        ZOLippiTranspose_16u_C1R(source.data(), source.step(), transposed.data(), transposed.step(), source.size()),
        ippStsNoErr);
    for (const int interpolation : zoltest::allInterpolations) {
        zoltest::GreyImage target(15, 22, 1);
        ASSERT_EQ(warp<zoltest::Grey16Primitives>(
                      source, target, {source.whole(), target.whole(), {{{0, 1, 0}, {1, 0, 0}}}, interpolation}),
                  ippStsNoErr);
        EXPECT_TRUE(target == transposed);
    }
}

TYPED_TEST(WarpAffine, LeavesAFlatImageFlat) {
    using Sample = typename TypeParam::Sample;
    for (const int value : {0, 1, 100, int{std::numeric_limits<Sample>::max()}}) {
        const auto source = zoltest::flatImage<TypeParam>(29, 23, value);
        const auto before = zoltest::flatImage<TypeParam>(61, 47, value);
        for (const int interpolation : zoltest::allInterpolations) {
            for (const double degrees : {0.0, 17.0, 45.0, 133.0}) {
                EXPECT_TRUE(this->draw(source, before,
                                       {source.whole(), before.whole(),
                                        turned(degrees, 1.6, source.size(), before.size()), interpolation}) == before);
            }
        }
    }
}

// What lies left of or above the destination's first pixel is cut off; what is beyond the source's edges as well.
TYPED_TEST(WarpAffine, CutsRegionsToTheirImages) {
    Random random(506);
    const auto source = randomImage<TypeParam>(random, 12, 9);
    const auto before = randomImage<TypeParam>(random, 12, 9);
    for (const int interpolation : zoltest::allInterpolations) {
        const View whole{source.whole(), before.whole(), turned(20.0, 1.0, source.size(), before.size()),
                         interpolation};
        View beyond = whole;
        beyond.region = {-4, -5, 100, 200};
        beyond.target = {-7, -1000, 19, 1009};
        EXPECT_TRUE(this->draw(source, before, beyond) == this->draw(source, before, whole));
        beyond.region = {-0x7FFFFFFF, -0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF};
        beyond.region.x += 100;
        beyond.region.y += 100;
        EXPECT_TRUE(this->draw(source, before, beyond) == this->draw(source, before, whole));
    }
}

TYPED_TEST(WarpAffine, CopesWithExtremeCoefficients) {
    Random random(507);
    const auto source = randomImage<TypeParam>(random, 6, 4);
    const auto before = randomImage<TypeParam>(random, 9, 5);
    const double numbers[] = {0.0, 1.0, -1.0, 1e-9, 1e9, -1e15, 1e-99, 1e99, -1e101, 1e-101, 1e300, -1.7e308, 5e-324};
    for (int round = 0; round < 1500; ++round) {
        Coefficients coefficients{};
        for (auto& row : coefficients.rows) {
            for (double& c : row) c = numbers[random.integer(0, static_cast<int>(std::size(numbers)) - 1)];
        }
        const View view{source.whole(), before.whole(), coefficients, zoltest::allInterpolations[round % 3]};
        IppStatus status = ippStsNoErr;
        const auto drawn = this->draw(source, before, view, status);
        ASSERT_TRUE(status == ippStsNoErr || status == ippStsCoeffErr || status == ippStsWrongIntersectQuad) << status;
        if (status != ippStsNoErr) {
            ASSERT_TRUE(drawn == before);
        }
    }
}

TYPED_TEST(WarpAffine, TellsWhatIsWrong) {
    Random random(508);
    auto source = randomImage<TypeParam>(random, 6, 4);
    auto target = randomImage<TypeParam>(random, 9, 5);
    const auto before = target;
    using Sample = typename TypeParam::Sample;
    struct Call {
        const Sample* pSrc;
        IppiSize srcSize;
        int srcStep;
        IppiRect srcRoi;
        Sample* pDst;
        int dstStep;
        IppiRect dstRoi;
        Coefficients coefficients;
        bool noCoefficients;
        int interpolation;
    };
    const Call valid{source.data(), source.size(),  source.step(), source.whole(), target.data(),
                     target.step(), target.whole(), identity,      false,          IPPI_INTER_LINEAR};
    auto refusals = zoltest::joined<Call>(
        {zoltest::missing("source", &Call::pSrc),
         zoltest::missing("destination", &Call::pDst),
         {{"no coefficients", ippStsNullPtrErr, [](Call& c) { c.noCoefficients = true; }}},
         zoltest::withoutPixels("source", &Call::srcSize),
         zoltest::withoutPixels("region", &Call::srcRoi),
         zoltest::withoutPixels("destination", &Call::dstRoi),
         zoltest::wrongSteps("source", &Call::srcStep),
         zoltest::wrongSteps("destination", &Call::dstStep),
         {{"destination's right edge beyond the step", ippStsStepErr, [](Call& c) { ++c.dstRoi.x; }},
          {"destination's right edge beyond any step", ippStsStepErr, [](Call& c) { c.dstRoi.x = 0x7FFFFFFF; }},
          {"destination left of the image, without a step", ippStsStepErr,
           [](Call& c) {
               c.dstRoi.x = -100;
               c.dstStep = 0;
           }}},
         zoltest::unknownInterpolations(&Call::interpolation)});
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double bad : {infinity, -infinity, std::nan("")}) {
        for (int i = 0; i < 6; ++i) {
            refusals.push_back({"coefficient " + std::to_string(i), ippStsCoeffErr,
                                [=](Call& c) { c.coefficients.rows[i / 3][i % 3] = bad; }});
        }
    }
    for (const Coefficients& singular : {Coefficients{{{0, 0, 3}, {0, 0, 4}}},
                                         {{{1, 2, 0}, {2, 4, 0}}},
                                         {{{1, 0, 0}, {0, 0, 0}}},
                                         {{{1e-200, 0, 0}, {0, 1e-200, 0}}},
                                         {{{1e-101, 0, 0}, {0, 1, 0}}},
                                         {{{1e200, 0, 0}, {0, 1e200, 0}}}}) {
        refusals.push_back({"singular", ippStsCoeffErr, [=](Call& c) { c.coefficients = singular; }});
    }
    for (const IppiRect outside : {IppiRect{6, 0, 3, 3}, {0, 4, 3, 3}, {-3, 0, 3, 3}, {0, -3, 3, 3}, {6, 0, 1, 1}}) {
        refusals.push_back({"region outside", ippStsWrongIntersectROI, [=](Call& c) { c.srcRoi = outside; }});
    }
    const auto run = [](const Call& c) {
        return TypeParam::warpAffine(c.pSrc, c.srcSize, c.srcStep, c.srcRoi, c.pDst, c.dstStep, c.dstRoi,
                                     c.noCoefficients ? nullptr : c.coefficients.rows, c.interpolation);
    };
    zoltest::expectRefusals(valid, refusals, run);
    // These change what the ones before them need, so they have a list of their own.
    const Coefficients away{{{1, 0, 9}, {0, 1, 0}}};
    zoltest::expectRefusals(
        valid,
        {{"destination left of the image", ippStsWrongIntersectROI, [](Call& c) { c.dstRoi.x = -9; }},
         {"destination above the image", ippStsWrongIntersectROI, [](Call& c) { c.dstRoi.y = -5; }},
         {"one column", ippStsRectErr, [](Call& c) { c.srcRoi.width = 1; }},
         {"one row", ippStsRectErr, [](Call& c) { c.srcRoi.height = 1; }},
         {"one column of a larger region", ippStsRectErr, [](Call& c) { c.srcRoi.x = 5; }},
         {"a source of one row", ippStsRectErr, [](Call& c) { c.srcSize.height = 1; }},
         {"shown beside the destination", ippStsWrongIntersectQuad, [=](Call& c) { c.coefficients = away; }}},
        run);
    EXPECT_TRUE(target == before);
}

void expectBound(IppiRect region, const Coefficients& coefficients, const std::array<double, 4>& expected) {
    double bound[2][2] = {{-1, -1}, {-1, -1}};
    ASSERT_EQ(ZOLippiGetAffineBound(region, bound, coefficients.rows), ippStsNoErr);
    EXPECT_EQ(bound[0][0], expected[0]);
    EXPECT_EQ(bound[0][1], expected[1]);
    EXPECT_EQ(bound[1][0], expected[2]);
    EXPECT_EQ(bound[1][1], expected[3]);
}

TEST(GetAffineBound, SurroundsTheEdges) {
    const IppiRect region{3, -2, 10, 6};
    expectBound(region, identity, {3, -2, 13, 4});
    expectBound(region, {{{2, 0, 5}, {0, 0.5, 1}}}, {11, 0, 31, 3});
    expectBound(region, {{{-1, 0, 0}, {0, -1, 0}}}, {-13, -4, -3, 2});
    expectBound(region, {{{0, 1, 0}, {1, 0, 0}}}, {-2, 3, 4, 13});
    expectBound(region, {{{0, -1, 0}, {1, 0, 0}}}, {-4, 3, 2, 13});
    expectBound({0, 0, 4, 2}, {{{1, 1, 0}, {-1, 1, 0}}}, {0, -4, 6, 2});
    expectBound({0x7FFFFFFF, 0, 0x7FFFFFFF, 2}, identity, {2147483647.0, 0, 4294967294.0, 2});
}

// Every pixel that a warp draws lies within the bound.
TEST(GetAffineBound, HoldsEveryDrawnPixel) {
    Random random(509);
    zoltest::GreyImage source(17, 11, 1);
    for (int round = 0; round < 100; ++round) {
        zoltest::GreyImage target(60, 60, 1);
        for (int y = 0; y < 60; ++y) {
            for (int x = 0; x < 60; ++x) target.set(x, y, 1);
        }
        const Coefficients coefficients =
            turned(random.real(0.0, 360.0), random.real(0.5, 3.0), source.size(), target.size());
        for (int y = 0; y < 11; ++y) {
            for (int x = 0; x < 17; ++x) source.set(x, y, 500);
        }
        ASSERT_EQ(warp<zoltest::Grey16Primitives>(source, target,
                                                  {source.whole(), target.whole(), coefficients, IPPI_INTER_NN}),
                  ippStsNoErr);
        double bound[2][2];
        ASSERT_EQ(ZOLippiGetAffineBound(source.whole(), bound, coefficients.rows), ippStsNoErr);
        for (int y = 0; y < 60; ++y) {
            for (int x = 0; x < 60; ++x) {
                if (target.at(x, y) == 1) continue;
                ASSERT_TRUE(x + 0.5 >= bound[0][0] && x + 0.5 <= bound[1][0] && y + 0.5 >= bound[0][1] &&
                            y + 0.5 <= bound[1][1])
                    << x << ", " << y;
            }
        }
    }
}

TEST(GetAffineBound, TellsWhatIsWrong) {
    double bound[2][2] = {{9, 9}, {9, 9}};
    struct Call {
        IppiRect region;
        bool noBound;
        Coefficients coefficients;
        bool noCoefficients;
    };
    const auto refusals = zoltest::joined<Call>(
        {{{"no bound", ippStsNullPtrErr, [](Call& c) { c.noBound = true; }},
          {"no coefficients", ippStsNullPtrErr, [](Call& c) { c.noCoefficients = true; }}},
         zoltest::withoutPixels("region", &Call::region),
         {{"not finite", ippStsCoeffErr, [](Call& c) { c.coefficients.rows[1][2] = std::nan(""); }},
          {"singular", ippStsCoeffErr,
           [](Call& c) {
               c.coefficients = {{{1, 2, 3}, {2, 4, 5}}};
           }},
          {"one column", ippStsRectErr, [](Call& c) { c.region.width = 1; }},
          {"one row", ippStsRectErr, [](Call& c) { c.region.height = 1; }}}});
    zoltest::expectRefusals(Call{{0, 0, 5, 5}, false, identity, false}, refusals, [&](const Call& c) {
        return ZOLippiGetAffineBound(c.region, c.noBound ? nullptr : bound,
                                     c.noCoefficients ? nullptr : c.coefficients.rows);
    });
    for (const auto& row : bound) {
        for (const double number : row) EXPECT_EQ(number, 9);
    }
}

TEST(Variants, UnknownNamesAreRefused) {
    EXPECT_FALSE(zolipp::RowOperations::choose("no such variant"));
    EXPECT_TRUE(zolipp::RowOperations::choose(""));
    EXPECT_GE(zolipp::RowOperations::variants().size(), 2U);
}

}  // namespace
