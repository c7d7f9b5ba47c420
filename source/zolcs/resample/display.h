// The walk over a display, compiled once for each kind of pixel.
#pragma once

#include "zolcs/pixels/imageview.h"
#include "zolcs/resample/spanfiller.h"
#include "zolcs/view/stepping.h"

#include <algorithm>

namespace zolcs {

/// A display and what is shown beside the source.
template <typename Pixel>
struct Display {
    ImageView<Pixel> image;
    Pixel background;

    void fillBackground(int y, int begin, int end) const {
        if (begin < end) std::fill(image.row(y) + begin, image.row(y) + end, background);
    }
};

/// Fills a display, along the source's rows as far as the view allows. False when the filler stopped: what it had
/// written stays, which is whole rows from the top or, in a quarter turn, whole strips of columns from the left.
/// Exists for display pixels of 8, 16, 32 and 64 bits and for Rgb24.
template <typename Pixel>
bool fillDisplay(const Stepping& stepping, const Display<Pixel>& display, SpanFiller<Pixel>& filler);

}  // namespace zolcs
