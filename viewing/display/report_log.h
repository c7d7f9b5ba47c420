// What the library reports while an object of this class lives.
#pragma once

#include "viewing/image/refusal.h"
#include "viewing/image/stored_image.h"
#include "zolcs/ccserror.h"

#include <string>

namespace viewing {

/// One at a time, since the library reports to one handler only.
class ReportLog {
public:
    ReportLog() : error_(&ReportLog::handle) { text().clear(); }

    /// Refuses with the first report that came in, if any did.
    static void check() {
        if (!text().empty()) throw Refusal("the picture could not be made: " + text());
    }

    /// Forgets what came in.
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
