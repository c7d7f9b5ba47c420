// Tables and windows as files carry them, and the choice among them.
#include "support/dicom_writer.h"
#include "viewing/dicom/dicom_file.h"
#include "viewing/image/voi_choice.h"
#include "viewing/open.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace viewing;
using zoltest::DicomWriter;
using zoltest::TemporaryFolder;
using Words = std::vector<std::uint16_t>;

StoredImage load(DicomWriter& writer, const OpenSettings& settings = {},
                 E_TransferSyntax syntax = EXS_LittleEndianExplicit) {
    const TemporaryFolder folder;
    return openImage(writer.save(folder, syntax), settings);
}

std::string refusal(DicomWriter& writer, const OpenSettings& settings = {}) {
    try {
        load(writer, settings);
    } catch (const Refusal& refused) {
        return refused.what();
    }
    return {};
}

OpenSettings voi(int number) {
    OpenSettings settings;
    settings.voi = number;
    return settings;
}

TEST(DicomLuts, AllWindowsAndTablesAreListedAndChosen) {
    DicomWriter writer(2, 2);
    writer.put(DCM_WindowCenter, "40\\300.5\\7").put(DCM_WindowWidth, "400\\1500\\0");
    writer.put(DCM_WindowCenterWidthExplanation, "SOFT\\BONE");
    writer.lut(DCM_VOILUTSequence, {2, 5, 12}, {1, 4095}, "ODD").lut(DCM_VOILUTSequence, {3, 0, 8}, {1, 2, 3});
    const StoredImage image = load(writer);
    ASSERT_EQ(image.grey().voiChoices.size(), 5U);
    EXPECT_EQ(image.grey().voiChoices[0].name, "SOFT");
    EXPECT_EQ(image.grey().voiChoices[1].name, "BONE");
    EXPECT_EQ(image.grey().voiChoices[1].voi, Voi(VoiWindow{{300.5, 1500.0}}));
    EXPECT_EQ(image.grey().voiChoices[2].flaw, "has a width of 0");
    EXPECT_EQ(image.grey().voiChoices[3].name, "ODD");
    EXPECT_EQ(std::get<LookupTable>(image.grey().voiChoices[3].voi).first, 5);
    EXPECT_EQ(std::get<LookupTable>(image.grey().voiChoices[3].voi).bits, 12);
    EXPECT_EQ(std::get<LookupTable>(image.grey().voiChoices[4].voi).entries, (Words{1, 2, 3}));
    EXPECT_EQ(image.grey().voi, Voi(VoiWindow{{40.0, 400.0}}));

    EXPECT_EQ(load(writer, voi(2)).grey().voi, Voi(VoiWindow{{300.5, 1500.0}}));
    const StoredImage table = load(writer, voi(4));
    EXPECT_EQ(table.grey().voiTable()->entries, (Words{1, 4095}));
    EXPECT_EQ(refusal(writer, voi(3)), "its window 3 has a width of 0");
    const std::string list =
        "1: window, centre 40, width 400, \"SOFT\"; 2: window, centre 300.5, width 1500, \"BONE\"; 3: window, cannot "
        "be "
        "applied: has a width of 0; 4: table of 2 entries from 5, 12 bits, \"ODD\"; 5: table of 3 entries from 0, 8 "
        "bits";
    EXPECT_EQ(refusal(writer, voi(6)), "has no window or VOI LUT 6, but " + list);
    EXPECT_EQ(refusal(writer, voi(0)), "has no window or VOI LUT 0, but " + list);
    DicomWriter plain(2, 2);
    EXPECT_EQ(refusal(plain, voi(1)), "has no window and no VOI LUT to choose");
}

TEST(DicomLuts, WhatIsNotChosenMayBeBroken) {
    DicomWriter writer(2, 2);
    writer.lut(DCM_VOILUTSequence, {3, 5, 12}, {1, 4095}).lut(DCM_VOILUTSequence, {2, 0, 8}, {1, 2});
    EXPECT_EQ(refusal(writer), "has a VOI LUT with 2 of 3 entries");
    EXPECT_EQ(load(writer, voi(2)).grey().voiTable()->entries, (Words{1, 2}));
    OpenSettings own;
    own.ownWindow = true;
    EXPECT_FALSE(load(writer, own).grey().voi);

    // Nor is anything said of it.
    DicomWriter windows(2, 2);
    windows.put(DCM_WindowCenter, "1\\7").put(DCM_WindowWidth, "0\\8").put(DCM_VOILUTFunction, "SIGMOID");
    EXPECT_EQ(load(windows).notes.size(), 1U);
    EXPECT_TRUE(load(windows, voi(2)).notes.empty());
    const StoredImage image = load(windows, own);
    EXPECT_TRUE(image.notes.empty());
    EXPECT_FALSE(image.grey().voi);
    EXPECT_EQ(functionFor(image.grey()), WindowFunction::Sigmoid);
}

