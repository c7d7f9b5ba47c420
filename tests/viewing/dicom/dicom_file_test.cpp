#include "viewing/dicom/dicom_file.h"

#include "support/dicom_writer.h"
#include "viewing/open.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace {

using namespace viewing;
using zoltest::DicomWriter;
using zoltest::TemporaryFolder;
using Words = std::vector<std::uint16_t>;

StoredImage load(DicomWriter& writer, E_TransferSyntax syntax = EXS_LittleEndianExplicit) {
    const TemporaryFolder folder;
    return openImage(writer.save(folder, syntax), {});
}

/// The words with which the file is refused, empty when it is not.
std::string refusal(DicomWriter& writer) {
    try {
        load(writer);
    } catch (const Refusal& refused) {
        return refused.what();
    }
    return {};
}

std::string refusalOfBytes(const std::string& bytes) {
    const TemporaryFolder folder;
    std::ofstream(folder.file("bytes"), std::ios::binary) << bytes;
    try {
        static_cast<void>(DicomFile(folder.file("bytes")).image());
    } catch (const Refusal& refused) {
        return refused.what();
    }
    return {};
}

DicomWriter image2x2() {
    DicomWriter writer(2, 2);
    writer.pixels({1, 2, 3, 0x0FFF});
    return writer;
}

