#include "viewing/display/grey_transform.h"

#include <algorithm>
#include <cmath>

namespace viewing {

namespace {

/// Fractional inputs of a table take the nearest entry, halves the upper one.
int nearest(double value) {
    constexpr double farAway = 1e9;
    return static_cast<int>(std::floor(std::clamp(value, -farAway, farAway) + 0.5));
}

double alongLine(const GreyLine& line, double value) {
    if (value <= line.black) return 0.0;
    if (value > line.white) return 1.0;
    return (value - line.black) / (line.white - line.black);
}

}  // namespace

GreyTransform::GreyTransform(const StoredImage& image, const std::optional<Window>& window) : image_(image) {
    window_ = window;
    if (!window_ && !image.voiTable) window_ = image.window;
    line_ = window_ ? lineOf(*window_, image.function) : fullRange();
}

double GreyTransform::output(int level) const {
    const int stored = level + image_.lowest;
    if (image_.modality) return image_.modality->at(stored);
    return image_.slope * stored + image_.intercept;
}

GreyLine GreyTransform::fullRange() const {
    GreyLine range{output(image_.minLevel), output(image_.minLevel)};
    for (int level = image_.minLevel; level <= image_.maxLevel; ++level) {
        range.black = std::min(range.black, output(level));
        range.white = std::max(range.white, output(level));
    }
    return range;
}

double GreyTransform::shown(int level) const {
    const double value = output(level);
    if (usesTable()) return static_cast<double>(image_.voiTable->at(nearest(value))) / image_.voiTable->top();
    if (window_ && image_.function == WindowFunction::Sigmoid)
        return 1.0 / (1.0 + std::exp(-4.0 * (value - window_->centre) / window_->width));
    return alongLine(line_, value);
}

int GreyTransform::presentationEntry(double shown) const {
    return nearest(shown * static_cast<double>(image_.presentation->entries.size() - 1));
}

double GreyTransform::grey(int level) const {
    const double value = shown(level);
    if (!image_.presentation) return 255.0 * value;
    const LookupTable& table = *image_.presentation;
    return 255.0 * table.entries[static_cast<std::size_t>(presentationEntry(value))] / table.top();
}

std::optional<RasterWindow> GreyTransform::rasterWindow() const {
    if (image_.modality || image_.slope <= 0.0 || usesTable()) return std::nullopt;
    const double first = output(0);
    if (window_) return toRasterWindow(*window_, image_.function, first, image_.slope, image_.levels);
    return straightWindow((line_.black - first) / image_.slope, (line_.white - first) / image_.slope, image_.levels);
}

}  // namespace viewing
