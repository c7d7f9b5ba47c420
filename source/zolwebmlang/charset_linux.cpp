// The face for a string, chosen by fontconfig.
#include "platform/unicode.h"
#include "zolwebmlang/charset.h"

#include <fontconfig/fontconfig.h>

#include <memory>

namespace zolwebmlang {

namespace {

struct Release {
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
    void operator()(FcCharSet* characters) const { FcCharSetDestroy(characters); }
};
using Pattern = std::unique_ptr<FcPattern, Release>;
using Characters = std::unique_ptr<FcCharSet, Release>;

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
    FcPatternAddString(wanted.get(), FC_FAMILY, bytes(zolplatform::toUtf8(askedFace).c_str()));
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
        const auto face = zolplatform::fromUtf8(reinterpret_cast<const char*>(name));
        if (face && !face->empty() && face->size() < LF_FACESIZE) return *face;
    }
    return askedFace;
}

}  // namespace zolwebmlang
