// How far the stack has grown.
#pragma once

#include <cstdint>

namespace zolview {

/// Where the caller's stack ends, as a number. Only the distance of two such numbers of one thread means something.
std::uintptr_t stackPosition();

}  // namespace zolview
