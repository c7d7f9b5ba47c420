// Mapping a whole raster through a table of display pixels, pixel by pixel in place.
#pragma once

#include "zolcs/ccsimage.h"
#include "zolcs/mapping/greyramp.h"
#include "zolcs/mapping/storedtable.h"
#include "zolcs/pixels/embeddedoverlay.h"
#include "zolcs/rules/pixelrules.h"

#include <cstdint>
#include <optional>
#include <span>

namespace zolcs::mapping {

/// A table with an entry for every 16-bit value: `lut` (at least 4096 entries), then for the values beyond it its last
/// entry, or the colour of their embedded overlay bits where those are shown. Null when memory is exhausted.
TableMemory<std::uint32_t> extendedTable(std::span<const std::uint32_t> lut, const EmbeddedOverlay& overlay);

/// One mapping of 16-bit samples onto 32-bit pixels of the same size. What it is given must outlive it.
class RasterMapping {
public:
    /// `table` has an entry for every 16-bit value, embedded overlay bits included where they are shown; the origins
    /// are those of the locked images.
    RasterMapping(const PixelRules& rules, const std::uint32_t* table, const CCsImage& source,
                  const unsigned char* sourceOrigin, const CCsImage& destination, unsigned char* destinationOrigin);

    /// The part of a segment (right and bottom exclusive) that lies on the images; empty ones have no rows.
    [[nodiscard]] RECT clipped(const RECT& segment) const;

    /// True when mapping a clipped area leaves no byte of the destination's lines as it was.
    [[nodiscard]] bool coversDestination(const RECT& area) const;

    /// Maps a clipped area, its rows in parallel. `window` and `depth` are what the table was probably built from:
    /// where it is linear and shows plain greys, a large area is computed instead of looked up, with the same result.
    void run(const RECT& area, const Window& window, std::size_t depth);

private:
    void mapBand(const RECT& area, int top, int bottom) const;
    void mapRow(int y, const PixelRuns& runs) const;
    [[nodiscard]] bool mayCompute(const RECT& area) const;
    /// Shows image values only.
    void show(std::int64_t x, std::int64_t y, std::int64_t columns, std::int64_t rows) const;
    void compute(std::int64_t x, std::int64_t y, std::int64_t columns, std::int64_t rows) const;
    void lookUp(std::int64_t x, std::int64_t y, std::int64_t columns, std::int64_t rows) const;
    void cover(int y, const PixelRun& run) const;
    [[nodiscard]] const std::uint16_t* sourceAt(std::int64_t x, std::int64_t y) const;
    [[nodiscard]] std::uint32_t* destinationAt(std::int64_t x, std::int64_t y) const;

    const PixelRules& rules_;
    const std::uint32_t* table_;
    std::optional<GreyRamp> ramp_;  ///< gives what the table holds
    const unsigned char* source_;
    unsigned char* destination_;
    std::int64_t sourcePitch_;
    std::int64_t destinationPitch_;
    LONG width_;
    LONG height_;
};

}  // namespace zolcs::mapping
