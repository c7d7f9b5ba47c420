#include "support/folders.h"

#include <cstdlib>

namespace {

std::filesystem::path folder(const char* variable, const char* built) {
    const char* set = std::getenv(variable);
    return set != nullptr ? set : built;
}

}  // namespace

std::filesystem::path zoltest::sourceFolder() { return folder("ZOL_SOURCE_FOLDER", ZOL_SOURCE_DIR); }

std::filesystem::path zoltest::buildFolder() { return folder("ZOL_BUILD_FOLDER", ZOL_BINARY_DIR); }
