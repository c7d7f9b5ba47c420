#include "viewing/dicom/pixel_spacing.h"

#include "support/opened.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace viewing;
using zoltest::DicomWriter;
using zoltest::image2x2;
using zoltest::load;

TEST(PixelSpacing, PixelRatioFromWhateverCarriesIt) {
    const std::vector<std::pair<DcmTagKey, std::string>> tags{{DCM_PixelSpacing, "3\\2"},
                                                              {DCM_ImagerPixelSpacing, "0.3\\0.2"},
                                                              {DCM_NominalScannedPixelSpacing, "1.5\\1"},
                                                              {DCM_PixelAspectRatio, "3\\2"}};
    for (const auto& [tag, value] : tags) {
        DicomWriter writer = image2x2();
        writer.put(tag, value);
        EXPECT_DOUBLE_EQ(load(writer).ratioYx, 1.5) << value;
    }
    DicomWriter both = image2x2();
    both.put(DCM_PixelSpacing, "1\\1").put(DCM_PixelAspectRatio, "2\\1");
    EXPECT_EQ(load(both).ratioYx, 1.0);
}

TEST(PixelSpacing, OnlyPixelSpacingIsCalibrated) {
    for (const auto& [tag, uncalibrated] :
         {std::pair(DCM_PixelSpacing, false), {DCM_ImagerPixelSpacing, true}, {DCM_NominalScannedPixelSpacing, true}}) {
        DicomWriter writer = image2x2();
        writer.put(tag, "0.3\\0.2");
        const StoredImage image = load(writer);
        EXPECT_EQ(image.pixelWidth, 0.2);
        EXPECT_EQ(image.spacingIsUncalibrated, uncalibrated);
    }
    DicomWriter ratio = image2x2();
    ratio.put(DCM_PixelAspectRatio, "3\\2");
    EXPECT_EQ(load(ratio).pixelWidth, std::nullopt);
}

TEST(PixelSpacing, PixelsMayBeAHundredTimesAsHighAsWide) {
    for (const auto& [value, ratio] :
         {std::pair("100\\1", 100.0), {"1\\100", 0.01}, {"101\\1", 1.0}, {"1\\101", 1.0}}) {
        DicomWriter writer = image2x2();
        writer.put(DCM_PixelAspectRatio, value);
        EXPECT_EQ(load(writer).ratioYx, ratio) << value;
    }
}

TEST(PixelSpacing, SenselessPixelShapesAreSaidAndPassedOver) {
    for (const char* value : {"0\\0", "-1\\1", "1", "1\\x", "1000\\1", "1\\1000"}) {
        DicomWriter writer = image2x2();
        writer.put(DCM_PixelSpacing, value).put(DCM_PixelAspectRatio, "2\\1");
        const StoredImage image = load(writer);
        EXPECT_EQ(image.ratioYx, 2.0) << value;
        EXPECT_EQ(image.notes.size(), 1U) << value;
    }
}

}  // namespace
