#pragma once

#include "zolcs/ccsexport.h"
#include "zolcs/ccssteppingfields.h"

#include <cstdint>

class CCs2dTrafo;
class CCsImage;
class CCsRaster;
class IMap;

namespace zolcs {
struct ResamplerAccess;
struct Stepping;
}  // namespace zolcs

/// Fills a destination image from a source image by cubic convolution of the sixteen source pixels around each
/// destination pixel's centre.
///
/// All members find source positions and background as CCsNearest does: they set the transformation's sizes from the
/// two images (its destination offsets become 0), and pixels whose centre lies outside the source become background.
/// Beyond the image's edge, its outermost pixels continue. Where the weights overshoot, the result is limited to the
/// values that a pixel can have.
///
/// Errors are reported with number 0 and the module "source\zolcs\ccsbicubic" and leave the destination unchanged:
/// - "Image type not supported": image types that a member does not take, or pixels of other sizes than it handles;
/// - "look-up table is NULL in method ...": a null table;
/// - "get origin for source raster returned NULL in method ...", "get origin for dst raster ...": an image without
///   memory.
///
/// An exception, such as exhausted memory, is reported as "Exception in function ..."; rows that were already written
/// stay. Every member returns CCS_DONE (255) when the destination was filled, and CCS_FAILED (0)
/// after a report or when it was stopped. Both images are unlocked on every path.
///
/// All objects share two tables of weights, which the first constructor builds without a lock: construct the first
/// object before rendering threads start. An object holds the state of one call: use it on one thread at a time, except
/// for setAbortFlag.
class ZOLWEBCS_API CCsBicubic : private zolcs::SteppingFields {
public:
    /// No call has been made, and no stop is requested. Throws the int 1 when there is no memory for the weights.
    CCsBicubic();
    CCsBicubic(const CCsBicubic&) = default;
    CCsBicubic& operator=(const CCsBicubic&) = default;
    virtual ~CCsBicubic();

    /// Frees the weights of all objects. Call it at most once, at unload: afterwards no object of this class may be
    /// constructed or draw. A process that never calls it frees the weights at its end.
    static void deleteWeightageArray();

    /// Not 0 stops the running call and refuses later ones (CCS_FAILED, not reported) until the flag is 0 again; rows
    /// that were already written stay. Members read the flag when a call begins and before each interpolated pixel. Any
    /// thread can set the flag.
    void setAbortFlag(int flag);

    /// Adds the first three bytes of `pixel`, each multiplied by `weight`, to r, g and b in this order. Sums that do
    /// not fit a long wrap.
    static void Get_RgbL(long& r, long& g, long& b, unsigned char* pixel, long& weight);

    /// 12-bit or 16-bit grey to 12-bit or 16-bit grey: at least one of the two images has such a type, and both have
    /// 16-bit pixels. The values of a 12-bit source are masked and limited to 12 bits; with `keepOverlayBits`, bits 12
    /// to 15 of the result are those of the source pixel in which the position lies. With `ignoreAbort` the member does
    /// not read the flag of setAbortFlag.
    int bicubicGrey12Grey12(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned short background,
                            bool ignoreAbort, bool keepOverlayBits);

    /// As bicubicGrey12Grey12, for the magnifying glass: both images are 12-bit grey, and no overlay bits are kept.
    int bicubicGrey12Grey12_ForMagicGlass(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned short background);

    /// 12-bit or 16-bit grey to 32-bit display pixels: the interpolated value goes through the table of a grey map. A
    /// pixel shows the first of these that applies: overlay planes, embedded overlay bits, shutters, padding, the
    /// table's entry. The rules are decided at the source pixel in which the destination pixel's centre lies.
    ///
    /// - `map` stays the caller's; null, or a map that is not a grey map, gives a table of zeroes and no overlays.
    /// - `pixelPadding` stays the caller's and may be null: one bit per source pixel, rows without row padding, lowest
    ///   bit of each byte first; a set bit shows `background`.
    /// - `background` is written zero-extended.
    ///
    /// The bits of planes and of a bitmap shutter must be as many as their records say.
    int bicubicGrey12IndexMap(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, IMap* map, unsigned char* pixelPadding,
                              unsigned char background);

    /// 8-bit colour to 8-bit colour: interpolates each of the three colour bytes. The fourth byte becomes 0. The
    /// background is written unchanged.
    int bicubicRgb8Rgb8(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned long background);

    /// As bicubicRgb8Rgb8; each interpolated and limited byte then goes through `table` (256 bytes, the caller's).
    int bicubicRgb8Rgb8Map(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const table,
                           unsigned long background);

    // Members that draw with the host's image primitives. They show the part of the image that the bounding boxes of
    // the rectangular, circular and polygonal shutters have in common, and no other rule; everything else becomes
    // background. Views within a degree of a multiple of 90 degrees, mirrored or not, are transposed, mirrored and
    // resized (without the rest of a degree); other views are warped. The pictures lie where the plain members' do but
    // result from another cubic kernel (parameter -1/2), which differs most along edges. For a 12-bit source results
    // are limited to 4095, and bits above the 12th count as part of the value.
    //
    // They return CCS_DONE when the view was drawn, otherwise CCS_FAILED:
    // - unreported, destination unchanged: the raster has embedded overlay bits;
    // - reported, destination unchanged: wrong types, or shutters without a common region ("There is no common shutter
    //   region");
    // - reported with the status as number, destination as the primitives left it: a primitive failed ("... IPP method
    //   failed in ..."), because memory is missing, an oblique view shows nothing of the image or has an image of a
    //   single row or column, or the view cannot be inverted;
    // - reported: an exception.

    /// 12-bit or 16-bit grey to 12-bit or 16-bit grey; all 16 bits count. For a 12-bit source results are limited to
    /// 4095.
    int bicubicIPPGrey12Grey12(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background);

    /// 8-bit colour to 8-bit colour. The background is a grey. The fourth byte is interpolated like the others.
    int bicubicIPPRgb8Rgb8(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background);

private:
    friend struct zolcs::ResamplerAccess;  // the members' common code

    /// Sets the transformation's sizes, fills the fields and gives the stepping that the loops use.
    zolcs::Stepping adaptTransformation_(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo);

    std::int32_t abortFlag = 0;
    std::int32_t srcWidth = 0;  ///< observable to no one, as are the inherited fields
    std::int32_t srcHeight = 0;
};
