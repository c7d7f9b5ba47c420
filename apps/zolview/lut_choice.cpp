#include "lut_choice.h"

#include <string>

namespace zolview {

namespace {

void apply(StoredImage& image, const VoiChoice& choice) {
    image.window.reset();
    image.voiTable = choice.table;
    if (choice.table) return;
    image.window = choice.window;
    image.function = choice.function;
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

void chooseVoi(StoredImage& image, int number) {
    if (number < 1 || number > static_cast<int>(image.voi.size()))
        throw Refusal("has " + std::to_string(image.voi.size()) + " windows and VOI LUTs; there is no number " +
                      std::to_string(number));
    const VoiChoice& choice = image.voi[static_cast<std::size_t>(number) - 1];
    if (choice.flaw.empty()) return apply(image, choice);
    throw Refusal(choice.table ? choice.flaw : "its window " + std::to_string(number) + " " + choice.flaw);
}

void chooseFirstVoi(StoredImage& image) {
    image.window.reset();
    image.voiTable.reset();
    if (image.voi.empty()) return;
    const VoiChoice& first = image.voi.front();
    // The function also belongs to windows from elsewhere.
    image.function = first.function;
    if (first.flaw.empty()) return apply(image, first);
    if (first.table) throw Refusal(first.flaw);
    image.notes.push_back("the file's window " + first.flaw + "; shown with the full range of values instead");
}

}  // namespace zolview
