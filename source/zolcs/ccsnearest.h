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

/// Fills a destination image from a source image by nearest neighbour: each destination pixel takes the source pixel in
/// which its centre lies.
///
/// All members set the transformation's sizes from the two images (its destination offsets become 0), then walk the
/// destination in 16.16 fixed point. Pixels whose centre lies outside the source become background; all pixels do when
/// the source has no pixels or the transformation is not finite or out of range. Deliberately, a source coordinate of
/// exactly 0 counts as outside for rising steps, and the largest coordinate counts as outside for falling steps.
///
/// Errors are reported with number 0 and the module "source\zolcs\ccsnearest" and leave the destination unchanged:
/// - "Image type not supported": image types that a member does not take, or pixels of other sizes than it handles;
/// - "look-up table is NULL in method ...": a null table;
/// - "get origin for source raster returned NULL in method ...", "get origin for dst raster ...": an image without
///   memory.
///
/// An exception, such as exhausted memory, is reported as "Exception in function ..."; rows that were already written
/// stay. Members of type int return CCS_DONE (255), or CCS_FAILED (0) after a report. Both images are unlocked on every
/// path.
///
/// An object holds the state of one call: use it on one thread at a time.
class ZOLWEBCS_API CCsNearest : private zolcs::SteppingFields {
public:
    /// Every field is -1 until the first call.
    CCsNearest();
    CCsNearest(const CCsNearest&) = default;
    CCsNearest& operator=(const CCsNearest&) = default;
    virtual ~CCsNearest();

    /// 12-bit grey to 12-bit grey: copies all 16 stored bits, embedded overlay bits included. The last argument has no
    /// effect.
    int nearestGrey12Grey12(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned short background, bool unused);

    /// 12-bit or 16-bit grey to 32-bit display pixels: the stored value goes through the table of a grey map. A pixel
    /// shows the first of these that applies: overlay planes, embedded overlay bits, shutters, padding, the table's
    /// entry.
    ///
    /// - `map` stays the caller's; null, or a map that is not a grey map, gives a table of zeroes and no overlays.
    /// - `pixelPadding` stays the caller's and may be null: one bit per source pixel, rows without row padding, lowest
    ///   bit of each byte first; a set bit shows `background`.
    /// - `background` is written zero-extended.
    ///
    /// The bits of planes and of a bitmap shutter must be as many as their records say.
    void nearestGrey12IndexMap(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, IMap* map, unsigned char* pixelPadding,
                               unsigned char background);

    /// Bytes to bytes; at least one of the two images is 8-bit grey.
    void nearestGrey8Grey8(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background);

    /// 8-bit grey through `table` (256 bytes, the caller's) to an index image. The background goes through the table,
    /// too. The source is 8-bit grey, or the destination is an index image.
    void nearestGrey8IndexMap(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const table,
                              unsigned char background);

    /// Index image to index image.
    void nearestIndexIndex(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background);

    /// 12-bit colour to 12-bit colour: copies all eight bytes.
    void nearestRgb12Rgb12(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, std::uint64_t background);

    /// 12-bit colour to 8-bit colour: each channel goes through `table` (4096 bytes, the caller's; values of 4096 or
    /// more take the last entry). The fourth byte becomes 0. The background is written unchanged.
    void nearestRgb12Rgb8Map(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const table,
                             unsigned long background);

    /// 8-bit colour to 24-bit colour for files: the colour bytes are reversed and the fourth byte is dropped. The
    /// background byte is written three times.
    void nearestRgb8Rgb24Save(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background);

    /// 8-bit colour to 8-bit colour: copies all four bytes.
    int nearestRgb8Rgb8(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned long background);

    /// 8-bit colour to 8-bit colour: each channel goes through `table` (256 bytes, the caller's). The fourth byte
    /// becomes 0. The background is written unchanged.
    void nearestRgb8Rgb8Map(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const table,
                            unsigned long background);

    /// As nearestRgb8Rgb8Map, with a table and a background byte for each channel.
    void nearestRgb8Rgb8MapSeperate(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const redTable,
                                    unsigned char* const greenTable, unsigned char* const blueTable,
                                    unsigned char redBackground, unsigned char greenBackground,
                                    unsigned char blueBackground);

    // Members that draw with the host's image primitives. They show the part of the image that the bounding boxes of
    // the rectangular, circular and polygonal shutters have in common, and no other rule; everything else becomes
    // background. Views within a degree of a multiple of 90 degrees, mirrored or not, are transposed, mirrored and
    // resized (without the rest of a degree); other views are warped. The pictures are those of the plain members
    // except where a position rounds to a neighbouring pixel.
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
    int nearestIPPGrey12Grey12(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background);

    /// 8-bit colour to 8-bit colour. The background is a grey. The fourth byte becomes 0.
    int nearestIPPRgb8Rgb8(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background);

private:
    friend struct zolcs::ResamplerAccess;  // the members' common code

    /// Sets the transformation's sizes, fills the fields and gives the stepping that the loops use.
    zolcs::Stepping adaptTransformation_(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo);
};
