// Frames of Pixel Data in every encoding, sound and broken.
#include "support/compressed_frames.h"
#include "support/dicom_writer.h"
#include "support/jpeg2000_codestream.h"
#include "viewing/dicom/dicom_file.h"
#include "viewing/open.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>

namespace {

using namespace viewing;
using zoltest::DicomWriter;
using zoltest::encodeAs;
using zoltest::encodeJpeg2000;
using zoltest::putFragments;
using zoltest::TemporaryFolder;
using Words = std::vector<std::uint16_t>;
using Bytes = std::vector<std::uint8_t>;

StoredImage load(DicomWriter& writer, int frame = 1, E_TransferSyntax syntax = EXS_LittleEndianExplicit) {
    const TemporaryFolder folder;
    OpenSettings settings;
    settings.frame = frame;
    return openImage(writer.save(folder, syntax), settings);
}

std::string refusal(DicomWriter& writer, int frame = 1, E_TransferSyntax syntax = EXS_LittleEndianExplicit) {
    try {
        load(writer, frame, syntax);
    } catch (const Refusal& refused) {
        return refused.what();
    }
    return {};
}

/// A run-length coded frame of the given segments.
Bytes runLengths(const std::vector<Bytes>& segments) {
    Bytes out(64);
    const auto put = [&out](std::size_t i, std::size_t value) {
        for (std::size_t k = 0; k < 4; ++k) out[4 * i + k] = static_cast<std::uint8_t>(value >> (8 * k));
    };
    put(0, segments.size());
    for (std::size_t i = 0; i < segments.size(); ++i) {
        put(i + 1, out.size());
        out.insert(out.end(), segments[i].begin(), segments[i].end());
    }
    return out;
}

TEST(DicomFrame, EachOfSeveralFrames) {
    for (const E_TransferSyntax syntax : {EXS_LittleEndianExplicit, EXS_LittleEndianImplicit, EXS_BigEndianExplicit}) {
        DicomWriter words(2, 1);
        words.put(DCM_NumberOfFrames, "3").pixels({1, 2, 3, 4, 5, 6});
        DicomWriter bytes(3, 1);
        bytes.format(8, 8, 7, 0).remove(DCM_PixelData).put(DCM_NumberOfFrames, "3").bytes({1, 2, 3, 4, 5, 6, 7, 8, 9});
        for (int frame = 1; frame <= 3; ++frame) {
            const auto first = static_cast<std::uint16_t>(2 * frame - 1);
            EXPECT_EQ(load(words, frame, syntax).grey().samples, (Words{first, static_cast<std::uint16_t>(first + 1)}));
            const auto odd = static_cast<std::uint16_t>(3 * frame - 2);
            EXPECT_EQ(load(bytes, frame, syntax).grey().samples,
                      (Words{odd, static_cast<std::uint16_t>(odd + 1), static_cast<std::uint16_t>(odd + 2)}));
        }
    }
}

TEST(DicomFrame, FramesThatAreNotThereAreRefused) {
    DicomWriter one(2, 1);
    EXPECT_EQ(refusal(one, 2), "has 1 frame; there is no frame 2");
    EXPECT_EQ(refusal(one, 0), "has 1 frame; there is no frame 0");
    DicomWriter three(2, 1);
    three.put(DCM_NumberOfFrames, "3").pixels({1, 2, 3, 4});
    EXPECT_EQ(refusal(three, 4), "has 3 frames; there is no frame 4");
    EXPECT_EQ(load(three, 2).grey().samples, (Words{3, 4}));
    EXPECT_EQ(refusal(three, 3), "is truncated: its Pixel Data has 8 of 12 bytes");
    DicomWriter absurd(2, 1);
    absurd.put(DCM_NumberOfFrames, "2147483647").pixels({1, 2});
    EXPECT_EQ(load(absurd).grey().samples, (Words{1, 2}));
    EXPECT_EQ(refusal(absurd, 2147483647), "is truncated: its Pixel Data has 4 of 8589934588 bytes");
    for (const char* senseless : {"0", "-5", "1e99", "many"}) {
        DicomWriter writer(2, 1);
        writer.put(DCM_NumberOfFrames, senseless).pixels({1, 2});
        EXPECT_EQ(load(writer).grey().samples, (Words{1, 2})) << senseless;
    }
}

TEST(DicomFrame, GroupsAndPlanesGoWithTheirFrame) {
    DicomWriter writer(2, 1);
    writer.put(DCM_NumberOfFrames, "3").pixels({1, 2, 3, 4, 5, 6});
    for (long i = 0; i < 3; ++i) {
        DcmItem* frame = nullptr;
        DcmItem* item = nullptr;
        writer.dataset().findOrCreateSequenceItem(DCM_PerFrameFunctionalGroupsSequence, frame, i);
        frame->findOrCreateSequenceItem(DCM_FrameVOILUTSequence, item);
        item->putAndInsertString(DCM_WindowCenter, std::to_string(10 * (i + 1)).c_str());
        item->putAndInsertString(DCM_WindowWidth, "9");
    }
    // Two parts of a plane, for the frames 2 and 3; one for frame 2 alone; one for all frames.
    writer.overlay(0x6000, 1, 2, 1, 1, {0x0009}).put(DcmTagKey(0x6000, 0x0015), "2");
    writer.word(DcmTagKey(0x6000, 0x0051), 2);
    writer.overlay(0x6002, 1, 2, 1, 1, {0x0003}).word(DcmTagKey(0x6002, 0x0051), 2);
    writer.overlay(0x6004, 1, 2, 1, 1, {0x0002});
    const StoredImage first = load(writer, 1);
    EXPECT_EQ(first.grey().voi, Voi(VoiWindow{{10.0, 9.0}}));
    ASSERT_EQ(first.overlays.size(), 1U);
    EXPECT_TRUE(first.overlays[0].bits.get(1, 0));
    EXPECT_EQ(first.notes, (std::vector<std::string>{"overlay 6000 belongs to other frames; not drawn",
                                                     "overlay 6002 belongs to other frames; not drawn"}));
    const StoredImage second = load(writer, 2);
    EXPECT_EQ(second.grey().voi, Voi(VoiWindow{{20.0, 9.0}}));
    ASSERT_EQ(second.overlays.size(), 3U);
    EXPECT_TRUE(second.overlays[0].bits.get(0, 0));
    EXPECT_FALSE(second.overlays[0].bits.get(1, 0));
    const StoredImage third = load(writer, 3);
    EXPECT_EQ(third.grey().voi, Voi(VoiWindow{{30.0, 9.0}}));
    ASSERT_EQ(third.overlays.size(), 2U);
    EXPECT_FALSE(third.overlays[0].bits.get(0, 0));
    EXPECT_TRUE(third.overlays[0].bits.get(1, 0));
}

TEST(DicomFrame, SenselessFramesOfPlanesAreNoHarm) {
    for (const char* count : {"-1", "0", "1e300", "2147483647"}) {
        for (const int origin : {0, 1, 65535}) {
            DicomWriter writer(2, 1);
            writer.overlay(0x6000, 1, 2, 1, 1, {0x0003}).put(DcmTagKey(0x6000, 0x0015), count);
            writer.word(DcmTagKey(0x6000, 0x0051), origin);
            EXPECT_LE(load(writer).overlays.size(), 1U);
        }
    }
}

TEST(DicomFrame, RunLengths) {
    DicomWriter writer(4, 1);
    writer.put(DCM_NumberOfFrames, "2");
    // High bytes first: three zeroes and a 1, then a run of 9 and one literal.
    putFragments(writer, EXS_RLELossless,
                 {runLengths({{0xFE, 0, 0, 1}, {0xFE, 9, 0, 7}}), runLengths({{0xFD, 2}, {3, 1, 2, 3, 4}})});
    EXPECT_EQ(load(writer, 1, EXS_RLELossless).grey().samples, (Words{9, 9, 9, 0x107}));
    EXPECT_EQ(load(writer, 2, EXS_RLELossless).grey().samples, (Words{0x201, 0x202, 0x203, 0x204}));
}

TEST(DicomFrame, BrokenRunLengthsAreRefused) {
    const auto words = [](const Bytes& fragment) {
        DicomWriter writer(4, 1);
        putFragments(writer, EXS_RLELossless, {fragment});
        return refusal(writer, 1, EXS_RLELossless);
    };
    const std::string broken = "has Pixel Data that cannot be decoded (broken run lengths)";
    const auto cut = [](int pixels) {
        return "is truncated: its run lengths hold " + std::to_string(pixels) +
               " pixels where Rows and Columns ask for 4";
    };
    const Bytes whole = runLengths({{0xFD, 0}, {0xFD, 9}});
    EXPECT_EQ(words(whole), "");
    EXPECT_EQ(words(Bytes(10)), broken);
    EXPECT_EQ(words(runLengths({{0xFD, 0}})),
              "has 1 run-length coded segments where Samples per Pixel and Bits Allocated ask for 2");
    for (const std::size_t number : {1U, 2U}) {
        for (const int value : {0, 63, 0x7FFFFFFF, -1}) {
            Bytes bytes = whole;
            for (std::size_t k = 0; k < 4; ++k)
                bytes[4 * number + k] = static_cast<std::uint8_t>(static_cast<unsigned int>(value) >> (8 * k));
            EXPECT_EQ(words(bytes), broken) << number << ' ' << value;
        }
    }
    EXPECT_EQ(words(runLengths({{0xFE, 0}, {0xFD, 9}})), cut(3));
    EXPECT_EQ(words(runLengths({{0xFD, 0}, {0xFE, 9}})), cut(3));
    EXPECT_EQ(words(runLengths({{0xFD, 0}, {3, 1, 2}})), cut(3));
    // A run whose byte is missing.
    EXPECT_EQ(words(runLengths({{0xFD, 0}, {128, 0xFD}})), cut(0));
    EXPECT_EQ(words(runLengths({{0xFD, 0}, {}})), cut(0));
    EXPECT_EQ(words(runLengths({{0xFD, 0}, {128, 128, 128, 128}})), cut(0));
}

TEST(DicomFrame, RunLengthsInSeveralFragmentsAreJoined) {
    const Bytes whole = runLengths({{0xFE, 0, 0, 1}, {3, 5, 6, 7, 8}});
    for (std::size_t first = 2; first < whole.size(); first += 2) {
        DicomWriter writer(4, 1);
        const auto split = whole.begin() + static_cast<std::ptrdiff_t>(first);
        putFragments(writer, EXS_RLELossless, {Bytes(whole.begin(), split), Bytes(split, whole.end())});
        EXPECT_EQ(load(writer, 1, EXS_RLELossless).grey().samples, (Words{5, 6, 7, 0x108})) << first;
    }
}

TEST(DicomFrame, RunLengthsOfColoursLieInPlanes) {
    for (const int planar : {0, 1}) {
        DicomWriter writer(2, 1);
        writer.colours("RGB", 8, planar, Words(6));
        putFragments(writer, EXS_RLELossless, {runLengths({{1, 0x10, 0x20}, {1, 0x30, 0x40}, {0xFF, 0x50}})});
        EXPECT_EQ(std::get<Rgb8Pixels>(load(writer, 1, EXS_RLELossless).colour().pixels),
                  (std::vector<std::uint32_t>{0x103050, 0x204050}));
    }
}

TEST(DicomFrame, RunLengthsBeyondTheImageAreRefused) {
    const auto words = [](const Bytes& high, const Bytes& low) {
        DicomWriter writer(4, 1);
        putFragments(writer, EXS_RLELossless, {runLengths({high, low})});
        return refusal(writer, 1, EXS_RLELossless);
    };
    const auto longer = [](int pixels) {
        return "has run lengths of " + std::to_string(pixels) + " pixels where Rows and Columns ask for 4";
    };
    EXPECT_EQ(words({0xFD, 0}, {0xFC, 9}), longer(5));
    EXPECT_EQ(words({0x81, 0}, {0xFD, 9}), longer(128));
    EXPECT_EQ(words({0xFD, 0}, {7, 1, 2, 3, 4, 5, 6, 7, 8}), longer(8));
    EXPECT_EQ(words({0xFD, 0}, {0xFD, 1, 0xFF, 0}), longer(6));
    // Zeroes that fill a segment up are no pixels.
    EXPECT_EQ(words({0xFD, 0, 0, 0}, {0xFD, 9, 0}), "");
}

/// A ramp through all greys that is not quite even.
Words scattered(int count, int bits) {
    Words out;
    const int top = (1 << bits) - 1;
    for (int i = 0; i < count; ++i) out.push_back(static_cast<std::uint16_t>((i * (top / count)) ^ (i * 37 % 8)));
    return out;
}

DicomWriter greyImage(int width, int height, int allocated, int stored) {
    DicomWriter writer(width, height);
    const Words words = scattered(width * height, stored);
    writer.format(allocated, stored, stored - 1, 0).remove(DCM_PixelData);
    if (allocated == 8)
        writer.bytes({words.begin(), words.end()});
    else
        writer.pixels(words);
    return writer;
}

struct Coding {
    E_TransferSyntax syntax = EXS_JPEGProcess1;
    int allocated = 8;
    int stored = 8;
    std::string name = "JPEG";
};

const std::vector<Coding>& codings() {
    static const std::vector<Coding> all{
        {EXS_JPEGProcess1, 8, 8},       {EXS_JPEGProcess2_4, 16, 12},          {EXS_JPEGProcess10_12, 8, 8},
        {EXS_JPEGProcess10_12, 16, 12}, {EXS_JPEGProcess14SV1, 8, 8},          {EXS_JPEGProcess14SV1, 16, 12},
        {EXS_JPEGProcess14SV1, 16, 16}, {EXS_JPEGLSLossless, 8, 8, "JPEG-LS"}, {EXS_JPEGLSLossless, 16, 12, "JPEG-LS"}};
    return all;
}

TEST(DicomFrame, JpegsShowTheirImage) {
    for (const Coding& coding : codings()) {
        DicomWriter writer = greyImage(24, 16, coding.allocated, coding.stored);
        const Words expected = load(writer).grey().samples;
        putFragments(writer, coding.syntax, {encodeAs(writer, coding.syntax)});
        const Words found = load(writer, 1, coding.syntax).grey().samples;
        const bool isLossless = coding.syntax == EXS_JPEGProcess14SV1 || coding.syntax == EXS_JPEGLSLossless;
        ASSERT_EQ(found.size(), expected.size());
        for (std::size_t i = 0; i < found.size(); ++i)
            ASSERT_NEAR(found[i], expected[i], isLossless ? 0 : 3) << coding.syntax << ' ' << i;
    }
}

TEST(DicomFrame, JpegsCutShortAreRefusedWhetherOrNotTheyAreClosed) {
    for (const Coding& coding : codings()) {
        DicomWriter writer = greyImage(24, 16, coding.allocated, coding.stored);
        const Bytes whole = encodeAs(writer, coding.syntax);
        ASSERT_EQ(whole.back(), 0xD9);
        putFragments(writer, coding.syntax, {whole});
        const Words expected = load(writer, 1, coding.syntax).grey().samples;
        for (std::size_t kept = 2; kept + 2 < whole.size(); kept += 1 + whole.size() / 41) {
            Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(kept));
            putFragments(writer, coding.syntax, {cut});
            EXPECT_NE(refusal(writer, 1, coding.syntax), "") << coding.syntax << ' ' << kept;
            cut.insert(cut.end(), {0xFF, 0xD9});
            putFragments(writer, coding.syntax, {cut});
            // The last bytes may be filling.
            if (refusal(writer, 1, coding.syntax).empty()) {
                EXPECT_EQ(load(writer, 1, coding.syntax).grey().samples, expected) << coding.syntax << ' ' << kept;
            }
        }
    }
}

