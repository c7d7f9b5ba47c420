#include "viewing/output/page_layout.h"

#include "viewing/display/picture_size.h"
#include "viewing/image/refusal.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

namespace viewing {

namespace {

std::string inWords(const Millimetres& size) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.1f x %.1f mm", size.width, size.height);
    return text.data();
}

}  // namespace

Millimetres orientedPaper(const PageSettings& page) {
    return page.landscape ? Millimetres{page.paper.height, page.paper.width} : page.paper;
}

Millimetres imageOnPage(const StoredImage& image, double degrees, const PageSettings& page,
                        std::vector<std::string>& notes) {
    const Millimetres paper = orientedPaper(page);
    const Millimetres room{paper.width - 2.0 * page.margin, paper.height - 2.0 * page.margin};
    // In widths of a pixel.
    Millimetres extent{static_cast<double>(image.width), image.height * image.ratioYx};
    if (isQuarterTurn(degrees)) std::swap(extent.width, extent.height);
    const auto scaled = [&extent](double scale) { return Millimetres{extent.width * scale, extent.height * scale}; };
    if (!page.trueSize) return scaled(std::min(room.width / extent.width, room.height / extent.height));

    if (!image.pixelWidth) throw Refusal("has no pixel spacing, so that its true size is unknown");
    if (image.spacingIsUncalibrated)
        notes.emplace_back("the true size is that on the detector or film, not in the body");
    extent = scaled(*image.pixelWidth);
    if (extent.width > room.width || extent.height > room.height)
        throw Refusal("is too large for the page at its true size: " + inWords(extent) + ", and the page holds " +
                      inWords(room));
    return extent;
}

int dots(double millimetres, int dpi) {
    constexpr double inch = 25.4;
    return static_cast<int>(std::lround(millimetres * dpi / inch));
}

DotBox centredOnPage(const Millimetres& image, const PageSettings& page) {
    const Millimetres paper = orientedPaper(page);
    const int width = std::max(dots(image.width, page.dpi), 1);
    const int height = std::max(dots(image.height, page.dpi), 1);
    return {(dots(paper.width, page.dpi) - width) / 2, (dots(paper.height, page.dpi) - height) / 2, width, height};
}

}  // namespace viewing
