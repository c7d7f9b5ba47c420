#include "viewing/image/window.h"

#include <cmath>

namespace viewing {

bool isUsable(const VoiWindow& voi) {
    const auto& [window, function] = voi;
    if (!std::isfinite(window.centre) || !std::isfinite(window.width)) return false;
    return function == WindowFunction::Linear ? window.width >= 1.0 : window.width > 0.0;
}

GreyLine lineOf(const VoiWindow& voi) {
    const auto& [window, function] = voi;
    // LINEAR counts both ends of the window, which lie between the values.
    const bool counted = function == WindowFunction::Linear;
    const double middle = counted ? window.centre - 0.5 : window.centre;
    const double half = (counted ? window.width - 1.0 : window.width) / 2.0;
    return {middle - half, middle + half};
}

}  // namespace viewing
