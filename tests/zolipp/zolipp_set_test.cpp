#include "zolipp/zolipp_images.h"

namespace {

TEST(SetAC4, SetsThreeBytesOfFour) {
    const Ipp8u value[3] = {11, 22, 33};
    for (const auto& [width, height] : {std::pair{1, 1}, {5, 3}, {1, 7}, {67, 2}}) {
        for (const int slack : {0, 3}) {
            zoltest::Random random(401);
            zoltest::ColourImage image(width, height, 4, slack, 1);
            image.fillRandom(random);
            const auto before = image;
            ASSERT_EQ(ZOLippiSet_8u_AC4R(value, image.data(), image.step(), image.size()), ippStsNoErr);
            for (int y = 0; y < height; ++y) {
                for (int x = 0; x < width; ++x) {
                    for (int channel = 0; channel < 3; ++channel) ASSERT_EQ(image.at(x, y, channel), value[channel]);
                    ASSERT_EQ(image.at(x, y, 3), before.at(x, y, 3));
                }
            }
            EXPECT_TRUE(image.isIntactAround());
        }
    }
}

TEST(SetAC4, TellsWhatIsWrong) {
    const Ipp8u value[3] = {11, 22, 33};
    zoltest::Random random(402);
    zoltest::ColourImage image(6, 4, 4);
    image.fillRandom(random);
    const auto before = image;
    struct Call {
        const Ipp8u* value;
        Ipp8u* pDst;
        int step;
        IppiSize size;
    };
    const auto refusals =
        zoltest::joined<Call>({zoltest::missing("value", &Call::value),
                               zoltest::missing("destination", &Call::pDst),
                               zoltest::withoutPixels("destination", &Call::size),
                               zoltest::wrongSteps("destination", &Call::step),
                               {{"row beyond any step", ippStsStepErr, [](Call& c) { c.size.width = 0x7FFFFFFF; }}}});
    zoltest::expectRefusals(Call{value, image.data(), image.step(), image.size()}, refusals,
                            [](const Call& c) { return ZOLippiSet_8u_AC4R(c.value, c.pDst, c.step, c.size); });
    EXPECT_TRUE(image == before);
}

TEST(SetBytes, SetsExactlyTheLength) {
    for (int length = 1; length < 70; ++length) {
        zoltest::ColourImage bytes(length, 1, 1);
        ASSERT_EQ(ZOLippsSet_8u(0x3C, bytes.data(), length), ippStsNoErr);
        for (int i = 0; i < length; ++i) ASSERT_EQ(bytes.at(i, 0), 0x3C);
        EXPECT_TRUE(bytes.isIntactAround());
    }
}

TEST(SetBytes, TellsWhatIsWrong) {
    Ipp8u byte = 9;
    EXPECT_EQ(ZOLippsSet_8u(1, nullptr, 1), ippStsNullPtrErr);
    EXPECT_EQ(ZOLippsSet_8u(1, nullptr, 0), ippStsNullPtrErr);
    EXPECT_EQ(ZOLippsSet_8u(1, &byte, 0), ippStsSizeErr);
    EXPECT_EQ(ZOLippsSet_8u(1, &byte, -1), ippStsSizeErr);
    EXPECT_EQ(byte, 9);
}

}  // namespace
