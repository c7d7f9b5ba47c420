// Where and how large an image lies on a page.
#pragma once

#include "viewing/image/stored_image.h"
#include "viewing/output/page_settings.h"

#include <string>
#include <vector>

namespace viewing {

/// The paper as it lies: upright or on its side.
Millimetres orientedPaper(const PageSettings& page);

/// The size of the printed image. It fills the room between the margins in one direction and fits in the other, or has
/// its true size. `degrees` is its turn, of which quarter turns count. Adds a note where the true size is that on a
/// detector or film. Refuses true size without a pixel spacing, or where it is larger than the room.
Millimetres imageOnPage(const StoredImage& image, double degrees, const PageSettings& page,
                        std::vector<std::string>& notes);

/// A rectangle in dots.
struct DotBox {
    int left = 0;
    int top = 0;
    int width = 1;
    int height = 1;
};

/// A length in dots, to the nearest.
int dots(double millimetres, int dpi);

/// The dots of an image of that size in the middle of the page; at least one each way.
DotBox centredOnPage(const Millimetres& image, const PageSettings& page);

}  // namespace viewing
