// Win32 backend: the system functions themselves.

#include <windows.h>

#include <intrin.h>

#include "../System.h"

namespace zk64::platform {

static_assert(kFormatMessageAllocateBuffer == FORMAT_MESSAGE_ALLOCATE_BUFFER);
static_assert(kFormatMessageIgnoreInserts == FORMAT_MESSAGE_IGNORE_INSERTS);
static_assert(kFormatMessageFromSystem == FORMAT_MESSAGE_FROM_SYSTEM);
static_assert(kLangNeutralSublangDefault == MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT));
static_assert(kProcessorArchitectureIntel == PROCESSOR_ARCHITECTURE_INTEL);
static_assert(kProcessorArchitectureArm == PROCESSOR_ARCHITECTURE_ARM);
static_assert(kProcessorArchitectureIa64 == PROCESSOR_ARCHITECTURE_IA64);
static_assert(kProcessorArchitectureAmd64 == PROCESSOR_ARCHITECTURE_AMD64);
static_assert(kProcessorArchitectureArm64 == PROCESSOR_ARCHITECTURE_ARM64);
static_assert(kErrorInvalidParameter == ERROR_INVALID_PARAMETER);
static_assert(kErrorBufferOverflow == ERROR_BUFFER_OVERFLOW);
static_assert(kErrorInsufficientBuffer == ERROR_INSUFFICIENT_BUFFER);

DWORD GetLastError() { return ::GetLastError(); }
void SetLastError(DWORD code) { ::SetLastError(code); }

DWORD FormatMessageA(DWORD flags, void const* source, DWORD messageId, DWORD languageId, char* buffer,
                     DWORD size, void* arguments)
{
    return ::FormatMessageA(flags, source, messageId, languageId, buffer, size, static_cast<va_list*>(arguments));
}

void* LocalFree(void* memory) { return ::LocalFree(memory); }

void GetNativeSystemInfo(NativeSystemInfo* info)
{
    SYSTEM_INFO native{};
    ::GetNativeSystemInfo(&native);
    info->wProcessorArchitecture = native.wProcessorArchitecture;
    info->dwPageSize = native.dwPageSize;
    info->lpMinimumApplicationAddress = native.lpMinimumApplicationAddress;
    info->lpMaximumApplicationAddress = native.lpMaximumApplicationAddress;
    info->dwActiveProcessorMask = native.dwActiveProcessorMask;
    info->dwNumberOfProcessors = native.dwNumberOfProcessors;
    info->dwAllocationGranularity = native.dwAllocationGranularity;
}

BOOL GlobalMemoryStatusEx(MemoryStatusEx* status)
{
    static_assert(sizeof(MEMORYSTATUSEX) == sizeof(MemoryStatusEx));
    MEMORYSTATUSEX native{};
    native.dwLength = status->dwLength;
    BOOL const ok = ::GlobalMemoryStatusEx(&native);
    if (ok) {
        status->dwMemoryLoad = native.dwMemoryLoad;
        status->ullTotalPhys = native.ullTotalPhys;
        status->ullAvailPhys = native.ullAvailPhys;
        status->ullTotalPageFile = native.ullTotalPageFile;
        status->ullAvailPageFile = native.ullAvailPageFile;
        status->ullTotalVirtual = native.ullTotalVirtual;
        status->ullAvailVirtual = native.ullAvailVirtual;
        status->ullAvailExtendedVirtual = native.ullAvailExtendedVirtual;
    }
    return ok;
}

BOOL GetComputerNameA(char* buffer, DWORD* size) { return ::GetComputerNameA(buffer, size); }
BOOL GetUserNameA(char* buffer, DWORD* size) { return ::GetUserNameA(buffer, size); }
BOOL IsDebuggerPresent() { return ::IsDebuggerPresent(); }
void OutputDebugStringA(char const* text) { ::OutputDebugStringA(text); }

BOOL QueryPerformanceCounter(long long* count)
{
    LARGE_INTEGER value{};
    BOOL const ok = ::QueryPerformanceCounter(&value);
    *count = value.QuadPart;
    return ok;
}

BOOL QueryPerformanceFrequency(long long* frequency)
{
    LARGE_INTEGER value{};
    BOOL const ok = ::QueryPerformanceFrequency(&value);
    *frequency = value.QuadPart;
    return ok;
}

void CpuId(unsigned int leaf, unsigned int registers[4])
{
    int values[4] = {};
    __cpuid(values, static_cast<int>(leaf));
    for (int i = 0; i < 4; ++i) registers[i] = static_cast<unsigned int>(values[i]);
}

}  // namespace zk64::platform
