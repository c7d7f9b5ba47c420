// The display transformation against its plain restatement: long random sequences of view operations, sizes and
// questions, where every answer must be the same number.
#include "reference/trafo_reference.h"
#include "support/report_capture.h"
#include "support/test_data.h"
#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsimage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iomanip>
#include <limits>
#include <sstream>

namespace {

using zoltest::Random;
using zoltest::ReportCapture;

/// An image of which only the geometry matters.
class SizedImage : public CCsImage {
public:
    SizedImage(int w, int h, double ratio) {
        width = w;
        height = h;
        ratioYx = ratio;
    }
};

bool same(double one, double two) { return one == two || (std::isnan(one) && std::isnan(two)); }

double anyRatio(Random& random) {
    switch (random.integer(0, 5)) {
        case 0:
            return 0.5;
        case 1:
            return 2.0;
        case 2:
            return 1.0 + random.real(-2e-6, 2e-6);
        case 3:
            return random.real(0.2, 5.0);
        default:
            return 1.0;
    }
}

double anyAngle(Random& random) {
    const double quarter = 90.0 * random.integer(-5, 5);
    switch (random.integer(0, 4)) {
        case 0:
        case 1:
            return quarter;
        case 2:
            return quarter + random.real(-1.2, 1.2);
        case 3:
            return random.integer(-720, 720);
        default:
            return random.real(-400.0, 400.0);
    }
}

double anyScale(Random& random) {
    switch (random.integer(0, 5)) {
        case 0:
            return 1.0 + random.real(-0.012, 0.012);
        case 1:
            return std::pow(10.0, random.real(-4.0, 4.0));
        case 2:
            return -random.real(0.1, 4.0);
        case 3:
            return random.chance(0.05) ? 0.0 : 2.0;
        default:
            return random.real(0.2, 5.0);
    }
}

int anySize(Random& random) {
    switch (random.integer(0, 3)) {
        case 0:
            return random.integer(1, 4);
        case 1:
            return random.integer(1, 70);
        case 2:
            return 512;
        default:
            return random.integer(1, 5000);
    }
}

/// The library's object, its restatement, and a log of what was done to both.
struct Pair {
    CCs2dTrafo real;
    zolref::Trafo plain;
    int mirrorReports = 0;
    std::ostringstream log;

