#pragma once

#include "zolcs/ccsexport.h"
#include "zolcs/ccsresults.h"

/// A view of 256 display pixels (0x00RRGGBB), which another object owns.
struct CCsColorMapT {
    unsigned int* entries = nullptr;  ///< 256 of them, or null for no palette
};

/// Owns the palette of 256 entries through which a grey map shows its levels. The palette is not locked: change it only
/// while no map builds a table from it, and pass it to the map's setColorMapIndex again afterwards.
class ZOLWEBCS_API CCsColorMan {
public:
    /// Starts as the grey ramp: entry i is i * 0x010101.
    CCsColorMan();
    virtual ~CCsColorMan();

    /// Copies 256 quads, which stay the caller's, without their reserved byte. Returns CCS_DONE; or CCS_FAILED for a
    /// null pointer, and leaves the palette unchanged then.
    int convertToColor(const RGBQUAD* quads);

    /// Points the record at the palette, which lives as long as this object; later changes are visible through it.
    /// Returns CCS_DONE.
    int getColorMap(CCsColorMapT& map);

    /// Reverses the order of the entries and returns CCS_DONE.
    int invertPalette();

private:
    int identiyPalette();
    void initClass();
    void fillScale32Index();

    unsigned int palette[256];
};
