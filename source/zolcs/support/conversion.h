// Conversions to 32 bits that are defined for every value.
#pragma once

#include "platform/saturate.h"

namespace zolcs {

using zolplatform::saturated;
using zolplatform::truncated;

}  // namespace zolcs
