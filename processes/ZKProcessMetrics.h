#pragma once

// Process metrics and scheduling: memory counters, handle counts,
// working-set sizes, priority classes and processor affinity. Every
// operation has the identifier, handle and name forms of ZKProcess.h.
//
// The name forms of SetProcessPriorityClass, SetProcessAffinity and
// GetProcessAffinity answer true, doing nothing, when no process has that
// name; a process that is found but cannot be opened gives false.

#include "../foundation/ZKExport.h"
#include "../foundation/ZKString.h"
#include "ZKProcessHandles.h"

// The library's priority classes, from highest to lowest; the platform's
// numbers differ.
enum ProcessPriorityClass {
    ProcessPriorityRealTime = 0,
    ProcessPriorityHigh = 1,
    ProcessPriorityAboveNormal = 2,
    ProcessPriorityNormal = 3,
    ProcessPriorityBelowNormal = 4,
    ProcessPriorityIdle = 5,
    ProcessPriorityUnknown = 6,  // what the getters give on failure
};

// The nine memory counters, each an operation returning the counter (0 on
// failure, which a counter of 0 cannot be told from); word 0x408.
//   X(operation, counter of the system's process memory record)
#define ZK_PROCESS_MEMORY_COUNTERS(X)                                   \
    X(GetProcessPageFaultCount, PageFaultCount)                         \
    X(GetProcessPeakWorkingSetSizeBytes, PeakWorkingSetSize)            \
    X(GetProcessWorkingSetSizeBytes, WorkingSetSize)                    \
    X(GetProcessQuotaPeakPagedPoolUsageBytes, QuotaPeakPagedPoolUsage)  \
    X(GetProcessQuotaPagedPoolUsageBytes, QuotaPagedPoolUsage)          \
    X(GetProcessQuotaPeakNonPagedPoolUsageBytes, QuotaPeakNonPagedPoolUsage) \
    X(GetProcessQuotaNonPagedPoolUsageBytes, QuotaNonPagedPoolUsage)    \
    X(GetProcessPagefileUsageBytes, PagefileUsage)                      \
    X(GetProcessPeakPagefileUsageBytes, PeakPagefileUsage)

#define ZK_DECLARE_MEMORY_COUNTER(Operation, Counter)                 \
    ZK_API unsigned long long Operation(unsigned long pid);           \
    ZK_API unsigned long long Operation(ProcessHandle process);       \
    ZK_API unsigned long long Operation(ZKString const& name);
ZK_PROCESS_MEMORY_COUNTERS(ZK_DECLARE_MEMORY_COUNTER)
#undef ZK_DECLARE_MEMORY_COUNTER

// Open handles and GDI objects (word 0x8; 0 on failure).
ZK_API unsigned int GetProcessNumOfHandles(unsigned long pid);
ZK_API unsigned int GetProcessNumOfHandles(ProcessHandle process);
ZK_API unsigned int GetProcessNumOfHandles(ZKString const& name);
ZK_API unsigned int GetProcessNumOfGDIHandles(unsigned long pid);
ZK_API unsigned int GetProcessNumOfGDIHandles(ProcessHandle process);
ZK_API unsigned int GetProcessNumOfGDIHandles(ZKString const& name);

// Working-set limits (word 0x408; 0 on failure).
ZK_API unsigned long long GetProcessWorkingSetMinSizeBytes(unsigned long pid);
ZK_API unsigned long long GetProcessWorkingSetMinSizeBytes(ProcessHandle process);
ZK_API unsigned long long GetProcessWorkingSetMinSizeBytes(ZKString const& name);
ZK_API unsigned long long GetProcessWorkingSetMaxSizeBytes(unsigned long pid);
ZK_API unsigned long long GetProcessWorkingSetMaxSizeBytes(ProcessHandle process);
ZK_API unsigned long long GetProcessWorkingSetMaxSizeBytes(ZKString const& name);

// Priority class (get: word 0x8, ProcessPriorityUnknown on failure; set:
// word 0x20, false on failure). A class outside the table reaches the
// system as 0, which refuses it.
ZK_API ProcessPriorityClass GetProcessPriorityClass(unsigned long pid);
ZK_API ProcessPriorityClass GetProcessPriorityClass(ProcessHandle process);
ZK_API ProcessPriorityClass GetProcessPriorityClass(ZKString const& name);
ZK_API bool SetProcessPriorityClass(unsigned long pid, ProcessPriorityClass const& priority);
ZK_API bool SetProcessPriorityClass(ProcessHandle process, ProcessPriorityClass const& priority);
ZK_API bool SetProcessPriorityClass(ZKString const& name, ProcessPriorityClass const& priority);

// Affinity masks, one bit per logical processor. GetProcessAffinity (word
// 0x8) stores the process mask whenever a handle was there;
// SetProcessAffinity (word 0x20) hands the mask over unchecked.
// GetSystemAffinity stores the system's mask, also after a failure.
ZK_API bool GetProcessAffinity(unsigned long pid, unsigned long long& out);
ZK_API bool GetProcessAffinity(ProcessHandle process, unsigned long long& out);
ZK_API bool GetProcessAffinity(ZKString const& name, unsigned long long& out);
ZK_API bool SetProcessAffinity(unsigned long pid, unsigned long long const& mask);
ZK_API bool SetProcessAffinity(ProcessHandle process, unsigned long long const& mask);
ZK_API bool SetProcessAffinity(ZKString const& name, unsigned long long const& mask);
ZK_API bool GetSystemAffinity(unsigned long long& out);