    Pair() { log << std::setprecision(17); }
};

void operate(Pair& pair, Random& random) {
    switch (random.integer(0, 16)) {
        case 0: {
            const double s = anyScale(random);
            pair.log << "scale " << s << '\n';
            pair.real.scale(s);
            zolref::scale(pair.plain, s);
            break;
        }
        case 1: {
            const double s = anyScale(random);
            pair.log << "scale2dMatrix " << s << '\n';
            pair.real.scale2dMatrix(s);
            zolref::scale2dMatrix(pair.plain, s);
            break;
        }
        case 2: {
            const double dx = random.real(-3, 3);
            const double dy = random.real(-3, 3);
            pair.log << "translate " << dx << ' ' << dy << '\n';
            pair.real.translate(dx, dy);
            zolref::translate(pair.plain, dx, dy);
            break;
        }
        case 3:
        case 4:
        case 5: {
            const double degrees = anyAngle(random);
            pair.log << "rotate " << degrees << '\n';
            pair.real.rotate(degrees);
            zolref::rotate(pair.plain, degrees);
            break;
        }
        case 6: {
            const int direction = random.chance(0.1) ? random.integer(-3, 9) : random.integer(1, 2);
            pair.log << "mirror " << direction << '\n';
            const int result = zolref::mirror(pair.plain, direction);
            EXPECT_EQ(pair.real.mirror(direction), result);
            if (result != 255) pair.mirrorReports += 1;
            break;
        }
        case 7: {
            const double px = random.real(-2, 2);
            const double py = random.real(-2, 2);
            pair.log << "setDspPanFactor " << px << ' ' << py << '\n';
            pair.real.setDspPanFactor(px, py);
            zolref::setDspPanFactor(pair.plain, px, py);
            break;
        }
        case 8: {
            const SizedImage source(anySize(random), anySize(random), anyRatio(random));
            const SizedImage destination(anySize(random), anySize(random), anyRatio(random));
            pair.log << "setSizes of images " << source.getWidth() << 'x' << source.getHeight() << " ratio "
                     << source.getRatioYx() << " to " << destination.getWidth() << 'x' << destination.getHeight()
                     << " ratio " << destination.getRatioYx() << '\n';
            pair.real.setSizes(source, destination);
            zolref::setSizes(pair.plain, source.getWidth(), source.getHeight(), destination.getWidth(),
                             destination.getHeight(), source.getRatioYx(), destination.getRatioYx(), 0, 0);
            break;
        }
        case 9:
        case 10: {
            const int sw = anySize(random), sh = anySize(random), dw = anySize(random), dh = anySize(random);
            const double sr = anyRatio(random), dr = anyRatio(random);
            const int ox = random.integer(-300, 300), oy = random.integer(-300, 300);
            pair.log << "setSizes " << sw << 'x' << sh << ' ' << dw << 'x' << dh << ' ' << sr << ' ' << dr << " offset "
                     << ox << ' ' << oy << '\n';
            if (random.chance(0.5)) {
                pair.real.setSizes(sw, sh, dw, dh, sr, dr, ox, oy);
            } else {
                pair.real.setSizes(SizedImage(sw, sh, sr), dw, dh, dr, ox, oy);
            }
            zolref::setSizes(pair.plain, sw, sh, dw, dh, sr, dr, ox, oy);
            break;
        }
        case 11: {
            const int dw = anySize(random), dh = anySize(random);
            const double dr = anyRatio(random);
            const int ox = random.integer(-300, 300), oy = random.integer(-300, 300);
            pair.log << "setDestSizes " << dw << 'x' << dh << ' ' << dr << ' ' << ox << ' ' << oy << '\n';
            pair.real.setDestSizes(dw, dh, dr, ox, oy);
            zolref::setDestSizes(pair.plain, dw, dh, dr, ox, oy);
            break;
        }
        case 12: {
            const bool flag1 = random.chance(0.5), flag2 = random.chance(0.5);
            pair.log << "swapSourceDimension " << flag1 << flag2 << '\n';
            pair.real.swapSourceDimension(flag1, flag2);
            zolref::swapSourceDimension(pair.plain, flag1, flag2);
            break;
        }
        case 13: {
            const int on = random.integer(0, 2);
            pair.log << "setDstSmallerSide " << on << '\n';
            pair.real.setDstSmallerSide(on);
            zolref::setDstSmallerSide(pair.plain, on);
            break;
        }
        case 14: {
            const bool on = random.chance(0.5);
            pair.log << "setFitIntoSegementMode " << on << '\n';
            pair.real.setFitIntoSegementMode(on);
            zolref::setFitIntoSegementMode(pair.plain, on);
            break;
        }
        case 15: {
            const double factor = anyScale(random);
            pair.log << "setDspScaleFactor " << factor << '\n';
            EXPECT_EQ(pair.real.setDspScaleFactor(factor), 255);
            zolref::setDspScaleFactor(pair.plain, factor);
            break;
        }
        default: {
            if (random.chance(0.2)) {
                pair.log << "reset\n";
                pair.real.reset();
                zolref::reset(pair.plain);
            } else {
                pair.log << "getTranslation\n";
                double tx = 0, ty = 0, plainTx = 0, plainTy = 0;
                pair.real.getTranslation(tx, ty);
                zolref::getTranslation(pair.plain, plainTx, plainTy);
                EXPECT_TRUE(same(tx, plainTx) && same(ty, plainTy));
            }
            break;
        }
    }
}

void expectMatrix(const double got[6], const double want[6], const char* what) {
    for (int i = 0; i < 6; ++i) {
        EXPECT_TRUE(same(got[i], want[i]))
            << what << ' ' << "abcdef"[i] << std::setprecision(17) << ": " << got[i] << ", restated " << want[i];
    }
}

void askPixelMatrices(Pair& pair) {
    double m[6] = {};
    EXPECT_EQ(pair.real.getImgToDsp(m[0], m[1], m[2], m[3], m[4], m[5]), 255);
    zolref::recompute(pair.plain);
    expectMatrix(m, pair.plain.toDisplay, "image to display");
    pair.real.getTransformation(m[0], m[1], m[2], m[3], m[4], m[5]);
    expectMatrix(m, pair.plain.toImage, "display to image");
}

void askFactors(Pair& pair) {
    double factor = 0;
    EXPECT_EQ(pair.real.getDspScaleFactor(factor), 255);
    EXPECT_TRUE(same(factor, zolref::dspScaleFactorOf(pair.plain)));
    double fx = -7.5, fy = -8.5, plainX = -7.5, plainY = -8.5;
    EXPECT_EQ(pair.real.getDspScaleFactorXY(fx, fy), 255);
    zolref::dspScaleFactorXYOf(pair.plain, plainX, plainY);
    EXPECT_TRUE(same(fx, plainX)) << fx << ", restated " << plainX;
    EXPECT_TRUE(same(fy, plainY)) << fy << ", restated " << plainY;
    EXPECT_EQ(pair.real.isAcqisitionSize(), zolref::isAcquisitionSize(pair.plain));
}

void askOperations(Pair& pair) {
    double angle = -1, scale = -2, tx = -3, ty = -4;
    int mirrored = -5;
    const int result = pair.real.getOperations(angle, mirrored, scale, tx, ty);
    const zolref::Operations o = zolref::operationsOf(pair.plain);
    EXPECT_EQ(result, o.done ? 255 : 0);
    EXPECT_TRUE(same(tx, pair.plain.e) && same(ty, pair.plain.f));
    if (o.done) {
        EXPECT_TRUE(same(angle, o.angle)) << angle << ", restated " << o.angle;
        EXPECT_EQ(mirrored, o.mirrored);
        EXPECT_TRUE(same(scale, o.scale)) << scale << ", restated " << o.scale;
    } else {
        EXPECT_EQ(angle, -1);
        EXPECT_EQ(mirrored, -5);
        EXPECT_EQ(scale, -2);
    }
}

void askRest(Pair& pair) {
    EXPECT_TRUE(same(pair.real.getSrcMax(), zolref::srcMaxOf(pair.plain)));
    EXPECT_TRUE(same(pair.real.getDstMax(), pair.plain.dstMax));
    EXPECT_EQ(pair.real.isFitIntoSegment(), zolref::isFitIntoSegment(pair.plain));
    EXPECT_EQ(pair.real.isTransposition(), zolref::isTransposition(pair.plain));
    EXPECT_EQ(pair.real.isSourceAspectRatioOtherThanUnity(), zolref::otherRatioThanUnity(pair.plain));
    EXPECT_FALSE(pair.real.isTransition());
    EXPECT_EQ(pair.real.getSrcSize().cx, pair.plain.srcWidth);
    EXPECT_EQ(pair.real.getSrcSize().cy, pair.plain.srcHeight);
    EXPECT_EQ(pair.real.getDstSize().cx, pair.plain.dstWidth);
    EXPECT_EQ(pair.real.getDstSize().cy, pair.plain.dstHeight);
    double px = 0, py = 0;
    pair.real.getDspPanFactor(px, py);
    EXPECT_TRUE(same(px, pair.plain.e) && same(py, pair.plain.f));
}

void ask(Pair& pair, Random& random) {
    switch (random.integer(0, 5)) {
        case 0:
            askFactors(pair);
            break;
        case 1:
            askOperations(pair);
            break;
        case 2:
            askRest(pair);
            break;
        default:
            askPixelMatrices(pair);
            break;
    }
}

}  // namespace

