// CStringW: a string of wide characters.
#pragma once

#include "platform/mfc/win32.h"

#include <cstdio>
#include <cwchar>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>

class CStringW;

namespace zolmfc {

/// One argument of CStringW::Format, with the width of its type, so that a conversion reads exactly what was passed.
struct FormatArgument {
    enum class Kind { integer, real, wide, narrow, pointer };

    template <typename T>
    static FormatArgument of(const T& value);

    /// The value as an integer of its own width, sign-extended.
    [[nodiscard]] std::int64_t asSigned(int bits) const {
        if (kind == Kind::real) return 0;
        const int unused = 64 - (bits < width ? bits : width);
        return static_cast<std::int64_t>(integer << unused) >> unused;
    }
    [[nodiscard]] std::uint64_t asUnsigned(int bits) const {
        if (kind == Kind::real) return 0;
        const int unused = 64 - (bits < width ? bits : width);
        return (integer << unused) >> unused;
    }

    Kind kind = Kind::integer;
    std::uint64_t integer = 0;
    int width = 32;
    double real = 0.0;
    const wchar_t* wide = nullptr;
    const char* narrow = nullptr;
};

/// Formats as the wide functions of the Windows run-time do: %s takes a wide string, %S a narrow one.
class Formatter {
public:
    Formatter(const wchar_t* format, const FormatArgument* arguments, std::size_t count)
        : at_(format), next_(arguments), end_(arguments + count) {}

    std::wstring run() {
        while (*at_ != L'\0') {
            if (*at_ != L'%') {
                out_ += *at_++;
            } else if (at_[1] == L'%') {
                out_ += L'%';
                at_ += 2;
            } else {
                ++at_;
                conversion();
            }
        }
        return std::move(out_);
    }

private:
    static constexpr int widest = 4096;  // of a field; wider ones are cut, so that no format exhausts the memory

    void conversion() {
        std::string flags = "%";
        for (; *at_ != L'\0' && std::wcschr(L"-+ #0", *at_) != nullptr; ++at_) flags += static_cast<char>(*at_);
        int fieldWidth = number();
        if (fieldWidth < 0) {
            flags += '-';
            fieldWidth = -fieldWidth;
        }
        int precision = -1;
        if (*at_ == L'.') {
            ++at_;
            precision = number();
        }
        const int bits = sizeModifier();
        const wchar_t kind = *at_;
        if (kind == L'\0') return;
        ++at_;
        switch (kind) {
            case L's':
            case L'S':
                text(flags, fieldWidth, precision);
                break;
            case L'c':
                character(flags, fieldWidth);
                break;
            case L'd':
            case L'i':
                print(flags + "*.*lld", fieldWidth, precision, static_cast<long long>(take().asSigned(bits)));
                break;
            case L'u':
                print(flags + "*.*llu", fieldWidth, precision, asUnsignedLong(bits));
                break;
            case L'x':
                print(flags + "*.*llx", fieldWidth, precision, asUnsignedLong(bits));
                break;
            case L'X':
                print(flags + "*.*llX", fieldWidth, precision, asUnsignedLong(bits));
                break;
            case L'o':
                print(flags + "*.*llo", fieldWidth, precision, asUnsignedLong(bits));
                break;
            case L'p':
                print("%*.*llX", fieldWidth, static_cast<int>(sizeof(void*)) * 2, asUnsignedLong(64));
                break;
            case L'f':
            case L'F':
            case L'e':
            case L'E':
            case L'g':
            case L'G':
                print(flags + "*.*" + static_cast<char>(kind), fieldWidth, precision, asReal());
                break;
            default:
                out_ += kind;
                break;  // as the run-time does: an unknown conversion stands for itself
        }
    }

    int number() {
        if (*at_ == L'*') {
            ++at_;
            const std::int64_t value = take().asSigned(32);
            return static_cast<int>(value > widest ? widest : (value < -widest ? -widest : value));
        }
        int value = 0;
        for (; *at_ >= L'0' && *at_ <= L'9'; ++at_) {
            value = value * 10 + static_cast<int>(*at_ - L'0');
            if (value > widest) value = widest;
        }
        return value;
    }

