// Decoding of JPEG 2000 codestreams.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace viewing {

/// What a codestream must decode to.
struct ImageExtent {
    int width = 0;
    int height = 0;
    int samples = 1;
};

/// The samples, those of a pixel together, in 16 bits each (signed ones in two's complement). Refuses what is no whole
/// codestream, and one of another size or number of samples, or of more than 16 bits.
std::vector<std::uint16_t> decodeJpeg2000(std::span<const std::uint8_t> codestream, const ImageExtent& extent);

}  // namespace viewing
