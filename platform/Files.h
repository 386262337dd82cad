#pragma once

// File-system operations of the platform layer; see System.h for what the
// backends promise.

#include <cstdint>

#include "PlatformTypes.h"

namespace zk64::platform {

// The separator of path components: '\' on Windows, '/' on Linux. Path
// logic above the layer uses it wherever Windows paths have a backslash.
#if defined(_WIN32)
constexpr char kPathSeparator = '\\';
constexpr char kForeignPathSeparator = '/';
// Windows paths name their root with a drive ("C:\dir"); a leading
// separator carries no meaning the library keeps.
constexpr bool kLeadingSeparatorIsRoot = false;
#else
constexpr char kPathSeparator = '/';
constexpr char kForeignPathSeparator = '\\';
// "/usr/share" is rooted: its leading separator is part of the path.
constexpr bool kLeadingSeparatorIsRoot = true;
#endif

// WIN32_FIND_DATAA, field for field (the win32 backend checks the layout).
struct FindDataA {
    DWORD dwFileAttributes = 0;
    DWORD ftCreationTime[2] = {};
    DWORD ftLastAccessTime[2] = {};
    DWORD ftLastWriteTime[2] = {};
    DWORD nFileSizeHigh = 0;
    DWORD nFileSizeLow = 0;
    DWORD dwReserved0 = 0;
    DWORD dwReserved1 = 0;
    char cFileName[260] = {};
    char cAlternateFileName[14] = {};
};
static_assert(sizeof(FindDataA) == 320);

constexpr DWORD kFileAttributeHidden = 0x2;
constexpr DWORD kFileAttributeDirectory = 0x10;
constexpr DWORD kFileAttributeNormal = 0x80;
constexpr DWORD kFileAttributeReparsePoint = 0x400;

// Directory enumeration. `pattern` is a directory, a separator and a name
// pattern with '*' and '?' ("C:\dir\*"). The first matching entry goes into
// `data`; kInvalidHandleValue when nothing matches or the directory cannot
// be read. FindNextFileA gives the next entry, FALSE at the end
// (ERROR_NO_MORE_FILES). "." and ".." are entries like any other.
// posix: opendir/readdir on the pattern's directory ("." when it has none),
// names matched with fnmatch (a leading dot is matched by '*', as on
// Windows); attributes from the directory stream's entry type, no stat:
// directories 0x10, symbolic links 0x400 (a reparse point, whatever they
// point to), everything else 0x80, and 0x2 (hidden) added for dot names.
// Sizes and times are not filled.
HANDLE FindFirstFileA(char const* pattern, FindDataA* data);
BOOL FindNextFileA(HANDLE find, FindDataA* data);
BOOL FindClose(HANDLE find);

// File-system redirection of 32-bit code on 64-bit Windows, for the calling
// thread. posix: there is no redirection; Disable stores null and both fail
// with EINVAL, as the Windows calls fail in a 64-bit process.
BOOL Wow64DisableWow64FsRedirection(void** oldValue);
BOOL Wow64RevertWow64FsRedirection(void* oldValue);

// Any of the out arguments may be null (with a size of 0 for the buffers).
BOOL GetVolumeInformationA(char const* rootPath, char* volumeName, DWORD volumeNameSize, DWORD* serialNumber,
                           DWORD* maximumComponentLength, DWORD* fileSystemFlags, char* fileSystemName,
                           DWORD fileSystemNameSize);

}  // namespace zk64::platform
