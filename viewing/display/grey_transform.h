// From levels to grey as DICOM defines it: modality, values of interest, presentation.
#pragma once

#include "viewing/display/raster_window.h"
#include "viewing/image/grey_image.h"

#include <optional>

namespace viewing {

/// What an image and its values of interest make of each level. The image must outlive it.
class GreyTransform {
public:
    /// `window` replaces what is chosen in the image; it is applied by functionFor(image).
    GreyTransform(const GreyImage& image, const std::optional<Window>& window);

    [[nodiscard]] int levels() const { return image_.levels; }

    /// What the window or table makes of the level, 0 to 1 (DICOM PS3.3 C.11.2.1.1 to C.11.2.1.3).
    [[nodiscard]] double shown(int level) const;

    /// The presentation table's entry for what is shown; only with such a table.
    [[nodiscard]] int presentationEntry(double shown) const;

    /// The level's grey, 0 to 255, not rounded and before any inversion.
    [[nodiscard]] double grey(int level) const;

    /// The map's own window that comes nearest; null where no window of the map could.
    [[nodiscard]] std::optional<RasterWindow> rasterWindow() const;

    [[nodiscard]] const std::optional<LookupTable>& presentation() const { return image_.presentation.table; }

private:
    /// The smallest and largest output that occurs.
    [[nodiscard]] GreyLine fullRange() const;

    const GreyImage& image_;
    std::optional<VoiWindow> window_;  // at most one of these two
    const LookupTable* table_ = nullptr;
    GreyLine line_;
};

}  // namespace viewing
