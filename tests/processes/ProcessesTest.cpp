// The process operations on the real backend, natively on Linux and for the
// DLL under Wine: the test's own process, and a child it starts.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "ChildProcess.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace {

std::string Text(ZKString const& text) { return text.GetString(); }
unsigned long long Address(void const* pointer) { return reinterpret_cast<unsigned long long>(pointer); }

// Checks that a walk tiles [0, the top of the application range) in
// ascending order, and gives the record holding `address`.
VirtualMemoryAddressInfo CheckTiling(ZKContainer<VirtualMemoryAddressInfo> const& walk, unsigned long long address)
{
    VirtualMemoryAddressInfo holding;
    unsigned long long next = 0;
    for (unsigned long long index = 0; index < walk.GetItemCount(); ++index) {
        EXPECT_TRUE(walk[index].BaseAddress == next && walk[index].RegionSize > 0) << "record " << index;
        next = walk[index].BaseAddress + walk[index].RegionSize;
        if (address >= walk[index].BaseAddress && address < next) holding = walk[index];
    }
    EXPECT_GT(next, GetSystemMaxApplicationAddress());
    return holding;
}

}  // namespace

TEST(Processes, OwnProcessNamesModulesMemoryAndMetrics)
{
    unsigned long const pid = GetCurrentProcessID();
    std::string const exe = Text(GetCurrentProcessExePath());
    ProcessHandle const process = OpenProcessHandle(pid, 0x408);
    ASSERT_TRUE(process.handle != nullptr && !exe.empty());
    ZKString name;
    EXPECT_TRUE(GetProcessName(process, name) && DoesProcessMatchProcessName(pid, name.GetString()));
    EXPECT_EQ(Text(GetProcessExeDirectory(pid)) + exe[exe.size() - name.GetSize() - 1] + Text(name), exe);
    EXPECT_EQ(Text(GetProcessExePath(pid)), exe);
    EXPECT_TRUE(GetProcessID(process) == pid && GetProcessID(GetCurrentProcessHandle()) == pid);
    EXPECT_FALSE(DoesProcessMatchProcessName(pid, exe.c_str())) << "the file name, not the path";
    ZKContainer<HINSTANCE__*> modules;
    ASSERT_TRUE(GetProcessModules(process, modules) && modules.GetItemCount() > 2);
    EXPECT_EQ(modules[0], GetCurrentProcessExeHINSTANCE()) << "the executable's module comes first";
    ZKContainer<ZKString> paths;
    ASSERT_TRUE(GetProcessModuleNames(process, paths));
    EXPECT_EQ(Text(paths[0]), exe);
    HINSTANCE__* library = nullptr;
    EXPECT_TRUE(GetProcessModule(pid, ZKString(RunningUnderWine() ? "zk64.dll" : "libzk64"), library) && library);
    EXPECT_TRUE(IsProcess64Bit(process) && !IsProcess32Bit(process) && IsCurrentProcess64Bit());
    EXPECT_TRUE(GetProcessWorkingSetSizeBytes(pid) > (1u << 20) && GetProcessPagefileUsageBytes(process) > 0);
    EXPECT_GE(GetProcessPeakPagefileUsageBytes(process), GetProcessPagefileUsageBytes(process));
    EXPECT_EQ(GetProcessNumOfHandles(pid) >= 3, !RunningUnderWine()) << "Wine reports no handles";
    CloseProcessHandle(process);

    std::vector<char> buffer(2 * 4096, 'a');
    ZKContainer<VirtualMemoryAddressInfo> walk;
    ASSERT_TRUE(GetProcessVirtualMemoryAddresses(pid, walk));
    VirtualMemoryAddressInfo part = CheckTiling(walk, Address(buffer.data()));
    EXPECT_TRUE(walk[0].IsStateFree() && part.IsStateCommit() && part.IsProtectReadWrite());
    VirtualMemoryAddressInfo const image = CheckTiling(walk, Address(GetCurrentProcessExeHINSTANCE()));
    EXPECT_TRUE(image.IsTypeImage() && image.IsProtectReadOnly());
    std::memcpy(buffer.data() + 100, "zk64\0marker", 11);
    part.BaseAddress = Address(buffer.data());
    part.RegionSize = buffer.size();
    ZKString bytes;
    ASSERT_TRUE(GetVirtualMemoryData(GetCurrentProcessHandle(), part, bytes));
    EXPECT_EQ(std::string(bytes.GetString(), static_cast<std::size_t>(bytes.GetSize())),
              std::string(buffer.data(), buffer.size()));
    part.RegionSize = 4;
    EXPECT_TRUE(SetVirtualMemoryData(pid, part, ZKString("0123456789", 10)));
    EXPECT_EQ(std::string(buffer.data(), 5), "0123a");
    part.RegionSize = 1ull << 40;
    EXPECT_FALSE(GetVirtualMemoryData(pid, part, bytes)) << "more than the machine has";

#if defined(_WIN32)
    SetEnvironmentVariableA("ZK64_PROCESS_TEST", "a=b c");
#else
    setenv("ZK64_PROCESS_TEST", "a=b c", 1);
#endif
    ZKContainer<ZKString> const entries = GetCurrentProcessEnvironmentStrings();
    int found = 0;
    for (unsigned long long index = 0; index < entries.GetItemCount(); ++index)
        found += Text(entries[index]) == "ZK64_PROCESS_TEST=a=b c";
    EXPECT_EQ(found, 1);
    TokenHandle const token = OpenProcessTokenHandle(GetCurrentProcessHandle(), 0x004 | 0x100);
    EXPECT_FALSE(AdjustPrivilege(token, "SeNoSuchPrivilege", true));
    EXPECT_TRUE(AdjustAllPrivilege(token)) << "true even when only some are held";
    CloseTokenHandle(token);
#if !defined(_WIN32)
    EXPECT_EQ(IsAppRunningAsAdminMode(), geteuid() == 0);
#endif
}

