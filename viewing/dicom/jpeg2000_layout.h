// How a JPEG 2000 codestream is cut into tiles, precincts and code-blocks (ISO/IEC 15444-1, annexes A and B), read from
// its headers without decoding it.
#pragma once

#include "viewing/dicom/codestream.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace viewing {

/// The frame that the codestream declares, its samples of the size and depth of the largest. Null where the bytes begin
/// no codestream.
std::optional<CodestreamHeader> readJpeg2000Header(std::span<const std::uint8_t> codestream);

/// The last part of a tile.
struct TileEnd {
    std::size_t length = 0;  ///< where the part's length stands, 32 bits of it; 0 says that it reaches to the end
    std::size_t end = 0;     ///< behind its data
    bool operator==(const TileEnd&) const = default;
};

/// What stands between a codestream and its samples.
struct Jpeg2000Layout {
    std::uint64_t tiles = 0;
    /// Where the tiles end of which all parts that are announced are there, in full length.
    std::vector<TileEnd> completeTiles;
    /// The fewest decompositions of any component.
    std::uint32_t levels = 0;
    /// Bytes that a decoder needs beside samples and codestream, as far as `limits` let them be counted. Headers can
    /// ask for more than any integer holds.
    double memory = 0.0;
    /// Code-blocks and packets of all tiles, likewise.
    double parts = 0.0;
};

/// Beyond these, counting ends.
struct Jpeg2000Limits {
    double memory = 0.0;
    double parts = 0.0;

    [[nodiscard]] bool admit(const Jpeg2000Layout& layout) const {
        return layout.memory <= memory && layout.parts <= parts;
    }
};

/// Reads the headers of the codestream and of its tiles. Null where they are broken: shorter than they say, or with
/// numbers that the standard excludes.
std::optional<Jpeg2000Layout> readJpeg2000Layout(std::span<const std::uint8_t> codestream,
                                                 const Jpeg2000Limits& limits);

}  // namespace viewing
