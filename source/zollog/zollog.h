// The host's log: one tagged line per call, to a sink that the host can set.
#pragma once

#include "platform/compiler.h"

#if defined(ZOLLOG_BUILDING)
#define ZOLLOG_API ZOL_EXPORT
#else
#define ZOLLOG_API ZOL_IMPORT
#endif

/// Category of a reported message. The display library always passes 0.
enum ErrorCategory : int { ZOL_CATEGORY_NONE = 0 };

/// Receives one log line. Both strings are zero-terminated and valid during the call only. The sink is called from any
/// thread, but never from two at the same time.
using MorvaLogSink = void (*)(const wchar_t* tag, const wchar_t* text);

/// Writes one line "<tag>: <text>" to the sink, or to standard error while no sink is set. Null strings print as
/// "(null)". Can be called from any thread.
ZOLLOG_API void MorvaLog(const wchar_t* tag, const wchar_t* text);

/// Installs a sink; null restores standard error. Returns the previous sink (null for standard error).
ZOLLOG_API MorvaLogSink SetMorvaLogSink(MorvaLogSink sink);
