// The command line as values.
#pragma once

#include "viewing/display/settings.h"
#include "viewing/open.h"
#include "viewing/output/page_settings.h"

#include <iosfwd>
#include <optional>
#include <stdexcept>
#include <string>

namespace zolview {

enum class Command { Render, Print, Info };

/// What the command line asks for.
struct Options {
    Command command = Command::Info;
    std::string input;           ///< a DICOM file, or the word phantom
    std::string output;          ///< the file to write; empty for Info
    std::string annotationFile;  ///< empty for none
    std::string palette;         ///< a palette's name or file; empty for none
    bool progress = false;
    viewing::OpenSettings open;
    viewing::DisplaySettings display;
    viewing::PageSettings page;
};

/// A command line that cannot be understood; the words say why.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads the command line; throws UsageError where it is wrong. Null where it asks for help or the version, which are
/// then written to `out`.
std::optional<Options> parseOptions(int argc, const char* const* argv, std::ostream& out);

}  // namespace zolview
