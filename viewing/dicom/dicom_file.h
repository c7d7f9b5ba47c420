// DICOM files in, images to be shown out.
#pragma once

#include "viewing/image/palette.h"
#include "viewing/image/refusal.h"
#include "viewing/image/stored_image.h"
#include "viewing/image/voi_choice.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace viewing {

/// The windows and tables of a DICOM file, whether it is an image or a presentation state.
struct DisplayTables {
    std::optional<Modality> modality;
    std::vector<VoiChoice> voi;
    std::optional<Presentation> presentation;
};

/// One DICOM file, which it keeps in memory.
class DicomFile {
public:
    /// Reads the file's attributes, as readDicomFile does.
    explicit DicomFile(const std::string& path);
    DicomFile(const DicomFile&) = delete;
    DicomFile& operator=(const DicomFile&) = delete;
    ~DicomFile();

    /// What the file says about its image, as names and values to print, without anything about the patient.
    [[nodiscard]] std::vector<std::pair<std::string, std::string>> summary() const;

    /// A frame, counted from 1, with none of its windows and VOI LUTs chosen. Refuses a file without an image, a frame
    /// that it does not have, and pixels that cannot be shown or decoded.
    [[nodiscard]] StoredImage image(int frame = 1) const;

    /// What the file has for the grey of another image, whose stored values and output values may be negative or not:
    /// those are the inputs of the tables. Refuses tables that cannot be, and a slope or intercept that makes no sense.
    [[nodiscard]] DisplayTables tables(bool signedStored, bool signedOutput) const;

    /// The colours of the file's palette, spread over 256 levels. Refuses a file without one, and tables that cannot
    /// be.
    [[nodiscard]] Palette palette() const;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace viewing
