#include "zolcs/resample/display.h"

#include "zolcs/simd/transpose.h"
#include "zolcs/simd/variant.h"
#include "zolcs/view/displayrows.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zolcs {

namespace {

template <typename Pixel>
bool fillRows(const Stepping& stepping, const Display<Pixel>& display, SpanFiller<Pixel>& filler) {
    filler.beginView(stepping);
    return walkRows(stepping, [&](const DisplayRow& row, ColumnRange span) {
        display.fillBackground(row.y, 0, span.begin);
        if (!span.empty()) {
            filler.beginColumns(span);
            if (!filler.fill(row, span, display.image.row(row.y) + span.begin)) return false;
        }
        display.fillBackground(row.y, span.end, stepping.width);
        return true;
    });
}

/// Fills the display of a quarter turn. Walking its rows would walk down the source's columns, so strips of display
/// columns are filled along the source's rows into a small buffer and turned into place.
template <typename Pixel>
bool fillStrips(const Stepping& stepping, const Display<Pixel>& display, SpanFiller<Pixel>& filler) {
    constexpr int stripWidth = 32;
    constexpr int tileHeight = 1200;
    // Not a power of two, so that the rows of the buffer do not share a few cache sets.
    constexpr int tilePitch = tileHeight + 16;

    // In a quarter turn the span is the same in all rows that have one, and those rows follow one another.
    ColumnRange rows;
    ColumnRange columns;
    walkRows(stepping, [&](const DisplayRow& row, ColumnRange span) {
        display.fillBackground(row.y, 0, span.begin);
        display.fillBackground(row.y, span.end, stepping.width);
        if (span.empty()) return true;
        if (rows.empty()) rows.begin = row.y;
        rows.end = row.y + 1;
        columns = span;
        return true;
    });

    const Stepping turned = stepping.transposed();
    filler.beginView(turned);
    std::vector<Pixel> tile(static_cast<std::size_t>(stripWidth) * tilePitch);
    for (int left = columns.begin; left < columns.end; left += stripWidth) {
        const int right = std::min(left + stripWidth, columns.end);
        for (int top = rows.begin; top < rows.end; top += tileHeight) {
            const int bottom = std::min(top + tileHeight, rows.end);
            filler.beginColumns({top, bottom});
            for (int x = left; x < right; ++x) {
                Pixel* out = tile.data() + static_cast<std::ptrdiff_t>(x - left) * tilePitch;
                if (!filler.fill(turned.row(x), {top, bottom}, out)) return false;
            }
            simd::transposeTile(tile.data(), {tilePitch, right - left, bottom - top, display.image.pitch()},
                                display.image.row(top) + left);
        }
    }
    return true;
}

}  // namespace

template <typename Pixel>
bool fillDisplay(const Stepping& stepping, const Display<Pixel>& display, SpanFiller<Pixel>& filler) {
    const bool strips = stepping.isQuarterTurn() && !stepping.isUpright() && !simd::isPlain();
    return strips ? fillStrips(stepping, display, filler) : fillRows(stepping, display, filler);
}

template bool fillDisplay(const Stepping&, const Display<std::uint8_t>&, SpanFiller<std::uint8_t>&);
template bool fillDisplay(const Stepping&, const Display<std::uint16_t>&, SpanFiller<std::uint16_t>&);
template bool fillDisplay(const Stepping&, const Display<Rgb24>&, SpanFiller<Rgb24>&);
template bool fillDisplay(const Stepping&, const Display<std::uint32_t>&, SpanFiller<std::uint32_t>&);
template bool fillDisplay(const Stepping&, const Display<std::uint64_t>&, SpanFiller<std::uint64_t>&);

}  // namespace zolcs
