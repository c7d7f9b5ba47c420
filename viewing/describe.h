// What can be said about an image.
#pragma once

#include "viewing/image/refusal.h"

#include <string>
#include <utility>
#include <vector>

namespace viewing {

/// Names and values for a person to read, in the order in which they are told.
using Properties = std::vector<std::pair<std::string, std::string>>;

/// Describes the input, as openImage understands it: what kind of object it is, its first frame, what there is to
/// choose from, and why it cannot be shown where it cannot. Nothing about the patient is among it. Values may quote
/// texts from the file; plainText makes these fit to be printed. Refuses what is not a DICOM file that can be read.
Properties describe(const std::string& input);

}  // namespace viewing
