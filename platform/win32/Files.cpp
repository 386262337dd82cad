// Win32 backend: the file-system functions themselves.

#include <windows.h>

#include "../Files.h"

namespace zk64::platform {

BOOL GetVolumeInformationA(char const* rootPath, char* volumeName, DWORD volumeNameSize, DWORD* serialNumber,
                           DWORD* maximumComponentLength, DWORD* fileSystemFlags, char* fileSystemName,
                           DWORD fileSystemNameSize)
{
    return ::GetVolumeInformationA(rootPath, volumeName, volumeNameSize, serialNumber, maximumComponentLength,
                                   fileSystemFlags, fileSystemName, fileSystemNameSize);
}

}  // namespace zk64::platform
