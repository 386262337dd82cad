#pragma once

// System operations of the platform layer. Each has the meaning, the
// arguments, the results and the last-error behaviour of the Win32 function
// of the same name; the backend decides how that meaning is met:
//   win32  the Win32 function itself;
//   posix  the Linux equivalent (documented per function in
//          platform/posix/System.cpp), or the Win32 failure value where
//          Linux has none;
//   fake   whatever a test scripted (platform/fake/Fake.h).
// Last-error values are the platform's own: Win32 error codes on Windows,
// errno values on Linux (ERANGE where Windows reports a buffer too small,
// EINVAL for an invalid parameter).

#include "PlatformTypes.h"

namespace zk64::platform {

// The calling thread's last error. On Linux this is errno.
DWORD GetLastError();
void SetLastError(DWORD code);

// Only the form the library uses is required of every backend:
// FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS |
// FORMAT_MESSAGE_FROM_SYSTEM, with `buffer` the address of a char pointer
// that receives a buffer to be released with LocalFree. Returns the number of
// characters stored, 0 on failure.
DWORD FormatMessageA(DWORD flags, void const* source, DWORD messageId, DWORD languageId, char* buffer,
                     DWORD size, void* arguments);
// Releases what FormatMessageA allocated; null is harmless. Returns null.
void* LocalFree(void* memory);

void GetNativeSystemInfo(NativeSystemInfo* info);
// Fails with ERROR_INVALID_PARAMETER unless status->dwLength is 64.
BOOL GlobalMemoryStatusEx(MemoryStatusEx* status);

// On success *size becomes the name's length without the terminator; when
// the buffer is too small the call fails with ERROR_BUFFER_OVERFLOW and
// *size becomes the size needed, terminator included.
BOOL GetComputerNameA(char* buffer, DWORD* size);
// On success *size becomes the name's length with the terminator; when the
// buffer is too small the call fails with ERROR_INSUFFICIENT_BUFFER and
// *size becomes the size needed.
BOOL GetUserNameA(char* buffer, DWORD* size);

BOOL IsDebuggerPresent();
// Hands text to an attached debugger.
void OutputDebugStringA(char const* text);

BOOL QueryPerformanceCounter(long long* count);
BOOL QueryPerformanceFrequency(long long* frequency);

// The processor identification instruction: EAX, EBX, ECX, EDX of `leaf`.
// All zero where the processor has no such instruction.
void CpuId(unsigned int leaf, unsigned int registers[4]);

}  // namespace zk64::platform
