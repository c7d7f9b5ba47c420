// A stored image as the library's raster, with all that belongs to it.
#pragma once

#include "stored_image.h"
#include "zolcs/ccsraster.h"

#include <array>
#include <vector>

namespace zolview {

/// Display pixels by which overlay planes are told from anatomy and from each other.
inline constexpr unsigned int graphicsColour = 0xFFC000;  // amber
inline constexpr unsigned int regionColour = 0x00D0FF;    // cyan

/// The raster of an image, with its shutters and overlay planes as far as they are wanted. Owns the bit planes to which
/// the raster's records refer.
class RasterSetup {
public:
    RasterSetup(const StoredImage& image, bool withShutters, bool withOverlays);

    [[nodiscard]] CCsRaster& raster() { return raster_; }
    /// The padding bits, null where there are none.
    [[nodiscard]] unsigned char* padding() { return padding_.empty() ? nullptr : padding_.data(); }
    /// Sixteen colours by the bits 12 to 15 of a pixel.
    [[nodiscard]] unsigned int* embeddedColours() { return embeddedColours_.data(); }
    /// Sixteen colours by a plane's position.
    [[nodiscard]] unsigned int* planeColours() { return planeColours_.data(); }

    /// Writes an overlay into the pixels: lines in the highest level and shadows in the lowest, the other way round
    /// when `inverted`, so that lines are white on the screen. Embedded planes stay what they are. The transformation
    /// brings the image onto itself.
    void burnIn(IMap& map, CCsOverlay& overlay, CCs2dTrafo& trafo, HFONT font, bool inverted);

private:
    void copySamples(const StoredImage& image);
    void setShutters(const StoredImage& image);
    void setOverlays(const StoredImage& image);

    CCsRaster raster_;
    BitPlane padding_;
    BitPlane hidden_;
    std::vector<OverlayPlane> planes_;
    std::array<unsigned int, 16> embeddedColours_{};
    std::array<unsigned int, 16> planeColours_{};
};

}  // namespace zolview
