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

/// The tables of a DICOM file, whether it is an image or a presentation state.
struct DisplayTables {
    std::optional<Modality> modality;
    std::vector<VoiChoice> voi;
    std::optional<Presentation> presentation;
};

/// One DICOM file.
class DicomFile {
public:
    /// Reads the file's attributes; refuses what is not DICOM or is cut short.
    explicit DicomFile(const std::string& path);
    DicomFile(const DicomFile&) = delete;
    DicomFile& operator=(const DicomFile&) = delete;
    ~DicomFile();

    /// What the file says about its image, as names and values to print, without anything about the patient.
    [[nodiscard]] std::vector<std::pair<std::string, std::string>> summary() const;

    /// A frame, counted from 1, with none of its windows and VOI LUTs chosen; refuses what this program cannot show.
    [[nodiscard]] StoredImage image(int frame = 1) const;

    /// What the file has for the grey of an image, the inputs of whose tables may be negative or not.
    [[nodiscard]] DisplayTables tables(bool signedStored, bool signedOutput) const;

    /// The colours of the file's palette, spread over 256 levels. Refuses a file without one.
    [[nodiscard]] Palette palette() const;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace viewing
