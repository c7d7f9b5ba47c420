// Data sets from files.
#pragma once

#include "viewing/image/refusal.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>

#include <memory>
#include <string>

namespace viewing {

/// Reads all attributes of a file, with texts in UTF-8 where they can be converted. From the first call on, the toolkit
/// is silent and its JPEG-LS decoder is registered. Refuses what is not a file, not DICOM or cut short, and sequences
/// that lie within one another too deeply to be read.
std::unique_ptr<DcmFileFormat> readDicomFile(const std::string& path);

}  // namespace viewing
