// Building, changing and taking apart a view.
#include "zolcs/ccs2dtrafo.h"

#include "zolcs/view/ccs2dtrafo_fixture.h"

namespace {

using namespace zoltest::trafo;
using zoltest::ReportCapture;

// ---------------------------------------------------------------------------------------- construction and copying

TEST(CCs2dTrafoTest, DefaultIsTheIdentityBetweenSinglePixels) {
    ReportCapture capture;
    CCs2dTrafo trafo;
    EXPECT_EQ(dspToImg(trafo), (Matrix{1.0, 0.0, 0.0, 1.0, 0.0, 0.0}));
    EXPECT_EQ(imgToDsp(trafo), (Matrix{1.0, 0.0, 0.0, 1.0, 0.0, 0.0}));
    EXPECT_EQ(trafo.getSrcSize().cx, 1);
    EXPECT_EQ(trafo.getSrcSize().cy, 1);
    EXPECT_EQ(trafo.getDstSize().cx, 1);
    EXPECT_EQ(trafo.getDstSize().cy, 1);
    EXPECT_EQ(trafo.getDstMax(), 1.0);
    EXPECT_EQ(trafo.getSrcMax(), 1.0);
    EXPECT_EQ(scaleFactor(trafo), 1.0);
    EXPECT_FALSE(trafo.isSourceAspectRatioOtherThanUnity());
    EXPECT_FALSE(trafo.isTransition());
    EXPECT_TRUE(trafo.isFitIntoSegment());
    EXPECT_TRUE(trafo.isAcqisitionSize());
    EXPECT_EQ(trafo.isTransposition(), 1);
    EXPECT_TRUE(ReportCapture::take().empty());
}

TEST(CCs2dTrafoTest, TakesTheViewMatrixRowByRow) {
    CCs2dTrafo trafo(1.0, 0.5, 0.25, -0.75, 2.0, -0.125);
    const Matrix m = imgToDsp(trafo);
    EXPECT_EQ(m.a, 1.0);
    EXPECT_EQ(m.b, -0.75);
    EXPECT_EQ(m.c, 0.5);
    EXPECT_EQ(m.d, 2.0);
    EXPECT_EQ(m.e, 0.25 - 0.5 * 1.5 + 0.5);
    EXPECT_EQ(m.f, -0.125 - 0.5 * 1.25 + 0.5);
    double px = 0.0;
    double py = 0.0;
    trafo.getDspPanFactor(px, py);
    EXPECT_EQ(px, 0.25);
    EXPECT_EQ(py, -0.125);
}

TEST(CCs2dTrafoTest, CopiesEveryField) {
    zoltest::Random random(31);
    for (int round = 0; round < 200; ++round) {
        const Situation situation = randomSituation(random);
        CCs2dTrafo source = situation.trafo();
        if (random.chance(0.5)) static_cast<void>(imgToDsp(source));  // valid, or stale
        source.setFitIntoSegementMode(!situation.fitMode);  // differs from what the valid matrix was made with
        CCs2dTrafo copy(source);
        CCs2dTrafo assigned;
        assigned = source;
        for (CCs2dTrafo* other : {&copy, &assigned}) {
            EXPECT_EQ(imgToDsp(*other), imgToDsp(source));
            EXPECT_EQ(dspToImg(*other), dspToImg(source));
            EXPECT_EQ(other->getDstMax(), source.getDstMax());
            EXPECT_EQ(other->getSrcMax(), source.getSrcMax());
            other->translate(0.0, 0.0);
        }
        source.translate(0.0, 0.0);
        EXPECT_EQ(imgToDsp(copy), imgToDsp(source));
        EXPECT_EQ(imgToDsp(assigned), imgToDsp(source));
        copy.translate(1.0, 1.0);
        EXPECT_EQ(imgToDsp(assigned), imgToDsp(source));
    }
}

TEST(CCs2dTrafoTest, ResetKeepsSizesAndModes) {
    CCs2dTrafo trafo(2.0, 0.0, 0.3, 0.0, 2.0, 0.4);
    trafo.setSizes(512, 512, 1024, 768, 1.0, 1.0, 3, 4);
    trafo.setDstSmallerSide(0);
    static_cast<void>(imgToDsp(trafo));
    trafo.reset();
    EXPECT_EQ(imgToDsp(trafo), (Matrix{2.0, 0.0, 0.0, 2.0, 3.0, -124.0}));
}

// ---------------------------------------------------------------------------------------- sizes

TEST(CCs2dTrafoTest, FitsASquareImageIntoAWideDisplay) {
    CCs2dTrafo trafo;
    trafo.setSizes(512, 512, 1024, 768, 1.0, 1.0, 0, 0);
    EXPECT_EQ(imgToDsp(trafo), (Matrix{1.5, 0.0, 0.0, 1.5, 128.0, 0.0}));
    EXPECT_EQ(trafo.getDstMax(), 768.0);
    EXPECT_EQ(trafo.getSrcMax(), 512.0);
    EXPECT_EQ(trafo.getSrcSize().cx, 512);
    EXPECT_EQ(trafo.getDstSize().cx, 1024);
    EXPECT_EQ(trafo.getDstSize().cy, 768);
}

TEST(CCs2dTrafoTest, TakesSizesFromImages) {
    const SizedImage source(300, 200, 1.25);
    const SizedImage destination(640, 480, 0.8);
    CCs2dTrafo expected;
    expected.setSizes(300, 200, 640, 480, 1.25, 0.8, 0, 0);

    CCs2dTrafo trafo;
    trafo.setSizes(1, 1, 1, 1, 1.0, 1.0, 17, 18);
    trafo.setSizes(source, destination);
    EXPECT_EQ(imgToDsp(trafo), imgToDsp(expected));
    EXPECT_EQ(trafo.getDstMax(), expected.getDstMax());

    CCs2dTrafo other;
    other.setSizes(source, 640, 480, 0.8, 7, -9);
    expected.setSizes(300, 200, 640, 480, 1.25, 0.8, 7, -9);
    EXPECT_EQ(imgToDsp(other), imgToDsp(expected));
    EXPECT_EQ(other.getDstMax(), expected.getDstMax());
    EXPECT_TRUE(other.isSourceAspectRatioOtherThanUnity());
}

TEST(CCs2dTrafoTest, DstMaxIsTheLimitingExtent) {
    const auto dstMax = [](int sw, int sh, int dw, int dh, double sr, double dr) {
        CCs2dTrafo trafo;
        trafo.setSizes(sw, sh, dw, dh, sr, dr, 0, 0);
        return trafo.getDstMax();
    };
    EXPECT_EQ(dstMax(400, 100, 800, 600, 1.0, 1.0), 800.0);
    EXPECT_EQ(dstMax(100, 400, 800, 600, 1.0, 1.0), 600.0);
    EXPECT_EQ(dstMax(4, 3, 800, 600, 1.0, 1.0), 600.0);  // a tie is the height's
    EXPECT_EQ(dstMax(4, 3, 800, 600, 1.0, 1.5), 800.0);
    EXPECT_EQ(dstMax(4, 3, 800, 600, 2.0, 1.5), 900.0);
    EXPECT_EQ(dstMax(3, 2, 5, 3, 1.0, 1.0), 3.0);  // whole numbers would tie here
    EXPECT_EQ(dstMax(3, 2, 4, 3, 1.0, 1.0), 4.0);
}

TEST(CCs2dTrafoTest, SetDestSizesLeavesDstMax) {
    CCs2dTrafo trafo;
    trafo.setSizes(512, 512, 1024, 768, 1.0, 1.0, 0, 0);
    trafo.setDestSizes(100, 200, 1.0, 5, 6);
    EXPECT_EQ(trafo.getDstMax(), 768.0);
    EXPECT_EQ(trafo.getDstSize().cx, 100);
    EXPECT_EQ(trafo.getDstSize().cy, 200);
    CCs2dTrafo expected;
    expected.setSizes(512, 512, 100, 200, 1.0, 1.0, 5, 6);
    EXPECT_EQ(imgToDsp(trafo), imgToDsp(expected));
}

TEST(CCs2dTrafoTest, SwapSourceDimensionTransposesTheSource) {
    for (const bool flag1 : {false, true}) {
        for (const bool flag2 : {false, true}) {
            CCs2dTrafo trafo;
            trafo.setSizes(300, 200, 640, 480, 1.25, 1.0, 7, 8);
            trafo.setDspPanFactor(0.25, -0.5);
            EXPECT_EQ(trafo.getDstMax(), 480.0 * 1.0);
            trafo.swapSourceDimension(flag1, flag2);
            double px = 0.0;
            double py = 0.0;
            trafo.getDspPanFactor(px, py);
            EXPECT_EQ(px, flag1 == flag2 ? 0.5 : -0.5);
            EXPECT_EQ(py, flag1 == flag2 ? 0.25 : -0.25);
            CCs2dTrafo expected;
            expected.setSizes(200, 300, 640, 480, 1.0 / 1.25, 1.0, 0, 0);
            expected.setDspPanFactor(px, py);
            EXPECT_EQ(imgToDsp(trafo), imgToDsp(expected));
            EXPECT_EQ(trafo.getDstMax(), expected.getDstMax());
        }
    }
    CCs2dTrafo wide;
    wide.setSizes(400, 100, 300, 300, 1.0, 1.0, 0, 0);
    EXPECT_EQ(wide.getDstMax(), 300.0);
    wide.setSizes(400, 100, 500, 300, 1.0, 1.0, 0, 0);
    EXPECT_EQ(wide.getDstMax(), 500.0);
    wide.swapSourceDimension(true, false);
    EXPECT_EQ(wide.getDstMax(), 300.0);
}

TEST(CCs2dTrafoTest, RatioCountsAsUnityWithinAMillionth) {
    const auto other = [](double ratio) {
        CCs2dTrafo trafo;
        trafo.setSizes(1, 1, 1, 1, ratio, 1.0, 0, 0);
        return trafo.isSourceAspectRatioOtherThanUnity();
    };
    EXPECT_FALSE(other(1.0));
    EXPECT_FALSE(other(1.0 + 0.9e-6));
    EXPECT_FALSE(other(1.0 - 0.9e-6));
    EXPECT_TRUE(other(1.0 + 1.1e-6));
    EXPECT_TRUE(other(1.0 - 1.1e-6));
}

// ---------------------------------------------------------------------------------------- view operations

TEST(CCs2dTrafoTest, ScaleTakesThePanAlong) {
    CCs2dTrafo trafo(1.0, 2.0, 3.0, 4.0, 5.0, 6.0);
    trafo.scale(0.5);
    EXPECT_EQ(view(trafo), (Matrix{0.5, 2.0, 1.0, 2.5, 1.5, 3.0}));
}

TEST(CCs2dTrafoTest, Scale2dMatrixLeavesThePan) {
    CCs2dTrafo trafo(1.0, 2.0, 3.0, 4.0, 5.0, 6.0);
    trafo.scale2dMatrix(0.5);
    EXPECT_EQ(view(trafo), (Matrix{0.5, 2.0, 1.0, 2.5, 3.0, 6.0}));
}

TEST(CCs2dTrafoTest, PanIsAddedSetAndRead) {
    CCs2dTrafo trafo(1.0, 0.0, 3.0, 0.0, 1.0, 6.0);
    trafo.translate(-1.0, 0.5);
    double px = 0.0;
    double py = 0.0;
    trafo.getDspPanFactor(px, py);
    EXPECT_EQ(px, 2.0);
    EXPECT_EQ(py, 6.5);
    trafo.setDspPanFactor(0.125, -0.25);
    trafo.getTranslation(px, py);
    EXPECT_EQ(px, 0.125);
    EXPECT_EQ(py, -0.25);
}

TEST(CCs2dTrafoTest, PanOfOneMovesByOneReferenceExtent) {
    CCs2dTrafo trafo;
    trafo.setSizes(512, 512, 1024, 768, 1.0, 2.0, 0, 0);
    const Matrix before = imgToDsp(trafo);
    trafo.translate(1.0, 1.0);
    const Matrix after = imgToDsp(trafo);
    EXPECT_EQ(after.e - before.e, 1024.0);
    EXPECT_EQ(after.f - before.f, 512.0);
}

TEST(CCs2dTrafoTest, RotateTurnsAfterTheViewPanIncluded) {
    CCs2dTrafo trafo(1.0, 2.0, 3.0, 4.0, 5.0, 6.0);
    trafo.rotate(30.0);
    const double theta = std::numbers::pi * (30.0 / 180.0);
    const double s = zolcs::portable::sin(theta);
    const double k = zolcs::portable::cos(theta);
    EXPECT_EQ(view(trafo), (Matrix{k * 1.0 - s * 4.0, s * 1.0 + k * 4.0, k * 2.0 - s * 5.0, s * 2.0 + k * 5.0,
                                   k * 3.0 - s * 6.0, s * 3.0 + k * 6.0}));
}

TEST(CCs2dTrafoTest, RotateHasTheSameBitsEverywhere) {
    CCs2dTrafo trafo;
    trafo.rotate(90.0);
    EXPECT_EQ(view(trafo), (Matrix{0x1.1a62633145c07p-54, 1.0, -1.0, 0x1.1a62633145c07p-54, 0.0, 0.0}));
}

TEST(CCs2dTrafoTest, MirrorsNegateOneRow) {
    ReportCapture capture;
    CCs2dTrafo trafo(1.0, 2.0, 3.0, 4.0, 5.0, 6.0);
    EXPECT_EQ(trafo.mirror(CCS_HORIZONTAL), 255);
    EXPECT_EQ(view(trafo), (Matrix{-1.0, 4.0, -2.0, 5.0, -3.0, 6.0}));
    EXPECT_EQ(trafo.mirror(CCS_VERTICAL), 255);
    EXPECT_EQ(view(trafo), (Matrix{-1.0, -4.0, -2.0, -5.0, -3.0, -6.0}));
    EXPECT_TRUE(ReportCapture::take().empty());
}

TEST(CCs2dTrafoTest, TwoMirrorsRestoreTheViewExactly) {
    zoltest::Random random(32);
    for (int round = 0; round < 200; ++round) {
        const Situation situation = randomSituation(random);
        for (const int direction : {CCS_HORIZONTAL, CCS_VERTICAL}) {
            CCs2dTrafo trafo = situation.trafo();
            const Matrix before = imgToDsp(trafo);
            trafo.mirror(direction);
            trafo.mirror(direction);
            EXPECT_EQ(imgToDsp(trafo), before);
        }
    }
}

TEST(CCs2dTrafoTest, FourQuarterTurnsRestoreTheView) {
    CCs2dTrafo trafo(1.5, 0.5, 0.25, -0.5, 1.25, -0.75);
    const Matrix before = view(trafo);
    for (int turn = 0; turn < 4; ++turn) trafo.rotate(90.0);
    const Matrix after = view(trafo);
    EXPECT_NEAR(after.a, before.a, 1e-15);
    EXPECT_NEAR(after.b, before.b, 1e-15);
    EXPECT_NEAR(after.c, before.c, 1e-15);
    EXPECT_NEAR(after.d, before.d, 1e-15);
    EXPECT_NEAR(after.e, before.e, 1e-15);
    EXPECT_NEAR(after.f, before.f, 1e-15);
}

TEST(CCs2dTrafoTest, AnyOtherMirrorDirectionIsReportedAndChangesNothing) {
    ReportCapture capture;
    for (const int direction : {3, 0, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        CCs2dTrafo trafo(1.0, 2.0, 3.0, 4.0, 5.0, 6.0);
        const Matrix before = view(trafo);
        EXPECT_EQ(trafo.mirror(direction), 2);
        EXPECT_EQ(view(trafo), before);
        EXPECT_EQ(ReportCapture::take(),
                  (std::vector{zoltest::errorReport(L"Mirroring must be CCS_HORIZONTAL or CCS_VERTICAL, is", direction,
                                                    L"source\\zolcs\\ccs2dtrafo_safety", 109)}));
    }
}

// ---------------------------------------------------------------------------------------- decomposition

TEST(CCs2dTrafoTest, TakesTheViewApart) {
    for (const bool mirrored : {false, true}) {
        for (int degrees = 0; degrees < 360; degrees += 15) {
            CCs2dTrafo trafo;
            if (mirrored) trafo.mirror(CCS_HORIZONTAL);
            trafo.rotate(degrees);
            trafo.scale2dMatrix(2.5);
            trafo.setDspPanFactor(0.5, -0.25);
            const Operations o = operations(trafo);
            EXPECT_EQ(o.result, 255);
            EXPECT_EQ(o.mirrored, mirrored ? 1 : 0);
            EXPECT_NEAR(o.scale, 2.5, 1e-14);
            EXPECT_EQ(o.tx, 0.5);
            EXPECT_EQ(o.ty, -0.25);
            // At 0 and 180 degrees rounding may carry the cosine beyond 1, or the angle to the other end of the circle.
            if (degrees % 180 != 0) {
                EXPECT_NEAR(o.angle, mirrored ? 360.0 - degrees : degrees, 1e-6) << mirrored << degrees;
            }
        }
    }
}

TEST(CCs2dTrafoTest, AnglesOfExactQuarterTurns) {
    const auto angle = [](double a, double b, double c, double d) {
        CCs2dTrafo trafo(a, c, 0.0, b, d, 0.0);
        const Operations o = operations(trafo);
        EXPECT_EQ(o.result, 255);
        EXPECT_EQ(o.scale, 1.0);
        return std::pair(o.angle, o.mirrored);
    };
    EXPECT_EQ(angle(1, 0, 0, 1), std::pair(0.0, 0));
    EXPECT_EQ(angle(0, 1, -1, 0), std::pair(90.0, 0));
    EXPECT_EQ(angle(-1, 0, 0, -1), std::pair(180.0, 0));
    EXPECT_EQ(angle(0, -1, 1, 0), std::pair(270.0, 0));
    EXPECT_EQ(angle(-1, 0, 0, 1), std::pair(0.0, 1));
    EXPECT_EQ(angle(0, 1, 1, 0), std::pair(90.0, 1));
    EXPECT_EQ(angle(1, 0, 0, -1), std::pair(180.0, 1));
    EXPECT_EQ(angle(0, -1, -1, 0), std::pair(270.0, 1));
    // The sign of c alone decides which half of the circle the angle lies in.
    EXPECT_EQ(angle(1, 0, 0.5, 1), std::pair(360.0, 0));
    EXPECT_EQ(angle(-1, 0, -0.5, 1), std::pair(360.0, 1));
}

TEST(CCs2dTrafoTest, SingularViewIsReported) {
    ReportCapture capture;
    const std::vector expected{
        zoltest::errorReport(L"Matrix is singular, determinent =", 0, L"source\\zolcs\\ccs2dtrafo", 343)};
    CCs2dTrafo trafo(1.0, 2.0, 3.0, 2.0, 4.0, 5.0);
    const Operations o = operations(trafo);
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.angle, -1.0);
    EXPECT_EQ(o.mirrored, -1);
    EXPECT_EQ(o.scale, -1.0);
    EXPECT_EQ(o.tx, 3.0);
    EXPECT_EQ(o.ty, 5.0);
    EXPECT_EQ(ReportCapture::take(), expected);

    EXPECT_TRUE(trafo.isFitIntoSegment());  // the scale stays at its start, 1
    EXPECT_EQ(ReportCapture::take(), expected);
    EXPECT_EQ(trafo.getSrcMax(), 1.0);
    EXPECT_EQ(ReportCapture::take(), expected);
    static_cast<void>(imgToDsp(trafo));
    EXPECT_EQ(ReportCapture::take(), expected);
    static_cast<void>(imgToDsp(trafo));
    EXPECT_TRUE(ReportCapture::take().empty());  // up to date
}

TEST(CCs2dTrafoTest, DeterminantLimitIsHalfOpen) {
    ReportCapture capture;
    const auto result = [](double determinant) {
        CCs2dTrafo trafo(determinant, 0.0, 0.0, 0.0, 1.0, 0.0);
        return operations(trafo).result;
    };
    EXPECT_EQ(result(1e-10), 255);
    EXPECT_EQ(result(std::nextafter(1e-10, 0.0)), 0);
    EXPECT_EQ(result(-1e-10), 0);
    EXPECT_EQ(result(std::nextafter(-1e-10, -1.0)), 255);
}

TEST(CCs2dTrafoTest, SingularPixelMatrixIsClampedSilently) {
    ReportCapture capture;
    Situation situation;
    situation.view = {1e-4, 0.0, 0.0, 1e-4, 0.0, 0.0};
    situation.srcWidth = situation.srcHeight = 4096;
    situation.dstWidth = situation.dstHeight = 64;
    CCs2dTrafo trafo = situation.trafo();
    const Matrix m = imgToDsp(trafo);
    ASSERT_LT(m.a * m.d, 1e-10);
    EXPECT_EQ(dspToImg(trafo), referenceInverse(m));
    EXPECT_EQ(dspToImg(trafo).a, m.d / 1e-10);
    EXPECT_TRUE(ReportCapture::take().empty());
}

TEST(CCs2dTrafoTest, FitMeansAScaleWithinAHundredth) {
    const auto fits = [](double scale) {
        CCs2dTrafo trafo;
        trafo.scale(scale);
        return trafo.isFitIntoSegment();
    };
    EXPECT_TRUE(fits(1.0));
    EXPECT_TRUE(fits(1.0099));
    EXPECT_TRUE(fits(0.9901));
    EXPECT_FALSE(fits(1.0101));
    EXPECT_FALSE(fits(0.9899));
}

TEST(CCs2dTrafoTest, TranspositionMeansAxesOntoAxes) {
    const auto transposition = [](double a, double b, double c, double d) {
        return CCs2dTrafo(a, c, 0.0, b, d, 0.0).isTransposition();
    };
    for (const int quarter : {0, 90, 180, 270, 360, -90}) {
        for (const int direction : {0, CCS_HORIZONTAL, CCS_VERTICAL}) {
            CCs2dTrafo trafo;
            trafo.rotate(quarter);
            if (direction != 0) trafo.mirror(direction);
            trafo.scale(3.0);
            EXPECT_EQ(trafo.isTransposition(), 1) << quarter << ' ' << direction;
        }
    }
    for (const int oblique : {45, 1, 89, 135, 181}) {
        CCs2dTrafo trafo;
        trafo.rotate(oblique);
        EXPECT_EQ(trafo.isTransposition(), 0) << oblique;
    }
    // Near zero is -1e-5 <= v < 1e-5, for both numbers of a diagonal.
    EXPECT_EQ(transposition(1.0, -1e-5, -1e-5, 1.0), 1);
    EXPECT_EQ(transposition(1.0, 1e-5, 0.0, 1.0), 0);
    EXPECT_EQ(transposition(1.0, 0.0, 1e-5, 1.0), 0);
    EXPECT_EQ(transposition(-1e-5, 1.0, 1.0, 0.0), 1);
    EXPECT_EQ(transposition(1e-5, 1.0, 1.0, 0.0), 0);
    EXPECT_EQ(transposition(notANumber, notANumber, notANumber, notANumber), 0);
}

}  // namespace
