#include "zolcs/resample/bilinear/packedrows.h"

namespace zolcs {

bool fillRowsPacked(const Stepping& stepping, const Display<std::uint16_t>& display,
                    SpanFiller<std::uint16_t>& filler) {
    filler.beginView(stepping);
    return walkRows(stepping, [&](int y, const SourceLine& row, Span span) {
        display.fillBackground(y, 0, span.begin());
        int position = span.begin();
        if (!span.empty()) {
            const ColumnRange lastColumn{span.end() - 1, span.end()};
            filler.beginColumns(lastColumn);
            if (!filler.fill(row, lastColumn, display.image.line(y) + position)) return false;
            ++position;
        }
        display.fillBackground(y, position, position + stepping.width - span.end());
        return true;
    });
}

}  // namespace zolcs
