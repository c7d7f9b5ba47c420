#include "zolcs/support/portablemath.h"

#include "support/test_data.h"

#include <boost/multiprecision/cpp_bin_float.hpp>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>

namespace {

namespace portable = zolcs::portable;
namespace mp = boost::multiprecision;

/// Precise enough for the nearest double of every result to be known.
using Exact = mp::number<mp::cpp_bin_float<320, mp::digit_base_2>, mp::et_off>;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double smallest = std::numeric_limits<double>::denorm_min();
constexpr double largest = std::numeric_limits<double>::max();

std::uint64_t bits(double value) { return std::bit_cast<std::uint64_t>(value); }

void expectNearest(double value, const Exact& exact, const char* what, double x, double y = 0.0) {
    ASSERT_EQ(bits(value), bits(exact.convert_to<double>()))
        << what << " of " << std::hexfloat << x << ", " << y << " is " << value;
}

/// Any sign and an exponent up to 2^range either way.
double anyMagnitude(zoltest::Random& random, int range) {
    return std::ldexp(random.real(1.0, 2.0), random.integer(-range, range)) * (random.chance(0.5) ? 1.0 : -1.0);
}

}  // namespace

TEST(PortableMathTest, SineAndCosineAreTheNearestDoubles) {
    zoltest::Random random(1);
    for (int i = 0; i < 1500; ++i) {
        const double x = i % 2 == 0 ? random.real(-10.0, 10.0) : anyMagnitude(random, 39);
        expectNearest(portable::sin(x), sin(Exact(x)), "sin", x);
        expectNearest(portable::cos(x), cos(Exact(x)), "cos", x);
    }
}

TEST(PortableMathTest, SineAndCosineOfEveryDegree) {
    for (int degrees = -720; degrees <= 720; ++degrees) {
        const double x = std::numbers::pi * (degrees / 180.0);
        expectNearest(portable::sin(x), sin(Exact(x)), "sin", x);
        expectNearest(portable::cos(x), cos(Exact(x)), "cos", x);
    }
    EXPECT_EQ(bits(portable::cos(std::numbers::pi / 2.0)), bits(0x1.1a62633145c07p-54));
    EXPECT_EQ(bits(portable::sin(std::numbers::pi)), bits(0x1.1a62633145c07p-53));
    EXPECT_EQ(portable::sin(std::numbers::pi / 2.0), 1.0);
    EXPECT_EQ(portable::cos(std::numbers::pi), -1.0);
}

TEST(PortableMathTest, SineAndCosineOfExtremes) {
    EXPECT_EQ(bits(portable::sin(0.0)), bits(0.0));
    EXPECT_EQ(bits(portable::sin(-0.0)), bits(-0.0));
    EXPECT_EQ(portable::sin(smallest), smallest);
    EXPECT_EQ(portable::cos(0.0), 1.0);
    EXPECT_EQ(portable::cos(smallest), 1.0);
    for (const double x : {infinity, -infinity, notANumber}) {
        EXPECT_TRUE(std::isnan(portable::sin(x)));
        EXPECT_TRUE(std::isnan(portable::cos(x)));
    }
    // Beyond the range of exact reduction the results still belong to one angle.
    for (const double x : {0x1p41, 1e20, -1e300, largest}) {
        const double s = portable::sin(x);
        const double k = portable::cos(x);
        EXPECT_NEAR(s * s + k * k, 1.0, 1e-15);
    }
}

TEST(PortableMathTest, ArcCosineIsTheNearestDouble) {
    zoltest::Random random(2);
    for (int i = 0; i < 1500; ++i) {
        double x = random.real(-1.0, 1.0);
        if (i % 3 == 1) x = std::ldexp(x, -random.integer(0, 60));
        if (i % 3 == 2) x = std::copysign(1.0 - std::ldexp(std::fabs(x), -random.integer(0, 52)), x);
        expectNearest(portable::acos(x), acos(Exact(x)), "acos", x);
    }
    EXPECT_EQ(bits(portable::acos(1.0)), bits(0.0));
    EXPECT_EQ(bits(portable::acos(-1.0)), bits(std::numbers::pi));
    EXPECT_EQ(bits(portable::acos(0.0)), bits(std::numbers::pi / 2.0));
    EXPECT_EQ(bits(portable::acos(-0.0)), bits(std::numbers::pi / 2.0));
}

TEST(PortableMathTest, ArcCosineIsNotClamped) {
    for (const double x :
         {std::nextafter(1.0, 2.0), std::nextafter(-1.0, -2.0), 5.0, infinity, -infinity, notANumber}) {
        EXPECT_TRUE(std::isnan(portable::acos(x))) << x;
    }
}