    int sizeModifier() {
        int bits = 64;
        if (at_[0] == L'I' && at_[1] == L'6' && at_[2] == L'4') at_ += 3;
        if (at_[0] == L'I' && at_[1] == L'3' && at_[2] == L'2') {
            at_ += 3;
            bits = 32;
        }
        for (; *at_ != L'\0' && std::wcschr(L"hlwLzjt", *at_) != nullptr; ++at_) {
            if (*at_ == L'h') bits = bits == 16 ? 8 : 16;
        }
        return bits;
    }

    const FormatArgument& take() {
        static const FormatArgument missing{};
        return next_ != end_ ? *next_++ : missing;
    }
    unsigned long long asUnsignedLong(int bits) { return take().asUnsigned(bits); }
    double asReal() {
        const FormatArgument& argument = take();
        return argument.kind == FormatArgument::Kind::real ? argument.real : static_cast<double>(argument.asSigned(64));
    }

    template <typename Value>
    void print(const std::string& format, int fieldWidth, int precision, Value value) {
        const int length = std::snprintf(nullptr, 0, format.c_str(), fieldWidth, precision, value);
        if (length <= 0) return;
        std::string text(static_cast<std::size_t>(length) + 1, '\0');
        std::snprintf(text.data(), text.size(), format.c_str(), fieldWidth, precision, value);
        text.pop_back();
        for (const char c : text) out_ += static_cast<wchar_t>(static_cast<unsigned char>(c));
    }

    void text(const std::string& flags, int fieldWidth, int precision) {
        const FormatArgument& argument = take();
        std::wstring value;
        if (argument.kind == FormatArgument::Kind::narrow && argument.narrow != nullptr) {
            for (const char* c = argument.narrow; *c != '\0'; ++c) {
                value += static_cast<wchar_t>(static_cast<unsigned char>(*c));
            }
        } else {
            value = argument.wide != nullptr ? argument.wide : L"(null)";
        }
        if (precision >= 0)
            value.resize(value.size() < static_cast<std::size_t>(precision) ? value.size()
                                                                            : static_cast<std::size_t>(precision));
        pad(value, flags, fieldWidth);
    }

    void character(const std::string& flags, int fieldWidth) {
        pad(std::wstring(1, static_cast<wchar_t>(take().asUnsigned(sizeof(wchar_t) * 8))), flags, fieldWidth);
    }

    void pad(const std::wstring& value, const std::string& flags, int fieldWidth) {
        const auto size = static_cast<std::size_t>(fieldWidth);
        const std::wstring blanks(value.size() < size ? size - value.size() : 0, L' ');
        const bool left = flags.find('-') != std::string::npos;
        out_ += left ? value + blanks : blanks + value;
    }

    const wchar_t* at_;
    const FormatArgument* next_;
    const FormatArgument* end_;
    std::wstring out_;
};

}  // namespace zolmfc

/// A zero-terminated wide string with value semantics. A null pointer counts as the empty string.
class CStringW {
public:
    CStringW() = default;
    CStringW(const wchar_t* text) : text_(text != nullptr ? text : L"") {}
    CStringW(const wchar_t* text, int length) : text_(text, static_cast<std::size_t>(length)) {}

    CStringW& operator=(const wchar_t* text) { return *this = CStringW(text); }

    [[nodiscard]] const wchar_t* GetString() const { return text_.c_str(); }
    operator const wchar_t*() const { return text_.c_str(); }
    [[nodiscard]] int GetLength() const { return static_cast<int>(text_.size()); }
    [[nodiscard]] bool IsEmpty() const { return text_.empty(); }
    void Empty() { text_.clear(); }

    /// The character at an index from 0 to GetLength(), where the last one is the terminator.
    [[nodiscard]] wchar_t GetAt(int index) const { return text_[static_cast<std::size_t>(index)]; }
    wchar_t operator[](int index) const { return GetAt(index); }

    CStringW& operator+=(const CStringW& other) {
        text_ += other.text_;
        return *this;
    }
    CStringW& operator+=(const wchar_t* other) { return *this += CStringW(other); }
    CStringW& operator+=(wchar_t character) {
        text_ += character;
        return *this;
    }

    friend CStringW operator+(CStringW left, const CStringW& right) { return left += right; }
    friend CStringW operator+(CStringW left, const wchar_t* right) { return left += right; }
    friend CStringW operator+(const wchar_t* left, const CStringW& right) { return CStringW(left) += right; }
    friend CStringW operator+(CStringW left, wchar_t right) { return left += right; }

