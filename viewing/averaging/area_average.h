// Reducing a picture by averaging: every pixel of the result is the mean of what it covers, so that nothing that is
// small and bright goes missing between samples. A dot is dimmed by the ratio of its area to the pixel's.
#pragma once

#include "viewing/averaging/coverage.h"
#include "viewing/averaging/grid.h"

#include <cstdint>
#include <vector>

namespace viewing::averaging {

/// One byte for each pixel of a raster, row by row: 0 or 1.
using Marks = std::vector<std::uint8_t>;

/// Fills `out` with the pixels of the reduced raster, row by row without padding, `Channels` samples each: the mean of
/// those covered pixels that take part, each counted by its covered area, halves rounded up. `takesPart` has a byte for
/// each pixel of the source, 0 for those that do not; it is empty where all do. Where nothing takes part the samples
/// are 0.
///
/// Instantiated for samples of 8 and 16 bits with one channel and with four.
template <typename Sample, std::size_t Channels>
void average(const Grid<Sample, Channels>& source, const Marks& takesPart, const Coverage& coverage, Sample* out);

/// The pixels of the reduced raster that cover a marked one, or a part of it.
Marks touched(const Grid<std::uint8_t, 1>& marks, const Coverage& coverage);

/// The pixels of the reduced raster that cover anything of a source of that size.
Marks onSource(int width, int height, const Coverage& coverage);

}  // namespace viewing::averaging
