// The exact platform calls behind the process metrics and scheduling
// operations, through the fake backend.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <functional>
#include <string>
#include <vector>

#include "FakeProcess.h"

using MetricsCalls = FakeTest;

TEST_F(MetricsCalls, MemoryCountersReadTheirOwnField)
{
    BOOL answer = 1;
    fake::Processes().K32GetProcessMemoryInfo = [&](HANDLE, platform::ProcessMemoryCounters* counters) {
        counters->PageFaultCount = 0xFFFFFFF0u;
        ULONGLONG* sizes = &counters->PeakWorkingSetSize;
        for (int index = 0; index < 8; ++index) sizes[index] = (ULONGLONG{1} << 40) + static_cast<ULONGLONG>(index);
        return answer;
    };
    using Counter = unsigned long long (*)(ProcessHandle);
    std::vector<std::pair<Counter, unsigned long long>> const table = {
        {GetProcessPageFaultCount, 0xFFFFFFF0ull},
        {GetProcessPeakWorkingSetSizeBytes, (1ull << 40) + 0},
        {GetProcessWorkingSetSizeBytes, (1ull << 40) + 1},
        {GetProcessQuotaPeakPagedPoolUsageBytes, (1ull << 40) + 2},
        {GetProcessQuotaPagedPoolUsageBytes, (1ull << 40) + 3},
        {GetProcessQuotaPeakNonPagedPoolUsageBytes, (1ull << 40) + 4},
        {GetProcessQuotaNonPagedPoolUsageBytes, (1ull << 40) + 5},
        {GetProcessPagefileUsageBytes, (1ull << 40) + 6},
        {GetProcessPeakPagefileUsageBytes, (1ull << 40) + 7},
    };
    for (std::size_t index = 0; index < table.size(); ++index) {
        SCOPED_TRACE(index);
        answer = 1;
        EXPECT_EQ(table[index].first(kProcess), table[index].second);
        EXPECT_EQ(fake::TakeCalls(), (Calls{"K32GetProcessMemoryInfo(0x44, counters=out, size=72)"}));
        answer = 0;
        EXPECT_EQ(table[index].first(kProcess), 0u) << "a failed call gives 0, whatever it wrote";
        fake::TakeCalls();
    }
}

TEST_F(MetricsCalls, IdentifierFormsOpenWithTheirWord)
{
    fake::Processes().OpenProcess = [](DWORD, BOOL, DWORD) { return kHandle; };
    unsigned long long mask = 0;
    struct Row {
        char const* operation;
        DWORD rights;
        std::function<void()> call;
    };
    std::vector<Row> const table = {
        {"GetProcessWorkingSetSizeBytes", 0x410, [] { GetProcessWorkingSetSizeBytes(9ul); }},
        {"GetProcessPeakPagefileUsageBytes", 0x410, [] { GetProcessPeakPagefileUsageBytes(9ul); }},
        {"GetProcessNumOfHandles", 0x400, [] { GetProcessNumOfHandles(9ul); }},
        {"GetProcessNumOfGDIHandles", 0x400, [] { GetProcessNumOfGDIHandles(9ul); }},
        {"GetProcessWorkingSetMinSizeBytes", 0x410, [] { GetProcessWorkingSetMinSizeBytes(9ul); }},
        {"GetProcessWorkingSetMaxSizeBytes", 0x410, [] { GetProcessWorkingSetMaxSizeBytes(9ul); }},
        {"GetProcessPriorityClass", 0x400, [] { GetProcessPriorityClass(9ul); }},
        {"SetProcessPriorityClass", 0x200, [] { SetProcessPriorityClass(9ul, ProcessPriorityHigh); }},
        {"GetProcessAffinity", 0x400, [&] { GetProcessAffinity(9ul, mask); }},
        {"SetProcessAffinity", 0x200, [&] { SetProcessAffinity(9ul, mask); }},
    };
    for (Row const& row : table) {
        SCOPED_TRACE(row.operation);
        row.call();
        Calls const calls = fake::TakeCalls();
        ASSERT_EQ(calls.size(), 3u);
        EXPECT_EQ(calls.front(), "OpenProcess(access=" + fake::Hex(row.rights) + ", inherit=0, pid=9)");
        EXPECT_EQ(calls.back(), "CloseHandle(handle=0x44)");
    }
    // A failed open gives each operation's failure value.
    fake::Processes().OpenProcess = nullptr;
    using Counter = unsigned long long (*)(unsigned long);
    for (Counter counter : {Counter{GetProcessPageFaultCount}, Counter{GetProcessPeakWorkingSetSizeBytes},
                            Counter{GetProcessWorkingSetSizeBytes}, Counter{GetProcessQuotaPeakPagedPoolUsageBytes},
                            Counter{GetProcessQuotaPagedPoolUsageBytes}, Counter{GetProcessQuotaPeakNonPagedPoolUsageBytes},
                            Counter{GetProcessQuotaNonPagedPoolUsageBytes}, Counter{GetProcessPagefileUsageBytes},
                            Counter{GetProcessPeakPagefileUsageBytes}, Counter{GetProcessWorkingSetMinSizeBytes},
                            Counter{GetProcessWorkingSetMaxSizeBytes}})
        EXPECT_EQ(counter(9ul), 0u);
    EXPECT_EQ(GetProcessNumOfHandles(9ul), 0u);
    EXPECT_EQ(GetProcessNumOfGDIHandles(9ul), 0u);
    EXPECT_EQ(GetProcessPriorityClass(9ul), ProcessPriorityUnknown);
    EXPECT_FALSE(SetProcessPriorityClass(9ul, ProcessPriorityHigh));
    mask = 0x33;
    EXPECT_FALSE(GetProcessAffinity(9ul, mask));
    EXPECT_EQ(mask, 0x33u) << "no handle, no output";
    EXPECT_FALSE(SetProcessAffinity(9ul, mask));
}

