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

/// Fills a destination image from a source image, taking for each destination pixel the source pixel on which its
/// centre falls.
///
/// All members work alike. They first set the transformation's sizes from the two images (its destination offsets
/// become 0), then walk the destination in 16.16 fixed point. Pixels whose centre lies beside the source become
/// background; so does everything when the source has no pixels or the transformation is not finite or out of range.
/// With rising steps a source coordinate of exactly 0 deliberately counts as beside the source, with falling steps the
/// largest one does.
///
/// What can go wrong is reported with number 0 and the module "source\zolcs\ccsnearest", and leaves the destination
/// untouched: image types that a member does not take, or whose pixels do not have the sizes that it reads and writes
/// ("Image type not supported"); a null table; an image without memory ("get origin for source raster returned NULL in
/// method ..." or "get origin for dst raster ..."). An exception, such as exhausted memory, becomes "Exception in
/// function ..."; lines that were already written stay. The members that return an int give 255 when the destination
/// was filled and 0 after a report. Both images are unlocked on every path.
///
/// An object holds the state of one call: one thread at a time.
class ZOLWEBCS_API CCsNearest : private zolcs::SteppingFields {
public:
    /// Carries nothing yet: every field is -1.
    CCsNearest();
    CCsNearest(const CCsNearest&) = default;
    CCsNearest& operator=(const CCsNearest&) = default;
    virtual ~CCsNearest();

    /// 12-bit grey to 12-bit grey: copies the 16 stored bits, embedded overlay bits included. The last argument is
    /// accepted and unused.
    int nearestGrey12Grey12(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned short background, bool unused);

    /// 12-bit or 16-bit grey to 32-bit display pixels through the table of a grey map, with everything that goes before
    /// the table, in this order: overlay planes, embedded overlay bits, shutters, padding.
    ///
    /// `map` stays the caller's; null or a map that is not a grey map gives a table of zeroes and no overlays.
    /// `pixelPadding` may be null; else it stays the caller's and holds one bit per source pixel, rows following one
    /// another, lowest bit of each byte first; a set bit shows `background`. The bits of planes and of a bitmap shutter
    /// must be as many as their records say. `background` is written zero-extended.
    void nearestGrey12IndexMap(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, IMap* map, unsigned char* pixelPadding,
                               unsigned char background);

    /// Bytes to bytes; at least one of the images is 8-bit grey.
    void nearestGrey8Grey8(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background);

    /// 8-bit grey through `table` (256 bytes, the caller's) to an index image; the background goes through the table,
    /// too. The source is 8-bit grey or the destination an index image.
    void nearestGrey8IndexMap(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const table,
                              unsigned char background);

    /// Index image to index image.
    void nearestIndexIndex(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background);

    /// 12-bit colour to 12-bit colour: copies all eight bytes.
    void nearestRgb12Rgb12(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, std::uint64_t background);

    /// 12-bit colour to 8-bit colour: each channel through `table` (4096 bytes, the caller's; values from 4096 on take
    /// the last entry). The fourth byte becomes 0; the background is written as it is.
    void nearestRgb12Rgb8Map(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const table,
                             unsigned long background);

    /// 8-bit colour to 24-bit colour for files: the colour bytes are reversed, the fourth is dropped. The background
    /// byte is written three times.
    void nearestRgb8Rgb24Save(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background);

    /// 8-bit colour to 8-bit colour: copies all four bytes.
    int nearestRgb8Rgb8(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned long background);

    /// 8-bit colour, each channel through `table` (256 bytes, the caller's). The fourth byte becomes 0; the background
    /// is written as it is.
    void nearestRgb8Rgb8Map(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const table,
                            unsigned long background);

    /// As nearestRgb8Rgb8Map with a table and a background byte for each channel.
    void nearestRgb8Rgb8MapSeperate(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const redTable,
                                    unsigned char* const greenTable, unsigned char* const blueTable,
                                    unsigned char redBackground, unsigned char greenBackground,
                                    unsigned char blueBackground);

    // The same through the host's image primitives: the part of the image that the rectangular, circular and polygonal
    // shutters' boxes have in common, without any other rule. Views within a degree of a quarter turn, mirrored or not,
    // are transposed, mirrored and resized (and not turned by the rest of a degree); others are warped. The pictures
    // are those of the plain members but for the interpolation's last digits. Everything else becomes background.
    //
    // 255 when the view was drawn. Otherwise 0: unreported, the destination untouched, for a raster with embedded
    // overlay bits; reported, the destination untouched, for wrong types and when the shutters have nothing in common
    // ("There is no common shutter region"); reported with the status as number, the destination as the primitives left
    // it, when one of them fails ("... IPP method failed in ..."): memory that is missing, a view that shows nothing
    // of the image at an oblique angle, an image of a single row or column there, a view that cannot be inverted; and
    // for an exception.

    /// 12-bit or 16-bit grey, with all 16 bits of each, to the same.
    int nearestIPPGrey12Grey12(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background);

    /// 8-bit colour to 8-bit colour; the background is a grey. The fourth byte becomes 0.
    int nearestIPPRgb8Rgb8(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background);

private:
    friend struct zolcs::ResamplerAccess;  // the members' common code

    /// Sets the transformation's sizes, fills the fields and gives the stepping that the loops use.
    zolcs::Stepping adaptTransformation_(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo);
};
