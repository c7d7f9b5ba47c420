// Exchanging the rows and columns of a small tile of pixels.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace zolcs::simd {

/// A tile whose rows become columns. Pitches count pixels.
struct TileShape {
    std::ptrdiff_t tilePitch;
    int rows;     ///< of the tile; columns of the output
    int columns;  ///< of the tile; rows of the output
    std::ptrdiff_t outPitch;
};

/// out[y * outPitch + x] = tile[x * tilePitch + y], pixel by pixel.
template <typename Pixel>
void transposePlainly(const Pixel* tile, const TileShape& shape, Pixel* out) {
    for (int y = 0; y < shape.columns; ++y) {
        for (int x = 0; x < shape.rows; ++x) out[y * shape.outPitch + x] = tile[x * shape.tilePitch + y];
    }
}

/// The same in the chosen variant.
void transposeWords(const std::uint32_t* tile, const TileShape& shape, std::uint32_t* out);

/// The same in the fastest way for the kind of pixel.
template <typename Pixel>
void transposeTile(const Pixel* tile, const TileShape& shape, Pixel* out) {
    if constexpr (std::is_same_v<Pixel, std::uint32_t>) {
        transposeWords(tile, shape, out);
    } else {
        transposePlainly(tile, shape, out);
    }
}

}  // namespace zolcs::simd