TEST_F(MetricsCalls, CountsAndWorkingSetStartFromZero)
{
    fake::Processes().GetProcessHandleCount = [](HANDLE, DWORD* count) {
        *count = 17;
        return 0;
    };
    EXPECT_EQ(GetProcessNumOfHandles(kProcess), 0u) << "a failed call gives 0";
    fake::Processes().GetProcessHandleCount = [](HANDLE, DWORD* count) {
        *count = 17;
        return 1;
    };
    EXPECT_EQ(GetProcessNumOfHandles(kProcess), 17u);
    fake::Processes().GetGuiResources = [](HANDLE) { return DWORD{23}; };
    EXPECT_EQ(GetProcessNumOfGDIHandles(kProcess), 23u);
    EXPECT_EQ(GetProcessWorkingSetMinSizeBytes(kProcess), 0u) << "unscripted: the outputs keep their 0";
    fake::Processes().GetProcessWorkingSetSizeEx = [](HANDLE, ULONGLONG* minimum, ULONGLONG* maximum) {
        *minimum = 200 * 4096;
        *maximum = 1380 * 4096;
        return 0;  // the result is not examined
    };
    EXPECT_EQ(GetProcessWorkingSetMinSizeBytes(kProcess), 200u * 4096);
    EXPECT_EQ(GetProcessWorkingSetMaxSizeBytes(kProcess), 1380u * 4096);
    EXPECT_EQ(fake::TakeCalls(),
              (Calls{"GetProcessHandleCount(0x44, count=out)", "GetProcessHandleCount(0x44, count=out)",
                     "GetGuiResources(0x44, flags=0)",
                     "GetProcessWorkingSetSizeEx(0x44, minimum=0x0, maximum=0x0, flags=null)",
                     "GetProcessWorkingSetSizeEx(0x44, minimum=0x0, maximum=0x0, flags=null)",
                     "GetProcessWorkingSetSizeEx(0x44, minimum=0x0, maximum=0x0, flags=null)"}));
}

