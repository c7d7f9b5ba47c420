#include "viewing/text/plain_text.h"

#include "platform/unicode.h"

#include <algorithm>
#include <cstddef>

namespace viewing {

std::string plainText(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        const zolplatform::Utf8Character character = zolplatform::firstOfUtf8(text);
        const char32_t code = character.code;
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
