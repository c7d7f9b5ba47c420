// What a printed page is to look like.
#pragma once

namespace viewing {

/// Width and height in millimetres.
struct Millimetres {
    double width = 0.0;
    double height = 0.0;
    bool operator==(const Millimetres&) const = default;
};

/// Papers, upright.
inline constexpr Millimetres paperA4{210.0, 297.0};
inline constexpr Millimetres paperA3{297.0, 420.0};
inline constexpr Millimetres paperLetter{215.9, 279.4};

/// The resolutions that a page can have, in dots per inch.
inline constexpr int minDpi = 72;
inline constexpr int maxDpi = 1200;
/// The widest margin, in millimetres. It leaves room for the image on every paper.
inline constexpr double maxMargin = 90.0;

struct PageSettings {
    Millimetres paper = paperA4;  ///< upright
    bool landscape = false;       ///< turns the paper on its side
    double margin = 10.0;         ///< millimetres on each side, 0 to maxMargin
    int dpi = 600;                ///< dots per inch in which lines and positions are counted, minDpi to maxDpi
    /// Prints the image as large as its pixel spacing says, instead of as large as the paper allows.
    bool trueSize = false;
};

}  // namespace viewing
