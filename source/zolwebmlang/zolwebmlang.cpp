#include "zolwebmlang/zolwebmlang.h"

#include "zolwebmlang/charset.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <string>

namespace {

// Height of the em for an average character width of 1: about what text faces have, so that letters keep their shape.
LONG emHeight(int averageWidth) {
    constexpr int largestWidth = 4096;
    return (std::min(averageWidth, largestWidth) * 9 + 2) / 4;
}

LOGFONTW describe(const wchar_t* text, int charsetType, const wchar_t* askedFace, int width) {
    const std::u32string characters = zolwebmlang::visibleCharacters(text);
    LOGFONTW font{};
    font.lfHeight = -emHeight(width);
    font.lfWidth = width;
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = zolwebmlang::charsetOf(characters, charsetType);
    font.lfQuality = static_cast<BYTE>(ANTIALIASED_QUALITY);  // colour fringes would show in a halo
    font.lfPitchAndFamily = static_cast<BYTE>(DEFAULT_PITCH | FF_SWISS);
    const std::wstring face = zolwebmlang::faceFor(characters, font.lfCharSet, askedFace);
    std::copy_n(face.begin(), std::min(face.size(), std::size_t{LF_FACESIZE - 1}), font.lfFaceName);
    return font;
}

}  // namespace

ZolCharsetSupport::ZolCharsetSupport() = default;

ZolCharsetSupport::~ZolCharsetSupport() = default;

bool ZolCharsetSupport::CreateFontForStr(const wchar_t* text, CFont& font, int charsetType, const wchar_t* faceName,
                                         int width) {
    font.DeleteObject();
    if (text == nullptr || faceName == nullptr || width < 1) return false;
    try {
        const LOGFONTW description = describe(text, charsetType, faceName, width);
        return font.CreateFontIndirectW(&description) != FALSE;
    } catch (const std::exception&) {
        return false;  // out of memory
    }
}
