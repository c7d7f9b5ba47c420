// The vector variants of the line operations. Empty where the vector library is not there.
#pragma once

#include "zolcs/resample/upright/uprightoperations.h"

namespace zolcs::linevectors {

/// The operations of the variant that spanvectors has chosen.
const LineOperations& chosen();

}  // namespace zolcs::linevectors
