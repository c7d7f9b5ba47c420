// Palettes: 256 colours in which grey levels are shown.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace viewing {

/// Display pixels 0x00RRGGBB, from black to white.
using Palette = std::array<std::uint32_t, 256>;

/// One of the well-known palettes of DICOM PS3.6 annex B.1 by its name: HOT_IRON, PET, HOT_METAL_BLUE, PET_20_STEP,
/// SPRING, SUMMER, FALL or WINTER, in capitals or not; null for any other name.
std::optional<Palette> wellKnownPalette(const std::string& name);

}  // namespace viewing
