// POSIX backend (Linux) of the system operations.
//
// How each Win32 meaning is met here:
//   GetLastError/SetLastError  errno.
//   FormatMessageA             strerror_r's text (no closing line break,
//                              unlike Windows' texts); only the
//                              allocate-buffer, from-system form.
//   GetNativeSystemInfo        uname's machine for the architecture, the
//                              page size, vm.mmap_min_addr and the top of the
//                              47-bit user address space.
//   GlobalMemoryStatusEx       /proc/meminfo; the "page file" is RAM plus
//                              swap, as Windows' commit limit is RAM plus
//                              page files.
//   GetComputerNameA           the NetBIOS-style name Windows reports: the
//                              host name up to its first dot, at most 15
//                              characters, upper-cased.
//   GetUserNameA               the effective user's name from the password
//                              database.
//   IsDebuggerPresent          a tracer in /proc/self/status.
//   OutputDebugStringA         standard error while a debugger is attached,
//                              nothing otherwise.
//   QueryPerformanceCounter    CLOCK_MONOTONIC in nanoseconds.
//   CpuId                      the cpuid instruction on x86, zeros elsewhere.

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <string>

#include <pwd.h>
#include <sys/utsname.h>
#include <unistd.h>

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#endif

#include "../System.h"

namespace zk64::platform {
namespace {

// The number after `key` on its line of a /proc text file, or `fallback`.
unsigned long long ReadProcNumber(char const* path, char const* key, unsigned long long fallback)
{
    std::ifstream file(path);
    std::string line;
    std::size_t const keyLength = std::strlen(key);
    while (std::getline(file, line)) {
        if (line.compare(0, keyLength, key) == 0) return std::strtoull(line.c_str() + keyLength, nullptr, 10);
    }
    return fallback;
}

// Copies `text` as GetComputerNameA/GetUserNameA do, or reports the size
// needed. `countTerminator`: whether a successful *size includes it.
BOOL CopyName(std::string const& text, char* buffer, DWORD* size, bool countTerminator)
{
    DWORD const needed = static_cast<DWORD>(text.size() + 1);
    if (buffer == nullptr || *size < needed) {
        *size = needed;
        errno = ERANGE;  // Windows: kErrorBufferOverflow or kErrorInsufficientBuffer
        return 0;
    }
    std::memcpy(buffer, text.c_str(), needed);
    *size = countTerminator ? needed : needed - 1;
    return 1;
}

constexpr unsigned long long kUserSpaceTop = 0x00007FFFFFFFF000ull;  // 47-bit user address space

}  // namespace

DWORD GetLastError() { return static_cast<DWORD>(errno); }
void SetLastError(DWORD code) { errno = static_cast<int>(code); }

DWORD FormatMessageA(DWORD flags, void const* /*source*/, DWORD messageId, DWORD /*languageId*/, char* buffer,
                     DWORD /*size*/, void* /*arguments*/)
{
    constexpr DWORD kSupported = kFormatMessageAllocateBuffer | kFormatMessageFromSystem;
    if ((flags & kSupported) != kSupported || buffer == nullptr) {
        errno = EINVAL;
        return 0;
    }
    char scratch[256];
    char const* text = strerror_r(static_cast<int>(messageId), scratch, sizeof scratch);
    std::size_t const length = std::strlen(text);
    auto* copy = static_cast<char*>(std::malloc(length + 1));
    if (copy == nullptr) {
        errno = ENOMEM;
        return 0;
    }
    std::memcpy(copy, text, length + 1);
    *reinterpret_cast<char**>(buffer) = copy;
    return static_cast<DWORD>(length);
}

void* LocalFree(void* memory)
{
    std::free(memory);
    return nullptr;
}

void GetNativeSystemInfo(NativeSystemInfo* info)
{
    utsname name{};
    uname(&name);
    std::string const machine = name.machine;
    if (machine == "x86_64") info->wProcessorArchitecture = kProcessorArchitectureAmd64;
    else if (machine == "aarch64" || machine == "arm64") info->wProcessorArchitecture = kProcessorArchitectureArm64;
    else if (machine.compare(0, 3, "arm") == 0) info->wProcessorArchitecture = kProcessorArchitectureArm;
    else if (machine == "ia64") info->wProcessorArchitecture = kProcessorArchitectureIa64;
    else if (machine.size() == 4 && machine[0] == 'i' && machine.compare(2, 2, "86") == 0)
        info->wProcessorArchitecture = kProcessorArchitectureIntel;
    else info->wProcessorArchitecture = 0xFFFF;

    long const page = sysconf(_SC_PAGESIZE);
    long const processors = sysconf(_SC_NPROCESSORS_ONLN);
    info->dwPageSize = static_cast<DWORD>(page);
    info->dwAllocationGranularity = static_cast<DWORD>(page);
    info->dwNumberOfProcessors = static_cast<DWORD>(processors);
    info->dwActiveProcessorMask = processors >= 64 ? ~0ull : (1ull << processors) - 1;
    unsigned long long const low = ReadProcNumber("/proc/sys/vm/mmap_min_addr", "", static_cast<unsigned long long>(page));
    info->lpMinimumApplicationAddress = reinterpret_cast<void*>(low);
    info->lpMaximumApplicationAddress = reinterpret_cast<void*>(kUserSpaceTop - 1);
}

BOOL GlobalMemoryStatusEx(MemoryStatusEx* status)
{
    if (status->dwLength != sizeof(MemoryStatusEx)) {
        errno = EINVAL;
        return 0;
    }
    unsigned long long const total = ReadProcNumber("/proc/meminfo", "MemTotal:", 0) * 1024;
    if (total == 0) {
        errno = ENOENT;
        return 0;
    }
    unsigned long long const available = ReadProcNumber("/proc/meminfo", "MemAvailable:", 0) * 1024;
    unsigned long long const swapTotal = ReadProcNumber("/proc/meminfo", "SwapTotal:", 0) * 1024;
    unsigned long long const swapFree = ReadProcNumber("/proc/meminfo", "SwapFree:", 0) * 1024;
    unsigned long long const mapped = ReadProcNumber("/proc/self/status", "VmSize:", 0) * 1024;
    status->dwMemoryLoad = static_cast<std::uint32_t>((total - available) * 100 / total);
    status->ullTotalPhys = total;
    status->ullAvailPhys = available;
    status->ullTotalPageFile = total + swapTotal;
    status->ullAvailPageFile = available + swapFree;
    status->ullTotalVirtual = kUserSpaceTop;
    status->ullAvailVirtual = kUserSpaceTop > mapped ? kUserSpaceTop - mapped : 0;
    status->ullAvailExtendedVirtual = 0;
    return 1;
}

BOOL GetComputerNameA(char* buffer, DWORD* size)
{
    char host[256] = {};
    if (gethostname(host, sizeof host - 1) != 0) return 0;
    std::string name(host, std::strcspn(host, "."));
    if (name.size() > 15) name.resize(15);
    for (char& c : name) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return CopyName(name, buffer, size, false);
}

BOOL GetUserNameA(char* buffer, DWORD* size)
{
    passwd entry{};
    passwd* found = nullptr;
    char scratch[4096];
    int const error = getpwuid_r(geteuid(), &entry, scratch, sizeof scratch, &found);
    if (found == nullptr) {
        errno = error != 0 ? error : ENOENT;
        return 0;
    }
    return CopyName(found->pw_name, buffer, size, true);
}

BOOL IsDebuggerPresent() { return ReadProcNumber("/proc/self/status", "TracerPid:", 0) != 0 ? 1 : 0; }

void OutputDebugStringA(char const* text)
{
    if (text != nullptr && IsDebuggerPresent()) std::fputs(text, stderr);
}

BOOL QueryPerformanceCounter(long long* count)
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    *count = static_cast<long long>(now.tv_sec) * 1000000000LL + now.tv_nsec;
    return 1;
}

BOOL QueryPerformanceFrequency(long long* frequency)
{
    *frequency = 1000000000LL;
    return 1;
}

void CpuId(unsigned int leaf, unsigned int registers[4])
{
#if defined(__x86_64__) || defined(__i386__)
    __cpuid(leaf, registers[0], registers[1], registers[2], registers[3]);
#else
    (void)leaf;
    registers[0] = registers[1] = registers[2] = registers[3] = 0;
#endif
}

}  // namespace zk64::platform
