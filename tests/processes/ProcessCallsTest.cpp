// The exact platform calls behind the process operations, through the fake
// backend: access words, the identifier and name forms, the process list,
// modules, paths, bitness, privileges and the administrator test.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "FakeProcess.h"
#include "platform/Files.h"

namespace {

HINSTANCE__* Module(std::uintptr_t value) { return reinterpret_cast<HINSTANCE__*>(value); }
std::string Open(DWORD access, unsigned pid)
{
    return "OpenProcess(access=" + fake::Hex(access) + ", inherit=0, pid=" + std::to_string(pid) + ")";
}
std::string Join(std::string const& directory, std::string const& name)
{
    return directory + platform::kPathSeparator + name;
}
void ScriptExePath(std::string const& path)
{
    fake::Processes().K32GetModuleFileNameExA = [path](HANDLE, HINSTANCE__*, char* buffer, DWORD) {
        std::memcpy(buffer, path.c_str(), path.size() + 1);
        return static_cast<DWORD>(path.size());
    };
}
// {session 1, pid 4, "System"}, {2, 30, "app.exe"}, {3, 31, "app.exe"}, {4, 32,
// "App.exe"}, {5, 33, no name}.
std::vector<platform::WtsProcessInfoA> rows = {{1, 4, const_cast<char*>("System"), nullptr},
                                               {2, 30, const_cast<char*>("app.exe"), &rows},
                                               {3, 31, const_cast<char*>("app.exe"), nullptr},
                                               {4, 32, const_cast<char*>("App.exe"), nullptr},
                                               {5, 33, nullptr, nullptr}};
using ProcessCalls = FakeTest;

}  // namespace

TEST_F(ProcessCalls, AccessWordsTranslateBitByBit)
{
    // {word, process right, token right}: every bit of both tables.
    unsigned long long const table[][3] = {
        {0x0001, 0x80, 0x80},  {0x0002, 0x2, 0x40},  {0x0004, 0x40, 0x20},       {0x0008, 0x400, 0x100},
        {0x0010, 0x1000, 0x1}, {0x0020, 0x200, 0x2}, {0x0040, 0x100, 0x20000},   {0x0080, 0x800, 0x4},
        {0x0100, 0x1, 0x8},    {0x0200, 0x8, 0x10},  {0x0400, 0x10, 0x20008},    {0x0800, 0x20, 0x200E0},
        {0x1000, 0x100000, 0}, {~0x1FFFull, 0, 0},   {0x1FFF, 0x101FFB, 0x201FF}};
    fake::Security().OpenProcessToken = [](HANDLE, DWORD, HANDLE* token) {
        *token = kHandle;
        return 1;
    };
    for (auto const& row : table) {
        EXPECT_EQ(OpenProcessHandle(77, row[0]).handle, nullptr);
        EXPECT_EQ(OpenProcessTokenHandle(kProcess, row[0]).handle, kHandle);
        EXPECT_EQ(fake::TakeCalls(), (Calls{Open(static_cast<DWORD>(row[1]), 77), "GetLastError()",
                                            "OpenProcessToken(0x44, access=" + fake::Hex(row[2]) + ", token=out)"}));
    }
}

// Every identifier form opens with its own access word and closes what it
// opened; a failed open gives the failure value and does nothing else.
TEST_F(ProcessCalls, IdentifierFormsOpenWithTheirWord)
{
    ScriptExePath(Join("C:", "app.exe"));
    ZKString name("x");
    ZKContainer<HINSTANCE__*> modules;
    ZKContainer<ZKString> paths;
    unsigned long long mask = 0x33;
    struct Row {
        DWORD rights;
        std::function<bool()> failed;  // runs the call: whether it gave the failure value
        bool closesNull = false;
    };
    std::vector<Row> const table = {
        {0x1000, [&] { return !GetProcessName(9ul, name); }},
        {0x410, [&] { return GetProcessExeDirectory(9ul).IsEmpty(); }},
        {0x400, [&] { return !IsProcess64Bit(9ul); }},
        {0x410, [&] { return !GetProcessModules(9ul, modules); }},
        {0x410, [&] { return !GetProcessModuleNames(9ul, paths); }},
        {0x410, [&] { return !DoesProcessMatchProcessName(9ul, "app.exe"); }, true},
        {0x410, [&] { return OpenProcessTokenHandle(9ul, 0x100).handle == nullptr; }},
        {0x410, [&] { return GetProcessWorkingSetMaxSizeBytes(9ul) == 0; }},
        {0x400, [&] { return GetProcessNumOfGDIHandles(9ul) == 0; }},
        {0x400, [&] { return GetProcessPriorityClass(9ul) == ProcessPriorityUnknown; }},
        {0x200, [&] { return !SetProcessPriorityClass(9ul, ProcessPriorityHigh); }},
        {0x400, [&] { return !GetProcessAffinity(9ul, mask = 0x33) && mask == 0x33; }},
        {0x200, [&] { return !SetProcessAffinity(9ul, mask); }},
    };
    for (std::size_t index = 0; index < table.size(); ++index) {
        SCOPED_TRACE(index);
        fake::Processes().OpenProcess = [](DWORD, BOOL, DWORD) { return kHandle; };
        table[index].failed();
        Calls const calls = fake::TakeCalls();
        EXPECT_EQ(calls.front() + calls.back(), Open(table[index].rights, 9) + "CloseHandle(handle=0x44)");
        fake::Processes().OpenProcess = nullptr;
        EXPECT_TRUE(table[index].failed());
        Calls failed{Open(table[index].rights, 9), "GetLastError()"};
        if (table[index].closesNull) failed.push_back("CloseHandle(handle=null)");
        EXPECT_EQ(fake::TakeCalls(), failed);
    }
    EXPECT_TRUE(DoesProcessMatchProcessName(9ul, "")) << "a process that cannot be opened has the empty name";
}

