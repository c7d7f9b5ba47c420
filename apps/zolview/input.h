// What the word INPUT on the command line stands for.
#pragma once

#include "stored_image.h"

#include <string>

namespace zolview {

/// The phantom for the word "phantom" (a file of that name is "./phantom"), the first frame of a DICOM file otherwise.
StoredImage loadInput(const std::string& input);

/// What can be said about the input, as lines for a person to read, and whether zolview can show it.
std::string describeInput(const std::string& input);

}  // namespace zolview
