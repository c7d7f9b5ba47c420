// Views for tests of overlays, whose matrices are exact in double.
#pragma once

#include "zolcs/ccs2dtrafo.h"

namespace zoltest {

/// Image pixels are display pixels.
inline CCs2dTrafo identityView() {
    CCs2dTrafo view;
    view.setSizes(512, 512, 512, 512, 1.0, 1.0, 0, 0);
    return view;
}

/// A 256 by 256 image in a display of 512 by 512, zoomed by `zoom` about its centre: x' = 2 zoom (x - 128) + 256.
inline CCs2dTrafo zoomedView(double zoom) {
    CCs2dTrafo view;
    view.setSizes(256, 256, 512, 512, 1.0, 1.0, 0, 0);
    view.scale(zoom);
    return view;
}

/// A quarter turn: x' = 512 - y, y' = x. Given by its matrix, since the cosine of a right angle is not exactly 0.
inline CCs2dTrafo quarterTurnedView() {
    CCs2dTrafo view(0.0, -1.0, 0.0, 1.0, 0.0, 0.0);
    view.setSizes(512, 512, 512, 512, 1.0, 1.0, 0, 0);
    return view;
}

/// Left and right exchanged: x' = 512 - x.
inline CCs2dTrafo mirroredView() {
    CCs2dTrafo view = identityView();
    view.mirror(CCS_HORIZONTAL);
    return view;
}

}  // namespace zoltest
