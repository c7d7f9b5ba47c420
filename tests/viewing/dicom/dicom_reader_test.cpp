#include "viewing/dicom/dicom_reader.h"

#include "support/opened.h"
#include "viewing/dicom/dicom_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace viewing;
using zoltest::DicomWriter;
using zoltest::image2x2;
using zoltest::load;
using zoltest::TemporaryFolder;
using Words = std::vector<std::uint16_t>;

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

TEST(DicomReader, NamesComeInUtf8) {
    DicomWriter writer = image2x2();
    writer.put(DCM_SpecificCharacterSet, "ISO_IR 100");
    writer.put(DCM_WindowCenter, "1").put(DCM_WindowWidth, "2").put(DCM_WindowCenterWidthExplanation, "K\xF6rper");
    writer.lut(DCM_VOILUTSequence, {2, 0, 8}, {1, 2}, "Gef\xE4\xDF");
    const StoredImage image = load(writer);
    ASSERT_EQ(image.grey().voiChoices.size(), 2U);
    EXPECT_EQ(image.grey().voiChoices[0].name, "K\xC3\xB6rper");
    EXPECT_EQ(image.grey().voiChoices[1].name, "Gef\xC3\xA4\xC3\x9F");
}

TEST(DicomReader, SequencesWithinSequencesEndBeforeTheStackDoes) {
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

TEST(DicomReader, FilesThatAreNoDicomAreRefused) {
    EXPECT_NE(refusalOfBytes(""), "");
    EXPECT_NE(refusalOfBytes("a line of text\n"), "");
    EXPECT_NE(refusalOfBytes(std::string(1000, '\0')), "");
    EXPECT_NE(refusalOfBytes(std::string(128, '\0') + "DICM"), "");
    EXPECT_NE(refusalOfBytes(std::string(128, '\0') + "DICM" + std::string(5000, '\xFF')), "");
    EXPECT_THROW(DicomFile("no/such/file.dcm"), Refusal);
    EXPECT_THROW(DicomFile(std::filesystem::temp_directory_path().string()), Refusal);
}

TEST(DicomReader, FilesCutAnywhereAreRefusedOrRead) {
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

}  // namespace
