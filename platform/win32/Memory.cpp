// Win32 backend of the address-space operations.

#include <windows.h>

#include <cstddef>

#include "../Memory.h"

namespace zk64::platform {

static_assert(sizeof(MemoryBasicInformation) == sizeof(MEMORY_BASIC_INFORMATION));
static_assert(offsetof(MemoryBasicInformation, RegionSize) == offsetof(MEMORY_BASIC_INFORMATION, RegionSize));
static_assert(offsetof(MemoryBasicInformation, Type) == offsetof(MEMORY_BASIC_INFORMATION, Type));
static_assert(kPageNoAccess == PAGE_NOACCESS && kPageReadOnly == PAGE_READONLY && kPageReadWrite == PAGE_READWRITE);
static_assert(kPageExecute == PAGE_EXECUTE && kPageExecuteRead == PAGE_EXECUTE_READ);
static_assert(kPageExecuteReadWrite == PAGE_EXECUTE_READWRITE);
static_assert(kMemCommit == MEM_COMMIT && kMemReserve == MEM_RESERVE && kMemFree == MEM_FREE);
static_assert(kMemPrivate == MEM_PRIVATE && kMemMapped == MEM_MAPPED && kMemImage == MEM_IMAGE);

std::size_t VirtualQueryEx(HANDLE process, void const* address, MemoryBasicInformation* information,
                           std::size_t length)
{
    return ::VirtualQueryEx(process, address, reinterpret_cast<MEMORY_BASIC_INFORMATION*>(information), length);
}

BOOL ReadProcessMemory(HANDLE process, void const* address, void* buffer, std::size_t size, std::size_t* done)
{
    SIZE_T count = 0;
    BOOL const ok = ::ReadProcessMemory(process, address, buffer, size, &count);
    if (done != nullptr) *done = count;
    return ok;
}

BOOL WriteProcessMemory(HANDLE process, void* address, void const* buffer, std::size_t size, std::size_t* done)
{
    SIZE_T count = 0;
    BOOL const ok = ::WriteProcessMemory(process, address, buffer, size, &count);
    if (done != nullptr) *done = count;
    return ok;
}

}  // namespace zk64::platform
