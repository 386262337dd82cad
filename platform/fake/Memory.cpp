// Fake backend of the address-space operations.

#include <cstdint>

#include "../Memory.h"
#include "Fake.h"
#include "Run.h"

namespace zk64::platform {

using fake::Dec;
using fake::Out;
using fake::Pointer;
using fake::Record;
using fake::Run;

std::size_t VirtualQueryEx(HANDLE process, void const* address, MemoryBasicInformation* information,
                           std::size_t length)
{
    Record("VirtualQueryEx(" + Pointer(process) + ", address=" + fake::Hex(reinterpret_cast<std::uintptr_t>(address)) +
           ", information=" + Out(information) + ", length=" + Dec(length) + ")");
    return Run<std::size_t>(fake::Memory().VirtualQueryEx, 0, address, information);
}

BOOL ReadProcessMemory(HANDLE process, void const* address, void* buffer, std::size_t size, std::size_t* done)
{
    Record("ReadProcessMemory(" + Pointer(process) + ", address=" + Pointer(address) + ", buffer=" + Out(buffer) +
           ", size=" + Dec(size) + ", done=" + Out(done) + ")");
    return Run<BOOL>(fake::Memory().ReadProcessMemory, 0, address, buffer, size);
}

BOOL WriteProcessMemory(HANDLE process, void* address, void const* buffer, std::size_t size, std::size_t* done)
{
    Record("WriteProcessMemory(" + Pointer(process) + ", address=" + Pointer(address) + ", buffer=" + Out(buffer) +
           ", size=" + Dec(size) + ", done=" + Out(done) + ")");
    return Run<BOOL>(fake::Memory().WriteProcessMemory, 0, address, buffer, size);
}

}  // namespace zk64::platform
