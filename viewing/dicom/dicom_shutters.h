// The display shutters of a data set (DICOM PS3.3 C.7.6.11).
#pragma once

#include "viewing/dicom/dicom_attributes.h"
#include "viewing/image/shutters.h"

#include <string>
#include <vector>

namespace viewing {

/// The shutters that the data set names. Adds a note for each that cannot be read, which is left out. Refuses a polygon
/// of more than 1024 vertices.
Shutters readShutters(const Attributes& attributes, std::vector<std::string>& notes);

}  // namespace viewing
