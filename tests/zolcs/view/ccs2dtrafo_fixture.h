// What the tests of the transformation share.
#pragma once

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsimage.h"
#include "zolcs/support/portablemath.h"

#include <cmath>
#include <functional>
#include <limits>
#include <numbers>
#include <ostream>

#include "support/report_capture.h"
#include "support/test_data.h"

namespace zoltest::trafo {

using zoltest::ReportCapture;

// A table pointer, the view matrix, seven ints, three doubles, two matrices, pi, an int and two bools; doubles lie on
// multiples of eight everywhere.
static_assert(sizeof(CCs2dTrafo) == 224);
static_assert(std::has_virtual_destructor_v<CCs2dTrafo>);
static_assert(CCS_HORIZONTAL == 1 && CCS_VERTICAL == 2);

inline constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

struct Matrix {
    double a = 0.0;
    double b = 0.0;
    double c = 0.0;
    double d = 0.0;
    double e = 0.0;
    double f = 0.0;

    bool operator==(const Matrix&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Matrix& m) {
    return out << std::hexfloat << '(' << m.a << ' ' << m.b << ' ' << m.c << ' ' << m.d << ' ' << m.e << ' ' << m.f
               << ')';
}

inline Matrix imgToDsp(CCs2dTrafo& trafo) {
    Matrix m;
    EXPECT_EQ(trafo.getImgToDsp(m.a, m.b, m.c, m.d, m.e, m.f), 255);
    return m;
}

inline Matrix dspToImg(CCs2dTrafo& trafo) {
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

inline Operations operations(CCs2dTrafo& trafo) {
    Operations o;
    o.result = trafo.getOperations(o.angle, o.mirrored, o.scale, o.tx, o.ty);
    return o;
}

/// The view matrix itself: between images of one square pixel, image to display is the view about the pixel's centre.
inline Matrix view(CCs2dTrafo trafo) {
    trafo.setSizes(1, 1, 1, 1, 1.0, 1.0, 0, 0);
    trafo.setFitIntoSegementMode(false);
    Matrix m = imgToDsp(trafo);
    trafo.getDspPanFactor(m.e, m.f);
    return m;
}

inline double scaleFactor(CCs2dTrafo& trafo) {
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

inline double referenceAngle(const Matrix& m) {
    const double det = m.d * m.a - m.b * m.c;
    if (det >= -1e-10 && det < 1e-10) return 0.0;
    if (det < 0.0) {
        const double angle = zolcs::portable::acos(-m.a / std::sqrt(-det)) * 180.0 / std::numbers::pi;
        return m.c < 0.0 ? 360.0 - angle : angle;
    }
    const double angle = zolcs::portable::acos(m.a / std::sqrt(det)) * 180.0 / std::numbers::pi;
    return m.c > 0.0 ? 360.0 - angle : angle;
}

inline double referenceScale(const Matrix& m) {
    const double det = m.d * m.a - m.b * m.c;
    if (det >= -1e-10 && det < 1e-10) return 1.0;
    return std::sqrt(det < 0.0 ? -det : det);
}

struct ReferenceExtents {
    double s;
    double d;
};

inline ReferenceExtents referenceExtents(const Situation& u, bool fitMode) {
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

inline Matrix referenceImgToDsp(const Situation& u) {
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

inline Matrix referenceInverse(const Matrix& m) {
    double det = m.d * m.a - m.c * m.b;
    if (det >= -1e-10 && det < 1e-10) det = 1e-10;
    return {
        m.d / det, -m.b / det, -m.c / det, m.a / det, (m.f * m.c - m.e * m.d) / det, -(m.f * m.a - m.e * m.b) / det};
}

inline Situation randomSituation(zoltest::Random& random) {
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

}  // namespace zoltest::trafo
