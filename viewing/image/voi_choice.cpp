#include "viewing/image/voi_choice.h"

#include <sstream>
#include <string>

namespace viewing {

namespace {

void apply(StoredImage& image, const VoiChoice& choice) {
    image.window.reset();
    image.voiTable = choice.table;
    if (choice.table) return;
    image.window = choice.window;
    image.function = choice.function;
    if (!choice.note.empty()) image.notes.push_back(choice.note);
}

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

/// What there is in place of a number that there is not.
Refusal noSuchChoice(const StoredImage& image, int number) {
    if (image.voi.empty()) return Refusal{"has no window and no VOI LUT to choose"};
    std::string list;
    for (std::size_t i = 0; i < image.voi.size(); ++i)
        list += (i == 0 ? "" : "; ") + std::to_string(i + 1) + ": " + inWords(image.voi[i]);
    return Refusal{"has no window or VOI LUT " + std::to_string(number) + ", but " + list};
}

}  // namespace

void apply(StoredImage& image, const Modality& modality) {
    image.slope = modality.slope;
    image.intercept = modality.intercept;
    image.modality = modality.table;
}

void apply(StoredImage& image, const Presentation& presentation) {
    image.presentation = presentation.table;
    image.inverted = presentation.inverse;
}

bool outputMayBeNegative(const StoredImage& image) {
    if (image.modality) return false;
    return image.intercept < 0.0 || image.slope < 0.0 || image.lowest < 0;
}

std::string inWords(const LookupTable& table) {
    return "table of " + std::to_string(table.entries.size()) + " entries from " + std::to_string(table.first) + ", " +
           std::to_string(table.bits) + " bits";
}

std::string inWords(const VoiChoice& choice) {
    std::ostringstream out;
    if (!choice.flaw.empty()) {
        out << (choice.table ? "table" : "window") << ", cannot be applied: " << choice.flaw;
    } else if (choice.table) {
        out << inWords(*choice.table);
    } else {
        out << "window, centre " << choice.window.centre << ", width " << choice.window.width
            << functionName(choice.function);
    }
    if (!choice.name.empty()) out << ", \"" << choice.name << '"';
    if (!choice.note.empty()) out << " (" << choice.note << ')';
    return out.str();
}

void chooseVoi(StoredImage& image, int number) {
    if (number < 1 || number > static_cast<int>(image.voi.size())) throw noSuchChoice(image, number);
    const VoiChoice& choice = image.voi[static_cast<std::size_t>(number) - 1];
    if (choice.flaw.empty()) return apply(image, choice);
    throw Refusal(choice.table ? choice.flaw : "its window " + std::to_string(number) + " " + choice.flaw);
}

void chooseFirstVoi(StoredImage& image) {
    chooseNoVoi(image);
    std::string passedOver;
    for (std::size_t i = 0; i < image.voi.size(); ++i) {
        const VoiChoice& choice = image.voi[i];
        if (choice.flaw.empty()) {
            if (!passedOver.empty())
                image.notes.push_back(passedOver + "; shown with number " + std::to_string(i + 1) + " instead");
            return apply(image, choice);
        }
        if (choice.table) throw Refusal(choice.flaw);
        passedOver += (i == 0 ? "the file's window " : ", the next one ") + choice.flaw;
    }
    if (!passedOver.empty()) image.notes.push_back(passedOver + "; shown with the full range of values instead");
}

void chooseNoVoi(StoredImage& image) {
    image.window.reset();
    image.voiTable.reset();
    if (!image.voi.empty()) image.function = image.voi.front().function;
}

}  // namespace viewing
