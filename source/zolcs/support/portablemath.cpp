#include "zolcs/support/portablemath.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace zolcs::portable {

namespace {

static_assert(std::numeric_limits<double>::is_iec559 && std::numeric_limits<double>::digits == 53);

/// An unevaluated sum hi + lo with |lo| at most half a unit in the last place of hi: some 106 bits.
struct Double2 {
    double hi = 0.0;
    double lo = 0.0;
};

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

// Error-free sums and products, by Dekker and Knuth. They need round-to-nearest doubles without contraction, which is
// how the project is built, and magnitudes below 2^996 for the split.

/// a + b exactly, for |a| >= |b|.
constexpr Double2 quickSum(double a, double b) {
    const double sum = a + b;
    return {sum, b - (sum - a)};
}

/// a + b exactly.
constexpr Double2 exactSum(double a, double b) {
    const double sum = a + b;
    const double bPart = sum - a;
    return {sum, (a - (sum - bPart)) + (b - bPart)};
}

constexpr Double2 split(double a) {
    const double scaled = 134217729.0 * a;  // 2^27 + 1
    const double high = scaled - (scaled - a);
    return {high, a - high};
}

/// a * b exactly.
constexpr Double2 exactProduct(double a, double b) {
    const double product = a * b;
    const Double2 as = split(a);
    const Double2 bs = split(b);
    return {product, ((as.hi * bs.hi - product) + as.hi * bs.lo + as.lo * bs.hi) + as.lo * bs.lo};
}

constexpr Double2 operator-(Double2 a) { return {-a.hi, -a.lo}; }

constexpr Double2 operator+(Double2 a, Double2 b) {
    const Double2 high = exactSum(a.hi, b.hi);
    const Double2 low = exactSum(a.lo, b.lo);
    const Double2 joined = quickSum(high.hi, high.lo + low.hi);
    return quickSum(joined.hi, joined.lo + low.lo);
}

constexpr Double2 operator-(Double2 a, Double2 b) { return a + -b; }

constexpr Double2 operator*(Double2 a, Double2 b) {
    const Double2 product = exactProduct(a.hi, b.hi);
    return quickSum(product.hi, product.lo + (a.hi * b.lo + a.lo * b.hi));
}

constexpr Double2 operator*(Double2 a, double b) {
    const Double2 product = exactProduct(a.hi, b);
    return quickSum(product.hi, product.lo + a.lo * b);
}

constexpr Double2 operator/(Double2 a, Double2 b) {
    const double first = a.hi / b.hi;
    const Double2 rest = a - b * first;
    const double second = rest.hi / b.hi;
    const double third = (rest - b * second).hi / b.hi;
    return quickSum(first, second) + Double2{third, 0.0};
}

Double2 squareRoot(Double2 a) {
    if (a.hi <= 0.0) return {};
    const double root = std::sqrt(a.hi);
    return quickSum(root, (a - exactProduct(root, root)).hi / (2.0 * root));
}

/// 1 / n! for n = 0, 1, ...
template <std::size_t count>
constexpr std::array<Double2, count> inverseFactorials() {
    std::array<Double2, count> table{};
    table[0] = {1.0, 0.0};
    for (std::size_t n = 1; n < count; ++n) table[n] = table[n - 1] / Double2{static_cast<double>(n), 0.0};
    return table;
}
constexpr auto inverseFactorial = inverseFactorials<30>();

// pi / 2 as a sum of doubles, each the rest of the sum before it rounded to nearest.
constexpr std::array<double, 5> halfPi = {0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54, -0x1.f1976b7ed8fbcp-110,
                                          0x1.4cf98e804177dp-164, 0x1.31d89cd9128a5p-218};
constexpr Double2 pi = {2.0 * halfPi[0], 2.0 * halfPi[1]};

/// sin(x) and cos(x) for |x| <= 0.79, by their series.
struct SinCos {
    Double2 sin;
    Double2 cos;
};

SinCos series(Double2 x) {
    const Double2 square = x * x;
    Double2 odd = inverseFactorial[29];
    Double2 even = inverseFactorial[28];
    for (std::size_t n = 27; n >= 3; n -= 2) {
        odd = inverseFactorial[n] - square * odd;
        even = inverseFactorial[n - 1] - square * even;
    }
    return {x - x * (square * odd), Double2{1.0, 0.0} - square * even};
}

/// x less `quarters` quarter turns; the cancellation eats up to some 62 bits beyond the magnitude of x, so that the
/// sum is kept exactly until its end.
Double2 lessQuarterTurns(double x, double quarters) {
    std::array<double, 2 * halfPi.size() + 1> parts{};  // a sum without overlaps, smallest first
    std::size_t count = 0;
    const auto grow = [&](double term) {
        for (std::size_t i = 0; i < count; ++i) {
            const Double2 sum = exactSum(term, parts[i]);
            term = sum.hi;
            parts[i] = sum.lo;
        }
        parts[count++] = term;
    };
    for (std::size_t i = halfPi.size(); i-- > 0;) {
        const Double2 product = exactProduct(-quarters, halfPi[i]);
        grow(product.lo);
        grow(product.hi);
    }
    grow(x);
    Double2 sum;
    for (std::size_t i = count; i-- > 0;) sum = sum + Double2{parts[i], 0.0};
    return sum;
}

/// Sine and cosine of any finite angle.
SinCos sinCos(double radians) {
    constexpr double reducible = 0x1p40;
    if (std::fabs(radians) > reducible) radians = std::fmod(radians, pi.hi * 2.0);
    const double quarters = std::floor(radians * 0x1.45f306dc9c883p-1 + 0.5);  // 2 / pi
    const SinCos rest = series(lessQuarterTurns(radians, quarters));
    switch (static_cast<std::int64_t>(quarters) & 3) {
        case 1:
            return {rest.cos, -rest.sin};
        case 2:
            return {-rest.sin, -rest.cos};
        case 3:
            return {-rest.cos, rest.sin};
        default:
            return rest;
    }
}

/// atan(q) for 0 <= q <= 1 to about 50 bits: the start of `angleOf`.
double roughAtan(double q) {
    constexpr double tanEighth = 0x1.a827999fcef32p-2;  // tan(pi / 8)
    const bool upper = q > tanEighth;
    const double t = upper ? (q - 1.0) / (q + 1.0) : q;
    const double square = t * t;
    double sum = 0.0;
    for (int n = 41; n >= 1; n -= 2) sum = 1.0 / n - square * sum;
    return upper ? halfPi[0] * 0.5 + t * sum : t * sum;
}

/// Angle in [0, pi / 2] of a point whose coordinates are neither negative nor so far apart or so extreme that their
/// products underflow.
Double2 angleOf(Double2 y, Double2 x) {
    const double start = y.hi <= x.hi ? roughAtan(y.hi / x.hi) : halfPi[0] - roughAtan(x.hi / y.hi);
    // Turned back by the start, the point's angle is so small that it equals its tangent.
    const SinCos turn = sinCos(start);
    return Double2{start, 0.0} + (y * turn.cos - x * turn.sin) / (x * turn.cos + y * turn.sin);
}

/// 2 to the power n / 16.
constexpr std::array<Double2, 16> rootsOfTwo = {{{0x1.0000000000000p+0, 0x0.0p+0},
                                                 {0x1.0b5586cf9890fp+0, 0x1.8a62e4adc610bp-54},
                                                 {0x1.172b83c7d517bp+0, -0x1.19041b9d78a76p-55},
                                                 {0x1.2387a6e756238p+0, 0x1.9b07eb6c70573p-54},
                                                 {0x1.306fe0a31b715p+0, 0x1.6f46ad23182e4p-55},
                                                 {0x1.3dea64c123422p+0, 0x1.ada0911f09ebcp-55},
                                                 {0x1.4bfdad5362a27p+0, 0x1.d4397afec42e2p-56},
                                                 {0x1.5ab07dd485429p+0, 0x1.6324c054647adp-54},
                                                 {0x1.6a09e667f3bcdp+0, -0x1.bdd3413b26456p-54},
                                                 {0x1.7a11473eb0187p+0, -0x1.41577ee04992fp-55},
                                                 {0x1.8ace5422aa0dbp+0, 0x1.6e9f156864b27p-54},
                                                 {0x1.9c49182a3f090p+0, 0x1.c7c46b071f2bep-56},
                                                 {0x1.ae89f995ad3adp+0, 0x1.7a1cd345dcc81p-54},
                                                 {0x1.c199bdd85529cp+0, 0x1.11065895048ddp-55},
                                                 {0x1.d5818dcfba487p+0, 0x1.2ed02d75b3707p-55},
                                                 {0x1.ea4afa2a490dap+0, -0x1.e9c23179c2893p-54}}};

double powerOfTwo(int exponent) {  // for normal results
    return std::bit_cast<double>(static_cast<std::uint64_t>(exponent + 1023) << 52);
}

}  // namespace

