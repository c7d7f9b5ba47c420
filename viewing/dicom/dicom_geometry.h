// The one place where DICOM's positions become ours. DICOM counts rows and columns from 1 and writes row\column; here
// x is the column and y the row, both from 0.
#pragma once

#include "viewing/image/stored_image.h"

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace viewing {

/// A DICOM row and column. What lies absurdly far outside is brought to the nearest position that can be computed with.
Point fromRowColumn(double row, double column);

/// The rectangle between DICOM's edges, each of which is the last visible column or row. Null when it encloses nothing.
std::optional<Box> fromEdges(double left, double right, double upper, double lower);

/// The circle around a DICOM row and column. Null when the radius is below 1.
std::optional<Circle> fromCentre(double row, double column, double radius);

/// The vertices, written row\column one after the other. Null when they are fewer than three or an odd number.
std::optional<std::vector<Point>> fromVertices(std::span<const double> rowsAndColumns);

/// A plane of `columns` by `rows` bits whose first bit lies at `origin`, cut to an image of width by height. Its bits
/// start at `firstBit` of `packed`, lowest bit of each byte first; bits beyond the end of `packed` are 0. Null when no
/// part of the plane lies in the image.
std::optional<OverlayPlane> placePlane(Point origin, int rows, int columns, std::span<const unsigned char> packed,
                                       std::size_t firstBit, int width, int height);

}  // namespace viewing
