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

/// Fills a destination image from a source image by bilinear interpolation of the four source pixels around each
/// destination pixel's centre.
///
/// All members find their source positions and their background as CCsNearest does: they set the transformation's sizes
/// from the two images (its destination offsets become 0), and pixels whose centre lies beside the source become
/// background. Between the centres of the outermost source pixels and the image's edge the outermost pixels count.
///
/// What can go wrong is reported with number 0 and the module "source\zolcs\ccsbilinear", and leaves the destination
/// untouched: image types that a member does not take, or whose pixels do not have the sizes that it reads and writes
/// ("Image type not supported"); a null table; an image without memory ("get origin for source raster returned NULL in
/// method ..." or "get origin for dst raster ..."). An exception, such as exhausted memory, becomes "Exception in
/// function ..."; lines that were already written stay. Every member gives 255 when the destination was filled, and 0
/// after a report or when it was stopped. Both images are unlocked on every path.
///
/// An object holds the state of one call: one thread at a time, but for setAbortFlag.
class ZOLWEBCS_API CCsBilinear : private zolcs::SteppingFields {
public:
    /// Carries nothing yet, and is not asked to stop.
    CCsBilinear() = default;
    CCsBilinear(const CCsBilinear&) = default;
    CCsBilinear& operator=(const CCsBilinear&) = default;
    virtual ~CCsBilinear();

    /// Nonzero stops the running call and refuses later ones (0, not reported) until it is set back to 0; rows that
    /// were already written stay. Looked at when a call begins and once for every row that shows some of the source.
    /// bilinearGrey12Grey12 does not look at it. Any thread may set it.
    void setAbortFlag(int flag);

    /// 12-bit or 16-bit grey to the same: at least one of the images is grey 12 or grey 16, both have 16-bit pixels.
    ///
    /// Of a 12-bit source the values are masked to 12 bits, and vertically only the low 12 bits of the 16-bit position
    /// between two rows count. With `keepOverlayBits`, and a raster that says it has embedded overlay bits, a 12-bit
    /// source's bits 12 to 15 are those of the upper left of the four pixels.
    ///
    /// After a CCsMmx has found a capable processor, and unless overlay bits are kept, the packed path draws: stored
    /// words are signed and not masked, a flat area of value X comes out as X - 2, and of each row's span only the last
    /// pixel is left, at the place of the first, with the background that follows the span directly behind it; the
    /// pixels at the end of the row keep what they held. All of this is intended.
    int bilinearGrey12Grey12(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned short background,
                             bool keepOverlayBits);

    /// 12-bit or 16-bit grey to 32-bit display pixels: the interpolated value through the table of a grey map, with
    /// everything that goes before the table, in this order: overlay planes, embedded overlay bits, shutters, padding.
    /// Those are decided at the source pixel on which the destination pixel's centre falls.
    ///
    /// `map` stays the caller's; null or a map that is not a grey map gives a table of zeroes and no overlays.
    /// `pixelPadding` may be null; else it stays the caller's and holds one bit per source pixel, rows following one
    /// another, lowest bit of each byte first; a set bit shows `background`. The bits of planes and of a bitmap shutter
    /// must be as many as their records say. `background` is written zero-extended. The bool is accepted and unused.
    int bilinearGrey12IndexMap(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, IMap* map, bool unused,
                               unsigned char* pixelPadding, unsigned char background);

    /// 8-bit colour to 8-bit colour: each of the three colour bytes is interpolated. The fourth byte becomes 0; the
    /// background is written as it is. The bool is accepted and unused.
    int bilinearRgb8Rgb8(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned long background, bool unused);

    /// As bilinearRgb8Rgb8 with each interpolated byte through `table` (256 bytes, the caller's).
    int bilinearRgb8Rgb8Map(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const table,
                            unsigned long background);

    /// bilinearRgb8Rgb8 for the magnifying glass.
    int bilinearRgb8Rgb8_ForMagicGlass(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned long background);

    // The same through the host's image primitives: the part of the image that the rectangular, circular and polygonal
    // shutters' boxes have in common, without any other rule. Views within a degree of a quarter turn, mirrored or not,
    // are transposed, mirrored and resized (and not turned by the rest of a degree); others are warped. The pictures
    // are those of the plain members for 16-bit grey and colour but for the interpolation's last digits; the 12-bit
    // member's vertical weights are not imitated, and bits above the 12th count as part of the value. Everything else
    // becomes background.
    //
    // 255 when the view was drawn. Otherwise 0: unreported, the destination untouched, for a raster with embedded
    // overlay bits; reported, the destination untouched, for wrong types and when the shutters have nothing in common
    // ("There is no common shutter region"); reported with the status as number, the destination as the primitives left
    // it, when one of them fails ("... IPP method failed in ..."): memory that is missing, a view that shows nothing
    // of the image at an oblique angle, an image of a single row or column there, a view that cannot be inverted; and
    // for an exception.

    /// 12-bit or 16-bit grey, with all 16 bits of each, to the same.
    int bilinearIPPGrey12Grey12(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background);

    /// 8-bit colour to 8-bit colour; the background is a grey. The fourth byte is interpolated like the others.
    int bilinearIPPRgb8Rgb8(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background);

private:
    friend struct zolcs::ResamplerAccess;  // the members' common code

    /// Sets the transformation's sizes, fills the fields and gives the stepping that the loops use.
    zolcs::Stepping adaptTransformation_(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo);

    std::int32_t abortFlag = 0;
};
