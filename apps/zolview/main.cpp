#include "zolview/commands.h"
#include "zolview/options.h"

#include <iostream>
#include <optional>
#include <string>

// NOLINTNEXTLINE(bugprone-exception-escape): where not even the options fit the memory there is nothing to tell.
int main(int argc, char** argv) {
    try {
        const std::optional<zolview::Options> options = zolview::parseOptions(argc, argv, std::cout);
        return options ? zolview::run(*options) : zolview::exitDone;
    } catch (const zolview::UsageError& error) {
        return zolview::fail(zolview::exitUsage, std::string(error.what()) + " (see zolview --help)");
    }
}
