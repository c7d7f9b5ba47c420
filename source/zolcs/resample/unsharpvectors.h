// The vector variants of the unsharp lines, chosen together with the span operations. Empty where the vector library is
// not there.
#pragma once

#include "zolcs/resample/unsharplines.h"

namespace zolcs::unsharpvectors {

struct Operations {
    void (*slide)(const ColumnSlide& slide);
    void (*sharpen)(const SharpenedRun& run);
};

const Operations& chosen();

}  // namespace zolcs::unsharpvectors
