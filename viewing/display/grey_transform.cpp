#include "viewing/display/grey_transform.h"

#include "viewing/image/voi_choice.h"

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

GreyTransform::GreyTransform(const GreyImage& image, const std::optional<Window>& window) : image_(image) {
    if (window) {
        window_ = VoiWindow{*window, functionFor(image)};
    } else if (const VoiWindow* const chosen = image.window()) {
        window_ = *chosen;
    } else {
        table_ = image.voiTable();
    }
    line_ = window_ ? lineOf(*window_) : fullRange();
}

GreyLine GreyTransform::fullRange() const {
    GreyLine range{image_.output(image_.minLevel), image_.output(image_.minLevel)};
    for (int level = image_.minLevel; level <= image_.maxLevel; ++level) {
        range.black = std::min(range.black, image_.output(level));
        range.white = std::max(range.white, image_.output(level));
    }
    return range;
}

double GreyTransform::shown(int level) const {
    const double value = image_.output(level);
    if (table_ != nullptr) return static_cast<double>(table_->at(nearest(value))) / table_->top();
    if (window_ && window_->function == WindowFunction::Sigmoid)
        return 1.0 / (1.0 + std::exp(-4.0 * (value - window_->window.centre) / window_->window.width));
    return alongLine(line_, value);
}

int GreyTransform::presentationEntry(double shown) const {
    return nearest(shown * static_cast<double>(image_.presentation.table->entries.size() - 1));
}

double GreyTransform::grey(int level) const {
    const double value = shown(level);
    if (!image_.presentation.table) return 255.0 * value;
    const LookupTable& table = *image_.presentation.table;
    return 255.0 * table.entries[static_cast<std::size_t>(presentationEntry(value))] / table.top();
}

std::optional<RasterWindow> GreyTransform::rasterWindow() const {
    const Modality& modality = image_.modality;
    if (modality.table || modality.slope <= 0.0 || table_ != nullptr) return std::nullopt;
    const double first = image_.output(0);
    if (window_) return toRasterWindow(*window_, first, modality.slope, image_.levels);
    return straightWindow((line_.black - first) / modality.slope, (line_.white - first) / modality.slope,
                          image_.levels);
}

}  // namespace viewing
