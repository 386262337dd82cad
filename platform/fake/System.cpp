// Fake backend of the system operations: record, then do what the test
// scripted.

#include <cstdlib>
#include <string>

#include "../System.h"
#include "Fake.h"
#include "Run.h"

namespace zk64::platform {
namespace {

thread_local DWORD lastError = 0;

std::string Dec(unsigned long long value) { return std::to_string(value); }

}  // namespace

void fake::SetLastErrorValue(DWORD code) { lastError = code; }

DWORD GetLastError()
{
    fake::Record("GetLastError()");
    return lastError;
}

void SetLastError(DWORD code)
{
    fake::Record("SetLastError(" + Dec(code) + ")");
    lastError = code;
}

DWORD FormatMessageA(DWORD flags, void const* source, DWORD messageId, DWORD languageId, char* buffer, DWORD size,
                     void* arguments)
{
    fake::Record("FormatMessageA(flags=" + fake::Hex(flags) + ", source=" + fake::Pointer(source) +
                 ", id=" + Dec(messageId) + ", language=" + fake::Hex(languageId) + ", size=" + Dec(size) +
                 ", arguments=" + fake::Pointer(arguments) + ")");
    DWORD const written = fake::Run<DWORD>(fake::System().FormatMessageA, 0, flags, source, messageId, languageId,
                                           buffer, size, arguments);
    if (written != 0 && (flags & kFormatMessageAllocateBuffer) != 0) fake::Opened(*reinterpret_cast<char**>(buffer));
    return written;
}

void* LocalFree(void* memory)
{
    fake::Record("LocalFree(" + fake::Pointer(memory) + ")");
    fake::Closed(memory);
    std::free(memory);
    return nullptr;
}

void GetNativeSystemInfo(NativeSystemInfo* info)
{
    fake::Record("GetNativeSystemInfo()");
    if (auto& script = fake::System().GetNativeSystemInfo) script(info);
}

BOOL GlobalMemoryStatusEx(MemoryStatusEx* status)
{
    fake::Record("GlobalMemoryStatusEx(dwLength=" + Dec(status->dwLength) + ")");
    return fake::Run<BOOL>(fake::System().GlobalMemoryStatusEx, 0, status);
}

BOOL GetComputerNameA(char* buffer, DWORD* size)
{
    fake::Record("GetComputerNameA(size=" + Dec(*size) + ")");
    return fake::Run<BOOL>(fake::System().GetComputerNameA, 0, buffer, size);
}

BOOL GetUserNameA(char* buffer, DWORD* size)
{
    fake::Record("GetUserNameA(size=" + Dec(*size) + ")");
    return fake::Run<BOOL>(fake::System().GetUserNameA, 0, buffer, size);
}

BOOL IsDebuggerPresent()
{
    fake::Record("IsDebuggerPresent()");
    return fake::Run<BOOL>(fake::System().IsDebuggerPresent, 0);
}

void OutputDebugStringA(char const* text) { fake::Record("OutputDebugStringA(" + fake::Quoted(text) + ")"); }

BOOL QueryPerformanceCounter(long long* count)
{
    fake::Record("QueryPerformanceCounter()");
    return fake::Run<BOOL>(fake::System().QueryPerformanceCounter, 0, count);
}

BOOL QueryPerformanceFrequency(long long* frequency)
{
    fake::Record("QueryPerformanceFrequency()");
    return fake::Run<BOOL>(fake::System().QueryPerformanceFrequency, 0, frequency);
}

void CpuId(unsigned int leaf, unsigned int registers[4])
{
    fake::Record("CpuId(leaf=" + Dec(leaf) + ")");
    registers[0] = registers[1] = registers[2] = registers[3] = 0;
    if (auto& script = fake::System().CpuId) script(leaf, registers);
}

}  // namespace zk64::platform
