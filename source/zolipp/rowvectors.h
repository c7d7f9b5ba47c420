// The vector variants of the row operations. Empty where the vector library is not there.
#pragma once

#include "zolipp/rowoperations.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zolipp::rowvectors {

struct Variant {
    std::string name;
    std::int64_t target;
};

/// What this processor offers, best first.
std::vector<Variant> variants();

/// Makes `chosen` give one of them; 0 goes back to the best.
void choose(std::int64_t target);

/// The operations of the chosen variant.
const RowOperations& chosen();

}  // namespace zolipp::rowvectors
