#include "viewing/open.h"

#include "support/opened.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace viewing;
using zoltest::DicomWriter;
using zoltest::image2x2;
using zoltest::load;
using zoltest::refusal;
using zoltest::TemporaryFolder;
using Words = std::vector<std::uint16_t>;

OpenSettings voi(int number) {
    OpenSettings settings;
    settings.voi = number;
    return settings;
}

TEST(OpenImage, TheFirstUsableWindowIsTaken) {
    DicomWriter writer = image2x2();
    writer.put(DCM_WindowCenter, "1\\x\\3\\4").put(DCM_WindowWidth, "0\\2\\30\\40");
    const StoredImage image = load(writer);
    EXPECT_EQ(image.grey().voi, Voi(VoiWindow{{3.0, 30.0}}));
    EXPECT_EQ(image.notes, (std::vector<std::string>{"the file's window has a width of 0, the next one cannot be read; "
                                                     "shown with number 3 instead"}));
    writer.put(DCM_WindowCenter, "1").put(DCM_WindowWidth, "0");
    writer.lut(DCM_VOILUTSequence, {2, 0, 8}, {1, 2});
    const StoredImage table = load(writer);
    EXPECT_TRUE(table.grey().voiTable());
    EXPECT_EQ(table.notes,
              (std::vector<std::string>{"the file's window has a width of 0; shown with number 2 instead"}));
}

TEST(OpenImage, UnusableWindowIsSaidAndLeftOut) {
    DicomWriter zero = image2x2();
    zero.put(DCM_WindowCenter, "1").put(DCM_WindowWidth, "0");
    StoredImage image = load(zero);
    EXPECT_FALSE(image.grey().voi);
    EXPECT_EQ(
        image.notes,
        (std::vector<std::string>{"the file's window has a width of 0; shown with the full range of values instead"}));
    DicomWriter text = image2x2();
    text.put(DCM_WindowCenter, "1").put(DCM_WindowWidth, "wide");
    image = load(text);
    EXPECT_FALSE(image.grey().voi);
    EXPECT_EQ(image.notes.size(), 1U);
}

TEST(OpenImage, TablesFromOtherFilesAreSignedAsTheImageIs) {
    const TemporaryFolder folder;
    DicomWriter lender(1, 1);
    lender.lut(DCM_ModalityLUTSequence, {2, -3, 8}, {1, 2});
    OpenSettings settings;
    settings.modalityFile = lender.save(folder, EXS_LittleEndianExplicit, "lender.dcm");
    DicomWriter writer(2, 2);
    EXPECT_EQ(load(writer, settings).grey().modality.table->first, 65533);
    writer.format(16, 12, 11, 1);
    EXPECT_EQ(load(writer, settings).grey().modality.table->first, -3);
}

