// Win32 backend of the process operations: the functions themselves.

#include <windows.h>

#include <psapi.h>
#include <shellapi.h>
#include <wtsapi32.h>

#include <cstddef>

#include "../Processes.h"

namespace zk64::platform {

static_assert(sizeof(WtsProcessInfoA) == sizeof(WTS_PROCESS_INFOA));
static_assert(offsetof(WtsProcessInfoA, SessionId) == offsetof(WTS_PROCESS_INFOA, SessionId));
static_assert(offsetof(WtsProcessInfoA, ProcessId) == offsetof(WTS_PROCESS_INFOA, ProcessId));
static_assert(offsetof(WtsProcessInfoA, pProcessName) == offsetof(WTS_PROCESS_INFOA, pProcessName));
static_assert(offsetof(WtsProcessInfoA, pUserSid) == offsetof(WTS_PROCESS_INFOA, pUserSid));
static_assert(kProcessTerminate == PROCESS_TERMINATE);
static_assert(kProcessCreateThread == PROCESS_CREATE_THREAD);
static_assert(kProcessVmOperation == PROCESS_VM_OPERATION);
static_assert(kProcessVmRead == PROCESS_VM_READ);
static_assert(kProcessVmWrite == PROCESS_VM_WRITE);
static_assert(kProcessDupHandle == PROCESS_DUP_HANDLE);
static_assert(kProcessCreateProcess == PROCESS_CREATE_PROCESS);
static_assert(kProcessSetQuota == PROCESS_SET_QUOTA);
static_assert(kProcessSetInformation == PROCESS_SET_INFORMATION);
static_assert(kProcessQueryInformation == PROCESS_QUERY_INFORMATION);
static_assert(kProcessSuspendResume == PROCESS_SUSPEND_RESUME);
static_assert(kProcessQueryLimitedInformation == PROCESS_QUERY_LIMITED_INFORMATION);
static_assert(kSynchronize == SYNCHRONIZE);
static_assert(kListModulesAll == LIST_MODULES_ALL);
static_assert(kSwShowNormal == SW_SHOWNORMAL);
static_assert(sizeof(ProcessMemoryCounters) == sizeof(PROCESS_MEMORY_COUNTERS));
static_assert(offsetof(ProcessMemoryCounters, PeakPagefileUsage) == offsetof(PROCESS_MEMORY_COUNTERS, PeakPagefileUsage));
static_assert(kGrGdiObjects == GR_GDIOBJECTS);
static_assert(kIdlePriorityClass == IDLE_PRIORITY_CLASS);
static_assert(kBelowNormalPriorityClass == BELOW_NORMAL_PRIORITY_CLASS);
static_assert(kNormalPriorityClass == NORMAL_PRIORITY_CLASS);
static_assert(kAboveNormalPriorityClass == ABOVE_NORMAL_PRIORITY_CLASS);
static_assert(kHighPriorityClass == HIGH_PRIORITY_CLASS);
static_assert(kRealtimePriorityClass == REALTIME_PRIORITY_CLASS);

BOOL WTSEnumerateProcessesA(HANDLE server, DWORD reserved, DWORD version, WtsProcessInfoA** processes,
                            DWORD* count)
{
    return ::WTSEnumerateProcessesA(server, reserved, version, reinterpret_cast<WTS_PROCESS_INFOA**>(processes),
                                    count);
}

void WTSFreeMemory(void* memory) { ::WTSFreeMemory(memory); }

HANDLE OpenProcess(DWORD access, BOOL inheritHandle, DWORD processId)
{
    return ::OpenProcess(access, inheritHandle, processId);
}

DWORD GetProcessId(HANDLE process) { return ::GetProcessId(process); }
DWORD GetWindowThreadProcessId(HWND window, DWORD* processId) { return ::GetWindowThreadProcessId(window, processId); }
HANDLE GetCurrentProcess() { return ::GetCurrentProcess(); }
DWORD GetCurrentProcessId() { return ::GetCurrentProcessId(); }
HMODULE GetModuleHandleA(char const* moduleName) { return ::GetModuleHandleA(moduleName); }
char* GetEnvironmentStrings() { return ::GetEnvironmentStrings(); }
BOOL FreeEnvironmentStringsA(char* block) { return ::FreeEnvironmentStringsA(block); }
BOOL IsWow64Process(HANDLE process, BOOL* wow64) { return ::IsWow64Process(process, wow64); }

BOOL K32EnumProcessModulesEx(HANDLE process, HMODULE* modules, DWORD bytes, DWORD* needed, DWORD filter)
{
    return ::K32EnumProcessModulesEx(process, modules, bytes, needed, filter);
}

DWORD K32GetModuleFileNameExA(HANDLE process, HMODULE module, char* buffer, DWORD size)
{
    return ::K32GetModuleFileNameExA(process, module, buffer, size);
}

HINSTANCE__* ShellExecuteA(HWND owner, char const* verb, char const* file, char const* parameters,
                           char const* directory, int show)
{
    return ::ShellExecuteA(owner, verb, file, parameters, directory, show);
}

BOOL K32GetProcessMemoryInfo(HANDLE process, ProcessMemoryCounters* counters, DWORD size)
{
    return ::K32GetProcessMemoryInfo(process, reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(counters), size);
}

BOOL GetProcessHandleCount(HANDLE process, DWORD* count)
{
    DWORD native = 0;
    BOOL const ok = ::GetProcessHandleCount(process, &native);
    *count = native;
    return ok;
}

DWORD GetGuiResources(HANDLE process, DWORD flags) { return ::GetGuiResources(process, flags); }
DWORD GetPriorityClass(HANDLE process) { return ::GetPriorityClass(process); }
BOOL SetPriorityClass(HANDLE process, DWORD priorityClass) { return ::SetPriorityClass(process, priorityClass); }

BOOL GetProcessAffinityMask(HANDLE process, ULONGLONG* processMask, ULONGLONG* systemMask)
{
    DWORD_PTR processNative = *processMask;
    DWORD_PTR systemNative = *systemMask;
    BOOL const ok = ::GetProcessAffinityMask(process, &processNative, &systemNative);
    *processMask = processNative;
    *systemMask = systemNative;
    return ok;
}

BOOL SetProcessAffinityMask(HANDLE process, ULONGLONG mask) { return ::SetProcessAffinityMask(process, mask); }

BOOL GetProcessWorkingSetSizeEx(HANDLE process, ULONGLONG* minimum, ULONGLONG* maximum, DWORD* flags)
{
    SIZE_T minimumNative = *minimum;
    SIZE_T maximumNative = *maximum;
    BOOL const ok = ::GetProcessWorkingSetSizeEx(process, &minimumNative, &maximumNative, flags);
    *minimum = minimumNative;
    *maximum = maximumNative;
    return ok;
}

}  // namespace zk64::platform
