// The packed path's own way of writing rows.
#pragma once

#include "zolcs/resample/display.h"
#include "zolcs/resample/spanfiller.h"

#include <cstdint>

namespace zolcs {

/// The packed path's output: its position advances once per row, after the span. So all pixels of a span go to the
/// first one's place, where the last one stays; the background on the right follows at once, and as many pixels as the
/// span is longer than one keep what they held at the end of the row. This is the defined picture: it is not mended.
bool fillRowsPacked(const Stepping& stepping, const Display<std::uint16_t>& display, SpanFiller<std::uint16_t>& filler);

}  // namespace zolcs
