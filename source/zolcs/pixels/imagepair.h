// What the maps ask of the images that they map from and to.
#pragma once

#include "zolcs/ccsimage.h"
#include "zolcs/pixels/imagelock.h"
#include "zolcs/support/report.h"

namespace zolcs::mapping {

/// What a call accepts, and what it reports otherwise.
struct ImagePairRules {
    int sourceType;
    ReportSite sourceTypeRefused;
    ReportSite destinationTypeRefused;
    ReportSite sizeRefused;
    ReportSite sourceWithoutMemory;
    ReportSite destinationWithoutMemory;
};

/// Those of a mapRaster; `line` is the first of its reports'.
constexpr ImagePairRules mapRasterRules(int sourceType, const wchar_t* sourceTypeRefused, const wchar_t* module,
                                        int line) {
    return {
        .sourceType = sourceType,
        .sourceTypeRefused = {sourceTypeRefused, module, line},
        .destinationTypeRefused = {L"Destination type must be CCS_RGB8, is", module, line + 6},
        .sizeRefused = {L"Destination raster must have the same size", module, line + 13},
        .sourceWithoutMemory = {L"get origin for source raster returned NULL in method mapRaster", module, line + 21},
        .destinationWithoutMemory = {L"get origin for dst raster returned NULL in method mapRaster", module, line + 24},
    };
}

/// Whether the types are right and the sizes equal; what is not has been reported.
inline bool acceptImages(const CCsImage& src, const CCsImage& dst, const ImagePairRules& rules) {
    if (src.getType() != rules.sourceType) return refuse(rules.sourceTypeRefused, src.getType());
    if (dst.getType() != CCS_RGB8) return refuse(rules.destinationTypeRefused, dst.getType());
    const bool sameSize = src.getWidth() == dst.getWidth() && src.getHeight() == dst.getHeight();
    return sameSize || refuse(rules.sizeRefused, 0);
}

/// Whether both images have memory; a lack has been reported.
inline bool acceptMemory(const ImagePairLock& images, const ImagePairRules& rules) {
    if (images.source() == nullptr) return refuse(rules.sourceWithoutMemory, 0);
    return images.destination() != nullptr || refuse(rules.destinationWithoutMemory, 0);
}

}  // namespace zolcs::mapping
