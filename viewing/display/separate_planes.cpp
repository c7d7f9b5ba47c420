#include "viewing/display/separate_planes.h"

namespace viewing {

StoredImage withSeparatePlanes(StoredImage image) {
    GreyImage& grey = image.grey();
    for (const PlaneKind kind : {PlaneKind::Graphics, PlaneKind::RegionOfInterest})
        for (const EmbeddedPlane& plane : grey.embedded)
            if (plane.kind == kind)
                image.overlays.push_back(
                    {{0, 0}, planeOfBit(grey.samples, plane.bit, image.width, image.height), kind});
    for (std::uint16_t& sample : grey.samples) sample &= levels12 - 1;
    grey.embedded.clear();
    return image;
}

}  // namespace viewing
