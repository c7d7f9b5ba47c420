// Pictures to PNG files.
#pragma once

#include "viewing/image/picture.h"
#include "viewing/image/refusal.h"

#include <string>

namespace viewing {

/// Writes a PNG file of 8 bits a channel: grey when every pixel is grey, RGB otherwise. Refuses when the file cannot be
/// written completely, with the system's reason, and then leaves no part of it behind.
void writePng(const Picture& picture, const std::string& path);

}  // namespace viewing
