#include "zolcs/ccscolorman.h"

#include <algorithm>
#include <iterator>

CCsColorMan::CCsColorMan() { initClass(); }

CCsColorMan::~CCsColorMan() = default;

int CCsColorMan::convertToColor(const RGBQUAD* quads) {
    if (quads == nullptr) return CCS_FAILED;
    std::transform(quads, quads + std::size(palette), palette, [](const RGBQUAD& quad) {
        return static_cast<unsigned int>(quad.rgbRed) << 16U | static_cast<unsigned int>(quad.rgbGreen) << 8U |
               static_cast<unsigned int>(quad.rgbBlue);
    });
    return CCS_DONE;
}

int CCsColorMan::getColorMap(CCsColorMapT& map) {
    map.entries = palette;
    return CCS_DONE;
}

int CCsColorMan::invertPalette() {
    std::reverse(std::begin(palette), std::end(palette));
    return CCS_DONE;
}

int CCsColorMan::identiyPalette() {
    unsigned int level = 0;
    for (unsigned int& entry : palette) entry = level++ * 0x010101U;
    return CCS_DONE;
}

void CCsColorMan::initClass() { fillScale32Index(); }

void CCsColorMan::fillScale32Index() { identiyPalette(); }
