// POSIX backend (Linux) of the address-space operations.
//
// How each Win32 meaning is met here:
//   VirtualQueryEx      the regions of /proc/PID/maps, and the gaps between
//                       them as free regions, tile [0, the top of the user
//                       address space):
//                         mapped region  BaseAddress its start, RegionSize
//                                        its length, State MEM_COMMIT (an
//                                        inaccessible anonymous region is
//                                        MEM_RESERVE), Protect and
//                                        AllocationProtect from its
//                                        permissions: r-- 0x02, rw- 0x04,
//                                        r-x 0x20, rwx 0x40, --x 0x10,
//                                        --- 0x01 (write-only counts as
//                                        read-write); Type MEM_IMAGE for the
//                                        executable and shared objects,
//                                        MEM_MAPPED for other files and
//                                        shared memory, MEM_PRIVATE for the
//                                        rest; AllocationBase the lowest
//                                        address the same file is mapped at,
//                                        or the region's start.
//                         gap            MEM_FREE, PAGE_NOACCESS, no type,
//                                        AllocationBase 0.
//                       An address above the application range fails with
//                       EINVAL. A walk reads the maps once: the list is kept
//                       per thread while the queries go up through one
//                       process, and read afresh when a query starts lower
//                       (a new walk) or names another process.
//   ReadProcessMemory   process_vm_readv; a partial copy fails with EFAULT.
//   WriteProcessMemory  process_vm_writev, which honours the protections:
//                       a read-only region fails with EFAULT.

#include <cerrno>
#include <cstdint>
#include <string>
#include <vector>

#include <sys/uio.h>

#include "../Memory.h"
#include "../Processes.h"
#include "../System.h"
#include "KernelObjects.h"
#include "ProcFiles.h"

