#pragma once

#include "zolcs/ccsexport.h"
#include "zolcs/ccsresults.h"

class CCsRaster;

/// Sharpens a raster into another one of the same size by unsharp masking: every pixel is boosted by a strength and
/// loses as much of the mean of the square box around it, so that flat areas stay as they are and edges stand out.
///
/// The box of edge `size` around a pixel reaches from size / 2 pixels left of and above it over `size` pixels. Where it
/// would pass the image (size / 2 pixels along each side), and everywhere when it is larger than the image, pixels are
/// copied.
///
/// Refused with a report (module "source\zolcs\ccsedgeenhancement") and the result CCS_FAILED (0), the destination
/// untouched: types that a member does not take (number: the type), rasters of different size (0), a box edge below 1
/// (the edge), and exhausted memory (0), which is also that of a raster without pixel memory. Otherwise the result is
/// CCS_DONE (255).
///
/// An exception while filtering is logged ("zolcs - E", "Exception: unknown") and deliberately gives 255 as well; the
/// destination may then be partly filtered. Both rasters are unlocked on every path. Source and destination must be
/// two rasters with memory of their own.
class ZOLWEBCS_API CCsEdgeEnhancement {
public:
    CCsEdgeEnhancement() = default;
    CCsEdgeEnhancement(const CCsEdgeEnhancement&) = default;
    CCsEdgeEnhancement& operator=(const CCsEdgeEnhancement&) = default;
    virtual ~CCsEdgeEnhancement();

    /// 12-bit or 16-bit grey to either of them. `bits` is the highest bit of a value: only the low bits + 1 bits count,
    /// and results are limited to what they hold (of more than 16 bits the low 16 are stored). A negative one is
    /// refused with a report (number: the bits). Higher bits of the source are kept where pixels are sharpened, and
    /// deliberately lost where they are copied.
    ///
    /// Flat areas stay as they are for any `strength`; 0 changes nothing, a negative one blurs. A strength that does
    /// not fit 32 bits is taken as the nearest one that does.
    int edgeEnhancementGrey12(CCsRaster& src, CCsRaster& dst, long size, long strength, int bits);

    /// 8-bit colour of four or three bytes (types 5 and 6) to CCS_RGB8; each channel for itself. Of a three-byte source
    /// the first and the third byte change places. The destination's fourth bytes are never written.
    ///
    /// Column sums deliberately have 16 bits and wrap, so that bright areas are no longer flat under boxes above 257.
    int edgeEnhancementRGB8(CCsRaster& src, CCsRaster& dst, long size, long strength);
};
