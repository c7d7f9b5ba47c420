#include "zolcs/ccserror.h"

#include <cstddef>
#include <cstdint>

#include "zolcs/support/report.h"

namespace {

constexpr zolcs::ReportSite secondHandler{L"Cannot create a second exit handler object", L"source\\zolcs\\ccserror",
                                          56};

// A line of text that is cut where its room ends.
class BoundedText {
public:
    void append(const wchar_t* text) {
        while (*text != L'\0') append(*text++);
    }
    void append(wchar_t character) {
        if (length_ < capacity) text_[length_++] = character;
    }
    void append(std::uint32_t number) {
        if (number >= 10) append(number / 10);
        append(static_cast<wchar_t>(L'0' + static_cast<wchar_t>(number % 10)));
    }
    void append(std::int32_t number) {
        const auto bits = static_cast<std::uint32_t>(number);
        if (number < 0) append(L'-');
        append(number < 0 ? 0U - bits : bits);
    }
    [[nodiscard]] const wchar_t* text() const { return text_; }

private:
    static constexpr std::size_t capacity = 254;
    wchar_t text_[capacity + 1] = {};
    std::size_t length_ = 0;
};

// Numbers come as long, whose width differs between platforms; what is printed has 32 bits everywhere.
template <typename Number>
void send(CCsError::Handler handler, const wchar_t* tag, const wchar_t* message, Number number, const wchar_t* file,
          int line) {
    BoundedText text;
    text.append(message != nullptr ? message : L"(null)");
    text.append(L' ');
    text.append(number);
    text.append(L' ');
    // The handler's type has always taken the module's name as writable text; no handler may write to it.
    handler(CStringW(tag), const_cast<wchar_t*>(file), line, CStringW(text.text()), ZOL_CATEGORY_NONE);
}

}  // namespace

CCsError::Handler CCsError::theErrorP = nullptr;

CCsError::CCsError(Handler handler) {
    if (theErrorP != nullptr) zolcs::fail(secondHandler, 0, 0);
    theErrorP = handler;
}

CCsError::~CCsError() { theErrorP = nullptr; }

void CCsError::debug(const wchar_t* message, unsigned long number, const wchar_t* file, int line) {
    if (theErrorP == nullptr || message == nullptr || file == nullptr) return;
    send(theErrorP, L"CS-D", message, static_cast<std::uint32_t>(number), file, line);
}

void CCsError::error(const wchar_t* message, long number, const wchar_t* file, int line) {
    if (theErrorP == nullptr) return;
    send(theErrorP, L"CS-E", message, static_cast<std::int32_t>(number), file, line);
}

void CCsError::warning(const wchar_t* message, long number, const wchar_t* file, int line) {
    if (theErrorP == nullptr) return;
    send(theErrorP, L"CS-W", message, static_cast<std::int32_t>(number), file, line);
}
