#include <cmath>
#include <limits>

#include "zolipp/zolipp_images.h"

namespace {

using zoltest::GreyImage;
using zoltest::Random;
using zoltest::randomImage;
using zoltest::Shown;

/// Everything of a call but the images.
struct View {
    IppiRect region;
    double xFactor;
    double yFactor;
    double xCenter;
    double yCenter;
    int interpolation;
};

template <typename Primitives, typename Image>
IppStatus resize(const Image& source, Image& target, const View& view) {
    return Primitives::resizeCenter(source.data(), source.size(), source.step(), view.region, target.data(),
                                    target.step(), target.size(), view.xFactor, view.yFactor, view.xCenter,
                                    view.yCenter, view.interpolation);
}

/// The view in which the source lies pixel on pixel in the middle of a destination of the same size.
View copyOf(IppiSize size, int interpolation) {
    return {{0, 0, size.width, size.height},      1.0,          1.0, static_cast<double>(size.width / 2),
            static_cast<double>(size.height / 2), interpolation};
}

template <typename Primitives>
class ResizeCenter : public ::testing::Test {
protected:
    using Image = typename Primitives::Image;

    /// Draws in every variant over the same random bytes.
    static void expectDrawn(const Image& source, const Image& before, const View& view) {
        const Image drawn = zoltest::sameInEveryVariant([&] {
            Image target = before;
            EXPECT_EQ(resize<Primitives>(source, target, view), ippStsNoErr);
            return target;
        });
        zoltest::expectDefined<Primitives>(source, before, drawn, view.interpolation, [&](int x, int y) {
            const double u = view.xCenter + (x + 0.5 - drawn.width() / 2) / view.xFactor;
            const double v = view.yCenter + (y + 0.5 - drawn.height() / 2) / view.yFactor;
            const bool inside = zolref::isInside(view.region, u, v);
            return Shown{inside ? Shown::Kind::Point : Shown::Kind::Nothing, u, v};
        });
    }
};
TYPED_TEST_SUITE(ResizeCenter, zoltest::AllFormats);

TYPED_TEST(ResizeCenter, CopiesAtFactorOne) {
    Random random(101);
    for (const auto& [width, height] : {std::pair{1, 1}, {1, 9}, {9, 1}, {7, 5}, {40, 33}, {130, 3}}) {
        const auto source = randomImage<TypeParam>(random, width, height);
        for (const int interpolation : zoltest::allInterpolations) {
            const auto before = randomImage<TypeParam>(random, width, height);
            const auto drawn = zoltest::sameInEveryVariant([&] {
                auto target = before;
                EXPECT_EQ(resize<TypeParam>(source, target, copyOf(source.size(), interpolation)), ippStsNoErr);
                return target;
            });
            zoltest::expectCopied<TypeParam>(source, before, drawn);
        }
    }
}

TYPED_TEST(ResizeCenter, ShowsWhatTheDefinitionSays) {
    Random random(102);
    for (int round = 0; round < 120; ++round) {
        const auto source =
            randomImage<TypeParam>(random, random.integer(1, 40), random.integer(1, 24), random.integer(0, 9),
                                   static_cast<std::size_t>(random.integer(0, 5)));
        const auto before =
            randomImage<TypeParam>(random, random.integer(1, 90), random.integer(1, 30), random.integer(0, 9),
                                   static_cast<std::size_t>(random.integer(0, 5)));
        const double common = random.real(0.05, 4.0);
        const bool square = random.chance(0.5);
        const View view{random.chance(0.5)
                            ? source.whole()
                            : IppiRect{random.integer(0, source.width() - 1), random.integer(0, source.height() - 1),
                                       random.integer(1, 40), random.integer(1, 24)},
                        common,
                        square ? common : random.real(0.05, 4.0),
                        random.real(-5.0, source.width() + 5.0),
                        random.real(-5.0, source.height() + 5.0),
                        zoltest::allInterpolations[random.integer(0, 2)]};
        SCOPED_TRACE("round " + std::to_string(round));
        View cut = view;
        cut.region.width = std::min(view.region.width, source.width() - view.region.x);
        cut.region.height = std::min(view.region.height, source.height() - view.region.y);
        this->expectDrawn(source, before, cut);
        if (this->HasFatalFailure() || this->HasNonfatalFailure()) return;
        // A region that reaches beyond the source is the same region cut off.
        auto uncut = before;
        auto expected = before;
        ASSERT_EQ(resize<TypeParam>(source, uncut, view), ippStsNoErr);
        ASSERT_EQ(resize<TypeParam>(source, expected, cut), ippStsNoErr);
        ASSERT_TRUE(uncut == expected);
    }
}

// Widths around several vectors, so that every remainder is met.
TYPED_TEST(ResizeCenter, VariantsAgreeOnEveryWidth) {
    Random random(103);
    const auto source = randomImage<TypeParam>(random, 75, 4);
    for (int width = 1; width <= 75; ++width) {
        for (const double factor : {0.3, 1.0, 1.7}) {
            for (const int interpolation : zoltest::allInterpolations) {
                const auto before = randomImage<TypeParam>(random, width, 3, width % 5);
                zoltest::sameInEveryVariant([&] {
                    auto target = before;
                    EXPECT_EQ(
                        resize<TypeParam>(source, target, {source.whole(), factor, factor, 37.0, 2.0, interpolation}),
                        ippStsNoErr);
                    return target;
                });
            }
        }
    }
}

TYPED_TEST(ResizeCenter, LeavesAFlatImageFlat) {
    using zoltest::flatImage;
    using Sample = typename TypeParam::Sample;
    for (const int value : {0, 1, 100, int{std::numeric_limits<Sample>::max()}}) {
        const auto source = flatImage<TypeParam>(19, 13, value);
        // The fourth byte of the destination is not drawn by all.
        const auto flat = flatImage<TypeParam>(31, 17, value);
        for (const int interpolation : zoltest::allInterpolations) {
            for (const double factor : {0.37, 1.0, 2.9}) {
                const auto drawn = zoltest::sameInEveryVariant([&] {
                    auto target = flat;
                    EXPECT_EQ(
                        resize<TypeParam>(source, target, {source.whole(), factor, factor, 9.4, 6.6, interpolation}),
                        ippStsNoErr);
                    return target;
                });
                EXPECT_TRUE(drawn == flat);
            }
        }
    }
}

std::vector<int> resizedRow(const std::vector<int>& samples, int targetWidth, double factor, double center,
                            int interpolation) {
    const int width = static_cast<int>(samples.size());
    GreyImage source(width, 1, 1);
    for (int x = 0; x < width; ++x) source.set(x, 0, static_cast<Ipp16u>(samples[static_cast<std::size_t>(x)]));
    const GreyImage drawn = zoltest::sameInEveryVariant([&] {
        GreyImage target(targetWidth, 1, 1);
        for (int x = 0; x < targetWidth; ++x) target.set(x, 0, 7);
        EXPECT_EQ(resize<zoltest::Grey16Primitives>(source, target,
                                                    {source.whole(), factor, 1.0, center, 0.0, interpolation}),
                  ippStsNoErr);
        return target;
    });
    std::vector<int> row;
    for (int x = 0; x < targetWidth; ++x) row.push_back(drawn.at(x, 0));
    return row;
}

// Twice as large: the source's edges stay at the destination's, and nothing moves by half a pixel.
TEST(ResizeCenterGeometry, DoublesWithoutAShift) {
    const std::vector<int> source{1000, 2000, 3000, 4000};
    EXPECT_EQ(resizedRow(source, 8, 2.0, 2.0, IPPI_INTER_NN),
              (std::vector<int>{1000, 1000, 2000, 2000, 3000, 3000, 4000, 4000}));
    EXPECT_EQ(resizedRow(source, 8, 2.0, 2.0, IPPI_INTER_LINEAR),
              (std::vector<int>{1000, 1250, 1750, 2250, 2750, 3250, 3750, 4000}));
    EXPECT_EQ(resizedRow(source, 8, 2.0, 2.0, IPPI_INTER_CUBIC),
              (std::vector<int>{930, 1180, 1727, 2250, 2750, 3273, 3820, 4070}));
}

TEST(ResizeCenterGeometry, HalvesBetweenTwoPixels) {
    const std::vector<int> source{1000, 2000, 3000, 5000};
    EXPECT_EQ(resizedRow(source, 2, 0.5, 2.0, IPPI_INTER_NN), (std::vector<int>{2000, 5000}));
    EXPECT_EQ(resizedRow(source, 2, 0.5, 2.0, IPPI_INTER_LINEAR), (std::vector<int>{1500, 4000}));
}

// The middle of an odd destination is the whole number below its half.
TEST(ResizeCenterGeometry, PutsTheCentreOnTheIntegerHalf) {
    const std::vector<int> source{10, 20, 30, 40, 50, 60};
    EXPECT_EQ(resizedRow(source, 5, 1.0, 3.0, IPPI_INTER_NN), (std::vector<int>{20, 30, 40, 50, 60}));
    EXPECT_EQ(resizedRow(source, 4, 1.0, 3.0, IPPI_INTER_NN), (std::vector<int>{20, 30, 40, 50}));
    EXPECT_EQ(resizedRow(source, 1, 1.0, 3.0, IPPI_INTER_NN), (std::vector<int>{40}));
    EXPECT_EQ(resizedRow(source, 3, 1.0, 0.0, IPPI_INTER_NN), (std::vector<int>{7, 10, 20}));
    EXPECT_EQ(resizedRow(source, 3, 1.0, 6.0, IPPI_INTER_NN), (std::vector<int>{60, 7, 7}));
    EXPECT_EQ(resizedRow(source, 3, 1.0, 2.5, IPPI_INTER_LINEAR), (std::vector<int>{25, 35, 45}));
    EXPECT_EQ(resizedRow(source, 3, 1.0, 2.0, IPPI_INTER_LINEAR), (std::vector<int>{20, 30, 40}));
    EXPECT_EQ(resizedRow(source, 3, 1.0, 2.25, IPPI_INTER_LINEAR), (std::vector<int>{22, 32, 42}));
}

// Halves go to the even neighbour, in every variant.
TEST(ResizeCenterGeometry, RoundsHalvesToEven) {
    EXPECT_EQ(resizedRow({0, 1, 2, 5, 8, 15, 20}, 6, 1.0, 3.5, IPPI_INTER_LINEAR),
              (std::vector<int>{0, 2, 4, 6, 12, 18}));
}

TEST(ResizeCenterGeometry, CubicIsLimitedToTheType) {
    EXPECT_EQ(resizedRow({0, 0, 65535, 65535}, 8, 2.0, 2.0, IPPI_INTER_CUBIC),
              (std::vector<int>{0, 0, 0, 13312, 52223, 65535, 65535, 65535}));
}

TEST(ResizeCenterGeometry, OnePixelFillsWhatItCovers) {
    for (const int interpolation : zoltest::allInterpolations) {
        EXPECT_EQ(resizedRow({900}, 7, 3.0, 0.5, interpolation), (std::vector<int>{7, 900, 900, 900, 7, 7, 7}));
    }
}

// Pixels beside the region but inside the source still count as neighbours: a region cuts a picture, it does not change
// it.
TYPED_TEST(ResizeCenter, ARegionCutsThePicture) {
    Random random(104);
    const auto source = randomImage<TypeParam>(random, 24, 16);
    const IppiRect region{7, 5, 9, 6};
    for (const int interpolation : zoltest::allInterpolations) {
        const auto before = randomImage<TypeParam>(random, 48, 32);
        auto whole = before;
        auto part = before;
        View view{source.whole(), 2.0, 2.0, 12.0, 8.0, interpolation};
        ASSERT_EQ(resize<TypeParam>(source, whole, view), ippStsNoErr);
        view.region = region;
        ASSERT_EQ(resize<TypeParam>(source, part, view), ippStsNoErr);
        for (int y = 0; y < 32; ++y) {
            for (int x = 0; x < 48; ++x) {
                const bool inside = x >= 14 && x < 32 && y >= 10 && y < 22;
                for (int channel = 0; channel < TypeParam::channels; ++channel) {
                    ASSERT_EQ(part.at(x, y, channel), (inside ? whole : before).at(x, y, channel)) << x << ", " << y;
                }
            }
        }
    }
}

// A view that is panned away, and factors and centres beyond any picture, draw nothing or one pixel's value, at once.
TYPED_TEST(ResizeCenter, CopesWithExtremeViews) {
    Random random(105);
    const auto source = randomImage<TypeParam>(random, 6, 4);
    const double numbers[] = {0.0, -0.0, 0.5, 3.0, -1.0, 1e3, -1e9, 1e18, -1e300, 1.7e308, 5e-324};
    const double factors[] = {5e-324, 1e-300, 1e-9, 1.0, 1e9, 1e300, 1.7e308};
    for (const double center : numbers) {
        for (const double factor : factors) {
            for (const int interpolation : zoltest::allInterpolations) {
                const auto before = randomImage<TypeParam>(random, 9, 5);
                this->expectDrawn(source, before, {source.whole(), factor, 1.0, center, 2.0, interpolation});
                this->expectDrawn(source, before, {source.whole(), 1.0, factor, 3.0, center, interpolation});
            }
        }
    }
}

TYPED_TEST(ResizeCenter, TellsWhatIsWrong) {
    Random random(106);
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
        IppiSize dstSize;
        double xFactor;
        double yFactor;
        double xCenter;
        double yCenter;
        int interpolation;
    };
    const Call valid{source.data(), source.size(), source.step(), source.whole(),
                     target.data(), target.step(), target.size(), 1.0,
                     1.0,           3.0,           2.0,           IPPI_INTER_LINEAR};
    auto refusals =
        zoltest::joined<Call>({zoltest::missing("source", &Call::pSrc),
                               zoltest::missing("destination", &Call::pDst),
                               zoltest::withoutPixels("source", &Call::srcSize),
                               zoltest::withoutPixels("region", &Call::srcRoi),
                               zoltest::withoutPixels("destination", &Call::dstSize),
                               zoltest::wrongSteps("source", &Call::srcStep),
                               zoltest::wrongSteps("destination", &Call::dstStep),
                               {{"row beyond any step", ippStsStepErr, [](Call& c) { c.srcSize.width = 0x7FFFFFFF; }}},
                               zoltest::unknownInterpolations(&Call::interpolation)});
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::nan("");
    for (const double factor : {0.0, -0.0, -1.0, -5e-324, infinity, -infinity, nan}) {
        refusals.push_back(
            {"x factor " + std::to_string(factor), ippStsResizeFactorErr, [=](Call& c) { c.xFactor = factor; }});
        refusals.push_back(
            {"y factor " + std::to_string(factor), ippStsResizeFactorErr, [=](Call& c) { c.yFactor = factor; }});
    }
    for (const double center : {infinity, -infinity, nan}) {
        refusals.push_back({"x centre", ippStsBadArgErr, [=](Call& c) { c.xCenter = center; }});
        refusals.push_back({"y centre", ippStsBadArgErr, [=](Call& c) { c.yCenter = center; }});
    }
    for (const IppiRect outside : {IppiRect{6, 0, 3, 3},
                                   {0, 4, 3, 3},
                                   {-3, 0, 3, 3},
                                   {0, -3, 3, 3},
                                   {0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF},
                                   {-0x7FFFFFFF, 0, 0x7FFFFFFE, 9}}) {
        refusals.push_back({"region outside", ippStsWrongIntersectROI, [=](Call& c) { c.srcRoi = outside; }});
    }
    zoltest::expectRefusals(valid, refusals, [](const Call& c) {
        return TypeParam::resizeCenter(c.pSrc, c.srcSize, c.srcStep, c.srcRoi, c.pDst, c.dstStep, c.dstSize, c.xFactor,
                                       c.yFactor, c.xCenter, c.yCenter, c.interpolation);
    });
    EXPECT_TRUE(target == before);
}

}  // namespace
