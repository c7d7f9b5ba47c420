#include "zolcs/ccs2dtrafo.h"

#include "zolcs/ccsimage.h"
#include "zolcs/support/conversion.h"
#include "zolcs/support/portablemath.h"
#include "zolcs/support/report.h"
#include "zolcs/view/viewturn.h"

#include <cmath>
#include <utility>

namespace {

constexpr zolcs::ReportSite singularMatrix{L"Matrix is singular, determinent =", L"source\\zolcs\\ccs2dtrafo", 343};

constexpr double smallestDeterminant = 1e-10;

// Half-open, as hosts know it: the upper limit itself is not near zero.
bool nearZero(double value, double limit) { return value >= -limit && value < limit; }

bool nearOne(double scale) { return std::fabs(scale - 1.0) < 0.01; }

}  // namespace

CCs2dTrafo::CCs2dTrafo() : pi(zolcs::portable::acos(-1.0)) {}

CCs2dTrafo::CCs2dTrafo(double m11, double m12, double m13, double m21, double m22, double m23)
    : userMatrix{m11, m21, m12, m22, m13, m23}, pi(zolcs::portable::acos(-1.0)) {}

CCs2dTrafo::~CCs2dTrafo() = default;

void CCs2dTrafo::reset() {
    constexpr double identity[6] = {1.0, 0.0, 0.0, 1.0, 0.0, 0.0};
    for (int i = 0; i < 6; ++i) userMatrix[i] = identity[i];
    isValid = 0;
}

void CCs2dTrafo::setSource_(int width, int height, double ratioYx) {
    srcWidth = width;
    srcHeight = height;
    srcRatioYx = ratioYx;
}

void CCs2dTrafo::computeDstMax_() {
    const double dstExtent = dstHeight * dstRatioYx;
    const double srcExtent = srcHeight * srcRatioYx;
    const double across = static_cast<double>(dstWidth) / static_cast<double>(srcWidth);
    dstMax = dstExtent / srcExtent > across ? dstWidth : dstExtent;
}

void CCs2dTrafo::setSizes(const CCsImage& source, const CCsImage& destination) {
    setSizes(source, destination.getWidth(), destination.getHeight(), destination.getRatioYx(), 0, 0);
}

void CCs2dTrafo::setSizes(const CCsImage& source, int width, int height, double ratioYx, int offsetX, int offsetY) {
    setSizes(source.getWidth(), source.getHeight(), width, height, source.getRatioYx(), ratioYx, offsetX, offsetY);
}

void CCs2dTrafo::setSizes(int sourceWidth, int sourceHeight, int width, int height, double sourceRatioYx,
                          double ratioYx, int offsetX, int offsetY) {
    setSource_(sourceWidth, sourceHeight, sourceRatioYx);
    setDestSizes(width, height, ratioYx, offsetX, offsetY);
    computeDstMax_();
}

void CCs2dTrafo::setDestSizes(int width, int height, double ratioYx, int offsetX, int offsetY) {
    dstWidth = width;
    dstHeight = height;
    dstRatioYx = ratioYx;
    dstOffsetX = offsetX;
    dstOffsetY = offsetY;
    isValid = 0;
}

void CCs2dTrafo::swapSourceDimension(bool flag1, bool flag2) {
    setSource_(srcHeight, srcWidth, 1.0 / srcRatioYx);
    dstOffsetX = 0;
    dstOffsetY = 0;
    isValid = 0;
    computeDstMax_();
    const double px = userMatrix[4];
    const double py = userMatrix[5];
    userMatrix[4] = flag1 == flag2 ? -py : py;
    userMatrix[5] = flag1 == flag2 ? px : -px;
}

void CCs2dTrafo::setDstSmallerSide(int on) {
    dstSmallerSide = on;
    isValid = 0;
}

void CCs2dTrafo::setFitIntoSegementMode(bool on) { fitIntoSegmentMode = on; }

CSize CCs2dTrafo::getSrcSize() const { return {srcWidth, srcHeight}; }

CSize CCs2dTrafo::getDstSize() const { return {dstWidth, dstHeight}; }

