#include "ZKProcess.h"

#include <cstdint>
#include <cstring>

#include "../platform/Files.h"
#include "../platform/Handles.h"
#include "../platform/Processes.h"
#include "../platform/Security.h"
#include "../platform/System.h"
#include "../system/ZKSystem.h"
#include "detail/ProcessAccess.h"

namespace platform = zk64::platform;
using zk64::detail::WithNamedProcess;
using zk64::detail::WithProcess;

// ---------------------------------------------------------------- records

ProcessInfo::ProcessInfo(ProcessInfo&& other)
    : sessionID(other.sessionID), processID(other.processID), processName(std::move(other.processName)),
      userSid(other.userSid)
{
}

ProcessInfo& ProcessInfo::operator=(ProcessInfo&& other)
{
    sessionID = other.sessionID;
    processID = other.processID;
    processName = std::move(other.processName);
    userSid = other.userSid;
    return *this;
}

bool ProcessInfo::IsProcessInfoValid() const { return processID != 0; }

bool ProcessInfo::operator==(ProcessInfo const& other) const
{
    return sessionID == other.sessionID && processID == other.processID && processName == other.processName &&
           userSid == other.userSid;
}

// ---------------------------------------------------------- access words

namespace zk64::detail {
namespace {

constexpr AccessBit kProcessTable[] = {
    {0x0001, platform::kProcessCreateProcess},   {0x0002, platform::kProcessCreateThread},
    {0x0004, platform::kProcessDupHandle},       {0x0008, platform::kProcessQueryInformation},
    {0x0010, platform::kProcessQueryLimitedInformation},
    {0x0020, platform::kProcessSetInformation},  {0x0040, platform::kProcessSetQuota},
    {0x0080, platform::kProcessSuspendResume},   {0x0100, platform::kProcessTerminate},
    {0x0200, platform::kProcessVmOperation},     {0x0400, platform::kProcessVmRead},
    {0x0800, platform::kProcessVmWrite},         {0x1000, platform::kSynchronize},
};

constexpr AccessBit kTokenTable[] = {
    {0x001, platform::kTokenAdjustDefault},   {0x002, platform::kTokenAdjustGroups},
    {0x004, platform::kTokenAdjustPrivileges}, {0x008, platform::kTokenAdjustSessionId},
    {0x010, platform::kTokenAssignPrimary},   {0x020, platform::kTokenDuplicate},
    {0x040, platform::kTokenExecute},         {0x080, platform::kTokenImpersonate},
    {0x100, platform::kTokenQuery},           {0x200, platform::kTokenQuerySource},
    {0x400, platform::kTokenRead},            {0x800, platform::kTokenWrite},
};

}  // namespace

unsigned long ProcessRights(unsigned long long word) { return TranslateWord(kProcessTable, word); }
unsigned long TokenRights(unsigned long long word) { return TranslateWord(kTokenTable, word); }

}  // namespace zk64::detail

// ------------------------------------------------------------- the list

bool GetAllProcesses(ZKContainer<ProcessInfo>& out)
{
    platform::WtsProcessInfoA* list = nullptr;
    platform::DWORD count = 0;
    if (platform::WTSEnumerateProcessesA(nullptr, 0, 1, &list, &count) != 1) return false;
    for (platform::DWORD index = 0; index < count; ++index) {
        ProcessInfo info;
        info.sessionID = list[index].SessionId;
        info.processID = list[index].ProcessId;
        if (list[index].pProcessName != nullptr) info.processName = list[index].pProcessName;
        info.userSid = list[index].pUserSid;
        out.PushBack(info);
    }
    platform::WTSFreeMemory(list);
    return true;
}

unsigned long GetProcessID(ZKString const& name)
{
    ZKContainer<ProcessInfo> processes;
    GetAllProcesses(processes);
    for (unsigned long long index = 0; index < processes.GetItemCount(); ++index) {
        ProcessInfo const& info = processes.GetItem(index);
        if (info.processName == name) return info.processID;
    }
    return 0;
}

