// From logical coordinates to device pixels.
#pragma once

#include "platform/gdi/gdi.h"
#include "platform/geometry.h"

namespace zolgdi {

struct PointD {
    double x = 0.0;
    double y = 0.0;

    bool operator==(const PointD&) const = default;
};

/// x' = m11 x + m21 y + dx, y' = m12 x + m22 y + dy.
struct Affine {
    [[nodiscard]] PointD operator()(double x, double y) const {
        return {m11 * x + m21 * y + dx, m12 * x + m22 * y + dy};
    }
    /// This first, then `next`.
    [[nodiscard]] Affine then(const Affine& next) const {
        const PointD origin = next(dx, dy);
        return {m11 * next.m11 + m12 * next.m21,
                m11 * next.m12 + m12 * next.m22,
                m21 * next.m11 + m22 * next.m21,
                m21 * next.m12 + m22 * next.m22,
                origin.x,
                origin.y};
    }
    /// The inverse transformation; there must be one.
    [[nodiscard]] Affine inverse() const {
        const double determinant = m11 * m22 - m12 * m21;
        const Affine back{m22 / determinant, -m12 / determinant, -m21 / determinant, m11 / determinant, 0.0, 0.0};
        const PointD origin = back(-dx, -dy);
        return {back.m11, back.m12, back.m21, back.m22, origin.x, origin.y};
    }
    /// Around a rectangle, which may be turned.
    [[nodiscard]] zolplatform::Bounds<PointD> boundsOf(double left, double top, double right, double bottom) const {
        const Affine& map = *this;
        return zolplatform::boundsOf(
            std::array{map(left, top), map(right, top), map(left, bottom), map(right, bottom)});
    }
    /// Keeps horizontal lines horizontal and vertical ones vertical.
    [[nodiscard]] bool axisAligned() const { return m12 == 0.0 && m21 == 0.0; }

    double m11 = 1.0;
    double m12 = 0.0;
    double m21 = 0.0;
    double m22 = 1.0;
    double dx = 0.0;
    double dy = 0.0;
};

/// The nearest integer, halves upward; saturated far outside of every device, where also NaN goes.
LONG roundToDevice(double value);
inline POINT roundToDevice(PointD point) { return {roundToDevice(point.x), roundToDevice(point.y)}; }

}  // namespace zolgdi
