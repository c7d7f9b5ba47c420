#include "zollog/zollog.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <type_traits>

namespace {

constexpr std::uint32_t replacement = 0xFFFD;

struct LogState {
    // Recursive, because a sink may itself log or install another sink.
    std::recursive_mutex mutex;
    MorvaLogSink sink = nullptr;
};

// Never destroyed: whatever unloads last may still log.
LogState& logState() {
    static auto& state = *new LogState;
    return state;
}

bool isHighSurrogate(std::uint32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool isLowSurrogate(std::uint32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }
std::uint32_t unitOf(wchar_t character) { return static_cast<std::make_unsigned_t<wchar_t>>(character); }

// The code point at `text`, which moves behind it. Wide characters are UTF-16 or UTF-32 by platform; surrogates without
// their partner and values beyond Unicode read as the replacement character.
std::uint32_t nextCodePoint(const wchar_t*& text) {
    const std::uint32_t unit = unitOf(*text++);
    if (isHighSurrogate(unit) && isLowSurrogate(unitOf(*text))) {
        const std::uint32_t low = unitOf(*text++);
        return 0x10000 + ((unit - 0xD800) << 10U) + (low - 0xDC00);
    }
    return isHighSurrogate(unit) || isLowSurrogate(unit) || unit > 0x10FFFF ? replacement : unit;
}

// Collects a line in place: what has to say that memory is exhausted must not ask for any.
class StandardErrorLine {
public:
    StandardErrorLine() = default;
    StandardErrorLine(const StandardErrorLine&) = delete;
    StandardErrorLine& operator=(const StandardErrorLine&) = delete;
    ~StandardErrorLine() {
        put('\n');
        write();
        std::fflush(stderr);
    }

    void putCodePoint(std::uint32_t code) {
        if (code < 0x80) {
            put(code);
        } else if (code < 0x800) {
            put(0xC0U | (code >> 6U));
            putTail(code);
        } else if (code < 0x10000) {
            put(0xE0U | (code >> 12U));
            putTail(code >> 6U);
            putTail(code);
        } else {
            put(0xF0U | (code >> 18U));
            putTail(code >> 12U);
            putTail(code >> 6U);
            putTail(code);
        }
    }

    // Control characters become blanks, so that one call stays one line.
    void putText(const wchar_t* text) {
        while (*text != L'\0') {
            const std::uint32_t code = nextCodePoint(text);
            putCodePoint(code < 0x20 || code == 0x7F ? ' ' : code);
        }
    }

private:
    void putTail(std::uint32_t bits) { put(0x80U | (bits & 0x3FU)); }
    void put(std::uint32_t byte) {
        if (used_ == sizeof bytes_) write();
        bytes_[used_++] = static_cast<unsigned char>(byte);
    }
    void write() {
        std::fwrite(bytes_, 1, used_, stderr);
        used_ = 0;
    }

    unsigned char bytes_[512];
    std::size_t used_ = 0;
};

void writeToStandardError(const wchar_t* tag, const wchar_t* text) {
    StandardErrorLine line;
    line.putText(tag);
    line.putText(L": ");
    line.putText(text);
}

const wchar_t* orNull(const wchar_t* text) { return text != nullptr ? text : L"(null)"; }

}  // namespace

void MorvaLog(const wchar_t* tag, const wchar_t* text) {
    LogState& state = logState();
    const std::lock_guard lock(state.mutex);
    const MorvaLogSink sink = state.sink != nullptr ? state.sink : &writeToStandardError;
    sink(orNull(tag), orNull(text));
}

MorvaLogSink SetMorvaLogSink(MorvaLogSink sink) {
    LogState& state = logState();
    const std::lock_guard lock(state.mutex);
    const MorvaLogSink before = state.sink;
    state.sink = sink;
    return before;
}
