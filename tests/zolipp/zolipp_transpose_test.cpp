#include "zolipp/zolipp_images.h"

namespace {

using zoltest::Random;
using zoltest::randomImage;

template <typename Primitives>
class Transpose : public ::testing::Test {
protected:
    using Image = typename Primitives::Image;

    static Image transposed(const Image& source, int slack = 0, std::size_t offset = 0) {
        Image target(source.height(), source.width(), Primitives::channels, slack, offset);
        EXPECT_EQ(Primitives::transpose(source.data(), source.step(), target.data(), target.step(), source.size()),
                  ippStsNoErr);
        return target;
    }

    static void expectTransposed(const Image& source, int slack, std::size_t offset) {
        const Image target = zoltest::sameInEveryVariant([&] { return transposed(source, slack, offset); });
        for (int y = 0; y < source.height(); ++y) {
            for (int x = 0; x < source.width(); ++x) {
                for (int channel = 0; channel < Primitives::channels; ++channel) {
                    ASSERT_EQ(target.at(y, x, channel), source.at(x, y, channel))
                        << x << ", " << y << " of " << source.width() << " x " << source.height();
                }
            }
        }
    }
};
using TransposedFormats = ::testing::Types<zoltest::Grey16Primitives, zoltest::FourBytePrimitives>;
TYPED_TEST_SUITE(Transpose, TransposedFormats);

TYPED_TEST(Transpose, ExchangesRowsAndColumns) {
    Random random(301);
    std::vector<std::pair<int, int>> sizes{{1, 1}, {1, 70}, {70, 1}, {16, 16}, {32, 32}, {64, 32}, {96, 33}, {33, 96}};
    for (int i = 0; i < 60; ++i) sizes.emplace_back(random.integer(1, 110), random.integer(1, 110));
    for (const auto& [width, height] : sizes) {
        const auto source = randomImage<TypeParam>(random, width, height, random.integer(0, 7),
                                                   static_cast<std::size_t>(random.integer(0, 17)));
        this->expectTransposed(source, random.integer(0, 7), static_cast<std::size_t>(random.integer(0, 17)));
        if (this->HasFatalFailure() || this->HasNonfatalFailure()) return;
    }
}

TYPED_TEST(Transpose, TwiceIsNothing) {
    Random random(302);
    const auto source = randomImage<TypeParam>(random, 133, 65);
    EXPECT_TRUE(this->transposed(this->transposed(source)) == source);
}

TYPED_TEST(Transpose, TellsWhatIsWrong) {
    Random random(303);
    const auto source = randomImage<TypeParam>(random, 6, 4);
    typename TypeParam::Image target(4, 6, TypeParam::channels);
    const auto before = target;
    struct Call {
        decltype(source.data()) pSrc;
        int srcStep;
        decltype(target.data()) pDst;
        int dstStep;
        IppiSize size;
    };
    const auto refusals = zoltest::joined<Call>(
        {zoltest::missing("source", &Call::pSrc),
         zoltest::missing("destination", &Call::pDst),
         zoltest::withoutPixels("source", &Call::size),
         zoltest::wrongSteps("source", &Call::srcStep),
         zoltest::wrongSteps("destination", &Call::dstStep),
         {{"row beyond any step", ippStsStepErr, [](Call& c) { c.size.width = 0x7FFFFFFF; }},
          {"column beyond any step", ippStsStepErr, [](Call& c) { c.size.height = 0x7FFFFFFF; }}}});
    zoltest::expectRefusals(
        Call{source.data(), source.step(), target.data(), target.step(), source.size()}, refusals,
        [](const Call& c) { return TypeParam::transpose(c.pSrc, c.srcStep, c.pDst, c.dstStep, c.size); });
    EXPECT_TRUE(target == before);
}

}  // namespace
