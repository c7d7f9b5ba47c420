// Shutter and overlay-plane records, exchanged with the host: field order and widths are binding.
#pragma once

#include "zolcs/ccsexport.h"
#include "zolcs/ccsgeometry.h"

#include <cstdint>
#include <vector>

/// A shutter given as a bit plane: `columns` bits per row without row padding, lowest bit of each byte first. The data
/// stays the host's and must hold rows * columns bits.
struct CCsBitmapShutterInfo {
    std::uint32_t tag = 0;     ///< not 0 when there is a bitmap shutter
    std::int32_t originX = 0;  ///< 1-based image column of the first bit
    std::int32_t originY = 0;  ///< 1-based image row of the first bit
    std::uint16_t rows = 0;
    std::uint16_t columns = 0;
    unsigned char* data = nullptr;
    std::uint32_t group = 0x6000;
    std::uint32_t unused32 = 0;
    std::uint8_t unused8a = 0;
    std::uint8_t unused8b = 0;
    std::uint16_t reserved16 = 0;
    std::uint16_t shutterValueAux = 0;
    std::uint16_t presentationValue = 0;  ///< applies while the bitmap shutter is on
};

/// One overlay plane, with bits laid out like the bitmap shutter's. The data stays the host's.
struct CCs60XXOverlay {
    std::uint32_t leading = 0;
    std::int32_t originX = 0;  ///< 1-based image column of the first bit
    std::int32_t originY = 0;  ///< 1-based image row of the first bit
    std::uint16_t rows = 0;
    std::uint16_t columns = 0;
    unsigned char* data = nullptr;
    std::uint8_t trailing[12] = {};
};

/// Overlay planes in order; a plane's position is the index that the overlay bit test reports.
struct CCs60XXOverlayInfo {
    std::vector<CCs60XXOverlay> planes;
};

/// Rectangular shutter; right and bottom are inclusive.
struct CCsRectangularShutterInfo {
    int present = 0;
    RECT rect = {0, 0, 0, 0};
};

/// Circular shutter: pixels within `radius` of `center` are visible.
struct CCsCircularShutterInfo {
    int present = 0;
    CCsPoint center;
    float radius = 0.0F;
    RECT bounds = {0, 0, 0, 0};  ///< the bounding box as it was passed
};

/// The rectangular, circular and polygonal shutters together; a pixel is visible inside all that are present.
struct CCsDisplayShutterInfo {
    CCsRectangularShutterInfo rectangular;
    CCsCircularShutterInfo circular;
    int polygonPresent = 0;
    std::vector<CPoint> polygon;
    std::uint32_t unused[4] = {};
    unsigned short presentationValue = 0;
};
