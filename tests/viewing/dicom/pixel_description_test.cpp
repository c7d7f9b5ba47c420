#include "viewing/dicom/pixel_description.h"

#include "support/opened.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using namespace viewing;
using zoltest::DicomWriter;
using zoltest::image2x2;
using zoltest::load;
using zoltest::refusal;

TEST(PixelDescription, PaddingValueAndRange) {
    DicomWriter writer(4, 1);
    writer.pixels({0, 60, 61, 4000}).word(DCM_PixelPaddingValue, 0);
    StoredImage image = load(writer);
    EXPECT_TRUE(image.grey().padding.get(0, 0));
    EXPECT_FALSE(image.grey().padding.get(1, 0));
    EXPECT_EQ(image.grey().minLevel, 60);
    writer.word(DCM_PixelPaddingRangeLimit, 60);
    image = load(writer);
    EXPECT_TRUE(image.grey().padding.get(1, 0));
    EXPECT_FALSE(image.grey().padding.get(2, 0));
    EXPECT_EQ(image.grey().minLevel, 61);
    // The range may be written downwards.
    writer.word(DCM_PixelPaddingValue, 60).word(DCM_PixelPaddingRangeLimit, 0);
    EXPECT_EQ(load(writer).grey().minLevel, 61);
}

TEST(PixelDescription, PaddingOfSignedImagesIsSigned) {
    DicomWriter writer(2, 1);
    writer.format(16, 16, 15, 1).pixels({0xF830, 5});
    writer.dataset().putAndInsertSint16(DCM_PixelPaddingValue, -2000);
    const StoredImage image = load(writer);
    EXPECT_TRUE(image.grey().padding.get(0, 0));
    EXPECT_FALSE(image.grey().padding.get(1, 0));
    EXPECT_EQ(image.grey().lowest, 5);
}

TEST(PixelDescription, WhatCannotBeShownIsSaid) {
    DicomWriter unknown = image2x2();
    unknown.put(DCM_PhotometricInterpretation, "PURPLE");
    EXPECT_EQ(refusal(unknown), "has the photometric interpretation 'PURPLE', which zolview cannot show");

    DicomWriter noImage = image2x2();
    noImage.remove(DCM_PixelData);
    EXPECT_EQ(refusal(noImage), "contains no image (it is a SecondaryCaptureImageStorage)");

    DicomWriter wide(2, 2);
    wide.format(32, 32, 31, 0);
    EXPECT_EQ(refusal(wide), "has pixels of 32 bits allocated; zolview reads 8 and 16");
}

TEST(PixelDescription, ImpossibleSizesAndFormatsAreRefused) {
    DicomWriter none = image2x2();
    none.word(DCM_Rows, 0);
    EXPECT_EQ(refusal(none), "has no rows or no columns");
    DicomWriter missing = image2x2();
    missing.remove(DCM_Columns);
    EXPECT_EQ(refusal(missing), "has no rows or no columns");
    DicomWriter wide = image2x2();
    wide.word(DCM_Columns, 32768);
    EXPECT_EQ(refusal(wide), "has 32768 x 2 pixels; zolview shows up to 32767 a side");
    DicomWriter large = image2x2();
    large.word(DCM_Columns, 32767).word(DCM_Rows, 32767);
    EXPECT_EQ(refusal(large), "has 32767 x 32767 pixels; zolview shows up to 67108864 in all");

    for (const auto& [allocated, stored, high, representation] :
         {std::array{16, 12, 10, 0}, std::array{16, 17, 16, 0}, std::array{8, 12, 11, 0}, std::array{16, 0, 11, 0},
          std::array{16, 12, 16, 0}, std::array{16, 12, 65535, 0}, std::array{16, 12, 11, 2}}) {
        DicomWriter writer = image2x2();
        writer.format(allocated, stored, high, representation);
        EXPECT_TRUE(refusal(writer).starts_with("describes its pixels in a way that cannot be (bits allocated "));
    }
}

}  // namespace
