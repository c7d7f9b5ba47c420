// The vector variants of the span operations. Empty where the vector library is not there.
#pragma once

#include "zolcs/resample/spanoperations.h"

namespace zolcs::spanvectors {

/// The operations of the chosen variant.
const SpanOperations& chosen();

}  // namespace zolcs::spanvectors
