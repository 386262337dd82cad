#include "ZKDebug.h"

#include <cstdarg>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

#include "../foundation/detail/Globals.h"
#include "../platform/System.h"

using zk64::detail::globals;

namespace {

void ToOutputAndDebugger(std::string const& text)
{
    std::cout.write(text.data(), static_cast<std::streamsize>(text.size()));
    zk64::platform::OutputDebugStringA(text.c_str());
}

// Opens the log file in `mode` (failing silently) and lets `write` use it.
// std::fstream opens files without denying other openers on either system.
template <class Write>
void WithLogFile(std::ios::openmode mode, Write write)
{
    std::ofstream file;
    file.open(GET_FULL_LOG_PATH().GetString(), mode);
    if (!file.is_open()) file.setstate(std::ios::failbit);
    write(file);
    file.close();
}

}  // namespace

void __DOUT__(std::ostream& stream)
{
    std::stringstream local;
    local << stream.rdbuf();
    ToOutputAndDebugger(local.str());
}

void __DOUT__(char const* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    ZKString const text = ZKString::FormatStr(format, &arguments);
    va_end(arguments);
    std::cout << text.GetString();
    zk64::platform::OutputDebugStringA(text.GetString());
}

void __FOUT__(std::ostream& stream) { globals.logBuffer << stream.rdbuf(); }

void __FOUT__(char const* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    ZKString const text = ZKString::FormatStr(format, &arguments);
    va_end(arguments);
    globals.logBuffer << text.GetString();
}

void SET_LOG_DIRECTORY(char const* directory) { globals.logDirectory = directory; }
ZKString GET_LOG_DIRECTORY() { return globals.logDirectory; }
void SET_LOG_FILE_EXT(char const* extension) { globals.logExtension = extension; }
ZKString GET_LOG_FILE_EXT() { return globals.logExtension; }
void SET_LOG_FILENAME(char const* name) { globals.logBaseName = name; }
char const* GET_LOG_FILENAME() { return globals.logBaseName.GetString(); }

ZKString GET_FULL_LOG_PATH() { return globals.logDirectory + globals.logBaseName + globals.logExtension; }

void CLEAR_LOG_FILE()
{
    globals.logBuffer.clear();
    WithLogFile(std::ios::out | std::ios::trunc, [](std::ofstream&) {});
}

void WRITE_LOG_FILE()
{
    WithLogFile(std::ios::out | std::ios::app, [](std::ofstream& file) {
        std::string const text = globals.logBuffer.str();
        file.write(text.data(), static_cast<std::streamsize>(text.size()));
        file.flush();
    });
}