unsigned long GetProcessID(HWND__* const window)
{
    platform::DWORD pid = 0;
    platform::GetWindowThreadProcessId(window, &pid);
    return pid;
}

unsigned long GetProcessID(ProcessHandle const& process)
{
    return process.handle == nullptr ? 0 : platform::GetProcessId(process.handle);
}

// ------------------------------------------------------ handles, tokens

ProcessHandle OpenProcessHandle(unsigned long pid, unsigned long long const& accessWord)
{
    ProcessHandle process;
    process.handle = platform::OpenProcess(zk64::detail::ProcessRights(accessWord), 0,
                                           static_cast<platform::DWORD>(pid));
    if (process.handle == nullptr) platform::GetLastError();  // read and dropped
    return process;
}

ProcessHandle OpenProcessHandle(ZKString const& name, unsigned long long const& accessWord)
{
    unsigned long const pid = GetProcessID(name);
    return pid == 0 ? ProcessHandle() : OpenProcessHandle(pid, accessWord);
}

TokenHandle OpenProcessTokenHandle(ProcessHandle process, unsigned long long tokenWord)
{
    TokenHandle token;
    if (!platform::OpenProcessToken(process.handle, zk64::detail::TokenRights(tokenWord), &token.handle)) {
        platform::GetLastError();  // read and dropped
        token.handle = nullptr;
    }
    return token;
}

TokenHandle OpenProcessTokenHandle(unsigned long pid, unsigned long long tokenWord)
{
    return WithProcess(pid, zk64::detail::kWordQueryAndRead, TokenHandle(),
                       [&](ProcessHandle process) { return OpenProcessTokenHandle(process, tokenWord); });
}

void CloseProcessHandle(ProcessHandle process) { platform::CloseHandle(process.handle); }
void CloseTokenHandle(TokenHandle token) { platform::CloseHandle(token.handle); }

// ---------------------------------------------------------- privileges

namespace {

// One AdjustTokenPrivileges call enabling every privilege of `state`.
bool Adjust(TokenHandle token, platform::TokenPrivileges& state, platform::DWORD bufferLength)
{
    return platform::AdjustTokenPrivileges(token.handle, 0, &state, bufferLength, nullptr, nullptr) != 0;
}

}  // namespace

bool AdjustPrivilege(TokenHandle token, char const* privilegeName, bool enable)
{
    platform::TokenPrivileges state;
    if (!platform::LookupPrivilegeValueA(nullptr, privilegeName, &state.Privileges[0].Luid)) return false;
    state.PrivilegeCount = 1;
    state.Privileges[0].Attributes = enable ? platform::kSePrivilegeEnabled : 0;
    if (!Adjust(token, state, 16)) return false;
    return platform::GetLastError() != platform::kErrorNotAllAssigned;
}

bool AdjustAllPrivilege(TokenHandle token)
{
    // Debug, increase base priority, increase working set, load driver,
    // profile single process, backup, restore, shutdown, take ownership.
    constexpr platform::DWORD kLuids[9] = {20, 14, 33, 10, 13, 17, 18, 19, 9};
    platform::TokenPrivileges state;
    state.PrivilegeCount = 9;
    for (int index = 0; index < 9; ++index) {
        state.Privileges[index].Luid.LowPart = kLuids[index];
        state.Privileges[index].Attributes = platform::kSePrivilegeEnabled;
    }
    return Adjust(token, state, 0);
}

// ------------------------------------------------------ current process

ProcessHandle GetCurrentProcessHandle()
{
    ProcessHandle process;
    process.handle = platform::GetCurrentProcess();
    return process;
}

unsigned long GetCurrentProcessID() { return platform::GetCurrentProcessId(); }
HINSTANCE__* GetCurrentProcessExeHINSTANCE() { return platform::GetModuleHandleA(nullptr); }

ZKContainer<ZKString> GetCurrentProcessEnvironmentStrings()
{
    ZKContainer<ZKString> entries;
    char* const block = platform::GetEnvironmentStrings();
    if (block == nullptr) return entries;
    for (char const* entry = block; *entry != '\0'; entry += std::strlen(entry) + 1) entries.PushBack(entry);
    platform::FreeEnvironmentStringsA(block);
    return entries;
}

