// The font of annotations.
#pragma once

#include "platform/platform.h"

#include <string>

namespace viewing {

class Font {
public:
    /// Burning in tells drawn pixels by their exact colour, so that its edges must be hard.
    enum class Edges { Hard, Smooth };

    /// Letters of this height, in units of the device.
    Font(int height, Edges edges)
        : handle_(CreateFontW(-height, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0,
                              edges == Edges::Hard ? NONANTIALIASED_QUALITY : ANTIALIASED_QUALITY, 0, L"DejaVu Sans")) {
    }
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;
    ~Font() { DeleteObject(handle_); }

    [[nodiscard]] HFONT handle() const { return handle_; }

private:
    HFONT handle_;
};

/// The font that is selected in a device context, in a face that can show a text; selected there while this lives.
class CoveringFont {
public:
    CoveringFont(HDC dc, const std::wstring& text);
    CoveringFont(const CoveringFont&) = delete;
    CoveringFont& operator=(const CoveringFont&) = delete;
    ~CoveringFont();

private:
    HDC dc_;
    HFONT handle_ = nullptr;
    HGDIOBJ before_ = nullptr;
};

}  // namespace viewing
