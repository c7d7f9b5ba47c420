// A recording double of the drawing seam. Its functions take the place of the seam's own in a test program: each writes
// its call down as a line of text and goes on to the real one.
//
// Objects are named after what they are: "pen solid 1 0x0000ff" (style, width, colour), "brush 0x000000",
// "region 7 7 12 12" (left, top, right, bottom), "font -20 400" (lfHeight, lfWeight), "bitmap 8 -3 32" (width, height,
// bits a pixel). What was selected when recording began is the caller's: "caller's pen", "caller's brush", "caller's
// font"; what a new device context begins with is "first bitmap" and, where that is not the caller's, "first font".
//
// On Linux a program's own symbols come before those of shared libraries; on Windows the library's import tables are
// redirected.
#pragma once

#include "platform/platform.h"

#include <optional>
#include <string>
#include <vector>

namespace zoltest {

/// Records while it lives. One at a time.
class GdiRecorder {
public:
    explicit GdiRecorder(HDC dc);
    ~GdiRecorder();
    GdiRecorder(const GdiRecorder&) = delete;
    GdiRecorder& operator=(const GdiRecorder&) = delete;

    /// The calls since the beginning or the last take, each with a line end.
    std::string take();

    std::optional<int> dotsPerInch;  ///< down the page: what GetDeviceCaps tells instead of the truth
    std::optional<LONG> textHeight;  ///< tmHeight in GetTextMetricsW
    std::optional<SIZE> textExtent;  ///< of GetTextExtentPoint32W
    std::optional<LONG> hostFont;    ///< lfHeight of the fonts that CreateFontForStr makes; 0: it makes none
    std::optional<int> linesDone;    ///< what StretchDIBits returns, without copying anything
    bool objectsFail = false;        ///< Create calls give null, like a system without objects
    std::string failing;             ///< calls whose line begins so fail, too, and are written as "fail to ..."
};

}  // namespace zoltest
