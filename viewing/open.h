// Images and palettes from files.
#pragma once

#include "viewing/image/palette.h"
#include "viewing/image/refusal.h"
#include "viewing/image/stored_image.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace viewing {

/// Which image of a file is wanted, and which tables it is shown with.
struct OpenSettings {
    /// The frame, counted from 1.
    int frame = 1;
    /// The number of a window or VOI LUT on the image's list, or on that of `voiFile`, counted from 1. Without one, the
    /// first that can be applied is chosen.
    std::optional<int> voi;
    /// DICOM files whose tables replace the image's own; empty for none.
    std::string modalityFile;
    std::string voiFile;
    std::string presentationFile;
    /// Chooses no window and no VOI LUT, because the image will be shown with a window from elsewhere.
    bool ownWindow = false;
};

/// A refusal that concerns another file than the input.
class FileRefusal : public Refusal {
public:
    FileRefusal(std::string file, const std::string& words) : Refusal(words), file_(std::move(file)) {}
    [[nodiscard]] const std::string& file() const { return file_; }

private:
    std::string file_;
};

/// Whether the input is the built-in phantom, for which the word "phantom" stands. (A file of that name is
/// "./phantom".)
bool isPhantom(const std::string& input);

/// Opens the phantom or one frame of a DICOM file. Refuses a file that is not DICOM or cannot be shown, a frame, window
/// or table that it does not have, and settings for grey where the image is in colour. What concerns a file of the
/// settings is refused as a FileRefusal.
StoredImage openImage(const std::string& input, const OpenSettings& settings);

/// The files that openImage would read.
std::vector<std::string> filesRead(const std::string& input, const OpenSettings& settings);

/// A palette by the name of a well-known one, or else that of a DICOM file. Refuses a file without a palette.
Palette openPalette(const std::string& nameOrFile);

}  // namespace viewing
