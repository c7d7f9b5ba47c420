// Display shutters: shapes outside which an image is hidden (DICOM PS3.3 C.7.6.11).
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace viewing {

/// A pixel of an image: x is the column and y the row, both counted from 0.
struct Point {
    int x = 0;
    int y = 0;
    bool operator==(const Point&) const = default;
};

/// A rectangle of pixels, all four edges included.
struct Box {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    bool operator==(const Box&) const = default;
};

/// A circle of pixels. The radius is in columns; it covers radius / ratioYx rows of an image whose pixels are not
/// square.
struct Circle {
    Point centre;
    int radius = 0;
    bool operator==(const Circle&) const = default;
};

/// The shutters of an image. A pixel is visible when it lies inside every shape that is present.
struct Shutters {
    std::optional<Box> rectangle;
    std::optional<Circle> circle;
    std::vector<Point> polygon;  ///< at least three vertices, or none for no polygon
    /// The grey of hidden pixels, from 0 (black) to 65535 (white).
    std::uint16_t presentationValue = 0;

    [[nodiscard]] bool any() const { return rectangle || circle || !polygon.empty(); }
};

}  // namespace viewing
