// The styles of one-pixel pens.
#pragma once

#include "platform/gdi/gdi.h"

#include <span>

namespace zolgdi {

/// Lengths of a style's dashes and gaps in turn, in screen pixels along the line; empty for solid lines.
inline std::span<const int> dashesOf(UINT style) {
    static constexpr int dash[] = {18, 6};
    static constexpr int dot[] = {3, 3};
    static constexpr int dashDot[] = {9, 6, 3, 6};
    static constexpr int dashDotDot[] = {9, 3, 3, 3, 3, 3};
    switch (style) {
        case PS_DASH:
            return dash;
        case PS_DOT:
            return dot;
        case PS_DASHDOT:
            return dashDot;
        case PS_DASHDOTDOT:
            return dashDotDot;
        default:
            return {};
    }
}

}  // namespace zolgdi
