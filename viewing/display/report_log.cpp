#include "viewing/display/report_log.h"

#include <string_view>

namespace viewing {

// The library hands its messages over as copies.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
void ReportLog::handle(CStringW tag, wchar_t* /*file*/, int /*line*/, CStringW message, ErrorCategory /*category*/) {
    const std::wstring_view kind = tag.GetString();
    if (kind == L"CS-D" || !text().empty()) return;
    // The library's messages are plain ASCII.
    for (const wchar_t c : std::wstring_view(message.GetString()))
        text() += c >= L' ' && c <= L'~' ? static_cast<char>(c) : '?';
}

}  // namespace viewing
