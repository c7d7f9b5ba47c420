// The vector variants of the unsharp lines, chosen together with the span operations. Empty where the vector library is
// not there.
#pragma once

#include "zolcs/sharpen/unsharplines.h"

namespace zolcs::unsharpvectors {

template <typename Sample>
struct LineOperations {
    void (*slide)(const ColumnSlide<Sample>& slide);
    void (*sharpen)(const SharpenedRun<Sample>& run);
};

/// For std::uint8_t and std::uint16_t.
template <typename Sample>
const LineOperations<Sample>& chosen();

}  // namespace zolcs::unsharpvectors