TEST(PortableMathTest, AngleOfAPointIsTheNearestDouble) {
    zoltest::Random random(3);
    for (int i = 0; i < 1500; ++i) {
        double x = anyMagnitude(random, 90);
        double y = i % 2 == 0 ? anyMagnitude(random, 90) : x * random.real(-3.0, 3.0);
        if (i % 5 == 1) {
            x *= 0x1p800;
            y *= 0x1p800;
        }
        if (i % 5 == 2) {
            x *= 0x1p-800;
            y *= 0x1p-800;
        }
        expectNearest(portable::atan2(y, x), atan2(Exact(y), Exact(x)), "atan2", y, x);
    }
}

TEST(PortableMathTest, AngleOfAPointOnAxesAndAtTheEndsOfTheRange) {
    constexpr double pi = std::numbers::pi;
    const auto expectAngle = [](double y, double x, double angle) {
        EXPECT_EQ(bits(portable::atan2(y, x)), bits(angle)) << y << ", " << x;
    };
    for (const double sign : {1.0, -1.0}) {
        expectAngle(0.0 * sign, 0.0, 0.0 * sign);
        expectAngle(0.0 * sign, -0.0, pi * sign);
        expectAngle(0.0 * sign, 3.0, 0.0 * sign);
        expectAngle(0.0 * sign, -3.0, pi * sign);
        expectAngle(3.0 * sign, 0.0, pi / 2.0 * sign);
        expectAngle(3.0 * sign, -0.0, pi / 2.0 * sign);
        expectAngle(infinity * sign, infinity, pi / 4.0 * sign);
        expectAngle(infinity * sign, -infinity, 0x1.2d97c7f3321d2p+1 * sign);
        expectAngle(infinity * sign, -5.0, pi / 2.0 * sign);
        expectAngle(5.0 * sign, infinity, 0.0 * sign);
        expectAngle(5.0 * sign, -infinity, pi * sign);
        expectAngle(smallest * sign, 1.0, smallest * sign);
        expectAngle(smallest * sign, -largest, pi * sign);
        expectAngle(largest * sign, smallest, pi / 2.0 * sign);
        expectAngle(smallest * sign, smallest, pi / 4.0 * sign);
        expectAngle(largest * sign, largest, pi / 4.0 * sign);
    }
    EXPECT_TRUE(std::isnan(portable::atan2(notANumber, 1.0)));
    EXPECT_TRUE(std::isnan(portable::atan2(1.0, notANumber)));
}

TEST(PortableMathTest, ExponentialIsTheNearestDouble) {
    zoltest::Random random(4);
    for (int i = 0; i < 8000; ++i) {
        const double x = i % 2 == 0 ? random.real(-708.0, 709.78) : anyMagnitude(random, 8);
        if (x > -708.0 && x < 709.78) expectNearest(portable::exp(x), exp(Exact(x)), "exp", x);
    }
}

TEST(PortableMathTest, ExponentialBelowTheNormalRangeIsWithinOneUnit) {
    zoltest::Random random(5);
    for (int i = 0; i < 1000; ++i) {
        const double x = random.real(-745.1, -708.0);
        const auto nearest = static_cast<std::int64_t>(bits(exp(Exact(x)).convert_to<double>()));
        ASSERT_LE(std::abs(static_cast<std::int64_t>(bits(portable::exp(x))) - nearest), 1) << x;
    }
}

TEST(PortableMathTest, ExponentialAtTheEndsOfTheRange) {
    EXPECT_EQ(portable::exp(0.0), 1.0);
    EXPECT_EQ(portable::exp(-0.0), 1.0);
    EXPECT_EQ(portable::exp(smallest), 1.0);
    EXPECT_EQ(bits(portable::exp(1.0)), bits(std::numbers::e));
    EXPECT_EQ(portable::exp(infinity), infinity);
    EXPECT_EQ(bits(portable::exp(-infinity)), bits(0.0));
    EXPECT_TRUE(std::isnan(portable::exp(notANumber)));
    constexpr double overflow = 0x1.62e42fefa39efp+9;
    EXPECT_EQ(bits(portable::exp(overflow)), bits(exp(Exact(overflow)).convert_to<double>()));
    EXPECT_EQ(portable::exp(std::nextafter(overflow, 800.0)), infinity);
    EXPECT_EQ(portable::exp(largest), infinity);
    EXPECT_EQ(portable::exp(-745.0), smallest);
    EXPECT_EQ(portable::exp(-746.0), 0.0);
    EXPECT_EQ(portable::exp(-largest), 0.0);
}

TEST(PortableMathTest, SameBitsOnEveryPlatform) {
    // One number for some ten thousand results; it was computed once and must come out of every build.
    std::uint64_t digest = 1469598103934665603U;
    const auto add = [&](double value) { digest = (digest ^ bits(value)) * 1099511628211U; };
    for (int i = -1000; i <= 1000; ++i) {
        const double x = i * 0.00390625 * 1.25;
        add(portable::sin(x));
        add(portable::cos(x));
        if (std::fabs(x) <= 1.0) add(portable::acos(x));
        add(portable::atan2(x, i * 0.75 - 100.0));
        add(portable::exp(x * 100.0));
    }
    EXPECT_EQ(digest, 0x31af0b1299a4f6b4U);
}
