// Fake backend of the system operations: record, then do what the test
// scripted.

#include <cstdlib>
#include <string>

#include "../System.h"
#include "Fake.h"

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

DWORD FormatMessageA(DWORD flags, void const* source, DWORD messageId, DWORD languageId, char* buffer,
                     DWORD size, void* arguments)
{
    fake::Record("FormatMessageA(flags=" + fake::Hex(flags) + ", source=" + fake::Pointer(source) +
                 ", id=" + Dec(messageId) + ", language=" + fake::Hex(languageId) + ", size=" + Dec(size) +
                 ", arguments=" + fake::Pointer(arguments) + ")");
    auto& script = fake::System().FormatMessageA;
    return script ? script(flags, source, messageId, languageId, buffer, size, arguments) : 0;
}

void* LocalFree(void* memory)
{
    fake::Record("LocalFree(" + fake::Pointer(memory) + ")");
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
    auto& script = fake::System().GlobalMemoryStatusEx;
    return script ? script(status) : 0;
}

BOOL GetComputerNameA(char* buffer, DWORD* size)
{
    fake::Record("GetComputerNameA(size=" + Dec(*size) + ")");
    auto& script = fake::System().GetComputerNameA;
    return script ? script(buffer, size) : 0;
}

BOOL GetUserNameA(char* buffer, DWORD* size)
{
    fake::Record("GetUserNameA(size=" + Dec(*size) + ")");
    auto& script = fake::System().GetUserNameA;
    return script ? script(buffer, size) : 0;
}

BOOL IsDebuggerPresent()
{
    fake::Record("IsDebuggerPresent()");
    auto& script = fake::System().IsDebuggerPresent;
    return script ? script() : 0;
}

void OutputDebugStringA(char const* text) { fake::Record("OutputDebugStringA(" + fake::Quoted(text) + ")"); }

BOOL QueryPerformanceCounter(long long* count)
{
    fake::Record("QueryPerformanceCounter()");
    auto& script = fake::System().QueryPerformanceCounter;
    return script ? script(count) : 0;
}

BOOL QueryPerformanceFrequency(long long* frequency)
{
    fake::Record("QueryPerformanceFrequency()");
    auto& script = fake::System().QueryPerformanceFrequency;
    return script ? script(frequency) : 0;
}

void CpuId(unsigned int leaf, unsigned int registers[4])
{
    fake::Record("CpuId(leaf=" + Dec(leaf) + ")");
    registers[0] = registers[1] = registers[2] = registers[3] = 0;
    if (auto& script = fake::System().CpuId) script(leaf, registers);
}

}  // namespace zk64::platform
