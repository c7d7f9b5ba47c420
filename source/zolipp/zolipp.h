// The host's image primitives, with the published conventions of the IPP functions of the same names:
// sizes as width/height pairs, steps in bytes, a status as the result.
#pragma once

#include "platform/compiler.h"

#include <cstdint>

#if defined(ZOLIPP_BUILDING)
#define ZOLIPP_API ZOL_EXPORT
#elif defined(ZOLIPP_STATIC)
#define ZOLIPP_API
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

struct IppiRect {
    int x;
    int y;
    int width;
    int height;
};

// Errors are negative: nothing has been written. Warnings are positive: there was nothing to do.
inline constexpr IppStatus ippStsNoErr = 0;
inline constexpr IppStatus ippStsBadArgErr = -5;
inline constexpr IppStatus ippStsSizeErr = -6;
inline constexpr IppStatus ippStsNullPtrErr = -8;
inline constexpr IppStatus ippStsMemAllocErr = -9;
inline constexpr IppStatus ippStsStepErr = -14;
inline constexpr IppStatus ippStsMirrorFlipErr = -21;
inline constexpr IppStatus ippStsInterpolationErr = -22;
inline constexpr IppStatus ippStsResizeFactorErr = -23;
inline constexpr IppStatus ippStsCoeffErr = -56;
inline constexpr IppStatus ippStsRectErr = -57;
inline constexpr IppStatus ippStsWrongIntersectROI = 29;
inline constexpr IppStatus ippStsWrongIntersectQuad = 30;

/// The axis about which an image is mirrored.
using IppiAxis = int;
inline constexpr IppiAxis ippAxsHorizontal = 0;  ///< exchanges top and bottom
inline constexpr IppiAxis ippAxsVertical = 1;    ///< exchanges left and right
inline constexpr IppiAxis ippAxsBoth = 2;        ///< both: half a turn

/// How values between source pixels are made.
inline constexpr int IPPI_INTER_NN = 1;      ///< the nearest pixel
inline constexpr int IPPI_INTER_LINEAR = 2;  ///< linear between the 2 x 2 nearest pixels
inline constexpr int IPPI_INTER_CUBIC =
    4;  ///< cubic through the 4 x 4 nearest pixels (Catmull-Rom), limited to the type

// Common to all of them: steps count bytes from one row to the next and hold at least the pixels of a row; odd ones,
// and odd addresses, are allowed. C4 forms work on four bytes a pixel, AC4 forms on the first three of four and leave
// the fourth byte of the destination as it is. Rectangles are cut to their image.
//
// Of several errors the first in this order is returned: ippStsNullPtrErr, ippStsSizeErr (a side below 1),
// ippStsStepErr, the ones that are named with the function, ippStsMemAllocErr.
//
// Coordinates: the pixel in column 0 reaches from 0 to 1, its centre is at 0.5; rows alike. A destination pixel takes
// the source's value at the source point under its centre; where that point lies outside the source's region the pixel
// stays as it is. Neighbours that interpolation needs come from the whole source image, whose outermost pixels go on
// forever. Source and destination must not overlap.

extern "C" {

/// pDst(x, y) = pTable[pSrc(x, y)] for every pixel of the region; only the low nBitSize bits of a source value index
/// the table, which holds 2^nBitSize entries.
/// ippStsNullPtrErr for a null pointer, ippStsSizeErr for a side below 1, ippStsStepErr for a step shorter than a row,
/// ippStsBadArgErr for nBitSize outside 1 to 16; nothing is written then.
ZOLIPP_API IppStatus ZOLippiLUTPalette_16u32u_C1R(const Ipp16u* pSrc, int srcStep, Ipp32u* pDst, int dstStep,
                                                  IppiSize roiSize, const Ipp32u* pTable, int nBitSize);

/// Scales the region srcRoi by xFactor and yFactor so that the source point (xCenter, yCenter) meets the middle of the
/// destination (half its width and height, which are whole numbers: 2 for a width of 5).
/// Source coordinates count from pSrc, the image's first pixel, as do those of srcRoi.
/// ippStsInterpolationErr for anything but IPPI_INTER_NN, _LINEAR and _CUBIC; ippStsResizeFactorErr for a factor that
/// is not a finite number above 0; ippStsBadArgErr for a centre that is not finite; ippStsWrongIntersectROI when srcRoi
/// lies outside the source.
ZOLIPP_API IppStatus ZOLippiResizeCenter_16u_C1R(const Ipp16u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                                 Ipp16u* pDst, int dstStep, IppiSize dstRoiSize, double xFactor,
                                                 double yFactor, double xCenter, double yCenter, int interpolation);
ZOLIPP_API IppStatus ZOLippiResizeCenter_8u_C4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                                Ipp8u* pDst, int dstStep, IppiSize dstRoiSize, double xFactor,
                                                double yFactor, double xCenter, double yCenter, int interpolation);
