// From levels to grey as DICOM defines it: modality, values of interest, presentation.
#pragma once

#include "viewing/display/raster_window.h"
#include "viewing/image/stored_image.h"

#include <optional>

namespace viewing {

/// What an image and the window that is chosen for it make of each level. The image must outlive it.
class GreyTransform {
public:
    /// `window` goes before what is chosen in the image.
    GreyTransform(const StoredImage& image, const std::optional<Window>& window);

    [[nodiscard]] int levels() const { return image_.levels; }

    /// The level in output units, such as Hounsfield units.
    [[nodiscard]] double output(int level) const;

    /// What the window or table makes of the level, 0 to 1.
    [[nodiscard]] double shown(int level) const;

    /// The presentation table's entry for what is shown; only with such a table.
    [[nodiscard]] int presentationEntry(double shown) const;

    /// The level's grey, 0 to 255, not rounded and before any inversion.
    [[nodiscard]] double grey(int level) const;

    /// The map's own window that comes nearest; null where no window of the map could.
    [[nodiscard]] std::optional<RasterWindow> rasterWindow() const;

    [[nodiscard]] const std::optional<LookupTable>& presentation() const { return image_.presentation; }

private:
    /// The smallest and largest output that occurs.
    [[nodiscard]] GreyLine fullRange() const;
    [[nodiscard]] bool usesTable() const { return !window_ && image_.voiTable; }

    const StoredImage& image_;
    std::optional<Window> window_;
    GreyLine line_;
};

}  // namespace viewing
