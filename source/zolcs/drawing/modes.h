// Render modes, and the dark colour that goes with them.
#pragma once

#include "platform/platform.h"

namespace zolcs {

inline constexpr int screenMode = 1;
inline constexpr int printerMode = 2;
inline constexpr int bitmapPrinterMode = 3;  ///< a printer through a frame's bitmap
inline constexpr int textMode = 4;           ///< sizes follow the text, as for burning in

constexpr bool isRenderMode(int mode) { return mode >= screenMode && mode <= textMode; }
constexpr bool isForPrinter(int mode) { return mode == printerMode || mode == bitmapPrinterMode; }

/// Of shadows and halos: black, or nearly black in mode 4 for prints, where pure black would mean "nothing here".
constexpr COLORREF shadowColor(int mode, bool dicomPrint) {
    return mode == textMode && dicomPrint ? 0x010101 : 0x000000;
}

}  // namespace zolcs
