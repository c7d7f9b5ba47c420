// The display transformation restated as plain arithmetic: every rule once, nothing shared with the library but the
// elementary functions whose bits are tested on their own.
//
// A matrix is six doubles a, b, c, d, e, f with x' = a x + c y + e and y' = b x + d y + f.
#pragma once

#include "zolcs/support/portablemath.h"

#include <cmath>
#include <utility>

namespace zolref {

/// The state of a transformation. `valid` says whether the two pixel matrices belong to the rest.
struct Trafo {
    double a = 1, b = 0, c = 0, d = 1, e = 0, f = 0;  // the normalised view
    bool valid = false;
    int srcWidth = 1, srcHeight = 1;
    int dstWidth = 1, dstHeight = 1;
    int offsetX = 0, offsetY = 0;
    double srcRatio = 1, dstRatio = 1;
    double dstMax = 1;
    double toDisplay[6] = {};
    double toImage[6] = {};
    int smallerSide = 1;
    bool transition = false;
    bool fitMode = true;
    int singularReports = 0;  // how often a singular view matrix was found
};

inline double pi() { return zolcs::portable::acos(-1.0); }

struct Operations {
    bool done = false;
    double angle = 0;
    int mirrored = 0;
    double scale = 1;
};

/// What a view consists of; the defaults where its matrix is singular.
inline Operations operationsOf(Trafo& t) {
    Operations o;
    const double det = t.d * t.a - t.b * t.c;
    if (det >= -1e-10 && det < 1e-10) {
        t.singularReports += 1;
        return o;
    }
    o.done = true;
    if (det < 0) {
        o.scale = std::sqrt(-det);
        o.mirrored = 1;
        o.angle = zolcs::portable::acos(-t.a / o.scale) * 180 / pi();
        if (t.c < 0) o.angle = 360 - o.angle;
    } else {
        o.scale = std::sqrt(det);
        o.mirrored = 0;
        o.angle = zolcs::portable::acos(t.a / o.scale) * 180 / pi();
        if (t.c > 0) o.angle = 360 - o.angle;
    }
    return o;
}

inline void computeDstMax(Trafo& t) {
    const double destination = t.dstHeight * t.dstRatio;
    const double source = t.srcHeight * t.srcRatio;
    const double horizontal = static_cast<double>(t.dstWidth) / t.srcWidth;
    if (destination / source > horizontal) {
        t.dstMax = t.dstWidth;
    } else {
        t.dstMax = destination;
    }
}

inline void setSizes(Trafo& t, int srcWidth, int srcHeight, int dstWidth, int dstHeight, double srcRatio,
                     double dstRatio, int offsetX, int offsetY) {
    t.srcWidth = srcWidth;
    t.srcHeight = srcHeight;
    t.dstWidth = dstWidth;
    t.dstHeight = dstHeight;
    t.srcRatio = srcRatio;
    t.dstRatio = dstRatio;
    t.offsetX = offsetX;
    t.offsetY = offsetY;
    t.valid = false;
    computeDstMax(t);
}

/// Does not touch dstMax.
inline void setDestSizes(Trafo& t, int width, int height, double ratio, int offsetX, int offsetY) {
    t.dstWidth = width;
    t.dstHeight = height;
    t.dstRatio = ratio;
    t.offsetX = offsetX;
    t.offsetY = offsetY;
    t.valid = false;
}

inline void swapSourceDimension(Trafo& t, bool flag1, bool flag2) {
    t.srcRatio = 1 / t.srcRatio;
    const int oldWidth = t.srcWidth;
    t.srcWidth = t.srcHeight;
    t.srcHeight = oldWidth;
    t.offsetX = 0;
    t.offsetY = 0;
    t.valid = false;
    computeDstMax(t);
    const double oldE = t.e;
    const double oldF = t.f;
    if (flag1 == flag2) {
        t.e = -oldF;
        t.f = oldE;
    } else {
        t.e = oldF;
        t.f = -oldE;
    }
}

inline void reset(Trafo& t) {
    t.a = 1;
    t.b = 0;
    t.c = 0;
    t.d = 1;
    t.e = 0;
    t.f = 0;
    t.valid = false;
}

/// Pan included.
inline void scale(Trafo& t, double s) {
    t.a *= s;
    t.b *= s;
    t.c *= s;
    t.d *= s;
    t.e *= s;
    t.f *= s;
    t.valid = false;
}

/// The pan stays.
inline void scale2dMatrix(Trafo& t, double s) {
    t.a *= s;
    t.b *= s;
    t.c *= s;
    t.d *= s;
    t.valid = false;
}

inline void translate(Trafo& t, double dx, double dy) {
    t.e += dx;
    t.f += dy;
    t.valid = false;
}

inline void rotateColumn(double s, double k, double& x, double& y) {
    const double oldX = x;
    const double oldY = y;
    x = k * oldX - s * oldY;
    y = s * oldX + k * oldY;
}

inline void rotate(Trafo& t, double degrees) {
    const double theta = pi() * (degrees / 180);
    const double s = zolcs::portable::sin(theta);
    const double k = zolcs::portable::cos(theta);
    rotateColumn(s, k, t.a, t.b);
    rotateColumn(s, k, t.c, t.d);
    rotateColumn(s, k, t.e, t.f);
    t.valid = false;
}

/// 1 negates the x row, 2 the y row.
inline int mirror(Trafo& t, int direction) {
    if (direction == 1) {
        t.a = -t.a;
        t.c = -t.c;
        t.e = -t.e;
        t.valid = false;
        return 255;
    }
    if (direction == 2) {
        t.b = -t.b;
        t.d = -t.d;
        t.f = -t.f;
        t.valid = false;
        return 255;
    }
    return 2;
}

inline void setDspPanFactor(Trafo& t, double px, double py) {
    t.e = px;
    t.f = py;
    t.valid = false;
}

/// A getter that makes the pixel matrices stale.
inline void getTranslation(Trafo& t, double& tx, double& ty) {
    tx = t.e;
    ty = t.f;
    t.valid = false;
}

inline void setDstSmallerSide(Trafo& t, int on) {
    t.smallerSide = on;
    t.valid = false;
}

/// Leaves the pixel matrices as they are.
inline void setFitIntoSegementMode(Trafo& t, bool on) { t.fitMode = on; }

inline bool otherRatioThanUnity(const Trafo& t) { return std::fabs(t.srcRatio - 1) > 1e-6; }

/// Source extents for the fit, exchanged on the quarter turns for which they are.
inline void sourceExtents(Trafo& t, bool askFitMode, double& vertical, double& horizontal) {
    const double angle = operationsOf(t).angle;
    vertical = t.srcHeight * t.srcRatio;
    horizontal = t.srcWidth;
    const bool quarterTurned = std::fabs(angle - 90) < 1 || std::fabs(angle - 270) < 1;
    if (!quarterTurned) return;
    const double s = operationsOf(t).scale;
    bool exchange = std::fabs(s - 1) < 0.01 && !t.transition;
    if (askFitMode && !t.fitMode) exchange = false;
    if (otherRatioThanUnity(t)) exchange = true;
    if (exchange) {
        const double oldVertical = vertical;
        vertical = horizontal;
        horizontal = oldVertical;
    }
}

/// The source and destination extents that the fit compares.
inline void referenceExtents(const Trafo& t, double vertical, double horizontal, double& source, double& destination) {
    const double dstVertical = t.dstHeight * t.dstRatio;
    if (t.smallerSide != 0) {
        if (dstVertical / vertical > t.dstWidth / horizontal) {
            source = horizontal;
            destination = t.dstWidth;
        } else {
            source = vertical;
            destination = dstVertical;
        }
        return;
    }
    if (horizontal > vertical) {
        source = t.srcWidth;  // the stored width, also after an exchange
    } else {
        source = vertical;
    }
    if (t.dstWidth > dstVertical) {
        destination = t.dstWidth;
    } else {
        destination = dstVertical;
    }
}

inline double srcMaxOf(Trafo& t) {
    double vertical = 0;
    double horizontal = 0;
    sourceExtents(t, false, vertical, horizontal);
    double source = 0;
    double destination = 0;
    referenceExtents(t, vertical, horizontal, source, destination);
    return source;
}

inline void recompute(Trafo& t) {
    if (t.valid) return;
    double vertical = 0;
    double horizontal = 0;
    sourceExtents(t, true, vertical, horizontal);
    double S = 0;
    double D = 0;
    referenceExtents(t, vertical, horizontal, S, D);
    const double r = t.srcRatio;
    const double q = t.dstRatio;
    const double W = t.srcWidth;
    const double H = t.srcHeight;
    const double a = t.a * D / S;
    const double b = t.b * (D / q) / S;
    const double c = t.c * r * D / S;
    const double d = t.d * r * (D / q) / S;
    const double e = (t.e - 0.5 * (t.a * W + t.c * r * H) / S) * D + 0.5 * t.dstWidth + t.offsetX;
    const double f = (t.f - 0.5 * (t.b * W + t.d * r * H) / S) * (D / q) + 0.5 * t.dstHeight + t.offsetY;
    double delta = d * a - c * b;
    if (delta >= -1e-10 && delta < 1e-10) delta = 1e-10;
    t.toDisplay[0] = a;
    t.toDisplay[1] = b;
    t.toDisplay[2] = c;
    t.toDisplay[3] = d;
    t.toDisplay[4] = e;
    t.toDisplay[5] = f;
    t.toImage[0] = d / delta;
    t.toImage[1] = -b / delta;
    t.toImage[2] = -c / delta;
    t.toImage[3] = a / delta;
    t.toImage[4] = (f * c - e * d) / delta;
    t.toImage[5] = -(f * a - e * b) / delta;
    t.valid = true;
}

inline double dspScaleFactorOf(Trafo& t) {
    recompute(t);
    const double* m = t.toDisplay;
    return std::sqrt(std::fabs(m[0] * m[3] - m[2] * m[1]));
}

/// Leaves the factors alone at oblique angles.
inline void dspScaleFactorXYOf(Trafo& t, double& fx, double& fy) {
    recompute(t);
    const Operations o = operationsOf(t);
    const double* m = t.toDisplay;
    if (std::isnan(o.angle)) return;
    if (static_cast<int>(o.angle) % 360 < 1) {
        fx = o.mirrored != 0 ? -m[0] : m[0];
        fy = m[3];
    } else if (std::fabs(o.angle - 180) < 1) {
        fx = o.mirrored != 0 ? m[0] : -m[0];
        fy = -m[3];
    } else if (std::fabs(o.angle - 90) < 1 || std::fabs(o.angle - 270) < 1) {
        fx = std::fabs(m[1]);
        fy = std::fabs(m[2]);
    }
}

inline void setDspScaleFactor(Trafo& t, double factor) {
    if (std::fabs(operationsOf(t).scale - 1) < 0.01) {
        t.transition = true;
        t.valid = false;
    }
    const double g = factor / dspScaleFactorOf(t);
    t.valid = false;
    t.transition = false;
    t.a *= g;
    t.b *= g;
    t.c *= g;
    t.d *= g;
    t.e *= g;
    t.f *= g;
}

inline bool isFitIntoSegment(Trafo& t) { return std::fabs(operationsOf(t).scale - 1) < 0.01; }

inline bool isAcquisitionSize(Trafo& t) { return std::fabs(dspScaleFactorOf(t) - 1) < 0.01; }

inline bool nearZero(double v) { return v >= -1e-5 && v < 1e-5; }

inline int isTransposition(const Trafo& t) {
    if (nearZero(t.b) && nearZero(t.c)) return 1;
    if (nearZero(t.a) && nearZero(t.d)) return 1;
    return 0;
}

}  // namespace zolref
