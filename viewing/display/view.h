// The view that the settings ask for, as the library's transformation.
#pragma once

#include "viewing/display/settings.h"
#include "zolcs/ccs2dtrafo.h"

class CCsImage;

namespace viewing {

/// The view in its documented order: flip, rotate, zoom, pan.
CCs2dTrafo makeView(const CCsImage& image, const CCsImage& frame, const DisplaySettings& settings);

/// Replaces the view's pan: as many pixels of the picture, right and down of where the image lies without any.
void setPan(CCs2dTrafo& view, double x, double y);

}  // namespace viewing
