// Decoding of JPEG 2000 codestreams.
#pragma once

#include "viewing/image/refusal.h"

#include <cstdint>
#include <span>
#include <vector>

namespace viewing {

/// The samples, those of a pixel together, in 16 bits each (signed ones in two's complement). Refuses what is no whole
/// codestream or lacks tiles, components of different sizes or of more than 16 bits, and before it decodes anything, a
/// codestream whose precincts and code-blocks would need far more memory or time than its samples do.
std::vector<std::uint16_t> decodeJpeg2000(std::span<const std::uint8_t> codestream);

}  // namespace viewing
