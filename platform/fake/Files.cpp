// Fake backend of the file-system operations.

#include "../Files.h"
#include "Fake.h"
#include "Run.h"

namespace zk64::platform {

BOOL GetVolumeInformationA(char const* rootPath, char* volumeName, DWORD volumeNameSize, DWORD* serialNumber,
                           DWORD* maximumComponentLength, DWORD* fileSystemFlags, char* fileSystemName,
                           DWORD fileSystemNameSize)
{
    fake::Record("GetVolumeInformationA(root=" + fake::Quoted(rootPath) + ", volumeName=" + fake::Out(volumeName) +
                 ", serial=" + fake::Out(serialNumber) + ", fileSystemName=" + fake::Out(fileSystemName) + ")");
    return fake::Run<BOOL>(fake::Files().GetVolumeInformationA, 0, rootPath, volumeName, volumeNameSize, serialNumber,
                           maximumComponentLength, fileSystemFlags, fileSystemName, fileSystemNameSize);
}

HANDLE FindFirstFileA(char const* pattern, FindDataA* data)
{
    fake::Record("FindFirstFileA(pattern=" + fake::Quoted(pattern) + ", data=" + fake::Out(data) + ")");
    return fake::Noted(fake::Run<HANDLE>(fake::Files().FindFirstFileA, kInvalidHandleValue, pattern, data));
}

BOOL FindNextFileA(HANDLE find, FindDataA* data)
{
    fake::Record("FindNextFileA(find=" + fake::Pointer(find) + ", data=" + fake::Out(data) + ")");
    return fake::Run<BOOL>(fake::Files().FindNextFileA, 0, find, data);
}

BOOL FindClose(HANDLE find)
{
    fake::Record("FindClose(find=" + fake::Pointer(find) + ")");
    fake::Closed(find);
    return fake::Run<BOOL>(fake::Files().FindClose, 0, find);
}

BOOL Wow64DisableWow64FsRedirection(void** oldValue)
{
    fake::Record("Wow64DisableWow64FsRedirection(oldValue=" + fake::Out(oldValue) + ")");
    return fake::Run<BOOL>(fake::Files().Wow64DisableWow64FsRedirection, 0, oldValue);
}

BOOL Wow64RevertWow64FsRedirection(void* oldValue)
{
    fake::Record("Wow64RevertWow64FsRedirection(oldValue=" + fake::Pointer(oldValue) + ")");
    return fake::Run<BOOL>(fake::Files().Wow64RevertWow64FsRedirection, 0, oldValue);
}

}  // namespace zk64::platform
