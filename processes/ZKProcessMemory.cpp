#include "ZKProcessMemory.h"

#include "../platform/Memory.h"
#include "../platform/System.h"
#include "detail/ProcessAccess.h"

namespace platform = zk64::platform;
using zk64::detail::kWordQueryAndRead;
using zk64::detail::kWordWriteMemory;

bool VirtualMemoryAddressInfo::operator==(VirtualMemoryAddressInfo const& other) const
{
    return BaseAddress == other.BaseAddress && AllocationBase == other.AllocationBase &&
           AllocationProtect == other.AllocationProtect && RegionSize == other.RegionSize && State == other.State &&
           Protect == other.Protect && Type == other.Type;
}

namespace {

// The top of the application range, the last address a process can use.
unsigned long long MaximumAddress()
{
    platform::NativeSystemInfo info;
    platform::GetNativeSystemInfo(&info);
    return reinterpret_cast<unsigned long long>(info.lpMaximumApplicationAddress);
}

VirtualMemoryAddressInfo RecordOf(platform::MemoryBasicInformation const& region)
{
    VirtualMemoryAddressInfo record;
    record.BaseAddress = reinterpret_cast<unsigned long long>(region.BaseAddress);
    record.AllocationBase = reinterpret_cast<unsigned long long>(region.AllocationBase);
    record.AllocationProtect = region.AllocationProtect;
    record.RegionSize = region.RegionSize;
    record.State = region.State;
    record.Protect = region.Protect;
    record.Type = region.Type;
    return record;
}

constexpr int kMostFailedQueriesInARow = 64;

// Whether a region can hold readable bytes at all: it lies below the top of
// the application range and is no larger than the machine's memory and page
// file together. Anything else is refused before a buffer is made for it.
bool CanHoldData(VirtualMemoryAddressInfo const& region)
{
    unsigned long long const top = MaximumAddress();
    platform::MemoryStatusEx memory;
    memory.dwLength = sizeof memory;
    if (!platform::GlobalMemoryStatusEx(&memory)) return false;
    return region.RegionSize <= memory.ullTotalPageFile && region.RegionSize <= top &&
           region.BaseAddress <= top - region.RegionSize + 1;
}

}  // namespace

bool GetProcessVirtualMemoryAddresses(ProcessHandle process, ZKContainer<VirtualMemoryAddressInfo>& out)
{
    unsigned long long const limit = MaximumAddress();
    if (limit == 0) return true;
    // Starts zeroed: a failing first query appends a zeroed record.
    platform::MemoryBasicInformation region;
    unsigned long long address = 0;
    int failedInARow = 0;
    do {
        bool const answered = platform::VirtualQueryEx(process.handle, reinterpret_cast<void const*>(address), &region,
                                                       sizeof region) != 0;
        failedInARow = answered ? 0 : failedInARow + 1;
        out.PushBack(RecordOf(region));
        if (region.RegionSize == 0 || failedInARow == kMostFailedQueriesInARow) break;
        address += region.RegionSize;
    } while (address != 0 && address < limit);
    return true;
}

bool GetVirtualMemoryData(ProcessHandle process, VirtualMemoryAddressInfo const& region, ZKString& out)
{
    if (!CanHoldData(region)) return false;
    out.Resize(region.RegionSize);
    return platform::ReadProcessMemory(process.handle, region.GetBaseAddr(), &out[0], region.RegionSize, nullptr) != 0;
}

bool SetVirtualMemoryData(ProcessHandle process, unsigned char* address, ZKString const& data, unsigned long long size)
{
    if (size > static_cast<unsigned long long>(data.GetSize())) return false;
    return platform::WriteProcessMemory(process.handle, address, data.GetString(), size, nullptr) != 0;
}

bool SetVirtualMemoryData(ProcessHandle process, VirtualMemoryAddressInfo const& region, ZKString const& data)
{
    return SetVirtualMemoryData(process, region.GetBaseAddr(), data, region.RegionSize);
}

ZK_PROCESS_ID_AND_NAME_FORMS(bool, GetProcessVirtualMemoryAddresses, kWordQueryAndRead, false,
                             (, ZKContainer<VirtualMemoryAddressInfo>& out), (, out))
ZK_PROCESS_ID_AND_NAME_FORMS(bool, GetVirtualMemoryData, kWordQueryAndRead, false,
                             (, VirtualMemoryAddressInfo const& region, ZKString& out), (, region, out))
ZK_PROCESS_ID_AND_NAME_FORMS(bool, SetVirtualMemoryData, kWordWriteMemory, false,
                             (, VirtualMemoryAddressInfo const& region, ZKString const& data), (, region, data))
ZK_PROCESS_ID_AND_NAME_FORMS(bool, SetVirtualMemoryData, kWordWriteMemory, false,
                             (, unsigned char* address, ZKString const& data, unsigned long long size),
                             (, address, data, size))
