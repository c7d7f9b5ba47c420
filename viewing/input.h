// What the word INPUT on the command line stands for.
#pragma once

#include "viewing/image/palette.h"
#include "viewing/image/stored_image.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace viewing {

/// Which of a file's images is wanted, and which of its tables and others.
struct LoadOptions {
    int frame = 1;
    /// The number of a window or VOI LUT on the image's list, or on that of the file below.
    std::optional<int> voi;
    /// Files whose tables go before the image's own; empty for none.
    std::string modalityFile;
    std::string voiFile;
    std::string presentationFile;
    /// A window from elsewhere goes before all that there is to choose from.
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

/// The phantom for the word "phantom" (a file of that name is "./phantom"), a frame of a DICOM file otherwise.
StoredImage loadInput(const std::string& input, const LoadOptions& options);

/// The files that loadInput reads.
std::vector<std::string> filesOf(const std::string& input, const LoadOptions& options);

/// A palette by its well-known name, or else that of a DICOM file.
Palette loadPalette(const std::string& nameOrFile);

/// What can be said about the input, as lines for a person to read, and whether zolview can show it.
std::string describeInput(const std::string& input);

}  // namespace viewing
