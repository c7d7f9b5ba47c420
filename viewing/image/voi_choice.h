// Which of the windows and tables at hand an image is shown with.
#pragma once

#include "viewing/image/stored_image.h"

#include <optional>
#include <string>

namespace viewing {

/// How stored values become output.
struct Modality {
    double slope = 1.0;
    double intercept = 0.0;
    std::optional<LookupTable> table;
};

/// How grey is presented: through a table, or straight or the other way round.
struct Presentation {
    std::optional<LookupTable> table;
    bool inverse = false;
};

/// Give the image another modality or presentation in place of its own.
void apply(StoredImage& image, const Modality& modality);
void apply(StoredImage& image, const Presentation& presentation);

/// Whether output values below 0 can occur, so that a table for them may begin there.
bool outputMayBeNegative(const StoredImage& image);

/// A choice in words: what it is, its numbers and its name, or why it cannot be applied.
std::string inWords(const VoiChoice& choice);
std::string inWords(const LookupTable& table);

/// Chooses for an image, counted from 1. Refuses a number that is not on its list, and a flawed choice.
void chooseVoi(StoredImage& image, int number);

/// The first choice that can be applied, the full range of values where none can; a note for each window that is passed
/// over. Tables are not passed over: a flawed one is refused.
void chooseFirstVoi(StoredImage& image);

/// None of the choices, for a window from elsewhere; that one has their function.
void chooseNoVoi(StoredImage& image);

}  // namespace viewing
