// One frame of Pixel Data as words, whatever its encoding.
#pragma once

#include "viewing/image/refusal.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace viewing {

/// What the data set says about each of its frames.
struct FrameShape {
    int width = 0;
    int height = 0;
    int samples = 1;
    int bitsAllocated = 16;  ///< 8 or 16
    int bitsStored = 16;
    bool isSigned = false;
    std::string photometric;
    bool planar = false;
    int frames = 1;
};

/// A decoded frame.
struct Frame {
    std::vector<std::uint16_t> words;
    /// What decoding left of the data set's photometric interpretation and planar configuration.
    std::string photometric;
    bool planar = false;
    /// What was found odd and how it was taken.
    std::vector<std::string> notes;
};

/// Reads and decodes one frame, counted from 0 and one of those in the shape. An uncompressed YBR_FULL_422 frame has
/// two words a pixel, all others one for each sample. Refuses frames that are cut short or cannot be decoded, those
/// whose compressed data contradict the shape in size, samples or depth (PS3.5, 8.2), and encodings that nobody here
/// knows.
Frame readFrame(DcmDataset& dataset, const FrameShape& shape, int frame);

}  // namespace viewing
