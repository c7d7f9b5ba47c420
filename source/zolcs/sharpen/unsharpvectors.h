// The vector variants of unsharp masking. Empty where the vector library is not there.
#pragma once

#include "zolcs/sharpen/unsharprows.h"

namespace zolcs::unsharpvectors {

template <typename Sample>
struct UnsharpOperations {
    void (*slide)(const ColumnSlide<Sample>& slide);
    void (*sharpen)(const SharpenedRun<Sample>& run);
};

/// For std::uint8_t and std::uint16_t.
template <typename Sample>
const UnsharpOperations<Sample>& chosen();

}  // namespace zolcs::unsharpvectors
