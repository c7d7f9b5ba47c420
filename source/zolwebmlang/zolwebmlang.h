// The host's choice of fonts: finds a font that can show a given string.
#pragma once

#include "platform/platform.h"

#if defined(ZOLWEBMLANG_BUILDING)
#define ZOLWEBMLANG_API ZOL_EXPORT
#elif defined(ZOLWEBMLANG_STATIC)
#define ZOLWEBMLANG_API
#else
#define ZOLWEBMLANG_API ZOL_IMPORT
#endif

/// Character-set types 0 to 31 are DICOM's specific character set terms in a fixed order; 32 means that the string
/// decides.
inline constexpr int ZOL_CHARSET_UNDEFINED = 32;

/// Makes fonts whose face covers a string. The object holds no resources.
class ZOLWEBMLANG_API ZolCharsetSupport {
public:
    ZolCharsetSupport();
    ~ZolCharsetSupport();  // NOLINT(performance-trivially-destructible): hosts may replace this library

    /// Attaches to `font` a font of the given face and average character width in pixels (its height follows) that can
    /// show `text`. Chooses another face when the given one lacks characters of the text. A font that `font` held is
    /// deleted first. Returns false and leaves `font` empty for null arguments, a width below 1, or when no font can be
    /// made.
    bool CreateFontForStr(const wchar_t* text, CFont& font, int charsetType, const wchar_t* faceName, int width);
};
