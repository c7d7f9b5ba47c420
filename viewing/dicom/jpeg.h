// Decoding of JPEG and JPEG-LS codestreams.
#pragma once

#include "viewing/dicom/codestream.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace viewing {

/// What a codestream decodes to.
struct JpegSamples {
    /// Those of a pixel together.
    std::vector<std::uint16_t> words;
    /// What the colours have become; empty where they are as the codestream has them.
    std::string photometric;
};

/// Decodes a JPEG codestream whose header is known. Its colours become RGB where the data set's photometric
/// interpretation is a YBR one. Refuses what the decoder cannot read to the last pixel, and what it warns of.
JpegSamples decodeJpeg(std::span<const std::uint8_t> codestream, const JpegOutline& outline,
                       const std::string& photometric, bool isSigned);

/// Decodes a JPEG-LS codestream whose header is known.
JpegSamples decodeJpegLs(std::span<const std::uint8_t> codestream, const CodestreamHeader& header,
                         E_TransferSyntax syntax);

}  // namespace viewing
