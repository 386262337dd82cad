// The exact platform calls behind the process metrics and scheduling
// operations, through the fake backend.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <functional>
#include <string>
#include <vector>

#include "FakeProcess.h"

using MetricsCalls = FakeTest;

TEST_F(MetricsCalls, CountersReadTheirOwnFieldAndStartFromZero)
{
    BOOL answer = 1;
    fake::Processes().K32GetProcessMemoryInfo = [&](HANDLE, platform::ProcessMemoryCounters* counters) {
        counters->PageFaultCount = 0xFFFFFFF0u;
        ULONGLONG* sizes = &counters->PeakWorkingSetSize;
        for (int index = 0; index < 8; ++index) sizes[index] = (ULONGLONG{1} << 40) + static_cast<ULONGLONG>(index);
        return answer;
    };
    using Counter = unsigned long long (*)(ProcessHandle);
    Counter const counters[] = {GetProcessPeakWorkingSetSizeBytes,
                                GetProcessWorkingSetSizeBytes,
                                GetProcessQuotaPeakPagedPoolUsageBytes,
                                GetProcessQuotaPagedPoolUsageBytes,
                                GetProcessQuotaPeakNonPagedPoolUsageBytes,
                                GetProcessQuotaNonPagedPoolUsageBytes,
                                GetProcessPagefileUsageBytes,
                                GetProcessPeakPagefileUsageBytes};
    EXPECT_EQ(GetProcessPageFaultCount(kProcess), 0xFFFFFFF0ull);
    for (int index = 0; index < 8; ++index)
        EXPECT_EQ(counters[index](kProcess), (1ull << 40) + static_cast<unsigned>(index)) << index;
    EXPECT_EQ(fake::TakeCalls(), Calls(9, "K32GetProcessMemoryInfo(0x44, counters=out, size=72)"));
    answer = 0;
    EXPECT_EQ(GetProcessPageFaultCount(kProcess) + counters[0](kProcess) + counters[7](kProcess), 0u)
        << "a failed call gives 0, whatever it wrote";

    fake::Processes().GetProcessHandleCount = [&](HANDLE, DWORD* count) {
        *count = 17;
        return answer;
    };
    EXPECT_EQ(GetProcessNumOfHandles(kProcess), 0u) << "a failed call gives 0";
    answer = 1;
    EXPECT_EQ(GetProcessNumOfHandles(kProcess), 17u);
    fake::Processes().GetGuiResources = [](HANDLE) { return DWORD{23}; };
    EXPECT_EQ(GetProcessNumOfGDIHandles(kProcess), 23u);
    EXPECT_EQ(GetProcessWorkingSetMinSizeBytes(kProcess), 0u) << "unscripted: the outputs keep their 0";
    fake::Processes().GetProcessWorkingSetSizeEx = [](HANDLE, ULONGLONG* minimum, ULONGLONG* maximum) {
        *minimum = 200 * 4096;
        *maximum = 1380 * 4096;
        return 0;  // the result is not examined
    };
    EXPECT_EQ(GetProcessWorkingSetMinSizeBytes(kProcess) + GetProcessWorkingSetMaxSizeBytes(kProcess), 1580u * 4096);
    fake::TakeCalls();
    GetProcessWorkingSetMaxSizeBytes(kProcess);
    EXPECT_EQ(fake::TakeCalls(), Calls{"GetProcessWorkingSetSizeEx(0x44, minimum=0x0, maximum=0x0, flags=null)"});
}

