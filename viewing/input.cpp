#include "viewing/input.h"

#include "viewing/dicom/dicom_input.h"
#include "viewing/display/grey_transform.h"
#include "viewing/image/lut_choice.h"
#include "viewing/image/phantom.h"
#include "viewing/image/plain_text.h"

#include <sstream>

namespace viewing {

namespace {

const std::string phantomWord = "phantom";

class Lines {
public:
    template <typename... Parts>
    void add(const std::string& name, const Parts&... parts) {
        std::ostringstream line;
        ((line << parts), ...);
        text_ += name + ": " + plainText(line.str()) + '\n';
    }
    [[nodiscard]] const std::string& text() const { return text_; }

private:
    std::string text_;
};

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

void addVoi(Lines& lines, const std::vector<VoiChoice>& choices) {
    if (choices.empty()) lines.add("voi", "none; shown with the full range of values");
    int number = 0;
    for (const VoiChoice& choice : choices) lines.add("voi " + std::to_string(++number), describe(choice));
}

void addGrey(Lines& lines, const StoredImage& image) {
    const GreyTransform transform(image, {});
    lines.add("values", "stored ", image.minLevel + image.lowest, " to ", image.maxLevel + image.lowest, ", output ",
              transform.output(image.minLevel), " to ", transform.output(image.maxLevel));
    if (image.modality) lines.add("modality", describe(*image.modality));
    addVoi(lines, image.voi);
    if (image.presentation) lines.add("presentation", describe(*image.presentation));
    lines.add("low values", image.inverted ? "white" : "black");
    if (!image.padding.empty()) lines.add("padding", "some values are no part of the picture and stay black");
}

void addImage(Lines& lines, const StoredImage& image) {
    lines.add("pixel height to width", image.ratioYx);
    if (!image.isColour()) addGrey(lines, image);
    addShutters(lines, image.shutters);
    addOverlays(lines, image);
    for (const std::string& note : image.notes) lines.add("note", note);
}

/// Does something with a file other than the input, whose name goes with whatever is refused.
template <typename Action>
auto withFile(const std::string& file, Action action) {
    try {
        return action();
    } catch (const Refusal& refusal) {
        throw FileRefusal(file, refusal.what());
    }
}

DisplayTables loadTables(const std::string& file, const StoredImage& image) {
    return DicomFile(file).tables(image.lowest < 0, outputMayBeNegative(image));
}

template <typename Part>
const Part& wanted(const std::optional<Part>& part, const std::string& name) {
    if (!part) throw Refusal("has no " + name);
    return *part;
}

void useTables(StoredImage& image, const LoadOptions& options) {
    if (!options.modalityFile.empty())
        withFile(options.modalityFile, [&] {
            apply(image, wanted(loadTables(options.modalityFile, image).modality, "Modality LUT and no rescale slope"));
        });
    if (!options.voiFile.empty())
        withFile(options.voiFile, [&] {
            image.voi = loadTables(options.voiFile, image).voi;
            if (image.voi.empty()) throw Refusal("has no window and no VOI LUT");
            chooseVoi(image, options.voi.value_or(1));
        });
    if (!options.presentationFile.empty())
        withFile(options.presentationFile, [&] {
            apply(image,
                  wanted(loadTables(options.presentationFile, image).presentation, "Presentation LUT and no shape"));
        });
}

}  // namespace

StoredImage loadInput(const std::string& input, const LoadOptions& options) {
    if (input == phantomWord && options.frame != 1) throw Refusal("has one frame only");
    StoredImage image = input == phantomWord ? makePhantom() : DicomFile(input).image(options.frame);
    const bool wantsGrey =
        options.voi || !options.modalityFile.empty() || !options.voiFile.empty() || !options.presentationFile.empty();
    if (image.isColour() && wantsGrey) throw Refusal("is a colour image, which has no windows and tables to choose");
    useTables(image, options);
    if (!options.voiFile.empty()) return image;
    if (options.voi) {
        chooseVoi(image, *options.voi);
    } else if (options.ownWindow) {
        chooseNoVoi(image);
    } else {
        chooseFirstVoi(image);
    }
    return image;
}

std::vector<std::string> filesOf(const std::string& input, const LoadOptions& options) {
    std::vector<std::string> files{options.modalityFile, options.voiFile, options.presentationFile};
    if (input != phantomWord) files.push_back(input);
    std::erase(files, "");
    return files;
}

Palette loadPalette(const std::string& nameOrFile) {
    if (const auto palette = wellKnownPalette(nameOrFile)) return *palette;
    return DicomFile(nameOrFile).palette();
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

}  // namespace viewing
