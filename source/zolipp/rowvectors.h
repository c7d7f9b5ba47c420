// The vector variants of the row operations. Empty where the vector library is not there.
#pragma once

#include "zolipp/rowoperations.h"

namespace zolipp::rowvectors {

/// The operations of the chosen variant.
const RowOperations& chosen();

}  // namespace zolipp::rowvectors
