// The vector variants of the sampling operations. Empty where the vector library is not there.
#pragma once

#include "zolcs/view/samplingoffsets.h"

namespace zolcs::samplingvectors {

/// The operations of the chosen variant.
const SamplingOperations& chosen();

}  // namespace zolcs::samplingvectors
