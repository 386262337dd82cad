// The exact platform calls behind the process metrics and scheduling
// operations, through the fake backend.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include "FakeProcess.h"

using MetricsCalls = FakeTest;

TEST_F(MetricsCalls, CountersReadTheirOwnFieldAndFailToZero)
{
    BOOL answer = 1;
    fake::Processes().K32GetProcessMemoryInfo = [&](HANDLE, platform::ProcessMemoryCounters* counters) {
        counters->PageFaultCount = 0xFFFFFFF0u;
        ULONGLONG* sizes = &counters->PeakWorkingSetSize;
        for (int index = 0; index < 8; ++index) sizes[index] = (ULONGLONG{1} << 40) + static_cast<ULONGLONG>(index);
        return answer;
    };
    unsigned long long (*const counters[])(ProcessHandle) = {GetProcessPeakWorkingSetSizeBytes,
                                                             GetProcessWorkingSetSizeBytes,
                                                             GetProcessQuotaPeakPagedPoolUsageBytes,
                                                             GetProcessQuotaPagedPoolUsageBytes,
                                                             GetProcessQuotaPeakNonPagedPoolUsageBytes,
                                                             GetProcessQuotaNonPagedPoolUsageBytes,
                                                             GetProcessPagefileUsageBytes,
                                                             GetProcessPeakPagefileUsageBytes};
    EXPECT_EQ(GetProcessPageFaultCount(kProcess), 0xFFFFFFF0ull);
    for (int index = 0; index < 8; ++index) EXPECT_EQ(counters[index](kProcess), (1ull << 40) + index) << index;
    EXPECT_EQ(fake::TakeCalls(), Calls(9, "K32GetProcessMemoryInfo(0x44, counters=out, size=72)"));
    fake::Processes().GetProcessHandleCount = [&](HANDLE, DWORD* count) {
        *count = 17;
        return answer;
    };
    EXPECT_EQ(GetProcessNumOfHandles(kProcess), 17u);
    answer = 0;
    EXPECT_EQ(GetProcessPageFaultCount(kProcess) + counters[7](kProcess) + GetProcessNumOfHandles(kProcess), 0u)
        << "a failed call gives 0, whatever it wrote";
    EXPECT_EQ(GetProcessWorkingSetMinSizeBytes(kProcess), 0u) << "unscripted: the outputs keep their 0";
    fake::Processes().GetProcessWorkingSetSizeEx = [](HANDLE, ULONGLONG* minimum, ULONGLONG* maximum) {
        *minimum = 200 * 4096;
        *maximum = 1380 * 4096;
        return 0;  // the result is not examined
    };
    EXPECT_EQ(GetProcessWorkingSetMinSizeBytes(kProcess) + 2 * GetProcessWorkingSetMaxSizeBytes(kProcess),
              2960u * 4096);
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
    current = 0x20 | 0x40;
    EXPECT_EQ(GetProcessPriorityClass(kProcess), ProcessPriorityUnknown);
    EXPECT_FALSE(SetProcessPriorityClass(kProcess, ProcessPriorityUnknown));
    EXPECT_EQ(current, 0u);

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
        EXPECT_EQ(GetProcessAffinity(kProcess, process) + GetSystemAffinity(all) + SetProcessAffinity(kProcess, 0xF0),
                  result != 0 ? 3 : 0);
        EXPECT_EQ(process * 16 + all, 0x5Fu) << "stored even after a failure";
    }
}
