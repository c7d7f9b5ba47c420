// A file of annotations with anything in it: drawn over a small picture and burnt into it, or refused.
#include "viewing/annotations/annotations.h"
#include "viewing/render.h"

#include <cstdlib>
#include <string>

#include "fuzz_input.h"

namespace {

viewing::StoredImage smallImage(bool tall) {
    viewing::StoredImage image;
    image.width = 24;
    image.height = 16;
    image.grey().samples.assign(24 * 16, 100);
    image.grey().maxLevel = 255;
    image.ratioYx = tall ? 2.0 : 1.0;
    return image;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Numbers are taken from the end, so that an example file is a good seed.
    zolfuzz::Bytes in(data, size);
    viewing::DisplaySettings settings;
    settings.size = viewing::Size{48, 40};
    settings.zoom = in.ConsumeBool() ? 1.0 : in.ConsumeFloatingPointInRange(viewing::minZoom, viewing::maxZoom);
    settings.degrees = in.ConsumeBool() ? 0.0 : in.ConsumeFloatingPointInRange(-360.0, 360.0);
    settings.burnIn = in.ConsumeBool();
    const bool tall = in.ConsumeBool();
    const unsigned int before = ZolGdiObjectCount();
    try {
        settings.annotations = viewing::parseAnnotations(in.ConsumeRemainingBytesAsString());
        if (settings.annotations.size() > 20) settings.annotations.resize(20);
        std::vector<std::string> notes;
        static_cast<void>(viewing::render(smallImage(tall), settings, notes));
    } catch (const viewing::Refusal&) {
        // as it should be
    }
    if (ZolGdiObjectCount() != before) std::abort();
    return 0;
}
