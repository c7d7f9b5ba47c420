// DICOM files in, images to be shown out.
#pragma once

#include "stored_image.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zolview {

/// One DICOM file. Of several frames, the first one counts.
class DicomFile {
public:
    /// Reads the file's attributes; refuses what is not DICOM or is cut short.
    explicit DicomFile(const std::string& path);
    DicomFile(const DicomFile&) = delete;
    DicomFile& operator=(const DicomFile&) = delete;
    ~DicomFile();

    /// What the file says about its image, as names and values to print, without anything about the patient.
    [[nodiscard]] std::vector<std::pair<std::string, std::string>> summary() const;

    /// The first frame; refuses what this program cannot show.
    [[nodiscard]] StoredImage image() const;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace zolview
