// Records what the library reports while it lives.
#pragma once

#include "zolcs/ccserror.h"

#include <ostream>
#include <string>
#include <vector>

namespace zoltest {

struct Report {
    std::wstring tag;
    std::wstring file;
    int line = 0;
    std::wstring text;
    int category = 0;

    bool operator==(const Report&) const = default;
};

inline std::string narrow(const std::wstring& text) {
    std::string out;
    for (const wchar_t c : text) out += (c >= 32 && c < 127) ? static_cast<char>(c) : '?';
    return out;
}

inline std::ostream& operator<<(std::ostream& out, const Report& r) {
    return out << '{' << narrow(r.tag) << " \"" << narrow(r.text) << "\" " << narrow(r.file) << ':' << r.line << '}';
}

/// The report that CCsError::error makes of these arguments: the text is the message, a blank, the number, a blank.
inline Report errorReport(const std::wstring& message, long number, const std::wstring& file, int line) {
    return {L"CS-E", file, line, message + L" " + std::to_wstring(number) + L" ", 0};
}

/// Installs a handler on construction and removes it on destruction. One at a time. Debug traces (tag "CS-D") are
/// kept apart so that expectations on errors stay exact.
class ReportCapture {
public:
    ReportCapture() : error_(&ReportCapture::handle) {
        reports().clear();
        debugReports().clear();
    }

    static std::vector<Report>& reports() {
        static std::vector<Report> list;
        return list;
    }
    static std::vector<Report>& debugReports() {
        static std::vector<Report> list;
        return list;
    }

    /// The reports since construction or the last take.
    static std::vector<Report> take() {
        std::vector<Report> out;
        out.swap(reports());
        return out;
    }

private:
    static void handle(CStringW tag, wchar_t* file, int line, CStringW message, ErrorCategory category) {
        Report r{tag.GetString(), file != nullptr ? file : L"(null)", line, message.GetString(), category};
        (r.tag == L"CS-D" ? debugReports() : reports()).push_back(std::move(r));
    }

    CCsError error_;
};

}  // namespace zoltest
