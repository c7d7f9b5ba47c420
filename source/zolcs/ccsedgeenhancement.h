#pragma once

#include "zolcs/ccsexport.h"
#include "zolcs/ccsresults.h"

class CCsRaster;

/// Sharpens a raster into another one of the same size by unsharp masking: a pixel becomes
/// value + strength * (value - mean), where mean is that of the square box around it. Flat areas stay unchanged and
/// edges stand out.
///
/// A box of edge `size` begins size / 2 pixels left of and above its pixel. Where it would leave the image (size / 2
/// pixels along each side), and everywhere when it is larger than the image, pixels are copied.
///
/// A member returns CCS_DONE (255). It reports (module "source\zolcs\ccsedgeenhancement"), returns CCS_FAILED (0) and
/// leaves the destination unchanged for: types that it does not take (number: the type), rasters of different size (0),
/// a box edge below 1 (the edge), and exhausted memory (0), which includes a raster without pixel memory.
///
/// An exception while filtering is logged ("zolcs - E", "Exception: unknown") and deliberately gives CCS_DONE as well;
/// the destination can then be partly filtered. Both rasters are unlocked on every path. Source and destination must be
/// two rasters with memory of their own.
class ZOLWEBCS_API CCsEdgeEnhancement {
public:
    CCsEdgeEnhancement() = default;
    CCsEdgeEnhancement(const CCsEdgeEnhancement&) = default;
    CCsEdgeEnhancement& operator=(const CCsEdgeEnhancement&) = default;
    virtual ~CCsEdgeEnhancement();

    /// Sharpens 12-bit or 16-bit grey to either of them. `bits` is the number of a value's highest bit: only the low
    /// bits + 1 bits count, and results are limited to what they hold (of more than 16 bits the low 16 are stored). A
    /// negative `bits` is refused with a report (number: the bits). Higher bits of the source are kept where pixels are
    /// sharpened, and deliberately lost where they are copied.
    ///
    /// A `strength` of 0 changes nothing, a negative one blurs. A strength that does not fit 32 bits is taken as the
    /// nearest one that does.
    int edgeEnhancementGrey12(CCsRaster& src, CCsRaster& dst, long size, long strength, int bits);

    /// Sharpens 8-bit colour of four or three bytes (types 5 and 6) to CCS_RGB8, each channel by itself. The first and
    /// third byte of a three-byte source change places. The destination's fourth bytes are never written.
    ///
    /// Column sums deliberately have 16 bits and wrap, so bright areas are no longer flat under boxes above 257.
    int edgeEnhancementRGB8(CCsRaster& src, CCsRaster& dst, long size, long strength);
};