TEST(DicomFrame, CodestreamsOfAnotherSizeAreRefusedWithBothNumbers) {
    for (const Coding& coding : codings()) {
        DicomWriter writer = greyImage(24, 16, coding.allocated, coding.stored);
        const Bytes whole = encodeAs(writer, coding.syntax);
        putFragments(writer, coding.syntax, {whole});
        const std::string there = "has a " + coding.name + " codestream of ";
        writer.word(DCM_Rows, 8);
        EXPECT_EQ(refusal(writer, 1, coding.syntax), there + "24 x 16 pixels where Columns and Rows say 24 x 8");
        writer.word(DCM_Rows, 24).word(DCM_Columns, 16);
        EXPECT_EQ(refusal(writer, 1, coding.syntax), there + "24 x 16 pixels where Columns and Rows say 16 x 24");
        writer.word(DCM_Rows, 16).word(DCM_Columns, 24).word(DCM_SamplesPerPixel, 3);
        writer.put(DCM_PhotometricInterpretation, "RGB").word(DCM_PlanarConfiguration, 0);
        EXPECT_EQ(refusal(writer, 1, coding.syntax), there + "1 sample a pixel where Samples per Pixel says 3");
    }
    DicomWriter grey(4, 1);
    putFragments(grey, EXS_JPEG2000, {encodeJpeg2000({4, 1, 3, 8}, std::vector<int>(12, 128))});
    EXPECT_EQ(refusal(grey, 1, EXS_JPEG2000),
              "has a JPEG 2000 codestream of 3 samples a pixel where Samples per Pixel says 1");
}

