// The innermost operations of the interpolating primitives, in the variants that the processor offers. All variants
// give the same bits. Private to the library and its tests.
#pragma once

#include "zolipp/sample.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

namespace zolipp {

/// Samples that an operation may read, or write, beyond those that it is asked for, wherever rows are of floats.
inline constexpr int rowSlack = 64;

/// The neighbours of each column that a row is filtered to, in ascending order, and their weights.
struct ColumnTable {
    const std::int32_t* first;  ///< column of the first neighbour in the unfiltered row
    const float* weights;       ///< of all first neighbours, then of all second ones...
    std::ptrdiff_t pitch;  ///< from one set of weights to the next; at least count + rowSlack, as is the row `first`
    int count;
};

/// One coordinate of the source points under the centres of a destination row's pixels.
struct LinePosition {
    double step;
    double start;

    [[nodiscard]] double at(int column) const { return step * (column + 0.5) + start; }
};

/// Source positions of up to this many neighbouring destination pixels.
inline constexpr int spotLimit = 256;

/// For each of them, along one axis: the first neighbour and the weights of all, first neighbours first.
struct AxisSpots {
    std::int32_t first[spotLimit + rowSlack];
    float weights[4][spotLimit + rowSlack];
};

struct Spots {
    AxisSpots x{};
    AxisSpots y{};
    std::uint32_t neighbours[4][2 * spotLimit + rowSlack]{};  ///< room for loaded pixels
};

/// How far from two runs of pixels those lie that will be exchanged after them. A row is often a whole page, at whose
/// end the processors' own prefetching stops: asking for the next row takes half the time.
struct Ahead {
    std::ptrdiff_t run;
    std::ptrdiff_t other;
};

/// How a run of pixels is exchanged with another one. The other run is named by its start or, when reversed, by its
/// end.
enum Order : std::uint8_t { Straight, Reversed };

/// Where the partners of `bytes` bytes are that lie `done` bytes behind the first run's start.
template <Order order>
std::byte* partnerOf(std::byte* other, std::ptrdiff_t done, std::ptrdiff_t bytes) {
    return order == Straight ? other + done : other - done - bytes;
}

/// Operations on rows of one pixel format. Where there are two, they are for two and for four neighbours.
struct FormatOperations {
    /// Samples as floating-point numbers; `count` pixels.
    void (*widen)(const std::byte* pixels, int count, float* out);
    /// out[i] = the weighted sum of the neighbours of column i, for whole pixels.
    void (*filterColumns[2])(const float* row, const ColumnTable& columns, float* out);
    /// The weighted sum of two or four rows, rounded, as `count` pixels.
    void (*mixRows[2])(const float* const* rows, const float* weights, int count, std::byte* pixels);
    /// The weighted sum of the neighbours of every spot, all of which lie inside the source, as `count` pixels.
    void (*mixSpots[2])(const SourceImage& source, Spots& spots, int count, std::byte* pixels);
    /// For each order: exchanges what fits whole vectors of two runs of so many bytes, and tells how many those were.
    std::ptrdiff_t (*exchange[2])(std::byte* run, std::byte* other, std::ptrdiff_t bytes, Ahead ahead);
};

struct RowOperations {
    /// Where the pixels from `column` on lie; for one, two and four neighbours.
    void (*locate[3])(const LinePosition& position, int column, int count, AxisSpots& spots);
    FormatOperations grey16;
    FormatOperations fourBytes;
    FormatOperations threeOfFourBytes;

    /// The variant for this processor, or the one that a test has chosen.
    static const RowOperations& chosen();

    /// The variant that needs nothing of the processor.
    static const RowOperations& portable();

    /// True when a test wants the obvious loops, without any of these and without vectors.
    static bool isPlain();

    /// Names of the variants that run here: "plain" and "portable", then the processor's own.
    static std::vector<std::string> variants();

    /// Makes every later call use a variant; an empty name goes back to the best one. False for an unknown name.
    /// For tests: no call may be running.
    static bool choose(const std::string& variant);
};

/// The operations of one format.
template <typename Format>
const FormatOperations& operationsOf(const RowOperations& operations) {
    if constexpr (std::is_same_v<Format, Grey16>) {
        return operations.grey16;
    } else if constexpr (std::is_same_v<Format, FourBytes>) {
        return operations.fourBytes;
    } else {
        return operations.threeOfFourBytes;
    }
}

}  // namespace zolipp