TEST_F(ProcessCalls, ProcessListAndNameForms)
{
    ZKContainer<ProcessInfo> list;
    EXPECT_FALSE(GetAllProcesses(list)) << "an unscripted enumeration fails";
    fake::Processes().WTSEnumerateProcessesA = [](platform::WtsProcessInfoA**, DWORD*) { return 2; };
    EXPECT_FALSE(GetAllProcesses(list)) << "only 1 is success";
    fake::Processes().WTSEnumerateProcessesA = [](platform::WtsProcessInfoA** listed, DWORD* count) {
        *listed = rows.data();
        *count = static_cast<DWORD>(rows.size());
        return 1;
    };
    ASSERT_TRUE(GetAllProcesses(list) && GetAllProcesses(list));
    ASSERT_EQ(list.GetItemCount(), 10u) << "appended";
    EXPECT_TRUE(list[6].sessionID == 2 && list[6].processID == 30 && list[6].processName == "app.exe");
    EXPECT_TRUE(list[6].userSid == &rows && list[4].processName.IsEmpty() && list[9] == list[4]);

    fake::Processes().OpenProcess = [](DWORD, BOOL, DWORD) { return kHandle; };
    ScriptExePath(Join("C:", "app.exe"));
    EXPECT_TRUE(GetProcessID(ZKString("app.exe")) == 30u && GetProcessID(ZKString("App.exe")) == 32u);
    EXPECT_EQ(GetProcessID(ZKString("APP.EXE")) + GetProcessID(ZKString("app")) + GetProcessID(ZKString("ystem")), 0u);
    fake::TakeCalls();
    EXPECT_TRUE(GetProcessExePath(ZKString("app.exe")) == Join("C:", "app.exe").c_str());
    EXPECT_EQ(fake::TakeCalls(),
              (Calls{"WTSEnumerateProcessesA(server=null, reserved=0, version=1, "
                     "processes=out, count=out)",
                     "WTSFreeMemory(" + fake::Pointer(rows.data()) + ")", Open(0x410, 30),
                     "K32GetModuleFileNameExA(0x44, module=null, buffer=out, size=260)", "CloseHandle(handle=0x44)"}));
    ZKContainer<ZKString> paths;
    EXPECT_FALSE(GetProcessModuleNames(ZKString("nope.exe"), paths) || IsProcess64Bit(ZKString("nope.exe")));
    EXPECT_TRUE(SetProcessPriorityClass(ZKString("nope.exe"), ProcessPriorityIdle)) << "true for an unknown name";
    for (std::string const& call : fake::TakeCalls()) EXPECT_EQ(call.find("OpenProcess("), std::string::npos);
}