TEST(DicomInput, PlainImage) {
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

TEST(DicomInput, ByteOrdersAgree) {
    for (const E_TransferSyntax syntax : {EXS_LittleEndianImplicit, EXS_LittleEndianExplicit, EXS_BigEndianExplicit,
                                          EXS_DeflatedLittleEndianExplicit}) {
        DicomWriter writer(3, 1);
        writer.pixels({1, 0x102, 0xFFF});
        writer.overlay(0x6000, 1, 3, 1, 1, {0x0005});
        const StoredImage image = load(writer, syntax);
        EXPECT_EQ(image.grey().samples, (Words{1, 0x102, 0xFFF})) << syntax;
        ASSERT_EQ(image.overlays.size(), 1U);
        EXPECT_TRUE(image.overlays[0].bits.get(0, 0));
        EXPECT_FALSE(image.overlays[0].bits.get(1, 0));
        EXPECT_TRUE(image.overlays[0].bits.get(2, 0));
    }
}

TEST(DicomInput, EightBitsAllocatedWithAnOddNumberOfPixels) {
    DicomWriter writer(3, 1);
    writer.format(8, 8, 7, 0).remove(DCM_PixelData).bytes({7, 0, 255});
    EXPECT_EQ(load(writer).grey().samples, (Words{7, 0, 255}));
}

TEST(DicomInput, WithoutAHighBitValuesLieLow) {
    DicomWriter writer = image2x2();
    writer.remove(DCM_HighBit);
    EXPECT_EQ(load(writer).grey().samples, (Words{1, 2, 3, 0x0FFF}));
}

TEST(DicomInput, SignedValuesAreLifted) {
    DicomWriter writer(2, 1);
    writer.format(16, 12, 11, 1).pixels({0x0800, 0x07FF});
    const StoredImage image = load(writer);
    EXPECT_EQ(image.grey().samples, (Words{0, 4095}));
    EXPECT_EQ(image.grey().lowest, -2048);
}

TEST(DicomInput, RescaleAndWindow) {
    DicomWriter writer = image2x2();
    writer.put(DCM_RescaleSlope, "2.5").put(DCM_RescaleIntercept, "-1024");
    writer.put(DCM_WindowCenter, " 40 \\600").put(DCM_WindowWidth, "+400\\1600");
    const StoredImage image = load(writer);
    EXPECT_EQ(image.grey().modality.slope, 2.5);
    EXPECT_EQ(image.grey().modality.intercept, -1024.0);
    EXPECT_EQ(image.grey().voi, Voi(VoiWindow{{40.0, 400.0}}));
}

TEST(DicomInput, SenselessRescaleIsSaidAndLeftOut) {
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

TEST(DicomInput, WindowFunctions) {
    DicomWriter sigmoid = image2x2();
    sigmoid.put(DCM_WindowCenter, "40").put(DCM_WindowWidth, "0.5").put(DCM_VOILUTFunction, "SIGMOID");
    EXPECT_EQ(load(sigmoid).grey().voi, Voi(VoiWindow{{40.0, 0.5}, WindowFunction::Sigmoid}));
    DicomWriter exact = image2x2();
    exact.put(DCM_WindowCenter, "40.5").put(DCM_WindowWidth, "100.25").put(DCM_VOILUTFunction, "LINEAR_EXACT");
    EXPECT_EQ(load(exact).grey().voi, Voi(VoiWindow{{40.5, 100.25}, WindowFunction::LinearExact}));
}

TEST(DicomInput, AnUnknownWindowFunctionIsSaidAndTakenAsLinear) {
    DicomWriter writer = image2x2();
    writer.put(DCM_WindowCenter, "40").put(DCM_WindowWidth, "100").put(DCM_VOILUTFunction, "SIGMA");
    const StoredImage image = load(writer);
    EXPECT_EQ(image.grey().voi, Voi(VoiWindow{{40.0, 100.0}}));
    EXPECT_EQ(image.notes, (std::vector<std::string>{"the VOI LUT function 'SIGMA' is not known; taken as LINEAR"}));
    writer.put(DCM_VOILUTFunction, "LINEAR");
    EXPECT_TRUE(load(writer).notes.empty());
}

TEST(DicomInput, NamesComeInUtf8) {
    DicomWriter writer = image2x2();
    writer.put(DCM_SpecificCharacterSet, "ISO_IR 100");
    writer.put(DCM_WindowCenter, "1").put(DCM_WindowWidth, "2").put(DCM_WindowCenterWidthExplanation, "K\xF6rper");
    writer.lut(DCM_VOILUTSequence, {2, 0, 8}, {1, 2}, "Gef\xE4\xDF");
    const StoredImage image = load(writer);
    ASSERT_EQ(image.grey().voiChoices.size(), 2U);
    EXPECT_EQ(image.grey().voiChoices[0].name, "K\xC3\xB6rper");
    EXPECT_EQ(image.grey().voiChoices[1].name, "Gef\xC3\xA4\xC3\x9F");
}

TEST(DicomInput, SequencesWithinSequencesEndBeforeTheStackDoes) {
    const TemporaryFolder folder;
    DicomWriter writer = image2x2();
    const std::string path = writer.save(folder);
    std::ostringstream before;
    before << std::ifstream(path, std::ios::binary).rdbuf();
    const auto nested = [&](int depth) {
        // Each level begins a sequence and an item of unknown length; none of them ends.
        const std::string level("\x08\x00\x40\x11SQ\x00\x00\xFF\xFF\xFF\xFF\xFE\xFF\x00\xE0\xFF\xFF\xFF\xFF", 20);
        std::string levels;
        for (int i = 0; i < depth; ++i) levels += level;
        return refusalOfBytes(before.str() + levels);
    };
    EXPECT_EQ(nested(100000), "holds sequences within sequences, too many to be read");
    EXPECT_NE(nested(50), "");
    EXPECT_NE(nested(50), nested(100000));
}

TEST(DicomInput, TheFirstUsableWindowIsTaken) {
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

TEST(DicomInput, UnusableWindowIsSaidAndLeftOut) {
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

TEST(DicomInput, PalettesBesideGreysAreSaid) {
    DicomWriter writer = image2x2();
    zoltest::putDescriptor(writer.dataset(), DCM_RedPaletteColorLookupTableDescriptor, {2, 0, 16});
    EXPECT_EQ(load(writer).notes,
              (std::vector<std::string>{"the palette that it has beside its greys is not applied"}));
}

TEST(DicomInput, FunctionalGroupsOfTheFirstFrameCount) {
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

TEST(DicomInput, SharedFunctionalGroupsCountForEveryFrame) {
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

TEST(DicomInput, SixteenBitsAreNeededFromTheFirstLevelThatDoesNotFit) {
    for (const auto& [highest, levels] : {std::pair(4095, levels12), {4096, levels16}}) {
        DicomWriter writer(2, 1);
        writer.format(16, 16, 15, 0).pixels({0, static_cast<std::uint16_t>(highest)});
        const StoredImage image = load(writer);
        EXPECT_EQ(image.grey().levels, levels);
        EXPECT_EQ(image.grey().samples[1], highest);
    }
}

TEST(DicomInput, PixelRatioFromWhateverCarriesIt) {
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

TEST(DicomInput, OnlyPixelSpacingIsCalibrated) {
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

TEST(DicomInput, PixelsMayBeAHundredTimesAsHighAsWide) {
    for (const auto& [value, ratio] :
         {std::pair("100\\1", 100.0), {"1\\100", 0.01}, {"101\\1", 1.0}, {"1\\101", 1.0}}) {
        DicomWriter writer = image2x2();
        writer.put(DCM_PixelAspectRatio, value);
        EXPECT_EQ(load(writer).ratioYx, ratio) << value;
    }
}

TEST(DicomInput, SenselessPixelShapesAreSaidAndPassedOver) {
    for (const char* value : {"0\\0", "-1\\1", "1", "1\\x", "1000\\1", "1\\1000"}) {
        DicomWriter writer = image2x2();
        writer.put(DCM_PixelSpacing, value).put(DCM_PixelAspectRatio, "2\\1");
        const StoredImage image = load(writer);
        EXPECT_EQ(image.ratioYx, 2.0) << value;
        EXPECT_EQ(image.notes.size(), 1U) << value;
    }
}

TEST(DicomInput, LowValuesAreWhiteOnce) {
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

TEST(DicomInput, PaddingValueAndRange) {
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

TEST(DicomInput, PaddingOfSignedImagesIsSigned) {
    DicomWriter writer(2, 1);
    writer.format(16, 16, 15, 1).pixels({0xF830, 5});
    writer.dataset().putAndInsertSint16(DCM_PixelPaddingValue, -2000);
    const StoredImage image = load(writer);
    EXPECT_TRUE(image.grey().padding.get(0, 0));
    EXPECT_FALSE(image.grey().padding.get(1, 0));
    EXPECT_EQ(image.grey().lowest, 5);
}

TEST(DicomInput, Shutters) {
    DicomWriter writer = image2x2();
    writer.put(DCM_ShutterShape, "RECTANGULAR\\CIRCULAR\\POLYGONAL");
    writer.put(DCM_ShutterLeftVerticalEdge, "31").put(DCM_ShutterRightVerticalEdge, "330");
    writer.put(DCM_ShutterUpperHorizontalEdge, "41").put(DCM_ShutterLowerHorizontalEdge, "320");
    writer.put(DCM_CenterOfCircularShutter, "180\\185").put(DCM_RadiusOfCircularShutter, "130");
    writer.put(DCM_VerticesOfThePolygonalShutter, "60\\180\\180\\330\\310\\181");
    writer.word(DCM_ShutterPresentationValue, 0x8000);
    const Shutters shutters = load(writer).shutters;
    EXPECT_EQ(shutters.rectangle, (Box{30, 40, 329, 319}));
    EXPECT_EQ(shutters.circle, (Circle{{184, 179}, 130}));
    EXPECT_EQ(shutters.polygon, (std::vector<Point>{{179, 59}, {329, 179}, {180, 309}}));
    EXPECT_EQ(shutters.presentationValue, 0x8000);
}

TEST(DicomInput, BrokenShuttersAreSaidAndLeftOut) {
    DicomWriter writer = image2x2();
    writer.put(DCM_ShutterShape, "RECTANGULAR\\CIRCULAR\\POLYGONAL\\ROUND");
    writer.put(DCM_ShutterLeftVerticalEdge, "31").put(DCM_ShutterRightVerticalEdge, "30");
    writer.put(DCM_ShutterUpperHorizontalEdge, "41").put(DCM_ShutterLowerHorizontalEdge, "320");
    writer.put(DCM_CenterOfCircularShutter, "180\\185").put(DCM_RadiusOfCircularShutter, "0");
    writer.put(DCM_VerticesOfThePolygonalShutter, "60\\180\\180\\330\\310");
    const StoredImage image = load(writer);
    EXPECT_FALSE(image.shutters.any());
    EXPECT_EQ(image.notes.size(), 4U);
}

TEST(DicomInput, EndlessPolygonsAreRefused) {
    DicomWriter writer = image2x2();
    std::string vertices = "1\\1";
    for (int i = 0; i < 1024; ++i) vertices += "\\1\\1";
    writer.put(DCM_ShutterShape, "POLYGONAL").put(DCM_VerticesOfThePolygonalShutter, vertices);
    EXPECT_EQ(refusal(writer), "has a polygonal shutter of 1025 vertices; zolview takes up to 1024");
}

TEST(DicomInput, OverlayPlanes) {
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

TEST(DicomInput, OverlayDataInBytes) {
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

TEST(DicomInput, ShortOverlayDataIsFilledWithNothing) {
    DicomWriter writer(100, 100);
    writer.overlay(0x6000, 65535, 65535, 1, 1, {0xFFFF});
    const StoredImage image = load(writer);
    ASSERT_EQ(image.overlays.size(), 1U);
    EXPECT_TRUE(image.overlays[0].bits.get(15, 0));
    EXPECT_FALSE(image.overlays[0].bits.get(16, 0));
    EXPECT_FALSE(image.overlays[0].bits.get(99, 99));
    EXPECT_EQ(image.notes.size(), 1U);
}

TEST(DicomInput, EmbeddedPlanesAboveTwelveBitsStayInThePixels) {
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

TEST(DicomInput, EmbeddedPlanesElsewhereBecomePlanes) {
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

TEST(DicomInput, EmbeddedPlaneWithinTheValuesIsNotDrawn) {
    DicomWriter writer = image2x2();
    writer.embeddedOverlay(0x6000, 11).embeddedOverlay(0x6002, 16);
    const StoredImage image = load(writer);
    EXPECT_TRUE(image.overlays.empty());
    EXPECT_TRUE(image.grey().embedded.empty());
    EXPECT_EQ(image.notes.size(), 2U);
}

TEST(DicomInput, EmbeddedPlanesOfDeepImagesBecomePlanes) {
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

TEST(DicomInput, WhatCannotBeShownIsSaid) {
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

TEST(DicomInput, ImpossibleSizesAndFormatsAreRefused) {
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

TEST(DicomInput, ShortPixelDataIsRefused) {
    DicomWriter writer = image2x2();
    writer.word(DCM_Rows, 3);
    EXPECT_EQ(refusal(writer), "is truncated: its Pixel Data has 8 of 12 bytes");
}

TEST(DicomInput, FilesThatAreNoDicomAreRefused) {
    EXPECT_NE(refusalOfBytes(""), "");
    EXPECT_NE(refusalOfBytes("a line of text\n"), "");
    EXPECT_NE(refusalOfBytes(std::string(1000, '\0')), "");
    EXPECT_NE(refusalOfBytes(std::string(128, '\0') + "DICM"), "");
    EXPECT_NE(refusalOfBytes(std::string(128, '\0') + "DICM" + std::string(5000, '\xFF')), "");
    EXPECT_THROW(DicomFile("no/such/file.dcm"), Refusal);
    EXPECT_THROW(DicomFile(std::filesystem::temp_directory_path().string()), Refusal);
}

TEST(DicomInput, FilesCutAnywhereAreRefusedOrRead) {
    const TemporaryFolder folder;
    DicomWriter writer(8, 8);
    writer.overlay(0x6000, 8, 8, 1, 1, Words(4, 0xAAAA));
    std::ifstream in(writer.save(folder), std::ios::binary);
    const std::string whole((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    for (std::size_t length = 0; length < whole.size(); length += 7) {
        const std::string words = refusalOfBytes(whole.substr(0, length));
        EXPECT_EQ(words.find('\n'), std::string::npos);
    }
}

TEST(DicomInput, SummaryTellsAboutTheImageOnly) {
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
