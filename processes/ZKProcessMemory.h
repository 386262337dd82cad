#pragma once

// Another process's address space, region by region: the walk, and reading
// and writing a region's bytes. Every operation has the identifier, handle
// and name forms of ZKProcess.h. A region's bytes travel in a ZKString used
// as a byte buffer (its size is the byte count; zero bytes are data).

#include "../foundation/ZKContainer.h"
#include "../foundation/ZKExport.h"
#include "../foundation/ZKString.h"
#include "ZKProcessHandles.h"

// The predicates of a region: X(predicate, field, bit). Each tests one bit
// of one field; protections come in pairs, on AllocationProtect and on
// Protect.
#define ZK_MEMORY_PROTECTION_BITS(X) \
    X(NoAccess, 0x001)               \
    X(ReadOnly, 0x002)               \
    X(ReadWrite, 0x004)              \
    X(WriteCopy, 0x008)              \
    X(Execute, 0x010)                \
    X(ReadExecute, 0x020)            \
    X(ReadWriteExecute, 0x040)       \
    X(WriteCopyExecute, 0x080)       \
    X(ModGuard, 0x100)               \
    X(ModNoCache, 0x200)             \
    X(ModWriteCombine, 0x400)
#define ZK_MEMORY_STATE_AND_TYPE_BITS(X) \
    X(IsStateCommit, State, 0x1000)      \
    X(IsStateReserve, State, 0x2000)     \
    X(IsStateFree, State, 0x10000)       \
    X(IsTypePrivate, Type, 0x20000)      \
    X(IsTypeMapped, Type, 0x40000)       \
    X(IsTypeImage, Type, 0x1000000)

// One region of an address space, as the system describes it.
class ZK_API VirtualMemoryAddressInfo {
public:
    unsigned long long BaseAddress = 0;
    unsigned long long AllocationBase = 0;
    unsigned int AllocationProtect = 0;
    unsigned long long RegionSize = 0;
    unsigned int State = 0;
    unsigned int Protect = 0;
    unsigned int Type = 0;

    // All seven fields, in order.
    bool operator==(VirtualMemoryAddressInfo const& other) const;

    unsigned char* GetBaseAddr() const { return reinterpret_cast<unsigned char*>(BaseAddress); }
    unsigned char* GetAllocBaseAddr() const { return reinterpret_cast<unsigned char*>(AllocationBase); }
    unsigned long long GetRegionSizeBytes() const { return RegionSize; }

#define ZK_PROTECTION_PREDICATES(Name, bit)                                      \
    bool IsAllocProtect##Name() const { return (AllocationProtect & (bit)) != 0; } \
    bool IsProtect##Name() const { return (Protect & (bit)) != 0; }
    ZK_MEMORY_PROTECTION_BITS(ZK_PROTECTION_PREDICATES)
#undef ZK_PROTECTION_PREDICATES
#define ZK_STATE_AND_TYPE_PREDICATES(Name, field, bit) \
    bool Name() const { return (field & (bit)) != 0; }
    ZK_MEMORY_STATE_AND_TYPE_BITS(ZK_STATE_AND_TYPE_PREDICATES)
#undef ZK_STATE_AND_TYPE_PREDICATES
};

// Appends one record per region from address 0 up to the top of the
// application range, in ascending order, free and inaccessible regions
// included (word 0x408). False only when the process cannot be reached.
// A query that fails repeats the previous record and moves on by its size;
// the walk ends at a reported size of 0 (so a failing first query appends
// one zeroed record) and after 64 failing queries in a row.
ZK_API bool GetProcessVirtualMemoryAddresses(unsigned long pid, ZKContainer<VirtualMemoryAddressInfo>& out);
ZK_API bool GetProcessVirtualMemoryAddresses(ProcessHandle process, ZKContainer<VirtualMemoryAddressInfo>& out);
ZK_API bool GetProcessVirtualMemoryAddresses(ZKString const& name, ZKContainer<VirtualMemoryAddressInfo>& out);

// Reads the region's RegionSize bytes from its BaseAddress into `out`,
// resized to that count (word 0x408). False when not every byte could be
// read; `out` then keeps its new size. A region that does not fit below the
// top of the application range, or is larger than the machine's memory and
// page file together, is refused with `out` untouched.
ZK_API bool GetVirtualMemoryData(unsigned long pid, VirtualMemoryAddressInfo const& region, ZKString& out);
ZK_API bool GetVirtualMemoryData(ProcessHandle process, VirtualMemoryAddressInfo const& region, ZKString& out);
ZK_API bool GetVirtualMemoryData(ZKString const& name, VirtualMemoryAddressInfo const& region, ZKString& out);

// Writes RegionSize bytes of `data` to the region's BaseAddress, or `size`
// bytes to `address` (word 0xA00). Protections are not changed: a
// read-only region fails. A `data` shorter than the byte count is refused
// (false, nothing written).
ZK_API bool SetVirtualMemoryData(unsigned long pid, VirtualMemoryAddressInfo const& region, ZKString const& data);
ZK_API bool SetVirtualMemoryData(ProcessHandle process, VirtualMemoryAddressInfo const& region, ZKString const& data);
ZK_API bool SetVirtualMemoryData(ZKString const& name, VirtualMemoryAddressInfo const& region, ZKString const& data);
ZK_API bool SetVirtualMemoryData(unsigned long pid, unsigned char* address, ZKString const& data,
                                 unsigned long long size);
ZK_API bool SetVirtualMemoryData(ProcessHandle process, unsigned char* address, ZKString const& data,
                                 unsigned long long size);
ZK_API bool SetVirtualMemoryData(ZKString const& name, unsigned char* address, ZKString const& data,
                                 unsigned long long size);
