#include "zollog/zollog.h"

#include "platform/unicode.h"

#include <cstddef>
#include <cstdio>
#include <mutex>

namespace {

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

/// Collects a line in place: what has to say that memory is exhausted must not ask for any.
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

    /// Control characters become blanks, so that one call stays one line.
    void putText(const wchar_t* text) {
        while (*text != L'\0') {
            const char32_t code = zolplatform::takeFirst(text);
            zolplatform::encodeUtf8(code < 0x20 || code == 0x7F ? U' ' : code,
                                    [this](unsigned char byte) { put(byte); });
        }
    }

private:
    void put(unsigned char byte) {
        if (used_ == sizeof bytes_) write();
        bytes_[used_++] = byte;
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
