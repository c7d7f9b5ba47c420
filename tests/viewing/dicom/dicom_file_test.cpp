#include "viewing/dicom/dicom_file.h"

#include "support/opened.h"

#include <gtest/gtest.h>

namespace {

using namespace viewing;
using zoltest::DicomWriter;
using zoltest::image2x2;
using zoltest::load;
using zoltest::refusal;
using zoltest::TemporaryFolder;
using Words = std::vector<std::uint16_t>;

TEST(DicomFile, PlainImage) {
    DicomWriter writer(3, 2);
    writer.pixels({1, 2, 3, 4, 5, 4095});
    const StoredImage image = load(writer);
    EXPECT_EQ(image.width, 3);
    EXPECT_EQ(image.height, 2);
    EXPECT_EQ(image.grey().samples, (Words{1, 2, 3, 4, 5, 4095}));
    EXPECT_EQ(image.ratioYx, 1.0);
    EXPECT_EQ(image.grey().modality.slope, 1.0);
    EXPECT_EQ(image.grey().modality.intercept, 0.0);
    EXPECT_FALSE(image.grey().presentation.inverse);
    EXPECT_FALSE(image.grey().voi);
    EXPECT_FALSE(image.grey().modality.table);
    EXPECT_FALSE(image.grey().presentation.table);
    EXPECT_FALSE(image.isColour());
    EXPECT_EQ(image.grey().levels, levels12);
    EXPECT_FALSE(image.shutters.any());
    EXPECT_TRUE(image.overlays.empty());
    EXPECT_TRUE(image.grey().padding.empty());
    EXPECT_TRUE(image.notes.empty());
}

TEST(DicomFile, ByteOrdersAgree) {
    for (const E_TransferSyntax syntax : {EXS_LittleEndianImplicit, EXS_LittleEndianExplicit, EXS_BigEndianExplicit,
                                          EXS_DeflatedLittleEndianExplicit}) {
        DicomWriter writer(3, 1);
        writer.pixels({1, 0x102, 0xFFF});
        writer.overlay(0x6000, 1, 3, 1, 1, {0x0005});
        const StoredImage image = load(writer, {}, syntax);
        EXPECT_EQ(image.grey().samples, (Words{1, 0x102, 0xFFF})) << syntax;
        ASSERT_EQ(image.overlays.size(), 1U);
        EXPECT_TRUE(image.overlays[0].bits.get(0, 0));
        EXPECT_FALSE(image.overlays[0].bits.get(1, 0));
        EXPECT_TRUE(image.overlays[0].bits.get(2, 0));
    }
}

TEST(DicomFile, EightBitsAllocatedWithAnOddNumberOfPixels) {
    DicomWriter writer(3, 1);
    writer.format(8, 8, 7, 0).remove(DCM_PixelData).bytes({7, 0, 255});
    EXPECT_EQ(load(writer).grey().samples, (Words{7, 0, 255}));
}

TEST(DicomFile, WithoutAHighBitValuesLieLow) {
    DicomWriter writer = image2x2();
    writer.remove(DCM_HighBit);
    EXPECT_EQ(load(writer).grey().samples, (Words{1, 2, 3, 0x0FFF}));
}

TEST(DicomFile, SignedValuesAreLifted) {
    DicomWriter writer(2, 1);
    writer.format(16, 12, 11, 1).pixels({0x0800, 0x07FF});
    const StoredImage image = load(writer);
    EXPECT_EQ(image.grey().samples, (Words{0, 4095}));
    EXPECT_EQ(image.grey().lowest, -2048);
}

TEST(DicomFile, PalettesBesideGreysAreSaid) {
    DicomWriter writer = image2x2();
    zoltest::putDescriptor(writer.dataset(), DCM_RedPaletteColorLookupTableDescriptor, {2, 0, 16});
    EXPECT_EQ(load(writer).notes,
              (std::vector<std::string>{"has a palette although it is grey; the palette is not applied"}));
}

TEST(DicomFile, FunctionalGroupsOfTheFirstFrameCount) {
    DicomWriter writer = image2x2();
    DcmItem* frame = nullptr;
    DcmItem* item = nullptr;
    writer.dataset().findOrCreateSequenceItem(DCM_SharedFunctionalGroupsSequence, frame);
    frame->findOrCreateSequenceItem(DCM_PixelMeasuresSequence, item);
    item->putAndInsertString(DCM_PixelSpacing, "3\\2");
    writer.dataset().findOrCreateSequenceItem(DCM_PerFrameFunctionalGroupsSequence, frame);
    frame->findOrCreateSequenceItem(DCM_FrameVOILUTSequence, item);
    item->putAndInsertString(DCM_WindowCenter, "7");
    item->putAndInsertString(DCM_WindowWidth, "9");
    const StoredImage image = load(writer);
    EXPECT_EQ(image.grey().voi, Voi(VoiWindow{{7.0, 9.0}}));
    EXPECT_EQ(image.ratioYx, 1.5);
}

TEST(DicomFile, SharedFunctionalGroupsCountForEveryFrame) {
    DicomWriter writer(2, 1);
    writer.put(DCM_NumberOfFrames, "2").pixels({1, 2, 3, 4});
    DcmItem* shared = nullptr;
    DcmItem* item = nullptr;
    writer.dataset().findOrCreateSequenceItem(DCM_SharedFunctionalGroupsSequence, shared);
    shared->findOrCreateSequenceItem(DCM_PixelMeasuresSequence, item);
    item->putAndInsertString(DCM_PixelSpacing, "3\\2");
    const TemporaryFolder folder;
    const std::string path = writer.save(folder);
    for (const int frame : {1, 2}) {
        OpenSettings settings;
        settings.frame = frame;
        EXPECT_EQ(openImage(path, settings).ratioYx, 1.5) << frame;
    }
}

TEST(DicomFile, SixteenBitsAreNeededFromTheFirstLevelThatDoesNotFit) {
    for (const auto& [highest, levels] : {std::pair(4095, levels12), {4096, levels16}}) {
        DicomWriter writer(2, 1);
        writer.format(16, 16, 15, 0).pixels({0, static_cast<std::uint16_t>(highest)});
        const StoredImage image = load(writer);
        EXPECT_EQ(image.grey().levels, levels);
        EXPECT_EQ(image.grey().samples[1], highest);
    }
}

TEST(DicomFile, LowValuesAreWhiteOnce) {
    DicomWriter one = image2x2();
    one.put(DCM_PhotometricInterpretation, "MONOCHROME1");
    EXPECT_TRUE(load(one).grey().presentation.inverse);
    one.put(DCM_PresentationLUTShape, "INVERSE");
    EXPECT_TRUE(load(one).grey().presentation.inverse);
    DicomWriter two = image2x2();
    two.put(DCM_PresentationLUTShape, "IDENTITY");
    EXPECT_FALSE(load(two).grey().presentation.inverse);
    two.put(DCM_PresentationLUTShape, "INVERSE");
    EXPECT_TRUE(load(two).grey().presentation.inverse);
}

TEST(DicomFile, ShortPixelDataIsRefused) {
    DicomWriter writer = image2x2();
    writer.word(DCM_Rows, 3);
    EXPECT_EQ(refusal(writer), "is truncated: its Pixel Data has 8 of 12 bytes");
}

TEST(DicomFile, SummaryTellsAboutTheImageOnly) {
    const TemporaryFolder folder;
    DicomWriter writer = image2x2();
    writer.put(DCM_PatientName, "Somebody").put(DCM_NumberOfFrames, "7");
    std::string all;
    for (const auto& [name, value] : DicomFile(writer.save(folder)).summary()) all += name + "=" + value + "\n";
    EXPECT_EQ(all,
              "object=SecondaryCaptureImageStorage\n"
              "transfer syntax=Little Endian Explicit\n"
              "size=2 x 2\n"
              "photometric=MONOCHROME2\n"
              "bits=12 stored in 16, unsigned\n"
              "frames=7\n");
}

}  // namespace
