// Look-up tables as data sets carry them.
#pragma once

#include "viewing/dicom/dicom_attributes.h"
#include "viewing/image/refusal.h"
#include "viewing/image/stored_image.h"
#include "viewing/image/voi_choice.h"

#include <optional>
#include <string>
#include <vector>

namespace viewing {

/// Where a table's numbers stand in a data set.
struct TableTags {
    DcmTagKey descriptor;
    DcmTagKey data;
    DcmTagKey segmented;  ///< looked at where there is no data; may be the same tag as `data`
};

/// A table, named in refusals as `name`. Its first input is signed when it is declared so or `signedInputs` is set.
/// Refuses a table that is missing, too short for its descriptor or described in a way that cannot be.
LookupTable readTable(const Attributes& attributes, const TableTags& tags, const std::string& name, bool signedInputs);

/// The table in an item of a LUT sequence.
LookupTable readLutItem(DcmItem& item, const std::string& name, bool signedInputs);

/// The first item of the Modality LUT Sequence, else slope and intercept; null without either. Adds a note where those
/// make no sense and are left out.
std::optional<Modality> readModality(const Attributes& attributes, bool signedInputs, std::vector<std::string>& notes);

/// The windows, then the tables. Flawed ones are listed with their flaw.
std::vector<VoiChoice> readVoi(const Attributes& attributes, bool signedInputs);

/// Null where the data set tells nothing of it.
std::optional<Presentation> readPresentation(const Attributes& attributes);

}  // namespace viewing
