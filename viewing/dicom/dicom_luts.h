// The windows and look-up tables of a data set (DICOM PS3.3 C.11).
#pragma once

#include "viewing/dicom/dicom_attributes.h"
#include "viewing/image/refusal.h"
#include "viewing/image/stored_image.h"
#include "viewing/image/voi_choice.h"

#include <optional>
#include <string>
#include <vector>

namespace viewing {

/// The attributes that hold a table.
struct TableTags {
    DcmTagKey descriptor;
    DcmTagKey data;
    DcmTagKey segmented;  ///< looked at where there is no data; may be the same tag as `data`
};

/// Reads a table, named in refusals as `name`. Its first input is signed when it is declared so or `signedInputs` is
/// set. A table that uses more bits than its descriptor says has that many. Refuses a table that is missing, too short
/// for its descriptor, or has entries of 0 or more than 16 bits.
LookupTable readTable(const Attributes& attributes, const TableTags& tags, const std::string& name, bool signedInputs);

/// Reads the table in an item of a LUT sequence, as above.
LookupTable readLutItem(DcmItem& item, const std::string& name, bool signedInputs);

/// The first item of the Modality LUT Sequence, else slope and intercept (C.11.1); null without either. Adds a note
/// where slope or intercept make no sense, which then are 1 and 0. Refuses a table as readTable does.
std::optional<Modality> readModality(const Attributes& attributes, bool signedInputs, std::vector<std::string>& notes);

/// The windows, then the tables of the VOI LUT Sequence (C.11.2), each with its name. Those that cannot be applied are
/// listed with their flaw.
std::vector<VoiChoice> readVoi(const Attributes& attributes, bool signedInputs);

/// The first item of the Presentation LUT Sequence, else the Presentation LUT Shape (C.11.6); null without either.
/// Refuses a table as readTable does.
std::optional<Presentation> readPresentation(const Attributes& attributes);

}  // namespace viewing
