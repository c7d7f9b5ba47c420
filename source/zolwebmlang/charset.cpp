#include "zolwebmlang/charset.h"

#include "platform/unicode.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

namespace zolwebmlang {

namespace {

constexpr BYTE code(DWORD charset) { return static_cast<BYTE>(charset); }

constexpr BYTE byString = code(DEFAULT_CHARSET);
constexpr DWORD vietnameseCharset = 163;

// The DICOM specific character sets in the order of their types. Terms that cover every script leave the choice to the
// string.
constexpr std::array<BYTE, 32> charsetOfTerm = {
    code(ANSI_CHARSET),        // ISO_IR 6
    code(SHIFTJIS_CHARSET),    // ISO_IR 13
    code(SHIFTJIS_CHARSET),    // ISO_IR 14
    code(ANSI_CHARSET),        // ISO_IR 100
    code(EASTEUROPE_CHARSET),  // ISO_IR 101
    code(TURKISH_CHARSET),     // ISO_IR 109
    code(BALTIC_CHARSET),      // ISO_IR 110
    code(RUSSIAN_CHARSET),     // ISO_IR 144
    code(ARABIC_CHARSET),      // ISO_IR 127
    code(GREEK_CHARSET),       // ISO_IR 126
    code(HEBREW_CHARSET),      // ISO_IR 138
    code(TURKISH_CHARSET),     // ISO_IR 148
    code(THAI_CHARSET),        // ISO_IR 166
    code(GB2312_CHARSET),      // GB18030
    byString,                  // ISO_IR 192
    code(ANSI_CHARSET),        // ISO 2022 IR 6
    code(SHIFTJIS_CHARSET),    // ISO 2022 IR 13
    code(SHIFTJIS_CHARSET),    // ISO 2022 IR 14
    code(ANSI_CHARSET),        // ISO 2022 IR 100
    code(EASTEUROPE_CHARSET),  // ISO 2022 IR 101
    code(TURKISH_CHARSET),     // ISO 2022 IR 109
    code(BALTIC_CHARSET),      // ISO 2022 IR 110
    code(RUSSIAN_CHARSET),     // ISO 2022 IR 144
    code(ARABIC_CHARSET),      // ISO 2022 IR 127
    code(GREEK_CHARSET),       // ISO 2022 IR 126
    code(HEBREW_CHARSET),      // ISO 2022 IR 138
    code(TURKISH_CHARSET),     // ISO 2022 IR 148
    code(THAI_CHARSET),        // ISO 2022 IR 166
    code(SHIFTJIS_CHARSET),    // ISO 2022 IR 87
    code(SHIFTJIS_CHARSET),    // ISO 2022 IR 159
    code(HANGUL_CHARSET),      // ISO 2022 IR 149
    code(GB2312_CHARSET),      // ISO 2022 IR 58
};

/// Code points first to last, and the character set whose fonts have them.
struct Range {
    char32_t first;
    char32_t last;
    BYTE charset;
};

// Han stands as GB2312 until kana or hangul tell otherwise.
constexpr std::array ranges = {
    Range{0x0100, 0x019F, code(EASTEUROPE_CHARSET)}, Range{0x01A0, 0x01A1, code(vietnameseCharset)},
    Range{0x01AF, 0x01B0, code(vietnameseCharset)},  Range{0x01B1, 0x024F, code(EASTEUROPE_CHARSET)},
    Range{0x0370, 0x03FF, code(GREEK_CHARSET)},      Range{0x0400, 0x052F, code(RUSSIAN_CHARSET)},
    Range{0x0590, 0x05FF, code(HEBREW_CHARSET)},     Range{0x0600, 0x06FF, code(ARABIC_CHARSET)},
    Range{0x0750, 0x077F, code(ARABIC_CHARSET)},     Range{0x08A0, 0x08FF, code(ARABIC_CHARSET)},
    Range{0x0E00, 0x0E7F, code(THAI_CHARSET)},       Range{0x1100, 0x11FF, code(HANGUL_CHARSET)},
    Range{0x1EA0, 0x1EF9, code(vietnameseCharset)},  Range{0x1F00, 0x1FFF, code(GREEK_CHARSET)},
    Range{0x2E80, 0x303F, code(GB2312_CHARSET)},     Range{0x3040, 0x30FF, code(SHIFTJIS_CHARSET)},
    Range{0x3130, 0x318F, code(HANGUL_CHARSET)},     Range{0x31F0, 0x31FF, code(SHIFTJIS_CHARSET)},
    Range{0x3400, 0x9FFF, code(GB2312_CHARSET)},     Range{0xA960, 0xA97F, code(HANGUL_CHARSET)},
    Range{0xAC00, 0xD7FF, code(HANGUL_CHARSET)},     Range{0xF900, 0xFAFF, code(GB2312_CHARSET)},
    Range{0xFB1D, 0xFB4F, code(HEBREW_CHARSET)},     Range{0xFB50, 0xFDFF, code(ARABIC_CHARSET)},
    Range{0xFE70, 0xFEFC, code(ARABIC_CHARSET)},     Range{0xFF66, 0xFF9F, code(SHIFTJIS_CHARSET)},
    Range{0xFFA0, 0xFFDC, code(HANGUL_CHARSET)},     Range{0x20000, 0x3FFFF, code(GB2312_CHARSET)},
};

/// ANSI for whatever lies in no range: Latin letters, digits, signs.
BYTE charsetOfCharacter(char32_t character) {
    for (const Range& range : ranges) {
        if (character >= range.first && character <= range.last) return range.charset;
    }
    return code(ANSI_CHARSET);
}

bool needsGlyph(char32_t c) {
    const bool control = c < 0x20 || (c >= 0x7F && c < 0xA0);
    const bool format = (c >= 0x200B && c <= 0x200F) || (c >= 0x2028 && c <= 0x202E) || (c >= 0x2060 && c <= 0x206F) ||
                        (c >= 0xFE00 && c <= 0xFE0F) || c == 0xFEFF;
    const bool noCharacter = !zolplatform::isCharacter(c) || (c & 0xFFFE) == 0xFFFE;
    return !control && !format && !noCharacter;
}

}  // namespace

std::u32string visibleCharacters(const wchar_t* text) {
    std::u32string visible;
    while (*text != L'\0') {
        const char32_t character = zolplatform::takeFirst(text);
        if (needsGlyph(character)) visible += character;
    }
    return visible;
}

BYTE charsetOf(const std::u32string& text, int charsetType) {
    std::array<std::size_t, 256> count{};
    for (const char32_t character : text) ++count[charsetOfCharacter(character)];
    const bool japanese = count[SHIFTJIS_CHARSET] > 0;
    const bool korean = count[HANGUL_CHARSET] > 0;
    if (japanese || korean) {
        count[japanese ? SHIFTJIS_CHARSET : HANGUL_CHARSET] += count[GB2312_CHARSET];
        count[GB2312_CHARSET] = 0;
    }
    count[ANSI_CHARSET] = 0;  // every font has Latin letters
    const auto most = std::distance(count.begin(), std::max_element(count.begin(), count.end()));  // ANSI if all are 0
    const auto decided = static_cast<BYTE>(most);

    const bool named = charsetType >= 0 && charsetType < static_cast<int>(charsetOfTerm.size());
    const BYTE term = named ? charsetOfTerm[static_cast<std::size_t>(charsetType)] : byString;
    const bool eastAsian = term == SHIFTJIS_CHARSET || term == HANGUL_CHARSET || term == GB2312_CHARSET;
    if (term != byString && (decided == ANSI_CHARSET || (decided == GB2312_CHARSET && eastAsian))) return term;
    return decided;
}

}  // namespace zolwebmlang
