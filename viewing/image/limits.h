// The largest images and pictures, and how many grey levels an image has.
#pragma once

#include <cstdint>

namespace viewing {

/// Columns or rows of an image or picture: what the resamplers' 16.16 coordinates can address.
inline constexpr int maxSide = 32767;

/// Pixels of an image or picture. Keeps each buffer below half a gigabyte.
inline constexpr std::int64_t maxPixels = std::int64_t{1} << 26;

/// Levels of a grey image of 12 bits, whose samples leave bits 12 to 15 to overlay planes.
inline constexpr int levels12 = 4096;

/// Levels of a grey image of 16 bits.
inline constexpr int levels16 = 65536;

}  // namespace viewing
