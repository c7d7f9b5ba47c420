#pragma once

#include "zolcs/ccsexport.h"

/// A view of 256 display pixels (0x00RRGGBB) that somebody else owns.
struct CCsColorMapT {
    unsigned int* entries = nullptr;
};

/// Owns the 256-entry palette through which a grey map shows its levels.
class ZOLWEBCS_API CCsColorMan {
public:
    /// Starts as the grey ramp.
    CCsColorMan();
    virtual ~CCsColorMan();

    /// Takes over 256 quads; their reserved byte is dropped. 255.
    int convertToColor(const RGBQUAD* quads);

    /// Points the record at the palette, which lives as long as this object. 255.
    int getColorMap(CCsColorMapT& map);

    /// Reverses the order of the entries. 255.
    int invertPalette();

private:
    int identiyPalette();
    void initClass();
    void fillScale32Index();

    unsigned int palette[256];
};
