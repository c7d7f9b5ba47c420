// Tables that are written down in segments: runs of entries, straight lines, and repetitions of earlier segments.
#pragma once

#include "viewing/image/refusal.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace viewing {

/// The `count` entries that the segments make, more being cut off. Entries of 8 bits and less have segments of bytes,
/// two to a word, others segments of words. Refuses segments that make fewer entries or cannot be, naming the table
/// `name`.
std::vector<std::uint16_t> expandSegments(const std::vector<std::uint16_t>& words, std::size_t count, int bits,
                                          const std::string& name);

}  // namespace viewing
