// The library's grey maps, set up for an image.
#pragma once

#include "viewing/display/grey_transform.h"
#include "zolcs/ccscolorman.h"
#include "zolcs/ccsmap.h"

#include <memory>

namespace viewing {

/// A map for rasters of the transform's levels, without a palette yet; the caller owns it. The grey of every level
/// differs by at most one from what the transform defines: the map's own window is used where it comes as near, and its
/// non-linear table where not. Refuses when there is no memory.
std::unique_ptr<IGreyMap> makeGreyMap(const GreyTransform& transform);

/// True when the lowest level of a map is brighter than the highest one.
bool fallsFromWhite(IGreyMap& map, int levels);

}  // namespace viewing
