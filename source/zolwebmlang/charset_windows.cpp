// The face for a string on Windows: GDI's font mapper weighs the character set before the name, so that the asked face
// stands and the mapper replaces it where it lacks the script.
#include "zolwebmlang/charset.h"

namespace zolwebmlang {

std::wstring faceFor(const std::u32string& /*text*/, BYTE /*charset*/, const wchar_t* askedFace) { return askedFace; }

}  // namespace zolwebmlang
