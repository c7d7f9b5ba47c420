// The walk over the rows of a display.
#pragma once

#include "zolcs/view/stepping.h"

namespace zolcs {

/// Calls visit(row, span) for every row of a display, top down, with the columns whose position lies on the source.
/// Stops and returns false when the visitor does.
template <typename Visitor>
bool walkRows(const Stepping& stepping, Visitor&& visit) {
    for (int y = 0; y < stepping.height; ++y) {
        if (!visit(stepping.row(y), stepping.span(y))) return false;
    }
    return true;
}

}  // namespace zolcs
