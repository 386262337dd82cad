// POSIX backend (Linux) of the process metrics and scheduling operations.
//
// How each Win32 meaning is met here (rights are checked as Windows does):
//   K32GetProcessMemoryInfo     /proc/PID/status and /proc/PID/stat:
//                               PageFaultCount    minor + major faults (stat)
//                               PeakWorkingSetSize VmHWM
//                               WorkingSetSize    VmRSS
//                               QuotaPagedPool    VmPTE (page tables, the
//                                                 kernel memory the process
//                                                 is charged for)
//                               QuotaNonPagedPool VmLck (locked memory)
//                               PagefileUsage     VmData + VmStk (private
//                                                 memory, what Windows
//                                                 commits against the page file)
//                               Linux keeps no peak of the last three: their
//                               peaks are the current values.
//   GetProcessHandleCount       the entries of /proc/PID/fd.
//   GetGuiResources             Linux processes own no GDI objects: 0.
//   Get/SetPriorityClass        nice values, set on every thread of the
//                               process and read from its main thread:
//                                 class          set   read back from
//                                 realtime       -20   -20 .. -15
//                                 high           -10   -14 .. -8
//                                 above normal    -5    -7 .. -3
//                                 normal           0    -2 .. 2
//                                 below normal     5     3 .. 9
//                                 idle            19    10 .. 19
//                               Raising priority needs CAP_SYS_NICE (EACCES).
//   GetProcessAffinityMask      sched_getaffinity of the main thread (CPUs
//                               0..63); the system mask has one bit per
//                               configured processor.
//   SetProcessAffinityMask      sched_setaffinity on every thread; a mask
//                               that is 0 or not within the system mask
//                               fails with EINVAL, as on Windows.
//   GetProcessWorkingSetSizeEx  the minimum is the locked memory (VmLck),
//                               which stays resident; the maximum the
//                               resident-set limit (RLIMIT_RSS), or the
//                               physical memory when there is none.

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include <dirent.h>
#include <fcntl.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/sysinfo.h>
#include <unistd.h>

#include "../Processes.h"
#include "KernelObjects.h"
#include "ProcFiles.h"

