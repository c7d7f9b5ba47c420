#pragma once

#include "zolcs/ccsexport.h"
#include "zolcs/ccsresults.h"

/// A view of 256 display pixels (0x00RRGGBB) that somebody else owns.
struct CCsColorMapT {
    unsigned int* entries = nullptr;  ///< 256 of them, or null for no palette
};

/// Owns the 256-entry palette through which a grey map shows its levels. Not locked: change it while no map is being
/// built from it, and hand it to the map's setColorMapIndex again afterwards.
class ZOLWEBCS_API CCsColorMan {
public:
    /// Starts as the grey ramp: entry i is i * 0x010101.
    CCsColorMan();
    virtual ~CCsColorMan();

    /// Takes over 256 quads, which stay the caller's; their reserved byte is dropped. 255, or 0 for a null pointer,
    /// which leaves the palette as it is.
    int convertToColor(const RGBQUAD* quads);

    /// Points the record at the palette, which lives as long as this object; later changes show through it. 255.
    int getColorMap(CCsColorMapT& map);

    /// Reverses the order of the entries. 255.
    int invertPalette();

private:
    int identiyPalette();
    void initClass();
    void fillScale32Index();

    unsigned int palette[256];
};
