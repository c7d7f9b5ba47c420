// The fast fillers of interpolation in oblique views.
#pragma once

#include "zolcs/resample/stepping.h"
#include "zolcs/resample/stopflag.h"

namespace zolcs {

/// Kernels with a fast filler for views of any angle:
///
///     ObliqueFiller<Kernel, Convert>(kernel, convert, stop)              // a Filler that looks at `stop` itself,
///     before
///                                                                        // each block of at most 16 pixels
///     ObliqueFiller<Kernel, Convert>::isUsableFor(kernel, stepping)      // positions and offsets fit its arithmetic
///
/// It equals PlainFiller<Kernel, Convert> bit for bit.
template <typename Kernel>
inline constexpr bool hasObliqueFiller = false;

template <typename Kernel, typename Convert>
class ObliqueFiller;

}  // namespace zolcs
