// Tables and windows as files carry them, and the choice among them.
#include "support/opened.h"
#include "viewing/dicom/dicom_file.h"
#include "viewing/image/voi_choice.h"
#include "viewing/open.h"

#include <gtest/gtest.h>

#include <string>

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

TEST(DicomLuts, EntriesMayBeDeclaredAsBytes) {
    DicomWriter writer(2, 2);
    DcmItem* item = nullptr;
    writer.dataset().findOrCreateSequenceItem(DCM_VOILUTSequence, item);
    zoltest::putDescriptor(*item, DCM_LUTDescriptor, {2, 0, 12});
    const Uint8 bytes[] = {0x01, 0x00, 0xFF, 0x0F};
    item->putAndInsertUint8Array(DcmTag(DCM_LUTData, EVR_OB), bytes, sizeof bytes);
    EXPECT_EQ(load(writer).grey().voiTable()->entries, (Words{1, 4095}));
}

TEST(DicomLuts, RescaleAndWindow) {
    DicomWriter writer = image2x2();
    writer.put(DCM_RescaleSlope, "2.5").put(DCM_RescaleIntercept, "-1024");
    writer.put(DCM_WindowCenter, " 40 \\600").put(DCM_WindowWidth, "+400\\1600");
    const StoredImage image = load(writer);
    EXPECT_EQ(image.grey().modality.slope, 2.5);
    EXPECT_EQ(image.grey().modality.intercept, -1024.0);
    EXPECT_EQ(image.grey().voi, Voi(VoiWindow{{40.0, 400.0}}));
}

TEST(DicomLuts, SenselessRescaleIsSaidAndLeftOut) {
    const std::pair<const char*, const char*> senseless[] = {
        {"0", "5"}, {"1e-10", "5"}, {"1e10", "5"}, {"2", "1e10"}, {"steep", "5"}, {"2", "high"}, {"nan", "5"}};
    for (const auto& [slope, intercept] : senseless) {
        DicomWriter writer = image2x2();
        writer.put(DCM_RescaleSlope, slope).put(DCM_RescaleIntercept, intercept);
        const StoredImage image = load(writer);
        EXPECT_EQ(image.grey().modality.slope, 1.0) << slope;
        EXPECT_EQ(image.grey().modality.intercept, 0.0) << intercept;
        EXPECT_EQ(image.notes,
                  (std::vector<std::string>{"the rescale slope or intercept makes no sense; shown without them"}));
    }
    DicomWriter half = image2x2();
    half.put(DCM_RescaleIntercept, "-1e9");
    EXPECT_EQ(load(half).grey().modality.intercept, -1e9);
    EXPECT_TRUE(load(half).notes.empty());
}

TEST(DicomLuts, WindowFunctions) {
    DicomWriter sigmoid = image2x2();
    sigmoid.put(DCM_WindowCenter, "40").put(DCM_WindowWidth, "0.5").put(DCM_VOILUTFunction, "SIGMOID");
    EXPECT_EQ(load(sigmoid).grey().voi, Voi(VoiWindow{{40.0, 0.5}, WindowFunction::Sigmoid}));
    DicomWriter exact = image2x2();
    exact.put(DCM_WindowCenter, "40.5").put(DCM_WindowWidth, "100.25").put(DCM_VOILUTFunction, "LINEAR_EXACT");
    EXPECT_EQ(load(exact).grey().voi, Voi(VoiWindow{{40.5, 100.25}, WindowFunction::LinearExact}));
}

TEST(DicomLuts, AnUnknownWindowFunctionIsSaidAndTakenAsLinear) {
    DicomWriter writer = image2x2();
    writer.put(DCM_WindowCenter, "40").put(DCM_WindowWidth, "100").put(DCM_VOILUTFunction, "SIGMA");
    const StoredImage image = load(writer);
    EXPECT_EQ(image.grey().voi, Voi(VoiWindow{{40.0, 100.0}}));
    EXPECT_EQ(image.notes, (std::vector<std::string>{"the VOI LUT function 'SIGMA' is not known; taken as LINEAR"}));
    writer.put(DCM_VOILUTFunction, "LINEAR");
    EXPECT_TRUE(load(writer).notes.empty());
}

}  // namespace