TEST(DicomFrame, CodestreamsOfAnotherDepthAreRefusedWithBothNumbers) {
    for (const E_TransferSyntax syntax : {EXS_JPEGProcess14SV1, EXS_JPEGLSLossless}) {
        const std::string there =
            std::string("has a ") + (syntax == EXS_JPEGLSLossless ? "JPEG-LS" : "JPEG") + " codestream of ";
        DicomWriter wide = greyImage(8, 8, 16, 16);
        const Bytes sixteen = encodeAs(wide, syntax);
        DicomWriter narrow = greyImage(8, 8, 8, 8);
        const Bytes eight = encodeAs(narrow, syntax);
        putFragments(narrow, syntax, {sixteen});
        EXPECT_EQ(refusal(narrow, 1, syntax), there + "16 bits a sample where Bits Allocated says 8");
        putFragments(wide, syntax, {eight});
        EXPECT_EQ(refusal(wide, 1, syntax), there + "8 bits a sample where Bits Stored says 16");
    }
}

TEST(DicomFrame, DepthsThatTheStandardAllowsAreShown) {
    for (const E_TransferSyntax syntax : {EXS_JPEGProcess14SV1, EXS_JPEGLSLossless}) {
        // 8 bits in 16 allocated ones.
        DicomWriter narrow = greyImage(8, 8, 8, 8);
        const Words expected = load(narrow).grey().samples;
        const Bytes eight = encodeAs(narrow, syntax);
        narrow.word(DCM_BitsAllocated, 16);
        putFragments(narrow, syntax, {eight});
        EXPECT_EQ(load(narrow, 1, syntax).grey().samples, expected);
        EXPECT_TRUE(load(narrow, 1, syntax).notes.empty());
    }
    // More bits than are stored: planes may lie above them. Fewer: the codestream counts, and it is said.
    DicomWriter writer(4, 1);
    putFragments(writer, EXS_JPEG2000, {encodeJpeg2000({4, 1, 1, 16}, {1, 2, 3, 4095})});
    EXPECT_EQ(load(writer, 1, EXS_JPEG2000).grey().samples, (Words{1, 2, 3, 4095}));
    EXPECT_TRUE(load(writer, 1, EXS_JPEG2000).notes.empty());
    putFragments(writer, EXS_JPEG2000, {encodeJpeg2000({4, 1, 1, 10}, {1, 2, 3, 1023})});
    EXPECT_EQ(load(writer, 1, EXS_JPEG2000).grey().samples, (Words{1, 2, 3, 1023}));
    EXPECT_EQ(load(writer, 1, EXS_JPEG2000).notes,
              (std::vector<std::string>{"its JPEG 2000 codestream has 10 bits a sample, Bits Stored says 12; shown as "
                                        "the codestream has them"}));
}

