#include "zolcs/ccs2dtrafo.h"

#include "support/report_capture.h"
#include "support/test_data.h"

#include "zolcs/ccsimage.h"
#include "zolcs/support/portablemath.h"

#include <cmath>
#include <functional>
#include <limits>
#include <numbers>
#include <ostream>

namespace {

using zoltest::ReportCapture;

// A table pointer, the view matrix, seven ints, three doubles, two matrices, pi, an int and two bools; doubles lie on
// multiples of eight everywhere.
static_assert(sizeof(CCs2dTrafo) == 224);
static_assert(std::has_virtual_destructor_v<CCs2dTrafo>);
static_assert(CCS_HORIZONTAL == 1 && CCS_VERTICAL == 2);

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

struct Matrix {
    double a = 0.0;
    double b = 0.0;
    double c = 0.0;
    double d = 0.0;
    double e = 0.0;
    double f = 0.0;

    bool operator==(const Matrix&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Matrix& m) {
    return out << std::hexfloat << '(' << m.a << ' ' << m.b << ' ' << m.c << ' ' << m.d << ' ' << m.e << ' ' << m.f
               << ')';
}

Matrix imgToDsp(CCs2dTrafo& trafo) {
    Matrix m;
    EXPECT_EQ(trafo.getImgToDsp(m.a, m.b, m.c, m.d, m.e, m.f), 255);
    return m;
}

Matrix dspToImg(CCs2dTrafo& trafo) {
    Matrix m;
    trafo.getTransformation(m.a, m.b, m.c, m.d, m.e, m.f);
    return m;
}

struct Operations {
    int result = -1;
    double angle = -1.0;
    int mirrored = -1;
    double scale = -1.0;
    double tx = -1.0;
    double ty = -1.0;
};

Operations operations(CCs2dTrafo& trafo) {
    Operations o;
    o.result = trafo.getOperations(o.angle, o.mirrored, o.scale, o.tx, o.ty);
    return o;
}

/// The view matrix itself: between images of one square pixel, image to display is the view about the pixel's centre.
Matrix view(CCs2dTrafo trafo) {
    trafo.setSizes(1, 1, 1, 1, 1.0, 1.0, 0, 0);
    trafo.setFitIntoSegementMode(false);
    Matrix m = imgToDsp(trafo);
    trafo.getDspPanFactor(m.e, m.f);
    return m;
}

double scaleFactor(CCs2dTrafo& trafo) {
    double factor = -1.0;
    EXPECT_EQ(trafo.getDspScaleFactor(factor), 255);
    return factor;
}

class SizedImage : public CCsImage {
public:
    SizedImage(int imageWidth, int imageHeight, double ratio) {
        width = imageWidth;
        height = imageHeight;
        ratioYx = ratio;
    }
};

/// Sizes and modes that the pixel matrices depend on.
struct Situation {
    Matrix view;
    int srcWidth = 1;
    int srcHeight = 1;
    int dstWidth = 1;
    int dstHeight = 1;
    double srcRatio = 1.0;
    double dstRatio = 1.0;
    int offsetX = 0;
    int offsetY = 0;
    int smallerSide = 1;
    bool fitMode = true;