double CCs2dTrafo::getDstMax() const { return dstMax; }

double CCs2dTrafo::getSrcMax() { return fitExtents_(true).source; }

bool CCs2dTrafo::isSourceAspectRatioOtherThanUnity() const { return std::fabs(srcRatioYx - 1.0) > 1e-6; }

void CCs2dTrafo::scale(double factor) {
    for (double& number : userMatrix) number *= factor;
    isValid = 0;
}

void CCs2dTrafo::scale2dMatrix(double factor) {
    for (int i = 0; i < 4; ++i) userMatrix[i] *= factor;
    isValid = 0;
}

void CCs2dTrafo::translate(double dx, double dy) {
    userMatrix[4] += dx;
    userMatrix[5] += dy;
    isValid = 0;
}

void CCs2dTrafo::rotate(double degrees) {
    const double theta = pi * (degrees / 180.0);
    const double s = zolcs::portable::sin(theta);
    const double k = zolcs::portable::cos(theta);
    for (int column = 0; column < 6; column += 2) {
        const double x = userMatrix[column];
        const double y = userMatrix[column + 1];
        userMatrix[column] = k * x - s * y;
        userMatrix[column + 1] = s * x + k * y;
    }
    isValid = 0;
}

void CCs2dTrafo::setDspPanFactor(double px, double py) {
    userMatrix[4] = px;
    userMatrix[5] = py;
    isValid = 0;
}

void CCs2dTrafo::getDspPanFactor(double& px, double& py) const {
    px = userMatrix[4];
    py = userMatrix[5];
}

void CCs2dTrafo::getTranslation(double& tx, double& ty) {
    getDspPanFactor(tx, ty);
    isValid = 0;
}

int CCs2dTrafo::getOperations(double& angle, int& mirrored, double& scale, double& tx, double& ty) {
    const auto& [a, b, c, d, e, f] = userMatrix;
    tx = e;
    ty = f;
    const double determinant = d * a - b * c;
    if (nearZero(determinant, smallestDeterminant)) {
        return zolcs::fail(singularMatrix, zolcs::truncated(determinant), CCS_FAILED);
    }
    mirrored = determinant < 0.0 ? 1 : 0;
    scale = std::sqrt(mirrored != 0 ? -determinant : determinant);
    angle = zolcs::portable::acos((mirrored != 0 ? -a : a) / scale) * 180.0 / pi;
    if (mirrored != 0 ? c < 0.0 : c > 0.0) angle = 360.0 - angle;
    return CCS_DONE;
}

/// What getOperations finds; a singular matrix counts as upright, not mirrored and of scale 1.
CCs2dTrafo::Operations CCs2dTrafo::operations_() {
    Operations found;
    double tx = 0.0;
    double ty = 0.0;
    getOperations(found.angle, found.mirrored, found.scale, tx, ty);
    return found;
}

bool CCs2dTrafo::isFitIntoSegment() { return nearOne(operations_().scale); }

bool CCs2dTrafo::isTransition() const { return transition; }

int CCs2dTrafo::isTransposition() const {
    constexpr double limit = 1e-5;
    const auto& [a, b, c, d, e, f] = userMatrix;
    return (nearZero(b, limit) && nearZero(c, limit)) || (nearZero(a, limit) && nearZero(d, limit)) ? 1 : 0;
}

/// The extents, of the source and of the destination, that scale 1 brings to the same length. A zoomed view of square
/// pixels keeps its size through a quarter turn; a fit-sized view is fitted anew if that is asked for.
CCs2dTrafo::Extents CCs2dTrafo::fitExtents_(bool refitQuarterTurns) {
    double down = srcHeight * srcRatioYx;
    double across = srcWidth;
    const Operations view = operations_();
    if (zolcs::isTransposed(zolcs::turnOf(view.angle))) {
        const bool refit = nearOne(view.scale) && !transition && refitQuarterTurns;
        if (refit || isSourceAspectRatioOtherThanUnity()) std::swap(down, across);
    }
    const double dstDown = dstHeight * dstRatioYx;
    const double dstAcross = dstWidth;
    if (dstSmallerSide != 0) {
        if (dstDown / down > dstAcross / across) return {across, dstAcross};
        return {down, dstDown};
    }
    // Deliberately the stored width, also where the extents have been exchanged.
    const double source = across > down ? srcWidth : down;
    return {source, dstAcross > dstDown ? dstAcross : dstDown};
}

