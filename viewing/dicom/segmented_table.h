// Segmented tables: runs of entries, straight lines, and repetitions of earlier segments (DICOM PS3.3 C.7.9.2).
#pragma once

#include "viewing/image/refusal.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace viewing {

/// The first `count` entries that the segments make. Segments of entries of up to 8 bits consist of bytes, two to a
/// word, the low one first; others of words. Refuses segments that make fewer entries or cannot be, naming the table
/// `name`.
std::vector<std::uint16_t> expandSegments(const std::vector<std::uint16_t>& words, std::size_t count, int bits,
                                          const std::string& name);

}  // namespace viewing
