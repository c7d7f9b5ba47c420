// Render modes: what an overlay is drawn for, which decides its coordinates, line widths and colours.
#pragma once

inline constexpr int CCS_MODE_SCREEN = 1;          ///< on the screen
inline constexpr int CCS_MODE_PRINTER = 2;         ///< on a printer's page
inline constexpr int CCS_MODE_BITMAP_PRINTER = 3;  ///< into a frame's bitmap, which is then printed
inline constexpr int CCS_MODE_BURN_IN = 4;         ///< into an image's pixels, with lines as thick as the text asks for
