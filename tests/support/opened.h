// Data sets as images that were opened from a file.
#pragma once

#include "support/dicom_writer.h"
#include "viewing/open.h"

#include <string>

namespace zoltest {

/// Writes the data set into a file and opens that.
inline viewing::StoredImage load(DicomWriter& writer, const viewing::OpenSettings& settings = {},
                                 E_TransferSyntax syntax = EXS_LittleEndianExplicit) {
    const TemporaryFolder folder;
    return viewing::openImage(writer.save(folder, syntax), settings);
}

/// A data set of four pixels of 12 bits.
inline DicomWriter image2x2() {
    DicomWriter writer(2, 2);
    writer.pixels({1, 2, 3, 0x0FFF});
    return writer;
}

/// The words with which the file is refused, empty when it is not.
inline std::string refusal(DicomWriter& writer, const viewing::OpenSettings& settings = {},
                           E_TransferSyntax syntax = EXS_LittleEndianExplicit) {
    try {
        load(writer, settings, syntax);
    } catch (const viewing::Refusal& refused) {
        return refused.what();
    }
    return {};
}

}  // namespace zoltest
