// A round magnifying glass over a part of the picture.
#pragma once

#include "viewing/display/settings.h"
#include "zolcs/ccs2dtrafo.h"

class CCsFrame;
class CCsRaster;

namespace viewing {

/// Draws what the frame shows at the glass's place into a frame of its own, larger by the glass's factor and
/// interpolated bilinearly, and puts a circle of that over the frame; its rim is smooth. `shown` is the whole image in
/// display colours, `view` the frame's view of it. What the glass shows beside the image has the background's grey.
void magnify(CCsRaster& shown, CCsFrame& frame, CCs2dTrafo view, const Magnifier& glass, int background);

}  // namespace viewing
