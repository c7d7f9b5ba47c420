// The font of annotations.
#pragma once

#include "platform/platform.h"

#include <string>

namespace viewing {

/// The font in which annotations begin; CoveringFont takes over for texts that it cannot show.
class Font {
public:
    /// Burning in recognises drawn pixels by their exact colour, and so needs hard edges.
    enum class Edges { Hard, Smooth };

    /// Letters of this height, in units of the device context.
    Font(int height, Edges edges)
        : handle_(CreateFontW(-height, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0,
                              edges == Edges::Hard ? NONANTIALIASED_QUALITY : ANTIALIASED_QUALITY, 0, L"DejaVu Sans")) {
    }
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;
    ~Font() { DeleteObject(handle_); }

    /// The font, which lives as long as this object.
    [[nodiscard]] HFONT handle() const { return handle_; }

private:
    HFONT handle_;
};

/// Selects into a device context, for as long as it lives, the font that is selected there in a face that can show a
/// text. The font stays as it is where no such face is found.
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
