// The choice itself is tested on whole files: DicomLuts.
#include "viewing/image/voi_choice.h"

#include <gtest/gtest.h>

namespace {

using namespace viewing;

TEST(VoiChoice, WindowsFromElsewhereTakeTheChosenFunctionOrElseTheFirstOnesOnTheList) {
    GreyImage image;
    EXPECT_EQ(functionFor(image), WindowFunction::Linear);
    image.voiChoices = {{"", VoiWindow{{1.0, 2.0}, WindowFunction::Sigmoid}, "", ""}};
    EXPECT_EQ(functionFor(image), WindowFunction::Sigmoid);
    image.voi = LookupTable{0, 8, {1}};
    EXPECT_EQ(functionFor(image), WindowFunction::Sigmoid);
    image.voi = VoiWindow{{1.0, 2.0}, WindowFunction::LinearExact};
    EXPECT_EQ(functionFor(image), WindowFunction::LinearExact);
    image.voi.reset();
    image.voiChoices.front().voi = LookupTable{0, 8, {1}};
    EXPECT_EQ(functionFor(image), WindowFunction::Linear);
}

TEST(VoiChoice, OutputsMayBeNegativeUnlessATableGivesThem) {
    GreyImage image;
    EXPECT_FALSE(outputMayBeNegative(image));
    image.lowest = -1;
    EXPECT_TRUE(outputMayBeNegative(image));
    image.modality.table = LookupTable{0, 8, {1}};
    EXPECT_FALSE(outputMayBeNegative(image));
    image = {};
    image.modality.intercept = -0.5;
    EXPECT_TRUE(outputMayBeNegative(image));
    image.modality = {-1.0, 0.0, {}};
    EXPECT_TRUE(outputMayBeNegative(image));
}

}  // namespace
