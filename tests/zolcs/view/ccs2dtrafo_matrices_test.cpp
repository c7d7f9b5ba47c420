// The pixel matrices that follow from a view, and when they are computed anew.
#include "zolcs/ccs2dtrafo.h"

#include "zolcs/view/ccs2dtrafo_fixture.h"

namespace {

using namespace zoltest::trafo;
using zoltest::ReportCapture;

// ---------------------------------------------------------------------------------------- pixel matrices

TEST(CCs2dTrafoTest, PixelMatricesFollowTheRulesToTheBit) {
    ReportCapture capture;
    zoltest::Random random(33);
    for (int round = 0; round < 5000; ++round) {
        const Situation situation = randomSituation(random);
        CCs2dTrafo trafo = situation.trafo();
        ASSERT_EQ(imgToDsp(trafo), referenceImgToDsp(situation)) << round;
        ASSERT_EQ(dspToImg(trafo), referenceInverse(referenceImgToDsp(situation))) << round;
        ASSERT_EQ(trafo.getSrcMax(), referenceExtents(situation, true).s) << round;
        double factor = 0.0;
        trafo.getDspScaleFactor(factor);
        const Matrix m = imgToDsp(trafo);
        ASSERT_EQ(factor, std::sqrt(std::fabs(m.a * m.d - m.c * m.b)));
        ASSERT_EQ(trafo.isAcqisitionSize(), std::fabs(factor - 1.0) < 0.01);
    }
    EXPECT_TRUE(ReportCapture::take().empty());
}

TEST(CCs2dTrafoTest, ThereAndBackIsTheIdentity) {
    zoltest::Random random(34);
    for (int round = 0; round < 2000; ++round) {
        const Situation situation = randomSituation(random);
        CCs2dTrafo trafo = situation.trafo();
        const Matrix there = imgToDsp(trafo);
        const Matrix back = dspToImg(trafo);
        const double x = random.real(0.0, situation.srcWidth);
        const double y = random.real(0.0, situation.srcHeight);
        const double u = there.a * x + there.c * y + there.e;
        const double v = there.b * x + there.d * y + there.f;
        const double size = std::fabs(back.a * u) + std::fabs(back.c * v) + std::fabs(back.b * u) +
                            std::fabs(back.d * v) + std::fabs(back.e) + std::fabs(back.f) + 1.0;
        ASSERT_NEAR(back.a * u + back.c * v + back.e, x, 1e-9 * size);
        ASSERT_NEAR(back.b * u + back.d * v + back.f, y, 1e-9 * size);
    }
}

TEST(CCs2dTrafoTest, CentreComesToTheDisplaysCentrePlusOffset) {
    zoltest::Random random(35);
    for (int round = 0; round < 1000; ++round) {
        Situation situation = randomSituation(random);
        situation.view.e = situation.view.f = 0.0;
        CCs2dTrafo trafo = situation.trafo();
        const Matrix m = imgToDsp(trafo);
        const double x = 0.5 * situation.srcWidth;
        const double y = 0.5 * situation.srcHeight;
        const double size = std::fabs(m.a * x) + std::fabs(m.c * y) + std::fabs(m.b * x) + std::fabs(m.d * y) + 1e4;
        ASSERT_NEAR(m.a * x + m.c * y + m.e, 0.5 * situation.dstWidth + situation.offsetX, 1e-12 * size);
        ASSERT_NEAR(m.b * x + m.d * y + m.f, 0.5 * situation.dstHeight + situation.offsetY, 1e-12 * size);
    }
}

TEST(CCs2dTrafoTest, FitSizedViewShowsTheWholeImage) {
    zoltest::Random random(36);
    for (int round = 0; round < 2000; ++round) {
        Situation situation = randomSituation(random);
        situation.smallerSide = 1;
        situation.fitMode = true;
        situation.offsetX = situation.offsetY = 0;
        CCs2dTrafo turned;
        turned.rotate(90.0 * random.integer(0, 3));
        if (random.chance(0.5)) turned.mirror(random.integer(1, 2));
        situation.view = view(turned);
        CCs2dTrafo trafo = situation.trafo();
        const Matrix m = imgToDsp(trafo);
        double widest = 0.0;
        double highest = 0.0;
        for (const double x : {0.0, static_cast<double>(situation.srcWidth)}) {
            for (const double y : {0.0, static_cast<double>(situation.srcHeight)}) {
                widest = std::max(widest, std::fabs(m.a * x + m.c * y + m.e - 0.5 * situation.dstWidth));
                highest = std::max(highest, std::fabs(m.b * x + m.d * y + m.f - 0.5 * situation.dstHeight));
            }
        }
        ASSERT_LE(widest, 0.5 * situation.dstWidth * (1.0 + 1e-9) + 1e-6);
        ASSERT_LE(highest, 0.5 * situation.dstHeight * (1.0 + 1e-9) + 1e-6);
        const bool touches = widest > 0.5 * situation.dstWidth - 1e-6 || highest > 0.5 * situation.dstHeight - 1e-6;
        ASSERT_TRUE(touches);
    }
}

TEST(CCs2dTrafoTest, LargerSideModeFillsTheLargerExtent) {
    CCs2dTrafo trafo;
    trafo.setSizes(400, 300, 1000, 600, 1.0, 1.0, 0, 0);
    trafo.setDstSmallerSide(0);
    EXPECT_EQ(trafo.getSrcMax(), 400.0);
    EXPECT_EQ(imgToDsp(trafo).a, 2.5);
    trafo.setSizes(300, 400, 600, 1000, 1.0, 1.0, 0, 0);
    EXPECT_EQ(trafo.getSrcMax(), 400.0);
    EXPECT_EQ(imgToDsp(trafo).a, 2.5);
    // A quarter turn exchanges the extents, but the stored width is taken all the same.
    trafo.setSizes(300, 400, 1000, 600, 1.0, 1.0, 0, 0);
    trafo.rotate(90.0);
    EXPECT_EQ(trafo.getSrcMax(), 300.0);
    EXPECT_EQ(imgToDsp(trafo).b, 1000.0 / 300.0);
}

TEST(CCs2dTrafoTest, ExtentsSwapOnAQuarterTurn) {
    // A display of 200 by 100 shows an image of 400 by 100 at a half: upright, and turned as long as the extents are
    // not swapped. Swapped, the turned image fits at a quarter.
    const auto turned = [](const std::function<void(CCs2dTrafo&)>& change, double ratio = 1.0) {
        CCs2dTrafo trafo;
        trafo.setSizes(400, 100, 200, 100, ratio, 1.0, 0, 0);
        trafo.rotate(90.0);
        change(trafo);
        return scaleFactor(trafo) / operations(trafo).scale;
    };
    const auto nothing = [](CCs2dTrafo&) {};
    EXPECT_DOUBLE_EQ(turned(nothing), 0.25);
    EXPECT_DOUBLE_EQ(turned([](CCs2dTrafo& t) { t.scale(2.0); }), 0.5);
    EXPECT_DOUBLE_EQ(turned([](CCs2dTrafo& t) { t.scale(1.02); }), 0.5);
    EXPECT_DOUBLE_EQ(turned([](CCs2dTrafo& t) { t.scale(1.005); }), 0.25);
    EXPECT_DOUBLE_EQ(turned([](CCs2dTrafo& t) { t.setFitIntoSegementMode(false); }), 0.5);
    EXPECT_DOUBLE_EQ(turned([](CCs2dTrafo& t) { t.rotate(180.0); }), 0.25);
    EXPECT_DOUBLE_EQ(turned([](CCs2dTrafo& t) { t.rotate(0.9); }), 0.25);
    EXPECT_DOUBLE_EQ(turned([](CCs2dTrafo& t) { t.rotate(1.1); }), 0.5);
    EXPECT_DOUBLE_EQ(turned([](CCs2dTrafo& t) { t.rotate(90.0); }), 0.5);
    EXPECT_DOUBLE_EQ(turned([](CCs2dTrafo& t) { t.mirror(CCS_VERTICAL); }), 0.25);
    // Pixels that are not square swap always.
    const double odd = std::sqrt(1.0625) * 0.25;
    EXPECT_DOUBLE_EQ(turned(nothing, 1.0625), odd);
    EXPECT_DOUBLE_EQ(turned([](CCs2dTrafo& t) { t.scale(2.0); }, 1.0625), odd);
    EXPECT_DOUBLE_EQ(turned([](CCs2dTrafo& t) { t.setFitIntoSegementMode(false); }, 1.0625), odd);
}

TEST(CCs2dTrafoTest, SrcMaxOmitsTheFitModeOnPurpose) {
    CCs2dTrafo trafo;
    trafo.setSizes(400, 100, 200, 100, 1.0, 1.0, 0, 0);
    trafo.setFitIntoSegementMode(false);
    EXPECT_EQ(trafo.getSrcMax(), 400.0);  // the width limits: 200 / 400
    trafo.setSizes(400, 300, 200, 200, 1.0, 1.0, 0, 0);
    EXPECT_EQ(trafo.getSrcMax(), 400.0);
    trafo.rotate(90.0);
    EXPECT_EQ(trafo.getSrcMax(), 400.0);  // now the height limits
    trafo.setSizes(400, 300, 1000, 200, 1.0, 1.0, 0, 0);
    EXPECT_EQ(trafo.getSrcMax(), 400.0);  // swapped although the fit mode is off
    EXPECT_DOUBLE_EQ(scaleFactor(trafo), 200.0 / 300.0);
    trafo.scale(2.0);
    EXPECT_EQ(trafo.getSrcMax(), 300.0);
}

// ---------------------------------------------------------------------------------------- when it is computed anew

TEST(CCs2dTrafoTest, EveryMutatorButTheFitModeCausesAComputation) {
    // A quarter turn at fit size whose extents are swapped. Switching the fit mode off changes nothing until something
    // else causes a computation; then the extents are no longer swapped.
    const auto causes = [](const std::function<void(CCs2dTrafo&)>& change) {
        CCs2dTrafo trafo;
        trafo.setSizes(400, 100, 200, 100, 1.0, 1.0, 0, 0);
        trafo.rotate(90.0);
        const Matrix before = imgToDsp(trafo);
        trafo.setFitIntoSegementMode(false);
        EXPECT_EQ(imgToDsp(trafo), before);
        EXPECT_EQ(dspToImg(trafo), referenceInverse(before));
        change(trafo);
        return imgToDsp(trafo) != before;
    };
    double x = 0.0;
    double y = 0.0;
    const SizedImage source(400, 100, 1.0);
    const SizedImage destination(200, 100, 1.0);
    EXPECT_TRUE(causes([](CCs2dTrafo& t) { t.reset(); }));
    EXPECT_TRUE(causes([&](CCs2dTrafo& t) { t.setSizes(source, destination); }));
    EXPECT_TRUE(causes([&](CCs2dTrafo& t) { t.setSizes(source, 200, 100, 1.0, 0, 0); }));
    EXPECT_TRUE(causes([](CCs2dTrafo& t) { t.setSizes(400, 100, 200, 100, 1.0, 1.0, 0, 0); }));
    EXPECT_TRUE(causes([](CCs2dTrafo& t) { t.setDestSizes(200, 100, 1.0, 0, 0); }));
    EXPECT_TRUE(causes([](CCs2dTrafo& t) { t.swapSourceDimension(false, false); }));
    EXPECT_TRUE(causes([](CCs2dTrafo& t) { t.setDstSmallerSide(1); }));
    EXPECT_TRUE(causes([](CCs2dTrafo& t) { t.scale(1.0); }));
    EXPECT_TRUE(causes([](CCs2dTrafo& t) { t.scale2dMatrix(1.0); }));
    EXPECT_TRUE(causes([](CCs2dTrafo& t) { t.translate(0.0, 0.0); }));
    EXPECT_TRUE(causes([](CCs2dTrafo& t) { t.rotate(0.0); }));
    EXPECT_TRUE(causes([](CCs2dTrafo& t) { t.mirror(CCS_HORIZONTAL); }));
    EXPECT_TRUE(causes([](CCs2dTrafo& t) { t.setDspPanFactor(0.0, 0.0); }));
    EXPECT_TRUE(causes([&](CCs2dTrafo& t) { t.getTranslation(x, y); }));  // deliberately
    EXPECT_TRUE(causes([](CCs2dTrafo& t) { t.setDspScaleFactor(0.3); }));

    int mirrored = 0;
    double scale = 0.0;
    EXPECT_FALSE(causes([](CCs2dTrafo&) {}));
    EXPECT_FALSE(causes([](CCs2dTrafo& t) { t.setFitIntoSegementMode(false); }));
    EXPECT_FALSE(causes([&](CCs2dTrafo& t) { t.getDspPanFactor(x, y); }));
    EXPECT_FALSE(causes([&](CCs2dTrafo& t) { t.getOperations(x, mirrored, scale, x, y); }));
    EXPECT_FALSE(causes([&](CCs2dTrafo& t) { t.getDspScaleFactor(x); }));
    EXPECT_FALSE(causes([&](CCs2dTrafo& t) { t.getDspScaleFactorXY(x, y); }));
    EXPECT_FALSE(causes([&](CCs2dTrafo& t) { x = t.getSrcMax() + t.getDstMax(); }));
    EXPECT_FALSE(causes([&](CCs2dTrafo& t) { mirrored = t.getSrcSize().cx + t.getDstSize().cx; }));
    EXPECT_FALSE(causes([&](CCs2dTrafo& t) { mirrored = static_cast<int>(t.isFitIntoSegment()); }));
    EXPECT_FALSE(causes([&](CCs2dTrafo& t) { mirrored = t.isTransposition(); }));
    EXPECT_FALSE(causes([&](CCs2dTrafo& t) { mirrored = static_cast<int>(t.isAcqisitionSize()); }));
    {
        ReportCapture capture;
        EXPECT_FALSE(causes([](CCs2dTrafo& t) { t.mirror(3); }));
    }
}

TEST(CCs2dTrafoTest, EveryReaderComputesWhatIsStale) {
    const auto fresh = [] {
        CCs2dTrafo trafo;
        trafo.setSizes(400, 100, 200, 100, 1.0, 1.0, 0, 0);
        return trafo;
    };
    CCs2dTrafo a = fresh();
    EXPECT_EQ(dspToImg(a).a, 2.0);
    CCs2dTrafo b = fresh();
    EXPECT_EQ(imgToDsp(b).a, 0.5);
    CCs2dTrafo c = fresh();
    EXPECT_EQ(scaleFactor(c), 0.5);
    CCs2dTrafo d = fresh();
    double fx = 0.0;
    double fy = 0.0;
    EXPECT_EQ(d.getDspScaleFactorXY(fx, fy), 255);
    EXPECT_EQ(fx, 0.5);
    EXPECT_EQ(fy, 0.5);
    CCs2dTrafo e = fresh();
    EXPECT_EQ(e.setDspScaleFactor(2.0), 255);
    EXPECT_EQ(scaleFactor(e), 2.0);
    CCs2dTrafo f = fresh();
    EXPECT_FALSE(f.isAcqisitionSize());
}

// ---------------------------------------------------------------------------------------- scale factors

TEST(CCs2dTrafoTest, ScaleFactorsAlongTheAxesInEightOrientations) {
    // The display's pixels are half as high as wide, the source's a quarter higher than wide.
    for (const int quarter : {0, 1, 2, 3}) {
        for (const bool mirrored : {false, true}) {
            // Numbers without rounding, as rotate cannot give them.
            constexpr int cosines[] = {1, 0, -1, 0};
            const int k = cosines[quarter];
            const int s = cosines[(quarter + 3) % 4];
            const int m = mirrored ? -1 : 1;
            CCs2dTrafo turned(m * k, -s, 0.0, m * s, k, 0.0);
            turned.setSizes(100, 100, 1000, 2000, 1.25, 0.5, 0, 0);
            const Matrix matrix = imgToDsp(turned);
            double fx = -1.0;
            double fy = -1.0;
            EXPECT_EQ(turned.getDspScaleFactorXY(fx, fy), 255);
            const bool lying = quarter % 2 != 0;
            EXPECT_EQ(fx, std::fabs(lying ? matrix.b : matrix.a)) << quarter << mirrored;
            EXPECT_EQ(fy, std::fabs(lying ? matrix.c : matrix.d)) << quarter << mirrored;
            EXPECT_GT(fx, 0.0);
            EXPECT_GT(fy, 0.0);
            EXPECT_NE(fx, fy);
        }
    }
}

TEST(CCs2dTrafoTest, ScaleFactorsAlongTheAxesNearQuarterTurns) {
    const auto touched = [](double degrees) {
        CCs2dTrafo trafo;
        trafo.rotate(degrees);
        double fx = -7.0;
        double fy = -7.0;
        EXPECT_EQ(trafo.getDspScaleFactorXY(fx, fy), 255);
        EXPECT_EQ(fx == -7.0, fy == -7.0);
        return fx != -7.0;
    };
    EXPECT_TRUE(touched(0.5));
    EXPECT_FALSE(touched(1.1));
    EXPECT_FALSE(touched(359.5));  // deliberately: only [0, 1) and exactly 360 count as upright
    for (const double quarter : {90.0, 180.0, 270.0}) {
        EXPECT_TRUE(touched(quarter - 0.9));
        EXPECT_TRUE(touched(quarter + 0.9));
        EXPECT_FALSE(touched(quarter - 1.1));
        EXPECT_FALSE(touched(quarter + 1.1));
    }
    EXPECT_FALSE(touched(45.0));
    EXPECT_FALSE(touched(225.0));
}

TEST(CCs2dTrafoTest, FullTurnCountsAsUpright) {
    CCs2dTrafo trafo(1.0, 0.5, 0.0, 0.0, 1.0, 0.0);  // sheared: the cosine is 1, the angle 360
    ASSERT_EQ(operations(trafo).angle, 360.0);
    double fx = -7.0;
    double fy = -7.0;
    EXPECT_EQ(trafo.getDspScaleFactorXY(fx, fy), 255);
    EXPECT_EQ(fx, 1.0);
    EXPECT_EQ(fy, 1.0);
}

TEST(CCs2dTrafoTest, SetDspScaleFactorReachesTheFactor) {
    zoltest::Random random(37);
    for (int round = 0; round < 2000; ++round) {
        const Situation situation = randomSituation(random);
        CCs2dTrafo trafo = situation.trafo();
        const double wanted = random.real(0.05, 30.0);
        double px = 0.0;
        double py = 0.0;
        trafo.getDspPanFactor(px, py);
        const double scaleBefore = operations(trafo).scale;
        EXPECT_EQ(trafo.setDspScaleFactor(wanted), 255);
        EXPECT_FALSE(trafo.isTransition());
        const double scaleAfter = operations(trafo).scale;
        if (std::fabs(scaleAfter - 1.0) < 0.011) continue;  // fit-sized: swapped anew when it is turned
        EXPECT_NEAR(scaleFactor(trafo), wanted, 1e-12 * wanted) << round;
        double newPx = 0.0;
        double newPy = 0.0;
        trafo.getDspPanFactor(newPx, newPy);
        EXPECT_NEAR(newPx, px * scaleAfter / scaleBefore, 1e-9);
        EXPECT_NEAR(newPy, py * scaleAfter / scaleBefore, 1e-9);
    }
}

TEST(CCs2dTrafoTest, SetDspScaleFactorLeavesAFitSizedQuarterTurnUnswapped) {
    CCs2dTrafo trafo;
    trafo.setSizes(400, 100, 200, 100, 1.0, 1.0, 0, 0);
    trafo.rotate(90.0);
    EXPECT_DOUBLE_EQ(scaleFactor(trafo), 0.25);
    trafo.setDspScaleFactor(2.0);
    EXPECT_DOUBLE_EQ(operations(trafo).scale, 4.0);  // over the unswapped 0.5
    EXPECT_DOUBLE_EQ(scaleFactor(trafo), 2.0);
}

TEST(CCs2dTrafoTest, AcquisitionSizeIsOnePixelForOne) {
    CCs2dTrafo trafo;
    trafo.setSizes(512, 512, 1024, 768, 1.0, 1.0, 0, 0);
    EXPECT_FALSE(trafo.isAcqisitionSize());
    trafo.setDspScaleFactor(1.0);
    EXPECT_TRUE(trafo.isAcqisitionSize());
    trafo.scale(1.009);
    EXPECT_TRUE(trafo.isAcqisitionSize());
    trafo.scale(1.009);
    EXPECT_FALSE(trafo.isAcqisitionSize());
}

// ---------------------------------------------------------------------------------------- hostile numbers

TEST(CCs2dTrafoTest, AngleIsNotClampedAndCountsAsOblique) {
    CCs2dTrafo trafo(2.0, 0.0, 0.0, 0.0, 1.0, 0.0);  // a / scale is beyond 1
    const Operations o = operations(trafo);
    EXPECT_EQ(o.result, 255);
    EXPECT_TRUE(std::isnan(o.angle));
    double fx = -7.0;
    double fy = -7.0;
    EXPECT_EQ(trafo.getDspScaleFactorXY(fx, fy), 255);
    EXPECT_EQ(fx, -7.0);
    EXPECT_EQ(fy, -7.0);
    EXPECT_EQ(imgToDsp(trafo).a, 2.0);
}

TEST(CCs2dTrafoTest, HostileNumbersAreCarriedThrough) {
    ReportCapture capture;
    constexpr double inf = std::numeric_limits<double>::infinity();
    constexpr int huge = std::numeric_limits<int>::max();
    constexpr int negative = std::numeric_limits<int>::min();
    for (const double number : {notANumber, inf, -inf, 1e308, 1e-320, 0.0}) {
        for (const int size : {0, -1, 1, huge, negative}) {
            CCs2dTrafo trafo(number, number, number, -number, 1.0, number);
            trafo.setSizes(size, 3, 4, size, number, 1.0, huge, negative);
            trafo.rotate(number);
            trafo.mirror(CCS_VERTICAL);
            trafo.translate(number, number);
            static_cast<void>(trafo.setDspScaleFactor(number));
            trafo.swapSourceDimension(true, false);
            trafo.setDstSmallerSide(0);
            static_cast<void>(imgToDsp(trafo));
            static_cast<void>(dspToImg(trafo));
            static_cast<void>(trafo.getSrcMax());
            static_cast<void>(trafo.isTransposition());
            static_cast<void>(trafo.isAcqisitionSize());
            double fx = 0.0;
            double fy = 0.0;
            EXPECT_EQ(trafo.getDspScaleFactorXY(fx, fy), 255);
            EXPECT_EQ(trafo.getSrcSize().cx, 3);
            EXPECT_EQ(trafo.getSrcSize().cy, size);
        }
    }
}

}  // namespace
