// The runs of neighbouring pixels into which rules cut a display row.
#pragma once

#include "zolcs/view/spans.h"

#include <cstdint>
#include <vector>

namespace zolcs {

/// Neighbouring pixels [begin, end) of a row that show the same.
struct PixelRun {
    enum class Shows : std::uint8_t {
        Image,    ///< the value map decides; an embedded overlay bit of the stored value goes first
        Covered,  ///< `colour` (a shutter or padding); an embedded overlay bit of the stored value goes first
        Plane,    ///< `colour` (an overlay plane), whatever is stored
    };

    int begin = 0;
    int end = 0;
    Shows shows = Shows::Image;
    std::uint32_t colour = 0;

    [[nodiscard]] bool showsTheSameAs(const PixelRun& other) const {
        return shows == other.shows && colour == other.colour;
    }
    bool operator==(const PixelRun&) const = default;
};

/// The runs of one row, in order and without gaps. Reuse one object for all rows that a thread walks.
class PixelRuns {
public:
    [[nodiscard]] auto begin() const { return runs_.begin(); }
    [[nodiscard]] auto end() const { return runs_.end(); }

private:
    friend class PixelRules;

    /// One run of image over all columns.
    void reset(ColumnRange columns);
    /// Adds a run to the layer that is being gathered; runs come in ascending order and do not overlap.
    void add(const PixelRun& run);
    /// Makes a layer ascending whose runs were added in descending order.
    void reverseLayer();
    /// Lays the gathered layer over what is there.
    void merge();

    std::vector<PixelRun> runs_;
    std::vector<PixelRun> layer_;
    std::vector<PixelRun> merged_;
    std::vector<ColumnRange> close_;  ///< columns close to a polygon's edge
};

}  // namespace zolcs
