#include "ZKTraceContext.h"

#include <cstdarg>
#include <sstream>

#include "../foundation/detail/Globals.h"
#include "ZKDebug.h"

__traceContext::__traceContext(std::ostream& stream, bool debugOutput) : toDebugOutput(debugOutput)
{
    std::stringstream local;
    local << stream.rdbuf();
    name = local.str().c_str();
    Emit(">>> Start Trace Context: ");
}

__traceContext::__traceContext(char const* format, bool debugOutput, ...) : toDebugOutput(debugOutput)
{
    va_list arguments;
    va_start(arguments, debugOutput);
    name = ZKString::FormatStr(format, &arguments);
    va_end(arguments);
    Emit(">>> Start Trace Context: ");
}

__traceContext::__traceContext(__traceContext const& other) : name(other.name), toDebugOutput(other.toDebugOutput) {}

__traceContext& __traceContext::operator=(__traceContext const& other)
{
    if (&name != &other.name) name = other.name;
    toDebugOutput = other.toDebugOutput;
    return *this;
}

__traceContext::~__traceContext()
{
    try {
        Emit("<<< End Trace Context: ");
    } catch (...) {
        // A scope marker must never end the program.
    }
}

void __traceContext::Emit(char const* marker)
{
    std::stringstream line;
    line << marker << name.GetString() << std::endl;
    if (toDebugOutput) __DOUT__(line);
    else zk64::detail::globals.logBuffer << line.rdbuf();
}
