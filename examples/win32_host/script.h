// A run without a user: the same messages that a user's hand causes, and a look at what came of them.
#pragma once

#include "view.h"

#include <filesystem>

namespace win32host {

/// Drags the annotation, zooms in, prints into a metafile and leaves pictures of the window (screenshot.bmp) and of the
/// played metafile (metafile.bmp, beside metafile.emf) in the folder. True when image and annotation are where they
/// should be in all of them; says what is not.
bool runScript(HWND window, View& view, const std::filesystem::path& folder);

}  // namespace win32host
