// The host's image primitives, with the published conventions of the IPP functions of the same names: sizes are
// width/height pairs, steps are in bytes, and the result is a status.
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

// Errors are negative; nothing has been written then. Warnings are positive; there was nothing to do.
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

/// How values between source pixels are interpolated.
inline constexpr int IPPI_INTER_NN = 1;      ///< the nearest pixel
inline constexpr int IPPI_INTER_LINEAR = 2;  ///< linear between the 2 x 2 nearest pixels
inline constexpr int IPPI_INTER_CUBIC =
    4;  ///< cubic through the 4 x 4 nearest pixels (Catmull-Rom), limited to the type

// Common to all primitives:
//
// A step counts bytes from one row to the next and holds at least the pixels of a row. Odd steps and odd addresses are
// allowed. C4 forms work on four bytes per pixel; AC4 forms on the first three of four, and leave the fourth byte of
// the destination unchanged. Rectangles are clipped to their image. Images belong to the caller.
//
// When a call has several errors, it returns the first in this order: ippStsNullPtrErr, ippStsSizeErr (a side below 1),
// ippStsStepErr, those that are listed with the function, ippStsMemAllocErr.
//
// Coordinates: the pixel in column 0 covers 0 to 1 and its centre is 0.5; likewise for rows. A destination pixel takes
// the source's value at the source point under its centre; where that point lies outside the source's region the pixel
// stays unchanged. Neighbours for interpolation come from the whole source image, whose outermost pixels continue
// without end. Source and destination must not overlap.

extern "C" {

/// Sets pDst(x, y) = pTable[pSrc(x, y)] for every pixel of the region. Only the low nBitSize bits of a source value
/// index the table, which holds 2^nBitSize entries. ippStsBadArgErr for nBitSize outside 1 to 16.
ZOLIPP_API IppStatus ZOLippiLUTPalette_16u32u_C1R(const Ipp16u* pSrc, int srcStep, Ipp32u* pDst, int dstStep,
                                                  IppiSize roiSize, const Ipp32u* pTable, int nBitSize);

/// Scales the region srcRoi by xFactor and yFactor so that the source point (xCenter, yCenter) comes to the middle of
/// the destination: half its width and height as integers (2 for a width of 5). Source coordinates, also those of
/// srcRoi, count from pSrc, the image's first pixel. ippStsInterpolationErr for anything but IPPI_INTER_NN, _LINEAR and
/// _CUBIC; ippStsResizeFactorErr for a factor that is not a finite number above 0; ippStsBadArgErr for a centre that is
/// not finite; ippStsWrongIntersectROI when srcRoi lies outside the source.
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

/// Sets pDst(y, x) = pSrc(x, y). roiSize is the source's; the destination has as many rows as the source has columns.
ZOLIPP_API IppStatus ZOLippiTranspose_16u_C1R(const Ipp16u* pSrc, int srcStep, Ipp16u* pDst, int dstStep,
                                              IppiSize roiSize);
ZOLIPP_API IppStatus ZOLippiTranspose_8u_C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep,
                                             IppiSize roiSize);

/// Maps the region srcRoi from source to destination by x' = coeffs[0][0] * x + coeffs[0][1] * y + coeffs[0][2],
/// likewise y' by coeffs[1], and writes it inside dstRoi. Both regions count from the first pixel of their image; the
/// part of dstRoi left of or above that pixel is clipped. ippStsStepErr also for a dstStep that does not reach dstRoi's
/// right edge; ippStsInterpolationErr for anything but IPPI_INTER_NN, _LINEAR and _CUBIC; ippStsCoeffErr for
/// coefficients that are not finite or cannot be inverted; ippStsRectErr when clipping leaves a single column or row of
/// srcRoi; ippStsWrongIntersectROI when a region lies outside its image; ippStsWrongIntersectQuad when no pixel of
/// dstRoi shows a point of srcRoi.
ZOLIPP_API IppStatus ZOLippiWarpAffine_16u_C1R(const Ipp16u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                               Ipp16u* pDst, int dstStep, IppiRect dstRoi, const double coeffs[2][3],
                                               int interpolation);
ZOLIPP_API IppStatus ZOLippiWarpAffine_8u_C4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                              Ipp8u* pDst, int dstStep, IppiRect dstRoi, const double coeffs[2][3],
                                              int interpolation);
ZOLIPP_API IppStatus ZOLippiWarpAffine_8u_AC4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                               Ipp8u* pDst, int dstStep, IppiRect dstRoi, const double coeffs[2][3],
                                               int interpolation);

/// Gives the smallest upright rectangle around the region that the warp makes of srcRoi: bound[0] is its left top (x,
/// y), bound[1] its right bottom. It encloses the edges, not the centres, of pixels: the identity gives (x, y) and (x +
/// width, y + height). ippStsRectErr for a region of a single column or row; ippStsCoeffErr as for the warp, and where
/// a corner exceeds the range of doubles.
ZOLIPP_API IppStatus ZOLippiGetAffineBound(IppiRect srcRoi, double bound[2][2], const double coeffs[2][3]);

/// Sets the first three bytes of every pixel to the three values.
ZOLIPP_API IppStatus ZOLippiSet_8u_AC4R(const Ipp8u value[3], Ipp8u* pDst, int dstStep, IppiSize roiSize);

/// Sets len bytes; ippStsSizeErr for a len below 1.
ZOLIPP_API IppStatus ZOLippsSet_8u(Ipp8u val, Ipp8u* pDst, int len);
}
