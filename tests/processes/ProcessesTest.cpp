// The process operations on the real backend, natively on Linux and for the
// DLL under Wine: the test's own process, and a child it starts.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "ChildProcess.h"

namespace {
std::string Text(ZKString const& text) { return text.GetString(); }
}  // namespace

TEST(Processes, OwnProcessNamesModulesAndMemory)
{
    unsigned long const pid = GetCurrentProcessID();
    std::string const exe = Text(GetCurrentProcessExePath());
    ProcessHandle const process = OpenProcessHandle(pid, 0x408);
    ZKString name;
    ASSERT_TRUE(process.handle != nullptr && GetProcessName(process, name) && !exe.empty());
    EXPECT_EQ(Text(GetProcessExeDirectory(pid)) + exe[exe.size() - name.GetSize() - 1] + Text(name), exe);
    EXPECT_TRUE(GetProcessID(process) == pid && IsProcess64Bit(process) && !IsProcess32Bit(process));
    ZKContainer<HINSTANCE__*> modules;
    ASSERT_TRUE(GetProcessModules(process, modules) && modules.GetItemCount() > 2);
    EXPECT_EQ(modules[0], GetCurrentProcessExeHINSTANCE()) << "the executable's module comes first";
    EXPECT_TRUE(GetProcessWorkingSetSizeBytes(pid) > (1u << 20) && GetProcessPagefileUsageBytes(process) > 0);
    CloseProcessHandle(process);

    // The walk tiles the address range from 0 in ascending order.
    std::vector<char> buffer(2 * 4096, 'a');
    auto const address = reinterpret_cast<unsigned long long>(buffer.data());
    ZKContainer<VirtualMemoryAddressInfo> walk;
    ASSERT_TRUE(GetProcessVirtualMemoryAddresses(pid, walk));
    VirtualMemoryAddressInfo part;
    unsigned long long next = 0;
    for (unsigned long long index = 0; index < walk.GetItemCount(); ++index) {
        EXPECT_TRUE(walk[index].BaseAddress == next && walk[index].RegionSize > 0) << "record " << index;
        next = walk[index].BaseAddress + walk[index].RegionSize;
        if (address >= walk[index].BaseAddress && address < next) part = walk[index];
    }
    EXPECT_GT(next, GetSystemMaxApplicationAddress());
    EXPECT_TRUE(walk[0].IsStateFree() && part.IsStateCommit() && part.IsProtectReadWrite());
    part.BaseAddress = address;
    part.RegionSize = 4;
    ZKString bytes;
    EXPECT_TRUE(SetVirtualMemoryData(pid, part, ZKString("0123456789", 10)));
    ASSERT_TRUE(GetVirtualMemoryData(GetCurrentProcessHandle(), part, bytes));
    EXPECT_EQ(std::string(bytes.GetString(), static_cast<std::size_t>(bytes.GetSize())) + buffer[4], "0123a");
}

TEST(Processes, ChildAndBadIdentifiers)
{
    ChildProcess child;
    unsigned long const pid = child.Pid();
    ZKContainer<ZKString> paths;
    for (int attempt = 0; attempt < 200 && paths.GetItemCount() < 2; ++attempt) {
        paths = ZKContainer<ZKString>();
        GetProcessModuleNames(pid, paths);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    ASSERT_GT(paths.GetItemCount(), 1u) << "the loader has mapped the child's modules";
    EXPECT_TRUE(Text(paths[0]) == ChildProcess::Path() &&
                DoesProcessMatchProcessName(pid, ChildProcess::FileName().c_str()));
    ZKContainer<ProcessInfo> list;
    ASSERT_TRUE(GetAllProcesses(list));
    EXPECT_EQ(GetProcessID(ZKString(ChildProcess::FileName().c_str())), list.GetItemCount() == 0 ? 0 : pid)
        << "Wine lists no process at all";
    EXPECT_TRUE(SetProcessPriorityClass(pid, ProcessPriorityHigh) && SetProcessAffinity(pid, 1));
    unsigned long long mask = 0;
    EXPECT_TRUE(GetProcessPriorityClass(pid) == ProcessPriorityHigh && GetProcessAffinity(pid, mask) && mask == 1);
    EXPECT_FALSE(SetProcessAffinity(pid, 0)) << "an empty mask is refused";

    std::string const dump = Text(GetCurrentProcessExeDirectory()) + "/zk64-child.dmp";
    std::remove(dump.c_str());
    EXPECT_EQ(CreateProcessDumpFile(dump.c_str(), pid, 0xFFFFFFFF00000000ull), RunningUnderWine())
        << "the bits above the low 32 never reach the system";
    EXPECT_FALSE(CreateProcessDumpFile(dump.c_str(), ProcessHandle{}, 0));
    EXPECT_EQ(std::fopen(dump.c_str(), "rb"), nullptr) << "a failed dump leaves no file, not even the one it replaced";
    EXPECT_TRUE(GetUniversalWindowsPlatformIconPath(pid).IsEmpty() && GetProcessIcon(pid) == nullptr) << "no package";
    child.Stop();
    ZKString kept("kept");
    EXPECT_FALSE(GetProcessName(0ul, kept) || GetProcessName(0x7FFFFFF0ul, kept) || IsProcess64Bit(0x7FFFFFF0ul));
    EXPECT_TRUE(kept == "kept" && GetProcessExePath(pid).IsEmpty());
    EXPECT_TRUE(ExecuteShellProcess(ZKString(ChildProcess::Path().c_str()), ZKString("--exit"), false));
    EXPECT_FALSE(ExecuteShellProcess(ZKString("zk64-no-such-program-anywhere"), ZKString(""), false));
}

#if defined(_WIN32)
TEST(ProcessIcons, StockAndExecutableIcons)
{
    EXPECT_TRUE(GetDefaultApplicationIcon() != nullptr && GetDefaultApplicationIcon() == GetDefaultApplicationIcon());
    std::string const directory = Text(GetCurrentProcessExeDirectory());
    HICON__* const withIcon = GetExeFileIcon((directory + "\\zk64_process_icon_child.exe").c_str());
    EXPECT_NE(withIcon, nullptr);
    DestroyProcessIcon(withIcon);
    EXPECT_EQ(GetExeFileIcon((directory + "\\missing.exe").c_str()), nullptr);
}
#endif
