#include "viewing/open.h"

#include "viewing/dicom/dicom_file.h"
#include "viewing/image/phantom.h"
#include "viewing/image/voi_choice.h"

namespace viewing {

namespace {

/// Does something with a file other than the input, whose name goes with whatever is refused.
template <typename Action>
auto withFile(const std::string& file, Action action) {
    try {
        return action();
    } catch (const Refusal& refusal) {
        throw FileRefusal(file, refusal.what());
    }
}

DisplayTables loadTables(const std::string& file, const GreyImage& image) {
    return DicomFile(file).tables(image.lowest < 0, outputMayBeNegative(image));
}

template <typename Part>
const Part& wanted(const std::optional<Part>& part, const std::string& name) {
    if (!part) throw Refusal("has no " + name);
    return *part;
}

/// Replaces the image's own tables by those of other files.
void useTables(StoredImage& image, const OpenSettings& settings) {
    GreyImage& grey = image.grey();
    if (!settings.modalityFile.empty())
        withFile(settings.modalityFile, [&] {
            grey.modality =
                wanted(loadTables(settings.modalityFile, grey).modality, "Modality LUT and no rescale slope");
        });
    if (!settings.voiFile.empty())
        withFile(settings.voiFile, [&] {
            grey.voiChoices = loadTables(settings.voiFile, grey).voi;
            if (grey.voiChoices.empty()) throw Refusal("has no window and no VOI LUT");
            chooseVoi(image, settings.voi.value_or(1));
        });
    if (!settings.presentationFile.empty())
        withFile(settings.presentationFile, [&] {
            grey.presentation =
                wanted(loadTables(settings.presentationFile, grey).presentation, "Presentation LUT and no shape");
        });
}

/// Chooses the window or VOI LUT of a grey image.
void choose(StoredImage& image, const OpenSettings& settings) {
    if (!settings.voiFile.empty()) return;
    if (settings.voi) {
        chooseVoi(image, *settings.voi);
    } else if (settings.ownWindow) {
        image.grey().voi.reset();
    } else {
        chooseFirstVoi(image);
    }
}

}  // namespace

bool isPhantom(const std::string& input) { return input == "phantom"; }

StoredImage openImage(const std::string& input, const OpenSettings& settings) {
    if (isPhantom(input) && settings.frame != 1) throw Refusal("has one frame only");
    StoredImage image = isPhantom(input) ? makePhantom() : DicomFile(input).image(settings.frame);
    const bool wantsGrey = settings.voi || !settings.modalityFile.empty() || !settings.voiFile.empty() ||
                           !settings.presentationFile.empty();
    if (image.isColour()) {
        if (wantsGrey) throw Refusal("is a colour image, which has no windows and tables to choose");
        return image;
    }
    useTables(image, settings);
    choose(image, settings);
    return image;
}

std::vector<std::string> filesRead(const std::string& input, const OpenSettings& settings) {
    std::vector<std::string> files{settings.modalityFile, settings.voiFile, settings.presentationFile};
    if (!isPhantom(input)) files.push_back(input);
    std::erase(files, "");
    return files;
}

Palette openPalette(const std::string& nameOrFile) {
    if (const auto palette = wellKnownPalette(nameOrFile)) return *palette;
    return DicomFile(nameOrFile).palette();
}

}  // namespace viewing
