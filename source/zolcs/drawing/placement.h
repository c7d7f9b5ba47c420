// Where figures and texts are drawn: the only place that knows which coordinates each render mode takes.
#pragma once

#include "zolcs/ccsgeometry.h"
#include "zolcs/ccsrendermodes.h"
#include "zolcs/drawing/outline.h"

#include <cstdint>
#include <optional>

class CCs2dTrafo;

namespace zolcs {

/// What one render call says about the output.
struct Placement {
    CCs2dTrafo* image = nullptr;   ///< image to display
    CCs2dTrafo* output = nullptr;  ///< display to printer
    int mode = CCS_MODE_SCREEN;
};

/// A vertex as a figure keeps it: in display pixels, rounded and not, and in image pixels.
struct Vertex {
    CCsPoint& shown;
    CCsPointDouble& exact;
    const CCsPointDouble& image;
};

/// The anchor of a text as it is kept: in display pixels and in image pixels.
struct Anchor {
    std::int32_t& shownX;
    std::int32_t& shownY;
    OutputPoint image;
};

// Output coordinates of a position. While its display coordinates count (they were changed and the image coordinates
// are stale, or it stays where it is on the display), the screen takes them as they are and printers map them through
// the output transformation. Otherwise, and always where overlays are burnt in, the image coordinates are mapped
// through the image transformation. There are none for other modes and where the transformation needed is null.

/// Of a figure's vertex. On the screen and where it is burnt in, a mapped position is rounded, and the vertex takes it
/// over, so that it keeps in step with zoom and pan.
std::optional<OutputPoint> place(const Placement& placement, bool displayCounts, Vertex vertex);

/// Of a text's anchor. On the screen a mapped position is truncated, deliberately unlike a vertex', and the anchor
/// takes it over.
std::optional<OutputPoint> place(const Placement& placement, bool displayCounts, Anchor anchor);

/// Of a point that has image coordinates only; never rounded.
std::optional<OutputPoint> placeImagePoint(const Placement& placement, OutputPoint image);

/// Of a position given as fractions of the output's size, the same in every mode; none without an image transformation.
std::optional<OutputPoint> placeNormalised(const Placement& placement, OutputPoint fractions);

/// Through the image-to-display matrix.
OutputPoint mapped(CCs2dTrafo& trafo, OutputPoint point);

}  // namespace zolcs
