// How the library's own code reports a failure: each report is a constant beside the member that makes it.
#pragma once

#include "zolcs/ccserror.h"

namespace zolcs {

/// One place that reports: its text, its module ("source\zolcs\<module>") and its line number. The numbers are part of
/// what hosts see, so they are constants and never follow the file's own lines.
struct ReportSite {
    const wchar_t* message;
    const wchar_t* module;
    int line;
};

/// Reports the failure with a number and gives back `result`, so that a refusal is one statement.
inline int fail(const ReportSite& site, long number, int result) {
    CCsError::error(site.message, number, site.module, site.line);
    return result;
}

/// Reports a failure as `fail` does and gives false, for whoever asks whether to go on.
inline bool refuse(const ReportSite& site, long number) { return fail(site, number, 0) != 0; }

}  // namespace zolcs
