// Process metrics and scheduling on the real backend: the test's own
// process and a child, natively on Linux and for the DLL under Wine.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include "ChildProcess.h"


TEST(ProcessMetrics, CountersOfTheOwnProcess)
{
    unsigned long const pid = GetCurrentProcessID();
    ProcessHandle const self = GetCurrentProcessHandle();
    unsigned long long const workingSet = GetProcessWorkingSetSizeBytes(pid);
    EXPECT_GT(workingSet, 1u << 20);
    EXPECT_GE(GetProcessPeakWorkingSetSizeBytes(self), GetProcessWorkingSetSizeBytes(self) / 2);
    EXPECT_GT(GetProcessPagefileUsageBytes(self), 0u);
    EXPECT_GE(GetProcessPeakPagefileUsageBytes(self), GetProcessPagefileUsageBytes(self));
    EXPECT_GE(GetProcessQuotaPeakPagedPoolUsageBytes(self), GetProcessQuotaPagedPoolUsageBytes(self));
    EXPECT_GE(GetProcessQuotaPeakNonPagedPoolUsageBytes(self), GetProcessQuotaNonPagedPoolUsageBytes(self));
    if (RunningUnderWine()) {
        EXPECT_EQ(GetProcessPageFaultCount(self), 0u) << "Wine counts no page faults";
        EXPECT_EQ(GetProcessNumOfHandles(pid), 0u) << "Wine reports no handles";
        EXPECT_EQ(GetProcessWorkingSetMinSizeBytes(pid), 32u << 20) << "Wine's fixed working-set limits";
        EXPECT_EQ(GetProcessWorkingSetMaxSizeBytes(pid), 32u << 20);
    } else {
        EXPECT_GT(GetProcessPageFaultCount(self), 0u);
        EXPECT_GE(GetProcessNumOfHandles(pid), 3u) << "at least the standard streams";
        EXPECT_LT(GetProcessWorkingSetMinSizeBytes(pid), GetProcessWorkingSetMaxSizeBytes(pid));
    }
    EXPECT_EQ(GetProcessNumOfGDIHandles(pid), 0u) << "a console program without windows";
}

TEST(ProcessMetrics, PriorityAndAffinityRoundTripsOnAChild)
{
    ChildProcess child;
    ASSERT_NE(child.Pid(), 0u);
    EXPECT_EQ(GetProcessPriorityClass(child.Pid()), GetProcessPriorityClass(GetCurrentProcessHandle())) << "inherited";
    for (int index = 0; index <= 5; ++index) {
        auto const priority = static_cast<ProcessPriorityClass>(index);
        EXPECT_TRUE(SetProcessPriorityClass(child.Pid(), priority)) << index;
        EXPECT_EQ(GetProcessPriorityClass(child.Pid()), priority) << index;
    }
    EXPECT_FALSE(SetProcessPriorityClass(child.Pid(), ProcessPriorityUnknown));
    EXPECT_EQ(GetProcessPriorityClass(child.Pid()), ProcessPriorityIdle) << "a refused class changes nothing";

    unsigned long long system = 0;
    ASSERT_TRUE(GetSystemAffinity(system));
    EXPECT_NE(system, 0u);
    unsigned long long mask = 0;
    ASSERT_TRUE(GetProcessAffinity(child.Pid(), mask));
    EXPECT_EQ(mask & ~system, 0u);
    unsigned long long const lowest = system & (~system + 1);
    EXPECT_TRUE(SetProcessAffinity(child.Pid(), lowest));
    EXPECT_TRUE(GetProcessAffinity(child.Pid(), mask));
    EXPECT_EQ(mask, lowest);
    EXPECT_FALSE(SetProcessAffinity(child.Pid(), 0)) << "an empty mask is refused";

    // Rights: a query-only handle cannot set.
    ProcessHandle const query = OpenProcessHandle(child.Pid(), 0x8);
    EXPECT_FALSE(SetProcessAffinity(query, system));
    EXPECT_FALSE(SetProcessPriorityClass(query, ProcessPriorityNormal));
    EXPECT_EQ(GetProcessPriorityClass(query), ProcessPriorityIdle);
    CloseProcessHandle(query);

    unsigned long const gone = child.Pid();
    child.Stop();
    if (RunningUnderWine()) return;  // Wine still opens and answers for an ended child for a moment
    unsigned long long untouched = 0x5A;
    EXPECT_EQ(GetProcessPriorityClass(gone), ProcessPriorityUnknown);
    EXPECT_FALSE(GetProcessAffinity(gone, untouched));
    EXPECT_EQ(untouched, 0x5Au);
    EXPECT_EQ(GetProcessWorkingSetSizeBytes(gone), 0u);
}

TEST(ProcessMetrics, BadIdentifiersAndNames)
{
    for (unsigned long pid : {0ul, 0x7FFFFFF0ul}) {
        EXPECT_EQ(GetProcessPageFaultCount(pid), 0u);
        EXPECT_EQ(GetProcessNumOfHandles(pid), 0u);
        EXPECT_EQ(GetProcessWorkingSetMaxSizeBytes(pid), 0u);
        EXPECT_EQ(GetProcessPriorityClass(pid), ProcessPriorityUnknown);
        EXPECT_FALSE(SetProcessPriorityClass(pid, ProcessPriorityNormal));
        EXPECT_FALSE(SetProcessAffinity(pid, 1));
    }
    ZKString const unknown("zk64 no such process");
    unsigned long long out = 0x5A;
    EXPECT_TRUE(SetProcessPriorityClass(unknown, ProcessPriorityIdle));
    EXPECT_TRUE(SetProcessAffinity(unknown, 1));
    EXPECT_TRUE(GetProcessAffinity(unknown, out));
    EXPECT_EQ(out, 0x5Au);
    EXPECT_EQ(GetProcessPriorityClass(unknown), ProcessPriorityUnknown);
    EXPECT_EQ(GetProcessWorkingSetSizeBytes(unknown), 0u);
}
