// Reshaping of rectangles, squares and circles by a drag on one corner.
#pragma once

#include "zolcs/drawing/outline.h"

#include <array>
#include <cstddef>

namespace zolcs {

/// The corners of a rectangle in order around it, the one that is dragged, and where it is to go. Rectangles may be
/// turned (an upright one in a turned view); reshaping keeps their direction. What is not a rectangle within about a
/// pixel becomes one with sides along the axes.
struct Corners {
    std::array<OutputPoint, 4> points;
    std::size_t dragged = 0;
    OutputPoint target;
};

/// The opposite corner stays and all angles stay right.
void reshapeRectangle(Corners& corners);

/// As reshapeRectangle, with sides of equal length: the longer one that the target asks for.
void reshapeSquare(Corners& corners);

/// As reshapeSquare, but the centre stays.
void reshapeCircle(Corners& corners);

}  // namespace zolcs
