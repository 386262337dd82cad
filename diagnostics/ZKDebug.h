#pragma once

// The library's two text sinks and the log file.
//
//   __DOUT__  immediate: standard output and the attached debugger.
//   __FOUT__  deferred: appended to one process-wide memory buffer, which
//             reaches the disk only through WRITE_LOG_FILE.
//
// Neither adds anything to the text: no timestamp, no level, no line end.
// Nothing here locks; callers that log from several threads keep their own
// order.
//
// The log buffer only grows. WRITE_LOG_FILE appends the buffer's whole
// history to the file every time, so two calls write it twice; call
// CLEAR_LOG_FILE first to have the file hold each text once. The buffer is a
// standard stream: handing __FOUT__ a stream with nothing to read sets its
// failbit, and from then on every __FOUT__ (of either form) and every
// log-side trace message is dropped until CLEAR_LOG_FILE resets the flags.
// Text that arrived before stays writable.
//
// The debugger: Windows' OutputDebugStringA. On Linux the text goes to
// standard error while a debugger (a tracer) is attached, and nowhere
// otherwise. Standard output gets the whole text; the debugger gets it up to
// its first NUL.

#include <iosfwd>

#include "../foundation/ZKExport.h"
#include "../foundation/ZKString.h"

#if defined(__GNUC__)
#define ZK_DEBUG_PRINTF(formatIndex, firstIndex) __attribute__((__format__(__printf__, formatIndex, firstIndex)))
#else
#define ZK_DEBUG_PRINTF(formatIndex, firstIndex)
#endif

// Moves the unread contents of `stream` (draining it) to standard output and
// the debugger.
ZK_API void __DOUT__(std::ostream& stream);
// printf-style text to standard output and the debugger; no length limit.
ZK_API void __DOUT__(char const* format, ...) ZK_DEBUG_PRINTF(1, 2);
// Moves the unread contents of `stream` into the log buffer.
ZK_API void __FOUT__(std::ostream& stream);
// printf-style text appended to the log buffer.
ZK_API void __FOUT__(char const* format, ...) ZK_DEBUG_PRINTF(1, 2);

// The log file's path is directory + name + extension, joined with nothing
// in between: a directory needs its trailing slash, an extension its dot.
// Defaults: "../logs/", "SYSLOG", ".log". The directory is never created.
ZK_API void SET_LOG_DIRECTORY(char const* directory);
ZK_API ZKString GET_LOG_DIRECTORY();
ZK_API void SET_LOG_FILE_EXT(char const* extension);
ZK_API ZKString GET_LOG_FILE_EXT();
ZK_API void SET_LOG_FILENAME(char const* name);
// The stored name itself, not a copy: valid until the next SET_LOG_FILENAME.
ZK_API char const* GET_LOG_FILENAME();
ZK_API ZKString GET_FULL_LOG_PATH();

// Empties the file (creating it if its directory exists) and resets the log
// buffer's error flags. The buffer's text stays.
ZK_API void CLEAR_LOG_FILE();
// Appends the log buffer's whole text to the file, which is opened and
// closed on each call and shared with other openers. Failures are silent.
ZK_API void WRITE_LOG_FILE();
