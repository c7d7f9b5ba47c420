// What the library reports while an object of this class lives.
#pragma once

#include "viewing/image/refusal.h"
#include "viewing/image/stored_image.h"
#include "zolcs/ccserror.h"

#include <string>

namespace viewing {

/// Collects the first report. Only one may live at a time, since the library reports to one handler.
class ReportLog {
public:
    ReportLog() : error_(&ReportLog::handle) { text().clear(); }

    /// Throws a Refusal with the first report, if there is one.
    static void check() {
        if (!text().empty()) throw Refusal("the picture could not be made: " + text());
    }

    /// Forgets the report, so that the next one counts as the first.
    static void forget() { text().clear(); }

private:
    static std::string& text() {
        static std::string first;
        return first;
    }
    static void handle(CStringW tag, wchar_t* file, int line, CStringW message, ErrorCategory category);

    CCsError error_;
};

}  // namespace viewing
