#include "ZKSystem.h"

#include <cstring>
#include <string>

#include "../foundation/detail/Globals.h"
#include "../platform/System.h"

namespace platform = zk64::platform;
using zk64::detail::globals;

namespace {

// The key's text up to its first zero byte.
std::string KeyText(ZKString const& key) { return std::string(key.GetString()); }

}  // namespace

bool LoadProgramArgs(int count, char** const array)
{
    for (int index = 0; index < count; ++index) {
        char const* entry = array[index];
        char const* dash = entry != nullptr ? std::strchr(entry, '-') : nullptr;
        if (dash == nullptr) continue;
        char const* blank = std::strchr(dash + 1, ' ');
        std::string key = blank != nullptr ? std::string(dash, blank) : std::string(entry);
        char const* next = array[index + 1];  // the array's closing null entry at the end
        globals.programArgs.emplace(std::move(key), next != nullptr ? next : "");
    }
    return true;
}

bool HasProgramArg(ZKString const& key) { return globals.programArgs.count(KeyText(key)) != 0; }

ZKString GetProgramArgData(ZKString const& key)
{
    auto const found = globals.programArgs.find(KeyText(key));
    return found == globals.programArgs.end() ? ZKString() : ZKString(found->second.c_str());
}

ZKString GetLastErrorMsg(unsigned long* code, ZKString const& prefix)
{
    platform::DWORD const error = platform::GetLastError();
    if (code != nullptr) *code = error;
    char* buffer = nullptr;
    platform::DWORD const length = platform::FormatMessageA(
        platform::kFormatMessageAllocateBuffer | platform::kFormatMessageIgnoreInserts |
            platform::kFormatMessageFromSystem,
        nullptr, error, platform::kLangNeutralSublangDefault, reinterpret_cast<char*>(&buffer), 0, nullptr);
    ZKString message;
    if (buffer != nullptr) message.SetString(buffer, static_cast<int>(length));
    if (prefix.IsNotEmpty()) {
        // "%s %s" over the prefix's characters and the message's.
        ZKString joined(prefix.GetString());
        joined += ' ';
        joined += message.GetString();
        message = joined;
    }
    platform::LocalFree(buffer);
    return message;
}

namespace {

platform::NativeSystemInfo NativeInfo()
{
    platform::NativeSystemInfo info;
    platform::GetNativeSystemInfo(&info);
    return info;
}

// One GlobalMemoryStatusEx call; `field` picks the figure, 0 on failure.
template <class Field>
unsigned long long MemoryFigure(Field field)
{
    platform::MemoryStatusEx status;
    status.dwLength = sizeof(status);
    if (!platform::GlobalMemoryStatusEx(&status)) return 0;
    return status.*field;
}

// A name read into a zeroed buffer of `Size` bytes by a GetComputerNameA-
// style call; empty when the call fails.
template <std::size_t Size, class Call>
ZKString ReadName(Call call)
{
    char buffer[Size] = {};
    platform::DWORD size = Size;
    if (!call(buffer, &size)) return ZKString();
    buffer[Size - 1] = '\0';
    return ZKString(buffer);
}

}  // namespace

unsigned long long GetSystemMaxApplicationAddress()
{
    return reinterpret_cast<unsigned long long>(NativeInfo().lpMaximumApplicationAddress);
}

unsigned long long GetSystemMinApplicationAddress()
{
    return reinterpret_cast<unsigned long long>(NativeInfo().lpMinimumApplicationAddress);
}

ProcessorArchitecture GetProcessorArchitecture()
{
    switch (NativeInfo().wProcessorArchitecture) {
    case platform::kProcessorArchitectureAmd64: return ProcessorArchitectureX64;
    case platform::kProcessorArchitectureArm: return ProcessorArchitectureARM;
    case platform::kProcessorArchitectureIa64: return ProcessorArchitectureItanium;
    case platform::kProcessorArchitectureIntel: return ProcessorArchitectureX86;
    default: return ProcessorArchitectureUnknown;
    }
}

unsigned long long GetSystemPhysicalMemoryTotalBytes() { return MemoryFigure(&platform::MemoryStatusEx::ullTotalPhys); }
unsigned long long GetSystemPhysicalMemoryTotalKB() { return GetSystemPhysicalMemoryTotalBytes() >> 10; }
unsigned long long GetSystemPhysicalMemoryAvailableBytes() { return MemoryFigure(&platform::MemoryStatusEx::ullAvailPhys); }
unsigned long long GetSystemPhysicalMemoryAvailableKB() { return GetSystemPhysicalMemoryAvailableBytes() >> 10; }
unsigned long long GetSystemPageFileSizeBytes() { return MemoryFigure(&platform::MemoryStatusEx::ullTotalPageFile); }
unsigned long long GetSystemPageFileSizeKB() { return GetSystemPageFileSizeBytes() >> 10; }
unsigned long long GetMemoryLoadPercent() { return MemoryFigure(&platform::MemoryStatusEx::dwMemoryLoad); }

ZKString GetComputerNameLocal() { return ReadName<16>(platform::GetComputerNameA); }
ZKString GetCurrentUserName() { return ReadName<257>(platform::GetUserNameA); }
bool IsDebuggerAttached() { return platform::IsDebuggerPresent() != 0; }
