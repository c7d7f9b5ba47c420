// The host's choice of fonts: a font that can show a given string.
#pragma once

#include "platform/platform.h"

#if defined(ZOLWEBMLANG_BUILDING)
#define ZOLWEBMLANG_API ZOL_EXPORT
#elif defined(ZOLWEBMLANG_STATIC)
#define ZOLWEBMLANG_API
#else
#define ZOLWEBMLANG_API ZOL_IMPORT
#endif

/// Character-set types 0 to 31 are DICOM's specific character set terms in a fixed order; 32 means: judge by the
/// string.
inline constexpr int ZOL_CHARSET_UNDEFINED = 32;

/// Makes fonts whose face covers a string. Holds no resources of its own.
class ZOLWEBMLANG_API ZolCharsetSupport {
public:
    ZolCharsetSupport();
    ~ZolCharsetSupport();  // NOLINT(performance-trivially-destructible): hosts may replace this library

    /// Attaches to `font` a font of the given face and average character width (pixels; height follows) that can show
    /// `text`; another face is chosen when that one lacks its characters. A font that `font` held is deleted first.
    /// False, and `font` empty, for null arguments, a width below 1, or when no font can be made.
    bool CreateFontForStr(const wchar_t* text, CFont& font, int charsetType, const wchar_t* faceName, int width);
};
