#pragma once

#include "zolcs/ccsexport.h"
#include "zollog/zollog.h"

/// The process-wide channel through which every class reports failures, warnings and debug traces to the host.
///
/// There is one slot for a handler, and it is not locked: install the handler before any other call and remove it at
/// shutdown. The handler runs on the thread that reports.
class ZOLWEBCS_API CCsError {
public:
    /// Receives the tag ("CS-D", "CS-E" or "CS-W"), the reporting module, the line, the text and a category (always 0).
    using Handler = void (*)(CStringW tag, wchar_t* file, int line, CStringW message, ErrorCategory category);

    /// Installs the handler. If there is one already, reports that to it and replaces it all the same.
    explicit CCsError(Handler handler);

    /// Removes the installed handler, also one that another object installed.
    ~CCsError();

    CCsError(const CCsError&) = delete;
    CCsError& operator=(const CCsError&) = delete;

    /// Reports "<message> <number> " with the tag "CS-D"; the number is unsigned. Does nothing for a null message or
    /// file.
    static void debug(const wchar_t* message, unsigned long number, const wchar_t* file, int line);

    /// Reports "<message> <number> " with the tag "CS-E". A null message prints as "(null)".
    static void error(const wchar_t* message, long number, const wchar_t* file, int line);

    /// As `error`, with the tag "CS-W".
    static void warning(const wchar_t* message, long number, const wchar_t* file, int line);

private:
    static Handler theErrorP;
};
