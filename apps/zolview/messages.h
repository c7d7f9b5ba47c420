// What the program says on standard error, and its exit status.
#pragma once

#include <string>
#include <vector>

namespace zolview {

enum ExitStatus : int { exitDone = 0, exitRefused = 1, exitUsage = 2 };

/// Writes "zolview: ..." as one line, whatever the message. Returns the status.
ExitStatus fail(ExitStatus status, const std::string& message);

/// Writes a line "zolview: input: ..." for each of the notes.
void tell(const std::string& input, const std::vector<std::string>& notes);

}  // namespace zolview
