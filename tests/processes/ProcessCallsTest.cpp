// The exact platform calls behind the process, metrics and memory
// operations, through the fake backend: access words, the identifier and
// name forms, the process list, modules, paths, bitness, privileges, the
// administrator test, counters, scheduling and the memory walk.

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <vector>

#include "FakeProcess.h"
#include "platform/Files.h"

namespace {

HINSTANCE__* Module(std::uintptr_t value) { return reinterpret_cast<HINSTANCE__*>(value); }
std::string Join(std::string const& directory, std::string const& name)
{
    return directory + platform::kPathSeparator + name;
}
// {session 1, pid 4, "System"}, {2, 30, "app.exe"}, {3, 31, "app.exe"}, {4, 32,
// "App.exe"}, {5, 33, no name}.
std::vector<platform::WtsProcessInfoA> rows = {{1, 4, const_cast<char*>("System"), nullptr},
                                               {2, 30, const_cast<char*>("app.exe"), &rows},
                                               {3, 31, const_cast<char*>("app.exe"), nullptr},
                                               {4, 32, const_cast<char*>("App.exe"), nullptr},
                                               {5, 33, nullptr, nullptr}};
using ProcessCalls = FakeTest;
using MetricsCalls = FakeTest;
using MemoryCalls = FakeTest;

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
        EXPECT_EQ(fake::TakeCalls(), (Calls{OpenCall(static_cast<DWORD>(row[1]), 77), "GetLastError()",
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
    ProcessPackageInfo package;
    VirtualMemoryAddressInfo region;
    unsigned long long mask = 0x33;
    std::vector<std::pair<DWORD, std::function<bool()>>> const table = {
        // {rights, the call: whether it gave the failure value}
        {0x1000, [&] { return !GetProcessName(9ul, name); }},
        {0x410, [&] { return GetProcessExeDirectory(9ul).IsEmpty(); }},
        {0x400, [&] { return !IsProcess64Bit(9ul); }},
        {0x410, [&] { return !GetProcessModules(9ul, modules); }},
        {0x410, [&] { return !GetProcessModuleNames(9ul, paths); }},
        {0x410, [&] { return OpenProcessTokenHandle(9ul, 0x100).handle == nullptr; }},
        {0x410, [&] { return GetProcessWorkingSetMaxSizeBytes(9ul) == 0; }},
        {0x400, [&] { return GetProcessNumOfGDIHandles(9ul) == 0; }},
        {0x400, [&] { return GetProcessPriorityClass(9ul) == ProcessPriorityUnknown; }},
        {0x200, [&] { return !SetProcessPriorityClass(9ul, ProcessPriorityHigh); }},
        {0x400, [&] { return !GetProcessAffinity(9ul, mask = 0x33) && mask == 0x33; }},
        {0x200, [&] { return !SetProcessAffinity(9ul, mask); }},
        {0x400, [&] { return !IsProcessUniversalWindowsPlatform(9ul); }},
        {0x400, [&] { return !GetProcessPackageFullName(9ul, name); }},
        {0x400, [&] { return !GetProcessPackageFamilyName(9ul, name); }},
        {0x400, [&] { return !GetProcessPackageInfo(9ul, package); }},
        {0x400, [&] { return GetProcessIcon(9ul) == nullptr; }},
        {0x410, [&] { return !CreateProcessDumpFile("app.dmp", 9ul, 2ull); }},
        {0x28, [&] { return !SetVirtualMemoryData(9ul, region, name); }},
    };
    for (auto const& [rights, failed] : table) {
        fake::Processes().OpenProcess = [](DWORD, BOOL, DWORD) { return kHandle; };
        failed();
        Calls const calls = fake::TakeCalls();
        EXPECT_EQ(calls.front() + calls.back(), OpenCall(rights, 9) + "CloseHandle(handle=0x44)");
        fake::Processes().OpenProcess = nullptr;
        EXPECT_TRUE(failed()) << calls.front();
        EXPECT_EQ(fake::TakeCalls(), (Calls{OpenCall(rights, 9), "GetLastError()"}));
    }
    // This one closes even the null handle: a process that cannot be opened
    // has the empty name.
    EXPECT_TRUE(DoesProcessMatchProcessName(9ul, "") && !DoesProcessMatchProcessName(9ul, "app.exe"));
    EXPECT_EQ(fake::TakeCalls().at(2), "CloseHandle(handle=null)");
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
              (Calls{"WTSEnumerateProcessesA(server=null, reserved=0, version=1, processes=out, count=out)",
                     "WTSFreeMemory(" + fake::Pointer(rows.data()) + ")", OpenCall(0x410, 30),
                     "K32GetModuleFileNameExA(0x44, module=null, buffer=out, size=260)", "CloseHandle(handle=0x44)"}));
    ZKContainer<ZKString> paths;
    ProcessPackageInfo package;
    EXPECT_FALSE(GetProcessModuleNames(ZKString("nope.exe"), paths) || GetProcessPackageInfo(ZKString("x"), package));
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
        std::string const path = index == 2 ? "" : Join("lib", "m" + std::to_string(index) + ".dll");  // 2: unreadable
        std::memcpy(buffer, path.c_str(), path.size() + 1);
        return static_cast<DWORD>(path.size());
    };
    HINSTANCE__* found = Module(1);
    EXPECT_TRUE(GetProcessModuleNames(kProcess, paths) && paths.GetItemCount() == 2) << "the unreadable one is skipped";
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
        EXPECT_EQ(IsProcess32Bit(kProcess) * 2 + IsProcess64Bit(kProcess), row[2] * 2 + row[3]) << row[0] << row[1];
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
    EXPECT_FALSE(AdjustPrivilege(token, "SeNoSuchPrivilege", true) ||
                 AdjustPrivilege(token, "SeDebugPrivilege", false));
    EXPECT_TRUE(AdjustAllPrivilege(token)) << "the nine-at-once form ignores partial success";
    EXPECT_EQ(fake::TakeCalls(),
              (Calls{"LookupPrivilegeValueA(system=null, name=\"SeNoSuchPrivilege\", luid=out)",
                     "LookupPrivilegeValueA(system=null, name=\"SeDebugPrivilege\", luid=out)",
                     "AdjustTokenPrivileges(0x44, disableAll=0, count=1 [20.0:0], bufferLength=16, previous=null, "
                     "returnLength=null)",
                     "GetLastError()",
                     "AdjustTokenPrivileges(0x44, disableAll=0, count=9 [20.0:2 14.0:2 33.0:2 10.0:2 13.0:2 17.0:2 "
                     "18.0:2 19.0:2 9.0:2], bufferLength=0, previous=null, returnLength=null)"}));

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
    std::string const allocate = "AllocateAndInitializeSid(authority=0.0.0.0.0.5, count=2, sub=32,544,0,0,0,0,0,0)";
    auto const check = [&] { return "CheckTokenMembership(null, sid=" + fake::Pointer(sid) + ", member=out)"; };
    EXPECT_TRUE(IsAppRunningAsAdminMode());
    EXPECT_EQ(fake::TakeCalls(), (Calls{allocate, check(), "FreeSid(" + fake::Pointer(sid) + ")"}));
    answer = 0;
    try {
        IsAppRunningAsAdminMode();
        ADD_FAILURE() << "no exception";
    } catch (unsigned long code) {
        EXPECT_EQ(code, 5ul);
    }
    EXPECT_EQ(fake::TakeCalls(), (Calls{allocate, check(), "GetLastError()", "FreeSid(" + fake::Pointer(sid) + ")"}));
}

TEST_F(MetricsCalls, CountersSchedulingAndAffinity)
{
    BOOL answer = 1;
    fake::Processes().K32GetProcessMemoryInfo = [&](HANDLE, platform::ProcessMemoryCounters* counters) {
        counters->PageFaultCount = 0xFFFFFFF0u;
        ULONGLONG* sizes = &counters->PeakWorkingSetSize;
        for (int index = 0; index < 8; ++index) sizes[index] = (ULONGLONG{1} << 40) + static_cast<ULONGLONG>(index);
        return answer;
    };
    unsigned long long (*const counters[])(ProcessHandle) = {GetProcessPageFaultCount,
                                                             GetProcessPeakWorkingSetSizeBytes,
                                                             GetProcessWorkingSetSizeBytes,
                                                             GetProcessQuotaPeakPagedPoolUsageBytes,
                                                             GetProcessQuotaPagedPoolUsageBytes,
                                                             GetProcessQuotaPeakNonPagedPoolUsageBytes,
                                                             GetProcessQuotaNonPagedPoolUsageBytes,
                                                             GetProcessPagefileUsageBytes,
                                                             GetProcessPeakPagefileUsageBytes};
    for (int index = 0; index < 9; ++index)
        EXPECT_EQ(counters[index](kProcess), index == 0 ? 0xFFFFFFF0ull : (1ull << 40) + index - 1) << index;
    EXPECT_EQ(fake::TakeCalls().at(8), "K32GetProcessMemoryInfo(0x44, counters=out, size=72)");
    answer = 0;
    for (auto counter : counters) EXPECT_EQ(counter(kProcess), 0u) << "a failed call gives 0, whatever it wrote";
    fake::Processes().GetProcessWorkingSetSizeEx = [](HANDLE, ULONGLONG* minimum, ULONGLONG* maximum) {
        *minimum = 200 * 4096;
        *maximum = 1380 * 4096;
        return 0;  // the result is not examined
    };
    EXPECT_EQ(GetProcessWorkingSetMinSizeBytes(kProcess) + 2 * GetProcessWorkingSetMaxSizeBytes(kProcess),
              2960u * 4096);

    // The library's classes 0 to 5 against the system's numbers.
    DWORD const system[] = {256, 128, 32768, 32, 16384, 64};
    DWORD current = 0x20 | 0x40;
    fake::Processes().GetPriorityClass = [&](HANDLE) { return current; };
    fake::Processes().SetPriorityClass = [&](HANDLE, DWORD value) {
        current = value;
        return value != 0 ? 1 : 0;
    };
    EXPECT_EQ(GetProcessPriorityClass(kProcess), ProcessPriorityUnknown);
    for (int index = 0; index <= ProcessPriorityUnknown; ++index) {  // the unknown class sets 0, which fails
        EXPECT_EQ(SetProcessPriorityClass(kProcess, static_cast<ProcessPriorityClass>(index)), index < 6);
        EXPECT_EQ(current, index < 6 ? system[index] : 0);
        EXPECT_EQ(GetProcessPriorityClass(kProcess), static_cast<ProcessPriorityClass>(index));
    }

    fake::Processes().GetProcessAffinityMask = [&](HANDLE, ULONGLONG* processMask, ULONGLONG* systemMask) {
        *processMask = 0x5;
        *systemMask = 0xF;
        return answer;
    };
    unsigned long long process = 0x100, all = 0x100;
    EXPECT_FALSE(GetProcessAffinity(kProcess, process) || GetSystemAffinity(all) || SetProcessAffinity(kProcess, 1));
    EXPECT_EQ(process * 16 + all, 0x5Fu) << "stored even after a failure";
    answer = 1;
    EXPECT_TRUE(GetProcessAffinity(kProcess, process) && GetSystemAffinity(all));
}

TEST_F(MemoryCalls, WalkReadAndWrite)
{
    fake::System().GetNativeSystemInfo = [](platform::NativeSystemInfo* system) {
        system->lpMaximumApplicationAddress = reinterpret_cast<void*>(0x3FFF);
    };
    // Regions of 0x1000 bytes at 0, 0x1000 and 0x3000; a query of 0x2000 fails.
    fake::Memory().VirtualQueryEx = [](void const* address, platform::MemoryBasicInformation* region) {
        auto const at = reinterpret_cast<unsigned long long>(address);
        if (at == 0x2000 || at > 0x3000) return std::size_t{0};
        region->BaseAddress = const_cast<void*>(address);
        region->RegionSize = 0x1000;
        region->Type = 0x20000;
        return std::size_t{48};
    };
    ZKContainer<VirtualMemoryAddressInfo> out;
    out.PushBack(VirtualMemoryAddressInfo());
    ASSERT_TRUE(GetProcessVirtualMemoryAddresses(kProcess, out));
    ASSERT_EQ(out.GetItemCount(), 5u) << "appended";
    EXPECT_TRUE(out[3] == out[2]) << "a failed query repeats the previous region and moves on by its size";
    EXPECT_TRUE(out[4].BaseAddress == 0x3000 && out[4].IsTypePrivate());
    EXPECT_EQ(fake::TakeCalls().at(1), "VirtualQueryEx(0x44, address=0x0, information=out, length=48)");
    fake::System().GetNativeSystemInfo = [](platform::NativeSystemInfo* system) {
        system->lpMaximumApplicationAddress = reinterpret_cast<void*>(~0ull);
    };
    EXPECT_TRUE(GetProcessVirtualMemoryAddresses(kProcess, out));
    EXPECT_EQ(out.GetItemCount(), 5u + 4u + 64u) << "64 failed queries in a row end the walk";

    fake::System().GlobalMemoryStatusEx = [](platform::MemoryStatusEx* status) {
        status->ullTotalPageFile = 1ull << 34;
        return 1;
    };
    fake::Memory().ReadProcessMemory = [&](void const*, void* buffer, std::size_t size) {
        std::memset(buffer, 'x', size / 2);
        return 0;  // partly read
    };
    VirtualMemoryAddressInfo region;
    region.BaseAddress = 0x5000;
    ZKString text("old text that is long");
    for (unsigned long long size : {8ull, (1ull << 34) + 1, ~0ull}) {  // the last two are refused, text untouched
        region.RegionSize = size;
        EXPECT_FALSE(GetVirtualMemoryData(kProcess, region, text));
        EXPECT_EQ(std::string(text.GetString(), static_cast<std::size_t>(text.GetSize())), "xxxxtext");
    }

    std::string written;
    fake::Memory().WriteProcessMemory = [&](void*, void const* buffer, std::size_t size) {
        written.assign(static_cast<char const*>(buffer), size);
        return 1;
    };
    region.RegionSize = 4;
    ZKString const data("ab\0cdef", 7);
    EXPECT_TRUE(SetVirtualMemoryData(kProcess, region, data));
    EXPECT_EQ(written, std::string("ab\0c", 4)) << "RegionSize bytes, zero bytes included";
    EXPECT_TRUE(SetVirtualMemoryData(kProcess, reinterpret_cast<unsigned char*>(0x9000), data, 7));
    EXPECT_FALSE(SetVirtualMemoryData(kProcess, reinterpret_cast<unsigned char*>(0x9000), data, 8));
    EXPECT_EQ(fake::TakeCalls().back(), "WriteProcessMemory(0x44, address=0x9000, buffer=out, size=7, done=null)")
        << "nothing is read past the string";
}