TEST(DicomFrame, ColoursOfJpegsBecomeRedGreenAndBlue) {
    DicomWriter writer(8, 8);
    writer.colours("RGB", 8, 0, Words(192));
    putFragments(writer, EXS_JPEGProcess1, {zoltest::jpegOfOneColour({100, 150, 90})});
    EXPECT_EQ(std::get<Rgb8Pixels>(load(writer, 1, EXS_JPEGProcess1).colour().pixels),
              std::vector<std::uint32_t>(64, 0x64965A));
    for (const char* photometric : {"YBR_FULL_422", "YBR_FULL"}) {
        writer.put(DCM_PhotometricInterpretation, photometric);
        EXPECT_EQ(std::get<Rgb8Pixels>(load(writer, 1, EXS_JPEGProcess1).colour().pixels),
                  std::vector<std::uint32_t>(64, 0x2F788B));
        EXPECT_TRUE(load(writer, 1, EXS_JPEGProcess1).notes.empty());
    }
}

TEST(DicomFrame, ColoursWithoutLossAreWhatTheyWere) {
    Words words;
    for (int i = 0; i < 64; ++i) words.insert(words.end(), {0xC0, 0x60, 0x30});
    for (const E_TransferSyntax syntax : {EXS_JPEGProcess14SV1, EXS_JPEGLSLossless}) {
        DicomWriter writer(8, 8);
        writer.colours("RGB", 8, 0, words);
        putFragments(writer, syntax, {encodeAs(writer, syntax)});
        EXPECT_EQ(std::get<Rgb8Pixels>(load(writer, 1, syntax).colour().pixels),
                  std::vector<std::uint32_t>(64, 0xC06030))
            << syntax;
    }
}

