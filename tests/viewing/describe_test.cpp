#include "viewing/describe.h"

#include "support/dicom_writer.h"
#include "viewing/image/refusal.h"

#include <gtest/gtest.h>

namespace {

using namespace viewing;
using zoltest::DicomWriter;
using zoltest::TemporaryFolder;

TEST(Describe, ThePhantomHasEverythingThatAGreyImageCanHave) {
    const Properties expected{{"object", "the built-in phantom"},
                              {"size", "640 x 512"},
                              {"pixel height to width", "1"},
                              {"values", "stored 0 to 4095, output 0 to 4095"},
                              {"voi 1", "window, centre 2048, width 4096"},
                              {"low values", "black"},
                              {"padding", "some values are no part of the picture and stay black"},
                              {"shutter", "columns 8 to 631, rows 8 to 503 (from 0)"},
                              {"shutter", "circle around column 320, row 256 (from 0), radius 374"},
                              {"shutter value", "28672 of 65535"},
                              {"overlay", "graphics, 241 x 61 at column 190, row 425 (from 0)"},
                              {"overlay", "region of interest, 369 x 69 at column 36, row 196 (from 0)"},
                              {"overlay", "graphics, in bit 12 of the pixels"}};
    EXPECT_EQ(describe("phantom"), expected);
}

TEST(Describe, WhatCannotBeShownIsDescribedAndSaid) {
    const TemporaryFolder folder;
    DicomWriter writer(2, 2);
    writer.put(DCM_PhotometricInterpretation, "HSV");
    const Properties properties = describe(writer.save(folder));
    const auto last = properties.back();
    EXPECT_EQ(last.first, "zolview cannot show it");
    EXPECT_EQ(last.second, "has the photometric interpretation 'HSV', which zolview cannot show");
    EXPECT_EQ(properties[3], (std::pair<std::string, std::string>("photometric", "HSV")));
    EXPECT_THROW(describe(folder.file("none")), Refusal);
}

}  // namespace