namespace zk64::platform {
namespace {

using posix::Target;

// One region of the tiling.
struct Region {
    ULONGLONG start;
    ULONGLONG end;
    ULONGLONG allocationBase;
    DWORD protect;
    DWORD state;
    DWORD type;
};

DWORD Protection(char const* permissions)
{
    bool const read = permissions[0] == 'r';
    bool const write = permissions[1] == 'w';
    bool const execute = permissions[2] == 'x';
    if (execute) return write ? kPageExecuteReadWrite : read ? kPageExecuteRead : kPageExecute;
    if (write) return kPageReadWrite;
    return read ? kPageReadOnly : kPageNoAccess;
}

bool IsSharedObject(char const* path, std::size_t length)
{
    std::string const name(path, length);
    return name.find(".so") != std::string::npos;
}

// The tiling of [0, top) for one process, from its maps text.
void Tile(std::string const& maps, std::string const& exe, ULONGLONG top, std::vector<Region>& regions)
{
    regions.clear();
    std::vector<std::pair<std::string, ULONGLONG>> bases;  // file, lowest start
    ULONGLONG cursor = 0;
    posix::ForEachMapsLine(maps, [&](posix::MapsLine const& line) {
        if (line.start >= top) return false;
        if (line.start > cursor) regions.push_back({cursor, line.start, 0, kPageNoAccess, kMemFree, 0});
        bool const file = line.pathLength > 0 && line.path[0] == '/';
        ULONGLONG base = line.start;
        DWORD type = line.permissions[3] == 's' ? kMemMapped : kMemPrivate;
        if (file) {
            std::string path(line.path, line.pathLength);
            bool known = false;
            for (auto const& entry : bases) {
                if (entry.first == path) {
                    base = entry.second;
                    known = true;
                }
            }
            if (!known) bases.emplace_back(path, line.start);
            type = path == exe || IsSharedObject(line.path, line.pathLength) ? kMemImage : kMemMapped;
        }
        DWORD const protect = Protection(line.permissions);
        DWORD const state = !file && protect == kPageNoAccess ? kMemReserve : kMemCommit;
        ULONGLONG const end = line.end < top ? line.end : top;
        regions.push_back({line.start, end, base, protect, state, type});
        cursor = end;
        return true;
    });
    if (cursor < top) regions.push_back({cursor, top, 0, kPageNoAccess, kMemFree, 0});
}

// The per-thread list of the process being walked.
struct WalkCache {
    pid_t pid = 0;
    ULONGLONG lastAddress = 0;
    std::vector<Region> regions;
};

ULONGLONG Top()
{
    NativeSystemInfo info;
    GetNativeSystemInfo(&info);
    return reinterpret_cast<ULONGLONG>(info.lpMaximumApplicationAddress) + 1;
}

}  // namespace

std::size_t VirtualQueryEx(HANDLE process, void const* address, MemoryBasicInformation* information,
                           std::size_t length)
{
    Target target;
    if (!target.Open(process, kProcessQueryInformation)) return 0;
    ULONGLONG const at = reinterpret_cast<ULONGLONG>(address);
    static ULONGLONG const top = Top();
    if (at >= top || length < sizeof(MemoryBasicInformation)) {
        errno = EINVAL;
        return 0;
    }
    thread_local WalkCache cache;
    if (cache.pid != target.pid || at < cache.lastAddress || cache.regions.empty()) {
        std::string maps;
        std::string exe;
        if (!posix::ReadProcFile(target.procfd, "maps", maps)) return 0;
        posix::ReadProcLink(target.procfd, "exe", exe);
        Tile(maps, exe, top, cache.regions);
        cache.pid = target.pid;
    }
    cache.lastAddress = at;
    // The regions ascend: find the one holding `at`.
    std::size_t low = 0;
    std::size_t high = cache.regions.size();
    while (low + 1 < high) {
        std::size_t const middle = (low + high) / 2;
        if (cache.regions[middle].start <= at) low = middle;
        else high = middle;
    }
    Region const& region = cache.regions[low];
    *information = MemoryBasicInformation{};
    ULONGLONG const page = at & ~ULONGLONG{0xFFF};
    information->BaseAddress = reinterpret_cast<void*>(region.start > page ? region.start : page);
    information->AllocationBase = reinterpret_cast<void*>(region.allocationBase);
    information->AllocationProtect = region.state == kMemFree ? 0 : region.protect;
    information->RegionSize = region.end - reinterpret_cast<ULONGLONG>(information->BaseAddress);
    information->State = region.state;
    information->Protect = region.protect;
    information->Type = region.type;
    return sizeof(MemoryBasicInformation);
}

namespace {

// Copies between this process and the target with process_vm_readv or
// process_vm_writev until all `size` bytes went across.
template <class Transfer>
BOOL Copy(pid_t pid, void* local, std::uintptr_t remote, std::size_t size, std::size_t* done, Transfer transfer)
{
    std::size_t copied = 0;
    while (copied < size) {
        iovec localPart{static_cast<char*>(local) + copied, size - copied};
        iovec remotePart{reinterpret_cast<void*>(remote + copied), size - copied};
        ssize_t const moved = transfer(pid, &localPart, 1, &remotePart, 1, 0);
        if (moved <= 0) break;
        copied += static_cast<std::size_t>(moved);
    }
    if (done != nullptr) *done = copied;
    if (copied == size) return 1;
    errno = EFAULT;
    return 0;
}

}  // namespace

BOOL ReadProcessMemory(HANDLE process, void const* address, void* buffer, std::size_t size, std::size_t* done)
{
    Target target;
    if (!target.Open(process, kProcessVmRead)) return 0;
    return Copy(target.pid, buffer, reinterpret_cast<std::uintptr_t>(address), size, done, process_vm_readv);
}

BOOL WriteProcessMemory(HANDLE process, void* address, void const* buffer, std::size_t size, std::size_t* done)
{
    Target target;
    if (!target.Open(process, kProcessVmWrite | kProcessVmOperation)) return 0;
    return Copy(target.pid, const_cast<void*>(buffer), reinterpret_cast<std::uintptr_t>(address), size, done,
                process_vm_writev);
}

}  // namespace zk64::platform
