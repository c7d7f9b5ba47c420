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
/// All members find their source positions and their background as CCsNearest does: they set the transformation's sizes
/// from the two images (its destination offsets become 0), and pixels whose centre lies beside the source become
/// background. Beyond the image's edge its outermost pixels are repeated. Where the weights overshoot, the result is
/// limited to the values that a pixel can have.
///
/// What can go wrong is reported with number 0 and the module "source\zolcs\ccsbicubic", and leaves the destination
/// untouched: image types that a member does not take, or whose pixels do not have the sizes that it reads and writes
/// ("Image type not supported"); a null table; an image without memory ("get origin for source raster returned NULL in
/// method ..." or "get origin for dst raster ..."). An exception, such as exhausted memory, becomes "Exception in
/// function ..."; lines that were already written stay. Every member gives 255 when the destination was filled, and 0
/// after a report or when it was stopped. Both images are unlocked on every path.
///
/// All objects share two tables of weights, which the first constructor builds, without a lock: construct the first
/// object before rendering threads start. An object holds the state of one call: one thread at a time, but for
/// setAbortFlag.
class ZOLWEBCS_API CCsBicubic : private zolcs::SteppingFields {
public:
    /// Carries nothing yet, and is not asked to stop. Throws 1 (an int) when there is no memory for the weights.
    CCsBicubic();
    CCsBicubic(const CCsBicubic&) = default;
    CCsBicubic& operator=(const CCsBicubic&) = default;
    virtual ~CCsBicubic();

    /// Frees the weights of all objects. At most once, at unload: from then on no object of this class may be
    /// constructed or draw. A process that never calls it frees them at its end.
    static void deleteWeightageArray();

    /// Nonzero stops the running call and refuses later ones (0, not reported) until it is set back to 0; rows that
    /// were already written stay. Looked at when a call begins and before each interpolated pixel. Any thread may set
    /// it.
    void setAbortFlag(int flag);

    /// Adds the first three bytes of `pixel`, each times `weight`, to r, g and b in this order. Sums that a long does
    /// not hold wrap.
    static void Get_RgbL(long& r, long& g, long& b, unsigned char* pixel, long& weight);

    /// 12-bit or 16-bit grey to the same: at least one of the images is grey 12 or grey 16, both have 16-bit pixels.
    /// The values of a 12-bit source are masked and limited to 12 bits; with `keepOverlayBits` its bits 12 to 15 are
    /// those of the pixel on which the position falls. With `ignoreAbort` a request to stop is not looked at.
    int bicubicGrey12Grey12(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned short background,
                            bool ignoreAbort, bool keepOverlayBits);

    /// bicubicGrey12Grey12 for the magnifying glass: both images are grey 12, and no overlay bits are kept.
    int bicubicGrey12Grey12_ForMagicGlass(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned short background);

    /// 12-bit or 16-bit grey to 32-bit display pixels: the interpolated value through the table of a grey map, with
    /// everything that goes before the table, in this order: overlay planes, embedded overlay bits, shutters, padding.
    /// Those are decided at the source pixel on which the destination pixel's centre falls.
    ///
    /// `map` stays the caller's; null or a map that is not a grey map gives a table of zeroes and no overlays.
    /// `pixelPadding` may be null; else it stays the caller's and holds one bit per source pixel, rows following one
    /// another, lowest bit of each byte first; a set bit shows `background`. The bits of planes and of a bitmap shutter
    /// must be as many as their records say. `background` is written zero-extended.
    int bicubicGrey12IndexMap(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, IMap* map, unsigned char* pixelPadding,
                              unsigned char background);

    /// 8-bit colour to 8-bit colour: each of the three colour bytes is interpolated. The fourth byte becomes 0; the
    /// background is written as it is.
    int bicubicRgb8Rgb8(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned long background);

    /// As bicubicRgb8Rgb8 with each interpolated and limited byte through `table` (256 bytes, the caller's).
    int bicubicRgb8Rgb8Map(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const table,
                           unsigned long background);

    // The same through the host's image primitives: the part of the image that the rectangular, circular and polygonal
    // shutters' boxes have in common, without any other rule. Views within a degree of a quarter turn, mirrored or not,
    // are transposed, mirrored and resized (and not turned by the rest of a degree); others are warped. The pictures
    // lie where the plain members' do, but come of another cubic kernel (parameter -1/2), which differs most along
    // edges; of a 12-bit source they are limited to 4095, and bits above the 12th count as part of the value.
    // Everything else becomes background.
    //
    // 255 when the view was drawn. Otherwise 0: unreported, the destination untouched, for a raster with embedded
    // overlay bits; reported, the destination untouched, for wrong types and when the shutters have nothing in common
    // ("There is no common shutter region"); reported with the status as number, the destination as the primitives left
    // it, when one of them fails ("... IPP method failed in ..."): memory that is missing, a view that shows nothing
    // of the image at an oblique angle, an image of a single row or column there, a view that cannot be inverted; and
    // for an exception.

    /// 12-bit or 16-bit grey, with all 16 bits of each, to the same. Of a 12-bit source results are limited to 4095.
    int bicubicIPPGrey12Grey12(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background);

    /// 8-bit colour to 8-bit colour; the background is a grey. The fourth byte is interpolated like the others.
    int bicubicIPPRgb8Rgb8(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background);

private:
    friend struct zolcs::ResamplerAccess;  // the members' common code

    /// Sets the transformation's sizes, fills the fields and gives the stepping that the loops use.
    zolcs::Stepping adaptTransformation_(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo);

    std::int32_t abortFlag = 0;
    std::int32_t srcWidth = 0;  ///< observable to no one, as are the inherited fields
    std::int32_t srcHeight = 0;
};
