// Which primitives an accelerated member calls for a view, and with what.
#include "zolcs/resample/accelerated.h"

#include "zolcs/resample/accelerated_fixture.h"

namespace {

using namespace zoltest::accelerated;
using zoltest::AcceleratedCase;
using zoltest::acceleratedCases;
using zoltest::errorReport;
using zoltest::GuardedImage;
using zoltest::GuardedRaster;
using zoltest::Problem;
using zoltest::Random;
using zoltest::Report;
using zoltest::ReportCapture;

/// Primitives that note how they are called, and fail when told to.
class Recorder {
public:
    static std::vector<std::string>& calls() {
        static std::vector<std::string> list;
        return list;
    }
    static std::string& failing() {
        static std::string name;
        return name;
    }

    static IppStatus note(const std::string& name, const std::string& arguments) {
        calls().push_back(name + ' ' + arguments);
        return name == failing() ? -7 : 0;
    }

    template <typename... Numbers>
    static std::string list(Numbers... numbers) {
        std::ostringstream out;
        out << std::setprecision(10);
        ((out << numbers << ' '), ...);
        std::string text = out.str();
        text.pop_back();
        return text;
    }

    static IppStatus resize(const Ipp16u*, IppiSize size, int, IppiRect region, Ipp16u*, int, IppiSize to,
                            double xFactor, double yFactor, double x, double y, int interpolation) {
        return note("resize", list(size.width, size.height, region.x, region.y, region.width, region.height, to.width,
                                   to.height, std::round(xFactor * 1e6) / 1e6, std::round(yFactor * 1e6) / 1e6,
                                   std::round(x * 1e6) / 1e6, std::round(y * 1e6) / 1e6, interpolation));
    }
    static IppStatus mirror(Ipp16u*, int step, IppiSize size, IppiAxis axis) {
        return note("mirror", list(step, size.width, size.height, axis));
    }
    static IppStatus transpose(const Ipp16u*, int from, Ipp16u*, int to, IppiSize size) {
        return note("transpose", list(from, to, size.width, size.height));
    }
    static IppStatus warp(const Ipp16u*, IppiSize size, int, IppiRect region, Ipp16u*, int, IppiRect to,
                          const double coefficients[][3], int interpolation) {
        return note("warp", list(size.width, size.height, region.x, region.y, region.width, region.height, to.x, to.y,
                                 to.width, to.height, std::round(coefficients[0][0] * 1e6) / 1e6,
                                 std::round(coefficients[0][1] * 1e6) / 1e6, std::round(coefficients[1][0] * 1e6) / 1e6,
                                 std::round(coefficients[1][1] * 1e6) / 1e6, interpolation));
    }
};

class AcceleratedPlan : public ::testing::Test {
protected:
    AcceleratedPlan() {
        Recorder::calls().clear();
        Recorder::failing().clear();
    }

    /// Draws a 40 x 30 image with the rectangle (4, 5, 24, 20) into 101 x 60 pixels at 2.5 times its size.
    static int draw(double degrees, bool mirrored, double ratio = 1.0) {
        GuardedRaster src(40, 30, CCS_GREY12, 44, ratio);
        GuardedImage dst(101, 60, CCS_GREY16, 104, 1.0);
        src.setRectShutter(RECT{4, 5, 24, 20});
        CCs2dTrafo trafo;
        if (mirrored) trafo.mirror(CCS_HORIZONTAL);
        trafo.rotate(degrees);
        trafo.scale(1.25);
        trafo.setSizes(src, dst);
        return drawWith(src, dst, trafo);
    }

    static int drawWith(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo) {
        static constexpr zolcs::Primitives<Ipp16u> primitives{Recorder::resize, Recorder::mirror, Recorder::transpose,
                                                              Recorder::warp};
        static constexpr zolcs::AcceleratedMember<Ipp16u> member{
            {L"module", L"member", {1, 2, 3, 4, 5}}, primitives, IPPI_INTER_LINEAR};
        return zolcs::drawAccelerated(member, {src, dst, trafo, 9});
    }

    static std::vector<std::string> names() {
        std::vector<std::string> list;
        for (const std::string& call : Recorder::calls()) list.push_back(call.substr(0, call.find(' ')));
        return list;
    }