TEST(DicomFrame, EndlessScansAreRefused) {
    DicomWriter writer = greyImage(24, 16, 8, 8);
    for (const auto& [syntax, most] : {std::pair(EXS_JPEGProcess10_12, 100), {EXS_JPEGProcess1, 1}}) {
        const Bytes whole = encodeAs(writer, syntax);
        const Bytes marker{0xFF, 0xDA};
        const auto scan = std::search(whole.begin(), whole.end(), marker.begin(), marker.end());
        // A scan without any data.
        const Bytes empty(scan, scan + 2 + scan[3]);
        Bytes many(whole.begin(), whole.end() - 2);
        for (int i = 0; i < 2000; ++i) many.insert(many.end(), empty.begin(), empty.end());
        many.insert(many.end(), {0xFF, 0xD9});
        DicomWriter copy = greyImage(24, 16, 8, 8);
        putFragments(copy, syntax, {many});
        const std::string words = refusal(copy, 1, syntax);
        EXPECT_TRUE(words.starts_with("has a JPEG codestream of 20")) << words;
        EXPECT_TRUE(words.ends_with(" scans; zolview reads up to " + std::to_string(most) + " of such a one")) << words;
    }
}

TEST(DicomFrame, MoreCompressedDataThanAFrameCanNeedIsRefused) {
    DicomWriter writer(4, 2);
    putFragments(writer, EXS_JPEG2000, {Bytes((std::size_t{16} << 20U) + 18)});
    EXPECT_EQ(refusal(writer, 1, EXS_JPEG2000), "has 16777234 bytes of compressed data for a frame of 16");
}