TEST(OpenImage, OtherFilesLendTheirTables) {
    const TemporaryFolder folder;
    DicomWriter state(1, 1);
    for (const DcmTagKey& tag : {DCM_PixelData, DCM_Rows, DCM_Columns, DCM_PhotometricInterpretation})
        state.remove(tag);
    state.lut(DCM_ModalityLUTSequence, {2, 0, 8}, {1, 2}).lut(DCM_PresentationLUTSequence, {2, 0, 8}, {3, 4});
    DcmItem* item = nullptr;
    state.dataset().findOrCreateSequenceItem(DCM_SoftcopyVOILUTSequence, item);
    zoltest::addLut(*item, DCM_VOILUTSequence, {2, 0, 8}, {5, 6});
    state.dataset().findOrCreateSequenceItem(DCM_SoftcopyVOILUTSequence, item, -2);
    item->putAndInsertString(DCM_WindowCenter, "7");
    item->putAndInsertString(DCM_WindowWidth, "8");
    item->putAndInsertString(DCM_VOILUTFunction, "SIGMOID");
    const std::string lender = state.save(folder, EXS_LittleEndianExplicit, "state.dcm");

    DicomWriter writer(2, 2);
    writer.put(DCM_WindowCenter, "40").put(DCM_WindowWidth, "400").put(DCM_RescaleSlope, "3");
    writer.put(DCM_PhotometricInterpretation, "MONOCHROME1");
    OpenSettings settings;
    settings.modalityFile = settings.voiFile = settings.presentationFile = lender;
    const StoredImage image = load(writer, settings);
    EXPECT_EQ(image.grey().modality.table->entries, (Words{1, 2}));
    EXPECT_EQ(image.grey().voiTable()->entries, (Words{5, 6}));
    EXPECT_EQ(image.grey().presentation.table->entries, (Words{3, 4}));
    // A presentation state says all about black and white.
    EXPECT_FALSE(image.grey().presentation.inverse);

    settings.voi = 2;
    const StoredImage second = load(writer, settings);
    EXPECT_EQ(second.grey().voi, Voi(VoiWindow{{7.0, 8.0}, WindowFunction::Sigmoid}));
    settings.voi = 3;
    EXPECT_EQ(refusal(writer, settings),
              "has no window or VOI LUT 3, but 1: table of 2 entries from 0, 8 bits; 2: window, centre 7, width 8, "
              "sigmoid");

    const StoredImage phantom = openImage("phantom", {1, {}, lender, lender, lender});
    EXPECT_EQ(phantom.grey().modality.table->entries, (Words{1, 2}));
    EXPECT_EQ(phantom.grey().voiTable()->entries, (Words{5, 6}));
}

TEST(OpenImage, OtherFilesLendSlopeAndShape) {
    const TemporaryFolder folder;
    DicomWriter lender(1, 1);
    lender.put(DCM_RescaleSlope, "2").put(DCM_RescaleIntercept, "-9").put(DCM_PresentationLUTShape, "INVERSE");
    DicomWriter writer(2, 2);
    writer.lut(DCM_ModalityLUTSequence, {2, 0, 8}, {1, 2}).lut(DCM_PresentationLUTSequence, {2, 0, 8}, {3, 4});
    OpenSettings settings;
    settings.modalityFile = settings.presentationFile = lender.save(folder, EXS_LittleEndianExplicit, "lender.dcm");
    const StoredImage image = load(writer, settings);
    EXPECT_FALSE(image.grey().modality.table);
    EXPECT_EQ(image.grey().modality.slope, 2.0);
    EXPECT_EQ(image.grey().modality.intercept, -9.0);
    EXPECT_FALSE(image.grey().presentation.table);
    EXPECT_TRUE(image.grey().presentation.inverse);
}

TEST(OpenImage, FilesThatHaveNothingToLendAreNamed) {
    const TemporaryFolder folder;
    DicomWriter plain(1, 1);
    const std::string lender = plain.save(folder, EXS_LittleEndianExplicit, "lender.dcm");
    DicomWriter writer(2, 2);
    const auto words = [&](const OpenSettings& settings) {
        try {
            load(writer, settings);
        } catch (const FileRefusal& refused) {
            EXPECT_EQ(refused.file(), lender);
            return std::string(refused.what());
        }
        return std::string();
    };
    EXPECT_EQ(words({1, {}, lender, "", ""}), "has no Modality LUT and no rescale slope");
    EXPECT_EQ(words({1, {}, "", lender, ""}), "has no window and no VOI LUT");
    EXPECT_EQ(words({1, {}, "", "", lender}), "has no Presentation LUT and no shape");
    plain.put(DCM_RescaleSlope, "0");
    plain.save(folder, EXS_LittleEndianExplicit, "lender.dcm");
    EXPECT_EQ(words({1, {}, lender, "", ""}), "has a rescale slope or intercept that makes no sense");
}

TEST(OpenImage, ColourImagesHaveNothingToChoose) {
    DicomWriter writer(1, 1);
    writer.colours("RGB", 8, 0, {1, 2, 3});
    EXPECT_EQ(refusal(writer, voi(1)), "is a colour image, which has no windows and tables to choose");
}

}  // namespace
