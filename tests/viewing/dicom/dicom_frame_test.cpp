// Frames of Pixel Data in every encoding, sound and broken.
#include "support/dicom_writer.h"
#include "support/jpeg2000_codestream.h"
#include "viewing/dicom/dicom_file.h"
#include "viewing/open.h"

#include <dcmtk/dcmdata/dcpixseq.h>
#include <dcmtk/dcmdata/dcpxitem.h>
#include <gtest/gtest.h>

#include <string>

namespace {

using namespace viewing;
using zoltest::DicomWriter;
using zoltest::encodeJpeg2000;
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

/// Replaces Pixel Data by compressed fragments, without an offset table.
void putFragments(DicomWriter& writer, E_TransferSyntax syntax, const std::vector<Bytes>& fragments) {
    auto* const sequence = new DcmPixelSequence(DCM_PixelSequenceTag);
    sequence->insert(new DcmPixelItem(DCM_PixelItemTag));
    for (Bytes bytes : fragments) {
        if (bytes.size() % 2 != 0) bytes.push_back(0);
        auto* const item = new DcmPixelItem(DCM_PixelItemTag);
        item->putUint8Array(bytes.data(), static_cast<unsigned long>(bytes.size()));
        sequence->insert(item);
    }
    auto* const data = new DcmPixelData(DCM_PixelData);
    data->putOriginalRepresentation(syntax, nullptr, sequence);
    writer.remove(DCM_PixelData);
    EXPECT_TRUE(writer.dataset().insert(data).good());
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
            EXPECT_EQ(load(words, frame, syntax).samples, (Words{first, static_cast<std::uint16_t>(first + 1)}));
            const auto odd = static_cast<std::uint16_t>(3 * frame - 2);
            EXPECT_EQ(load(bytes, frame, syntax).samples,
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
    EXPECT_EQ(load(three, 2).samples, (Words{3, 4}));
    EXPECT_EQ(refusal(three, 3), "is truncated: its Pixel Data has 8 of 12 bytes");
    DicomWriter absurd(2, 1);
    absurd.put(DCM_NumberOfFrames, "2147483647").pixels({1, 2});
    EXPECT_EQ(load(absurd).samples, (Words{1, 2}));
    EXPECT_EQ(refusal(absurd, 2147483647), "is truncated: its Pixel Data has 4 of 8589934588 bytes");
    for (const char* senseless : {"0", "-5", "1e99", "many"}) {
        DicomWriter writer(2, 1);
        writer.put(DCM_NumberOfFrames, senseless).pixels({1, 2});
        EXPECT_EQ(load(writer).samples, (Words{1, 2})) << senseless;
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
    EXPECT_EQ(first.window, (Window{10.0, 9.0}));
    ASSERT_EQ(first.overlays.size(), 1U);
    EXPECT_TRUE(first.overlays[0].bits.get(1, 0));
    EXPECT_EQ(first.notes, (std::vector<std::string>{"overlay 6000 belongs to other frames; not drawn",
                                                     "overlay 6002 belongs to other frames; not drawn"}));
    const StoredImage second = load(writer, 2);
    EXPECT_EQ(second.window, (Window{20.0, 9.0}));
    ASSERT_EQ(second.overlays.size(), 3U);
    EXPECT_TRUE(second.overlays[0].bits.get(0, 0));
    EXPECT_FALSE(second.overlays[0].bits.get(1, 0));
    const StoredImage third = load(writer, 3);
    EXPECT_EQ(third.window, (Window{30.0, 9.0}));
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
    EXPECT_EQ(load(writer, 1, EXS_RLELossless).samples, (Words{9, 9, 9, 0x107}));
    EXPECT_EQ(load(writer, 2, EXS_RLELossless).samples, (Words{0x201, 0x202, 0x203, 0x204}));
}

TEST(DicomFrame, BrokenRunLengthsAreRefused) {
    const auto words = [](const Bytes& fragment) {
        DicomWriter writer(4, 1);
        putFragments(writer, EXS_RLELossless, {fragment});
        return refusal(writer, 1, EXS_RLELossless);
    };
    const std::string broken = "has Pixel Data that cannot be decoded (broken run lengths)";
    const std::string cut = "is truncated: its run lengths end before the image does";
    const Bytes whole = runLengths({{0xFD, 0}, {0xFD, 9}});
    EXPECT_EQ(words(whole), "");
    EXPECT_EQ(words(Bytes(10)), broken);
    EXPECT_EQ(words(runLengths({{0xFD, 0}})), broken);
    for (const std::size_t number : {1U, 2U}) {
        for (const int value : {0, 63, 0x7FFFFFFF, -1}) {
            Bytes bytes = whole;
            for (std::size_t k = 0; k < 4; ++k)
                bytes[4 * number + k] = static_cast<std::uint8_t>(static_cast<unsigned int>(value) >> (8 * k));
            EXPECT_EQ(words(bytes), broken) << number << ' ' << value;
        }
    }
    EXPECT_EQ(words(runLengths({{0xFE, 0}, {0xFD, 9}})), cut);
    EXPECT_EQ(words(runLengths({{0xFD, 0}, {0xFE, 9}})), cut);
    EXPECT_EQ(words(runLengths({{0xFD, 0}, {3, 1, 2}})), cut);
    // A run whose byte is missing.
    EXPECT_EQ(words(runLengths({{0xFD, 0}, {128, 0xFD}})), cut);
    EXPECT_EQ(words(runLengths({{0xFD, 0}, {}})), cut);
    EXPECT_EQ(words(runLengths({{0xFD, 0}, {128, 128, 128, 128}})), cut);
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
        EXPECT_EQ(image.levels, levels16);
        for (int i = 0; i < 8; ++i) EXPECT_EQ(image.samples[static_cast<std::size_t>(i)] - 32768, -4000 + 1000 * i);
    }
}

TEST(DicomFrame, Jpeg2000Frames) {
    DicomWriter writer(4, 1);
    writer.put(DCM_NumberOfFrames, "2");
    putFragments(writer, EXS_JPEG2000,
                 {encodeJpeg2000({4, 1, 1, 12}, ramp(4, 5, 1)), encodeJpeg2000({4, 1, 1, 12}, ramp(4, 4000, 3))});
    EXPECT_EQ(load(writer, 1, EXS_JPEG2000).samples, (Words{5, 6, 7, 8}));
    EXPECT_EQ(load(writer, 2, EXS_JPEG2000).samples, (Words{4000, 4003, 4006, 4009}));
}

TEST(DicomFrame, Jpeg2000Colours) {
    for (const char* photometric : {"RGB", "YBR_RCT", "YBR_ICT"}) {
        DicomWriter writer(4, 1);
        writer.colours(photometric, 8, 0, Words(12));
        const bool transformed = photometric != std::string("RGB");
        putFragments(writer, EXS_JPEG2000LosslessOnly,
                     {encodeJpeg2000({4, 1, 3, 8, false, transformed}, ramp(12, 10, 20))});
        EXPECT_EQ(load(writer, 1, EXS_JPEG2000LosslessOnly).rgb8,
                  (std::vector<std::uint32_t>{0x0A1E32, 0x465A6E, 0x8296AA, 0xBED2E6}))
            << photometric;
    }
    DicomWriter ybr(4, 1);
    ybr.colours("YBR_FULL", 8, 0, Words(12));
    putFragments(ybr, EXS_JPEG2000LosslessOnly, {encodeJpeg2000({4, 1, 3, 8}, std::vector<int>(12, 128))});
    EXPECT_EQ(load(ybr, 1, EXS_JPEG2000LosslessOnly).rgb8, std::vector<std::uint32_t>(4, 0x808080));
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
              "has a JPEG 2000 codestream that does not fit what the file says of it");
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
