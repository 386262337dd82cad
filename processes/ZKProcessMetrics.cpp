#include "ZKProcessMetrics.h"

#include "../platform/Processes.h"
#include "detail/ProcessAccess.h"

namespace platform = zk64::platform;
using zk64::detail::kWordQuery;
using zk64::detail::kWordQueryAndRead;
using zk64::detail::kWordSetInformation;

// ------------------------------------------------------ memory counters

namespace {

// One counter of the process memory record; 0 when the call fails.
template <class Field>
unsigned long long MemoryCounter(ProcessHandle process, Field platform::ProcessMemoryCounters::*field)
{
    platform::ProcessMemoryCounters counters;
    if (!platform::K32GetProcessMemoryInfo(process.handle, &counters, sizeof counters)) return 0;
    return counters.*field;
}

}  // namespace

#define ZK_DEFINE_MEMORY_COUNTER(Operation, Counter)                                             \
    unsigned long long Operation(ProcessHandle process)                                          \
    {                                                                                            \
        return MemoryCounter(process, &platform::ProcessMemoryCounters::Counter);                \
    }                                                                                            \
    ZK_PROCESS_ID_AND_NAME_FORMS(unsigned long long, Operation, kWordQueryAndRead, 0ull, (), ())
ZK_PROCESS_MEMORY_COUNTERS(ZK_DEFINE_MEMORY_COUNTER)
#undef ZK_DEFINE_MEMORY_COUNTER

// --------------------------------------------------------------- counts

unsigned int GetProcessNumOfHandles(ProcessHandle process)
{
    platform::DWORD count = 0;
    return platform::GetProcessHandleCount(process.handle, &count) ? count : 0;
}

unsigned int GetProcessNumOfGDIHandles(ProcessHandle process)
{
    return platform::GetGuiResources(process.handle, platform::kGrGdiObjects);
}

ZK_PROCESS_ID_AND_NAME_FORMS(unsigned int, GetProcessNumOfHandles, kWordQuery, 0u, (), ())
ZK_PROCESS_ID_AND_NAME_FORMS(unsigned int, GetProcessNumOfGDIHandles, kWordQuery, 0u, (), ())

// ---------------------------------------------------------- working set

namespace {

// Both sizes start at 0, so that a failed call gives 0.
struct WorkingSet {
    platform::ULONGLONG minimum = 0;
    platform::ULONGLONG maximum = 0;
};

WorkingSet WorkingSetOf(ProcessHandle process)
{
    WorkingSet sizes;
    platform::GetProcessWorkingSetSizeEx(process.handle, &sizes.minimum, &sizes.maximum, nullptr);
    return sizes;
}

}  // namespace

unsigned long long GetProcessWorkingSetMinSizeBytes(ProcessHandle process) { return WorkingSetOf(process).minimum; }
unsigned long long GetProcessWorkingSetMaxSizeBytes(ProcessHandle process) { return WorkingSetOf(process).maximum; }
ZK_PROCESS_ID_AND_NAME_FORMS(unsigned long long, GetProcessWorkingSetMinSizeBytes, kWordQueryAndRead, 0ull, (), ())
ZK_PROCESS_ID_AND_NAME_FORMS(unsigned long long, GetProcessWorkingSetMaxSizeBytes, kWordQueryAndRead, 0ull, (), ())

// ------------------------------------------------------ priority classes

namespace {

// The system's class for each library class, in the library's order.
constexpr platform::DWORD kPriorityClasses[] = {
    platform::kRealtimePriorityClass,    platform::kHighPriorityClass,        platform::kAboveNormalPriorityClass,
    platform::kNormalPriorityClass,      platform::kBelowNormalPriorityClass, platform::kIdlePriorityClass,
};
constexpr int kClassCount = sizeof kPriorityClasses / sizeof kPriorityClasses[0];

}  // namespace

ProcessPriorityClass GetProcessPriorityClass(ProcessHandle process)
{
    platform::DWORD const system = platform::GetPriorityClass(process.handle);
    for (int index = 0; index < kClassCount; ++index) {
        if (kPriorityClasses[index] == system) return static_cast<ProcessPriorityClass>(index);
    }
    return ProcessPriorityUnknown;
}

bool SetProcessPriorityClass(ProcessHandle process, ProcessPriorityClass const& priority)
{
    int const index = static_cast<int>(priority);
    platform::DWORD const system = index >= 0 && index < kClassCount ? kPriorityClasses[index] : 0;
    return platform::SetPriorityClass(process.handle, system) != 0;
}

ZK_PROCESS_ID_AND_NAME_FORMS(ProcessPriorityClass, GetProcessPriorityClass, kWordQuery, ProcessPriorityUnknown, (), ())
ZK_PROCESS_ID_AND_NAME_FORMS_NOT_FOUND(bool, SetProcessPriorityClass, kWordSetInformation, false, true,
                                       (, ProcessPriorityClass const& priority), (, priority))

// -------------------------------------------------------------- affinity

bool GetProcessAffinity(ProcessHandle process, unsigned long long& out)
{
    platform::ULONGLONG processMask = 0;
    platform::ULONGLONG systemMask = 0;
    bool const ok = platform::GetProcessAffinityMask(process.handle, &processMask, &systemMask) != 0;
    out = processMask;
    return ok;
}

bool SetProcessAffinity(ProcessHandle process, unsigned long long const& mask)
{
    return platform::SetProcessAffinityMask(process.handle, mask) != 0;
}

ZK_PROCESS_ID_AND_NAME_FORMS_NOT_FOUND(bool, GetProcessAffinity, kWordQuery, false, true, (, unsigned long long& out),
                                       (, out))
ZK_PROCESS_ID_AND_NAME_FORMS_NOT_FOUND(bool, SetProcessAffinity, kWordSetInformation, false, true,
                                       (, unsigned long long const& mask), (, mask))

bool GetSystemAffinity(unsigned long long& out)
{
    platform::ULONGLONG processMask = 0;
    platform::ULONGLONG systemMask = 0;
    bool const ok = platform::GetProcessAffinityMask(platform::GetCurrentProcess(), &processMask, &systemMask) != 0;
    out = systemMask;
    return ok;
}
