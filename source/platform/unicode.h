// Characters in and out of UTF-8 and wide strings. Wide strings are UTF-16 or UTF-32, as wchar_t is wide.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace zolplatform {

/// Shown in place of what is no character.
inline constexpr char32_t replacementCharacter = 0xFFFD;

constexpr bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

/// False for surrogates and beyond Unicode's end.
constexpr bool isCharacter(char32_t code) {
    return code <= 0x10FFFF && !isHighSurrogate(code) && !isLowSurrogate(code);
}

/// A number as it stands in a wide string, never negative.
constexpr char32_t unitOf(wchar_t unit) { return static_cast<std::make_unsigned_t<wchar_t>>(unit); }

/// The number at the beginning of a terminated wide string that is not empty, which moves behind it: a pair of
/// surrogates as one character, everything else as it stands, whether it is a character or not.
constexpr char32_t takeFirst(const wchar_t*& text) {
    const char32_t unit = unitOf(*text++);
    if (!isHighSurrogate(unit) || !isLowSurrogate(unitOf(*text))) return unit;
    return 0x10000 + ((unit - 0xD800) << 10U) + (unitOf(*text++) - 0xDC00);
}

/// Calls put(byte) for the bytes of a character, and for those of the replacement character where it is none. Takes no
/// memory.
template <typename Put>
void encodeUtf8(char32_t code, const Put& put) {
    if (!isCharacter(code)) code = replacementCharacter;
    const auto byte = [&](char32_t mark, unsigned int shift, char32_t bits) {
        put(static_cast<unsigned char>(mark | ((code >> shift) & bits)));
    };
    if (code < 0x80) {
        byte(0, 0, 0x7F);
    } else if (code < 0x800) {
        byte(0xC0, 6, 0x1F);
    } else if (code < 0x10000) {
        byte(0xE0, 12, 0x0F);
        byte(0x80, 6, 0x3F);
    } else {
        byte(0xF0, 18, 0x07);
        byte(0x80, 12, 0x3F);
        byte(0x80, 6, 0x3F);
    }
    if (code >= 0x80) byte(0x80, 0, 0x3F);
}

inline void appendUtf8(std::string& out, char32_t code) {
    encodeUtf8(code, [&out](unsigned char byte) { out += static_cast<char>(byte); });
}

inline std::string toUtf8(const wchar_t* text) {
    std::string out;
    while (*text != L'\0') appendUtf8(out, takeFirst(text));
    return out;
}

/// A character of a text in UTF-8.
struct Utf8Character {
    char32_t code = 0;
    std::size_t length = 0;  ///< in bytes; 0 where the text does not begin with a character
};

/// The first character of a text that is not empty. What is cut off, written with more bytes than it needs, or no
/// character is none.
constexpr Utf8Character firstOfUtf8(std::string_view text) {
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    if (byte(0) < 0x80U) return {byte(0), 1};
    const std::size_t length = byte(0) >= 0xF0U ? 4 : byte(0) >= 0xE0U ? 3 : 2;
    if (byte(0) < 0xC0U || byte(0) >= 0xF8U || text.size() < length) return {};
    constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    char32_t code = byte(0) & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80U) return {};
        code = (code << 6U) | (byte(i) & 0x3FU);
    }
    return code >= smallest[length] && isCharacter(code) ? Utf8Character{code, length} : Utf8Character{};
}

inline void appendWide(std::wstring& out, char32_t code) {
    if (sizeof(wchar_t) == 2 && code > 0xFFFF) {
        out += static_cast<wchar_t>(0xD7C0 + (code >> 10U));
        out += static_cast<wchar_t>(0xDC00 + (code & 0x3FFU));
    } else {
        out += static_cast<wchar_t>(code);
    }
}

/// Nothing where the text is no UTF-8.
inline std::optional<std::wstring> fromUtf8(std::string_view text) {
    std::wstring out;
    while (!text.empty()) {
        const Utf8Character character = firstOfUtf8(text);
        if (character.length == 0) return std::nullopt;
        appendWide(out, character.code);
        text.remove_prefix(character.length);
    }
    return out;
}

}  // namespace zolplatform