TEST_F(MetricsCalls, PriorityClassesTranslateBothWays)
{
    DWORD const system[] = {256, 128, 32768, 32, 16384, 64};
    DWORD current = 0;
    fake::Processes().GetPriorityClass = [&](HANDLE) { return current; };
    fake::Processes().SetPriorityClass = [&](HANDLE, DWORD value) {
        current = value;
        return value != 0 ? 1 : 0;
    };
    for (int index = 0; index < 6; ++index) {
        auto const priority = static_cast<ProcessPriorityClass>(index);
        EXPECT_TRUE(SetProcessPriorityClass(kProcess, priority));
        EXPECT_EQ(current, system[index]);
        EXPECT_EQ(GetProcessPriorityClass(kProcess), priority);
    }
    for (DWORD unknown : {0u, 1u, 0x20u | 0x40u, 0x8000u << 1}) {
        current = unknown;
        EXPECT_EQ(GetProcessPriorityClass(kProcess), ProcessPriorityUnknown) << unknown;
    }
    fake::TakeCalls();
    for (int outside : {6, 7}) {
        EXPECT_FALSE(SetProcessPriorityClass(kProcess, static_cast<ProcessPriorityClass>(outside)));
        EXPECT_EQ(fake::TakeCalls(), (Calls{"SetPriorityClass(0x44, class=0x0)"})) << outside;
    }
}

TEST_F(MetricsCalls, AffinityMasksAreStoredEvenAfterAFailure)
{
    BOOL answer = 0;
    fake::Processes().GetProcessAffinityMask = [&](HANDLE, ULONGLONG* processMask, ULONGLONG* systemMask) {
        *processMask = 0x5;
        *systemMask = 0xF;
        return answer;
    };
    fake::Processes().SetProcessAffinityMask = [&](HANDLE, ULONGLONG) { return answer; };
    for (BOOL result : {0, 1}) {
        answer = result;
        unsigned long long out = 0x100;
        EXPECT_EQ(GetProcessAffinity(kProcess, out), result != 0);
        EXPECT_EQ(out, 0x5u);
        out = 0x100;
        EXPECT_EQ(GetSystemAffinity(out), result != 0);
        EXPECT_EQ(out, 0xFu);
        EXPECT_EQ(SetProcessAffinity(kProcess, 0xF0F0F0F0F0ull), result != 0) << "the mask is not checked";
    }
    EXPECT_EQ(fake::TakeCalls().size(), 8u);
    unsigned long long out = 0;
    GetSystemAffinity(out);
    GetProcessAffinity(kProcess, out);
    EXPECT_EQ(fake::TakeCalls(),
              (Calls{"GetCurrentProcess()", "GetProcessAffinityMask(0xffffffffffffffff, process=0x0, system=0x0)",
                     "GetProcessAffinityMask(0x44, process=0x0, system=0x0)"}))
        << "both masks start at 0";
}

TEST_F(MetricsCalls, NameFormsOfTheSettersAnswerTrueForAnUnknownName)
{
    std::vector<platform::WtsProcessInfoA> rows = {{1, 30, const_cast<char*>("app.exe"), nullptr}};
    fake::Processes().WTSEnumerateProcessesA = [&](platform::WtsProcessInfoA** list, DWORD* count) {
        *list = rows.data();
        *count = 1;
        return 1;
    };
    ZKString const unknown("nope.exe");
    ZKString const known("app.exe");
    unsigned long long out = 0x77;
    EXPECT_TRUE(SetProcessPriorityClass(unknown, ProcessPriorityIdle));
    EXPECT_TRUE(SetProcessAffinity(unknown, 1));
    EXPECT_TRUE(GetProcessAffinity(unknown, out));
    EXPECT_EQ(out, 0x77u);
    EXPECT_EQ(GetProcessPriorityClass(unknown), ProcessPriorityUnknown);
    EXPECT_EQ(GetProcessNumOfHandles(unknown), 0u);
    EXPECT_EQ(GetProcessPagefileUsageBytes(unknown), 0u);
    EXPECT_EQ(GetProcessWorkingSetMaxSizeBytes(unknown), 0u);
    for (std::string const& call : fake::TakeCalls()) EXPECT_EQ(call.find("OpenProcess("), std::string::npos) << call;

    // Found, but it cannot be opened: false.
    EXPECT_FALSE(SetProcessPriorityClass(known, ProcessPriorityIdle));
    EXPECT_FALSE(SetProcessAffinity(known, 1));
    EXPECT_FALSE(GetProcessAffinity(known, out));
    EXPECT_EQ(out, 0x77u);
    EXPECT_EQ(fake::TakeCalls().at(2), "OpenProcess(access=0x200, inherit=0, pid=30)");
}
