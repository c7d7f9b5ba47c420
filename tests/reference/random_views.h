// Random views, from the plainest to those that no user would make.
#pragma once

#include "support/test_data.h"
#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsimage.h"

#include <cmath>
#include <iomanip>
#include <limits>
#include <sstream>
#include <string>

namespace zoltest {

inline void anyPan(Random& random, CCs2dTrafo& trafo) {
    if (random.chance(0.4)) trafo.setDspPanFactor(random.real(-0.6, 0.6), random.real(-0.6, 0.6));
}

inline void anyMirror(Random& random, CCs2dTrafo& trafo) {
    if (random.chance(0.4)) trafo.mirror(random.integer(1, 2));
}

/// A view for images that it has been told about; sizes are set again by whoever resamples.
inline CCs2dTrafo anyView(Random& random, CCsImage& src, CCsImage& dst) {
    CCs2dTrafo trafo;
    trafo.setSizes(src, dst);
    switch (random.integer(0, 9)) {
        case 0:
            break;
        case 1:  // a whole number of display pixels for a source pixel, or the reverse
            trafo.rotate(90.0 * random.integer(0, 3));
            anyMirror(random, trafo);
            trafo.setDspScaleFactor(random.chance(0.5) ? random.integer(1, 5) : 1.0 / random.integer(1, 5));
            if (random.chance(0.5)) anyPan(random, trafo);
            break;
        case 2:  // axis-aligned
            anyMirror(random, trafo);
            trafo.scale(random.real(0.2, 4.0));
            anyPan(random, trafo);
            break;
        case 3:
        case 4:  // quarter turns
            trafo.rotate(90.0 * random.integer(-4, 4));
            anyMirror(random, trafo);
            trafo.scale(random.real(0.2, 4.0));
            anyPan(random, trafo);
            break;
        case 5:
        case 6:  // oblique
            trafo.rotate(random.real(-360.0, 360.0));
            anyMirror(random, trafo);
            trafo.scale(random.real(0.2, 4.0));
            anyPan(random, trafo);
            break;
        case 7:  // far in or far out
            trafo.rotate(random.chance(0.5) ? 90.0 * random.integer(0, 3) : random.real(0.0, 360.0));
            anyMirror(random, trafo);
            trafo.scale(std::pow(10.0, random.real(-4.0, 3.5)));
            anyPan(random, trafo);
            break;
        case 8:  // far away
            trafo.rotate(random.chance(0.5) ? 0.0 : random.real(0.0, 360.0));
            anyMirror(random, trafo);
            trafo.setDspPanFactor(std::pow(10.0, random.real(0.0, 6.0)) * (random.chance(0.5) ? 1 : -1),
                                  random.chance(0.5) ? 0.0 : random.real(-100.0, 100.0));
            break;
        default:  // what no view consists of: singular, sheared, or not a number
            switch (random.integer(0, 3)) {
                case 0:
                    trafo = CCs2dTrafo(random.real(-1, 1), 0, 0, 0, 0, 0);
                    break;
                case 1:
                    trafo.scale(std::numeric_limits<double>::quiet_NaN());
                    break;
                case 2:
                    trafo.setDspPanFactor(std::numeric_limits<double>::infinity(), 0);
                    break;
                default:
                    trafo = CCs2dTrafo(random.real(-2, 2), random.real(-2, 2), random.real(-1, 1), random.real(-2, 2),
                                       random.real(-2, 2), random.real(-1, 1));
                    break;
            }
            break;
    }
    return trafo;
}

/// A view at one display pixel for a source pixel, turned by quarters or mirrored.
inline CCs2dTrafo plainView(Random& random, CCsImage& src, CCsImage& dst) {
    CCs2dTrafo trafo;
    trafo.setSizes(src, dst);
    if (random.chance(0.3)) trafo.rotate(90.0 * random.integer(0, 3));
    anyMirror(random, trafo);
    trafo.setDspScaleFactor(1.0);
    return trafo;
}

struct Matrix {
    double m[6] = {};
};

/// The display-to-image matrix that resampling between the two images has to use.
inline Matrix toImageOf(const CCs2dTrafo& trafo, const CCsImage& src, const CCsImage& dst) {
    CCs2dTrafo copy(trafo);
    copy.setSizes(src, dst);
    Matrix out;
    copy.getTransformation(out.m[0], out.m[1], out.m[2], out.m[3], out.m[4], out.m[5]);
    return out;
}

inline Matrix toDisplayOf(const CCs2dTrafo& trafo) {
    CCs2dTrafo copy(trafo);
    Matrix out;
    copy.getImgToDsp(out.m[0], out.m[1], out.m[2], out.m[3], out.m[4], out.m[5]);
    return out;
}

/// Moves a view so that the first row starts at, or 1/65536 beside, a whole or half source pixel in both directions:
/// there lie all the borders at which one rule differs from another.
inline void startAtBorders(Random& random, CCs2dTrafo& trafo, const CCsImage& src, const CCsImage& dst) {
    double panX = 0;
    double panY = 0;
    trafo.getDspPanFactor(panX, panY);
    const Matrix at = toImageOf(trafo, src, dst);
    CCs2dTrafo moved(trafo);
    moved.setDspPanFactor(panX + 1, panY);
    const Matrix right = toImageOf(moved, src, dst);
    moved.setDspPanFactor(panX, panY + 1);
    const Matrix down = toImageOf(moved, src, dst);
    for (const double entry : at.m) {
        if (!std::isfinite(entry) || std::fabs(entry) > 1e6) return;
    }
    // How the origin answers to the pan.
    const double ux = right.m[4] - at.m[4], uy = down.m[4] - at.m[4];
    const double vx = right.m[5] - at.m[5], vy = down.m[5] - at.m[5];
    const double determinant = ux * vy - uy * vx;
    if (!(std::fabs(determinant) > 1e-9)) return;
    const double fractions[] = {0, 0, 1, 2, 65535, 65534, 32768, 32767, 32769};
    const double halfU = std::trunc((std::trunc(at.m[0] * 65536) + std::trunc(at.m[2] * 65536)) / 2);
    const double halfV = std::trunc((std::trunc(at.m[1] * 65536) + std::trunc(at.m[3] * 65536)) / 2);
    const double wholeU = std::floor((at.m[4] * 65536 + halfU) / 65536) * 65536 + fractions[random.integer(0, 8)];
    const double wholeV = std::floor((at.m[5] * 65536 + halfV) / 65536) * 65536 + fractions[random.integer(0, 8)];
    // Between two values that are cut to the wanted one.
    const double originU = wholeU - halfU, originV = wholeV - halfV;
    const double byU = (originU + (originU < 0 ? -0.4 : 0.4)) / 65536 - at.m[4];
    const double byV = (originV + (originV < 0 ? -0.4 : 0.4)) / 65536 - at.m[5];
    trafo.setDspPanFactor(panX + (byU * vy - byV * uy) / determinant, panY + (byV * ux - byU * vx) / determinant);
}

/// Whether no position along an image of ordinary size can leave 64 bits of 16.16. Beyond that a picture means nothing,
/// and only the memory around it can be compared.
inline bool withinReach(const Matrix& matrix) {
    for (const double entry : matrix.m) {
        if (std::isfinite(entry) && std::fabs(entry) > 0x1p39) return false;
    }
    return true;
}

inline std::string textOf(const Matrix& matrix) {
    std::ostringstream out;
    out << std::setprecision(17) << '(';
    for (int i = 0; i < 6; ++i) out << (i > 0 ? ", " : "") << matrix.m[i];
    out << ')';
    return out.str();
}

}  // namespace zoltest
