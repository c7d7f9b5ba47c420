// Bytes of a pixel by image type, without reporting anything.
#pragma once

#include "zolcs/ccsimage.h"

namespace zolcs {

/// Bytes of a pixel as rasters store it; 0 for an unknown type. Unlike CCsImage::getElemSize it knows 16-bit grey.
constexpr int pixelSize(int type) {
    switch (type) {
        case CCS_INDEX8:
        case CCS_GREY8:
            return 1;
        case CCS_GREY12:
        case CCS_GREY16:
            return 2;
        case CCS_RGB24:
            return 3;
        case CCS_RGB8:
            return 4;
        case CCS_RGB12:
            return 8;
        default:
            return 0;
    }
}

}  // namespace zolcs
