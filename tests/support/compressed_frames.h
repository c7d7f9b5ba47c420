// Compressed frames for tests: made by the toolkit's encoders, and put into data sets as they are.
#pragma once

#include "support/dicom_writer.h"

#include <dcmtk/dcmdata/dcpixseq.h>
#include <dcmtk/dcmdata/dcpxitem.h>
#include <dcmtk/dcmjpeg/djencode.h>
#include <dcmtk/dcmjpeg/djrploss.h>
#include <dcmtk/dcmjpls/djencode.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace zoltest {

/// Replaces Pixel Data by compressed fragments, without an offset table.
inline void putFragments(DicomWriter& writer, E_TransferSyntax syntax,
                         const std::vector<std::vector<std::uint8_t>>& fragments) {
    auto* const sequence = new DcmPixelSequence(DCM_PixelSequenceTag);
    sequence->insert(new DcmPixelItem(DCM_PixelItemTag));
    for (std::vector<std::uint8_t> bytes : fragments) {
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

/// The codestream to which an image of one frame is encoded, without what fills it up to an even length. The encoders
/// write beyond their memory where that is larger than the image: greys must be easy to tell from their neighbours.
inline std::vector<std::uint8_t> encodeAs(DicomWriter& writer, E_TransferSyntax syntax) {
    DJEncoderRegistration::registerCodecs();
    DJLSEncoderRegistration::registerCodecs(0, 0, 0, 0, OFFalse);
    DcmDataset copy(writer.dataset());
    const DJ_RPLossy best(100);
    const bool isLossy = syntax == EXS_JPEGProcess1 || syntax == EXS_JPEGProcess2_4 || syntax == EXS_JPEGProcess10_12;
    const DcmRepresentationParameter* const parameter = isLossy ? &best : nullptr;
    EXPECT_TRUE(copy.chooseRepresentation(syntax, parameter).good());
    DJLSEncoderRegistration::cleanup();
    DJEncoderRegistration::cleanup();
    DcmElement* element = nullptr;
    copy.findAndGetElement(DCM_PixelData, element);
    auto* const data = dynamic_cast<DcmPixelData*>(element);
    DcmPixelSequence* sequence = nullptr;
    DcmPixelItem* item = nullptr;
    Uint8* bytes = nullptr;
    if (data == nullptr || data->getEncapsulatedRepresentation(syntax, parameter, sequence).bad() ||
        sequence->getItem(item, 1).bad() || item->getUint8Array(bytes).bad()) {
        ADD_FAILURE() << "cannot be encoded";
        return {};
    }
    std::vector<std::uint8_t> out(bytes, bytes + item->getLength());
    const std::array<std::uint8_t, 2> end{0xFF, 0xD9};
    const auto last = std::find_end(out.begin(), out.end(), end.begin(), end.end());
    EXPECT_NE(last, out.end());
    out.erase(last, out.end());
    out.insert(out.end(), end.begin(), end.end());
    return out;
}

/// A baseline JPEG codestream of 8 x 8 pixels of three components, all of one colour.
inline std::vector<std::uint8_t> jpegOfOneColour(const std::array<int, 3>& components) {
    std::vector<std::uint8_t> out{0xFF, 0xD8, 0xFF, 0xDB, 0, 67, 0};
    out.insert(out.end(), 64, 1);  // quantisation
    out.insert(out.end(), {0xFF, 0xC0, 0, 17, 8, 0, 8, 0, 8, 3, 1, 0x11, 0, 2, 0x11, 0, 3, 0x11, 0});
    // Twelve sizes of a difference in four bits each; of the other coefficients nothing but their end, in one bit.
    out.insert(out.end(), {0xFF, 0xC4, 0, 31, 0x00, 0, 0, 0, 12, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    for (std::uint8_t size = 0; size < 12; ++size) out.push_back(size);
    out.insert(out.end(), {0xFF, 0xC4, 0, 20, 0x10, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    out.insert(out.end(), {0xFF, 0xDA, 0, 12, 3, 1, 0, 2, 0, 3, 0, 0, 63, 0});
    std::string bits;
    const auto put = [&bits](int value, int count) {
        for (int i = count - 1; i >= 0; --i) bits += ((value >> i) & 1) != 0 ? '1' : '0';
    };
    for (const int component : components) {
        const int difference = 8 * (component - 128);
        const int size = static_cast<int>(std::bit_width(static_cast<unsigned int>(std::abs(difference))));
        put(size, 4);
        put(difference < 0 ? difference + (1 << size) - 1 : difference, size);
        put(0, 1);
    }
    bits.resize((bits.size() + 7) / 8 * 8, '1');
    for (std::size_t i = 0; i < bits.size(); i += 8) {
        out.push_back(static_cast<std::uint8_t>(std::stoi(bits.substr(i, 8), nullptr, 2)));
        if (out.back() == 0xFF) out.push_back(0);
    }
    out.insert(out.end(), {0xFF, 0xD9});
    return out;
}

}  // namespace zoltest
