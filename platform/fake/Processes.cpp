// Fake backend of the process operations. GetCurrentProcess answers the
// Win32 pseudo handle (all ones) unless scripted; everything else fails
// unless scripted.

#include <cstdint>

#include "../Processes.h"
#include "Fake.h"
#include "Run.h"

namespace zk64::platform {

using fake::Dec;
using fake::Hex;
using fake::Out;
using fake::Pointer;
using fake::Processes;
using fake::Quoted;
using fake::Record;
using fake::Run;

BOOL WTSEnumerateProcessesA(HANDLE server, DWORD reserved, DWORD version, WtsProcessInfoA** processes, DWORD* count)
{
    Record("WTSEnumerateProcessesA(server=" + Pointer(server) + ", reserved=" + Dec(reserved) +
           ", version=" + Dec(version) + ", processes=" + Out(processes) + ", count=" + Out(count) + ")");
    BOOL const listed = Run<BOOL>(Processes().WTSEnumerateProcessesA, 0, processes, count);
    if (listed) fake::Opened(*processes);
    return listed;
}

void WTSFreeMemory(void* memory)
{
    Record("WTSFreeMemory(" + Pointer(memory) + ")");
    fake::Closed(memory);
}

HANDLE OpenProcess(DWORD access, BOOL inheritHandle, DWORD processId)
{
    Record("OpenProcess(access=" + Hex(access) + ", inherit=" + Dec(static_cast<unsigned>(inheritHandle)) +
           ", pid=" + Dec(processId) + ")");
    return fake::Noted(Run<HANDLE>(Processes().OpenProcess, nullptr, access, inheritHandle, processId));
}

DWORD GetProcessId(HANDLE process)
{
    Record("GetProcessId(" + Pointer(process) + ")");
    return Run<DWORD>(Processes().GetProcessId, 0, process);
}

DWORD GetWindowThreadProcessId(HWND window, DWORD* processId)
{
    Record("GetWindowThreadProcessId(window=" + Pointer(window) + ", pid=" + Out(processId) + ")");
    return Run<DWORD>(Processes().GetWindowThreadProcessId, 0, window, processId);
}

HANDLE GetCurrentProcess()
{
    Record("GetCurrentProcess()");
    return Run<HANDLE>(Processes().GetCurrentProcess, reinterpret_cast<HANDLE>(~std::uintptr_t{0}));
}

DWORD GetCurrentProcessId()
{
    Record("GetCurrentProcessId()");
    return Run<DWORD>(Processes().GetCurrentProcessId, 0);
}

HMODULE GetModuleHandleA(char const* moduleName)
{
    Record("GetModuleHandleA(" + Quoted(moduleName) + ")");
    return Run<HMODULE>(Processes().GetModuleHandleA, nullptr, moduleName);
}

char* GetEnvironmentStrings()
{
    Record("GetEnvironmentStrings()");
    return fake::Noted(Run<char*>(Processes().GetEnvironmentStrings, nullptr));
}

BOOL FreeEnvironmentStringsA(char* block)
{
    Record("FreeEnvironmentStringsA(" + Pointer(block) + ")");
    fake::Closed(block);
    return 1;
}

BOOL IsWow64Process(HANDLE process, BOOL* wow64)
{
    Record("IsWow64Process(" + Pointer(process) + ", flag=" + Out(wow64) + ")");
    return Run<BOOL>(Processes().IsWow64Process, 0, process, wow64);
}

BOOL K32EnumProcessModulesEx(HANDLE process, HMODULE* modules, DWORD bytes, DWORD* needed, DWORD filter)
{
    Record("K32EnumProcessModulesEx(" + Pointer(process) + ", modules=" + Out(modules) + ", bytes=" + Dec(bytes) +
           ", needed=" + Out(needed) + ", filter=" + Dec(filter) + ")");
    return Run<BOOL>(Processes().K32EnumProcessModulesEx, 0, process, modules, bytes, needed, filter);
}

DWORD K32GetModuleFileNameExA(HANDLE process, HMODULE module, char* buffer, DWORD size)
{
    Record("K32GetModuleFileNameExA(" + Pointer(process) + ", module=" + Pointer(module) + ", buffer=" + Out(buffer) +
           ", size=" + Dec(size) + ")");
    return Run<DWORD>(Processes().K32GetModuleFileNameExA, 0, process, module, buffer, size);
}

HINSTANCE__* ShellExecuteA(HWND owner, char const* verb, char const* file, char const* parameters,
                           char const* directory, int show)
{
    Record("ShellExecuteA(owner=" + Pointer(owner) + ", verb=" + Quoted(verb) + ", file=" + Quoted(file) +
           ", parameters=" + Quoted(parameters) + ", directory=" + Quoted(directory) +
           ", show=" + Dec(static_cast<unsigned>(show)) + ")");
    return Run<HINSTANCE__*>(Processes().ShellExecuteA, nullptr, verb, file, parameters);
}

BOOL K32GetProcessMemoryInfo(HANDLE process, ProcessMemoryCounters* counters, DWORD size)
{
    Record("K32GetProcessMemoryInfo(" + Pointer(process) + ", counters=" + Out(counters) + ", size=" + Dec(size) + ")");
    return Run<BOOL>(Processes().K32GetProcessMemoryInfo, 0, process, counters);
}

BOOL GetProcessHandleCount(HANDLE process, DWORD* count)
{
    Record("GetProcessHandleCount(" + Pointer(process) + ", count=" + Out(count) + ")");
    return Run<BOOL>(Processes().GetProcessHandleCount, 0, process, count);
}

DWORD GetGuiResources(HANDLE process, DWORD flags)
{
    Record("GetGuiResources(" + Pointer(process) + ", flags=" + Dec(flags) + ")");
    return Run<DWORD>(Processes().GetGuiResources, 0, process);
}

DWORD GetPriorityClass(HANDLE process)
{
    Record("GetPriorityClass(" + Pointer(process) + ")");
    return Run<DWORD>(Processes().GetPriorityClass, 0, process);
}

BOOL SetPriorityClass(HANDLE process, DWORD priorityClass)
{
    Record("SetPriorityClass(" + Pointer(process) + ", class=" + Hex(priorityClass) + ")");
    return Run<BOOL>(Processes().SetPriorityClass, 0, process, priorityClass);
}

BOOL GetProcessAffinityMask(HANDLE process, ULONGLONG* processMask, ULONGLONG* systemMask)
{
    Record("GetProcessAffinityMask(" + Pointer(process) + ", process=" + Hex(*processMask) +
           ", system=" + Hex(*systemMask) + ")");
    return Run<BOOL>(Processes().GetProcessAffinityMask, 0, process, processMask, systemMask);
}

BOOL SetProcessAffinityMask(HANDLE process, ULONGLONG mask)
{
    Record("SetProcessAffinityMask(" + Pointer(process) + ", mask=" + Hex(mask) + ")");
    return Run<BOOL>(Processes().SetProcessAffinityMask, 0, process, mask);
}

BOOL GetProcessWorkingSetSizeEx(HANDLE process, ULONGLONG* minimum, ULONGLONG* maximum, DWORD* flags)
{
    Record("GetProcessWorkingSetSizeEx(" + Pointer(process) + ", minimum=" + Hex(*minimum) +
           ", maximum=" + Hex(*maximum) + ", flags=" + Out(flags) + ")");
    return Run<BOOL>(Processes().GetProcessWorkingSetSizeEx, 0, process, minimum, maximum);
}

}  // namespace zk64::platform
