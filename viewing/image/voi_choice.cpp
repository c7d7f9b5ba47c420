#include "viewing/image/voi_choice.h"

#include "viewing/image/refusal.h"

#include <sstream>
#include <string>

namespace viewing {

namespace {

bool isTable(const VoiChoice& choice) { return std::holds_alternative<LookupTable>(choice.voi); }

void apply(StoredImage& image, const VoiChoice& choice) {
    image.grey().voi = choice.voi;
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

std::string inWords(const VoiWindow& voi) {
    std::ostringstream out;
    out << "window, centre " << voi.window.centre << ", width " << voi.window.width << functionName(voi.function);
    return out.str();
}

/// The refusal of a number that is not on the list, which is told.
Refusal noSuchChoice(const GreyImage& image, int number) {
    if (image.voiChoices.empty()) return Refusal{"has no window and no VOI LUT to choose"};
    std::string list;
    for (std::size_t i = 0; i < image.voiChoices.size(); ++i)
        list += (i == 0 ? "" : "; ") + std::to_string(i + 1) + ": " + inWords(image.voiChoices[i]);
    return Refusal{"has no window or VOI LUT " + std::to_string(number) + ", but " + list};
}

}  // namespace

bool outputMayBeNegative(const GreyImage& image) {
    if (image.modality.table) return false;
    return image.modality.intercept < 0.0 || image.modality.slope < 0.0 || image.lowest < 0;
}

std::string inWords(const LookupTable& table) {
    return "table of " + std::to_string(table.entries.size()) + " entries from " + std::to_string(table.first) + ", " +
           std::to_string(table.bits) + " bits";
}

std::string inWords(const VoiChoice& choice) {
    std::string out;
    if (choice.flaw.empty()) {
        out = std::visit([](const auto& voi) { return inWords(voi); }, choice.voi);
    } else {
        out = (isTable(choice) ? "table" : "window") + (", cannot be applied: " + choice.flaw);
    }
    if (!choice.name.empty()) out += ", \"" + choice.name + '"';
    if (!choice.note.empty()) out += " (" + choice.note + ')';
    return out;
}

void chooseVoi(StoredImage& image, int number) {
    const GreyImage& grey = image.grey();
    if (number < 1 || number > static_cast<int>(grey.voiChoices.size())) throw noSuchChoice(grey, number);
    const VoiChoice& choice = grey.voiChoices[static_cast<std::size_t>(number) - 1];
    if (choice.flaw.empty()) return apply(image, choice);
    throw Refusal(isTable(choice) ? choice.flaw : "its window " + std::to_string(number) + " " + choice.flaw);
}

void chooseFirstVoi(StoredImage& image) {
    image.grey().voi.reset();
    std::string passedOver;
    int number = 0;
    for (const VoiChoice& choice : image.grey().voiChoices) {
        ++number;
        if (choice.flaw.empty()) {
            if (!passedOver.empty())
                image.notes.push_back(passedOver + "; shown with number " + std::to_string(number) + " instead");
            return apply(image, choice);
        }
        if (isTable(choice)) throw Refusal(choice.flaw);
        passedOver += (number == 1 ? "the file's window " : ", the next one ") + choice.flaw;
    }
    if (!passedOver.empty()) image.notes.push_back(passedOver + "; shown with the full range of values instead");
}

WindowFunction functionFor(const GreyImage& image) {
    const VoiWindow* window = image.window();
    if (window == nullptr && !image.voiChoices.empty()) window = std::get_if<VoiWindow>(&image.voiChoices.front().voi);
    return window == nullptr ? WindowFunction::Linear : window->function;
}

}  // namespace viewing
