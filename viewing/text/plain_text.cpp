#include "viewing/text/plain_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace viewing {

namespace {

/// The first character of a text.
struct Character {
    std::uint32_t code = 0;
    std::size_t length = 0;  ///< in bytes; 0 where the text does not begin with a character
};

Character first(std::string_view text) {
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    if (byte(0) < 0x80U) return {byte(0), 1};
    const std::size_t length = byte(0) >= 0xF0U ? 4 : byte(0) >= 0xE0U ? 3 : 2;
    // The smallest code of each length: what is written with more bytes than it needs is no character.
    constexpr std::uint32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    constexpr std::uint32_t largest = 0x10FFFF;
    std::uint32_t code = byte(0) & (0x7FU >> length);
    if (byte(0) < 0xC0U || byte(0) >= 0xF8U || text.size() < length) return {};
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80U) return {};
        code = (code << 6U) | (byte(i) & 0x3FU);
    }
    const bool isSurrogate = code >= 0xD800U && code <= 0xDFFFU;
    return code < smallest[length] || code > largest || isSurrogate ? Character{} : Character{code, length};
}

}  // namespace

std::string plainText(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        const Character character = first(text);
        const std::uint32_t code = character.code;
        if (code == '\n' || code == '\r' || code == '\t') {
            out += ' ';
        } else if (code < 0x20U || (code >= 0x7FU && code < 0xA0U)) {
            out += '?';
        } else {
            out += text.substr(0, character.length);
        }
        text.remove_prefix(std::max<std::size_t>(character.length, 1));
    }
    return out;
}

}  // namespace viewing
