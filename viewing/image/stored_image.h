// An image as it is to be shown, whatever it was read from. All coordinates are 0-based, x the column and y the row.
#pragma once

#include "viewing/image/bit_plane.h"
#include "viewing/image/limits.h"
#include "viewing/image/lookup_table.h"
#include "viewing/image/overlay_plane.h"
#include "viewing/image/refusal.h"
#include "viewing/image/shutters.h"
#include "viewing/image/window.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace viewing {

/// One of the ways in which a file wants its values of interest shown: a window, or a table in its place.
struct VoiChoice {
    std::string name;
    Window window;
    WindowFunction function = WindowFunction::Linear;
    std::optional<LookupTable> table;
    /// Why it cannot be applied; empty where it can.
    std::string flaw;
    /// What was odd about it and how it is taken; empty for nothing.
    std::string note;
};

struct StoredImage {
    int width = 0;
    int height = 0;
    /// Height of a pixel divided by its width.
    double ratioYx = 1.0;
    /// Millimetres, where a spacing is given.
    std::optional<double> pixelWidth;
    /// The spacing is that on a detector or film, which magnifies, not one calibrated to the body.
    bool spacingIsUncalibrated = false;

    /// Grey images, row by row: the level, embedded planes above its 12 bits.
    std::vector<std::uint16_t> samples;
    /// levels12, or levels16 where embedded planes have no place.
    int levels = levels12;
    /// Colour images, in place of all that concerns grey: pixels of 8 bits a channel as 0x00RRGGBB, or of 12 bits a
    /// channel as 0x0000RRRRGGGGBBBB.
    std::vector<std::uint32_t> rgb8;
    std::vector<std::uint64_t> rgb12;

    [[nodiscard]] bool isColour() const { return !rgb8.empty() || !rgb12.empty(); }

    /// The stored value that became level 0: stored = level + lowest. The output is that of the modality table, or
    /// slope * stored + intercept.
    int lowest = 0;
    double slope = 1.0;
    double intercept = 0.0;
    std::optional<LookupTable> modality;
    /// Smallest and largest level, padding aside.
    int minLevel = 0;
    int maxLevel = 0;

    /// Empty, or a set bit for each pixel that is no part of the picture.
    BitPlane padding;

    /// All that there is to choose from, numbered from 1.
    std::vector<VoiChoice> voi;
    /// What is chosen of it: a window with its function, or a table; neither for the full range of values.
    std::optional<Window> window;
    WindowFunction function = WindowFunction::Linear;
    std::optional<LookupTable> voiTable;
    /// From what the window or table gives, spread over all entries, to grey.
    std::optional<LookupTable> presentation;
    /// The low end of the window is white.
    bool inverted = false;

    Shutters shutters;
    std::vector<OverlayPlane> overlays;
    std::vector<EmbeddedPlane> embedded;

    /// What was found odd and how it was taken; one line each.
    std::vector<std::string> notes;
};

}  // namespace viewing
