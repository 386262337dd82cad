// The exact platform calls behind the process operations, through the fake
// backend: access-word translation, the identifier and name forms, the
// process list, modules, privileges and the other fixed arguments.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "platform/Files.h"
#include "FakeProcess.h"

namespace {

HINSTANCE__* Module(std::uintptr_t value) { return reinterpret_cast<HINSTANCE__*>(value); }
std::string Open(DWORD access, unsigned pid)
{
    return "OpenProcess(access=" + fake::Hex(access) + ", inherit=0, pid=" + std::to_string(pid) + ")";
}
std::string const kClose = "CloseHandle(handle=0x44)";

// A path of the platform's own form: "dir<sep>sub<sep>name".
std::string PlatformPath(std::vector<std::string> const& parts)
{
    std::string path;
    for (std::string const& part : parts) {
        if (!path.empty()) path.push_back(platform::kPathSeparator);
        path += part;
    }
    return path;
}

class ProcessCalls : public FakeTest {
protected:
    // The process list the fake hands out: {session, pid, name}.
    std::vector<platform::WtsProcessInfoA> rows;
    std::vector<std::string> names;
    void ScriptList(std::vector<std::pair<unsigned, std::string>> const& processes)
    {
        names.clear();
        rows.clear();
        for (auto const& process : processes) names.push_back(process.second);
        for (std::size_t index = 0; index < processes.size(); ++index) {
            rows.push_back({static_cast<DWORD>(index + 7), processes[index].first, names[index].data(),
                            reinterpret_cast<void*>(0x1000 + index)});
        }
        fake::Processes().WTSEnumerateProcessesA = [this](platform::WtsProcessInfoA** list, DWORD* count) {
            *list = rows.data();
            *count = static_cast<DWORD>(rows.size());
            return 1;
        };
    }
    void ScriptOpen()
    {
        fake::Processes().OpenProcess = [](DWORD, BOOL, DWORD) { return kHandle; };
    }
    void ScriptExePath(std::string path)
    {
        fake::Processes().K32GetModuleFileNameExA = [path](HANDLE, HINSTANCE__*, char* buffer, DWORD size) {
            std::size_t const length = path.size() < size - 1 ? path.size() : size - 1;
            std::memcpy(buffer, path.data(), length);
            buffer[length] = '\0';
            return static_cast<DWORD>(length);
        };
    }
};

}  // namespace

TEST_F(ProcessCalls, AccessWordsTranslateBitByBit)
{
    struct Row {
        unsigned long long word;
        DWORD processRight;
        DWORD tokenRight;
    };
    // Every bit of both tables; 0x1000 has a process right only.
    Row const table[] = {
        {0x0001, 0x80, 0x80},        {0x0002, 0x2, 0x40},  {0x0004, 0x40, 0x20},     {0x0008, 0x400, 0x100},
        {0x0010, 0x1000, 0x1},       {0x0020, 0x200, 0x2}, {0x0040, 0x100, 0x20000}, {0x0080, 0x800, 0x4},
        {0x0100, 0x1, 0x8},          {0x0200, 0x8, 0x10},  {0x0400, 0x10, 0x20008},  {0x0800, 0x20, 0x200E0},
        {0x1000, 0x100000, 0},       {0x2000, 0, 0},       {~0x1FFFull, 0, 0},       {0, 0, 0},
        {0x1FFF, 0x101FFB, 0x201FF},
    };
    fake::Security().OpenProcessToken = [](HANDLE, DWORD, HANDLE* token) {
        *token = kHandle;
        return 1;
    };
    for (Row const& row : table) {
        SCOPED_TRACE(fake::Hex(row.word));
        EXPECT_EQ(OpenProcessHandle(77, row.word).handle, nullptr);
        EXPECT_EQ(OpenProcessTokenHandle(ProcessHandle{kHandle}, row.word).handle, kHandle);
        EXPECT_EQ(fake::TakeCalls(),
                  (Calls{Open(row.processRight, 77), "GetLastError()",
                         "OpenProcessToken(0x44, access=" + fake::Hex(row.tokenRight) + ", token=out)"}));
    }
}

