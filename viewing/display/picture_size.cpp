#include "viewing/display/picture_size.h"

#include "viewing/image/limits.h"

#include <algorithm>
#include <cmath>

namespace viewing {

bool isQuarterTurn(double degrees) {
    const double turn = std::fmod(std::abs(degrees), 180.0);
    return std::abs(turn - 90.0) < 1.0;
}

Size ownSize(const StoredImage& image, double degrees, double longest) {
    const double width = image.width * std::max(1.0 / image.ratioYx, 1.0);
    const double height = image.height * std::max(image.ratioYx, 1.0);
    const double shrink = std::min({longest / std::max(width, height), std::sqrt(maxPixels / (width * height)), 1.0});
    const auto whole = [shrink](double side) { return std::max(static_cast<int>(std::lround(side * shrink)), 1); };
    const Size upright{whole(width), whole(height)};
    return isQuarterTurn(degrees) ? Size{upright.height, upright.width} : upright;
}

Size defaultSize(const StoredImage& image, double degrees) {
    constexpr double longest = 2048.0;
    return ownSize(image, degrees, longest);
}

}  // namespace viewing
