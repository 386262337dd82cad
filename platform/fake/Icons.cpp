// Fake backend of icons and dump files. A resource number given as
// LoadImageA's name is recorded as "#number".

#include <cstdint>
#include <string>

#include "../Icons.h"
#include "Fake.h"
#include "Run.h"

namespace zk64::platform {

using fake::Dec;
using fake::Hex;
using fake::Icons;
using fake::Out;
using fake::Pointer;
using fake::Quoted;
using fake::Record;
using fake::Run;

namespace {

std::string ResourceName(char const* name)
{
    auto const value = reinterpret_cast<std::uintptr_t>(name);
    return value < 0x10000 ? "#" + Dec(value) : Quoted(name);
}

std::string Signed(int value)
{
    return value < 0 ? "-" + Dec(0ull - static_cast<unsigned long long>(value)) : Dec(static_cast<unsigned>(value));
}

}  // namespace

HICON LoadImageA(HINSTANCE__* instance, char const* name, unsigned int type, int width, int height, unsigned int flags)
{
    Record("LoadImageA(instance=" + Pointer(instance) + ", name=" + ResourceName(name) + ", type=" + Dec(type) +
           ", width=" + Signed(width) + ", height=" + Signed(height) + ", flags=" + Hex(flags) + ")");
    HICON const icon = Run<HICON>(Icons().LoadImageA, nullptr, name, type, width, height, flags);
    if ((flags & kLrShared) == 0) fake::Opened(icon);  // shared icons belong to the system
    return icon;
}

unsigned int ExtractIconExA(char const* file, int index, HICON* large, HICON* small, unsigned int count)
{
    Record("ExtractIconExA(" + Quoted(file) + ", index=" + Signed(index) + ", large=" + Out(large) +
           ", small=" + Out(small) + ", count=" + Dec(count) + ")");
    unsigned int const extracted = Run<unsigned int>(Icons().ExtractIconExA, 0u, file, index, large, small, count);
    if (extracted != 0 && index >= 0) {
        if (large != nullptr) fake::Opened(*large);
        if (small != nullptr) fake::Opened(*small);
    }
    return extracted;
}

BOOL DestroyIcon(HICON icon)
{
    Record("DestroyIcon(" + Pointer(icon) + ")");
    fake::Closed(icon);
    return Run<BOOL>(Icons().DestroyIcon, 0, icon);
}

BOOL MiniDumpWriteDump(HANDLE process, DWORD processId, HANDLE file, DWORD dumpType, void const* exception,
                       void const* userStreams, void const* callback)
{
    Record("MiniDumpWriteDump(" + Pointer(process) + ", pid=" + Dec(processId) + ", file=" + Pointer(file) +
           ", type=" + Hex(dumpType) + ", exception=" + Pointer(exception) + ", streams=" + Pointer(userStreams) +
           ", callback=" + Pointer(callback) + ")");
    return Run<BOOL>(Icons().MiniDumpWriteDump, 0, process, processId, file, dumpType);
}

BOOL DeleteFileA(char const* path)
{
    Record("DeleteFileA(" + Quoted(path) + ")");
    return Run<BOOL>(Icons().DeleteFileA, 0, path);
}

}  // namespace zk64::platform
