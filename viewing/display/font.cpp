#include "viewing/display/font.h"

#include "zolwebmlang/zolwebmlang.h"

#include <algorithm>
#include <iterator>

namespace viewing {

CoveringFont::CoveringFont(HDC dc, const std::wstring& text) : dc_(dc) {
    constexpr int anyWidth = 10;  // only the face and its character set are taken over
    LOGFONTW description{};
    LOGFONTW covering{};
    CFont chosen;
    const bool known = GetObjectW(GetCurrentObject(dc, OBJ_FONT), sizeof description, &description) != 0 &&
                       ZolCharsetSupport().CreateFontForStr(text.c_str(), chosen, ZOL_CHARSET_UNDEFINED,
                                                            description.lfFaceName, anyWidth) &&
                       chosen.GetLogFont(&covering) != 0;
    if (!known) return;
    std::copy(std::begin(covering.lfFaceName), std::end(covering.lfFaceName), std::begin(description.lfFaceName));
    description.lfCharSet = covering.lfCharSet;
    handle_ = CreateFontIndirectW(&description);
    if (handle_ != nullptr) before_ = SelectObject(dc, handle_);
}

CoveringFont::~CoveringFont() {
    if (before_ != nullptr) SelectObject(dc_, before_);
    if (handle_ != nullptr) DeleteObject(handle_);
}

}  // namespace viewing
