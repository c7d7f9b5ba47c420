// Compiler differences, and nothing else: the only header in which compiler-specific syntax may stand.
#pragma once

#if defined(_WIN32)
#define ZOL_EXPORT __declspec(dllexport)
#define ZOL_IMPORT __declspec(dllimport)
#else
#define ZOL_EXPORT __attribute__((visibility("default")))
#define ZOL_IMPORT __attribute__((visibility("default")))
#endif

#if defined(_MSC_VER) && !defined(__clang__)
#define ZOL_RESTRICT __restrict
#define ZOL_ALWAYS_INLINE __forceinline
#define ZOL_NOINLINE __declspec(noinline)
#else
#define ZOL_RESTRICT __restrict__
#define ZOL_ALWAYS_INLINE inline __attribute__((always_inline))
#define ZOL_NOINLINE __attribute__((noinline))
#endif
