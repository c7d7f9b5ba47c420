// DICOM's positions as ours, here and nowhere else. DICOM counts rows and columns from 1 and writes row\column; our x
// is the column and y the row, both from 0.
#pragma once

#include "viewing/image/stored_image.h"

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace viewing {

/// The pixel of a DICOM row and column, rounded. Positions beyond 100000 pixels are clamped, so that squares of
/// distances fit an integer.
Point fromRowColumn(double row, double column);

/// The rectangle between the edges of a rectangular shutter, each of which is the last visible column or row (DICOM
/// PS3.3 C.7.6.11). Null when it encloses nothing.
std::optional<Box> fromEdges(double left, double right, double upper, double lower);

/// The circle around a DICOM row and column, its radius in columns. Null when the radius rounds to less than 1.
std::optional<Circle> fromCentre(double row, double column, double radius);

/// The vertices, written row\column one after the other. Null when they are fewer than three or an odd number.
std::optional<std::vector<Point>> fromVertices(std::span<const double> rowsAndColumns);

/// A plane of `columns` by `rows` bits whose first bit lies at `origin`, clipped to an image of width by height pixels.
/// Its bits start at `firstBit` of `packed`, lowest bit of each byte first; bits beyond the end of `packed` are 0. Null
/// when no part of the plane lies in the image.
std::optional<OverlayPlane> placePlane(Point origin, int rows, int columns, std::span<const unsigned char> packed,
                                       std::size_t firstBit, int width, int height);

}  // namespace viewing
