#include "zolwebmlang/zolwebmlang.h"

#include "zolwebmlang/charset.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <string>

namespace {

/// Average width of the font's characters; 0 when it cannot be measured.
LONG averageWidth(const LOGFONTW& description) {
    CFont font;
    HDC dc = CreateCompatibleDC(nullptr);
    TEXTMETRICW metrics{};
    if (dc != nullptr && font.CreateFontIndirectW(&description) != FALSE) {
        HGDIOBJ previous = SelectObject(dc, font.GetSafeHandle());
        GetTextMetricsW(dc, &metrics);
        SelectObject(dc, previous);
    }
    if (dc != nullptr) DeleteDC(dc);
    return metrics.tmAveCharWidth;
}

/// The em's height that gives the font's characters the average width as they are, neither squeezed nor stretched.
LONG emHeight(LOGFONTW description, LONG width) {
    constexpr LONG measured = 512;
    description.lfHeight = -measured;
    description.lfWidth = 0;
    const LONG average = averageWidth(description);
    constexpr LONG usual = measured * 4 / 9;
    const LONG divisor = average > 0 ? average : usual;
    return std::max<LONG>((measured * width + divisor / 2) / divisor, 1);
}

LOGFONTW describe(const wchar_t* text, int charsetType, const wchar_t* askedFace, int width) {
    constexpr int widest = 4096;
    const std::u32string characters = zolwebmlang::visibleCharacters(text);
    LOGFONTW font{};
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = zolwebmlang::charsetOf(characters, charsetType);
    font.lfQuality = static_cast<BYTE>(ANTIALIASED_QUALITY);  // colour fringes would show in a halo
    font.lfPitchAndFamily = static_cast<BYTE>(DEFAULT_PITCH | FF_SWISS);
    const std::wstring face = zolwebmlang::faceFor(characters, font.lfCharSet, askedFace);
    std::copy_n(face.begin(), std::min(face.size(), std::size_t{LF_FACESIZE - 1}), font.lfFaceName);
    font.lfWidth = std::min(width, widest);
    font.lfHeight = -emHeight(font, font.lfWidth);
    return font;
}

}  // namespace

ZolCharsetSupport::ZolCharsetSupport() = default;

ZolCharsetSupport::~ZolCharsetSupport() = default;

// NOLINTNEXTLINE(readability-convert-member-functions-to-static): hosts may replace this library
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
