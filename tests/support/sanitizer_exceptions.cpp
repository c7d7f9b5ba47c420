// Linked into every test program that runs under a sanitizer: what the sanitizers cannot know about fontconfig.
#include "platform/compiler.h"

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the sanitizers' names.
extern "C" ZOL_EXPORT const char* __lsan_default_suppressions();
extern "C" ZOL_EXPORT const char* __tsan_default_suppressions();

/// fontconfig keeps its configuration for the life of the process and finds the patterns in it through offsets, not
/// pointers; the leak sanitizer cannot follow those and reports reachable memory as lost.
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig.so\n"; }

/// Pango warms fontconfig up on a thread of its own; the atomics by which the two agree are in a library that the
/// thread sanitizer does not see into.
extern "C" const char* __tsan_default_suppressions() { return "race:libfontconfig.so\n"; }
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