ZOLIPP_API IppStatus ZOLippiResizeCenter_8u_AC4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                                 Ipp8u* pDst, int dstStep, IppiSize dstRoiSize, double xFactor,
                                                 double yFactor, double xCenter, double yCenter, int interpolation);

/// Mirrors in place. ippStsMirrorFlipErr for a flip that is none of the three axes.
ZOLIPP_API IppStatus ZOLippiMirror_16u_C1IR(Ipp16u* pSrcDst, int srcDstStep, IppiSize roiSize, IppiAxis flip);
ZOLIPP_API IppStatus ZOLippiMirror_8u_C4IR(Ipp8u* pSrcDst, int srcDstStep, IppiSize roiSize, IppiAxis flip);
ZOLIPP_API IppStatus ZOLippiMirror_8u_AC4IR(Ipp8u* pSrcDst, int srcDstStep, IppiSize roiSize, IppiAxis flip);

/// pDst(y, x) = pSrc(x, y). roiSize is the source's; the destination has as many rows as the source has columns.
ZOLIPP_API IppStatus ZOLippiTranspose_16u_C1R(const Ipp16u* pSrc, int srcStep, Ipp16u* pDst, int dstStep,
                                              IppiSize roiSize);
ZOLIPP_API IppStatus ZOLippiTranspose_8u_C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep,
                                             IppiSize roiSize);

/// Maps the region srcRoi by x' = coeffs[0][0] * x + coeffs[0][1] * y + coeffs[0][2], y' alike by coeffs[1], from
/// source to destination, and writes it where it meets dstRoi. Both regions count from the first pixel of their image;
/// what dstRoi has left of or above that pixel is cut off. ippStsStepErr also for a dstStep that does not reach
/// dstRoi's right edge; ippStsInterpolationErr for anything but IPPI_INTER_NN, _LINEAR and _CUBIC; ippStsCoeffErr for
/// coefficients that are not finite or cannot be inverted; ippStsRectErr when a single column or row is left of srcRoi;
/// ippStsWrongIntersectROI when a region lies outside its image; ippStsWrongIntersectQuad when no pixel of dstRoi shows
/// a point of srcRoi.
ZOLIPP_API IppStatus ZOLippiWarpAffine_16u_C1R(const Ipp16u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                               Ipp16u* pDst, int dstStep, IppiRect dstRoi, const double coeffs[2][3],
                                               int interpolation);
ZOLIPP_API IppStatus ZOLippiWarpAffine_8u_C4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                              Ipp8u* pDst, int dstStep, IppiRect dstRoi, const double coeffs[2][3],
                                              int interpolation);
ZOLIPP_API IppStatus ZOLippiWarpAffine_8u_AC4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                               Ipp8u* pDst, int dstStep, IppiRect dstRoi, const double coeffs[2][3],
                                               int interpolation);

/// The smallest upright rectangle around what the warp makes of a region: bound[0] is its left top (x, y), bound[1] its
/// right bottom. Edges, not centres, of pixels: the identity gives (x, y) and (x + width, y + height).
/// ippStsRectErr for a region of a single column or row; ippStsCoeffErr as the warp, and where a corner comes to lie
/// beyond all numbers.
ZOLIPP_API IppStatus ZOLippiGetAffineBound(IppiRect srcRoi, double bound[2][2], const double coeffs[2][3]);

/// Gives the first three bytes of every pixel the three values.
ZOLIPP_API IppStatus ZOLippiSet_8u_AC4R(const Ipp8u value[3], Ipp8u* pDst, int dstStep, IppiSize roiSize);

/// Sets len bytes; ippStsSizeErr for a len below 1.
ZOLIPP_API IppStatus ZOLippsSet_8u(Ipp8u val, Ipp8u* pDst, int len);
}