TEST_F(ProcessCalls, IdentifierFormsOpenWithTheirWordAndAlwaysClose)
{
    ScriptExePath(PlatformPath({"C:", "dir", "app.exe"}));
    struct Row {
        char const* operation;
        DWORD rights;
        std::function<void()> call;
        Calls work;
        bool closesAnyway = false;  // closes even a null handle
    };
    ZKString name;
    ZKContainer<HINSTANCE__*> modules;
    std::string const modulesCall = "K32EnumProcessModulesEx(0x44, modules=out, bytes=8192, needed=out, filter=3)";
    std::string const pathCall = "K32GetModuleFileNameExA(0x44, module=null, buffer=out, size=260)";
    std::vector<Row> const table = {
        {"GetProcessName", 0x1000, [&] { GetProcessName(9ul, name); }, {pathCall}},
        {"GetProcessExePath", 0x410, [&] { GetProcessExePath(9ul); }, {pathCall}},
        {"GetProcessExeDirectory", 0x410, [&] { GetProcessExeDirectory(9ul); }, {pathCall}},
        {"IsProcess32Bit",
         0x400,
         [&] { IsProcess32Bit(9ul); },
         {"IsWow64Process(0x44, flag=out)", "GetNativeSystemInfo()"}},
        {"IsProcess64Bit",
         0x400,
         [&] { IsProcess64Bit(9ul); },
         {"IsWow64Process(0x44, flag=out)", "GetNativeSystemInfo()"}},
        {"GetProcessModules", 0x410, [&] { GetProcessModules(9ul, modules); }, {modulesCall}},
        {"DoesProcessMatchProcessName", 0x410, [&] { DoesProcessMatchProcessName(9ul, "app.exe"); }, {pathCall}, true},
        {"OpenProcessTokenHandle",
         0x410,
         [&] { OpenProcessTokenHandle(9ul, 0x100); },
         {"OpenProcessToken(0x44, access=0x8, token=out)", "GetLastError()"}},
    };
    for (Row const& row : table) {
        SCOPED_TRACE(row.operation);
        ScriptOpen();
        row.call();
        Calls expected{Open(row.rights, 9)};
        expected.insert(expected.end(), row.work.begin(), row.work.end());
        expected.push_back(kClose);
        EXPECT_EQ(fake::TakeCalls(), expected);
        // A failed open gives the failure value and nothing else happens.
        fake::Processes().OpenProcess = nullptr;
        row.call();
        Calls failed{Open(row.rights, 9), "GetLastError()"};
        if (row.closesAnyway) failed.push_back("CloseHandle(handle=null)");
        EXPECT_EQ(fake::TakeCalls(), failed) << "no work after a failed open";
    }
    EXPECT_FALSE(GetProcessName(9ul, name));
    EXPECT_TRUE(GetProcessExePath(9ul).IsEmpty());
    EXPECT_FALSE(DoesProcessMatchProcessName(9ul, "app.exe"));
    EXPECT_TRUE(DoesProcessMatchProcessName(9ul, "")) << "a process that cannot be opened has the empty name";
}

TEST_F(ProcessCalls, NameFormsTakeTheFirstExactMatch)
{
    ScriptList({{4, "System"}, {30, "app.exe"}, {31, "app.exe"}, {32, "App.exe"}});
    ScriptOpen();
    ScriptExePath(PlatformPath({"C:", "dir", "app.exe"}));
    EXPECT_EQ(GetProcessID(ZKString("app.exe")), 30u);
    EXPECT_EQ(GetProcessID(ZKString("App.exe")), 32u);
    for (char const* miss : {"APP.EXE", "app", "app.exe ", "", "C:\\dir\\app.exe", "ystem"})
        EXPECT_EQ(GetProcessID(ZKString(miss)), 0u) << miss;
    fake::TakeCalls();

    EXPECT_TRUE(GetProcessExePath(ZKString("app.exe")) == PlatformPath({"C:", "dir", "app.exe"}).c_str());
    EXPECT_EQ(fake::TakeCalls(),
              (Calls{"WTSEnumerateProcessesA(server=null, reserved=0, version=1, processes=out, count=out)",
                     "WTSFreeMemory(" + fake::Pointer(rows.data()) + ")", Open(0x410, 30),
                     "K32GetModuleFileNameExA(0x44, module=null, buffer=out, size=260)", kClose}));
    // An unknown name fails before any open.
    ZKContainer<ZKString> paths;
    HINSTANCE__* found = Module(5);
    EXPECT_FALSE(GetProcessModuleNames(ZKString("nope.exe"), paths));
    EXPECT_FALSE(GetProcessModule(ZKString("nope.exe"), ZKString("x"), found));
    EXPECT_FALSE(IsProcess64Bit(ZKString("nope.exe")));
    EXPECT_TRUE(GetProcessExeDirectory(ZKString("nope.exe")).IsEmpty());
    EXPECT_EQ(OpenProcessHandle(ZKString("nope.exe"), 0x8).handle, nullptr);
    for (std::string const& call : fake::TakeCalls()) EXPECT_EQ(call.find("OpenProcess("), std::string::npos) << call;
    EXPECT_EQ(found, Module(5));
}

