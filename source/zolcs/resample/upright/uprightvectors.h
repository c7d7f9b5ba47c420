// The vector variants of the upright operations. Empty where the vector library is not there.
#pragma once

#include "zolcs/resample/upright/uprightoperations.h"

namespace zolcs::uprightvectors {

/// The operations of the chosen variant.
const UprightOperations& chosen();

}  // namespace zolcs::uprightvectors
