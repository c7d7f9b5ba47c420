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
/// All members find source positions and background as CCsNearest does: they set the transformation's sizes from the
/// two images (its destination offsets become 0), and pixels whose centre lies outside the source become background.
/// Between the centres of the outermost source pixels and the image's edge, the outermost pixels continue.
///
/// Errors are reported with number 0 and the module "source\zolcs\ccsbilinear" and leave the destination unchanged:
/// - "Image type not supported": image types that a member does not take, or pixels of other sizes than it handles;
/// - "look-up table is NULL in method ...": a null table;
/// - "get origin for source raster returned NULL in method ...", "get origin for dst raster ...": an image without
///   memory.
///
/// An exception, such as exhausted memory, is reported as "Exception in function ..."; rows that were already written
/// stay. Every member returns CCS_DONE (255) when the destination was filled, and CCS_FAILED (0)
/// after a report or when it was stopped. Both images are unlocked on every path.
///
/// An object holds the state of one call: use it on one thread at a time, except for setAbortFlag.
class ZOLWEBCS_API CCsBilinear : private zolcs::SteppingFields {
public:
    /// No call has been made, and no stop is requested.
    CCsBilinear() = default;
    CCsBilinear(const CCsBilinear&) = default;
    CCsBilinear& operator=(const CCsBilinear&) = default;
    virtual ~CCsBilinear();

    /// Not 0 stops the running call and refuses later ones (CCS_FAILED, not reported) until the flag is 0 again; rows
    /// that were already written stay. Members read the flag when a call begins and once for every row that shows some
    /// of the source; bilinearGrey12Grey12 does not read it. Any thread can set the flag.
    void setAbortFlag(int flag);

    /// 12-bit or 16-bit grey to 12-bit or 16-bit grey: at least one of the two images has such a type, and both have
    /// 16-bit pixels.
    ///
    /// The values of a 12-bit source are masked to 12 bits, and in the vertical direction only the low 12 bits of the
    /// 16-bit position between two rows count. With `keepOverlayBits`, and a raster whose status says that it has
    /// embedded overlay bits, bits 12 to 15 of the result are those of the upper left one of the four pixels of a
    /// 12-bit source.
    ///
    /// The packed path draws when a CCsMmx has found a capable processor, unless overlay bits are kept. Deliberately it
    /// differs: stored words are signed and not masked; a flat area of value X becomes X - 2; of each row's span only
    /// the last pixel remains, at the position of the first, directly followed by the background; as many pixels at the
    /// end of the row as are missing keep their previous contents.
    int bilinearGrey12Grey12(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned short background,
                             bool keepOverlayBits);

    /// 12-bit or 16-bit grey to 32-bit display pixels: the interpolated value goes through the table of a grey map. A
    /// pixel shows the first of these that applies: overlay planes, embedded overlay bits, shutters, padding, the
    /// table's entry. The rules are decided at the source pixel in which the destination pixel's centre lies.
    ///
    /// - `map` stays the caller's; null, or a map that is not a grey map, gives a table of zeroes and no overlays.
    /// - `pixelPadding` stays the caller's and may be null: one bit per source pixel, rows without row padding, lowest
    ///   bit of each byte first; a set bit shows `background`.
    /// - `background` is written zero-extended.
    /// - `unused` has no effect.
    ///
    /// The bits of planes and of a bitmap shutter must be as many as their records say.
    int bilinearGrey12IndexMap(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, IMap* map, bool unused,
                               unsigned char* pixelPadding, unsigned char background);

    /// 8-bit colour to 8-bit colour: interpolates each of the three colour bytes. The fourth byte becomes 0. The
    /// background is written unchanged; `unused` has no effect.
    int bilinearRgb8Rgb8(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned long background, bool unused);

    /// As bilinearRgb8Rgb8; each interpolated byte then goes through `table` (256 bytes, the caller's).
    int bilinearRgb8Rgb8Map(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const table,
                            unsigned long background);

    /// As bilinearRgb8Rgb8, for the magnifying glass.
    int bilinearRgb8Rgb8_ForMagicGlass(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned long background);

    // Members that draw with the host's image primitives. They show the part of the image that the bounding boxes of
    // the rectangular, circular and polygonal shutters have in common, and no other rule; everything else becomes
    // background. Views within a degree of a multiple of 90 degrees, mirrored or not, are transposed, mirrored and
    // resized (without the rest of a degree); other views are warped. For 16-bit grey and colour the pictures are those
    // of the plain members except for the last digits of interpolation. The vertical weights of the 12-bit member are
    // not imitated, and bits above the 12th count as part of the value.
    //
    // They return CCS_DONE when the view was drawn, otherwise CCS_FAILED:
    // - unreported, destination unchanged: the raster has embedded overlay bits;
    // - reported, destination unchanged: wrong types, or shutters without a common region ("There is no common shutter
    //   region");
    // - reported with the status as number, destination as the primitives left it: a primitive failed ("... IPP method
    //   failed in ..."), because memory is missing, an oblique view shows nothing of the image or has an image of a
    //   single row or column, or the view cannot be inverted;
    // - reported: an exception.

    /// 12-bit or 16-bit grey to 12-bit or 16-bit grey; all 16 bits count.
    int bilinearIPPGrey12Grey12(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background);

    /// 8-bit colour to 8-bit colour. The background is a grey. The fourth byte is interpolated like the others.
    int bilinearIPPRgb8Rgb8(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background);

private:
    friend struct zolcs::ResamplerAccess;  // the members' common code

    /// Sets the transformation's sizes, fills the fields and gives the stepping that the loops use.
    zolcs::Stepping adaptTransformation_(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo);

    std::int32_t abortFlag = 0;
};
