// Images on paper: a PDF page with the image's own pixels, and annotations as lines and letters.
#pragma once

#include "viewing/display/render_options.h"
#include "viewing/image/stored_image.h"

#include <optional>
#include <string>
#include <vector>

namespace viewing {

/// Millimetres.
struct Paper {
    double width = 210.0;
    double height = 297.0;
    bool operator==(const Paper&) const = default;
};

inline constexpr int minDpi = 72;
inline constexpr int maxDpi = 1200;
/// Leaves room on every paper.
inline constexpr double maxMargin = 90.0;

struct PrintOptions {
    Paper paper;
    bool landscape = false;
    double margin = 10.0;  ///< millimetres, on all sides
    int dpi = 600;         ///< dots in which lines and positions are counted
    /// As large as the pixel spacing says, instead of as large as the paper allows.
    bool trueSize = false;
};

/// "A4", "A3" or "letter", upright; null for anything else.
std::optional<Paper> parsePaper(const std::string& text);

/// Writes a page with the image in its middle, one printed pixel for each of the image's (narrow pixels are widened to
/// square ones). Of the view, the flip and quarter turns count. Refuses what render refuses, true size without a pixel
/// spacing or for more than the page holds, and files that cannot be written; no half-written file is left behind.
void printPdf(const StoredImage& image, const RenderOptions& options, const PrintOptions& page, const std::string& path,
              std::vector<std::string>& notes);

}  // namespace viewing
