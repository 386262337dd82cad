// Process handles, names, modules, bitness, privileges and the process list
// on the real backend: the test's own process and a child it starts,
// natively on Linux and for the DLL under Wine.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cctype>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <thread>

#include "ChildProcess.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <dirent.h>
#include <unistd.h>
#endif

namespace {

#if defined(_WIN32)
char const kSeparator = '\\';
char const* const kLibraryName = "zk64.dll";
#else
char const kSeparator = '/';
char const* const kLibraryName = "libzk64.so";
#endif

std::string Text(ZKString const& text) { return text.GetString(); }

// Whether `modules` lists the executable first and the library among them.
void ExpectModulePaths(ZKContainer<ZKString> const& paths, std::string const& exe)
{
    ASSERT_GT(paths.GetItemCount(), 1u);
    EXPECT_EQ(Text(paths[0]), exe);
    bool library = false;
    for (unsigned long long index = 0; index < paths.GetItemCount(); ++index)
        library = library || Text(paths[index]).find(kLibraryName) != std::string::npos;
    EXPECT_TRUE(library || exe.find("child") != std::string::npos) << "the library is one of the test's modules";
}

// The modules of a just-started child, once its loader has mapped them.
bool ChildModules(unsigned long pid, ZKContainer<ZKString>& paths)
{
    for (int attempt = 0; attempt < 200; ++attempt) {
        ZKContainer<ZKString> found;
        if (GetProcessModuleNames(pid, found) && found.GetItemCount() > 1) {
            paths = found;
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

}  // namespace

TEST(Processes, OwnProcessByIdentifierHandleAndPseudoHandle)
{
    unsigned long const pid = GetCurrentProcessID();
#if defined(_WIN32)
    EXPECT_EQ(pid, ::GetCurrentProcessId());
#else
    EXPECT_EQ(pid, static_cast<unsigned long>(getpid()));
#endif
    std::string const exe = Text(GetCurrentProcessExePath());
    std::string const directory = Text(GetCurrentProcessExeDirectory());
    ASSERT_FALSE(exe.empty());
    EXPECT_EQ(directory + kSeparator + "zk64_processes_tests" + (exe.size() > 4 && exe.substr(exe.size() - 4) == ".exe" ? ".exe" : ""), exe);
    EXPECT_EQ(Text(GetProcessExePath(pid)), exe);
    EXPECT_EQ(Text(GetProcessExeDirectory(pid)), directory);

    ProcessHandle const process = OpenProcessHandle(pid, 0x408);
    ASSERT_NE(process.handle, nullptr);
    EXPECT_EQ(GetProcessID(process), pid);
    EXPECT_EQ(GetProcessID(GetCurrentProcessHandle()), pid);
    ZKString name;
    EXPECT_TRUE(GetProcessName(process, name));
    EXPECT_EQ(directory + kSeparator + Text(name), exe);
    EXPECT_TRUE(DoesProcessMatchProcessName(process, name.GetString()));
    EXPECT_TRUE(DoesProcessMatchProcessName(pid, name.GetString()));
    EXPECT_FALSE(DoesProcessMatchProcessName(pid, exe.c_str())) << "the file name, not the path";

    ZKContainer<HINSTANCE__*> modules;
    modules.PushBack(nullptr);
    ASSERT_TRUE(GetProcessModules(process, modules));
    ASSERT_GT(modules.GetItemCount(), 2u);
    EXPECT_EQ(modules[0], nullptr) << "appends";
    EXPECT_EQ(modules[1], GetCurrentProcessExeHINSTANCE()) << "the executable's module comes first";
    ZKContainer<ZKString> paths;
    ASSERT_TRUE(GetProcessModuleNames(process, paths));
    ExpectModulePaths(paths, exe);
    HINSTANCE__* library = nullptr;
    EXPECT_TRUE(GetProcessModule(pid, ZKString(kLibraryName), library));
    EXPECT_NE(library, nullptr);
    HINSTANCE__* untouched = modules[1];
    EXPECT_FALSE(GetProcessModule(pid, ZKString("no-such-module-name"), untouched));
    EXPECT_EQ(untouched, modules[1]);

    EXPECT_TRUE(IsProcess64Bit(process));
    EXPECT_FALSE(IsProcess32Bit(process));
    EXPECT_TRUE(IsCurrentProcess64Bit());
    EXPECT_FALSE(IsCurrentProcess32Bit());
    CloseProcessHandle(process);
}

TEST(Processes, ChildProcessThroughEveryForm)
{
    ChildProcess child;
    ASSERT_NE(child.Pid(), 0u);
    ZKContainer<ZKString> paths;
    ASSERT_TRUE(ChildModules(child.Pid(), paths));
    std::string const exe = ChildProcess::Path();
    EXPECT_EQ(Text(paths[0]), exe);
    EXPECT_EQ(Text(GetProcessExePath(child.Pid())), exe);
    EXPECT_EQ(Text(GetProcessExeDirectory(child.Pid())), Text(GetCurrentProcessExeDirectory()));
    ZKString name;
    EXPECT_TRUE(GetProcessName(child.Pid(), name));
    EXPECT_TRUE(DoesProcessMatchProcessName(child.Pid(), ChildProcess::FileName().c_str()));
    EXPECT_TRUE(IsProcess64Bit(child.Pid()));
    EXPECT_FALSE(IsProcess32Bit(child.Pid()));

    // Name forms find the child through the process list; Wine lists no
    // process at all, so there they find nothing.
    ZKContainer<ProcessInfo> list;
    ASSERT_TRUE(GetAllProcesses(list));
    if (list.GetItemCount() == 0) {
        EXPECT_EQ(GetProcessID(ZKString(ChildProcess::FileName().c_str())), 0u);
        EXPECT_TRUE(GetProcessExePath(ZKString(ChildProcess::FileName().c_str())).IsEmpty());
    } else {
        EXPECT_NE(GetProcessID(ZKString(ChildProcess::FileName().c_str())), 0u);
        EXPECT_EQ(Text(GetProcessExePath(ZKString(ChildProcess::FileName().c_str()))), exe);
        ZKContainer<HINSTANCE__*> modules;
        EXPECT_TRUE(GetProcessModules(ZKString(ChildProcess::FileName().c_str()), modules));
        EXPECT_TRUE(IsProcess64Bit(ZKString(ChildProcess::FileName().c_str())));
        ProcessHandle const named = OpenProcessHandle(ZKString(ChildProcess::FileName().c_str()), 0x8);
        EXPECT_EQ(GetProcessID(named), GetProcessID(ZKString(ChildProcess::FileName().c_str())));
        CloseProcessHandle(named);
    }

    // The limited query is refused the path on Windows; either way the
    // identifier form only fails when the open fails.
    ProcessHandle const limited = OpenProcessHandle(child.Pid(), 0x10);
    ASSERT_NE(limited.handle, nullptr);
    ZKString limitedName("x");
    EXPECT_TRUE(GetProcessName(limited, limitedName));
    ZKContainer<ZKString> refused;
    EXPECT_FALSE(GetProcessModuleNames(limited, refused)) << "module lists need query and read rights";
    CloseProcessHandle(limited);

    unsigned long const gone = child.Pid();
    child.Stop();
    // Its pid may still open for a moment (Windows keeps the process object
    // while a handle is open, Wine a little longer); nothing more is given.
    ProcessHandle const late = OpenProcessHandle(gone, 0x408);
    if (late.handle != nullptr) CloseProcessHandle(late);
    EXPECT_TRUE(GetProcessExePath(gone).IsEmpty());
    ZKContainer<HINSTANCE__*> none;
    EXPECT_FALSE(GetProcessModules(gone, none));
    EXPECT_FALSE(DoesProcessMatchProcessName(gone, ChildProcess::FileName().c_str()));
}

TEST(Processes, BadIdentifiersNamesAndHandles)
{
    ZKContainer<HINSTANCE__*> modules;
    ZKContainer<ZKString> paths;
    ZKString name("kept");
    for (unsigned long pid : {0ul, 0x7FFFFFF0ul, 4ul}) {
        SCOPED_TRACE(pid);
        ProcessHandle const process = OpenProcessHandle(pid, 0x408);
        if (pid != 4) {
            EXPECT_EQ(process.handle, nullptr);
            EXPECT_TRUE(GetProcessExePath(pid).IsEmpty());
            EXPECT_FALSE(GetProcessModules(pid, modules));
            EXPECT_FALSE(GetProcessName(pid, name));
            EXPECT_FALSE(IsProcess64Bit(pid));
            EXPECT_EQ(OpenProcessTokenHandle(pid, 0x100).handle, nullptr);
        }
        // Pid 4 is a system process on Windows and a kernel thread's process
        // on Linux: whatever it gives, it gives without harm.
        GetProcessModuleNames(pid, paths);
        GetProcessExeDirectory(pid);
        if (process.handle != nullptr) CloseProcessHandle(process);
    }
    EXPECT_TRUE(name == "kept");
    EXPECT_EQ(modules.GetItemCount(), 0u);

    ProcessHandle const null;
    EXPECT_EQ(GetProcessID(null), 0u);
    EXPECT_TRUE(GetProcessExePath(null).IsEmpty());
    EXPECT_FALSE(GetProcessModules(null, modules));
    EXPECT_TRUE(DoesProcessMatchProcessName(null, ""));
    EXPECT_EQ(OpenProcessTokenHandle(null, 0x100).handle, nullptr);

    std::string const exe = Text(GetCurrentProcessExePath());
    ZKString own;
    GetProcessName(GetCurrentProcessHandle(), own);
    std::string upper = own.GetString();
    for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    for (std::string const& bad : {exe, upper, std::string(""), std::string("no such process")})
        EXPECT_EQ(GetProcessID(ZKString(bad.c_str())), 0u) << bad;
    EXPECT_EQ(GetProcessID(static_cast<HWND__*>(nullptr)), 0u);
}

TEST(Processes, PrivilegesAndAdministrator)
{
    TokenHandle const token = OpenProcessTokenHandle(GetCurrentProcessHandle(), 0x004 | 0x100);
    ASSERT_NE(token.handle, nullptr);
    EXPECT_FALSE(AdjustPrivilege(token, "SeNoSuchPrivilege", true));
    bool const admin = IsAppRunningAsAdminMode();
#if defined(_WIN32)
    EXPECT_TRUE(admin) << "Wine always runs as an elevated administrator";
#else
    EXPECT_EQ(admin, geteuid() == 0);
#endif
    // An administrator holds the debug privilege; anyone else may not.
    bool const adjusted = AdjustPrivilege(token, "SeDebugPrivilege", true);
    EXPECT_TRUE(adjusted || !admin);
    EXPECT_TRUE(AdjustAllPrivilege(token)) << "true even when only some are held";
    EXPECT_TRUE(AdjustPrivilege(token, "SeDebugPrivilege", true) || !admin);
    CloseTokenHandle(token);

    TokenHandle const byId = OpenProcessTokenHandle(GetCurrentProcessID(), 0x100);
    ASSERT_NE(byId.handle, nullptr);
    EXPECT_FALSE(AdjustPrivilege(byId, "SeDebugPrivilege", true)) << "a query-only token cannot be adjusted";
    CloseTokenHandle(byId);
}

TEST(Processes, EnvironmentAndShellLaunch)
{
#if defined(_WIN32)
    SetEnvironmentVariableA("ZK64_PROCESS_TEST", "a=b c");
#else
    setenv("ZK64_PROCESS_TEST", "a=b c", 1);
#endif
    ZKContainer<ZKString> const entries = GetCurrentProcessEnvironmentStrings();
    int found = 0;
    for (unsigned long long index = 0; index < entries.GetItemCount(); ++index)
        found += Text(entries[index]) == "ZK64_PROCESS_TEST=a=b c" ? 1 : 0;
    EXPECT_EQ(found, 1);

    EXPECT_TRUE(ExecuteShellProcess(ZKString(ChildProcess::Path().c_str()), ZKString("--exit"), false));
    EXPECT_FALSE(ExecuteShellProcess(ZKString("zk64-no-such-program-anywhere"), ZKString(""), false));
}

#if !defined(_WIN32)
namespace {

// The pids of /proc, with their command names.
std::set<unsigned long> ProcPids()
{
    std::set<unsigned long> pids;
    DIR* const proc = opendir("/proc");
    while (dirent* const entry = readdir(proc)) {
        char* end = nullptr;
        unsigned long const pid = std::strtoul(entry->d_name, &end, 10);
        if (pid != 0 && *end == '\0') pids.insert(pid);
    }
    closedir(proc);
    return pids;
}

std::string Comm(unsigned long pid)
{
    std::string text;
    if (FILE* file = std::fopen(("/proc/" + std::to_string(pid) + "/comm").c_str(), "r")) {
        char line[64] = {};
        if (std::fgets(line, sizeof line, file) != nullptr) text = line;
        std::fclose(file);
    }
    if (!text.empty() && text.back() == '\n') text.pop_back();
    return text;
}

}  // namespace

TEST(Processes, ListMatchesProcTakenAroundIt)
{
    ChildProcess child;
    std::set<unsigned long> const before = ProcPids();
    ZKContainer<ProcessInfo> list;
    ASSERT_TRUE(GetAllProcesses(list));
    std::set<unsigned long> const after = ProcPids();
    std::set<unsigned long> listed;
    for (unsigned long long index = 0; index < list.GetItemCount(); ++index) {
        ProcessInfo const& info = list.GetItem(index);
        EXPECT_TRUE(listed.insert(info.processID).second) << "one entry per process";
        EXPECT_TRUE(before.count(info.processID) || after.count(info.processID)) << info.processID;
        std::string const comm = Comm(info.processID);
        std::string const name = Text(info.processName);
        if (comm.size() < 15) {
            EXPECT_TRUE(comm.empty() || name == comm) << name << " vs " << comm;
        } else {
            EXPECT_EQ(name.compare(0, 15, comm, 0, 15), 0) << name << " begins with the cut name " << comm;
        }
        if (info.processID == GetCurrentProcessID()) {
            EXPECT_EQ(info.sessionID, static_cast<unsigned>(getsid(0)));
        }
    }
    for (unsigned long pid : before) {
        EXPECT_TRUE(!after.count(pid) || listed.count(pid)) << pid << " ran throughout";
    }
    // The helper's name is longer than 15 characters: the full file name.
    bool childListed = false;
    for (unsigned long long index = 0; index < list.GetItemCount(); ++index) {
        if (list.GetItem(index).processID == child.Pid())
            childListed = Text(list.GetItem(index).processName) == ChildProcess::FileName();
    }
    EXPECT_TRUE(childListed);
}
#endif
