#pragma once

// The operating-system layer's vocabulary: the Win32 types its functions
// use, declared without <windows.h> so that the logic above the layer
// compiles everywhere. On Windows they are the very same types.

#include <cstdint>

namespace zk64::platform {

#if defined(_WIN32)
using DWORD = unsigned long;
#else
using DWORD = std::uint32_t;
#endif
using BOOL = int;
using UINT = unsigned int;
using LONG = std::int32_t;  // 32 bits on every Windows target
using ULONG = DWORD;        // unsigned long on Windows
using LONG_PTR = std::intptr_t;
#if defined(_WIN32)
using HRESULT = long;
#else
using HRESULT = std::int32_t;
#endif
using WORD = std::uint16_t;
using ULONGLONG = std::uint64_t;
using HANDLE = void*;
using ULONG_PTR = std::uintptr_t;

// INVALID_HANDLE_VALUE: the failure value of CreateFileA and FindFirstFileA.
inline HANDLE const kInvalidHandleValue = reinterpret_cast<HANDLE>(~ULONG_PTR{0});
// The wide character of the layer's *W functions: UTF-16 units.
#if defined(_WIN32)
using WCHAR = wchar_t;
#else
using WCHAR = char16_t;
#endif

// OVERLAPPED: the block of an asynchronous operation, field for field and of
// the same size (32 bytes). Internal holds the operation's status while it
// is pending (kStatusPending) and when it is done, InternalHigh the bytes
// transferred, hEvent the event that is signalled at completion.
struct OverlappedOffset {
    DWORD Offset = 0;
    DWORD OffsetHigh = 0;
};
struct Overlapped {
    ULONG_PTR Internal = 0;
    ULONG_PTR InternalHigh = 0;
    union {
        OverlappedOffset Offsets = {};
        void* Pointer;
    };
    HANDLE hEvent = nullptr;
};
static_assert(sizeof(Overlapped) == 32);

// The head of FILE_NOTIFY_INFORMATION, one record of a directory-change
// buffer; FileNameLength bytes of UTF-16 name follow it (no terminator), and
// the next record starts NextEntryOffset bytes after this one's start (0 for
// the last). Records are DWORD-aligned.
struct FileNotifyInformationHead {
    DWORD NextEntryOffset;
    DWORD Action;
    DWORD FileNameLength;
};
static_assert(sizeof(FileNotifyInformationHead) == 12);


// GetNativeSystemInfo's record, with the fields the library reads.
struct NativeSystemInfo {
    WORD wProcessorArchitecture = 0;
    DWORD dwPageSize = 0;
    void* lpMinimumApplicationAddress = nullptr;
    void* lpMaximumApplicationAddress = nullptr;
    std::uint64_t dwActiveProcessorMask = 0;
    DWORD dwNumberOfProcessors = 0;
    DWORD dwAllocationGranularity = 0;
};

// GlobalMemoryStatusEx's record: the same fields, in the same order and of
// the same size (64 bytes), as MEMORYSTATUSEX.
struct MemoryStatusEx {
    std::uint32_t dwLength = 0;
    std::uint32_t dwMemoryLoad = 0;
    ULONGLONG ullTotalPhys = 0;
    ULONGLONG ullAvailPhys = 0;
    ULONGLONG ullTotalPageFile = 0;
    ULONGLONG ullAvailPageFile = 0;
    ULONGLONG ullTotalVirtual = 0;
    ULONGLONG ullAvailVirtual = 0;
    ULONGLONG ullAvailExtendedVirtual = 0;
};
static_assert(sizeof(MemoryStatusEx) == 64);

// Values of the Win32 constants the layer's callers pass or compare, named
// apart from <windows.h>'s macros (the win32 backend checks they agree).
constexpr DWORD kFormatMessageAllocateBuffer = 0x100;
constexpr DWORD kFormatMessageIgnoreInserts = 0x200;
constexpr DWORD kFormatMessageFromSystem = 0x1000;
constexpr DWORD kLangNeutralSublangDefault = 0x400;

constexpr WORD kProcessorArchitectureIntel = 0;
constexpr WORD kProcessorArchitectureArm = 5;
constexpr WORD kProcessorArchitectureIa64 = 6;
constexpr WORD kProcessorArchitectureAmd64 = 9;
constexpr WORD kProcessorArchitectureArm64 = 12;

constexpr DWORD kErrorInvalidParameter = 87;
constexpr DWORD kErrorBufferOverflow = 111;
constexpr DWORD kErrorInsufficientBuffer = 122;

// Overlapped status values (NTSTATUS) kept in Overlapped::Internal.
constexpr ULONG_PTR kStatusPending = 0x103;
constexpr ULONG_PTR kStatusNotifyEnumDir = 0x10C;  // changes were lost: the buffer overflowed

}  // namespace zk64::platform