namespace zk64::platform {
namespace {

using posix::Target;

constexpr DWORD kQuery = kProcessQueryLimitedInformation;

// The kB figure after `key` in a /proc/PID/status text, in bytes.
ULONGLONG StatusBytes(std::string const& status, char const* key)
{
    std::size_t const at = status.find(key);
    if (at == std::string::npos) return 0;
    return std::strtoull(status.c_str() + at + std::strlen(key), nullptr, 10) * 1024;
}

// Field `index` (1-based) of /proc/PID/stat; the command name (field 2)
// may hold blanks, so fields are counted from its closing parenthesis.
unsigned long long StatField(int procfd, int index)
{
    char stat[1024];
    if (posix::ReadProcFileInto(procfd, "stat", stat, sizeof stat) <= 0) return 0;
    char const* cursor = std::strrchr(stat, ')');
    if (cursor == nullptr) return 0;
    for (int field = 2; field < index; ++field) {
        while (*cursor != ' ' && *cursor != '\0') ++cursor;
        while (*cursor == ' ') ++cursor;
    }
    return std::strtoull(cursor, nullptr, 10);
}

// Calls apply(tid) for every thread of the target; false at the first
// failure (errno set) or when the thread list cannot be read.
template <class Apply>
bool ForEachThread(Target const& target, Apply&& apply)
{
    int const taskfd = openat(target.procfd, "task", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (taskfd < 0) return false;
    DIR* const tasks = fdopendir(taskfd);
    if (tasks == nullptr) {
        close(taskfd);
        return false;
    }
    bool ok = true;
    while (dirent* const entry = readdir(tasks)) {
        if (entry->d_name[0] < '0' || entry->d_name[0] > '9') continue;
        if (!apply(static_cast<pid_t>(std::strtol(entry->d_name, nullptr, 10)))) {
            ok = false;
            break;
        }
    }
    int const error = errno;
    closedir(tasks);
    errno = error;
    return ok;
}

struct NiceClass {
    DWORD priorityClass;
    int nice;     // what the class sets
    int highest;  // the largest nice value read back as this class
};

constexpr NiceClass kNiceClasses[] = {
    {kRealtimePriorityClass, -20, -15}, {kHighPriorityClass, -10, -8}, {kAboveNormalPriorityClass, -5, -3},
    {kNormalPriorityClass, 0, 2},       {kBelowNormalPriorityClass, 5, 9}, {kIdlePriorityClass, 19, 19},
};

ULONGLONG SystemMask()
{
    int const processors = get_nprocs_conf();
    return processors >= 64 ? ~ULONGLONG{0} : (ULONGLONG{1} << processors) - 1;
}

}  // namespace

BOOL K32GetProcessMemoryInfo(HANDLE process, ProcessMemoryCounters* counters, DWORD size)
{
    Target target;
    if (!target.Open(process, kQuery | kProcessVmRead)) return 0;
    if (size != sizeof(ProcessMemoryCounters)) {
        errno = EINVAL;
        return 0;
    }
    std::string status;
    if (!posix::ReadProcFile(target.procfd, "status", status)) return 0;
    counters->cb = size;
    counters->PageFaultCount = static_cast<DWORD>(StatField(target.procfd, 10) + StatField(target.procfd, 12));
    counters->PeakWorkingSetSize = StatusBytes(status, "VmHWM:");
    counters->WorkingSetSize = StatusBytes(status, "VmRSS:");
    counters->QuotaPeakPagedPoolUsage = counters->QuotaPagedPoolUsage = StatusBytes(status, "VmPTE:");
    counters->QuotaPeakNonPagedPoolUsage = counters->QuotaNonPagedPoolUsage = StatusBytes(status, "VmLck:");
    counters->PeakPagefileUsage = counters->PagefileUsage =
        StatusBytes(status, "VmData:") + StatusBytes(status, "VmStk:");
    return 1;
}

BOOL GetProcessHandleCount(HANDLE process, DWORD* count)
{
    Target target;
    if (!target.Open(process, kQuery)) return 0;
    int const fdfd = openat(target.procfd, "fd", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fdfd < 0) return 0;
    DIR* const fds = fdopendir(fdfd);
    if (fds == nullptr) {
        close(fdfd);
        return 0;
    }
    DWORD found = 0;
    while (dirent* const entry = readdir(fds)) found += entry->d_name[0] != '.' ? 1 : 0;
    closedir(fds);
    *count = found;
    return 1;
}

DWORD GetGuiResources(HANDLE process, DWORD)
{
    Target target;
    if (!target.Open(process, kQuery)) return 0;
    errno = 0;
    return 0;
}

DWORD GetPriorityClass(HANDLE process)
{
    Target target;
    if (!target.Open(process, kQuery)) return 0;
    errno = 0;
    int const nice = getpriority(PRIO_PROCESS, static_cast<id_t>(target.pid));
    if (nice == -1 && errno != 0) return 0;
    for (NiceClass const& entry : kNiceClasses) {
        if (nice <= entry.highest) return entry.priorityClass;
    }
    return kIdlePriorityClass;
}

BOOL SetPriorityClass(HANDLE process, DWORD priorityClass)
{
    Target target;
    if (!target.Open(process, kProcessSetInformation)) return 0;
    for (NiceClass const& entry : kNiceClasses) {
        if (entry.priorityClass == priorityClass) {
            return ForEachThread(target, [&](pid_t tid) {
                return setpriority(PRIO_PROCESS, static_cast<id_t>(tid), entry.nice) == 0;
            });
        }
    }
    errno = EINVAL;
    return 0;
}

BOOL GetProcessAffinityMask(HANDLE process, ULONGLONG* processMask, ULONGLONG* systemMask)
{
    Target target;
    if (!target.Open(process, kQuery)) return 0;
    cpu_set_t set;
    CPU_ZERO(&set);
    if (sched_getaffinity(target.pid, sizeof set, &set) != 0) return 0;
    ULONGLONG mask = 0;
    for (int cpu = 0; cpu < 64; ++cpu) mask |= CPU_ISSET(cpu, &set) ? ULONGLONG{1} << cpu : 0;
    *processMask = mask;
    *systemMask = SystemMask();
    return 1;
}

BOOL SetProcessAffinityMask(HANDLE process, ULONGLONG mask)
{
    Target target;
    if (!target.Open(process, kProcessSetInformation)) return 0;
    if (mask == 0 || (mask & ~SystemMask()) != 0) {
        errno = EINVAL;
        return 0;
    }
    cpu_set_t set;
    CPU_ZERO(&set);
    for (int cpu = 0; cpu < 64; ++cpu) {
        if ((mask >> cpu) & 1) CPU_SET(cpu, &set);
    }
    return ForEachThread(target, [&](pid_t tid) { return sched_setaffinity(tid, sizeof set, &set) == 0; });
}

BOOL GetProcessWorkingSetSizeEx(HANDLE process, ULONGLONG* minimum, ULONGLONG* maximum, DWORD* flags)
{
    Target target;
    if (!target.Open(process, kQuery)) return 0;
    std::string status;
    rlimit limit{};
    if (!posix::ReadProcFile(target.procfd, "status", status) || prlimit(target.pid, RLIMIT_RSS, nullptr, &limit) != 0)
        return 0;
    *minimum = StatusBytes(status, "VmLck:");
    if (limit.rlim_cur == RLIM_INFINITY) {
        struct sysinfo info {};
        sysinfo(&info);
        *maximum = static_cast<ULONGLONG>(info.totalram) * info.mem_unit;
    } else {
        *maximum = limit.rlim_cur;
    }
    if (flags != nullptr) *flags = 0;
    return 1;
}

}  // namespace zk64::platform
