// The face for a string, chosen by fontconfig.
#include "zolwebmlang/charset.h"

#include <fontconfig/fontconfig.h>

#include <memory>
#include <string>

namespace zolwebmlang {

namespace {

struct Release {
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
    void operator()(FcCharSet* characters) const { FcCharSetDestroy(characters); }
};
using Pattern = std::unique_ptr<FcPattern, Release>;
using Characters = std::unique_ptr<FcCharSet, Release>;

std::string toUtf8(const wchar_t* text) {
    std::string out;
    for (; *text != L'\0'; ++text) {
        FcChar8 bytes[FC_UTF8_MAX_LEN];
        const int count = FcUcs4ToUtf8(static_cast<FcChar32>(*text), bytes);
        for (int i = 0; i < count; ++i) out += static_cast<char>(bytes[i]);
    }
    return out;
}

std::wstring fromUtf8(const FcChar8* text) {
    std::wstring out;
    int left = 0;
    while (text[left] != 0) ++left;
    while (left > 0) {
        FcChar32 character = 0;
        const int used = FcUtf8ToUcs4(text, &character, left);
        if (used <= 0) return {};
        out += static_cast<wchar_t>(character);
        text += used;
        left -= used;
    }
    return out;
}

/// The language that tells apart faces whose ideographs differ in shape; null where nothing hangs on it.
const char* languageOf(BYTE charset) {
    switch (charset) {
        case SHIFTJIS_CHARSET:
            return "ja";
        case HANGUL_CHARSET:
            return "ko";
        case GB2312_CHARSET:
            return "zh-cn";
        default:
            return nullptr;
    }
}

const FcChar8* bytes(const char* text) { return reinterpret_cast<const FcChar8*>(text); }

}  // namespace

std::wstring faceFor(const std::u32string& text, BYTE charset, const wchar_t* askedFace) {
    const Pattern wanted(FcPatternCreate());
    const Characters characters(FcCharSetCreate());
    if (!wanted || !characters) return askedFace;
    for (const char32_t character : text) FcCharSetAddChar(characters.get(), character);
    // Missing characters weigh more than the family, and the family more than the language.
    FcPatternAddString(wanted.get(), FC_FAMILY, bytes(toUtf8(askedFace).c_str()));
    FcPatternAddCharSet(wanted.get(), FC_CHARSET, characters.get());
    FcPatternAddBool(wanted.get(), FC_SCALABLE, FcTrue);
    if (const char* language = languageOf(charset)) {
        FcPatternAddString(wanted.get(), FC_LANG, bytes(language));
        // Keeps fontconfig from adding the user's language, whose rules for a family would come before these.
        FcPatternAddString(wanted.get(), FC_LANG, bytes("und"));
    }
    FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern);
    FcDefaultSubstitute(wanted.get());

    FcResult result = FcResultNoMatch;
    const Pattern found(FcFontMatch(nullptr, wanted.get(), &result));
    // A family can have several names; a font record takes one of at most 31 characters.
    FcChar8* name = nullptr;
    for (int i = 0; found && FcPatternGetString(found.get(), FC_FAMILY, i, &name) == FcResultMatch; ++i) {
        std::wstring face = fromUtf8(name);
        if (!face.empty() && face.size() < LF_FACESIZE) return face;
    }
    return askedFace;
}

}  // namespace zolwebmlang