    [[nodiscard]] CCs2dTrafo trafo() const {
        CCs2dTrafo t(view.a, view.c, view.e, view.b, view.d, view.f);
        t.setFitIntoSegementMode(fitMode);
        t.setDstSmallerSide(smallerSide);
        t.setSizes(srcWidth, srcHeight, dstWidth, dstHeight, srcRatio, dstRatio, offsetX, offsetY);
        return t;
    }
};

// The rules once more, as plainly as they can be written.

double referenceAngle(const Matrix& m) {
    const double det = m.d * m.a - m.b * m.c;
    if (det >= -1e-10 && det < 1e-10) return 0.0;
    if (det < 0.0) {
        const double angle = zolcs::portable::acos(-m.a / std::sqrt(-det)) * 180.0 / std::numbers::pi;
        return m.c < 0.0 ? 360.0 - angle : angle;
    }
    const double angle = zolcs::portable::acos(m.a / std::sqrt(det)) * 180.0 / std::numbers::pi;
    return m.c > 0.0 ? 360.0 - angle : angle;
}

double referenceScale(const Matrix& m) {
    const double det = m.d * m.a - m.b * m.c;
    if (det >= -1e-10 && det < 1e-10) return 1.0;
    return std::sqrt(det < 0.0 ? -det : det);
}

struct ReferenceExtents {
    double s;
    double d;
};

ReferenceExtents referenceExtents(const Situation& u, bool fitMode) {
    double v = u.srcHeight * u.srcRatio;
    double hs = u.srcWidth;
    const double angle = referenceAngle(u.view);
    if ((angle > 89.0 && angle < 91.0) || (angle > 269.0 && angle < 271.0)) {
        const double scale = referenceScale(u.view);
        const bool fitSized = scale - 1.0 < 0.01 && scale - 1.0 > -0.01;
        if ((fitSized && fitMode) || std::fabs(u.srcRatio - 1.0) > 1e-6) {
            const double old = v;
            v = hs;
            hs = old;
        }
    }
    const double hd = u.dstHeight * u.dstRatio;
    if (u.smallerSide != 0) {
        if (hd / v > u.dstWidth / hs) return {hs, static_cast<double>(u.dstWidth)};
        return {v, hd};
    }
    return {hs > v ? u.srcWidth : v, u.dstWidth > hd ? u.dstWidth : hd};
}

Matrix referenceImgToDsp(const Situation& u) {
    const auto [s, d] = referenceExtents(u, u.fitMode);
    const Matrix& m = u.view;
    const double r = u.srcRatio;
    const double q = u.dstRatio;
    return {m.a * d / s,
            m.b * (d / q) / s,
            m.c * r * d / s,
            m.d * r * (d / q) / s,
            (m.e - 0.5 * (m.a * u.srcWidth + m.c * r * u.srcHeight) / s) * d + 0.5 * u.dstWidth + u.offsetX,
            (m.f - 0.5 * (m.b * u.srcWidth + m.d * r * u.srcHeight) / s) * (d / q) + 0.5 * u.dstHeight + u.offsetY};
}

Matrix referenceInverse(const Matrix& m) {
    double det = m.d * m.a - m.c * m.b;
    if (det >= -1e-10 && det < 1e-10) det = 1e-10;
    return {
        m.d / det, -m.b / det, -m.c / det, m.a / det, (m.f * m.c - m.e * m.d) / det, -(m.f * m.a - m.e * m.b) / det};
}

Situation randomSituation(zoltest::Random& random) {
    Situation u;
    CCs2dTrafo t;
    if (random.chance(0.7)) t.rotate(90.0 * random.integer(0, 3));
    if (random.chance(0.3)) t.rotate(random.real(-400.0, 400.0));
    if (random.chance(0.3)) t.mirror(random.integer(1, 2));
    if (random.chance(0.6)) t.scale2dMatrix(random.real(0.01, 20.0));
    u.view = view(t);
    if (random.chance(0.5)) {
        u.view.e = random.real(-2.0, 2.0);
        u.view.f = random.real(-2.0, 2.0);
    }
    u.srcWidth = random.integer(1, 4096);
    u.srcHeight = random.integer(1, 4096);
    u.dstWidth = random.integer(1, 2000);
    u.dstHeight = random.integer(1, 2000);
    if (random.chance(0.5)) u.srcRatio = random.real(0.2, 5.0);
    if (random.chance(0.5)) u.dstRatio = random.real(0.2, 5.0);
    if (random.chance(0.5)) u.offsetX = random.integer(-500, 500);
    if (random.chance(0.5)) u.offsetY = random.integer(-500, 500);
    u.smallerSide = random.chance(0.7) ? 1 : 0;
    u.fitMode = random.chance(0.7);
    return u;
}

}  // namespace

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