TEST(DicomFrame, WrappedAndForeignCodestreamsAreNamed) {
    DicomWriter writer(4, 2);
    const Bytes jp2{0, 0, 0, 12, 'j', 'P', ' ', ' ', 0x0D, 0x0A, 0x87, 0x0A};
    putFragments(writer, EXS_JPEG2000, {jp2});
    EXPECT_EQ(refusal(writer, 1, EXS_JPEG2000),
              "has a JP2 file where a bare JPEG 2000 codestream must be; zolview does not read such");
    putFragments(writer, EXS_JPEG2000, {Bytes{0xFF, 0xD8, 0xFF, 0xC3}});
    EXPECT_EQ(refusal(writer, 1, EXS_JPEG2000), "has Pixel Data that is no JPEG 2000 codestream");
    putFragments(writer, EXS_JPEGProcess1, {Bytes(20)});
    EXPECT_EQ(refusal(writer, 1, EXS_JPEGProcess1), "has Pixel Data that is no JPEG codestream");
    putFragments(writer, EXS_JPEGLSLossy, {Bytes(20)});
    EXPECT_EQ(refusal(writer, 1, EXS_JPEGLSLossy), "has Pixel Data that is no JPEG-LS codestream");
}

std::vector<int> ramp(int count, int low, int step) {
    std::vector<int> out;
    for (int i = 0; i < count; ++i) out.push_back(low + i * step);
    return out;
}

TEST(DicomFrame, Jpeg2000InOneFragmentOrMany) {
    const Bytes grey = encodeJpeg2000({4, 2, 1, 16, true}, ramp(8, -4000, 1000));
    const auto half = static_cast<std::ptrdiff_t>(grey.size() / 4 * 2);
    for (const std::vector<Bytes>& fragments :
         {std::vector<Bytes>{grey},
          {Bytes(grey.begin(), grey.begin() + half), Bytes(grey.begin() + half, grey.end())}}) {
        DicomWriter writer(4, 2);
        writer.format(16, 16, 15, 1);
        putFragments(writer, EXS_JPEG2000LosslessOnly, fragments);
        const StoredImage image = load(writer, 1, EXS_JPEG2000LosslessOnly);
        EXPECT_EQ(image.grey().levels, levels16);
        for (int i = 0; i < 8; ++i)
            EXPECT_EQ(image.grey().samples[static_cast<std::size_t>(i)] - 32768, -4000 + 1000 * i);
    }
}

