// Where the vertices of a figure are drawn: the one place that knows what each render mode takes.
#pragma once

#include "zolcs/ccsgeometry.h"
#include "zolcs/drawing/modes.h"
#include "zolcs/drawing/outline.h"

#include <optional>

class CCs2dTrafo;

namespace zolcs {

/// What one render call tells about the output.
struct Placement {
    CCs2dTrafo* image = nullptr;   ///< image to display
    CCs2dTrafo* output = nullptr;  ///< display to printer
    int mode = screenMode;
};

/// A vertex as an overlay keeps it: in display pixels, rounded and not, and in image pixels.
struct Vertex {
    CCsPoint& shown;
    CCsPointDouble& exact;
    const CCsPointDouble& image;
};

/// Output coordinates of a vertex. While the display coordinates are authoritative (they were changed and the image
/// coordinates are stale) the screen takes them as they are and printers map them through the output transformation;
/// everything else maps the image coordinates. Nothing for other modes and where the transformation needed is null.
///
/// On the screen and in mode 4, mapped positions are rounded and stored in the vertex, which so keeps in step with zoom
/// and pan.
std::optional<OutputPoint> place(const Placement& placement, bool displayAuthoritative, Vertex vertex);

/// Output coordinates of a position given as fractions of the output's size, the same in every mode; nothing without an
/// image transformation.
std::optional<OutputPoint> placeNormalised(const Placement& placement, OutputPoint fractions);

/// Through the image-to-display matrix.
OutputPoint mapped(CCs2dTrafo& trafo, OutputPoint point);

}  // namespace zolcs