TEST_F(ProcessCalls, ProcessListAppendsAndLeavesAFailureAlone)
{
    ZKContainer<ProcessInfo> list;
    EXPECT_FALSE(GetAllProcesses(list)) << "an unscripted enumeration fails";
    EXPECT_EQ(list.GetItemCount(), 0u);
    fake::Processes().WTSEnumerateProcessesA = [](platform::WtsProcessInfoA**, DWORD*) { return 2; };
    EXPECT_FALSE(GetAllProcesses(list)) << "only 1 is success";
    fake::TakeCalls();

    ScriptList({{4, "System"}, {30, "app.exe"}});
    ASSERT_TRUE(GetAllProcesses(list));
    ASSERT_TRUE(GetAllProcesses(list));
    ASSERT_EQ(list.GetItemCount(), 4u);
    EXPECT_TRUE(list[3].sessionID == 8 && list[3].processID == 30 && list[3].processName == "app.exe");
    EXPECT_TRUE(list[3].userSid == reinterpret_cast<void*>(0x1001) && list[0] == list[2] && !(list[0] == list[1]));

    rows.clear();
    ZKContainer<ProcessInfo> empty;
    EXPECT_TRUE(GetAllProcesses(empty)) << "an empty list is success";
    EXPECT_EQ(empty.GetItemCount(), 0u);
}

TEST_F(ProcessCalls, ProcessInfoRecordRules)
{
    ProcessInfo info;
    info.processName = "x.exe";
    EXPECT_FALSE(info.IsProcessInfoValid()) << "a name alone does not make it valid";
    info.processID = 3;
    info.sessionID = 1;
    info.userSid = &info;
    ProcessInfo moved(std::move(info));
    EXPECT_TRUE(info.processName.IsEmpty() && info.processID == 3 && info.userSid == &info) << "a move takes the name";
    for (auto change :
         {+[](ProcessInfo& p) { p.sessionID = 2; }, +[](ProcessInfo& p) { p.processID = 4; },
          +[](ProcessInfo& p) { p.processName = "x.exf"; }, +[](ProcessInfo& p) { p.processName = "x.ex"; },
          +[](ProcessInfo& p) { p.userSid = nullptr; }}) {
        ProcessInfo changed = moved;
        EXPECT_TRUE(changed == moved && changed.IsProcessInfoValid());
        change(changed);
        EXPECT_FALSE(changed == moved);
    }
    ProcessInfo target;
    target = std::move(moved);
    EXPECT_TRUE(target.processName == "x.exe" && moved.processName.IsEmpty());
}

