#include "ZKProcessIcons.h"

#include <cstdint>
#include <cstring>

#include "../platform/DirectoryChanges.h"
#include "../platform/Handles.h"
#include "../platform/Icons.h"
#include "../platform/Processes.h"
#include "../platform/System.h"
#include "../system/ZKSystem.h"
#include "ZKProcess.h"
#include "detail/ProcessAccess.h"

namespace platform = zk64::platform;
using zk64::detail::kWordQuery;
using zk64::detail::kWordQueryAndRead;

// ----------------------------------------------------------- stock icons

namespace {

constexpr int kStockIconWidth = 11;
constexpr int kStockIconHeight = 12;

HICON__* StockIcon(std::uintptr_t number)
{
    return platform::LoadImageA(nullptr, reinterpret_cast<char const*>(number), platform::kImageIcon,
                                kStockIconWidth, kStockIconHeight, platform::kLrShared);
}

}  // namespace

#define ZK_DEFINE_STOCK_ICON(Operation, number) \
    HICON__* Operation() { return StockIcon(number); }
ZK_STOCK_ICONS(ZK_DEFINE_STOCK_ICON)
#undef ZK_DEFINE_STOCK_ICON

// ------------------------------------------------------ executable icons

namespace {

constexpr std::size_t kPathBytes = 260;

// The first large icon of the file at `path`, when it has any. The path
// must fit the buffer with its terminator.
HICON__* FileIcon(ZKString const& path)
{
    char const* const text = path.GetString();
    std::size_t const length = std::strlen(text);
    if (length >= kPathBytes) return nullptr;
    char buffer[kPathBytes] = {};
    std::memcpy(buffer, text, length);
    if (platform::ExtractIconExA(buffer, -1, nullptr, nullptr, 1) == 0) return nullptr;
    HICON__* large = nullptr;
    // An extraction that reports nothing may still have written into the
    // output: only a reported icon counts.
    if (platform::ExtractIconExA(buffer, 0, &large, nullptr, 1) == 0) return nullptr;
    return large;
}

}  // namespace

HICON__* GetExeFileIcon(ZKString const& path) { return FileIcon(path); }
HICON__* GetProcessIcon(ProcessHandle process) { return FileIcon(GetProcessExePath(process)); }
ZK_PROCESS_ID_AND_NAME_FORMS(HICON__*, GetProcessIcon, kWordQuery, nullptr, (), ())

void DestroyProcessIcon(HICON__* const& icon)
{
    if (icon != nullptr) platform::DestroyIcon(icon);
}

// ------------------------------------------------------------ dump files

namespace {

// Whether the caller is a 32-bit process and the target a 64-bit one,
// which it cannot dump. When the caller cannot open itself, nothing is
// refused.
bool OutOfReach(ProcessHandle target)
{
    ProcessHandle const self = OpenProcessHandle(GetCurrentProcessID(), kWordQuery);
    if (self.handle == nullptr) return false;
    bool const self32 = IsProcess32Bit(self);
    CloseProcessHandle(self);
    if (!self32) return false;
    platform::BOOL wow64 = 0;
    platform::IsWow64Process(target.handle, &wow64);
    return GetProcessorArchitecture() == ProcessorArchitectureX64 && wow64 == 0;
}

}  // namespace

bool CreateProcessDumpFile(ZKString const& outputPath, ProcessHandle process, unsigned long long const& dumpKind)
{
    if (OutOfReach(process)) return false;
    char const* const path = outputPath.GetString();
    platform::HANDLE const file = platform::CreateFileA(path, platform::kGenericWrite, 0, nullptr,
                                                        platform::kCreateAlways, platform::kFileAttributeNormal,
                                                        nullptr);
    if (file == platform::kInvalidHandleValue) return false;
    platform::DWORD const pid = process.handle == nullptr ? 0 : platform::GetProcessId(process.handle);
    auto const dumpType = static_cast<platform::DWORD>(dumpKind & 0xFFFFFFFFull);
    bool const written = platform::MiniDumpWriteDump(process.handle, pid, file, dumpType, nullptr, nullptr, nullptr) != 0;
    platform::CloseHandle(file);
    if (written) return true;
    platform::GetLastError();
    platform::DeleteFileA(path);
    return false;
}

bool CreateProcessDumpFile(ZKString const& outputPath, unsigned long pid, unsigned long long const& dumpKind)
{
    return zk64::detail::WithProcess<bool>(pid, kWordQueryAndRead, false, [&](ProcessHandle process) {
        return CreateProcessDumpFile(outputPath, process, dumpKind);
    });
}

bool CreateProcessDumpFile(ZKString const&, ZKString const& name, unsigned long long const&)
{
    if (GetProcessID(name) == 0) return false;
    while (GetProcessID(name) != 0) {
    }
    return false;
}
