// Which of the windows and tables that a file offers an image is shown with.
#pragma once

#include "viewing/image/stored_image.h"

#include <string>

namespace viewing {

/// Whether output values below 0 can occur, so that a table for them may begin there.
bool outputMayBeNegative(const GreyImage& image);

/// "table of 256 entries from 0, 8 bits".
std::string inWords(const LookupTable& table);

/// What a choice is, with its numbers and its name, or why it cannot be applied.
std::string inWords(const VoiChoice& choice);

/// Chooses for a grey image by the number on its list, counted from 1. Adds the choice's note to the image's. Refuses a
/// number that is not on the list, and a flawed choice.
void chooseVoi(StoredImage& image, int number);

/// Chooses for a grey image the first that can be applied, and the full range of values where none can. Adds a note for
/// the windows that are passed over. Tables are not passed over: a flawed one is refused.
void chooseFirstVoi(StoredImage& image);

/// The function by which a window from elsewhere is applied: that of the chosen window, or else of the first choice.
WindowFunction functionFor(const GreyImage& image);

}  // namespace viewing