TEST_F(ProcessCalls, ModuleListsStayWithinTheArray)
{
    ScriptOpen();
    DWORD reported = 0;
    fake::Processes().K32EnumProcessModulesEx = [&](HANDLE, HINSTANCE__** modules, DWORD bytes, DWORD* needed, DWORD) {
        for (DWORD index = 0; index < bytes / 8; ++index) modules[index] = Module(0x10000 * (index + 1));
        *needed = reported;
        return 1;
    };
    fake::Processes().K32GetModuleFileNameExA = [](HANDLE, HINSTANCE__* module, char* buffer, DWORD) {
        auto const index = reinterpret_cast<std::uintptr_t>(module) / 0x10000;
        if (index == 2) return DWORD{0};  // unreadable
        std::string const path = PlatformPath({"lib", "m" + std::to_string(index) + ".dll"});
        std::memcpy(buffer, path.c_str(), path.size() + 1);
        return static_cast<DWORD>(path.size());
    };
    ZKContainer<HINSTANCE__*> modules(1);
    modules.PushBack(Module(1));
    ZKContainer<ZKString> paths;
    HINSTANCE__* found = Module(1);

    reported = 4;  // fewer than 8 bytes
    EXPECT_TRUE(GetProcessModules(ProcessHandle{kHandle}, modules));
    EXPECT_TRUE(GetProcessModuleNames(ProcessHandle{kHandle}, paths));
    EXPECT_FALSE(GetProcessModule(ProcessHandle{kHandle}, ZKString(""), found));
    EXPECT_EQ(modules.GetItemCount(), 1u);
    EXPECT_EQ(paths.GetItemCount(), 0u);

    reported = 3 * 8;
    EXPECT_TRUE(GetProcessModuleNames(ProcessHandle{kHandle}, paths));
    ASSERT_EQ(paths.GetItemCount(), 2u) << "the unreadable module is skipped";
    EXPECT_TRUE(paths[1] == PlatformPath({"lib", "m3.dll"}).c_str());
    EXPECT_TRUE(GetProcessModule(ProcessHandle{kHandle}, ZKString("m3"), found));
    EXPECT_EQ(found, Module(0x30000));
    EXPECT_TRUE(GetProcessModule(ProcessHandle{kHandle}, ZKString(".dll"), found)) << "any part of the path";
    EXPECT_EQ(found, Module(0x10000));
    found = Module(1);
    EXPECT_FALSE(GetProcessModule(ProcessHandle{kHandle}, ZKString("M3"), found));
    EXPECT_EQ(found, Module(1));

    reported = 5000 * 8;  // more than the array holds: the rest is dropped
    EXPECT_TRUE(GetProcessModules(ProcessHandle{kHandle}, modules));
    EXPECT_EQ(modules.GetItemCount(), 1u + 1024u);
    EXPECT_EQ(modules[1024], Module(0x10000 * 1024));
    fake::TakeCalls();
    EXPECT_FALSE(GetProcessModule(ProcessHandle{kHandle}, ZKString("m5000"), found));
    EXPECT_EQ(fake::TakeCalls().size(), 1u + 1024u);

    fake::Processes().K32EnumProcessModulesEx = nullptr;
    EXPECT_FALSE(GetProcessModules(ProcessHandle{kHandle}, modules));
    EXPECT_FALSE(GetProcessModuleNames(ProcessHandle{kHandle}, paths));
}

TEST_F(ProcessCalls, ExecutablePathNameAndDirectory)
{
    struct Row {
        std::string path;
        char const* name;
        std::string directory;
    };
    std::vector<Row> const table = {
        {PlatformPath({"C:", "dir", "app.exe"}), "app.exe", PlatformPath({"C:", "dir"})},
        {"app.exe", "app.exe", "app.exe"},
        {PlatformPath({"C:", "dir", ""}), "", PlatformPath({"C:", "dir"})},
        {"", "", ""},
    };
    for (Row const& row : table) {
        SCOPED_TRACE(row.path);
        ScriptExePath(row.path);
        ZKString name("old");
        EXPECT_TRUE(GetProcessName(ProcessHandle{kHandle}, name));
        EXPECT_TRUE(name == row.name);
        EXPECT_TRUE(GetProcessExeDirectory(ProcessHandle{kHandle}) == row.directory.c_str());
        EXPECT_TRUE(DoesProcessMatchProcessName(ProcessHandle{kHandle}, row.name));
    }
    fake::Processes().K32GetModuleFileNameExA = nullptr;
    ZKString name("old");
    EXPECT_TRUE(GetProcessName(ProcessHandle{kHandle}, name)) << "the handle form reports no failure";
    EXPECT_TRUE(name.IsEmpty());
    fake::TakeCalls();
    EXPECT_TRUE(DoesProcessMatchProcessName(ProcessHandle{}, ""));
    EXPECT_TRUE(fake::TakeCalls().empty()) << "a null handle is not asked";
    EXPECT_TRUE(GetCurrentProcessExePath().IsEmpty());
    EXPECT_EQ(fake::TakeCalls(),
              (Calls{"GetCurrentProcess()",
                     "K32GetModuleFileNameExA(0xffffffffffffffff, module=null, buffer=out, size=260)"}));
}

