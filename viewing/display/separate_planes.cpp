#include "viewing/display/separate_planes.h"

namespace viewing {

namespace {

OverlayPlane separated(const StoredImage& image, const EmbeddedPlane& embedded) {
    OverlayPlane plane{{0, 0}, BitPlane(image.width, image.height), embedded.kind};
    for (std::size_t i = 0; i < image.samples.size(); ++i)
        if (((image.samples[i] >> embedded.bit) & 1) != 0) plane.bits.setBit(i);
    return plane;
}

}  // namespace

StoredImage withSeparatePlanes(StoredImage image) {
    for (const PlaneKind kind : {PlaneKind::Graphics, PlaneKind::RegionOfInterest})
        for (const EmbeddedPlane& plane : image.embedded)
            if (plane.kind == kind) image.overlays.push_back(separated(image, plane));
    for (std::uint16_t& sample : image.samples) sample &= levels12 - 1;
    image.embedded.clear();
    return image;
}

}  // namespace viewing
