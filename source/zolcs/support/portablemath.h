// sin, cos, acos, atan2 and exp with the same bits on every platform.
//
// The C libraries differ in the last bit, and one bit in a view matrix or a sigmoid table moves pixels. These functions
// consist of IEEE double additions, multiplications, divisions and square roots in a fixed order, and of exactly
// defined roundings and remainders, so that every build gives the same result. Each also lies within one unit in the
// last place of the exact value.
#pragma once

namespace zolcs::portable {

/// Sine of an angle in radians; NaN for NaN and infinities. Beyond 2^40 radians whole turns are first taken off with
/// the double that is nearest to 2 pi.
double sin(double radians);

/// Cosine of an angle in radians; as sin.
double cos(double radians);

/// Angle in [0, pi] whose cosine is x; NaN for NaN and outside [-1, 1].
double acos(double x);

/// Angle of the point (x, y) in [-pi, pi], with C's conventions for signed zeros, infinities and NaN.
double atan2(double y, double x);

/// e to the x: 0 and infinity beyond the range of double, NaN for NaN.
double exp(double x);

}  // namespace zolcs::portable
