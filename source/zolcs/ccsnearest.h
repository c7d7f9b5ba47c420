#pragma once

#include "zolcs/ccsexport.h"

#include <cstdint>

class CCs2dTrafo;
class CCsImage;
class CCsRaster;
class IMap;

/// Fills a destination image from a source image, taking for each destination pixel the source pixel on which its
/// centre falls. An object holds the state of one call: one thread at a time.
class ZOLWEBCS_API CCsNearest {
public:
    CCsNearest();
    CCsNearest(const CCsNearest&) = default;
    CCsNearest& operator=(const CCsNearest&) = default;
    virtual ~CCsNearest();

    int nearestGrey12Grey12(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned short background, bool unused);
    void nearestGrey12IndexMap(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, IMap* map,
                               unsigned char* pixelPadding, unsigned char background);
    void nearestGrey8Grey8(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background);
    void nearestGrey8IndexMap(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const table,
                              unsigned char background);
    void nearestIndexIndex(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background);
    void nearestRgb12Rgb12(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, std::uint64_t background);
    void nearestRgb12Rgb8Map(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const table,
                             unsigned long background);
    void nearestRgb8Rgb24Save(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background);
    int nearestRgb8Rgb8(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned long background);
    void nearestRgb8Rgb8Map(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const table,
                            unsigned long background);
    void nearestRgb8Rgb8MapSeperate(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const redTable,
                                    unsigned char* const greenTable, unsigned char* const blueTable,
                                    unsigned char redBackground, unsigned char greenBackground,
                                    unsigned char blueBackground);

private:
    void adaptTransformation_(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo);

    std::int32_t stepXu;
    std::int32_t stepXv;
    std::int32_t stepYu;
    std::int32_t stepYv;
    std::int32_t originU;
    std::int32_t originV;
    std::int32_t srcLimitU;
    std::int32_t srcLimitV;
    std::int32_t srcPitch;
    std::int32_t dstWidth;
    std::int32_t dstHeight;
    std::int32_t dstPitch;
};
