#pragma once

// __traceContext marks a scope: its constructor emits
//     ">>> Start Trace Context: <name>\n"
// and its destructor
//     "<<< End Trace Context: <name>\n"
// to __DOUT__ (toDebugOutput true) or into the log buffer as __FOUT__ does
// (false). Nothing else: no timing, no nesting depth, no indentation.
//
// Copies emit no start line but do emit an end line when they go, so a copy
// adds one unmatched end line. The end line goes where the object's flag
// says at destruction, which an assignment may have changed.

#include <iosfwd>

#include "../foundation/ZKExport.h"
#include "../foundation/ZKString.h"

class ZK_API __traceContext {
public:
    // The name is the stream's unread text (draining it) up to its first NUL.
    __traceContext(std::ostream& stream, bool toDebugOutput);
    // printf-style name; the format's arguments follow the flag.
    __traceContext(char const* format, bool toDebugOutput, ...);
    __traceContext(__traceContext const& other);
    __traceContext& operator=(__traceContext const& other);
    ~__traceContext();

private:
    void Emit(char const* marker);

    ZKString name;
    bool toDebugOutput;
};