// --------------------------------------------------------- exe and names

namespace {

// The part of `path` behind its last separator, or all of it.
ZKString FileNameOf(ZKString const& path)
{
    long long const separator = path.RFind(platform::kPathSeparator, -1);
    if (separator < 0) return path;
    return path.GetString(static_cast<unsigned long long>(separator + 1), static_cast<unsigned int>(path.GetSize()));
}

// The part of `path` in front of its last separator, or all of it.
ZKString DirectoryOf(ZKString const& path)
{
    long long const separator = path.RFind(platform::kPathSeparator, -1);
    return separator < 0 ? path : path.GetString(static_cast<unsigned long long>(separator));
}

constexpr platform::DWORD kPathBuffer = 260;

// A module's full path (the executable's for null); empty when unreadable.
ZKString ModulePath(ProcessHandle process, HINSTANCE__* module)
{
    char buffer[kPathBuffer] = {};
    if (platform::K32GetModuleFileNameExA(process.handle, module, buffer, kPathBuffer) == 0) return ZKString();
    buffer[kPathBuffer - 1] = '\0';
    return ZKString(buffer);
}

}  // namespace

ZKString GetProcessExePath(ProcessHandle process) { return ModulePath(process, nullptr); }
ZKString GetProcessExeDirectory(ProcessHandle process) { return DirectoryOf(GetProcessExePath(process)); }
ZK_PROCESS_ID_AND_NAME_FORMS(ZKString, GetProcessExePath, zk64::detail::kWordQueryAndRead, ZKString(), (), ())
ZK_PROCESS_ID_AND_NAME_FORMS(ZKString, GetProcessExeDirectory, zk64::detail::kWordQueryAndRead, ZKString(), (), ())
ZKString GetCurrentProcessExePath() { return GetProcessExePath(GetCurrentProcessHandle()); }
ZKString GetCurrentProcessExeDirectory() { return GetProcessExeDirectory(GetCurrentProcessHandle()); }

bool GetProcessName(ProcessHandle process, ZKString& out)
{
    out = FileNameOf(GetProcessExePath(process));
    return true;
}

bool GetProcessName(unsigned long pid, ZKString& out)
{
    return WithProcess(pid, zk64::detail::kWordQueryLimited, false,
                       [&](ProcessHandle process) { return GetProcessName(process, out); });
}

bool GetProcessName(HWND__* const window, ZKString& out) { return GetProcessName(GetProcessID(window), out); }

bool DoesProcessMatchProcessName(ProcessHandle process, char const* name)
{
    ZKString found;
    if (process.handle != nullptr) GetProcessName(process, found);
    return name == found;
}

bool DoesProcessMatchProcessName(unsigned long pid, char const* name)
{
    ProcessHandle const process = OpenProcessHandle(pid, zk64::detail::kWordQueryAndRead);
    bool const matches = DoesProcessMatchProcessName(process, name);
    CloseProcessHandle(process);
    return matches;
}

// --------------------------------------------------------------- bitness

namespace {

platform::BOOL Wow64Flag(ProcessHandle process)
{
    platform::BOOL wow = 0;
    platform::IsWow64Process(process.handle, &wow);
    return wow;
}

}  // namespace

bool IsProcess32Bit(ProcessHandle process)
{
    platform::BOOL const wow = Wow64Flag(process);
    return GetProcessorArchitecture() == ProcessorArchitectureX64 ? wow == 1 : wow == 0;
}

bool IsProcess64Bit(ProcessHandle process)
{
    platform::BOOL const wow = Wow64Flag(process);
    return GetProcessorArchitecture() == ProcessorArchitectureX64 && wow == 0;
}

ZK_PROCESS_ID_AND_NAME_FORMS(bool, IsProcess32Bit, zk64::detail::kWordQuery, false, (), ())
ZK_PROCESS_ID_AND_NAME_FORMS(bool, IsProcess64Bit, zk64::detail::kWordQuery, false, (), ())
bool IsCurrentProcess32Bit() { return IsProcess32Bit(GetCurrentProcessID()); }
bool IsCurrentProcess64Bit() { return IsProcess64Bit(GetCurrentProcessID()); }