/// Brings both pixel matrices up to date.
void CCs2dTrafo::adaptTransformation_() {
    if (isValid != 0) return;
    const auto [S, D] = fitExtents_(fitIntoSegmentMode);
    const auto& [a, b, c, d, e, f] = userMatrix;
    const double r = srcRatioYx;
    const double downD = D / dstRatioYx;
    const double width = srcWidth;
    const double height = srcHeight;
    auto& [A, B, C, E, X, Y] = imgToDsp;
    A = a * D / S;
    B = b * downD / S;
    C = c * r * D / S;
    E = d * r * downD / S;
    X = (e - 0.5 * (a * width + c * r * height) / S) * D + 0.5 * dstWidth + dstOffsetX;
    Y = (f - 0.5 * (b * width + d * r * height) / S) * downD + 0.5 * dstHeight + dstOffsetY;

    double determinant = E * A - C * B;
    if (nearZero(determinant, smallestDeterminant)) determinant = smallestDeterminant;
    dspToImg[0] = E / determinant;
    dspToImg[1] = -B / determinant;
    dspToImg[2] = -C / determinant;
    dspToImg[3] = A / determinant;
    dspToImg[4] = (Y * C - X * E) / determinant;
    dspToImg[5] = -(Y * A - X * B) / determinant;
    isValid = 1;
}

/// Of the image-to-display matrix, which must be up to date.
double CCs2dTrafo::meanScale_() const {
    return std::sqrt(std::fabs(imgToDsp[0] * imgToDsp[3] - imgToDsp[2] * imgToDsp[1]));
}

void CCs2dTrafo::getTransformation(double& a, double& b, double& c, double& d, double& e, double& f) {
    adaptTransformation_();
    a = dspToImg[0];
    b = dspToImg[1];
    c = dspToImg[2];
    d = dspToImg[3];
    e = dspToImg[4];
    f = dspToImg[5];
}

int CCs2dTrafo::getImgToDsp(double& a, double& b, double& c, double& d, double& e, double& f) {
    adaptTransformation_();
    a = imgToDsp[0];
    b = imgToDsp[1];
    c = imgToDsp[2];
    d = imgToDsp[3];
    e = imgToDsp[4];
    f = imgToDsp[5];
    return CCS_DONE;
}

int CCs2dTrafo::getDspScaleFactor(double& factor) {
    adaptTransformation_();
    factor = meanScale_();
    return CCS_DONE;
}

int CCs2dTrafo::getDspScaleFactorXY(double& fx, double& fy) {
    adaptTransformation_();
    const Operations view = operations_();
    const auto& [a, b, c, d, e, f] = imgToDsp;
    const zolcs::Turn turn = zolcs::turnOf(view.angle);
    if (turn == zolcs::Turn::None) {
        fx = view.mirrored != 0 ? -a : a;
        fy = d;
    } else if (turn == zolcs::Turn::Half) {
        fx = view.mirrored != 0 ? a : -a;
        fy = -d;
    } else if (zolcs::isTransposed(turn)) {
        fx = std::fabs(b);
        fy = std::fabs(c);
    }
    return CCS_DONE;
}

int CCs2dTrafo::setDspScaleFactor(double factor) {
    if (nearOne(operations_().scale)) {
        transition = true;  // a fit-sized quarter turn starts from the extents that its zoomed view will have
        isValid = 0;
    }
    adaptTransformation_();
    const double zoom = factor / meanScale_();
    transition = false;
    scale(zoom);
    return CCS_DONE;
}

bool CCs2dTrafo::isAcqisitionSize() {
    adaptTransformation_();
    return nearOne(meanScale_());
}
