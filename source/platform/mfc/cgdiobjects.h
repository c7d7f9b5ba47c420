// CFont: the owner of a font handle.
#pragma once

#include "platform/mfc/win32.h"

/// Owns at most one font and deletes it with itself.
class CFont {
public:
    CFont() = default;
    ~CFont() { DeleteObject(); }
    CFont(const CFont&) = delete;
    CFont& operator=(const CFont&) = delete;

    /// Makes and owns a font. FALSE when that fails or a font is owned already, which then stays.
    BOOL CreateFontIndirectW(const LOGFONTW* logFont) {
        if (m_hObject != nullptr) return FALSE;
        return Attach(::CreateFontIndirectW(logFont));
    }

    /// Takes over a font. FALSE for null, and when a font is owned already, which then stays.
    BOOL Attach(HGDIOBJ font) {
        if (m_hObject != nullptr || font == nullptr) return FALSE;
        m_hObject = font;
        return TRUE;
    }

    /// Gives up the font without deleting it. Null when there is none.
    HGDIOBJ Detach() {
        HGDIOBJ font = m_hObject;
        m_hObject = nullptr;
        return font;
    }

    /// Deletes the font. FALSE when there is none.
    BOOL DeleteObject() {
        HGDIOBJ font = Detach();
        return font != nullptr ? ::DeleteObject(font) : FALSE;
    }

    [[nodiscard]] HGDIOBJ GetSafeHandle() const { return m_hObject; }
    operator HFONT() const { return static_cast<HFONT>(m_hObject); }

    /// Bytes written: sizeof(LOGFONTW), or 0 when there is no font.
    int GetLogFont(LOGFONTW* logFont) const {
        return m_hObject != nullptr ? ::GetObjectW(m_hObject, sizeof(LOGFONTW), logFont) : 0;
    }

    HGDIOBJ m_hObject = nullptr;
};