TEST_F(ProcessCalls, BitnessFromArchitectureAndEmulation)
{
    struct Row {
        platform::WORD architecture;
        BOOL wow;
        bool is32;
        bool is64;
    };
    Row const table[] = {
        {9, 0, false, true},  {9, 1, true, false},  {9, 2, false, false},  {0, 0, true, false},
        {0, 1, false, false}, {12, 0, true, false}, {12, 1, false, false},
    };
    for (Row const& row : table) {
        SCOPED_TRACE(std::to_string(row.architecture) + "/" + std::to_string(row.wow));
        fake::System().GetNativeSystemInfo = [&](platform::NativeSystemInfo* info) {
            info->wProcessorArchitecture = row.architecture;
        };
        fake::Processes().IsWow64Process = [&](HANDLE, BOOL* wow) {
            *wow = row.wow;
            return 0;  // the call's result is not examined
        };
        EXPECT_EQ(IsProcess32Bit(ProcessHandle{kHandle}), row.is32);
        EXPECT_EQ(IsProcess64Bit(ProcessHandle{kHandle}), row.is64);
    }
    fake::TakeCalls();
    fake::Processes().GetCurrentProcessId = [] { return DWORD{12}; };
    EXPECT_FALSE(IsCurrentProcess32Bit()) << "the current process cannot be opened here";
    EXPECT_EQ(fake::TakeCalls(), (Calls{"GetCurrentProcessId()", Open(0x400, 12), "GetLastError()"}));
}

TEST_F(ProcessCalls, PrivilegeAdjustment)
{
    fake::Security().LookupPrivilegeValueA = [](char const* name, platform::LuidRecord* luid) {
        if (std::strcmp(name, "SeDebugPrivilege") != 0) return 0;
        luid->LowPart = 20;
        return 1;
    };
    DWORD errorAfter = 0;
    fake::Security().AdjustTokenPrivileges = [&](HANDLE, platform::TokenPrivileges*, DWORD) {
        fake::SetLastErrorValue(errorAfter);
        return 1;
    };
    TokenHandle const token{kHandle};
    EXPECT_TRUE(AdjustPrivilege(token, "SeDebugPrivilege", true));
    EXPECT_TRUE(AdjustPrivilege(token, "SeDebugPrivilege", false));
    EXPECT_EQ(fake::TakeCalls(),
              (Calls{"LookupPrivilegeValueA(system=null, name=\"SeDebugPrivilege\", luid=out)",
                     "AdjustTokenPrivileges(0x44, disableAll=0, count=1 [20.0:2], bufferLength=16, previous=null, "
                     "returnLength=null)",
                     "GetLastError()", "LookupPrivilegeValueA(system=null, name=\"SeDebugPrivilege\", luid=out)",
                     "AdjustTokenPrivileges(0x44, disableAll=0, count=1 [20.0:0], bufferLength=16, previous=null, "
                     "returnLength=null)",
                     "GetLastError()"}));
    EXPECT_FALSE(AdjustPrivilege(token, "SeNoSuchPrivilege", true));
    EXPECT_EQ(fake::TakeCalls().size(), 1u) << "an unknown name stops at the lookup";
    errorAfter = platform::kErrorNotAllAssigned;
    EXPECT_FALSE(AdjustPrivilege(token, "SeDebugPrivilege", true)) << "the token lacks it";
    EXPECT_TRUE(AdjustAllPrivilege(token)) << "the nine-at-once form ignores partial success";
    EXPECT_EQ(fake::TakeCalls().back(),
              "AdjustTokenPrivileges(0x44, disableAll=0, count=9 [20.0:2 14.0:2 33.0:2 10.0:2 13.0:2 17.0:2 18.0:2 "
              "19.0:2 9.0:2], bufferLength=0, previous=null, returnLength=null)");
    fake::Security().AdjustTokenPrivileges = nullptr;
    EXPECT_FALSE(AdjustAllPrivilege(token));
    EXPECT_FALSE(AdjustPrivilege(token, "SeDebugPrivilege", true));
}