TEST(DicomFrame, Jpeg2000Frames) {
    DicomWriter writer(4, 1);
    writer.put(DCM_NumberOfFrames, "2");
    putFragments(writer, EXS_JPEG2000,
                 {encodeJpeg2000({4, 1, 1, 12}, ramp(4, 5, 1)), encodeJpeg2000({4, 1, 1, 12}, ramp(4, 4000, 3))});
    EXPECT_EQ(load(writer, 1, EXS_JPEG2000).grey().samples, (Words{5, 6, 7, 8}));
    EXPECT_EQ(load(writer, 2, EXS_JPEG2000).grey().samples, (Words{4000, 4003, 4006, 4009}));
}

TEST(DicomFrame, Jpeg2000Colours) {
    for (const char* photometric : {"RGB", "YBR_RCT", "YBR_ICT"}) {
        DicomWriter writer(4, 1);
        writer.colours(photometric, 8, 0, Words(12));
        const bool transformed = photometric != std::string("RGB");
        putFragments(writer, EXS_JPEG2000LosslessOnly,
                     {encodeJpeg2000({4, 1, 3, 8, false, transformed}, ramp(12, 10, 20))});
        EXPECT_EQ(std::get<Rgb8Pixels>(load(writer, 1, EXS_JPEG2000LosslessOnly).colour().pixels),
                  (std::vector<std::uint32_t>{0x0A1E32, 0x465A6E, 0x8296AA, 0xBED2E6}))
            << photometric;
    }
    DicomWriter ybr(4, 1);
    ybr.colours("YBR_FULL", 8, 0, Words(12));
    putFragments(ybr, EXS_JPEG2000LosslessOnly, {encodeJpeg2000({4, 1, 3, 8}, std::vector<int>(12, 128))});
    EXPECT_EQ(std::get<Rgb8Pixels>(load(ybr, 1, EXS_JPEG2000LosslessOnly).colour().pixels),
              std::vector<std::uint32_t>(4, 0x808080));
}

TEST(DicomFrame, BrokenJpeg2000IsRefused) {
    DicomWriter writer(4, 2);
    const Bytes whole = encodeJpeg2000({4, 2, 1, 12}, ramp(8, 0, 500));
    putFragments(writer, EXS_JPEG2000,
                 {Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(whole.size() / 2))});
    EXPECT_EQ(refusal(writer, 1, EXS_JPEG2000),
              "has Pixel Data that cannot be decoded (a broken JPEG 2000 codestream)");
    putFragments(writer, EXS_JPEG2000, {encodeJpeg2000({2, 4, 1, 12}, ramp(8, 0, 500))});
    EXPECT_EQ(refusal(writer, 1, EXS_JPEG2000),
              "has a JPEG 2000 codestream of 2 x 4 pixels where Columns and Rows say 4 x 2");
    putFragments(writer, EXS_JPEG2000, {});
    EXPECT_NE(refusal(writer, 1, EXS_JPEG2000), "");
    writer.put(DCM_NumberOfFrames, "3");
    putFragments(writer, EXS_JPEG2000, {whole, whole});
    EXPECT_NE(refusal(writer, 3, EXS_JPEG2000), "");
}

TEST(DicomFrame, BrokenFragmentsOfTheToolkitsDecodersAreRefused) {
    for (const E_TransferSyntax syntax :
         {EXS_JPEGProcess14SV1, EXS_JPEGProcess1, EXS_JPEGProcess2_4, EXS_JPEGLSLossless, EXS_JPEGLSLossy}) {
        for (const std::vector<Bytes>& fragments :
             {std::vector<Bytes>{}, {Bytes(20, 0)}, {Bytes{0xFF, 0xD8, 0xFF, 0xC3, 0, 11, 12}}}) {
            DicomWriter writer(4, 2);
            putFragments(writer, syntax, fragments);
            EXPECT_NE(refusal(writer, 1, syntax), "") << syntax;
        }
    }
}

TEST(DicomFrame, UnknownEncodingsAreNamed) {
    DicomWriter writer(4, 2);
    putFragments(writer, EXS_MPEG2MainProfileAtMainLevel, {Bytes(20)});
    EXPECT_TRUE(refusal(writer, 1, EXS_MPEG2MainProfileAtMainLevel).starts_with("is compressed as MPEG2"));
}

}  // namespace