TEST(TrafoProperty, RandomSequencesOfOperationsAnswerAsRestated) {
    Random random(20240101);
    for (int round = 0; round < 4000 && !HasFailure(); ++round) {
        const ReportCapture capture;
        Pair pair;
        const int operations = random.integer(1, 14);
        for (int i = 0; i < operations && !HasFailure(); ++i) {
            operate(pair, random);
            if (random.chance(0.6)) ask(pair, random);
        }
        askPixelMatrices(pair);
        askFactors(pair);
        askOperations(pair);
        askRest(pair);
        EXPECT_EQ(ReportCapture::take().size(),
                  static_cast<std::size_t>(pair.mirrorReports + pair.plain.singularReports));
        ASSERT_FALSE(HasFailure()) << "round " << round << " after\n" << pair.log.str();
    }
}

TEST(TrafoProperty, MatricesGivenRowByRowAnswerAsRestated) {
    Random random(20240102);
    for (int round = 0; round < 4000 && !HasFailure(); ++round) {
        const ReportCapture capture;
        double m[6];
        for (double& entry : m) entry = random.chance(0.3) ? random.integer(-2, 2) : random.real(-2, 2);
        if (random.chance(0.2)) {
            // A second row that is a multiple of the first.
            const double k = random.integer(-2, 2);
            m[3] = k * m[0];
            m[4] = k * m[1];
        }
        Pair pair;
        pair.real = CCs2dTrafo(m[0], m[1], m[2], m[3], m[4], m[5]);
        pair.plain.a = m[0];
        pair.plain.c = m[1];
        pair.plain.e = m[2];
        pair.plain.b = m[3];
        pair.plain.d = m[4];
        pair.plain.f = m[5];
        for (const double entry : m) pair.log << entry << ' ';
        pair.log << '\n';
        const int sw = anySize(random), sh = anySize(random), dw = anySize(random), dh = anySize(random);
        const double sr = anyRatio(random), dr = anyRatio(random);
        pair.real.setSizes(sw, sh, dw, dh, sr, dr, 0, 0);
        zolref::setSizes(pair.plain, sw, sh, dw, dh, sr, dr, 0, 0);
        pair.log << sw << 'x' << sh << ' ' << dw << 'x' << dh << ' ' << sr << ' ' << dr << '\n';
        askOperations(pair);
        askPixelMatrices(pair);
        askFactors(pair);
        askRest(pair);
        EXPECT_EQ(ReportCapture::take().size(), static_cast<std::size_t>(pair.plain.singularReports));
        ASSERT_FALSE(HasFailure()) << "round " << round << ": " << pair.log.str();
    }
}

TEST(TrafoProperty, CopiesAnswerAsTheirSource) {
    Random random(20240103);
    const ReportCapture capture;
    for (int round = 0; round < 500 && !HasFailure(); ++round) {
        Pair pair;
        const int operations = random.integer(1, 8);
        for (int i = 0; i < operations; ++i) operate(pair, random);
        // The copy keeps the state of being up to date, too: a mode that waits for the next change keeps waiting.
        const bool asked = random.chance(0.5);
        if (asked) askPixelMatrices(pair);
        pair.real.setFitIntoSegementMode(false);
        zolref::setFitIntoSegementMode(pair.plain, false);
        const CCs2dTrafo source(pair.real);
        CCs2dTrafo assigned;
        assigned = source;
        pair.real = assigned;
        askPixelMatrices(pair);
        askFactors(pair);
        askRest(pair);
        ASSERT_FALSE(HasFailure()) << "round " << round << " after\n" << pair.log.str();
    }
}
