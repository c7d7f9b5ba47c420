// Annotations as a person writes them down in a JSON file.
#pragma once

#include "viewing/image/refusal.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace viewing {

enum class FigureKind { Line, Arrow, Angle, Polyline, Rectangle, Square, Circle, Ellipse, Curve, Text };

/// The unit of coordinates, with x to the right and y down: columns and rows of the image, (0, 0) being the upper left
/// corner of its first pixel; pixels of the picture; or fractions of the picture's width and height.
enum class CoordinateSpace { Image, Display, Normalised };

enum class Alignment { Left, Centre, Right };

/// A place in the coordinates of an annotation.
struct Position {
    double x = 0.0;
    double y = 0.0;
    bool operator==(const Position&) const = default;
};

/// One figure or text. Lengths are in units of the x axis in every direction, so that a circle is round in every space.
struct Annotation {
    FigureKind kind = FigureKind::Line;
    CoordinateSpace space = CoordinateSpace::Image;
    /// The vertices; an arrow's end and tip; two opposite corners of a rectangle; the upper left corner of a square; a
    /// centre; a text's anchor.
    std::vector<Position> points;
    /// Radius or side; of an ellipse the first radius; of an arrow each side of its head, 0 for a fifth of the arrow.
    double length = 0.0;
    /// The second radius of an ellipse, across the first one.
    double across = 0.0;
    /// Clockwise turn of an ellipse.
    double degrees = 0.0;
    std::string text;  ///< UTF-8; of texts only
    Alignment alignment = Alignment::Left;
    std::uint32_t colour = 0xFFFF00;  ///< 0xRRGGBB
    int penStyle = 0;                 ///< GDI's: 0 solid to 4 dash-dot-dot
    bool filled = false;              ///< the area, too; of polylines, rectangles, squares, circles and ellipses
    bool closed = false;              ///< joins the last vertex to the first; of polylines and curves
    bool shadow = true;               ///< a dark outline beneath lines and letters
};

/// The annotations of a JSON file (docs/zolview.md describes it), in the order in which they are drawn. Refuses a file
/// that cannot be read or is larger than 16 MiB, and what is not as documented, naming the annotation by its number.
std::vector<Annotation> readAnnotations(const std::string& path);

/// The annotations of the contents of such a file.
std::vector<Annotation> parseAnnotations(const std::string& json);

}  // namespace viewing