TEST_F(ProcessCalls, CurrentProcessEnvironmentAndHandles)
{
    static char block[] = "A=1\0=C:=C:\\x\0PATH=a;b\0\0";
    fake::Processes().GetEnvironmentStrings = [] { return block; };
    ZKContainer<ZKString> const entries = GetCurrentProcessEnvironmentStrings();
    ASSERT_EQ(entries.GetItemCount(), 3u);
    EXPECT_TRUE(entries[0] == "A=1" && entries[1] == "=C:=C:\\x" && entries[2] == "PATH=a;b");
    EXPECT_EQ(fake::TakeCalls(),
              (Calls{"GetEnvironmentStrings()", "FreeEnvironmentStringsA(" + fake::Pointer(block) + ")"}));
    fake::Processes().GetEnvironmentStrings = nullptr;
    EXPECT_EQ(GetCurrentProcessEnvironmentStrings().GetItemCount(), 0u);
    fake::TakeCalls();

    fake::Processes().GetModuleHandleA = [](char const*) { return Module(0x400000); };
    EXPECT_EQ(GetCurrentProcessExeHINSTANCE(), Module(0x400000));
    fake::Processes().GetProcessId = [](HANDLE) { return DWORD{55}; };
    EXPECT_EQ(GetProcessID(ProcessHandle{kHandle}), 55u);
    EXPECT_EQ(GetProcessID(ProcessHandle{}), 0u);
    fake::Processes().GetWindowThreadProcessId = [](HWND__*, DWORD*) { return DWORD{1}; };
    EXPECT_EQ(GetProcessID(reinterpret_cast<HWND__*>(0x99)), 0u) << "the result variable starts at 0";
    CloseProcessHandle(ProcessHandle{});
    CloseTokenHandle(TokenHandle{kHandle});
    EXPECT_EQ(fake::TakeCalls(),
              (Calls{"GetModuleHandleA(null)", "GetProcessId(0x44)", "GetWindowThreadProcessId(window=0x99, pid=out)",
                     "CloseHandle(handle=null)", kClose}));
}

TEST_F(ProcessCalls, ShellLaunchVerbAndResult)
{
    std::intptr_t answer = 0;
    fake::Processes().ShellExecuteA = [&](char const*, char const*, char const*) {
        return Module(static_cast<std::uintptr_t>(answer));
    };
    for (auto [value, expected] : std::vector<std::pair<std::intptr_t, bool>>{
             {33, true}, {32, false}, {2, false}, {-5, false}, {0x100000021, true}}) {
        answer = value;
        EXPECT_EQ(ExecuteShellProcess(ZKString("app.exe"), ZKString("-x"), false), expected) << value;
    }
    fake::TakeCalls();
    ExecuteShellProcess(ZKString("app.exe"), ZKString(""), true);
    ExecuteShellProcess(ZKString("app.exe"), ZKString("a b"), false);
    EXPECT_EQ(
        fake::TakeCalls(),
        (Calls{"ShellExecuteA(owner=null, verb=\"runas\", file=\"app.exe\", parameters=\"\", directory=null, show=1)",
               "ShellExecuteA(owner=null, verb=\"\", file=\"app.exe\", parameters=\"a b\", directory=null, show=1)"}));
}

TEST_F(ProcessCalls, AdministratorTestThrowsTheErrorCode)
{
    void* sid = nullptr;
    fake::Security().AllocateAndInitializeSid = [&](void** out) {
        *out = sid = std::malloc(16);
        return 1;
    };
    fake::Security().CheckTokenMembership = [](HANDLE, void*, BOOL* member) {
        *member = 1;
        return 1;
    };
    EXPECT_TRUE(IsAppRunningAsAdminMode());
    EXPECT_EQ(fake::TakeCalls(),
              (Calls{"AllocateAndInitializeSid(authority=0.0.0.0.0.5, count=2, sub=32,544,0,0,0,0,0,0)",
                     "CheckTokenMembership(null, sid=" + fake::Pointer(sid) + ", member=out)",
                     "FreeSid(" + fake::Pointer(sid) + ")"}));
    fake::Security().CheckTokenMembership = [](HANDLE, void*, BOOL*) {
        fake::SetLastErrorValue(5);
        return 0;
    };
    try {
        IsAppRunningAsAdminMode();
        ADD_FAILURE() << "no exception";
    } catch (unsigned long code) {
        EXPECT_EQ(code, 5ul);
    }
    EXPECT_EQ(fake::TakeCalls().back(), "FreeSid(" + fake::Pointer(sid) + ")") << "freed after the error was read";
    fake::Security().AllocateAndInitializeSid = nullptr;
    fake::SetLastErrorValue(8);
    EXPECT_THROW(IsAppRunningAsAdminMode(), unsigned long);
}
