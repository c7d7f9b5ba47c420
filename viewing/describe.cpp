#include "viewing/describe.h"

#include "viewing/dicom/dicom_file.h"
#include "viewing/image/phantom.h"
#include "viewing/image/voi_choice.h"
#include "viewing/open.h"

#include <sstream>

namespace viewing {

namespace {

/// Adds a property whose value is the parts one after the other.
template <typename... Parts>
void add(Properties& out, const std::string& name, const Parts&... parts) {
    std::ostringstream value;
    ((value << parts), ...);
    out.emplace_back(name, value.str());
}

void addShutters(Properties& out, const Shutters& shutters) {
    if (const auto& r = shutters.rectangle)
        add(out, "shutter", "columns ", r->left, " to ", r->right, ", rows ", r->top, " to ", r->bottom, " (from 0)");
    if (const auto& c = shutters.circle)
        add(out, "shutter", "circle around column ", c->centre.x, ", row ", c->centre.y, " (from 0), radius ",
            c->radius);
    if (!shutters.polygon.empty()) add(out, "shutter", "polygon of ", shutters.polygon.size(), " vertices");
    if (shutters.any()) add(out, "shutter value", shutters.presentationValue, " of 65535");
}

void addOverlays(Properties& out, const StoredImage& image) {
    const auto kind = [](PlaneKind k) { return k == PlaneKind::Graphics ? "graphics" : "region of interest"; };
    for (const OverlayPlane& plane : image.overlays)
        add(out, "overlay", kind(plane.kind), ", ", plane.bits.width(), " x ", plane.bits.height(), " at column ",
            plane.origin.x, ", row ", plane.origin.y, " (from 0)");
    if (image.isColour()) return;
    for (const EmbeddedPlane& plane : image.grey().embedded)
        add(out, "overlay", kind(plane.kind), ", in bit ", plane.bit, " of the pixels");
}

void addVoi(Properties& out, const std::vector<VoiChoice>& choices) {
    if (choices.empty()) add(out, "voi", "none; shown with the full range of values");
    int number = 0;
    for (const VoiChoice& choice : choices) add(out, "voi " + std::to_string(++number), inWords(choice));
}

void addGrey(Properties& out, const GreyImage& image) {
    add(out, "values", "stored ", image.minLevel + image.lowest, " to ", image.maxLevel + image.lowest, ", output ",
        image.output(image.minLevel), " to ", image.output(image.maxLevel));
    if (image.modality.table) add(out, "modality", inWords(*image.modality.table));
    addVoi(out, image.voiChoices);
    if (image.presentation.table) add(out, "presentation", inWords(*image.presentation.table));
    add(out, "low values", image.presentation.inverse ? "white" : "black");
    if (!image.padding.empty()) add(out, "padding", "some values are no part of the picture and stay black");
}

void addImage(Properties& out, const StoredImage& image) {
    add(out, "pixel height to width", image.ratioYx);
    if (!image.isColour()) addGrey(out, image.grey());
    addShutters(out, image.shutters);
    addOverlays(out, image);
    for (const std::string& note : image.notes) add(out, "note", note);
}

}  // namespace

Properties describe(const std::string& input) {
    Properties out;
    if (isPhantom(input)) {
        const StoredImage image = makePhantom();
        add(out, "object", "the built-in phantom");
        add(out, "size", image.width, " x ", image.height);
        addImage(out, image);
        return out;
    }
    const DicomFile file(input);
    out = file.summary();
    try {
        addImage(out, file.image());
    } catch (const Refusal& refusal) {
        add(out, "zolview cannot show it", refusal.what());
    }
    return out;
}

}  // namespace viewing
