// Run-length coded frames (PS3.5, annex G).
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace viewing {

/// The samples of a frame of `pixels` pixels, plane by plane: all first samples, then all second ones. Each plane comes
/// in `bytesPerSample` segments, its high bytes before its low ones. Refuses another number of segments, segments that
/// do not lie in the frame one behind the other, and such as hold fewer pixels or more.
std::vector<std::uint16_t> decodeRunLengths(std::span<const std::uint8_t> frame, std::size_t pixels, int samples,
                                            int bytesPerSample);

}  // namespace viewing
