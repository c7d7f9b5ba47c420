// The commands of the program.
#pragma once

#include "zolview/messages.h"
#include "zolview/options.h"

namespace zolview {

/// Carries out what the command line asks for, and says on standard error what went wrong.
ExitStatus run(Options options);

}  // namespace zolview
