#include "zolcs/resample/bilinear/packedrows.h"

#include "zolcs/view/displayrows.h"

namespace zolcs {

bool fillRowsPacked(const Stepping& stepping, const Display<std::uint16_t>& display,
                    SpanFiller<std::uint16_t>& filler) {
    filler.beginView(stepping);
    return walkRows(stepping, [&](const DisplayRow& row, ColumnRange span) {
        display.fillBackground(row.y, 0, span.begin);
        int position = span.begin;
        if (!span.empty()) {
            const ColumnRange lastColumn{span.end - 1, span.end};
            filler.beginColumns(lastColumn);
            if (!filler.fill(row, lastColumn, display.image.row(row.y) + position)) return false;
            ++position;
        }
        display.fillBackground(row.y, position, position + stepping.width - span.end);
        return true;
    });
}

}  // namespace zolcs
