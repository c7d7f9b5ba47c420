#include "viewing/dicom/dicom_overlays.h"

#include "support/opened.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace viewing;
using zoltest::DicomWriter;
using zoltest::image2x2;
using zoltest::load;
using Words = std::vector<std::uint16_t>;

TEST(DicomOverlays, OverlayPlanes) {
    DicomWriter writer(4, 3);
    writer.overlay(0x6000, 2, 3, 2, 2, {0x0021}, "G");  // bits 0 and 5: its first and last pixel
    writer.overlay(0x601E, 1, 1, 3, 4, {0x0001}, "R");
    writer.overlay(0x6002, 1, 1, -100, 1, {0x0001}, "G");
    const StoredImage image = load(writer);
    ASSERT_EQ(image.overlays.size(), 2U);
    EXPECT_EQ(image.overlays[0].origin, (Point{1, 1}));
    EXPECT_TRUE(image.overlays[0].bits.get(0, 0));
    EXPECT_FALSE(image.overlays[0].bits.get(1, 0));
    EXPECT_TRUE(image.overlays[0].bits.get(2, 1));
    EXPECT_EQ(image.overlays[0].kind, PlaneKind::Graphics);
    EXPECT_EQ(image.overlays[1].origin, (Point{3, 2}));
    EXPECT_EQ(image.overlays[1].kind, PlaneKind::RegionOfInterest);
    EXPECT_EQ(image.notes, (std::vector<std::string>{"overlay 6002 lies outside the image"}));
}

TEST(DicomOverlays, OverlayDataInBytes) {
    DicomWriter writer(4, 1);
    writer.overlay(0x6000, 1, 4, 1, 1, {0});
    const Uint8 bytes[] = {0x0A, 0x00};
    writer.dataset().putAndInsertUint8Array(DcmTag(0x6000, 0x3000, EVR_OB), bytes, 2);
    const StoredImage image = load(writer);
    ASSERT_EQ(image.overlays.size(), 1U);
    EXPECT_FALSE(image.overlays[0].bits.get(0, 0));
    EXPECT_TRUE(image.overlays[0].bits.get(1, 0));
    EXPECT_TRUE(image.overlays[0].bits.get(3, 0));
}

TEST(DicomOverlays, ShortOverlayDataIsFilledWithNothing) {
    DicomWriter writer(100, 100);
    writer.overlay(0x6000, 65535, 65535, 1, 1, {0xFFFF});
    const StoredImage image = load(writer);
    ASSERT_EQ(image.overlays.size(), 1U);
    EXPECT_TRUE(image.overlays[0].bits.get(15, 0));
    EXPECT_FALSE(image.overlays[0].bits.get(16, 0));
    EXPECT_FALSE(image.overlays[0].bits.get(99, 99));
    EXPECT_EQ(image.notes.size(), 1U);
}

TEST(DicomOverlays, EmbeddedPlanesAboveTwelveBitsStayInThePixels) {
    DicomWriter writer(2, 1);
    writer.pixels({0x1001, 0x6002});
    writer.embeddedOverlay(0x6000, 12, "R").embeddedOverlay(0x6002, 14, "G");
    const StoredImage image = load(writer);
    // Bit 13 is nobody's.
    EXPECT_EQ(image.grey().samples, (Words{0x1001, 0x4002}));
    ASSERT_EQ(image.grey().embedded.size(), 2U);
    EXPECT_EQ(image.grey().embedded[0].bit, 12);
    EXPECT_EQ(image.grey().embedded[0].kind, PlaneKind::RegionOfInterest);
    EXPECT_EQ(image.grey().embedded[1].bit, 14);
    EXPECT_TRUE(image.overlays.empty());
}

TEST(DicomOverlays, EmbeddedPlanesElsewhereBecomePlanes) {
    DicomWriter low(2, 1);
    low.format(16, 8, 7, 0).pixels({0x0105, 0x0006}).embeddedOverlay(0x6000, 8);
    StoredImage image = load(low);
    EXPECT_EQ(image.grey().samples, (Words{5, 6}));
    ASSERT_EQ(image.overlays.size(), 1U);
    EXPECT_TRUE(image.overlays[0].bits.get(0, 0));
    EXPECT_FALSE(image.overlays[0].bits.get(1, 0));

    DicomWriter shifted(2, 1);
    shifted.format(16, 12, 15, 0).pixels({0x1231, 0x4560}).embeddedOverlay(0x6000, 0);
    image = load(shifted);
    EXPECT_EQ(image.grey().samples, (Words{0x123, 0x456}));
    ASSERT_EQ(image.overlays.size(), 1U);
    EXPECT_TRUE(image.overlays[0].bits.get(0, 0));
    EXPECT_FALSE(image.overlays[0].bits.get(1, 0));
    EXPECT_TRUE(image.grey().embedded.empty());
}

TEST(DicomOverlays, EmbeddedPlaneWithinTheValuesIsNotDrawn) {
    DicomWriter writer = image2x2();
    writer.embeddedOverlay(0x6000, 11).embeddedOverlay(0x6002, 16);
    const StoredImage image = load(writer);
    EXPECT_TRUE(image.overlays.empty());
    EXPECT_TRUE(image.grey().embedded.empty());
    EXPECT_EQ(image.notes.size(), 2U);
}

TEST(DicomOverlays, EmbeddedPlanesOfDeepImagesBecomePlanes) {
    DicomWriter writer(2, 1);
    writer.format(16, 14, 13, 0).pixels({0x4001, 0xBFFF}).embeddedOverlay(0x6000, 14).embeddedOverlay(0x6002, 15);
    const StoredImage image = load(writer);
    EXPECT_EQ(image.grey().samples, (Words{1, 0x3FFF}));
    EXPECT_EQ(image.grey().levels, levels16);
    EXPECT_TRUE(image.grey().embedded.empty());
    ASSERT_EQ(image.overlays.size(), 2U);
    EXPECT_TRUE(image.overlays[0].bits.get(0, 0));
    EXPECT_FALSE(image.overlays[0].bits.get(1, 0));
    EXPECT_FALSE(image.overlays[1].bits.get(0, 0));
    EXPECT_TRUE(image.overlays[1].bits.get(1, 0));
}

}  // namespace