TEST(Processes, ChildThroughEveryForm)
{
    ChildProcess child;
    unsigned long const pid = child.Pid();
    ZKString const fileName(ChildProcess::FileName().c_str());
    ZKContainer<ZKString> paths;
    for (int attempt = 0; attempt < 200 && paths.GetItemCount() < 2; ++attempt) {
        paths = ZKContainer<ZKString>();
        GetProcessModuleNames(pid, paths);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    ASSERT_GT(paths.GetItemCount(), 1u) << "the loader has mapped the child's modules";
    EXPECT_TRUE(Text(paths[0]) == ChildProcess::Path() && Text(GetProcessExePath(pid)) == ChildProcess::Path());
    EXPECT_TRUE(DoesProcessMatchProcessName(pid, fileName.GetString()) && IsProcess64Bit(pid));
    ZKContainer<ProcessInfo> list;
    ASSERT_TRUE(GetAllProcesses(list));
    // Wine lists no process at all: there the name forms find nothing.
    EXPECT_EQ(GetProcessID(fileName), list.GetItemCount() == 0 ? 0 : pid);
    EXPECT_EQ(GetProcessExePath(fileName).IsEmpty(), list.GetItemCount() == 0);

    EXPECT_EQ(GetProcessPriorityClass(pid), GetProcessPriorityClass(GetCurrentProcessHandle())) << "inherited";
    for (int index = 0; index <= 5; ++index) {
        EXPECT_TRUE(SetProcessPriorityClass(pid, static_cast<ProcessPriorityClass>(index)));
        EXPECT_EQ(GetProcessPriorityClass(pid), static_cast<ProcessPriorityClass>(index));
    }
    EXPECT_FALSE(SetProcessPriorityClass(pid, ProcessPriorityUnknown));
    unsigned long long system = 0, mask = 0;
    ASSERT_TRUE(GetSystemAffinity(system) && GetProcessAffinity(pid, mask));
    EXPECT_EQ(mask & ~system, 0u);
    EXPECT_TRUE(SetProcessAffinity(pid, system & (~system + 1)) && GetProcessAffinity(pid, mask));
    EXPECT_EQ(mask, system & (~system + 1));
    EXPECT_FALSE(SetProcessAffinity(pid, 0)) << "an empty mask is refused";
    ProcessHandle const query = OpenProcessHandle(pid, 0x8);
    EXPECT_FALSE(SetProcessAffinity(query, system) || SetProcessPriorityClass(query, ProcessPriorityNormal));
    ZKContainer<ZKString> refused;
    EXPECT_FALSE(GetProcessModuleNames(query, refused)) << "module lists need query and read rights";

    ZKString kept("kept");
    ProcessPackageInfo info;
    EXPECT_FALSE(IsProcessUniversalWindowsPlatform(pid) || GetProcessPackageFullName(query, kept) ||
                 GetProcessPackageFamilyName(fileName, kept) || GetProcessPackageInfo(pid, info));
    EXPECT_TRUE(kept == "kept" && GetUniversalWindowsPlatformIconPath(pid).IsEmpty()) << "no package";
    CloseProcessHandle(query);

    std::string const dump = Text(GetCurrentProcessExeDirectory()) + "/zk64-child.dmp";
    std::remove(dump.c_str());
    bool const dumped = CreateProcessDumpFile(dump.c_str(), pid, 0xFFFFFFFF00000000ull);
    EXPECT_EQ(dumped, RunningUnderWine()) << "the bits above the low 32 never reach the system";
    if (FILE* file = std::fopen(dump.c_str(), "rb")) {
        char magic[5] = {};
        EXPECT_TRUE(std::fread(magic, 1, 4, file) == 4 && std::string(magic) == "MDMP");
        std::fclose(file);
    }
    EXPECT_FALSE(CreateProcessDumpFile(dump.c_str(), ProcessHandle{}, 0));
    EXPECT_EQ(std::fopen(dump.c_str(), "rb"), nullptr) << "a failed dump leaves no file, not even the one it replaced";
    EXPECT_EQ(GetProcessIcon(pid), nullptr) << "a program without icon resources";

    child.Stop();
    EXPECT_TRUE(GetProcessExePath(pid).IsEmpty());
    EXPECT_FALSE(DoesProcessMatchProcessName(pid, fileName.GetString()));
}

TEST(Processes, BadIdentifiersNamesAndHandles)
{
    ZKContainer<HINSTANCE__*> modules;
    ZKContainer<VirtualMemoryAddressInfo> walk;
    ZKString name("kept");
    unsigned long long mask = 0x5A;
    for (unsigned long pid : {0ul, 0x7FFFFFF0ul}) {
        EXPECT_TRUE(OpenProcessHandle(pid, 0x408).handle == nullptr && GetProcessExePath(pid).IsEmpty());
        EXPECT_FALSE(GetProcessModules(pid, modules) || GetProcessName(pid, name) || IsProcess64Bit(pid) ||
                     GetProcessVirtualMemoryAddresses(pid, walk) || SetProcessAffinity(pid, 1) ||
                     GetProcessAffinity(pid, mask));
        EXPECT_EQ(GetProcessPriorityClass(pid), ProcessPriorityUnknown);
        EXPECT_EQ(GetProcessWorkingSetMaxSizeBytes(pid) + GetProcessNumOfHandles(pid), 0u);
    }
    EXPECT_TRUE(name == "kept" && modules.GetItemCount() == 0 && walk.GetItemCount() == 0 && mask == 0x5A);
    ZKString const unknown("zk64 no such process");
    ProcessPackageInfo info;
    EXPECT_FALSE(IsProcessUniversalWindowsPlatform(unknown) || GetProcessPackageFullName(unknown, name) ||
                 GetProcessPackageFamilyName(unknown, name) || GetProcessPackageInfo(unknown, info) ||
                 IsProcessUniversalWindowsPlatform(0ul) || GetProcessPackageFamilyName(0ul, name) ||
                 GetProcessPackageInfo(0ul, info));
    EXPECT_TRUE(SetProcessPriorityClass(unknown, ProcessPriorityIdle) && SetProcessAffinity(unknown, 1))
        << "true for an unknown name";
    EXPECT_FALSE(GetProcessVirtualMemoryAddresses(unknown, walk) ||
                 CreateProcessDumpFile("zk64-by-name.dmp", unknown, 2));
    EXPECT_TRUE(GetProcessID(unknown) == 0 && GetProcessID(ZKString(GetCurrentProcessExePath())) == 0 &&
                GetProcessID(ZKString("")) == 0);
    EXPECT_TRUE(GetProcessID(ProcessHandle{}) == 0 && DoesProcessMatchProcessName(ProcessHandle{}, ""));
    EXPECT_TRUE(ExecuteShellProcess(ZKString(ChildProcess::Path().c_str()), ZKString("--exit"), false));
    EXPECT_FALSE(ExecuteShellProcess(ZKString("zk64-no-such-program-anywhere"), ZKString(""), false));
}

#if defined(_WIN32)
TEST(ProcessIcons, StockAndExecutableIcons)
{
    for (HICON__* (*stock)() : {GetDefaultApplicationIcon, GetDefaultStopSignIcon, GetDefaultQuestionMarkIcon,
                                GetDefaultExclamationPointIcon, GetDefaultAsteriskIcon})
        EXPECT_TRUE(stock() != nullptr && stock() == stock()) << "shared: the same handle each time";
    std::string const directory = Text(GetCurrentProcessExeDirectory());
    HICON__* const withIcon = GetExeFileIcon((directory + "\\zk64_process_icon_child.exe").c_str());
    EXPECT_NE(withIcon, nullptr);
    DestroyProcessIcon(withIcon);
    EXPECT_EQ(GetExeFileIcon((directory + "\\missing.exe").c_str()), nullptr);
}
#endif
