// Fake backend of the file-system operations.

#include "../Files.h"
#include "Fake.h"

namespace zk64::platform {

BOOL GetVolumeInformationA(char const* rootPath, char* volumeName, DWORD volumeNameSize, DWORD* serialNumber,
                           DWORD* maximumComponentLength, DWORD* fileSystemFlags, char* fileSystemName,
                           DWORD fileSystemNameSize)
{
    fake::Record("GetVolumeInformationA(root=" + fake::Quoted(rootPath) + ", volumeName=" + fake::Out(volumeName) +
                 ", serial=" + fake::Out(serialNumber) + ", fileSystemName=" + fake::Out(fileSystemName) + ")");
    auto& script = fake::Files().GetVolumeInformationA;
    return script ? script(rootPath, volumeName, volumeNameSize, serialNumber, maximumComponentLength,
                           fileSystemFlags, fileSystemName, fileSystemNameSize)
                  : 0;
}

}  // namespace zk64::platform