double sin(double radians) {
    if (!std::isfinite(radians)) return notANumber;
    if (std::fabs(radians) < 0x1p-26) return radians;  // the next term is below half a unit in the last place
    return sinCos(radians).sin.hi;
}

double cos(double radians) {
    if (!std::isfinite(radians)) return notANumber;
    return sinCos(radians).cos.hi;
}

double acos(double x) {
    if (!(x >= -1.0 && x <= 1.0)) return notANumber;
    const Double2 opposite = squareRoot(exactSum(1.0, -x) * exactSum(1.0, x));
    const Double2 angle = angleOf(opposite, {std::fabs(x), 0.0});
    return x < 0.0 ? (pi - angle).hi : angle.hi;
}

double atan2(double y, double x) {
    if (std::isnan(x) || std::isnan(y)) return notANumber;
    double height = std::fabs(y);
    double width = std::fabs(x);
    if (std::isinf(height) || std::isinf(width)) {
        height = std::isinf(height) ? 1.0 : 0.0;
        width = std::isinf(width) ? 1.0 : 0.0;
    }
    const bool leftward = std::signbit(x);
    Double2 angle;
    constexpr double negligible = 0x1p-60;  // its cube is nothing beside it, even in 106 bits
    if (width > 0.0 && height / width < negligible) {
        if (!leftward) return std::copysign(height / width, y);
        angle = {height / width, 0.0};
    } else if (height > 0.0 && width / height < negligible) {
        angle = Double2{halfPi[0], halfPi[1]} - Double2{width / height, 0.0};
    } else if (height > 0.0) {
        const double larger = height > width ? height : width;
        const double factor = larger > 0x1p400 ? 0x1p-600 : larger < 0x1p-400 ? 0x1p600 : 1.0;
        angle = angleOf({height * factor, 0.0}, {width * factor, 0.0});
    }
    if (leftward) angle = pi - angle;
    return std::copysign(angle.hi, y);
}

