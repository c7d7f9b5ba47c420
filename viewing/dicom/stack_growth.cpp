#include "viewing/dicom/stack_growth.h"

#include <algorithm>

namespace viewing {

// The address sanitizer moves variables that somebody points to off the stack; this file is compiled without it.

StackGrowth::StackGrowth() {
    const char here = 0;
    start_ = reinterpret_cast<std::uintptr_t>(&here);
}

std::uintptr_t StackGrowth::bytes() const {
    const char here = 0;
    const auto end = reinterpret_cast<std::uintptr_t>(&here);
    return std::max(start_, end) - std::min(start_, end);
}

}  // namespace viewing
