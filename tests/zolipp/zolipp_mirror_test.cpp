#include "zolipp/zolipp_images.h"

namespace {

using zoltest::Random;
using zoltest::randomImage;

template <typename Primitives>
class Mirror : public ::testing::Test {
protected:
    using Image = typename Primitives::Image;

    static void expectMirrored(const Image& before, IppiAxis axis) {
        const Image mirrored = zoltest::sameInEveryVariant([&] {
            Image image = before;
            EXPECT_EQ(Primitives::mirror(image.data(), image.step(), image.size(), axis), ippStsNoErr);
            return image;
        });
        for (int y = 0; y < before.height(); ++y) {
            for (int x = 0; x < before.width(); ++x) {
                const int fromX = axis == ippAxsHorizontal ? x : before.width() - 1 - x;
                const int fromY = axis == ippAxsVertical ? y : before.height() - 1 - y;
                for (int channel = 0; channel < Primitives::channels; ++channel) {
                    const bool written = channel < Primitives::written;
                    ASSERT_EQ(mirrored.at(x, y, channel),
                              written ? before.at(fromX, fromY, channel) : before.at(x, y, channel))
                        << "axis " << axis << ", pixel " << x << ", " << y << " of " << before.width() << " x "
                        << before.height();
                }
            }
        }
    }
};
TYPED_TEST_SUITE(Mirror, zoltest::AllFormats);

TYPED_TEST(Mirror, ExchangesEveryPixelOnEveryAxis) {
    Random random(201);
    for (int width = 1; width <= 75; ++width) {
        for (const int height : {1, 2, 5}) {
            const auto image =
                randomImage<TypeParam>(random, width, height, width % 4, static_cast<std::size_t>(width % 17));
            for (const IppiAxis axis : {ippAxsHorizontal, ippAxsVertical, ippAxsBoth}) {
                this->expectMirrored(image, axis);
                if (this->HasFatalFailure() || this->HasNonfatalFailure()) return;
            }
        }
    }
}

TYPED_TEST(Mirror, TwiceIsNothing) {
    Random random(202);
    auto image = randomImage<TypeParam>(random, 133, 41);
    for (const IppiAxis axis : {ippAxsHorizontal, ippAxsVertical, ippAxsBoth}) {
        auto twice = image;
        for (int i = 0; i < 2; ++i) {
            ASSERT_EQ(TypeParam::mirror(twice.data(), twice.step(), twice.size(), axis), ippStsNoErr);
        }
        EXPECT_TRUE(twice == image);
    }
}

TYPED_TEST(Mirror, BothIsOneAfterTheOther) {
    Random random(203);
    auto image = randomImage<TypeParam>(random, 50, 31);
    auto both = image;
    auto separately = image;
    ASSERT_EQ(TypeParam::mirror(both.data(), both.step(), both.size(), ippAxsBoth), ippStsNoErr);
    for (const IppiAxis axis : {ippAxsHorizontal, ippAxsVertical}) {
        ASSERT_EQ(TypeParam::mirror(separately.data(), separately.step(), separately.size(), axis), ippStsNoErr);
    }
    EXPECT_TRUE(both == separately);
}

TYPED_TEST(Mirror, TellsWhatIsWrong) {
    Random random(204);
    auto image = randomImage<TypeParam>(random, 6, 4);
    const auto before = image;
    struct Call {
        decltype(image.data()) pSrcDst;
        int step;
        IppiSize size;
        IppiAxis flip;
    };
    auto refusals =
        zoltest::joined<Call>({zoltest::missing("image", &Call::pSrcDst),
                               zoltest::withoutPixels("image", &Call::size),
                               zoltest::wrongSteps("image", &Call::step),
                               {{"row beyond any step", ippStsStepErr, [](Call& c) { c.size.width = 0x7FFFFFFF; }}}});
    for (const int flip : {-1, 3, 4, 1000}) {
        refusals.push_back({"flip " + std::to_string(flip), ippStsMirrorFlipErr, [=](Call& c) { c.flip = flip; }});
    }
    zoltest::expectRefusals(Call{image.data(), image.step(), image.size(), ippAxsVertical}, refusals,
                            [](const Call& c) { return TypeParam::mirror(c.pSrcDst, c.step, c.size, c.flip); });
    EXPECT_TRUE(image == before);
}

}  // namespace
