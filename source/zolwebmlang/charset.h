// Which scripts a string is written in, and which face can show them.
#pragma once

#include "zolwebmlang/zolwebmlang.h"

#include <string>

namespace zolwebmlang {

/// The code points of a string that a font must have a glyph for: no control, joining or direction characters, nothing
/// that is not a character.
std::u32string visibleCharacters(const wchar_t* text);

/// The GDI character set for a string. The script that most of its characters belong to decides; what the string
/// leaves open (Latin letters, ideographs without kana or hangul) is settled by the DICOM term, where it names one.
BYTE charsetOf(const std::u32string& text, int charsetType);

/// The face that shows the string: the asked one if it has all characters, else one that covers it, as far as there is
/// any.
std::wstring faceFor(const std::u32string& text, BYTE charset, const wchar_t* askedFace);

}  // namespace zolwebmlang
