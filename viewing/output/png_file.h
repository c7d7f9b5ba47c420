// Pictures to PNG files.
#pragma once

#include "viewing/image/picture.h"
#include "viewing/image/refusal.h"

#include <string>

namespace viewing {

/// Writes an 8-bit PNG: grey when every pixel is grey, RGB otherwise. A refusal leaves no half-written file behind.
void writePng(const Picture& picture, const std::string& path);

}  // namespace viewing