TEST_F(MetricsCalls, IdentifierAndNameFormsOpenWithTheirWord)
{
    fake::Processes().OpenProcess = [](DWORD, BOOL, DWORD) { return kHandle; };
    unsigned long long mask = 0;
    std::vector<std::pair<DWORD, std::function<void()>>> const table = {
        {0x410, [] { GetProcessWorkingSetSizeBytes(9ul); }},
        {0x410, [] { GetProcessPeakPagefileUsageBytes(9ul); }},
        {0x400, [] { GetProcessNumOfHandles(9ul); }},
        {0x400, [] { GetProcessNumOfGDIHandles(9ul); }},
        {0x410, [] { GetProcessWorkingSetMinSizeBytes(9ul); }},
        {0x410, [] { GetProcessWorkingSetMaxSizeBytes(9ul); }},
        {0x400, [] { GetProcessPriorityClass(9ul); }},
        {0x200, [] { SetProcessPriorityClass(9ul, ProcessPriorityHigh); }},
        {0x400, [&] { GetProcessAffinity(9ul, mask); }},
        {0x200, [&] { SetProcessAffinity(9ul, mask); }},
    };
    for (auto const& [rights, call] : table) {
        call();
        Calls const calls = fake::TakeCalls();
        ASSERT_EQ(calls.size(), 3u);
        EXPECT_EQ(calls.front() + calls.back(),
                  "OpenProcess(access=" + fake::Hex(rights) + ", inherit=0, pid=9)CloseHandle(handle=0x44)");
    }
    fake::Processes().OpenProcess = nullptr;
    mask = 0x33;
    EXPECT_EQ(GetProcessPageFaultCount(9ul) + GetProcessWorkingSetMaxSizeBytes(9ul) + GetProcessNumOfGDIHandles(9ul),
              0u);
    EXPECT_FALSE(SetProcessPriorityClass(9ul, ProcessPriorityHigh) || GetProcessAffinity(9ul, mask) ||
                 SetProcessAffinity(9ul, mask));
    EXPECT_TRUE(GetProcessPriorityClass(9ul) == ProcessPriorityUnknown && mask == 0x33) << "no handle, no output";

    fake::TakeCalls();
    // By name: a name no process has answers true in the setters; a found one that cannot be opened, false.
    std::vector<platform::WtsProcessInfoA> rows = {{1, 30, const_cast<char*>("app.exe"), nullptr}};
    fake::Processes().WTSEnumerateProcessesA = [&](platform::WtsProcessInfoA** list, DWORD* count) {
        *list = rows.data();
        *count = 1;
        return 1;
    };
    ZKString const unknown("nope.exe"), known("app.exe");
    EXPECT_TRUE(SetProcessPriorityClass(unknown, ProcessPriorityIdle) && SetProcessAffinity(unknown, 1) &&
                GetProcessAffinity(unknown, mask));
    EXPECT_TRUE(GetProcessPriorityClass(unknown) == ProcessPriorityUnknown && GetProcessNumOfHandles(unknown) == 0 &&
                mask == 0x33);
    for (std::string const& call : fake::TakeCalls()) EXPECT_EQ(call.find("OpenProcess("), std::string::npos) << call;
    EXPECT_FALSE(SetProcessPriorityClass(known, ProcessPriorityIdle) || SetProcessAffinity(known, 1) ||
                 GetProcessAffinity(known, mask));
    EXPECT_EQ(fake::TakeCalls().at(2), "OpenProcess(access=0x200, inherit=0, pid=30)");
}

TEST_F(MetricsCalls, PriorityClassesAndAffinityMasks)
{
    DWORD const system[] = {256, 128, 32768, 32, 16384, 64};
    DWORD current = 0;
    fake::Processes().GetPriorityClass = [&](HANDLE) { return current; };
    fake::Processes().SetPriorityClass = [&](HANDLE, DWORD value) {
        current = value;
        return value != 0 ? 1 : 0;
    };
    for (int index = 0; index < 6; ++index) {
        EXPECT_TRUE(SetProcessPriorityClass(kProcess, static_cast<ProcessPriorityClass>(index)));
        EXPECT_EQ(current, system[index]);
        EXPECT_EQ(GetProcessPriorityClass(kProcess), static_cast<ProcessPriorityClass>(index));
    }
    for (DWORD unknown : {0u, 1u, 0x20u | 0x40u, 0x8000u << 1}) {
        current = unknown;
        EXPECT_EQ(GetProcessPriorityClass(kProcess), ProcessPriorityUnknown) << unknown;
    }
    fake::TakeCalls();
    EXPECT_FALSE(SetProcessPriorityClass(kProcess, static_cast<ProcessPriorityClass>(6)));
    EXPECT_EQ(fake::TakeCalls(), (Calls{"SetPriorityClass(0x44, class=0x0)"}));

    unsigned long long out = 0;
    GetSystemAffinity(out);
    GetProcessAffinity(kProcess, out);
    EXPECT_EQ(fake::TakeCalls(),
              (Calls{"GetCurrentProcess()", "GetProcessAffinityMask(0xffffffffffffffff, process=0x0, system=0x0)",
                     "GetProcessAffinityMask(0x44, process=0x0, system=0x0)"}))
        << "both masks start at 0";
    BOOL answer = 0;
    fake::Processes().GetProcessAffinityMask = [&](HANDLE, ULONGLONG* processMask, ULONGLONG* systemMask) {
        *processMask = 0x5;
        *systemMask = 0xF;
        return answer;
    };
    fake::Processes().SetProcessAffinityMask = [&](HANDLE, ULONGLONG) { return answer; };
    for (BOOL result : {0, 1}) {
        answer = result;
        unsigned long long process = 0x100, all = 0x100;
        EXPECT_EQ(GetProcessAffinity(kProcess, process) + GetSystemAffinity(all) +
                      SetProcessAffinity(kProcess, 0xF0F0F0F0F0ull),
                  result != 0 ? 3 : 0);
        EXPECT_EQ(process * 16 + all, 0x5Fu) << "stored even after a failure";
    }
}