double exp(double x) {
    if (std::isnan(x)) return x;
    if (x > 0x1.62e42fefa39efp+9) return infinity;  // the logarithm of the largest double
    if (x < -746.0) return 0.0;

    // x = k (log 2) / 16 + r. The first part of log 2 has 37 bits, so that its product with k is exact.
    constexpr double log2High = 0x1.62e42fefa0000p-5;
    constexpr Double2 log2Low = {0x1.cf79abc9e3b3ap-44, -0x1.ff0342542fc33p-98};
    const double k = std::floor(x * 0x1.71547652b82fep+4 + 0.5);  // 16 / log 2
    const Double2 r = exactSum(x, -(k * log2High)) - log2Low * k;

    double tail = 0.0;  // the late terms need no more than a double
    for (std::size_t n = 12; n >= 6; --n) tail = inverseFactorial[n].hi + r.hi * tail;
    Double2 sum = {r.hi * tail, 0.0};
    for (std::size_t n = 5; n >= 1; --n) sum = (inverseFactorial[n] + sum) * r;
    const int sixteenths = static_cast<int>(k);
    const Double2 root = rootsOfTwo[static_cast<std::size_t>(sixteenths & 15)];
    const Double2 result = root + root * sum;

    const int exponent = sixteenths >> 4;
    const int half = exponent / 2;  // both factors are normal, also where the result is not
    return result.hi * powerOfTwo(half) * powerOfTwo(exponent - half);
}

}  // namespace zolcs::portable
