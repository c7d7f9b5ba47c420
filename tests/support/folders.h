// Where the project's own files are when its tests run.
#pragma once

#include <filesystem>

namespace zoltest {

/// The checkout: $ZOL_SOURCE_FOLDER, or where the tests were built from.
std::filesystem::path sourceFolder();

/// Where tests may leave files for people to look at: $ZOL_BUILD_FOLDER, or where the tests were built.
std::filesystem::path buildFolder();

}  // namespace zoltest
