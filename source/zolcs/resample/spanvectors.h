// The vector variants of the span operations. Empty where the vector library is not there.
#pragma once

#include "zolcs/resample/spanoperations.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zolcs::spanvectors {

struct Variant {
    std::string name;
    std::int64_t target;
};

/// What this processor offers, best first.
std::vector<Variant> variants();

/// Makes `chosen` give one of them; 0 goes back to the best. Acts on all code of the process that asks the vector
/// library, so it is for tests only.
void choose(std::int64_t target);

/// The operations of the chosen variant.
const SpanOperations& chosen();

}  // namespace zolcs::spanvectors
