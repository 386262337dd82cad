#pragma once

// Another process's address space: region queries, reads and writes. See
// System.h for what the backends promise; platform/posix/Memory.cpp
// documents how Linux meets each meaning.

#include <cstddef>

#include "PlatformTypes.h"

namespace zk64::platform {

// MEMORY_BASIC_INFORMATION of a 64-bit process, field for field (48 bytes).
struct MemoryBasicInformation {
    void* BaseAddress = nullptr;
    void* AllocationBase = nullptr;
    DWORD AllocationProtect = 0;
    WORD PartitionId = 0;
    ULONGLONG RegionSize = 0;
    DWORD State = 0;
    DWORD Protect = 0;
    DWORD Type = 0;
};
static_assert(sizeof(MemoryBasicInformation) == 48);

// Protections, states and types (the Win32 values).
constexpr DWORD kPageNoAccess = 0x01;
constexpr DWORD kPageReadOnly = 0x02;
constexpr DWORD kPageReadWrite = 0x04;
constexpr DWORD kPageExecute = 0x10;
constexpr DWORD kPageExecuteRead = 0x20;
constexpr DWORD kPageExecuteReadWrite = 0x40;
constexpr DWORD kMemCommit = 0x1000;
constexpr DWORD kMemReserve = 0x2000;
constexpr DWORD kMemFree = 0x10000;
constexpr DWORD kMemPrivate = 0x20000;
constexpr DWORD kMemMapped = 0x40000;
constexpr DWORD kMemImage = 0x1000000;

// Describes the region holding `address`; the bytes written (48), or 0 on
// failure (an address above the application range among them). Query rights.
std::size_t VirtualQueryEx(HANDLE process, void const* address, MemoryBasicInformation* information,
                           std::size_t length);
// Non-zero only when all `size` bytes were copied; `done` may be null.
// Read rights; writes need write and operation rights.
BOOL ReadProcessMemory(HANDLE process, void const* address, void* buffer, std::size_t size, std::size_t* done);
BOOL WriteProcessMemory(HANDLE process, void* address, void const* buffer, std::size_t size, std::size_t* done);

}  // namespace zk64::platform
