// Compiler differences, and nothing else: the only header in which compiler-specific syntax may stand.
#pragma once

#if defined(_WIN32)
#define ZOL_EXPORT __declspec(dllexport)
#define ZOL_IMPORT __declspec(dllimport)
#else
#define ZOL_EXPORT __attribute__((visibility("default")))
#define ZOL_IMPORT __attribute__((visibility("default")))
#endif

#if defined(_MSC_VER) && !defined(__clang__) && (defined(_M_IX86) || defined(_M_X64))
#include <intrin.h>
#endif

/// Asks the processor whether it has the MMX instruction set.
inline bool zolProcessorHasMmx() {
#if defined(_MSC_VER) && !defined(__clang__) && (defined(_M_IX86) || defined(_M_X64))
    int registers[4] = {};
    __cpuid(registers, 1);
    return (registers[3] & (1 << 23)) != 0;
#elif defined(__i386__) || defined(__x86_64__)
    return static_cast<bool>(__builtin_cpu_supports("mmx"));
#else
    return false;
#endif
}
