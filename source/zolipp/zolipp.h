// The host's image primitives, with the published conventions of the IPP functions of the same names:
// sizes as width/height pairs, steps in bytes, a status as the result.
#pragma once

#include "platform/compiler.h"

#include <cstdint>

#if defined(ZOLIPP_BUILDING)
#define ZOLIPP_API ZOL_EXPORT
#else
#define ZOLIPP_API ZOL_IMPORT
#endif

using Ipp8u = std::uint8_t;
using Ipp16u = std::uint16_t;
using Ipp32u = std::uint32_t;
using IppStatus = int;

struct IppiSize {
    int width;
    int height;
};

inline constexpr IppStatus ippStsNoErr = 0;
inline constexpr IppStatus ippStsBadArgErr = -5;
inline constexpr IppStatus ippStsSizeErr = -6;
inline constexpr IppStatus ippStsNullPtrErr = -8;
inline constexpr IppStatus ippStsStepErr = -14;

extern "C" {

/// pDst(x, y) = pTable[pSrc(x, y)] for every pixel of the region; only the low nBitSize bits of a source value index
/// the table, which holds 2^nBitSize entries.
/// ippStsNullPtrErr for a null pointer, ippStsSizeErr for a side below 1, ippStsStepErr for a step shorter than a row,
/// ippStsBadArgErr for nBitSize outside 1 to 16; nothing is written then.
ZOLIPP_API IppStatus ZOLippiLUTPalette_16u32u_C1R(const Ipp16u* pSrc, int srcStep, Ipp32u* pDst, int dstStep,
                                                  IppiSize roiSize, const Ipp32u* pTable, int nBitSize);
}
