// Makes small DICOM files for tests, sound and otherwise.
#pragma once

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace zoltest {

/// A folder of its own, removed with everything in it.
class TemporaryFolder {
public:
    TemporaryFolder() {
        static int count = 0;
        path_ = std::filesystem::temp_directory_path() /
                ("zolview-test-" + std::to_string(getpid()) + "-" + std::to_string(count++));
        std::filesystem::create_directories(path_);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    [[nodiscard]] std::string file(const std::string& name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

/// A grey image, 12 bits in 16, unsigned, all pixels 0, until told otherwise.
class DicomWriter {
public:
    DicomWriter(int width, int height) : width_(width), height_(height) {
        put(DCM_SOPClassUID, UID_SecondaryCaptureImageStorage);
        put(DCM_SOPInstanceUID, "2.25.1");
        word(DCM_SamplesPerPixel, 1);
        put(DCM_PhotometricInterpretation, "MONOCHROME2");
        word(DCM_Rows, height);
        word(DCM_Columns, width);
        format(16, 12, 11, 0);
        pixels(std::vector<std::uint16_t>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)));
    }

    DicomWriter& put(const DcmTagKey& tag, const std::string& value) {
        dataset().putAndInsertString(tag, value.c_str());
        return *this;
    }
    DicomWriter& word(const DcmTagKey& tag, int value) {
        dataset().putAndInsertUint16(tag, static_cast<Uint16>(value));
        return *this;
    }
    DicomWriter& remove(const DcmTagKey& tag) {
        dataset().findAndDeleteElement(tag);
        return *this;
    }
    DicomWriter& format(int allocated, int stored, int high, int representation) {
        word(DCM_BitsAllocated, allocated);
        word(DCM_BitsStored, stored);
        word(DCM_HighBit, high);
        return word(DCM_PixelRepresentation, representation);
    }
    DicomWriter& pixels(const std::vector<std::uint16_t>& words) {
        dataset().putAndInsertUint16Array(DCM_PixelData, words.data(), words.size());
        return *this;
    }
    DicomWriter& bytes(const std::vector<std::uint8_t>& values) {
        dataset().putAndInsertUint8Array(DCM_PixelData, values.data(), values.size());
        return *this;
    }
    DicomWriter& overlay(int group, int rows, int columns, int originRow, int originColumn,
                         const std::vector<std::uint16_t>& words, const std::string& type = "G") {
        const auto g = static_cast<Uint16>(group);
        word(DcmTagKey(g, 0x0010), rows);
        word(DcmTagKey(g, 0x0011), columns);
        put(DcmTagKey(g, 0x0040), type);
        const Sint16 origin[] = {static_cast<Sint16>(originRow), static_cast<Sint16>(originColumn)};
        dataset().putAndInsertSint16Array(DcmTagKey(g, 0x0050), origin, 2);
        word(DcmTagKey(g, 0x0100), 1);
        word(DcmTagKey(g, 0x0102), 0);
        dataset().putAndInsertUint16Array(DcmTag(g, 0x3000, EVR_OW), words.data(), words.size());
        return *this;
    }
    DicomWriter& embeddedOverlay(int group, int bit, const std::string& type = "G") {
        const auto g = static_cast<Uint16>(group);
        word(DcmTagKey(g, 0x0010), height_);
        word(DcmTagKey(g, 0x0011), width_);
        put(DcmTagKey(g, 0x0040), type);
        word(DcmTagKey(g, 0x0100), 16);
        return word(DcmTagKey(g, 0x0102), bit);
    }

    DcmDataset& dataset() { return *file_.getDataset(); }

    /// Writes the file and returns its path.
    std::string save(const TemporaryFolder& folder, E_TransferSyntax syntax = EXS_LittleEndianExplicit) {
        std::string path = folder.file("test.dcm");
        EXPECT_TRUE(file_.saveFile(path.c_str(), syntax).good());
        return path;
    }

private:
    DcmFileFormat file_;
    int width_;
    int height_;
};

}  // namespace zoltest
