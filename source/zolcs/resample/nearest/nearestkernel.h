// Nearest-neighbour resampling: the kernel.
#pragma once

#include "zolcs/pixels/imageview.h"
#include "zolcs/view/fixed16.h"

namespace zolcs {

/// The source pixel on which a position falls.
template <typename Sample>
struct NearestKernel {
    using Pixel = Sample;

    ImageView<const Pixel> source;

    Pixel operator()(Fixed16 u, Fixed16 v) const { return source.row(pixelOf(v))[pixelOf(u)]; }
};

}  // namespace zolcs
