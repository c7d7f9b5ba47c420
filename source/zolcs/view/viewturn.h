// How far a view is turned: the classes of angles that the transformation and the accelerated resamplers tell apart.
#pragma once

#include <cmath>
#include <cstdint>

namespace zolcs {

enum class Turn : std::uint8_t { None, Quarter, Half, ThreeQuarters, Oblique };

/// The class of an angle as CCs2dTrafo::getOperations gives it: degrees from 0 to 360, or not a number. What lies less
/// than a degree beside a quarter turn counts as one; deliberately, what lies below a whole turn does not.
inline Turn turnOf(double angle) {
    const auto isNear = [angle](double degrees) { return std::abs(angle - degrees) < 1.0; };
    if (angle >= 0.0 && std::fmod(angle, 360.0) < 1.0) return Turn::None;
    if (isNear(90.0)) return Turn::Quarter;
    if (isNear(180.0)) return Turn::Half;
    if (isNear(270.0)) return Turn::ThreeQuarters;
    return Turn::Oblique;
}

/// Whether rows and columns change places.
constexpr bool isTransposed(Turn turn) { return turn == Turn::Quarter || turn == Turn::ThreeQuarters; }

}  // namespace zolcs
