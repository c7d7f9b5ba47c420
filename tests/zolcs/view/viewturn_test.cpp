#include "zolcs/view/viewturn.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>

namespace {

using zolcs::Turn;
using zolcs::turnOf;

double below(double angle) { return std::nextafter(angle, -1000.0); }
double above(double angle) { return std::nextafter(angle, 1000.0); }

TEST(ViewTurn, AnglesLessThanADegreeBesideAQuarterTurnCountAsOne) {
    for (const auto& [degrees, turn] :
         {std::pair{90.0, Turn::Quarter}, std::pair{180.0, Turn::Half}, std::pair{270.0, Turn::ThreeQuarters}}) {
        for (const double angle : {degrees, below(degrees), above(degrees), degrees - 0.5, degrees + 0.5,
                                   above(degrees - 1.0), below(degrees + 1.0)}) {
            EXPECT_EQ(turnOf(angle), turn) << angle;
        }
        for (const double angle : {degrees - 1.0, degrees + 1.0, below(degrees - 1.0), above(degrees + 1.0)}) {
            EXPECT_EQ(turnOf(angle), Turn::Oblique) << angle;
        }
    }
}

TEST(ViewTurn, UprightBeginsAtAWholeTurnAndEndsADegreeAboveIt) {
    for (const double whole : {0.0, 360.0, 720.0}) {
        for (const double angle : {whole, above(whole), whole + 0.5, below(whole + 1.0)}) {
            EXPECT_EQ(turnOf(angle), Turn::None) << angle;
        }
        EXPECT_EQ(turnOf(whole + 1.0), Turn::Oblique);
        EXPECT_EQ(turnOf(above(whole + 1.0)), Turn::Oblique);
        if (whole > 0.0) {
            EXPECT_EQ(turnOf(below(whole)), Turn::Oblique);
            EXPECT_EQ(turnOf(whole - 0.5), Turn::Oblique);
        }
    }
}

TEST(ViewTurn, EverythingElseIsOblique) {
    for (const double angle : {1.5, 45.0, 135.0, 225.0, 315.0, 358.9, 450.0, 540.0, 1000.0}) {
        EXPECT_EQ(turnOf(angle), Turn::Oblique) << angle;
    }
    EXPECT_EQ(turnOf(std::numeric_limits<double>::quiet_NaN()), Turn::Oblique);
    EXPECT_EQ(turnOf(std::numeric_limits<double>::infinity()), Turn::Oblique);
}

TEST(ViewTurn, QuarterTurnsExchangeRowsAndColumns) {
    EXPECT_TRUE(isTransposed(Turn::Quarter));
    EXPECT_TRUE(isTransposed(Turn::ThreeQuarters));
    EXPECT_FALSE(isTransposed(Turn::None));
    EXPECT_FALSE(isTransposed(Turn::Half));
    EXPECT_FALSE(isTransposed(Turn::Oblique));
}

}  // namespace
