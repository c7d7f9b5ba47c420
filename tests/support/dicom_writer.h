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

/// The three numbers that describe a table: entries (0 for 65536), first input, bits of an entry.
struct TableDescriptor {
    int entries = 0;
    int first = 0;
    int bits = 16;
    /// Written as signed numbers.
    bool isSigned = false;
};

inline void putDescriptor(DcmItem& item, const DcmTagKey& tag, const TableDescriptor& descriptor) {
    const Uint16 numbers[] = {static_cast<Uint16>(descriptor.entries), static_cast<Uint16>(descriptor.first),
                              static_cast<Uint16>(descriptor.bits)};
    const Sint16 signedNumbers[] = {static_cast<Sint16>(descriptor.entries), static_cast<Sint16>(descriptor.first),
                                    static_cast<Sint16>(descriptor.bits)};
    if (descriptor.isSigned) {
        EXPECT_TRUE(item.putAndInsertSint16Array(DcmTag(tag, EVR_SS), signedNumbers, 3).good());
    } else {
        EXPECT_TRUE(item.putAndInsertUint16Array(DcmTag(tag, EVR_US), numbers, 3).good());
    }
}

inline void putWords(DcmItem& item, const DcmTagKey& tag, const std::vector<std::uint16_t>& words) {
    EXPECT_TRUE(item.putAndInsertUint16Array(DcmTag(tag, EVR_OW), words.data(), words.size()).good());
}

/// Appends an item with a table to a LUT sequence.
inline void addLut(DcmItem& parent, const DcmTagKey& sequence, const TableDescriptor& descriptor,
                   const std::vector<std::uint16_t>& entries, const std::string& name = "") {
    DcmItem* item = nullptr;
    constexpr long append = -2;
    ASSERT_TRUE(parent.findOrCreateSequenceItem(sequence, item, append).good());
    putDescriptor(*item, DCM_LUTDescriptor, descriptor);
    if (!name.empty()) item->putAndInsertString(DCM_LUTExplanation, name.c_str());
    putWords(*item, DCM_LUTData, entries);
}

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
    DicomWriter& lut(const DcmTagKey& sequence, const TableDescriptor& descriptor,
                     const std::vector<std::uint16_t>& entries, const std::string& name = "") {
        addLut(dataset(), sequence, descriptor, entries, name);
        return *this;
    }
    /// A colour image of three samples a pixel, in words or bytes as the bits allocated say.
    DicomWriter& colours(const std::string& photometric, int bits, int planar,
                         const std::vector<std::uint16_t>& words) {
        word(DCM_SamplesPerPixel, 3)
            .put(DCM_PhotometricInterpretation, photometric)
            .word(DCM_PlanarConfiguration, planar);
        const int allocated = bits > 8 ? 16 : 8;
        format(allocated, bits, bits - 1, 0).remove(DCM_PixelData);
        return allocated == 16 ? pixels(words) : bytes({words.begin(), words.end()});
    }
    /// Makes the pixels indices into tables for red, green and blue.
    DicomWriter& palette(const TableDescriptor& descriptor, const std::vector<std::uint16_t>& red,
                         const std::vector<std::uint16_t>& green, const std::vector<std::uint16_t>& blue) {
        put(DCM_PhotometricInterpretation, "PALETTE COLOR");
        putDescriptor(dataset(), DCM_RedPaletteColorLookupTableDescriptor, descriptor);
        putDescriptor(dataset(), DCM_GreenPaletteColorLookupTableDescriptor, descriptor);
        putDescriptor(dataset(), DCM_BluePaletteColorLookupTableDescriptor, descriptor);
        putWords(dataset(), DCM_RedPaletteColorLookupTableData, red);
        putWords(dataset(), DCM_GreenPaletteColorLookupTableData, green);
        putWords(dataset(), DCM_BluePaletteColorLookupTableData, blue);
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
    std::string save(const TemporaryFolder& folder, E_TransferSyntax syntax = EXS_LittleEndianExplicit,
                     const std::string& name = "test.dcm") {
        std::string path = folder.file(name);
        EXPECT_TRUE(file_.saveFile(path.c_str(), syntax).good());
        return path;
    }

private:
    DcmFileFormat file_;
    int width_;
    int height_;
};

}  // namespace zoltest