    /// Below, at or above 0 as this string comes before, equals or comes after `other`, character by character.
    [[nodiscard]] int Compare(const wchar_t* other) const { return text_.compare(CStringW(other).text_); }

    friend bool operator==(const CStringW& left, const CStringW& right) { return left.text_ == right.text_; }
    friend bool operator==(const CStringW& left, const wchar_t* right) { return left.Compare(right) == 0; }
    friend bool operator==(const wchar_t* left, const CStringW& right) { return right.Compare(left) == 0; }
    friend bool operator!=(const CStringW& left, const CStringW& right) { return left.text_ != right.text_; }
    friend bool operator!=(const CStringW& left, const wchar_t* right) { return left.Compare(right) != 0; }
    friend bool operator!=(const wchar_t* left, const CStringW& right) { return right.Compare(left) != 0; }
    friend bool operator<(const CStringW& left, const CStringW& right) { return left.text_ < right.text_; }
    friend bool operator<(const CStringW& left, const wchar_t* right) { return left.Compare(right) < 0; }
    friend bool operator<(const wchar_t* left, const CStringW& right) { return right.Compare(left) > 0; }

    /// Index of the first occurrence at or after `start`; -1 when there is none.
    [[nodiscard]] int Find(const wchar_t* part, int start = 0) const {
        if (part == nullptr || start < 0 || start > GetLength()) return -1;
        return index(text_.find(part, static_cast<std::size_t>(start)));
    }
    [[nodiscard]] int Find(wchar_t character, int start = 0) const {
        if (start < 0 || start > GetLength()) return -1;
        return index(text_.find(character, static_cast<std::size_t>(start)));
    }

    /// Parts of the string; counts and positions beyond it are cut.
    [[nodiscard]] CStringW Left(int count) const { return Mid(0, count); }
    [[nodiscard]] CStringW Right(int count) const {
        return count >= GetLength() ? *this : Mid(GetLength() - (count > 0 ? count : 0));
    }
    [[nodiscard]] CStringW Mid(int first, int count = std::numeric_limits<int>::max()) const {
        if (first < 0) first = 0;
        if (count <= 0 || first >= GetLength()) return {};
        CStringW part;
        part.text_ = text_.substr(static_cast<std::size_t>(first), static_cast<std::size_t>(count));
        return part;
    }

    /// Replaces the string by the format with its arguments put in; %s takes a wide string (or a CStringW).
    /// Arguments may be parts of this string.
    template <typename... Arguments>
    void Format(const wchar_t* format, const Arguments&... arguments) {
        text_ = formatted(format, arguments...);
    }

private:
    static int index(std::size_t position) { return position == std::wstring::npos ? -1 : static_cast<int>(position); }

    template <typename... Arguments>
    static std::wstring formatted(const wchar_t* format, const Arguments&... arguments) {
        // One element more than there are arguments: an array cannot be empty.
        const zolmfc::FormatArgument list[] = {zolmfc::FormatArgument::of(arguments)..., {}};
        return zolmfc::Formatter(format != nullptr ? format : L"", list, sizeof...(arguments)).run();
    }

    std::wstring text_;
};

template <typename T>
zolmfc::FormatArgument zolmfc::FormatArgument::of(const T& value) {
    using Plain = std::decay_t<T>;
    FormatArgument argument;
    if constexpr (std::is_same_v<Plain, CStringW>) {
        argument.kind = Kind::wide;
        argument.wide = value.GetString();
    } else if constexpr (std::is_convertible_v<Plain, const wchar_t*>) {
        argument.kind = Kind::wide;
        argument.wide = value;
    } else if constexpr (std::is_convertible_v<Plain, const char*>) {
        argument.kind = Kind::narrow;
        argument.narrow = value;
    } else if constexpr (std::is_pointer_v<Plain>) {
        argument.kind = Kind::pointer;
        argument.integer = reinterpret_cast<std::uintptr_t>(value);
        argument.width = 64;
    } else if constexpr (std::is_floating_point_v<Plain>) {
        argument.kind = Kind::real;
        argument.real = static_cast<double>(value);
    } else {
        static_assert(std::is_integral_v<Plain> || std::is_enum_v<Plain>, "Format takes numbers and strings");
        argument.integer = static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
        argument.width = static_cast<int>(sizeof(Plain)) * 8;
    }
    return argument;
}
