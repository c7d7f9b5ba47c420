// A stored image as the library's raster, with all that belongs to it.
#pragma once

#include "viewing/display/settings.h"
#include "viewing/image/stored_image.h"
#include "zolcs/ccsraster.h"

#include <array>
#include <vector>

namespace viewing {

/// Display pixels by which overlay planes are told from anatomy and from each other.
inline constexpr unsigned int graphicsColour = 0xFFC000;  // amber
inline constexpr unsigned int regionColour = 0x00D0FF;    // cyan

/// The raster of an image, with its shutters and overlay planes as far as they are wanted: as the library's own for
/// grey images, in the pixels of colour images, for which it has none. Owns the bit planes to which the raster's
/// records refer.
class RasterSetup {
public:
    /// Of a colour image, the raster has display colours, in which `settings` are already done.
    RasterSetup(const StoredImage& image, const DisplaySettings& settings);

    [[nodiscard]] CCsRaster& raster() { return raster_; }
    /// The padding bits, null where there are none.
    [[nodiscard]] unsigned char* padding() { return padding_.empty() ? nullptr : padding_.data(); }
    /// The first pixel is padding, and no overlay plane lies on it.
    [[nodiscard]] bool firstPixelIsPadding() const;
    /// Sixteen colours by the bits 12 to 15 of a pixel.
    [[nodiscard]] unsigned int* embeddedColours() { return embeddedColours_.data(); }
    /// Sixteen colours by a plane's position.
    [[nodiscard]] unsigned int* planeColours() { return planeColours_.data(); }

    /// Interpolating bilinearly, the library counts only a part of the vertical position of 12-bit pixels; they are
    /// taken for 16-bit ones then. Not for rasters with embedded planes.
    void takeAsGrey16() { raster_.takeAsGrey16(); }

    /// Writes an overlay into the pixels: lines in the highest level and shadows in the lowest, the other way round
    /// when `inverted`, so that lines are white on the screen; in colour images, lines are white. Embedded planes stay
    /// what they are. The transformation brings the image onto itself.
    void burnIn(IMap& map, CCsOverlay& overlay, CCs2dTrafo& trafo, HFONT font, bool inverted);

private:
    /// A raster whose 12-bit pixels can be taken for 16-bit ones, which lie in memory alike.
    class Raster : public CCsRaster {
    public:
        using CCsRaster::CCsRaster;
        void takeAsGrey16() { type = CCS_GREY16; }
    };

    void copySamples(const GreyImage& image);
    void setShutters(const StoredImage& image);
    void setOverlays(const StoredImage& image);
    void showColours(const StoredImage& image, const DisplaySettings& settings);
    void sharpen(const Sharpening& sharpening);
    void burnInGrey(IMap& map, CCsOverlay& overlay, CCs2dTrafo& trafo, HFONT font, bool inverted);

    Raster raster_;
    BitPlane padding_;
    BitPlane hidden_;
    std::vector<OverlayPlane> planes_;
    std::array<unsigned int, 16> embeddedColours_{};
    std::array<unsigned int, 16> planeColours_{};
};

}  // namespace viewing