TEST_F(ProcessCalls, ModulesPathsAndBitness)
{
    ZKContainer<HINSTANCE__*> modules;
    ZKContainer<ZKString> paths;
    EXPECT_FALSE(GetProcessModules(kProcess, modules) || GetProcessModuleNames(kProcess, paths)) << "unscripted";
    DWORD reported = 3 * 8;
    fake::Processes().K32EnumProcessModulesEx = [&](HANDLE, HINSTANCE__** slots, DWORD bytes, DWORD* needed, DWORD) {
        for (DWORD index = 0; index < bytes / 8; ++index) slots[index] = Module(0x10000 * (index + 1));
        *needed = reported;
        return 1;
    };
    fake::Processes().K32GetModuleFileNameExA = [](HANDLE, HINSTANCE__* module, char* buffer, DWORD) {
        auto const index = reinterpret_cast<std::uintptr_t>(module) / 0x10000;
        if (index == 2) return DWORD{0};  // unreadable
        std::string const path = Join("lib", "m" + std::to_string(index) + ".dll");
        std::memcpy(buffer, path.c_str(), path.size() + 1);
        return static_cast<DWORD>(path.size());
    };
    HINSTANCE__* found = Module(1);
    EXPECT_TRUE(GetProcessModuleNames(kProcess, paths));
    ASSERT_EQ(paths.GetItemCount(), 2u) << "the unreadable module is skipped";
    EXPECT_TRUE(paths[1] == Join("lib", "m3.dll").c_str());
    EXPECT_TRUE(GetProcessModule(kProcess, ZKString("m3"), found) && found == Module(0x30000));
    EXPECT_FALSE(GetProcessModule(kProcess, ZKString("M3"), found));
    reported = 5000 * 8;  // more than the array holds: the rest is dropped
    EXPECT_TRUE(GetProcessModules(kProcess, modules));
    EXPECT_TRUE(modules.GetItemCount() == 1024u && modules[1023] == Module(0x10000 * 1024));

    // {path, name, directory}: the name follows the last separator; without one
    // the directory is the path.
    std::vector<std::vector<std::string>> const table = {
        {Join("C:", "app.exe"), "app.exe", "C:"}, {"app.exe", "app.exe", "app.exe"}, {Join("C:", ""), "", "C:"}};
    for (auto const& row : table) {
        ScriptExePath(row[0]);
        ZKString name("old");
        EXPECT_TRUE(GetProcessName(kProcess, name) && name == row[1].c_str()) << row[0];
        EXPECT_TRUE(GetProcessExeDirectory(kProcess) == row[2].c_str()) << row[0];
    }

    // {architecture, emulated, 32-bit, 64-bit}
    int const bitness[][4] = {{9, 0, 0, 1}, {9, 1, 1, 0}, {9, 2, 0, 0}, {0, 0, 1, 0}, {0, 1, 0, 0}, {12, 0, 1, 0}};
    for (auto const& row : bitness) {
        fake::System().GetNativeSystemInfo = [&](platform::NativeSystemInfo* info) {
            info->wProcessorArchitecture = static_cast<platform::WORD>(row[0]);
        };
        fake::Processes().IsWow64Process = [&](HANDLE, BOOL* wow) {
            *wow = row[1];
            return 0;  // the call's result is not examined
        };
        EXPECT_EQ(IsProcess32Bit(kProcess), row[2] != 0) << row[0] << "/" << row[1];
        EXPECT_EQ(IsProcess64Bit(kProcess), row[3] != 0) << row[0] << "/" << row[1];
    }
}

TEST_F(ProcessCalls, PrivilegesAndTheAdministratorTest)
{
    fake::Security().LookupPrivilegeValueA = [](char const* name, platform::LuidRecord* luid) {
        luid->LowPart = 20;
        return std::strcmp(name, "SeDebugPrivilege") == 0 ? 1 : 0;
    };
    fake::Security().AdjustTokenPrivileges = [](HANDLE, platform::TokenPrivileges*, DWORD) {
        fake::SetLastErrorValue(platform::kErrorNotAllAssigned);
        return 1;
    };
    TokenHandle const token{kHandle};
    EXPECT_FALSE(AdjustPrivilege(token, "SeDebugPrivilege", false)) << "the token lacks it";
    EXPECT_EQ(fake::TakeCalls().at(1), "AdjustTokenPrivileges(0x44, disableAll=0, count=1 [20.0:0], "
                                       "bufferLength=16, "
                                       "previous=null, returnLength=null)");
    EXPECT_FALSE(AdjustPrivilege(token, "SeNoSuchPrivilege", true));
    EXPECT_EQ(fake::TakeCalls().size(), 1u) << "an unknown name stops at the lookup";
    EXPECT_TRUE(AdjustAllPrivilege(token)) << "the nine-at-once form ignores partial success";
    EXPECT_EQ(fake::TakeCalls().back(), "AdjustTokenPrivileges(0x44, disableAll=0, count=9 [20.0:2 14.0:2 "
                                        "33.0:2 10.0:2 13.0:2 17.0:2 18.0:2 "
                                        "19.0:2 9.0:2], bufferLength=0, previous=null, returnLength=null)");

    void* sid = nullptr;
    fake::Security().AllocateAndInitializeSid = [&](void** out) {
        *out = sid = std::malloc(16);
        return 1;
    };
    BOOL answer = 1;
    fake::Security().CheckTokenMembership = [&](HANDLE, void*, BOOL* member) {
        *member = 1;
        fake::SetLastErrorValue(5);
        return answer;
    };
    EXPECT_TRUE(IsAppRunningAsAdminMode());
    EXPECT_EQ(fake::TakeCalls(), (Calls{"AllocateAndInitializeSid(authority=0.0.0.0.0.5, count=2, "
                                        "sub=32,544,0,0,0,0,0,0)",
                                        "CheckTokenMembership(null, sid=" + fake::Pointer(sid) + ", member=out)",
                                        "FreeSid(" + fake::Pointer(sid) + ")"}));
    answer = 0;
    try {
        IsAppRunningAsAdminMode();
        ADD_FAILURE() << "no exception";
    } catch (unsigned long code) {
        EXPECT_EQ(code, 5ul);
    }
    EXPECT_EQ(fake::TakeCalls().back(), "FreeSid(" + fake::Pointer(sid) + ")") << "freed after the error was read";
}
