#pragma once

// Process operations of the platform layer: the process list, opening
// processes, their modules, environment and shell launch. See System.h for
// what the backends promise; platform/posix/Processes.cpp documents how
// Linux meets each meaning.

#include "PlatformTypes.h"

// Window and module handles, as <windows.h> declares them.
struct HWND__;
struct HINSTANCE__;

namespace zk64::platform {

using HWND = HWND__*;
using HMODULE = HINSTANCE__*;

// WTS_PROCESS_INFOA, field for field.
struct WtsProcessInfoA {
    DWORD SessionId;
    DWORD ProcessId;
    char* pProcessName;
    void* pUserSid;
};

// Process access rights (the Win32 values).
constexpr DWORD kProcessTerminate = 0x1;
constexpr DWORD kProcessCreateThread = 0x2;
constexpr DWORD kProcessVmOperation = 0x8;
constexpr DWORD kProcessVmRead = 0x10;
constexpr DWORD kProcessVmWrite = 0x20;
constexpr DWORD kProcessDupHandle = 0x40;
constexpr DWORD kProcessCreateProcess = 0x80;
constexpr DWORD kProcessSetQuota = 0x100;
constexpr DWORD kProcessSetInformation = 0x200;
constexpr DWORD kProcessQueryInformation = 0x400;
constexpr DWORD kProcessSuspendResume = 0x800;
constexpr DWORD kProcessQueryLimitedInformation = 0x1000;
constexpr DWORD kSynchronize = 0x100000;

constexpr DWORD kListModulesAll = 3;
constexpr int kSwShowNormal = 1;

// The process list of the local machine (server null, reserved 0, version
// 1). Release the array with WTSFreeMemory.
BOOL WTSEnumerateProcessesA(HANDLE server, DWORD reserved, DWORD version, WtsProcessInfoA** processes,
                            DWORD* count);
void WTSFreeMemory(void* memory);

// Null on failure (ERROR_INVALID_PARAMETER for a pid that does not exist,
// ERROR_ACCESS_DENIED for rights that are refused).
HANDLE OpenProcess(DWORD access, BOOL inheritHandle, DWORD processId);
DWORD GetProcessId(HANDLE process);
// The window's thread; stores the window's process in *processId when
// given. 0 for a window that does not exist.
DWORD GetWindowThreadProcessId(HWND window, DWORD* processId);

// The pseudo handle of the calling process: all rights, nothing to close.
HANDLE GetCurrentProcess();
DWORD GetCurrentProcessId();
HMODULE GetModuleHandleA(char const* moduleName);

// The calling process's environment as one block of zero-terminated
// "name=value" entries, ended by an empty entry. Release it with
// FreeEnvironmentStringsA.
char* GetEnvironmentStrings();
BOOL FreeEnvironmentStringsA(char* block);

// Stores TRUE in *wow64 for a 32-bit process on a 64-bit machine.
BOOL IsWow64Process(HANDLE process, BOOL* wow64);

// The process's modules, executable first, as many as `bytes` holds; *needed
// gets the bytes the whole list needs. Needs query and read rights.
BOOL K32EnumProcessModulesEx(HANDLE process, HMODULE* modules, DWORD bytes, DWORD* needed, DWORD filter);
// The module's full path (the executable's for a null module), truncated to
// size - 1 characters and terminated; the length copied, 0 on failure.
DWORD K32GetModuleFileNameExA(HANDLE process, HMODULE module, char* buffer, DWORD size);

// Starts `file` with `parameters` through the shell; a value above 32 on
// success, else an error value (2 for a file that cannot be found).
HINSTANCE__* ShellExecuteA(HWND owner, char const* verb, char const* file, char const* parameters,
                           char const* directory, int show);

// ------------------------------------------------ metrics and scheduling

// PROCESS_MEMORY_COUNTERS, field for field (72 bytes).
struct ProcessMemoryCounters {
    DWORD cb = 0;
    DWORD PageFaultCount = 0;
    ULONGLONG PeakWorkingSetSize = 0;
    ULONGLONG WorkingSetSize = 0;
    ULONGLONG QuotaPeakPagedPoolUsage = 0;
    ULONGLONG QuotaPagedPoolUsage = 0;
    ULONGLONG QuotaPeakNonPagedPoolUsage = 0;
    ULONGLONG QuotaNonPagedPoolUsage = 0;
    ULONGLONG PagefileUsage = 0;
    ULONGLONG PeakPagefileUsage = 0;
};
static_assert(sizeof(ProcessMemoryCounters) == 72);

constexpr DWORD kGrGdiObjects = 0;

// Priority classes (the Win32 values).
constexpr DWORD kIdlePriorityClass = 0x40;
constexpr DWORD kBelowNormalPriorityClass = 0x4000;
constexpr DWORD kNormalPriorityClass = 0x20;
constexpr DWORD kAboveNormalPriorityClass = 0x8000;
constexpr DWORD kHighPriorityClass = 0x80;
constexpr DWORD kRealtimePriorityClass = 0x100;

// Fails unless size is 72. Query (or limited query) and read rights.
BOOL K32GetProcessMemoryInfo(HANDLE process, ProcessMemoryCounters* counters, DWORD size);
BOOL GetProcessHandleCount(HANDLE process, DWORD* count);
// The count of the process's GDI objects (flags GR_GDIOBJECTS); 0 on failure.
DWORD GetGuiResources(HANDLE process, DWORD flags);
// A class above, or 0 on failure.
DWORD GetPriorityClass(HANDLE process);
BOOL SetPriorityClass(HANDLE process, DWORD priorityClass);
BOOL GetProcessAffinityMask(HANDLE process, ULONGLONG* processMask, ULONGLONG* systemMask);
BOOL SetProcessAffinityMask(HANDLE process, ULONGLONG mask);
// `flags` may be null.
BOOL GetProcessWorkingSetSizeEx(HANDLE process, ULONGLONG* minimum, ULONGLONG* maximum, DWORD* flags);

}  // namespace zk64::platform
