// Linked into every program that runs under the address sanitizer.
#include "platform/compiler.h"

/// fontconfig keeps its configuration for the life of the process and finds the patterns in it through offsets, not
/// pointers; the leak sanitizer cannot follow those and reports reachable memory as lost.
extern "C" ZOL_EXPORT const char* __lsan_default_suppressions();  // NOLINT(bugprone-reserved-identifier)
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig.so\n"; }  // NOLINT