TEST(DicomLuts, WithoutWindowsTheFirstTableIsTaken) {
    DicomWriter writer(2, 2);
    writer.lut(DCM_VOILUTSequence, {2, 5, 12}, {1, 4095});
    EXPECT_EQ(load(writer).grey().voiTable()->entries, (Words{1, 4095}));
    for (const E_TransferSyntax syntax : {EXS_LittleEndianImplicit, EXS_BigEndianExplicit})
        EXPECT_EQ(load(writer, {}, syntax).grey().voiTable()->entries, (Words{1, 4095})) << syntax;
}

TEST(DicomLuts, BrokenTablesAreRefusedOnlyWhenTheyAreNeeded) {
    DicomWriter writer(2, 2);
    writer.lut(DCM_VOILUTSequence, {3, 5, 12}, {1, 4095});
    EXPECT_EQ(refusal(writer), "has a VOI LUT with 2 of 3 entries");
    writer.put(DCM_WindowCenter, "4").put(DCM_WindowWidth, "4");
    EXPECT_EQ(load(writer).grey().voi, Voi(VoiWindow{{4.0, 4.0}}));
    EXPECT_EQ(refusal(writer, voi(2)), "has a VOI LUT with 2 of 3 entries");

    DicomWriter modality(2, 2);
    modality.lut(DCM_ModalityLUTSequence, {2, 0, 0}, {1, 2});
    EXPECT_EQ(refusal(modality), "has a Modality LUT with entries of 0 bits");
    DicomWriter presentation(2, 2);
    presentation.lut(DCM_PresentationLUTSequence, {2, 0, 8}, {});
    EXPECT_EQ(refusal(presentation), "has a Presentation LUT with 0 of 2 entries");
    DicomWriter empty(2, 2);
    DcmItem* item = nullptr;
    empty.dataset().findOrCreateSequenceItem(DCM_ModalityLUTSequence, item);
    EXPECT_EQ(refusal(empty), "has a Modality LUT without a descriptor of three numbers");
    item->putAndInsertUint16(DCM_LUTDescriptor, 2);
    EXPECT_EQ(refusal(empty), "has a Modality LUT without a descriptor of three numbers");
}

TEST(DicomLuts, EntriesOfEightBitsMayBePacked) {
    DicomWriter writer(2, 2);
    writer.lut(DCM_VOILUTSequence, {3, 0, 8}, {0x0201, 0x0003});
    EXPECT_EQ(load(writer).grey().voiTable()->entries, (Words{1, 2, 3}));
}

TEST(DicomLuts, MoreBitsThanDeclaredAreCounted) {
    DicomWriter writer(2, 2);
    writer.lut(DCM_VOILUTSequence, {2, 0, 8}, {1, 1023});
    EXPECT_EQ(load(writer).grey().voiTable()->bits, 10);
}

TEST(DicomLuts, FirstInputsAreSignedWhereTheyCanBe) {
    const auto first = [](int representation, const char* intercept, bool declared, const char* slope = "1") {
        DicomWriter writer(2, 2);
        writer.format(16, 12, 11, representation).put(DCM_RescaleIntercept, intercept).put(DCM_RescaleSlope, slope);
        writer.lut(DCM_VOILUTSequence, {2, -3, 12, declared}, {1, 2});
        return load(writer).grey().voiTable()->first;
    };
    EXPECT_EQ(first(0, "0", false), 65533);
    EXPECT_EQ(first(0, "0", true), -3);
    EXPECT_EQ(first(1, "0", false), -3);
    EXPECT_EQ(first(0, "-1", false), -3);
    EXPECT_EQ(first(0, "0", false, "-1"), -3);
}

TEST(DicomLuts, TablesFromOtherFilesAreSignedAsTheImageIs) {
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

TEST(DicomLuts, EntriesMayBeDeclaredAsBytes) {
    DicomWriter writer(2, 2);
    DcmItem* item = nullptr;
    writer.dataset().findOrCreateSequenceItem(DCM_VOILUTSequence, item);
    zoltest::putDescriptor(*item, DCM_LUTDescriptor, {2, 0, 12});
    const Uint8 bytes[] = {0x01, 0x00, 0xFF, 0x0F};
    item->putAndInsertUint8Array(DcmTag(DCM_LUTData, EVR_OB), bytes, sizeof bytes);
    EXPECT_EQ(load(writer).grey().voiTable()->entries, (Words{1, 4095}));
}

TEST(DicomLuts, OtherFilesLendTheirTables) {
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

TEST(DicomLuts, OtherFilesLendSlopeAndShape) {
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

TEST(DicomLuts, FilesThatHaveNothingToLendAreNamed) {
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

TEST(DicomLuts, ColourImagesHaveNothingToChoose) {
    DicomWriter writer(1, 1);
    writer.colours("RGB", 8, 0, {1, 2, 3});
    EXPECT_EQ(refusal(writer, voi(1)), "is a colour image, which has no windows and tables to choose");
}

}  // namespace
