#include "input.h"

#include "dicom_input.h"
#include "phantom.h"

#include <sstream>

namespace zolview {

namespace {

const std::string phantomWord = "phantom";

class Lines {
public:
    template <typename... Parts>
    void add(const std::string& name, const Parts&... parts) {
        out_ << name << ": ";
        ((out_ << parts), ...);
        out_ << '\n';
    }
    [[nodiscard]] std::string text() const { return out_.str(); }

private:
    std::ostringstream out_;
};

const char* functionName(WindowFunction function) {
    switch (function) {
        case WindowFunction::LinearExact:
            return ", exact";
        case WindowFunction::Sigmoid:
            return ", sigmoid";
        case WindowFunction::Linear:
            break;
    }
    return "";
}

void addShutters(Lines& lines, const Shutters& shutters) {
    if (const auto& r = shutters.rectangle)
        lines.add("shutter", "columns ", r->left, " to ", r->right, ", rows ", r->top, " to ", r->bottom, " (from 0)");
    if (const auto& c = shutters.circle)
        lines.add("shutter", "circle around column ", c->centre.x, ", row ", c->centre.y, " (from 0), radius ",
                  c->radius);
    if (!shutters.polygon.empty()) lines.add("shutter", "polygon of ", shutters.polygon.size(), " vertices");
    if (shutters.any()) lines.add("shutter value", shutters.presentationValue, " of 65535");
}

void addOverlays(Lines& lines, const StoredImage& image) {
    const auto kind = [](PlaneKind k) { return k == PlaneKind::Graphics ? "graphics" : "region of interest"; };
    for (const OverlayPlane& plane : image.overlays)
        lines.add("overlay", kind(plane.kind), ", ", plane.bits.width(), " x ", plane.bits.height(), " at column ",
                  plane.origin.x, ", row ", plane.origin.y, " (from 0)");
    for (const EmbeddedPlane& plane : image.embedded)
        lines.add("overlay", kind(plane.kind), ", in bit ", plane.bit, " of the pixels");
}

void addImage(Lines& lines, const StoredImage& image) {
    const auto output = [&image](int level) { return image.slope * (level + image.lowest) + image.intercept; };
    lines.add("values", "stored ", image.minLevel + image.lowest, " to ", image.maxLevel + image.lowest, ", output ",
              output(image.minLevel), " to ", output(image.maxLevel));
    lines.add("pixel height to width", image.ratioYx);
    if (image.window) {
        lines.add("window", "centre ", image.window->centre, ", width ", image.window->width,
                  functionName(image.function));
    } else {
        lines.add("window", image.needsWindow ? "none, but a VOI LUT" : "none; shown with the full range of values");
    }
    lines.add("low values", image.inverted ? "white" : "black");
    if (!image.padding.empty()) lines.add("padding", "some values are no part of the picture and stay black");
    addShutters(lines, image.shutters);
    addOverlays(lines, image);
    for (const std::string& note : image.notes) lines.add("note", note);
}

}  // namespace

StoredImage loadInput(const std::string& input) {
    return input == phantomWord ? makePhantom() : DicomFile(input).image();
}

std::string describeInput(const std::string& input) {
    Lines lines;
    if (input == phantomWord) {
        const StoredImage image = makePhantom();
        lines.add("object", "the built-in phantom");
        lines.add("size", image.width, " x ", image.height);
        addImage(lines, image);
        return lines.text();
    }
    const DicomFile file(input);
    for (const auto& [name, value] : file.summary()) lines.add(name, value);
    try {
        addImage(lines, file.image());
    } catch (const Refusal& refusal) {
        lines.add("zolview cannot show it", refusal.what());
    }
    return lines.text();
}

}  // namespace zolview
