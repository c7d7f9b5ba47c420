#include <algorithm>
#include <cmath>

#include "zolipp_images.h"

namespace {

using zoltest::GreyImage;

TEST(ResizeCenter, CopiesAtFactorOne) {
    zoltest::Random random(1);
    GreyImage source(7, 5, 1);
    source.fillRandom(random);
    for (const int interpolation : {IPPI_INTER_NN, IPPI_INTER_LINEAR, IPPI_INTER_CUBIC}) {
        GreyImage target(7, 5, 1);
        ASSERT_EQ(
            ZOLippiResizeCenter_16u_C1R(source.data(), source.size(), source.step(), source.whole(), target.data(),
                                        target.step(), target.size(), 1.0, 1.0, 3.0, 2.0, interpolation),
            ippStsNoErr);
        EXPECT_EQ(target, source) << "interpolation " << interpolation;
    }
}

TEST(WarpAffine, CopiesWithTheIdentity) {
    zoltest::Random random(2);
    GreyImage source(7, 5, 1);
    source.fillRandom(random);
    const double identity[2][3] = {{1, 0, 0}, {0, 1, 0}};
    for (const int interpolation : {IPPI_INTER_NN, IPPI_INTER_LINEAR, IPPI_INTER_CUBIC}) {
        GreyImage target(7, 5, 1);
        ASSERT_EQ(ZOLippiWarpAffine_16u_C1R(source.data(), source.size(), source.step(), source.whole(), target.data(),
                                            target.step(), target.whole(), identity, interpolation),
                  ippStsNoErr);
        EXPECT_EQ(target, source) << "interpolation " << interpolation;
    }
}

// A half turn of the coefficients is a mirror about both axes, an exchange of x and y a transposition.
TEST(WarpAffine, AgreesWithMirrorAndTranspose) {
    zoltest::Random random(3);
    GreyImage source(7, 5, 1);
    source.fillRandom(random);
    GreyImage mirrored(source);
    ASSERT_EQ(ZOLippiMirror_16u_C1IR(mirrored.data(), mirrored.step(), mirrored.size(), ippAxsBoth), ippStsNoErr);
    GreyImage transposed(5, 7, 1);
    ASSERT_EQ(
        ZOLippiTranspose_16u_C1R(source.data(), source.step(), transposed.data(), transposed.step(), source.size()),
        ippStsNoErr);
    const double halfTurn[2][3] = {{-1, 0, 7}, {0, -1, 5}};
    const double exchange[2][3] = {{0, 1, 0}, {1, 0, 0}};
    for (const int interpolation : {IPPI_INTER_NN, IPPI_INTER_LINEAR, IPPI_INTER_CUBIC}) {
        const auto warp = [&](GreyImage& target, const double coefficients[2][3]) {
            return ZOLippiWarpAffine_16u_C1R(source.data(), source.size(), source.step(), source.whole(), target.data(),
                                             target.step(), target.whole(), coefficients, interpolation);
        };
        GreyImage turned(7, 5, 1);
        ASSERT_EQ(warp(turned, halfTurn), ippStsNoErr);
        EXPECT_EQ(turned, mirrored) << "interpolation " << interpolation;
        GreyImage exchanged(5, 7, 1);
        ASSERT_EQ(warp(exchanged, exchange), ippStsNoErr);
        EXPECT_EQ(exchanged, transposed) << "interpolation " << interpolation;
    }
}

TEST(ResizeCenter, DoublesWithoutAShift) {
    GreyImage source(4, 1, 1);
    for (int x = 0; x < 4; ++x) source.set(x, 0, static_cast<Ipp16u>(1000 * (x + 1)));
    const auto resized = [&](int interpolation) {
        GreyImage target(8, 1, 1);
        EXPECT_EQ(
            ZOLippiResizeCenter_16u_C1R(source.data(), source.size(), source.step(), source.whole(), target.data(),
                                        target.step(), target.size(), 2.0, 1.0, 2.0, 0.0, interpolation),
            ippStsNoErr);
        std::vector<int> values;
        for (int x = 0; x < 8; ++x) values.push_back(target.at(x, 0));
        return values;
    };
    EXPECT_EQ(resized(IPPI_INTER_NN), (std::vector<int>{1000, 1000, 2000, 2000, 3000, 3000, 4000, 4000}));
    EXPECT_EQ(resized(IPPI_INTER_LINEAR), (std::vector<int>{1000, 1250, 1750, 2250, 2750, 3250, 3750, 4000}));
    EXPECT_EQ(resized(IPPI_INTER_CUBIC), (std::vector<int>{930, 1180, 1727, 2250, 2750, 3273, 3820, 4070}));
}

}  // namespace