    ReportCapture reports_;
};

using Calls = std::vector<std::string>;

TEST_F(AcceleratedPlan, UprightViewsAreResizedAndMirroredLeftToRight) {
    // The middle of 101 columns is column 50, half a display pixel left of the image's middle (20, 15).
    EXPECT_EQ(draw(0.0, false), 255);
    EXPECT_EQ(Recorder::calls(), (Calls{"resize 40 30 4 5 20 15 101 60 2.5 2.5 19.8 15 2"}));
    Recorder::calls().clear();
    EXPECT_EQ(draw(0.0, true), 255);
    // Drawn the other way round, column 50 takes what the view shows on column 51.
    EXPECT_EQ(Recorder::calls(), (Calls{"resize 40 30 4 5 20 15 101 60 2.5 2.5 19.8 15 2", "mirror 208 101 60 1"}));
}

TEST_F(AcceleratedPlan, HalfTurnsAreMirroredAboutBothAxesOrOne) {
    EXPECT_EQ(draw(180.0, false), 255);
    EXPECT_EQ(Recorder::calls(), (Calls{"resize 40 30 4 5 20 15 101 60 2.5 2.5 19.8 15 2", "mirror 208 101 60 2"}));
    Recorder::calls().clear();
    EXPECT_EQ(draw(180.0, true), 255);
    EXPECT_EQ(Recorder::calls(), (Calls{"resize 40 30 4 5 20 15 101 60 2.5 2.5 19.8 15 2", "mirror 208 101 60 0"}));
}

TEST_F(AcceleratedPlan, QuarterTurnsAreTransposedAndMirroredFirst) {
    EXPECT_EQ(draw(90.0, false), 255);
    EXPECT_EQ(Recorder::calls(), (Calls{"transpose 88 64 40 30", "mirror 64 30 40 1",
                                        "resize 30 40 10 4 15 20 101 60 2.5 2.5 14.8 20 2"}));
    Recorder::calls().clear();
    EXPECT_EQ(draw(270.0, false), 255);
    EXPECT_EQ(Recorder::calls(), (Calls{"transpose 88 64 40 30", "mirror 64 30 40 0",
                                        "resize 30 40 5 16 15 20 101 60 2.5 2.5 14.8 20 2"}));
}

TEST_F(AcceleratedPlan, MirroredQuarterTurnsAreMirroredAgain) {
    EXPECT_EQ(draw(90.0, true), 255);
    EXPECT_EQ(draw(270.0, true), 255);
    EXPECT_EQ(names(), (Calls{"transpose", "mirror", "resize", "mirror", "transpose", "mirror", "resize", "mirror"}));
    EXPECT_EQ(Recorder::calls()[3], "mirror 208 101 60 1");
    EXPECT_EQ(Recorder::calls()[7], "mirror 208 101 60 1");
    // A view that is mirrored, then turned by 90 degrees, is one that is turned by 270 and then mirrored.
    EXPECT_EQ(Recorder::calls()[1], "mirror 64 30 40 0");
    EXPECT_EQ(Recorder::calls()[5], "mirror 64 30 40 1");
}

TEST_F(AcceleratedPlan, ObliqueViewsAreWarpedOnly) {
    EXPECT_EQ(draw(45.0, false), 255);
    EXPECT_EQ(Recorder::calls(), (Calls{"warp 40 30 4 5 20 15 0 0 101 60 1.767767 -1.767767 1.767767 1.767767 2"}));
    Recorder::calls().clear();
    EXPECT_EQ(draw(45.0, true), 255);
    EXPECT_EQ(draw(91.5, false), 255);
    EXPECT_EQ(draw(359.5, false), 255);
    EXPECT_EQ(names(), (Calls{"warp", "warp", "warp"}));
}

TEST_F(AcceleratedPlan, ADegreeBesideAQuarterTurnCountsAsOne) {
    for (const double degrees : {0.9, 180.9, 179.1, 90.9, 89.1, 269.1, 270.9}) draw(degrees, false);
    EXPECT_EQ(std::count_if(Recorder::calls().begin(), Recorder::calls().end(),
                            [](const std::string& call) { return call.starts_with("resize"); }),
              7);
    Recorder::calls().clear();
    for (const double degrees : {1.1, 181.1, 178.9, 91.1, 88.9, 268.9, 271.1, -0.9}) draw(degrees, false);
    EXPECT_EQ(names(), Calls(8, "warp"));
}

TEST_F(AcceleratedPlan, FactorsFollowTheRatios) {
    draw(0.0, false, 2.0);
    draw(90.0, false, 2.0);
    ASSERT_EQ(names(), (Calls{"resize", "transpose", "mirror", "resize"}));
    // Twice as many display pixels along a source pixel's long side.
    EXPECT_EQ(Recorder::calls()[0], "resize 40 30 4 5 20 15 101 60 1.25 2.5 19.6 15 2");
    EXPECT_EQ(Recorder::calls()[3], "resize 30 40 10 4 15 20 101 60 3.75 1.875 14.866667 20 2");
}

TEST_F(AcceleratedPlan, FactorsAndCentreAreThoseOfAViewThatIsTurnedBack) {
    // Even displays, whose middle is the same from both sides.
    Random random(73);
    const auto rounded = [](double value) { return std::round(value * 1e6) / 1e6; };
    for (int round = 0; round < 200; ++round) {
        const int quarters = random.integer(0, 3);
        const bool mirrored = random.chance(0.5);
        GuardedRaster src(random.integer(1, 60), random.integer(1, 60), CCS_GREY12, 64, random.real(0.4, 2.5));
        GuardedImage dst(2 * random.integer(1, 40), 2 * random.integer(1, 40), CCS_GREY16, 80, random.real(0.5, 2.0));
        CCs2dTrafo trafo;
        if (mirrored) trafo.mirror(CCS_HORIZONTAL);
        trafo.rotate(90.0 * quarters);
        if (random.chance(0.7)) trafo.scale(random.real(0.3, 4.0));
        trafo.setDspPanFactor(random.real(-1.0, 1.0), random.real(-1.0, 1.0));
        trafo.setSizes(src, dst);

        const auto [angle, m] = Orientation(trafo);
        CCs2dTrafo back(trafo);
        if (std::abs(angle - 180.0) < 1.0) back.rotate(180);
        if (std::abs(angle - 90.0) < 1.0) {
            back.rotate(270);
            back.swapSourceDimension(false, m != 0);
        }
        if (std::abs(angle - 270.0) < 1.0) {
            back.rotate(90);
            back.swapSourceDimension(true, m != 0);
        }
        if (m != 0) back.mirror(CCS_HORIZONTAL);
        const CCsPointDouble centre =
            CCsImageUtils::dspToImgD(back, CCsPointDouble(dst.getWidth() / 2, dst.getHeight() / 2));
        double factorX = 1.0;
        double factorY = 1.0;
        back.getDspScaleFactorXY(factorX, factorY);

        Recorder::calls().clear();
        ASSERT_EQ(drawWith(src, dst, trafo), 255);
        const bool turned = std::abs(angle - 90.0) < 1.0 || std::abs(angle - 270.0) < 1.0;
        const int width = turned ? src.getHeight() : src.getWidth();
        const int height = turned ? src.getWidth() : src.getHeight();
        const std::string expected =
            "resize " + Recorder::list(width, height, 0, 0, width, height, dst.getWidth(), dst.getHeight(),
                                       rounded(factorX), rounded(factorY), rounded(centre.x), rounded(centre.y), 2);
        EXPECT_EQ(Recorder::calls()[turned ? 2 : 0], expected) << angle << " mirrored " << m;
    }
}

TEST_F(AcceleratedPlan, AfterAFailureNothingMoreIsDone) {
    const auto expectStopped = [&](const std::string& failing, double degrees, const Calls& expected) {
        Recorder::calls().clear();
        Recorder::failing() = failing;
        EXPECT_EQ(draw(degrees, true), 0);
        EXPECT_EQ(names(), expected);
        EXPECT_EQ(ReportCapture::take(), std::vector<Report>{errorReport(
                                             L"IPP method failed in member method with error ID :", -7, L"module", 4)});
    };
    expectStopped("resize", 0.0, {"resize"});
    expectStopped("resize", 180.0, {"resize"});
    expectStopped("mirror", 180.0, {"resize", "mirror"});
    expectStopped("transpose", 90.0, {"transpose"});
    expectStopped("mirror", 90.0, {"transpose", "mirror"});
    expectStopped("resize", 270.0, {"transpose", "mirror", "resize"});
    expectStopped("warp", 45.0, {"warp"});
}

}  // namespace