// --------------------------------------------------------------- modules

namespace {

constexpr platform::DWORD kModuleSlots = 1024;

// The process's module handles into `modules`; the count, at most 1024, or
// -1 when the enumeration fails. Modules past the first 1024 are dropped.
int EnumerateModules(ProcessHandle process, HINSTANCE__* (&modules)[kModuleSlots])
{
    platform::DWORD needed = 0;
    if (!platform::K32EnumProcessModulesEx(process.handle, modules, sizeof modules, &needed,
                                           platform::kListModulesAll))
        return -1;
    platform::DWORD const listed = needed / sizeof(HINSTANCE__*);
    return static_cast<int>(listed < kModuleSlots ? listed : kModuleSlots);
}

}  // namespace

bool GetProcessModules(ProcessHandle process, ZKContainer<HINSTANCE__*>& out)
{
    HINSTANCE__* modules[kModuleSlots];
    int const count = EnumerateModules(process, modules);
    for (int index = 0; index < count; ++index) out.PushBack(modules[index]);
    return count >= 0;
}

bool GetProcessModuleNames(ProcessHandle process, ZKContainer<ZKString>& out)
{
    HINSTANCE__* modules[kModuleSlots];
    int const count = EnumerateModules(process, modules);
    for (int index = 0; index < count; ++index) {
        ZKString const path = ModulePath(process, modules[index]);
        if (path.IsNotEmpty()) out.PushBack(path);
    }
    return count >= 0;
}

bool GetProcessModule(ProcessHandle process, ZKString const& moduleName, HINSTANCE__*& out)
{
    HINSTANCE__* modules[kModuleSlots];
    int const count = EnumerateModules(process, modules);
    ZKString const wanted(moduleName.GetString());
    for (int index = 0; index < count; ++index) {
        if (ModulePath(process, modules[index]).Find(wanted, 0) >= 0) {
            out = modules[index];
            return true;
        }
    }
    return false;
}

ZK_PROCESS_ID_AND_NAME_FORMS(bool, GetProcessModules, zk64::detail::kWordQueryAndRead, false,
                             (, ZKContainer<HINSTANCE__*>& out), (, out))
ZK_PROCESS_ID_AND_NAME_FORMS(bool, GetProcessModuleNames, zk64::detail::kWordQueryAndRead, false,
                             (, ZKContainer<ZKString>& out), (, out))
ZK_PROCESS_ID_AND_NAME_FORMS(bool, GetProcessModule, zk64::detail::kWordQueryAndRead, false,
                             (, ZKString const& moduleName, HINSTANCE__*& out), (, moduleName, out))

// ---------------------------------------------------- shell and elevation

bool ExecuteShellProcess(ZKString const& file, ZKString const& parameters, bool elevated)
{
    HINSTANCE__* const result = platform::ShellExecuteA(nullptr, elevated ? "runas" : "", file.GetString(),
                                                        parameters.GetString(), nullptr, platform::kSwShowNormal);
    return static_cast<int>(reinterpret_cast<std::intptr_t>(result)) > 32;
}

bool IsAppRunningAsAdminMode()
{
    platform::SidIdentifierAuthority const ntAuthority = {{0, 0, 0, 0, 0, 5}};
    void* sid = nullptr;
    platform::BOOL member = 0;
    bool failed = !platform::AllocateAndInitializeSid(&ntAuthority, 2, platform::kSecurityBuiltinDomainRid,
                                                      platform::kDomainAliasRidAdmins, 0, 0, 0, 0, 0, 0, &sid);
    if (!failed) failed = !platform::CheckTokenMembership(nullptr, sid, &member);
    unsigned long const error = failed ? platform::GetLastError() : 0;
    if (sid != nullptr) platform::FreeSid(sid);
    if (failed) throw error;
    return member != 0;
}
