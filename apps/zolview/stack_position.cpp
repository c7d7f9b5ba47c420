#include "stack_position.h"

namespace zolview {

// The address sanitizer moves variables that somebody points to off the stack; this file is compiled without it.
std::uintptr_t stackPosition() {
    const char here = 0;
    // Compilers warn of a local variable's address that leaves its function; here only its number counts.
    const char* const volatile place = &here;
    // NOLINTNEXTLINE(clang-analyzer-core.StackAddressEscape)
    return reinterpret_cast<std::uintptr_t>(place);
}

}  // namespace zolview
