// Rectangles; right and bottom are exclusive.
#pragma once

#include "platform/gdi/gdi.h"

namespace zolgdi {

/// Whether the width or the height is below 1.
constexpr bool isEmpty(const RECT& rect) { return rect.left >= rect.right || rect.top >= rect.bottom; }

constexpr RECT intersection(const RECT& a, const RECT& b) {
    return {a.left > b.left ? a.left : b.left, a.top > b.top ? a.top : b.top, a.right < b.right ? a.right : b.right,
            a.bottom < b.bottom ? a.bottom : b.bottom};
}

}  // namespace zolgdi
