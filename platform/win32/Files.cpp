// Win32 backend: the file-system functions themselves.

#include <windows.h>

#include "../Files.h"

#include <cstddef>

namespace zk64::platform {

static_assert(sizeof(FindDataA) == sizeof(WIN32_FIND_DATAA));
static_assert(offsetof(FindDataA, dwFileAttributes) == offsetof(WIN32_FIND_DATAA, dwFileAttributes));
static_assert(offsetof(FindDataA, nFileSizeLow) == offsetof(WIN32_FIND_DATAA, nFileSizeLow));
static_assert(offsetof(FindDataA, cFileName) == offsetof(WIN32_FIND_DATAA, cFileName));
static_assert(offsetof(FindDataA, cAlternateFileName) == offsetof(WIN32_FIND_DATAA, cAlternateFileName));
static_assert(kFileAttributeHidden == FILE_ATTRIBUTE_HIDDEN);
static_assert(kFileAttributeDirectory == FILE_ATTRIBUTE_DIRECTORY);
static_assert(kFileAttributeNormal == FILE_ATTRIBUTE_NORMAL);
static_assert(kFileAttributeReparsePoint == FILE_ATTRIBUTE_REPARSE_POINT);

HANDLE FindFirstFileA(char const* pattern, FindDataA* data)
{
    HANDLE const find = ::FindFirstFileA(pattern, reinterpret_cast<WIN32_FIND_DATAA*>(data));
    return find == INVALID_HANDLE_VALUE ? kInvalidHandleValue : find;
}

BOOL FindNextFileA(HANDLE find, FindDataA* data)
{
    return ::FindNextFileA(find, reinterpret_cast<WIN32_FIND_DATAA*>(data));
}

BOOL FindClose(HANDLE find) { return ::FindClose(find); }

BOOL Wow64DisableWow64FsRedirection(void** oldValue) { return ::Wow64DisableWow64FsRedirection(oldValue); }

BOOL Wow64RevertWow64FsRedirection(void* oldValue) { return ::Wow64RevertWow64FsRedirection(oldValue); }

BOOL GetVolumeInformationA(char const* rootPath, char* volumeName, DWORD volumeNameSize, DWORD* serialNumber,
                           DWORD* maximumComponentLength, DWORD* fileSystemFlags, char* fileSystemName,
                           DWORD fileSystemNameSize)
{
    return ::GetVolumeInformationA(rootPath, volumeName, volumeNameSize, serialNumber, maximumComponentLength,
                                   fileSystemFlags, fileSystemName, fileSystemNameSize);
}

}  // namespace zk64::platform
