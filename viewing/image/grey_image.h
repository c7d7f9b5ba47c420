// The values of a grey image, and how they become grey: modality, values of interest, presentation (DICOM PS3.3 C.11).
#pragma once

#include "viewing/image/bit_plane.h"
#include "viewing/image/limits.h"
#include "viewing/image/lookup_table.h"
#include "viewing/image/overlay_plane.h"
#include "viewing/image/window.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace viewing {

/// How stored values become output values (C.11.1): through a table, or straight.
struct Modality {
    double slope = 1.0;
    double intercept = 0.0;
    std::optional<LookupTable> table;

    /// The output of a stored value: the table's, or slope * stored + intercept.
    [[nodiscard]] double output(int stored) const { return table ? table->at(stored) : slope * stored + intercept; }
};

/// The values of interest (C.11.2): a window over output values, or a table of them in its place.
using Voi = std::variant<VoiWindow, LookupTable>;

/// One of the values of interest that a file offers.
struct VoiChoice {
    std::string name;
    Voi voi;
    std::string flaw;  ///< why it cannot be applied; empty where it can
    std::string note;  ///< what was odd about it and how it is taken; empty for nothing
};

/// How what the values of interest give becomes grey (C.11.6): through a table over whose entries it is spread, or as
/// it is.
struct Presentation {
    std::optional<LookupTable> table;
    bool inverse = false;  ///< low values are white
};

/// The pixels of a grey image as levels, which count from the lowest value that can be stored or occurs.
struct GreyImage {
    /// width * height samples, row by row: the level, with embedded planes above its 12 bits.
    std::vector<std::uint16_t> samples;
    /// levels12, or levels16, where embedded planes have no place.
    int levels = levels12;
    /// The stored value of level 0: stored = level + lowest.
    int lowest = 0;
    /// The smallest and largest level that occur, padding aside.
    int minLevel = 0;
    int maxLevel = 0;
    /// Empty, or a plane of the image's size with a set bit for each pixel that is no part of the picture.
    BitPlane padding;
    std::vector<EmbeddedPlane> embedded;

    Modality modality;
    /// The values of interest that there are to choose from, numbered from 1.
    std::vector<VoiChoice> voiChoices;
    /// The values of interest that are chosen; none for the full range of values.
    std::optional<Voi> voi;
    Presentation presentation;

    /// The level in output units, such as Hounsfield units.
    [[nodiscard]] double output(int level) const { return modality.output(level + lowest); }
    /// The chosen window; null where a table or nothing is chosen.
    [[nodiscard]] const VoiWindow* window() const { return voi ? std::get_if<VoiWindow>(&*voi) : nullptr; }
    /// The chosen table; null where a window or nothing is chosen.
    [[nodiscard]] const LookupTable* voiTable() const { return voi ? std::get_if<LookupTable>(&*voi) : nullptr; }
};

}  // namespace viewing
